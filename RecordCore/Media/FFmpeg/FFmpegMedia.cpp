#include "RecordCore/Media/FFmpeg/FFmpegMedia.h"

#include "RecordCore/Media/FFmpeg/FFmpegVideoReader.h"
#include "RecordCore/Media/FFmpeg/InputFile.h"

namespace RecordCore::FFmpeg {

SourceInfo sourceInfo(const std::filesystem::path& file) {
    return InputFile(file).info();
}

std::unique_ptr<VideoReader> openVideo(const std::filesystem::path& file, int threads) {
    return std::make_unique<FFmpegVideoReader>(file, threads);
}

} // namespace RecordCore::FFmpeg
