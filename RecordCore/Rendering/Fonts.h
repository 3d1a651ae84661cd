#pragma once

#include <filesystem>

namespace RecordCore {

/// Where the drawn texts get their typeface from. The application carries Plus Jakarta Sans; what it lacks
/// (other scripts, emoji) comes from the fonts of the system. Callable from any thread; a change takes
/// effect on texts drawn afterwards. Only there where the drawing library is linked in.
namespace Fonts {

/// The folder of the carried fonts. By default it is looked for beside the executable
/// (../share/ombrel-record/fonts), in the data folders of the system and in the source tree above it.
void setFolder(const std::filesystem::path& folder);
std::filesystem::path folder();

/// Uses the carried fonts only, so that pictures are the same on every machine (for tests).
void useOnlyCarriedFonts(bool only);

} // namespace Fonts

} // namespace RecordCore
