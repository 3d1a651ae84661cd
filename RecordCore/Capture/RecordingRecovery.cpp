#include "RecordCore/Capture/RecordingRecovery.h"

#include "RecordCore/Capture/RecordingJournal.h"
#include "RecordCore/Model/ActivitySample.h"
#include "RecordCore/Model/AtomicFile.h"
#include "RecordCore/Model/RecordingError.h"
#include "RecordCore/Model/RecordingFiles.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/file.h>
#include <unistd.h>

namespace RecordCore {

namespace {

/// Holds a journal that nobody writes any more.
class JournalLock {
public:
    explicit JournalLock(const std::filesystem::path& path) : file(open(path.c_str(), O_RDWR | O_CLOEXEC)) {
        if (file >= 0 && flock(file, LOCK_EX | LOCK_NB) != 0) {
            close(file);
            throw RecordingError(fmt::format("{}: still being recorded", path.parent_path().string()));
        }
    }
    ~JournalLock() {
        if (file >= 0) close(file);
    }
    JournalLock(const JournalLock&) = delete;
    JournalLock& operator=(const JournalLock&) = delete;

private:
    int file;
};

/// The film can do without its camera, but not with one that cannot be read.
void setAside(const std::filesystem::path& camera) {
    try {
        static_cast<void>(keepBeside(camera));
        std::filesystem::remove(camera);
    } catch (const std::exception&) {
        // It stays where it is, and whoever opens it says what is wrong with it.
    }
}

} // namespace

bool recoverRecording(const std::filesystem::path& folder, const MediaBackend& media,
                      const std::function<void(const std::string&)>& log) {
    const RecordingFiles files{folder};
    const auto say = [&log](const std::string& message) {
        if (log) log(message);
    };
    // A recording that ended well has no journal; asking for it is all that opening one costs.
    if (!std::filesystem::exists(files.journal()) || !std::filesystem::exists(files.video())) return false;
    const JournalLock lock(files.journal());
    const JournalContents contents = JournalContents::read(files.journal());
    media.recoverMovie(files.video());
    if (std::filesystem::exists(files.camera())) {
        try {
            media.recoverMovie(files.camera());
            static_cast<void>(media.sourceInfo(files.camera())); // it may hold no picture yet
        } catch (const RecordingError& error) {
            say(fmt::format("recover: {}", error.what()));
            setAside(files.camera());
        }
    }
    if (!std::filesystem::exists(files.input())) contents.inputLog().save(files.input());
    if (!std::filesystem::exists(files.activity()))
        saveActivity(contents.activity.samples(), files.activity());
    std::filesystem::remove(files.journal());
    say(fmt::format("recover: {}: {} pointer samples, {} events", folder.string(), contents.cursor.size(),
                    contents.events.size()));
    return true;
}

} // namespace RecordCore
