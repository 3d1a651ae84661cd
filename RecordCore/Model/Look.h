#pragma once

#include "RecordCore/Model/Backdrop.h"

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace RecordCore {

struct Project;

/// The background and frame of the recording, in the units the compositor uses.
/// What is drawn is the first that applies: `wallpaper` when it loads, `solid`, `wallpaperPreset` when a
/// preset of that name exists, `backdrop`.
struct Look {
    Backdrop backdrop = Backdrop::standard();
    std::optional<std::filesystem::path> wallpaper; ///< an image file
    std::optional<std::string> wallpaperPreset;     ///< the name of a procedural wallpaper
    std::optional<Rgb> solid;
    double blur = 0;    ///< sigma of the background blur in base pixels; none up to 0.5
    double padding = 0; ///< share of the canvas kept free round the recording
    double radius = 0;  ///< corner radius as a share of the format's reference length
    double shadow = 0;  ///< strength of the window's shadow, 0…1

    /// The look of a project. A relative wallpaper path is taken from `folder`, the recording's folder.
    static Look of(const Project& project, const std::filesystem::path& folder = {});

    /// Parses "#rrggbb", "rrggbb" or "#rgb" (either letter case); nothing for any other text.
    static std::optional<Rgb> rgb(std::string_view text);

    /// Whether the look is light, so that dark marks belong on it. For a wallpaper this is false: its
    /// brightness is measured by the compositor.
    bool isLight() const;

    bool operator==(const Look&) const = default;
};

} // namespace RecordCore
