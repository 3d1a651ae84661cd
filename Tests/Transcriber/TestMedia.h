#pragma once

#include "RecordCore/Media/MediaBackend.h"
#include "RecordCore/Model/RecordingError.h"

#include <filesystem>
#include <functional>
#include <optional>
#include <vector>

/// The real readers, encoders and writers, with faults where a test wants them.
class TestMedia : public RecordCore::MediaBackend {
public:
    enum class Fault { none, info, encoder, writer, packet, finish };
    Fault fault = Fault::none;
    /// Called whenever sound of a file that is not a temporary one is read.
    std::function<void()> onRead;

    RecordCore::SourceInfo sourceInfo(const std::filesystem::path& file) const override;
    std::vector<std::unique_ptr<RecordCore::SoundReader>>
    openSound(const std::filesystem::path& file) const override;
    std::unique_ptr<RecordCore::SoundEncoder> makeSoundEncoder(std::int64_t bitrate,
                                                               RecordCore::PacketSink sink) const override;
    std::unique_ptr<RecordCore::MovieWriter> createMovie(const std::filesystem::path& file,
                                                         RecordCore::MovieLayout layout) const override;

    // Not needed here.
    std::unique_ptr<RecordCore::VideoReader> openVideo(const std::filesystem::path&, int) const override {
        throw RecordCore::RecordingError("no pictures here");
    }
    std::unique_ptr<RecordCore::VideoEncoder> makeVideoEncoder(const RecordCore::VideoSettings&,
                                                               RecordCore::PacketSink) const override {
        throw RecordCore::RecordingError("no pictures here");
    }
    std::unique_ptr<RecordCore::TimeStretcher> makeTimeStretcher() const override { return nullptr; }
    bool recoverMovie(const std::filesystem::path&) const override { return false; }
};

/// Makes a recording of this many seconds with a grey picture. `sound`: 48 kHz, one channel, silence after
/// its end; none: no sound track.
void makeRecording(const std::filesystem::path& file, double seconds,
                   const std::optional<std::vector<float>>& sound);
