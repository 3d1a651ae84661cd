#include "RecordCore/Model/Look.h"

#include "RecordCore/Model/Project.h"

#include <cstddef>

namespace RecordCore {

namespace {

std::optional<int> hexDigit(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return std::nullopt;
}

} // namespace

Look Look::of(const Project& project, const std::filesystem::path& folder) {
    Look look;
    look.backdrop = Backdrop::preset(project.backdrop).value_or(Backdrop::standard());
    if (project.wallpaper && !project.wallpaper->empty()) {
        const std::filesystem::path path(*project.wallpaper);
        look.wallpaper = path.is_relative() && !folder.empty() ? folder / path : path;
    }
    if (project.wallpaperPreset && !project.wallpaperPreset->empty())
        look.wallpaperPreset = project.wallpaperPreset;
    if (project.solidColor) look.solid = rgb(*project.solidColor);
    look.blur = project.backgroundBlur * 60;
    look.padding = project.padding;
    look.radius = project.radius * 0.02;
    look.shadow = project.shadow;
    return look;
}

std::optional<Rgb> Look::rgb(std::string_view text) {
    const bool hash = text.starts_with('#');
    if (hash) text.remove_prefix(1);
    const bool brief = hash && text.size() == 3;
    if (!brief && text.size() != 6) return std::nullopt;

    const std::size_t digits = brief ? 1 : 2;
    double components[3];
    for (std::size_t i = 0; i < 3; ++i) {
        const auto high = hexDigit(text[i * digits]);
        const auto low = hexDigit(text[i * digits + digits - 1]);
        if (!high || !low) return std::nullopt;
        components[i] = (*high * 16 + *low) / 255.0;
    }
    return Rgb{components[0], components[1], components[2]};
}

bool Look::isLight() const {
    if (solid) return 0.3 * solid->r + 0.59 * solid->g + 0.11 * solid->b > 0.6;
    if (wallpaper) return false;
    return backdrop.light;
}

} // namespace RecordCore
