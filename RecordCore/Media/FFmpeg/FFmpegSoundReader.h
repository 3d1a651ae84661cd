#pragma once

#include "RecordCore/Media/FFmpeg/InputFile.h"
#include "RecordCore/Media/SoundReader.h"

#include <deque>
#include <optional>
#include <vector>

namespace RecordCore::FFmpeg {

/// Decodes one sound track and converts it to the engine's rate and channels. A sample's place comes from its
/// packet's time; runs that only jitter (less than 2 ms) are taken as continuous.
class FFmpegSoundReader final : public SoundReader {
public:
    /// `stream` counts the file's streams of all kinds.
    FFmpegSoundReader(const std::filesystem::path& file, int stream);

    std::int64_t end() const override { return lastPosition; }
    void read(std::int64_t position, std::span<float> out) override;

private:
    /// Samples without a gap between them.
    struct Run {
        std::int64_t start = 0;     ///< position of the first
        std::vector<float> samples; ///< interleaved
        std::int64_t end() const { return start + static_cast<std::int64_t>(samples.size()) / soundChannels; }
    };

    void openDecoder();
    void seek(std::int64_t position);
    /// Decodes one more frame; false at the end of the track.
    bool decode();
    void append(const AVFrame& decoded);
    void startRun(const AVFrame& decoded, double time);
    void resample(const AVFrame* decoded);

    InputFile input;
    AVStream* stream;
    double origin = 0; ///< of the picture, seconds on the file's clock
    CodecHandle decoder;
    ResamplerHandle resampler;
    int format = -1; ///< of the samples that the resampler takes
    int rate = 0;
    int channels = 0;
    FrameHandle frame;
    PacketHandle packet;
    std::int64_t lastPosition = 0;

    std::deque<Run> runs;  ///< decoded, in order; where they overlap the later one counts
    std::int64_t from = 0; ///< nothing before this position is in the runs any more
    bool ended = false;
    bool drained = false;
    std::optional<double> expected; ///< where the next frame should begin, seconds on the file's clock
};

} // namespace RecordCore::FFmpeg
