#include "OmbrelRecord/EditorView/EditorSnapshots.h"

#include "OmbrelRecord/EditorModel/TimelineController.h"
#include "OmbrelRecord/EditorView/Swatch.h"

#include <QtQuick/QQuickItem>
#include <algorithm>

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
    return list;
}

} // namespace OmbrelRecord::EditorSnapshots
