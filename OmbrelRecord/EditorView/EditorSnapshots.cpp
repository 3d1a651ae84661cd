#include "OmbrelRecord/EditorView/EditorSnapshots.h"

#include "OmbrelRecord/EditorModel/ExportQueue.h"
#include "OmbrelRecord/EditorModel/TimelineController.h"
#include "OmbrelRecord/EditorView/Swatch.h"
#include "RecordCore/Model/RecordingError.h"

#include <QtCore/QCoreApplication>
#include <QtQuick/QQuickItem>
#include <algorithm>
#include <chrono>
#include <thread>
#include <tuple>

namespace OmbrelRecord::EditorSnapshots {

using namespace RecordCore;

namespace {

constexpr QSize window(1320, 788);

TimelineController* handOf(QQuickItem& view) {
    auto* timeline = view.property("timeline").value<QQuickItem*>();
    return timeline ? timeline->property("hand").value<TimelineController*>() : nullptr;
}

void openSheet(QQuickItem& view, const char* sheet) {
    if (auto* popup = view.property(sheet).value<QObject*>()) QMetaObject::invokeMethod(popup, "open");
}

ExportQueue* queueOf(QQuickItem& view) {
    auto* sheet = view.property("exportSheet").value<QObject*>();
    return sheet ? sheet->property("queue").value<ExportQueue*>() : nullptr;
}

/// What the picture before left running is over.
void endExport(EditorModel& editor) {
    editor.cancelExport();
    while (editor.exportState() == EditorModel::ExportState::working)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 10);
}

} // namespace

std::vector<Snapshot::View> views(EditorModel& model) {
    std::vector<Snapshot::View> list;
    const Project given = model.project();
    const double length = model.duration();
    EditorModel* editor = &model;

    const auto add = [&](const QString& name, const Project& project, const QString& panel, double at,
                         std::function<void(QQuickItem&)> arrange = {}) {
        Snapshot::View view;
        view.name = name;
        view.size = window;
        view.type = QStringLiteral("EditorView");
        view.properties = {{QStringLiteral("editor"), QVariant::fromValue(editor)},
                           {QStringLiteral("panel"), panel}};
        view.arrange = [editor, project, at, arrange](QQuickItem& item) {
            endExport(*editor);
            editor->selectNothing();
            editor->update(project);
            editor->seek(editor->outputTime(at));
            if (arrange) arrange(item);
        };
        view.ready = [editor](QQuickItem& item) {
            return !editor->rendering() && !item.property("busy").toBool() && Swatch::settled();
        };
        list.push_back(std::move(view));
    };

    add(QStringLiteral("timeline"), given, QStringLiteral("background"), length * 0.4);

    Project cuts = given;
    cuts.cuts = {{length * 0.2, length * 0.27}, {length * 0.62, length * 0.74}};
    cuts.trimStart = length * 0.03;
    cuts.trimEnd = length * 0.95;
    add(QStringLiteral("timeline-cuts"), cuts, QStringLiteral("frame"), length * 0.35,
        [editor, length](QQuickItem&) { editor->selectRange(length * 0.4, length * 0.53); });

    Project piece = given;
    piece.splits = {length * 0.36};
    piece.zoomBlocks = {ZoomBlock::make(length * 0.3, length * 0.345, 0.3, 0.4, 1.6),
                        ZoomBlock::make(length * 0.365, length * 0.42, 0.6, 0.5, 2.1)};
    add(QStringLiteral("timeline-piece"), piece, QStringLiteral("zoom"), length * 0.33,
        [editor, length](QQuickItem& item) {
            if (!editor->zoomBlocks().empty())
                editor->select(EditorModel::Selection::Zoom{editor->zoomBlocks().back().id});
            if (auto* hand = handOf(item)) {
                hand->magnify(4.5, hand->scale().x(length * 0.38));
            }
        });

    for (const char* panel : {"looks", "format", "background", "frame", "pointer", "zoom", "speed", "camera",
                              "captions", "cards", "crop"}) {
        Project project = given;
        const QString name = QString::fromLatin1(panel);
        if (name == QLatin1String("captions")) {
            project.captions.emplace();
            double at = 1;
            for (const char* word : {"Here", "is", "how", "the", "waiting", "goes.", "The", "film", "follows",
                                     "what", "you", "do."}) {
                project.captions->push_back({word, at, at + 0.3});
                at += 0.35;
            }
            project.showCaptions = true;
        }
        if (name == QLatin1String("cards")) {
            project.showTitle = true;
            project.title = "A short tour";
            project.subtitle = "of what is new";
        }
        add(QStringLiteral("panel-") + name, project, name,
            name == QLatin1String("captions") ? length * 0.06
            : name == QLatin1String("cards")  ? 0
                                              : length * 0.3,
            [editor, name](QQuickItem&) {
                if (name == QLatin1String("zoom") && !editor->zoomBlocks().empty())
                    editor->select(EditorModel::Selection::Zoom{editor->zoomBlocks().front().id});
                if (name == QLatin1String("speed") && !editor->speedBlocks().empty())
                    editor->select(EditorModel::Selection::Speed{editor->speedBlocks().front().id});
            });
    }
    add(QStringLiteral("aim-zoom"), piece, QStringLiteral("zoom"), length * 0.38, [editor](QQuickItem& item) {
        editor->select(EditorModel::Selection::Zoom{editor->zoomBlocks().back().id});
        item.setProperty("aim", QStringLiteral("zoom"));
    });
    Project cropped = given;
    cropped.crop = NRect{0.12, 0.1, 0.7, 0.74};
    add(QStringLiteral("aim-crop"), cropped, QStringLiteral("crop"), length * 0.38,
        [](QQuickItem& item) { item.setProperty("aim", QStringLiteral("crop")); });
    add(QStringLiteral("shortcuts"), given, QStringLiteral("frame"), length * 0.3,
        [](QQuickItem& item) { openSheet(item, "shortcutsSheet"); });
    add(QStringLiteral("export"), given, QStringLiteral("frame"), length * 0.3,
        [](QQuickItem& item) { openSheet(item, "exportSheet"); });
    // Its sheet in the other states.
    for (const auto& [name, rate, state] : {std::tuple("export-working", 60, ExportQueue::State::Working),
                                            std::tuple("export-done", 30, ExportQueue::State::Done),
                                            std::tuple("export-failed", 24, ExportQueue::State::Failed)}) {
        add(QLatin1String(name), given, QStringLiteral("frame"), length * 0.3,
            [rate = rate](QQuickItem& item) {
                openSheet(item, "exportSheet");
                if (ExportQueue* queue = queueOf(item))
                    queue->start({QStringLiteral("16:9"), QStringLiteral("9:16")}, 1, rate);
            });
        list.back().ready = [ready = list.back().ready, state = state](QQuickItem& item) {
            const ExportQueue* queue = queueOf(item);
            return ready(item) && queue && queue->state() == state &&
                   (state != ExportQueue::State::Working || queue->progress() > 0);
        };
    }
    return list;
}

void exportStill(const ExportJob& job, const std::function<void(double)>& progress,
                 const std::atomic<bool>& cancel) {
    using namespace std::chrono_literals;
    if (job.options.fps == 30) return;
    if (job.options.fps == 24) throw RecordingError(job.destination.string() + ": No space left on device");
    progress(0.42);
    while (!cancel)
        std::this_thread::sleep_for(10ms);
    throw RecordingError("cancelled");
}

} // namespace OmbrelRecord::EditorSnapshots
