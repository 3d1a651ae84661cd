#pragma once

#include "RecordCore/Media/MovieWriter.h"
#include "RecordCore/Media/SoundEncoder.h"
#include "RecordCore/Media/SoundReader.h"
#include "RecordCore/Media/TimeStretcher.h"
#include "RecordCore/Media/VideoEncoder.h"
#include "RecordCore/Media/VideoReader.h"
#include "RecordCore/Model/SourceInfo.h"

#include <filesystem>
#include <memory>
#include <vector>

namespace RecordCore {

/// Where the engine gets its readers, encoders and writers from. Stateless; callable from any thread.
/// Everything throws RecordingError that names the file and the cause.
class MediaBackend {
public:
    virtual ~MediaBackend() = default;

    /// The facts of a video file, without decoding it.
    virtual SourceInfo sourceInfo(const std::filesystem::path& file) const = 0;

    /// Opens a video for reading. Only local files are opened, and only kinds of file on our list. `threads`
    /// decode at once (0: as many as suit the machine); the pictures are the same with any number.
    virtual std::unique_ptr<VideoReader> openVideo(const std::filesystem::path& file,
                                                   int threads = 0) const = 0;

    /// One reader for each sound track of the file, in file order; none when it has no sound.
    virtual std::vector<std::unique_ptr<SoundReader>> openSound(const std::filesystem::path& file) const = 0;

    virtual std::unique_ptr<VideoEncoder> makeVideoEncoder(const VideoSettings& settings,
                                                           PacketSink sink) const = 0;
    virtual std::unique_ptr<SoundEncoder> makeSoundEncoder(std::int64_t bitrate, PacketSink sink) const = 0;
    virtual std::unique_ptr<MovieWriter> createMovie(const std::filesystem::path& file,
                                                     MovieLayout layout) const = 0;
    virtual std::unique_ptr<TimeStretcher> makeTimeStretcher() const = 0;

    /// Turns a recording that was cut off (a crash, a kill) into a plain MP4 in place, with what can be read
    /// of it. True when the file was rewritten, false when it was whole already.
    virtual bool recoverMovie(const std::filesystem::path& file) const = 0;
};

} // namespace RecordCore
