#include "OmbrelRecord/EditorModel/ProjectStore.h"

#include "RecordCore/Model/AtomicFile.h"

#include <QtCore/QMetaObject>
#include <algorithm>

namespace OmbrelRecord {

using RecordCore::Project;

namespace fs = std::filesystem;

namespace {

constexpr int quiet = 400; ///< milliseconds after the last change
/// Milliseconds that the first of a row of changes waits; writing takes the rest.
constexpr int longest = 450;

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
            if (keep) RecordCore::keepBeside(target);
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
