#pragma once

#include "RecordCore/Media/FFmpeg/InputFile.h"
#include "RecordCore/Media/FFmpeg/PictureConverter.h"
#include "RecordCore/Media/VideoReader.h"

#include <deque>
#include <limits>
#include <optional>

namespace RecordCore::FFmpeg {

/// Decodes with libavcodec, several frames at once on its threads; converts on the caller's.
class FFmpegVideoReader final : public VideoReader {
public:
    FFmpegVideoReader(const std::filesystem::path& file, int threads);

    const SourceInfo& info() const override { return facts; }
    std::optional<VideoFrame> next() override;
    void seek(double seconds) override;
    void skipTo(double seconds) override;
    std::optional<SeekCost> seekCost(double seconds) const override;
    std::vector<Stored> stored() const override;

private:
    struct Decoded {
        double time = 0;
        FrameHandle frame;
    };

    void openDecoder(int threads);
    std::optional<Decoded> decode();
    bool feed();
    bool fillQueue(std::size_t count);
    bool canBeSkipped(const AVPacket& packet) const;
    /// The decoding time of the last key packet that is certainly shown at or before `seconds`.
    std::optional<std::int64_t> keyBefore(double seconds) const;
    void jump(std::int64_t timestamp, bool dropLeading);
    std::int64_t ticks(double seconds) const;
    double timeOf(std::int64_t pts) const;

    InputFile input;
    SourceInfo facts;
    AVStream* stream;
    std::int64_t origin;
    double tick; ///< seconds
    PictureConverter converter;
    CodecHandle decoder;

    std::deque<PacketHandle> queue; ///< read, not yet decoded
    bool fileEnded = false;
    bool drained = false;
    std::optional<std::int64_t> lastRead; ///< decoding time of the last packet read
    std::int64_t mostReorder = 0;         ///< largest pts − dts seen
    bool dropLeading = false; ///< after a jump: frames before the first packet's time cannot be decoded
    std::optional<std::int64_t> firstAfterJump;

    FrameHandle received;
    std::deque<Decoded> ahead;   ///< decoded, to be returned first
    std::optional<Decoded> last; ///< the frame returned last
    double lastDecoded = -std::numeric_limits<double>::infinity();
    double target =
        -std::numeric_limits<double>::infinity(); ///< nothing before the frame shown here is wanted
    bool anyDecoded = false;
};

} // namespace RecordCore::FFmpeg
