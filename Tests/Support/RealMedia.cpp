#include "Tests/Support/RealMedia.h"

#include "RecordCore/Media/FFmpeg/FFmpegMedia.h"
#include "RecordCore/Media/RubberBand/Stretcher.h"
#include "RecordCore/Media/X264/X264Encoder.h"

#include <utility>

using namespace RecordCore;

SourceInfo RealMedia::sourceInfo(const std::filesystem::path& file) const {
    return FFmpeg::sourceInfo(file);
}

std::unique_ptr<VideoReader> RealMedia::openVideo(const std::filesystem::path& file, int threads) const {
    return FFmpeg::openVideo(file, threads);
}

std::vector<std::unique_ptr<SoundReader>> RealMedia::openSound(const std::filesystem::path& file) const {
    return FFmpeg::openSound(file);
}

std::unique_ptr<VideoEncoder> RealMedia::makeVideoEncoder(const VideoSettings& settings,
                                                          PacketSink sink) const {
    return X264::makeEncoder(settings, std::move(sink));
}

std::unique_ptr<SoundEncoder> RealMedia::makeSoundEncoder(std::int64_t bitrate, PacketSink sink) const {
    return FFmpeg::makeSoundEncoder(bitrate, std::move(sink));
}

std::unique_ptr<MovieWriter> RealMedia::createMovie(const std::filesystem::path& file,
                                                    MovieLayout layout) const {
    return FFmpeg::createMovie(file, layout);
}

std::unique_ptr<TimeStretcher> RealMedia::makeTimeStretcher() const {
    return RubberBand::makeStretcher();
}

bool RealMedia::recoverMovie(const std::filesystem::path& file) const {
    return FFmpeg::recoverMovie(file);
}
