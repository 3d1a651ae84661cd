#pragma once

#include "RecordCore/Model/Project.h"
#include "RecordCore/Planning/CaptionLayout.h"
#include "RecordCore/Planning/Plan.h"

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace OmbrelRecord {

/// Captions as files that players and video platforms read beside a film: SubRip (SRT) and WebVTT.
namespace CaptionFile {

enum class Format { srt, vtt };

/// The lines of a project's words, whether its captions are shown or not: in the film's time when a plan is
/// given, else in the recording's own time with nothing cut.
std::vector<RecordCore::CaptionLayout::Line> lines(const RecordCore::Project& project,
                                                   const RecordCore::Plan* plan);

/// The text of the file, UTF-8, line feeds. Times are rounded to the millisecond; a line that would end
/// before it starts, or start before its predecessor ended, is moved by as little as it takes. Lines without
/// any visible text are left out.
std::string text(const std::vector<RecordCore::CaptionLayout::Line>& lines, Format format);

/// Writes a file that others may read as they may any new file of the user's; what stood there is replaced
/// as a whole or not at all. Throws RecordingError that names the file and the cause.
void write(const std::string& text, const std::filesystem::path& file);

} // namespace CaptionFile
} // namespace OmbrelRecord
