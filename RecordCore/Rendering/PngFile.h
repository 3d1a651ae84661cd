#pragma once

#include "RecordCore/Rendering/RgbImage.h"

#include <filesystem>

namespace RecordCore {

/// Writes a PNG so that a reader sees the old file or the whole new one. Throws RecordingError that names
/// the file and the cause. Part of the drawing library, as Glyphs are.
void writePng(const std::filesystem::path& file, const RgbImage& image);

} // namespace RecordCore
