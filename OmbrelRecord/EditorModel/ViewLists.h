#pragma once

#include "RecordCore/Model/Project.h"
#include "RecordCore/Planning/Plan.h"

#include <QtCore/QString>
#include <QtCore/QVariant>
#include <vector>

namespace OmbrelRecord {

/// The values of a project as views take them: maps and lists of plain numbers and texts. Times in seconds.
namespace ViewLists {

QString text(const RecordCore::Uuid& id);

/// {start, end}
QVariantMap range(double start, double end);
QVariantList ranges(const std::vector<RecordCore::TimeRange>& ranges);
/// {start, end, speed, reason}
QVariantList segments(const std::vector<RecordCore::SpeedSegment>& segments);
/// {id, start, end, speed, reason}
QVariantMap block(const RecordCore::SpeedBlock& block);
/// {id, start, end, x, y, zoom}
QVariantMap block(const RecordCore::ZoomBlock& block);
/// {text, start, end}
QVariantMap word(const RecordCore::CaptionWord& word);
/// Words in short lines, to be read and edited: {first, count, start}.
QVariantList captionRows(const std::vector<RecordCore::CaptionWord>& words);

} // namespace ViewLists
} // namespace OmbrelRecord
