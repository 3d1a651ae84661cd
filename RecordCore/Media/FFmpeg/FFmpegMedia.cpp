#include "RecordCore/Media/FFmpeg/FFmpegMedia.h"

#include "RecordCore/Media/FFmpeg/AacEncoder.h"
#include "RecordCore/Media/FFmpeg/FFmpegSoundReader.h"
#include "RecordCore/Media/FFmpeg/FFmpegVideoEncoder.h"
#include "RecordCore/Media/FFmpeg/FFmpegVideoReader.h"
#include "RecordCore/Media/FFmpeg/FilmWriter.h"
#include "RecordCore/Media/FFmpeg/InputFile.h"
#include "RecordCore/Media/FFmpeg/RecordingWriter.h"

#include <utility>

namespace RecordCore::FFmpeg {

SourceInfo sourceInfo(const std::filesystem::path& file) {
    return InputFile(file).info();
}

std::unique_ptr<VideoReader> openVideo(const std::filesystem::path& file, int threads) {
    return std::make_unique<FFmpegVideoReader>(file, threads);
}

std::vector<std::unique_ptr<SoundReader>> openSound(const std::filesystem::path& file) {
    std::vector<std::unique_ptr<SoundReader>> readers;
    const InputFile input(file);
    for (const AVStream* stream : input.sounds())
        readers.push_back(std::make_unique<FFmpegSoundReader>(file, stream->index));
    return readers;
}

std::unique_ptr<VideoEncoder> makeVideoEncoder(const VideoSettings& settings, PacketSink sink) {
    return std::make_unique<FFmpegVideoEncoder>(settings, std::move(sink));
}

std::unique_ptr<SoundEncoder> makeSoundEncoder(std::int64_t bitrate, PacketSink sink) {
    return std::make_unique<AacEncoder>(bitrate, std::move(sink));
}

std::unique_ptr<MovieWriter> createMovie(const std::filesystem::path& file, MovieLayout layout) {
    if (layout == MovieLayout::recording) return std::make_unique<RecordingWriter>(file);
    return std::make_unique<FilmWriter>(
        file, layout == MovieLayout::privateFilm ? FilmWriter::Access::ownerOnly : FilmWriter::Access::usual);
}

} // namespace RecordCore::FFmpeg
