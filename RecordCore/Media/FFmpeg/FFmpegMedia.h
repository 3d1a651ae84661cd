#pragma once

#include "RecordCore/Media/MovieWriter.h"
#include "RecordCore/Media/PictureDecoder.h"
#include "RecordCore/Media/SoundEncoder.h"
#include "RecordCore/Media/SoundReader.h"
#include "RecordCore/Media/VideoEncoder.h"
#include "RecordCore/Media/VideoReader.h"
#include "RecordCore/Model/SourceInfo.h"

#include <filesystem>
#include <memory>
#include <vector>

/// Readers, encoders and the MPEG-4 writer on the FFmpeg libraries. What each does is said at the interface
/// (MediaBackend and its parts); all functions may be called from any thread.
namespace RecordCore::FFmpeg {

SourceInfo sourceInfo(const std::filesystem::path& file);
std::unique_ptr<VideoReader> openVideo(const std::filesystem::path& file, int threads);
std::unique_ptr<PictureDecoder> makePictureDecoder();
std::vector<std::unique_ptr<SoundReader>> openSound(const std::filesystem::path& file);

/// HEVC in software, HEVC or H.264 in hardware; throws when no such encoder opens here.
std::unique_ptr<VideoEncoder> makeVideoEncoder(const VideoSettings& settings, PacketSink sink);
std::unique_ptr<SoundEncoder> makeSoundEncoder(std::int64_t bitrate, PacketSink sink);
std::unique_ptr<MovieWriter> createMovie(const std::filesystem::path& file, MovieLayout layout);
bool recoverMovie(const std::filesystem::path& file);

} // namespace RecordCore::FFmpeg
