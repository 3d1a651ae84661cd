#include "OmbrelRecord/Entry/Modules/Modules.h"
#include "RecordCore/Media/FFmpeg/FFmpegMedia.h"
#include "RecordCore/Media/RubberBand/Stretcher.h"
#include "RecordCore/Media/X264/X264Encoder.h"

#include <utility>

namespace {

using namespace RecordCore;

class DesktopMedia final : public MediaBackend {
public:
    SourceInfo sourceInfo(const std::filesystem::path& file) const override {
        return FFmpeg::sourceInfo(file);
    }

    std::unique_ptr<VideoReader> openVideo(const std::filesystem::path& file, int threads) const override {
        return FFmpeg::openVideo(file, threads);
    }

    std::vector<std::unique_ptr<SoundReader>> openSound(const std::filesystem::path& file) const override {
        return FFmpeg::openSound(file);
    }

    std::unique_ptr<VideoEncoder> makeVideoEncoder(const VideoSettings& settings,
                                                   PacketSink sink) const override {
        // libx264 is driven directly for what its usual front ends do not offer.
        if (settings.codec == Codec::h264 && !settings.hardware)
            return X264::makeEncoder(settings, std::move(sink));
        return FFmpeg::makeVideoEncoder(settings, std::move(sink));
    }

    std::unique_ptr<SoundEncoder> makeSoundEncoder(std::int64_t bitrate, PacketSink sink) const override {
        return FFmpeg::makeSoundEncoder(bitrate, std::move(sink));
    }

    std::unique_ptr<MovieWriter> createMovie(const std::filesystem::path& file,
                                             MovieLayout layout) const override {
        return FFmpeg::createMovie(file, layout);
    }

    std::unique_ptr<TimeStretcher> makeTimeStretcher() const override { return RubberBand::makeStretcher(); }

    bool recoverMovie(const std::filesystem::path& file) const override { return FFmpeg::recoverMovie(file); }
};

std::unique_ptr<const MediaBackend> media() {
    return std::make_unique<DesktopMedia>();
}

} // namespace

OMBREL_MODULE const OmbrelRecord::Modules::Media ombrelModule{
    {OmbrelRecord::Modules::Media::file, OMBREL_VERSION}, media, FFmpeg::makePictureDecoder};
