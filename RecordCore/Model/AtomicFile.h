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

/// The whole contents of a plain file. Throws RecordingError that names the file and the cause, also for a
/// pipe or device and for a file larger than `limit` bytes: half a day of input takes 200 MB, and parsed JSON
/// takes several times its size.
std::string readFile(const std::filesystem::path& file, std::size_t limit = std::size_t{1} << 28);

/// Gives a file that cannot be read a second name ("project (unreadable).json", numbered when taken) and
/// returns it. The first name stays until something new takes its place, so that there is never none.
/// Throws RecordingError that names the file and the cause.
std::filesystem::path keepBeside(const std::filesystem::path& file);

} // namespace RecordCore
