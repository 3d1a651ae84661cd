#pragma once

#include <QtCore/QJsonObject>

namespace OmbrelRecord {

/// What the application's windows show, as assistive programs are told it. Main thread.
namespace ItemTree {

/// {"windows": [{title, x, y, width, height, active}],
///  "items": [{window, type, role, name, description, object, x, y, width, height, enabled, focused, checked,
///             value}]}, in the order of drawing. Of each item only what is not covered by its parents' edges
/// counts; what has no area left, and what nobody could name, is left out. Positions are points of the
/// desktop.
QJsonObject shown();

} // namespace ItemTree
} // namespace OmbrelRecord
