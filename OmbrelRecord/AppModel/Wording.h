#pragma once

#include <QtCore/QString>
#include <string_view>

namespace OmbrelRecord {

/// What the engine says, in the language of the windows. Its messages are English, whatever the language, and
/// made of parts: a file, what is the matter with it, the cause. The parts that are known are translated, the
/// others stay. In English nothing changes. Main thread.
namespace Wording {

QString translated(const QString& message);
QString translated(std::string_view message);

} // namespace Wording
} // namespace OmbrelRecord
