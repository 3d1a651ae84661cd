#include "OmbrelRecord/EditorModel/EditorModel.h"

#include "OmbrelRecord/EditorModel/ProjectFields.h"
#include "OmbrelRecord/EditorModel/ViewLists.h"

namespace OmbrelRecord {

using namespace RecordCore;

QVariantMap EditorModel::projectFields() const {
    return ProjectFields::read(current);
}

QVariantMap EditorModel::defaultFields() {
    return ProjectFields::read(Project());
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
