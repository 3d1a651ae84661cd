#pragma once

#include "RecordCore/Rendering/RgbImage.h"

#include <filesystem>
#include <optional>

namespace RecordCore {

/// Reads image files that users choose as a background: PNG, JPEG and WebP, turned upright as their EXIF
/// data says. Stateless; callable from any thread. Part of the drawing library, as Glyphs are.
namespace WallpaperFile {

/// The image, at least `width` × `height` where the file has that much and not vastly more; none when the
/// file is missing, not a regular file, of another kind, broken or absurdly large. Where an image is
/// transparent, black shows.
std::optional<RgbImage> load(const std::filesystem::path& file, int width, int height);

} // namespace WallpaperFile

} // namespace RecordCore
