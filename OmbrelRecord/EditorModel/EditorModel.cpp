#include "OmbrelRecord/EditorModel/EditorModel.h"

#include "OmbrelRecord/AppModel/Diag.h"
#include "OmbrelRecord/AppModel/Wording.h"
#include "OmbrelRecord/EditorModel/ProjectEditing.h"
#include "OmbrelRecord/EditorModel/ProjectFields.h"
#include "OmbrelRecord/EditorModel/ViewLists.h"
#include "OmbrelRecord/Transcriber/CaptionFile.h"
#include "RecordCore/Model/OutputFormat.h"
#include "RecordCore/Model/RecordingError.h"
#include "RecordCore/Planning/Planner.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>

namespace OmbrelRecord {

using namespace RecordCore;

namespace {

template <typename Block>
std::optional<Uuid> idOf(const std::vector<Block>& blocks, const QString& id) {
    for (const Block& block : blocks)
        if (ViewLists::text(block.id) == id) return block.id;
    return std::nullopt;
}

template <typename Block>
bool holds(const std::vector<Block>& blocks, const Uuid& id) {
    return std::any_of(blocks.begin(), blocks.end(), [&](const Block& block) { return block.id == id; });
}

} // namespace

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

const std::vector<SpeedBlock>& EditorModel::speedBlocks() const {
    static const std::vector<SpeedBlock> none;
    if (current.speedBlocks) return *current.speedBlocks;
    if (!current.skipWaiting) return none;
    // Only these decide what the automatic blocks are; with them unchanged the blocks keep their ids.
    Project wanted;
    wanted.crop = current.cropInForce();
    wanted.maxSpeed = current.maxSpeed;
    if (autoSpeedCache.made != wanted) {
        autoSpeedCache.blocks = Planner::speedBlocks(opened.info, opened.samples, opened.log, wanted);
        autoSpeedCache.made = std::move(wanted);
    }
    return autoSpeedCache.blocks;
}

const std::vector<ZoomBlock>& EditorModel::zoomBlocks() const {
    static const std::vector<ZoomBlock> none;
    if (current.zoomBlocks) return *current.zoomBlocks;
    if (!current.followAction) return none;
    Project wanted;
    wanted.crop = current.cropInForce();
    wanted.maxZoom = current.maxZoom;
    wanted.format = current.format; // these two: the shape of what the camera shows
    wanted.padding = current.padding;
    if (autoZoomCache.made != wanted) {
        autoZoomCache.blocks =
            Planner::zoomBlocks(opened.info, opened.samples, opened.log, wanted, viewportAspect());
        autoZoomCache.made = std::move(wanted);
    }
    return autoZoomCache.blocks;
}

void EditorModel::editSpeed(const Uuid& id, const std::function<void(SpeedBlock&)>& change) {
    Project project = current;
    if (ProjectEditing::editSpeed(project, speedBlocks(), id, change, duration()))
        update(std::move(project), "speed " + id.text());
}

void EditorModel::editZoom(const Uuid& id, const std::function<void(ZoomBlock&)>& change) {
    Project project = current;
    if (ProjectEditing::editZoom(project, zoomBlocks(), id, change, duration()))
        update(std::move(project), "zoom " + id.text());
}

void EditorModel::setSpeed(const TimeRange& range, double speed) {
    Project project = current;
    const auto made = ProjectEditing::setSpeed(project, speedBlocks(), range, speed);
    update(std::move(project));
    if (made) select(Selection::Speed{*made});
}

void EditorModel::addZoom(const TimeRange& range) {
    const Project::Cropped seen = current.cropped(opened.info, opened.samples, opened.log);
    const ZoomBlock block =
        ProjectEditing::framed(range, currentPlan, seen.samples, seen.log, current.maxZoom);
    Project project = current;
    if (!ProjectEditing::addZoom(project, zoomBlocks(), block)) return;
    update(std::move(project));
    select(Selection::Zoom{block.id});
}

void EditorModel::deleteSpeed(const Uuid& id) {
    Project project = current;
    if (ProjectEditing::deleteSpeed(project, speedBlocks(), id)) update(std::move(project));
}

void EditorModel::deleteZoom(const Uuid& id) {
    Project project = current;
    if (ProjectEditing::deleteZoom(project, zoomBlocks(), id)) update(std::move(project));
}

void EditorModel::resetSpeedBlocks() {
    Project project = current;
    project.speedBlocks.reset();
    update(std::move(project));
}

void EditorModel::resetZoomBlocks() {
    Project project = current;
    project.zoomBlocks.reset();
    update(std::move(project));
}

void EditorModel::cut(const TimeRange& range) {
    Project project = current;
    ProjectEditing::cut(project, range);
    update(std::move(project));
}

void EditorModel::restoreCuts(const TimeRange& range) {
    Project project = current;
    ProjectEditing::restoreCuts(project, range);
    update(std::move(project));
}

std::vector<TimeRange> EditorModel::interiorCuts() const {
    return ProjectEditing::interiorCuts(current, duration());
}

int EditorModel::skippedCount() const {
    return ProjectEditing::skippedCount(currentPlan);
}

void EditorModel::split() {
    Project project = current;
    if (ProjectEditing::split(project, sourceTime(), duration())) update(std::move(project));
}

void EditorModel::removeSplit(double time) {
    Project project = current;
    const auto nearest =
        std::min_element(project.splits.begin(), project.splits.end(),
                         [time](double a, double b) { return std::abs(a - time) < std::abs(b - time); });
    if (nearest == project.splits.end()) return;
    project.splits.erase(nearest);
    update(std::move(project));
}

void EditorModel::markStart() {
    Project project = current;
    ProjectEditing::markStart(project, sourceTime(), duration());
    update(std::move(project));
}

void EditorModel::markEnd() {
    Project project = current;
    ProjectEditing::markEnd(project, sourceTime(), duration());
    update(std::move(project));
}

void EditorModel::deleteSelection() {
    const Selection::Value what = selected;
    if (const auto* range = std::get_if<TimeRange>(&what)) {
        cut(*range);
        select(Selection::None{});
    } else if (const auto* speed = std::get_if<Selection::Speed>(&what)) {
        deleteSpeed(speed->id);
    } else if (const auto* zoom = std::get_if<Selection::Zoom>(&what)) {
        deleteZoom(zoom->id);
    }
}

void EditorModel::editSpeedBlock(const QString& id, double start, double end, double speed) {
    const auto block = idOf(speedBlocks(), id);
    if (!block || !std::isfinite(start) || !std::isfinite(end) || !std::isfinite(speed) || !(speed > 0))
        return;
    editSpeed(*block, [&](SpeedBlock& changed) {
        changed.start = start;
        changed.end = end;
        if (changed.speed != speed) changed.reason = SpeedSegment::Reason::manual;
        changed.speed = speed;
    });
}

void EditorModel::editZoomBlock(const QString& id, const QVariantMap& changes) {
    const auto block = idOf(zoomBlocks(), id);
    if (!block) return;
    const auto take = [&changes](const char* key, double& out) {
        bool number = false;
        const double value = changes.value(QString::fromLatin1(key)).toDouble(&number);
        if (number && std::isfinite(value)) out = value;
    };
    editZoom(*block, [&](ZoomBlock& changed) {
        take("start", changed.start);
        take("end", changed.end);
        take("x", changed.x);
        take("y", changed.y);
        take("zoom", changed.zoom);
    });
}

void EditorModel::setSpeed(double start, double end, double speed) {
    setSpeed(TimeRange::between(start, end), speed);
}

void EditorModel::addZoom(double start, double end) {
    addZoom(TimeRange::between(start, end));
}

void EditorModel::cut(double start, double end) {
    cut(TimeRange::between(start, end));
}

void EditorModel::restoreCuts(double start, double end) {
    restoreCuts(TimeRange::between(start, end));
}

void EditorModel::editCaption(int index, const QString& words) {
    if (!current.captions || index < 0 || static_cast<std::size_t>(index) >= current.captions->size()) return;
    Project project = current;
    const QString text = words.simplified();
    if (text.isEmpty()) {
        project.captions->erase(project.captions->begin() + index);
        update(std::move(project));
        return;
    }
    (*project.captions)[static_cast<std::size_t>(index)].text = text.toStdString();
    update(std::move(project), fmt::format("caption {}", index));
}

void EditorModel::removeCaptions() {
    Project project = current;
    project.captions.reset();
    project.showCaptions = false;
    update(std::move(project));
}

void EditorModel::select(const Selection::Value& selection) {
    if (selection == selected) return;
    selected = selection;
    Q_EMIT selectionChanged();
}

void EditorModel::selectRange(double start, double end) {
    select(TimeRange::between(std::clamp(start, 0.0, duration()), std::clamp(end, 0.0, duration())));
}

void EditorModel::selectSpeed(const QString& id) {
    if (const auto block = idOf(speedBlocks(), id)) select(Selection::Speed{*block});
}

void EditorModel::selectZoom(const QString& id) {
    if (const auto block = idOf(zoomBlocks(), id)) select(Selection::Zoom{*block});
}

void EditorModel::selectNothing() {
    select(Selection::None{});
}

void EditorModel::dropStaleSelection() {
    const auto* speed = std::get_if<Selection::Speed>(&selected);
    const auto* zoom = std::get_if<Selection::Zoom>(&selected);
    if ((speed && !holds(speedBlocks(), speed->id)) || (zoom && !holds(zoomBlocks(), zoom->id)))
        select(Selection::None{});
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

// Captions.

void EditorModel::generateCaptions(const QString& language) {
    if (!parts.recognizeWords) return;
    CaptionWork::chooseLanguage(language);
    listening.start(
        [listen = parts.recognizeWords, video = opened.video, chosen = captionsLanguage().toStdString()](
            const auto& progress, const auto& cancel) { return listen(video, chosen, progress, cancel); },
        [this](std::vector<CaptionWord> words) {
            Project project = current;
            project.captions = std::move(words);
            project.showCaptions = true;
            update(std::move(project));
        });
}

void EditorModel::retimeCaptions(const QString& language) {
    if (!parts.alignWords || words().empty()) return;
    CaptionWork::chooseLanguage(language);
    listening.start(
        [listen = parts.alignWords, video = opened.video, given = words(),
         chosen = captionsLanguage().toStdString()](const auto& progress, const auto& cancel) {
            return listen(video, given, chosen, progress, cancel);
        },
        [this, given = words()](std::vector<CaptionWord> timed) {
            // Words corrected meanwhile keep what was typed; when some have come or gone, the times of these
            // are not those of the others.
            if (timed.size() != words().size() || given.size() != words().size()) return;
            Project project = current;
            for (std::size_t i = 0; i < timed.size(); ++i) {
                (*project.captions)[i].start = timed[i].start;
                (*project.captions)[i].end = timed[i].end;
            }
            update(std::move(project));
        });
}

QString EditorModel::saveCaptions(const QUrl& file) const {
    const QString path = file.toLocalFile();
    const auto format = path.endsWith(QLatin1String(".vtt"), Qt::CaseInsensitive) ? CaptionFile::Format::vtt
                                                                                  : CaptionFile::Format::srt;
    try {
        CaptionFile::write(CaptionFile::text(CaptionFile::lines(current, &currentPlan), format),
                           path.toStdString());
        return {};
    } catch (const std::exception& error) {
        Diag::log(std::string("editor: captions not saved ") + error.what());
        return tr("The captions couldn't be saved there: %1. Choose another folder.")
            .arg(Wording::translated(std::string_view(error.what())));
    }
}

// For views.

QVariantMap EditorModel::projectFields() const {
    return ProjectFields::read(current);
}

QVariantMap EditorModel::defaultFields() {
    return ProjectFields::read(Project());
}

const std::vector<CaptionWord>& EditorModel::words() const {
    static const std::vector<CaptionWord> none;
    return current.captions ? *current.captions : none;
}

QVariantList EditorModel::segmentList() const {
    return ViewLists::segments(currentPlan.segments);
}

QVariantList EditorModel::speedBlockList() const {
    QVariantList list;
    for (const SpeedBlock& block : speedBlocks())
        list.append(ViewLists::block(block));
    return list;
}

QVariantList EditorModel::zoomBlockList() const {
    QVariantList list;
    for (const ZoomBlock& block : zoomBlocks())
        list.append(ViewLists::block(block));
    return list;
}

QVariantMap EditorModel::selectedBlockMap() const {
    QVariantMap map{{QStringLiteral("kind"), QStringLiteral("none")}};
    if (const auto* speed = std::get_if<Selection::Speed>(&selected)) {
        for (const SpeedBlock& block : speedBlocks())
            if (block.id == speed->id) map = ViewLists::block(block);
        map.insert(QStringLiteral("kind"), QStringLiteral("speed"));
    } else if (const auto* zoom = std::get_if<Selection::Zoom>(&selected)) {
        for (const ZoomBlock& block : zoomBlocks())
            if (block.id == zoom->id) map = ViewLists::block(block);
        map.insert(QStringLiteral("kind"), QStringLiteral("zoom"));
    }
    return map;
}

QVariantMap EditorModel::captionWord(int index) const {
    return index < 0 || index >= captionCount() ? QVariantMap()
                                                : ViewLists::word(words()[static_cast<std::size_t>(index)]);
}

QVariantList EditorModel::captionRows() const {
    return ViewLists::captionRows(words());
}

QVariantList EditorModel::pieceList() const {
    return ViewLists::ranges(current.pieces(duration()));
}

QVariantList EditorModel::interiorCutList() const {
    return ViewLists::ranges(interiorCuts());
}

QVariantList EditorModel::captionList() const {
    QVariantList list;
    for (const CaptionWord& word : words())
        list.append(ViewLists::word(word));
    return list;
}

QVariantMap EditorModel::selectionMap() const {
    const QString kind = QStringLiteral("kind");
    if (const auto* range = std::get_if<TimeRange>(&selected)) {
        QVariantMap map = ViewLists::range(range->start, range->end);
        map.insert(kind, QStringLiteral("range"));
        return map;
    }
    if (const auto* speed = std::get_if<Selection::Speed>(&selected))
        return {{kind, QStringLiteral("speed")}, {QStringLiteral("id"), ViewLists::text(speed->id)}};
    if (const auto* zoom = std::get_if<Selection::Zoom>(&selected))
        return {{kind, QStringLiteral("zoom")}, {QStringLiteral("id"), ViewLists::text(zoom->id)}};
    return {{kind, QStringLiteral("none")}};
}

} // namespace OmbrelRecord
