#include "OmbrelRecord/AppModel/Library.h"

#include "RecordCore/Model/RecordingError.h"
#include "RecordCore/Model/RecordingFiles.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <time.h>

#include <QtCore/QFile>
#include <QtCore/QStandardPaths>
#include <QtCore/QString>
#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fmt/format.h>

namespace OmbrelRecord {

using RecordCore::RecordingError;

namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::system_clock;

Clock::time_point birthTime(const fs::path& file) {
    struct statx facts {};
    if (::statx(AT_FDCWD, file.c_str(), 0, STATX_BTIME, &facts) != 0) return Recording::distantPast;
    if (!(facts.stx_mask & STATX_BTIME)) return Recording::distantPast;
    return Clock::time_point(std::chrono::duration_cast<Clock::duration>(
        std::chrono::seconds(facts.stx_btime.tv_sec) + std::chrono::nanoseconds(facts.stx_btime.tv_nsec)));
}

bool present(const fs::path& file) {
    std::error_code ignored;
    return fs::exists(file, ignored);
}

fs::path toPath(const QString& text) {
    return fs::path(text.toStdString());
}

} // namespace

std::optional<fs::path> Recording::log() const {
    fs::path file = folder / "input.json";
    return present(file) ? std::optional(std::move(file)) : std::nullopt;
}

Library::Library(fs::path root) : top(std::move(root)) {}

fs::path Library::standardRoot() {
    QString videos = QStandardPaths::writableLocation(QStandardPaths::MoviesLocation);
    if (videos.isEmpty()) videos = QStandardPaths::writableLocation(QStandardPaths::HomeLocation);
    return toPath(videos) / "Ombrel Record";
}

fs::path Library::newFolder() const {
    return newFolder(Clock::now());
}

fs::path Library::newFolder(Clock::time_point now) const {
    const std::time_t seconds = Clock::to_time_t(now);
    std::tm local{};
    ::localtime_r(&seconds, &local);
    const fs::path folder =
        top / fmt::format("Recording {:04}-{:02}-{:02} at {:02}.{:02}.{:02}", local.tm_year + 1900,
                          local.tm_mon + 1, local.tm_mday, local.tm_hour, local.tm_min, local.tm_sec);
    std::error_code error;
    fs::create_directories(top, error);
    if (error) throw RecordingError(fmt::format("{}: {}", top.string(), error.message()));
    if (::mkdir(folder.c_str(), S_IRWXU) != 0)
        throw RecordingError(fmt::format("{}: {}", folder.string(), std::strerror(errno)));
    return folder;
}

std::vector<Recording> Library::recordings() const {
    std::vector<Recording> found;
    std::error_code error;
    for (fs::directory_iterator entry(top, error), end; !error && entry != end; entry.increment(error)) {
        if (!present(entry->path() / "recording.mp4")) continue;
        found.push_back({entry->path(), birthTime(entry->path())});
    }
    std::sort(found.begin(), found.end(), [](const Recording& a, const Recording& b) {
        return a.date != b.date ? a.date > b.date : a.folder.filename() > b.folder.filename();
    });
    return found;
}

std::vector<Recording> Library::unfinished() const {
    std::vector<Recording> found = recordings();
    std::erase_if(found, [](const Recording& recording) {
        return !present(RecordCore::RecordingFiles{recording.folder}.journal());
    });
    return found;
}

void moveToTrash(const fs::path& file) {
    // The trash of the home folder is used only where the folder that holds it exists.
    std::error_code ignored;
    fs::create_directories(toPath(QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation)),
                           ignored);
    QFile trashed(QString::fromStdString(file.string()));
    if (!trashed.moveToTrash())
        throw RecordingError(fmt::format("{}: couldn't be moved to the trash: {}", file.string(),
                                         trashed.errorString().toStdString()));
}

} // namespace OmbrelRecord
