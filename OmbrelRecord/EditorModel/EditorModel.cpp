#include "OmbrelRecord/EditorModel/EditorModel.h"

#include "OmbrelRecord/AppModel/Diag.h"
#include "OmbrelRecord/AppModel/Wording.h"
#include "OmbrelRecord/EditorModel/ProjectFields.h"
#include "RecordCore/Model/OutputFormat.h"
#include "RecordCore/Planning/Planner.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>

namespace OmbrelRecord {

using namespace RecordCore;

EditorModel::EditorModel(OpenedRecording recording, EditorParts editorParts, QObject* parent) :
    QObject(parent), opened(std::move(recording)), parts(std::move(editorParts)),
    store(std::make_unique<ProjectStore>(opened.files.project())), listening(parts.disposal),
    exporting(parts.disposal) {
    std::string problem;
    if (auto loaded = store->load(&problem))
        current = std::move(*loaded);
    else if (!problem.empty())
        Diag::log("editor: project not read, starting afresh: " + problem);
    connect(store.get(), &ProjectStore::failed, this, [this](const QString& description) {
        Diag::log("editor: save failed " + description.toStdString());
        saveProblem = Wording::translated(QStringLiteral("Your changes couldn't be saved: ") + description);
        Q_EMIT saveFailureChanged();
    });
    cameraThere = opened.camera().has_value();
    connect(this, &EditorModel::projectChanged, this, &EditorModel::selectedBlockChanged);
    connect(this, &EditorModel::selectionChanged, this, &EditorModel::selectedBlockChanged);
    rebuildTimer.setSingleShot(true);
    connect(&rebuildTimer, &QTimer::timeout, this, &EditorModel::rebuilt);
    connect(&listening, &CaptionWork::changed, this, &EditorModel::captioningChanged);
    connect(&exporting, &ExportWork::changed, this, &EditorModel::exportChanged);
    connect(&exporting, &ExportWork::finished, this, [this] {
        if (revealsExported) parts.desktop->reveal(exporting.film());
    });
    makePlan();
    if (parts.makePreview) shownPreview = parts.makePreview(opened);
    if (shownPreview) {
        shownPreview->onTime = [this](double seconds) {
            head = seconds;
            Q_EMIT playheadChanged();
        };
        shownPreview->onPlaying = [this](bool playing) {
            isPlaying = playing;
            Q_EMIT playingChanged();
        };
        shownPreview->update(current, currentPlan, [] {});
    }
}

Filmstrip* EditorModel::filmstrip(int pictureHeight) {
    if (parts.media && (!film || film->pictureHeight() != pictureHeight))
        film = std::make_unique<Filmstrip>(*parts.media, opened.video, duration(), pictureHeight,
                                           parts.disposal);
    return film.get();
}

Waveform* EditorModel::waveform() {
    if (parts.media && !sound && hasSound())
        sound = std::make_unique<Waveform>(*parts.media, opened.video, duration(),
                                           parts.cache.empty() ? parts.cache : parts.cache / "sound",
                                           parts.disposal);
    return sound.get();
}

// Edits.

void EditorModel::update(Project project, const std::optional<std::string>& coalesce) {
    if (project == current) return;
    if (gesture) {
        gesture->edited = true;
        history.record(current, gesture->key, gesture->begun);
    } else {
        history.record(current, coalesce, parts.now());
    }
    apply(std::move(project));
}

void EditorModel::apply(Project project) {
    current = std::move(project);
    store->schedule(current);
    if (!saveProblem.isEmpty()) {
        saveProblem.clear();
        Q_EMIT saveFailureChanged();
    }
    dropStaleSelection();
    Q_EMIT projectChanged();
    rebuild();
}

void EditorModel::beginGesture() {
    if (gesture) {
        ++gesture->depth;
        return;
    }
    gesture.emplace();
    gesture->key = fmt::format("gesture {}", ++gestures);
    gesture->begun = parts.now();
    gesture->before = current;
}

void EditorModel::endGesture() {
    if (!gesture || --gesture->depth > 0) return;
    // A hand that brought everything back has done nothing.
    if (gesture->edited && current == gesture->before) return cancelGesture();
    gesture.reset();
}

void EditorModel::cancelGesture() {
    if (!gesture) return;
    const Gesture given = std::move(*gesture);
    gesture.reset();
    if (!given.edited) return;
    history.drop(); // the step that the gesture made
    if (current != given.before)
        apply(given.before);
    else
        Q_EMIT projectChanged();
}

void EditorModel::undo() {
    if (gesture) return;
    if (auto project = history.undo(current)) apply(std::move(*project));
}

void EditorModel::redo() {
    if (gesture) return;
    if (auto project = history.redo(current)) apply(std::move(*project));
}

bool EditorModel::set(const QString& field, const QVariant& value) {
    Project project = current;
    if (!ProjectFields::write(project, field, value)) return false;
    update(std::move(project), field.toStdString());
    return true;
}

void EditorModel::setAll(const QVariantMap& fields) {
    Project project = current;
    for (auto field = fields.begin(); field != fields.end(); ++field)
        ProjectFields::write(project, field.key(), field.value());
    update(std::move(project));
}

double EditorModel::viewportAspect() const {
    return Planner::viewportAspect(current, opened.info);
}

// Plan and playing.

void EditorModel::rebuild(double delay) {
    if (isRendering) {
        renderAgain = true;
        return;
    }
    isRendering = true;
    Q_EMIT renderingChanged();
    startRebuild(delay);
}

void EditorModel::startRebuild(double delay) {
    renderAgain = false;
    rebuildTimer.start(static_cast<int>(std::lround(std::max(0.0, delay) * 1000)));
}

void EditorModel::makePlan() {
    currentPlan = Planner::plan(opened.info, opened.samples, opened.log, current, viewportAspect());
}

void EditorModel::rebuilt() {
    const double source = sourceTime();
    makePlan();
    // The moment of the recording stays under the playhead, wherever it now stands in the film.
    moveHead(currentPlan.outputTime(source));
    Q_EMIT planChanged();
    const auto finished = [this] {
        if (renderAgain) {
            startRebuild(0);
            return;
        }
        isRendering = false;
        Q_EMIT renderingChanged();
    };
    if (!shownPreview) return finished();
    shownPreview->update(current, currentPlan, finished);
    if (!isPlaying) shownPreview->seek(head);
}

void EditorModel::moveHead(double outputSeconds) {
    const double moved = std::clamp(outputSeconds, 0.0, outputDuration());
    if (!(moved == moved) || moved == head) return;
    head = moved;
    Q_EMIT playheadChanged();
}

void EditorModel::play() {
    if (!shownPreview) return;
    if (head >= outputDuration()) seek(0);
    shownPreview->play();
}

void EditorModel::pause() {
    if (shownPreview) shownPreview->pause();
}

void EditorModel::seek(double outputSeconds) {
    if (!std::isfinite(outputSeconds)) return;
    moveHead(outputSeconds);
    if (shownPreview) shownPreview->seek(head);
}

// Export.

std::string EditorModel::exportFileName(const std::string& name, OutputFormat format, double scale) {
    return fmt::format("{} – {}{}.mp4", name, label(format), scale > 1 ? " 4K" : "");
}

void EditorModel::exportFilm(const QString& format, double scale, bool watermark, double fps) {
    if (exporting.state() == ExportState::working || !parts.exportFilm) return;
    pause();
    ExportJob job;
    job.source = opened.video;
    job.options.project = current;
    if (!format.isEmpty()) job.options.project.format = format.toStdString();
    job.options.log = opened.log;
    job.options.scale = scale;
    job.options.fps = fps;
    job.options.watermark = watermark;
    job.options.camera = opened.camera();
    const OutputFormat shape = job.options.format();
    job.plan = Planner::plan(opened.info, opened.samples, opened.log, job.options.project,
                             Planner::viewportAspect(job.options.project, opened.info));
    job.destination = parts.films / exportFileName(opened.name(), shape, scale);
    exporting.start(std::move(job), parts.exportFilm);
}

void EditorModel::copyExported() {
    if (!exportedFile().empty()) parts.desktop->copyFile(exportedFile());
}

void EditorModel::revealExported() {
    if (!exportedFile().empty()) parts.desktop->reveal(exportedFile());
}

} // namespace OmbrelRecord
