#pragma once

#include "OmbrelRecord/AppModel/SerialQueue.h"

#include <filesystem>
#include <string>
#include <string_view>

namespace OmbrelRecord {

/// A plain-text log: one entry per line, each stamped with the time in UTC (ISO 8601, to the second). Entries
/// are written in the order given, on a thread of the log's own. Callable from any thread; nothing here ever
/// fails: what cannot be written is lost.
class DiagLog {
public:
    explicit DiagLog(std::filesystem::path file);

    const std::filesystem::path& file() const { return path; }

    /// Drops a log of more than a million bytes; there is no backup.
    void dropWhenLarge();

    /// Returns at once.
    void log(std::string_view message);

    /// Returns when everything logged so far is on its way to the disk.
    void flush() { queue.wait(); }

private:
    std::filesystem::path path;
    SerialQueue queue;
};

/// The application's log, for a user to send when something goes wrong.
namespace Diag {

/// "Logs/Ombrel Record/ombrel-record.log" in the folder for an application's state.
const std::filesystem::path& file();

/// Called once when the application has started: drops a large log, writes the launch line and sees to it
/// that a crash (an exception nobody catches, a fatal signal) leaves an entry with the stack. An empty
/// version reads "dev".
void install(std::string_view version, std::string_view systemVersion);

/// Any thread; returns at once.
void log(std::string_view message);

/// Waits until all entries are written.
void flush();

} // namespace Diag
} // namespace OmbrelRecord
