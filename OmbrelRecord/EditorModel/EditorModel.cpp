#include "OmbrelRecord/EditorModel/EditorModel.h"

#include "OmbrelRecord/AppModel/Diag.h"
#include "OmbrelRecord/EditorModel/ProjectEditing.h"
#include "OmbrelRecord/EditorModel/ProjectFields.h"
#include "OmbrelRecord/Transcriber/CaptionFile.h"
#include "OmbrelRecord/Transcriber/Language.h"
#include "RecordCore/Model/OutputFormat.h"
#include "RecordCore/Model/RecordingError.h"
#include "RecordCore/Planning/Planner.h"

#include <QtCore/QMetaObject>
#include <QtCore/QSettings>
#include <algorithm>
#include <cmath>
#include <fmt/format.h>

namespace OmbrelRecord {

using namespace RecordCore;

namespace {

const QString languageKey = QStringLiteral("captions.language");

QString text(const Uuid& id) {
    return QString::fromStdString(id.text());
}

template <typename Block>
std::optional<Uuid> idOf(const std::vector<Block>& blocks, const QString& id) {
    for (const Block& block : blocks)
        if (text(block.id) == id) return block.id;
    return std::nullopt;
}

template <typename Block>
bool holds(const std::vector<Block>& blocks, const Uuid& id) {
    return std::any_of(blocks.begin(), blocks.end(), [&](const Block& block) { return block.id == id; });
}

QVariantMap rangeMap(double start, double end) {
    return {{QStringLiteral("start"), start}, {QStringLiteral("end"), end}};
}

QVariantList rangeList(const std::vector<TimeRange>& ranges) {
    QVariantList list;
    for (const TimeRange& range : ranges)
        list.append(rangeMap(range.start, range.end));
    return list;
}

QString reasonName(SpeedSegment::Reason reason);

QVariantMap blockMap(const SpeedBlock& block) {
    QVariantMap map = rangeMap(block.start, block.end);
    map.insert(QStringLiteral("id"), text(block.id));
    map.insert(QStringLiteral("speed"), block.speed);
    map.insert(QStringLiteral("reason"), reasonName(block.reason));
    return map;
}

QVariantMap blockMap(const ZoomBlock& block) {
    QVariantMap map = rangeMap(block.start, block.end);
    map.insert(QStringLiteral("id"), text(block.id));
    map.insert(QStringLiteral("x"), block.x);
    map.insert(QStringLiteral("y"), block.y);
    map.insert(QStringLiteral("zoom"), block.zoom);
    return map;
}

QString reasonName(SpeedSegment::Reason reason) {
    const std::string_view word = RecordCore::name(reason);
    return QString::fromUtf8(word.data(), static_cast<qsizetype>(word.size()));
}

} // namespace

EditorModel::EditorModel(OpenedRecording recording, EditorParts editorParts, QObject* parent) :
    QObject(parent), opened(std::move(recording)), parts(std::move(editorParts)),
    store(std::make_unique<ProjectStore>(opened.files.project())) {
    std::string problem;
    if (auto loaded = store->load(&problem))
        current = std::move(*loaded);
    else if (!problem.empty())
        Diag::log("editor: project not read, starting afresh: " + problem);
    connect(store.get(), &ProjectStore::failed, this, [this](const QString& description) {
        Diag::log("editor: save failed " + description.toStdString());
        saveProblem = QStringLiteral("Your changes couldn't be saved: ") + description;
        Q_EMIT saveFailureChanged();
    });
    cameraThere = opened.camera().has_value();
    connect(this, &EditorModel::projectChanged, this, &EditorModel::selectedBlockChanged);
    connect(this, &EditorModel::selectionChanged, this, &EditorModel::selectedBlockChanged);
    rebuildTimer.setSingleShot(true);
    connect(&rebuildTimer, &QTimer::timeout, this, &EditorModel::rebuilt);
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

EditorModel::~EditorModel() {
    exportCancelled = true;
    captionsCancelled = true;
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
    if (exporting == ExportState::working || !parts.exportFilm) return;
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

    exporting = ExportState::working;
    exportShare = 0;
    exportProblem.clear();
    exportCancelled = false;
    Q_EMIT exportChanged();
    exportQueue.post([this, job = std::move(job)] {
        std::string failure;
        try {
            std::filesystem::create_directories(job.destination.parent_path());
            parts.exportFilm(
                job,
                [this](double share) {
                    QMetaObject::invokeMethod(this, [this, share] {
                        if (exporting != ExportState::working) return;
                        exportShare = std::clamp(share, 0.0, 1.0);
                        Q_EMIT exportChanged();
                    });
                },
                exportCancelled);
        } catch (const std::exception& error) {
            failure = *error.what() ? error.what() : "unknown error";
        }
        const bool cancelled = exportCancelled;
        QMetaObject::invokeMethod(this, [this, failure, cancelled, destination = job.destination] {
            if (failure.empty()) {
                exporting = ExportState::done;
                exportShare = 1;
                exported = destination;
                if (revealsExported) parts.desktop->reveal(exported);
            } else if (cancelled) {
                exporting = ExportState::idle;
                exportShare = 0;
            } else {
                exporting = ExportState::failed;
                exportProblem = QString::fromStdString(failure);
                Diag::log("editor: export failed " + failure);
            }
            Q_EMIT exportChanged();
        });
    });
}

void EditorModel::cancelExport() {
    exportCancelled = true;
    Q_EMIT exportChanged();
}

void EditorModel::copyExported() {
    if (!exported.empty()) parts.desktop->copyFile(exported);
}

void EditorModel::revealExported() {
    if (!exported.empty()) parts.desktop->reveal(exported);
}

// Captions.

void EditorModel::generateCaptions(const QString& language) {
    if (isCaptioning || !parts.recognizeWords) return;
    QSettings settings;
    if (!language.isEmpty()) settings.setValue(languageKey, language);
    const std::string chosen = settings.value(languageKey).toString().toStdString();
    isCaptioning = true;
    captioningShare = 0;
    captionsProblem.clear();
    captionsCancelled = false;
    Q_EMIT captioningChanged();
    captionQueue.post([this, chosen, video = opened.video] {
        std::vector<CaptionWord> words;
        QString failure;
        try {
            words = parts.recognizeWords(
                video, chosen,
                [this](double share) {
                    QMetaObject::invokeMethod(this, [this, share] {
                        captioningShare = std::clamp(share, 0.0, 1.0);
                        Q_EMIT captioningChanged();
                    });
                },
                captionsCancelled);
            if (words.empty())
                failure = QStringLiteral("No speech found. Record with Mic on to get captions.");
        } catch (const std::exception& error) {
            failure = QString::fromUtf8(error.what());
        }
        const bool cancelled = captionsCancelled;
        QMetaObject::invokeMethod(this, [this, words = std::move(words), failure, cancelled] {
            isCaptioning = false;
            if (!cancelled) captionsProblem = failure;
            Q_EMIT captioningChanged();
            if (cancelled || words.empty()) return;
            Project project = current;
            project.captions = words;
            project.showCaptions = true;
            update(std::move(project));
        });
    });
}

void EditorModel::cancelCaptions() {
    captionsCancelled = true;
}

QString EditorModel::captionsLanguage() const {
    const QString chosen = QSettings().value(languageKey).toString();
    return chosen.isEmpty() ? QString::fromStdString(Language::ofUser()) : chosen;
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
            .arg(QString::fromUtf8(error.what()));
    }
}

// For views.

QVariantMap EditorModel::projectFields() const {
    return ProjectFields::read(current);
}

QVariantMap EditorModel::defaultFields() {
    return ProjectFields::read(Project());
}

QVariantList EditorModel::segmentList() const {
    QVariantList list;
    for (const SpeedSegment& segment : currentPlan.segments) {
        QVariantMap map = rangeMap(segment.start, segment.end);
        map.insert(QStringLiteral("speed"), segment.speed);
        map.insert(QStringLiteral("reason"), reasonName(segment.reason));
        list.append(map);
    }
    return list;
}

QVariantList EditorModel::speedBlockList() const {
    QVariantList list;
    for (const SpeedBlock& block : speedBlocks())
        list.append(blockMap(block));
    return list;
}

QVariantList EditorModel::zoomBlockList() const {
    QVariantList list;
    for (const ZoomBlock& block : zoomBlocks())
        list.append(blockMap(block));
    return list;
}

QVariantMap EditorModel::selectedBlockMap() const {
    QVariantMap map{{QStringLiteral("kind"), QStringLiteral("none")}};
    if (const auto* speed = std::get_if<Selection::Speed>(&selected)) {
        for (const SpeedBlock& block : speedBlocks())
            if (block.id == speed->id) map = blockMap(block);
        map.insert(QStringLiteral("kind"), QStringLiteral("speed"));
    } else if (const auto* zoom = std::get_if<Selection::Zoom>(&selected)) {
        for (const ZoomBlock& block : zoomBlocks())
            if (block.id == zoom->id) map = blockMap(block);
        map.insert(QStringLiteral("kind"), QStringLiteral("zoom"));
    }
    return map;
}

QVariantMap EditorModel::captionWord(int index) const {
    if (index < 0 || index >= captionCount()) return {};
    const CaptionWord& word = (*current.captions)[static_cast<std::size_t>(index)];
    QVariantMap map = rangeMap(word.start, word.end);
    map.insert(QStringLiteral("text"), QString::fromStdString(word.text));
    return map;
}

QVariantList EditorModel::captionRows() const {
    constexpr int longest = 6;    // words
    constexpr double pause = 0.7; // seconds
    QVariantList list;
    int first = 0;
    for (int i = 1; i <= captionCount(); ++i) {
        const std::vector<CaptionWord>& words = *current.captions;
        const auto at = static_cast<std::size_t>(i);
        const char last = words[at - 1].text.empty() ? ' ' : words[at - 1].text.back();
        if (i < captionCount() && i - first < longest && words[at].start - words[at - 1].end <= pause &&
            last != '.' && last != '!' && last != '?')
            continue;
        list.append(QVariantMap{{QStringLiteral("first"), first},
                                {QStringLiteral("count"), i - first},
                                {QStringLiteral("start"), words[static_cast<std::size_t>(first)].start}});
        first = i;
    }
    return list;
}

QVariantList EditorModel::pieceList() const {
    return rangeList(current.pieces(duration()));
}

QVariantList EditorModel::interiorCutList() const {
    return rangeList(interiorCuts());
}

QVariantList EditorModel::captionList() const {
    QVariantList list;
    if (!current.captions) return list;
    for (const CaptionWord& word : *current.captions) {
        QVariantMap map = rangeMap(word.start, word.end);
        map.insert(QStringLiteral("text"), QString::fromStdString(word.text));
        list.append(map);
    }
    return list;
}

QVariantMap EditorModel::selectionMap() const {
    const QString kind = QStringLiteral("kind");
    if (const auto* range = std::get_if<TimeRange>(&selected)) {
        QVariantMap map = rangeMap(range->start, range->end);
        map.insert(kind, QStringLiteral("range"));
        return map;
    }
    if (const auto* speed = std::get_if<Selection::Speed>(&selected))
        return {{kind, QStringLiteral("speed")}, {QStringLiteral("id"), text(speed->id)}};
    if (const auto* zoom = std::get_if<Selection::Zoom>(&selected))
        return {{kind, QStringLiteral("zoom")}, {QStringLiteral("id"), text(zoom->id)}};
    return {{kind, QStringLiteral("none")}};
}

} // namespace OmbrelRecord
