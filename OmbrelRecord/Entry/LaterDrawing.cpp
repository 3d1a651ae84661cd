// The engine's drawings and image files, until they are asked for: in the program these stand in for those of
// the module.

#include "OmbrelRecord/Entry/Module.h"
#include "OmbrelRecord/Entry/Modules/Modules.h"

namespace RecordCore {

namespace {

const OmbrelRecord::Modules::Drawing& drawing() {
    return OmbrelRecord::module<OmbrelRecord::Modules::Drawing>();
}

} // namespace

void Glyphs::paintPointer(Bitmap& bitmap, std::string_view style, double x, double y, double k) {
    drawing().paintPointer(bitmap, style, x, y, k);
}

void Glyphs::paintClick(Bitmap& bitmap, std::string_view effect, double x, double y, double k) {
    drawing().paintClick(bitmap, effect, x, y, k);
}

Bitmap Glyphs::captionLine(const std::vector<std::string>& words, int active, std::string_view style,
                           double size, double maxWidth) {
    return drawing().captionLine(words, active, style, size, maxWidth);
}

Bitmap Glyphs::pill(std::int64_t speed, std::string_view label, double scale) {
    return drawing().pill(speed, label, scale);
}

Bitmap Glyphs::clockBadge(std::string_view text, double scale) {
    return drawing().clockBadge(text, scale);
}

Bitmap Glyphs::textBlock(std::string_view title, std::string_view subtitle, double width, double titleSize,
                         const Ink& ink, double maxHeight, bool shadow) {
    return drawing().textBlock(title, subtitle, width, titleSize, ink, maxHeight, shadow);
}

Bitmap Glyphs::endCard(std::string_view title, std::string_view subtitle, double scale, double maxWidth) {
    return drawing().endCard(title, subtitle, scale, maxWidth);
}

Bitmap Glyphs::watermarkBadge(double scale) {
    return drawing().watermarkBadge(scale);
}

std::optional<RgbImage> WallpaperFile::load(const std::filesystem::path& file, int width, int height) {
    return drawing().loadWallpaper(file, width, height);
}

void writePng(const std::filesystem::path& file, const RgbImage& image) {
    drawing().writePng(file, image);
}

} // namespace RecordCore
