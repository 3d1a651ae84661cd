#pragma once

#include "RecordCore/Activity/LiveActivity.h"
#include "RecordCore/Capture/FrameQueue.h"
#include "RecordCore/Capture/HostClock.h"
#include "RecordCore/Capture/RecordingJournal.h"
#include "RecordCore/Capture/ScreenBackend.h"
#include "RecordCore/Capture/SoundStream.h"
#include "RecordCore/Capture/SoundTrackWriter.h"
#include "RecordCore/Media/MediaBackend.h"

#include <atomic>
#include <filesystem>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace RecordCore {

/// Records one display or window with the computer's sound and a microphone into a movie, and samples its
/// activity. Frames come on the stream's thread, are encoded on a thread of their own and written in
/// fragments, so that a crash loses at most a second. `start`, `stop` and the rest are for the owner's
/// thread. One object, one recording.
class ScreenRecorder {
public:
    struct Setup {
        ScreenSource source;
        bool systemAudio = false;
        bool microphone = false;
        std::optional<std::string> microphoneID; ///< none: the default one
        int fps = 60;                            ///< most frames a second, 1…240
        /// How loud each block of the microphone is (`Microphones::loudness`), on its stream's thread. May be
        /// none.
        std::function<void(double)> onMicrophoneLevel;
    };

    /// What it works with; everything outlives the recorder.
    struct Services {
        const ScreenBackend& screen;
        const SoundBackend* sound; ///< none: there is no sound service
        const MediaBackend& media;
        const HostClock& clock;
        std::function<void(const std::string&)> log; ///< from any thread
    };

    struct Report {
        std::int64_t frames = 0;  ///< written, changed ones
        std::int64_t repeats = 0; ///< written to keep the file's end near while nothing changed
        std::int64_t dropped = 0; ///< changed frames that the encoder was too slow for
        std::string encoder;
        std::vector<SoundTrackWriter::Report> sound; ///< system sound first
    };

    ScreenRecorder(Setup setup, Services services);
    /// Without `stop` the movie is left as a crash would leave it.
    ~ScreenRecorder();
    ScreenRecorder(const ScreenRecorder&) = delete;
    ScreenRecorder& operator=(const ScreenRecorder&) = delete;

    /// Opens everything and starts capturing; a file at `file` is deleted. Throws RecordingError, nothing
    /// is left behind then.
    void start(const std::filesystem::path& file, RecordingJournal* journal = nullptr);

    /// The picture stays as it is until `stop`: what comes on the screen from now on is not recorded any
    /// more. Returns at once; any thread, after `start`.
    void hold() { held = true; }

    /// Ends the capture and finishes the file. Throws RecordingError "no frames were captured" (no file is
    /// left then), or why what was written cannot be read. A disk that got full or a stream that ended are
    /// no errors here: what was recorded until then is kept.
    void stop();

    /// Host clock seconds of the first frame; none as long as there was none.
    std::optional<double> firstFrameTime() const;

    /// After `stop` (until then it is the capture thread's).
    const LiveActivity& activity() const { return live; }
    Report report() const;

    int width() const { return stream ? stream->width() : 0; }   ///< of the picture; after `start`
    int height() const { return stream ? stream->height() : 0; } ///< of the picture; after `start`

    /// Called once, on some thread of the recorder, when the recording ended by itself: the window was
    /// closed, the disk is full. The owner then calls `stop`, from another thread. Set before `start`.
    std::function<void(const std::string& message)> onStop;

    /// Called some times a second while it records, on the encoding thread. Set before `start`.
    std::function<void()> onUpkeep;

private:
    struct SoundTrack {
        std::unique_ptr<SoundStream> stream;
        std::unique_ptr<SoundEncoder> encoder;
        std::unique_ptr<SoundTrackWriter> writer;
        int track = 0;
        bool microphone = false;
        bool open = false; ///< the stream was started
    };

    SoundTrack& addSound(std::unique_ptr<SoundStream> sound);
    void heard(const SoundTrack& track, const SoundBlock& block) const;
    void closeDevices();
    void capture(const ScreenFrame& frame);
    void encodeFrames();
    void encodeNext();
    void keepUp();
    void watchDisk();
    void endByItself(const std::string& message);
    std::int64_t ticks(double time) const;

    Setup setup;
    Services services;
    std::filesystem::path file;
    RecordingJournal* journal = nullptr;

    std::unique_ptr<ScreenStream> stream;
    std::unique_ptr<MovieWriter> movie;
    std::unique_ptr<VideoEncoder> encoder;
    std::vector<std::unique_ptr<SoundTrack>> sounds;
    std::unique_ptr<FrameQueue> queue;
    std::thread encoding;

    std::atomic<bool> held{false};
    mutable std::mutex mutex;
    // Guarded by the mutex.
    std::optional<double> firstFrame;
    Report counts;
    bool ended = false; ///< `onStop` was called

    LiveActivity live; ///< the capture thread's

    // The encoding thread's.
    int videoTrack = 0;
    std::int64_t lastPts = -1;
    std::int64_t lastKey = 0;
    double lastChange = 0;     ///< host clock time of the last changed frame
    double lastWritten = 0;    ///< host clock time of the last frame, changed or not
    bool refined = false;      ///< the still picture was sent a second time
    bool stillWritten = false; ///< and not yet on the disk
    double lastUpkeep = 0;
    double lastFlush = 0;
    bool warned = false; ///< about the disk
    bool failed = false; ///< nothing more can be written
    std::int64_t droppedKnown = 0;
    double nextDropReport = 0;
};

} // namespace RecordCore
