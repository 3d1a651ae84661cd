#pragma once

#include <QtCore/QString>
#include <filesystem>

namespace OmbrelRecord {

/// A name for what was made of a file, to be kept in a cache: another file of the same name, or one that was
/// rewritten, has another key. Any thread.
QString fileKey(const std::filesystem::path& file);

} // namespace OmbrelRecord
