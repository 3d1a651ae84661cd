#include "OmbrelRecord/AppModel/AppModel.h"
#include "OmbrelRecord/AppModel/AppModelParts.h"
#include "OmbrelRecord/EditorModel/EditorModel.h"
#include "RecordCore/Model/RecordingFiles.h"

#include <exception>
#include <fmt/format.h>
#include <memory>
#include <system_error>
#include <utility>
#include <vector>

// The recordings there are, and the one in the editor.

namespace OmbrelRecord {

using namespace RecordCore;
using namespace AppModelParts;

namespace fs = std::filesystem;

namespace {

constexpr auto sampleName = "Sample · 4 agents fix a bug";

/// A copy that can be edited; one that is there stays as the user left it.
void unpackSample(const fs::path& sample, const fs::path& unpacked) {
    fs::create_directories(unpacked);
    for (const fs::directory_entry& entry : fs::directory_iterator(sample)) {
        const fs::path copy = unpacked / entry.path().filename();
        if (fs::exists(copy)) continue;
        // A copy that is cut off must not count as one.
        const fs::path part = unpacked / "part";
        fs::copy_file(entry.path(), part, fs::copy_options::overwrite_existing);
        fs::rename(part, copy);
    }
}

} // namespace

// The library and the editor.

void AppModel::refreshRecents() {
    auto found = std::make_shared<std::vector<Recording>>();
    aside([library = parts.library, found] { *found = library.recordings(); },
          [this, found] { recentList->setRecordings(std::move(*found)); });
}

void AppModel::open(const fs::path& video, std::optional<InputLog> inputLog, const fs::path& place) {
    if (!idle() && state != Flow::saving) return;
    beginLoading(place);
    load(video, std::move(inputLog), place);
}

void AppModel::openWithLog(const fs::path& video, const fs::path& file, const fs::path& place) {
    beginLoading(place);
    struct Read {
        std::optional<InputLog> log;
        std::string failure;
    };
    auto read = std::make_shared<Read>();
    aside(
        [file, read] {
            std::error_code ignored;
            if (!fs::exists(file, ignored)) return;
            try {
                read->log = InputLog::load(file);
            } catch (const std::exception& error) {
                read->failure = error.what(); // the film can be made without it
            }
        },
        [this, which = openings, video, place, read] {
            if (which != openings || state != Flow::loading) return;
            if (!read->failure.empty()) log(fmt::format("editor: {}", read->failure));
            load(video, std::move(read->log), place);
        });
}

void AppModel::beginLoading(const fs::path& place) {
    if (state == Flow::home) stopPreviews();
    message = tr("Watching your recording…");
    ++openings;
    if (state == Flow::editing)
        leaveEditor(Flow::loading);
    else
        enter(Flow::loading);
    Q_EMIT screenChanged(); // the message is another one even where the screen is the same
    log(fmt::format("editor: loading {}", place.filename().string()));
}

void AppModel::load(const fs::path& video, std::optional<InputLog> inputLog, const fs::path& place) {
    const std::uint64_t which = openings;
    parts.loadEditor(
        video, std::move(inputLog), place,
        whileAlive(this,
                   [this, which](double share) {
                       if (which == openings && state == Flow::loading)
                           setMessage(tr("Watching your recording… %1%").arg(static_cast<int>(share * 100)));
                   }),
        whileAlive(this, [this, which](std::unique_ptr<EditorModel> model, const std::string& failure) {
            if (which == openings && state == Flow::loading) loaded(std::move(model), failure);
        }));
}

void AppModel::cancelWorking() {
    if (!cancellable()) return;
    log("editor: cancelled");
    ++openings;
    if (state == Flow::loading && parts.cancelLoad) parts.cancelLoad();
    enter(Flow::home);
    refreshRecents();
    startPreviews();
}

void AppModel::loaded(std::unique_ptr<EditorModel> model, const std::string& failure) {
    if (!model) {
        log(fmt::format("editor: failed {}", failure));
        enter(Flow::home);
        startPreviews();
        setProblem(tr("Couldn't open that video: %1").arg(text(failure)).toStdString());
        return;
    }
    openEditor = std::move(model);
    Q_EMIT editorChanged();
    enter(Flow::editing);
    showMain();
    log("editor: open");
}

void AppModel::open(const QString& name) {
    if (!idle()) return;
    const Recording recording{toPath(name)};
    const RecordingFiles files{recording.folder};
    std::error_code ignored;
    if (!fs::exists(files.journal(), ignored))
        return openWithLog(recording.video(), files.input(), recording.folder);
    // It was cut off, and its turn has not come yet.
    if (state == Flow::editing) backHome();
    stopPreviews();
    message = tr("Making the recording whole…");
    const std::uint64_t which = ++openings;
    enter(Flow::recovering);
    parts.recover(recording.folder, whileAlive(this, [this, which, recording](const std::string& failure) {
                      if (which != openings || state != Flow::recovering) return;
                      if (failure.empty())
                          return openWithLog(recording.video(), RecordingFiles{recording.folder}.input(),
                                             recording.folder);
                      log(fmt::format("editor: failed {}", failure));
                      enter(Flow::home);
                      startPreviews();
                      setProblem(tr("Couldn't open that video: %1").arg(text(failure)).toStdString());
                  }));
}

void AppModel::openFile() {
    if (idle()) Q_EMIT fileWanted();
}

void AppModel::openVideo(const QString& file) {
    if (!idle()) return;
    const fs::path video = toPath(file);
    openWithLog(video, RecordingFiles{video.parent_path()}.input(), video.parent_path());
}

void AppModel::openPath(const QString& path) {
    std::error_code ignored;
    if (fs::is_directory(toPath(path), ignored))
        open(path);
    else
        openVideo(path);
}

bool AppModel::hasSample() const {
    std::error_code ignored;
    return !parts.sample.empty() && fs::exists(RecordingFiles{parts.sample}.video(), ignored);
}

void AppModel::openSample() {
    if (!idle()) return;
    if (!hasSample()) return setProblem(tr("The sample isn't in this build.").toStdString());
    if (parts.sampleHome.empty())
        return setProblem("Couldn't open that video: there is no folder for the sample, because your home "
                          "folder isn't known.");
    auto failure = std::make_shared<std::string>();
    const fs::path unpacked = parts.sampleHome / sampleName;
    aside(
        [from = parts.sample, unpacked, failure] {
            try {
                unpackSample(from, unpacked);
            } catch (const std::exception& error) {
                *failure = error.what();
            }
        },
        [this, unpacked, failure] {
            if (!idle()) return;
            if (failure->empty()) return open(pathText(unpacked));
            setProblem(tr("Couldn't open that video: %1").arg(text(*failure)).toStdString());
        });
}

void AppModel::trash(const QString& name) {
    if (!idle()) return;
    if (state == Flow::editing) backHome();
    leftEditors.clear(); // what they have not saved yet is saved before
    try {
        parts.desktop->trash(toPath(name));
    } catch (const std::exception& error) {
        setProblem(error.what());
    }
    refreshRecents();
}

void AppModel::reveal(const QString& name) {
    parts.desktop->reveal(toPath(name));
}

/// What is edited is left for another state. It goes, and is saved, when its views have gone.
void AppModel::leaveEditor(Flow next) {
    openEditor->pause();
    leftEditors.push_back(std::move(openEditor));
    enter(next);
    Q_EMIT editorChanged();
    parts.clock->after(0, this, [this] { leftEditors.clear(); });
}

void AppModel::backHome() {
    if (state != Flow::editing) return;
    leaveEditor(Flow::home);
    refreshRecents();
    startPreviews();
}

/// One after another; what is still being recorded by another process is left to it.
void AppModel::recoverNext() {
    if (unfinished.empty()) return;
    const fs::path next = unfinished.front();
    unfinished.erase(unfinished.begin());
    parts.recover(next, whileAlive(this, [this, next](const std::string& failure) {
                      if (failure.empty()) {
                          log(fmt::format("record: recovered {}", next.filename().string()));
                          recoveredRecordings.append(
                              QVariantMap{{QStringLiteral("name"), pathText(next.filename())},
                                          {QStringLiteral("folder"), pathText(next)}});
                          Q_EMIT recoveredChanged();
                          refreshRecents();
                      } else {
                          log(fmt::format("record: not recovered {}: {}", next.filename().string(), failure));
                      }
                      recoverNext();
                  }));
}

void AppModel::dismissRecovered() {
    recoveredRecordings.clear();
    Q_EMIT recoveredChanged();
}

} // namespace OmbrelRecord
