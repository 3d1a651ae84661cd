#pragma once

#include "RecordCore/Activity/LiveActivity.h"
#include "RecordCore/Capture/HostClock.h"
#include "RecordCore/Model/InputLog.h"

#include <filesystem>
#include <mutex>
#include <optional>
#include <string>

namespace RecordCore {

/// Input and activity of a recording in progress, kept on disk beside the video so that a crash loses at most
/// the last second. A small text file that is only appended to; a normal stop removes it. All times are host
/// clock seconds but for the activity's, which count from the first frame. While it is open it is locked, so
/// that nobody takes a running recording for one that was cut off. Callable from any thread.
///
/// A disk that is full must not end a recording that still has its video: what cannot be written is given up.
class RecordingJournal {
public:
    /// Creates the file, readable by its owner only. Throws RecordingError, also when another process holds
    /// it.
    RecordingJournal(const std::filesystem::path& file, const HostClock& clock);
    ~RecordingJournal();
    RecordingJournal(const RecordingJournal&) = delete;
    RecordingJournal& operator=(const RecordingJournal&) = delete;

    void origin(double time); ///< of the first screen frame
    void camera(double time); ///< of the first camera frame
    void keysTracked(bool tracked);
    void cursor(const InputLog::CursorSample& sample);
    void event(const InputLog::Event& event);
    void activity(double t, const LiveActivity::PackedMask& mask);

    /// Hands everything to the operating system. Happens by itself with what is added more than half a second
    /// after the last time.
    void flush();

    /// Deletes the file: everything is safe elsewhere.
    void remove();

private:
    void append(std::string_view line);
    void write();

    const HostClock& clock;
    std::filesystem::path path;
    std::mutex mutex;
    // Guarded by the mutex.
    int file = -1;
    std::string buffer;
    double written = 0; ///< when the buffer was last written
};

/// What a journal holds. An unfinished last line (and any that makes no sense) is passed over.
struct JournalContents {
    std::optional<double> origin;
    std::optional<double> camera;
    std::optional<bool> keysTracked;
    std::vector<InputLog::CursorSample> cursor;
    std::vector<InputLog::Event> events;
    LiveActivity activity;

    /// The log as a normal stop would have written it.
    InputLog inputLog() const;

    /// Throws RecordingError when the file cannot be read.
    static JournalContents read(const std::filesystem::path& file);
};

/// Samples and events from `origin` on, counted from it.
InputLog retimed(const std::vector<InputLog::CursorSample>& cursor,
                 const std::vector<InputLog::Event>& events, double origin);

} // namespace RecordCore
