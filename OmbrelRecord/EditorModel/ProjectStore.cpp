#include "OmbrelRecord/EditorModel/ProjectStore.h"

#include "RecordCore/Model/RecordingError.h"

#include <QtCore/QMetaObject>
#include <algorithm>
#include <fmt/format.h>

namespace OmbrelRecord {

using RecordCore::Project;
using RecordCore::RecordingError;

namespace fs = std::filesystem;

namespace {

constexpr int quiet = 400; ///< milliseconds after the last change
constexpr int longest =
    450; ///< milliseconds that the first of a row of changes waits; writing takes the rest

/// Gives a file a second name ("project (unreadable).json", numbered when taken). The first name stays until
/// the new project takes its place, so that there is never none.
void keepBeside(const fs::path& file) {
    for (int number = 1; number < 1000; ++number) {
        const std::string suffix = number == 1 ? "" : fmt::format(" {}", number);
        const fs::path kept = file.parent_path() / fmt::format("{} (unreadable{}){}", file.stem().string(),
                                                               suffix, file.extension().string());
        std::error_code error;
        if (fs::exists(kept, error)) continue;
        fs::create_hard_link(file, kept, error);
        if (error) fs::copy_file(file, kept, error); // a file system without hard links
        if (error) throw RecordingError(fmt::format("{}: {}", kept.string(), error.message()));
        return;
    }
}

} // namespace

ProjectStore::ProjectStore(fs::path file, QObject* parent) : QObject(parent), file(std::move(file)) {
    timer.setSingleShot(true);
    timer.setTimerType(Qt::PreciseTimer);
    connect(&timer, &QTimer::timeout, this, &ProjectStore::save);
}

ProjectStore::~ProjectStore() {
    flush();
}

std::optional<Project> ProjectStore::load(std::string* problem) {
    std::optional<Project> project = Project::load(file, problem);
    std::error_code ignored;
    unreadable = !project && fs::exists(file, ignored);
    if (!unreadable && !project && problem) problem->clear();
    return project;
}

void ProjectStore::schedule(const Project& project) {
    if (!unsaved) unsavedFor.start();
    unsaved = project;
    const auto waited = static_cast<int>(std::min<qint64>(unsavedFor.elapsed(), longest));
    timer.start(std::min(quiet, longest - waited));
}

void ProjectStore::flush() {
    timer.stop();
    save();
    queue.wait();
}

void ProjectStore::save() {
    if (!unsaved) return;
    queue.post([this, project = std::move(*unsaved), keep = unreadable, target = file] {
        try {
            if (keep) keepBeside(target);
            project.save(target);
        } catch (const std::exception& error) {
            QMetaObject::invokeMethod(this, [this, keep, text = QString::fromUtf8(error.what())] {
                unreadable = unreadable || keep;
                Q_EMIT failed(text);
            });
        }
    });
    unreadable = false;
    unsaved.reset();
}

} // namespace OmbrelRecord
