#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace RecordCore {

/// Writes `bytes` to `file` so that a reader, or a crash at any moment, sees either the old contents or the
/// new: a temporary file beside it is written, flushed to the disk and moved into place. The file is
/// readable by its owner only. Throws RecordingError that names the file and the cause; the old file is
/// then untouched and the temporary one removed.
void writeFileAtomically(const std::filesystem::path& file, std::string_view bytes);

/// The whole contents of a file. Throws RecordingError that names the file and the cause, also for a file
/// larger than `limit` bytes (side files are small; a huge one is not ours).
std::string readFile(const std::filesystem::path& file, std::size_t limit = std::size_t{1} << 30);

} // namespace RecordCore
