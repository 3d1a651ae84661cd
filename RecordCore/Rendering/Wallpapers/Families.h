#pragma once

#include "RecordCore/Rendering/Wallpapers/Stage.h"

#include <array>
#include <cstdint>
#include <memory>

namespace RecordCore {

/// What tells one wallpaper of a family from another. What the colours are for is up to the family.
struct WallpaperStyle {
    std::uint32_t seed = 1;
    std::array<std::uint32_t, 8> colors{}; ///< 0xRRGGBB
    bool light = false;                    ///< for families that draw light grounds in another way
};

/// The families: each makes the shader of a style for a stage.
namespace WallpaperFamilies {

using Make = std::unique_ptr<Shader> (*)(const Stage&, const WallpaperStyle&);

/// The rim of a great lit sphere and the rings around it.
std::unique_ptr<Shader> orbit(const Stage& stage, const WallpaperStyle& style);
/// Colours that melt into each other.
std::unique_ptr<Shader> mesh(const Stage& stage, const WallpaperStyle& style);
/// Cloth in long folds under a soft light.
std::unique_ptr<Shader> silk(const Stage& stage, const WallpaperStyle& style);
/// Curtains of light in a night sky.
std::unique_ptr<Shader> aurora(const Stage& stage, const WallpaperStyle& style);
/// A land in steps, as if cut from layers of paper.
std::unique_ptr<Shader> terraces(const Stage& stage, const WallpaperStyle& style);
/// Ridges behind ridges, the far ones in the haze of a low sun.
std::unique_ptr<Shader> dunes(const Stage& stage, const WallpaperStyle& style);
/// Discs of thick glass over a coloured ground.
std::unique_ptr<Shader> glass(const Stage& stage, const WallpaperStyle& style);
/// Ribbons of light whose colours part.
std::unique_ptr<Shader> prism(const Stage& stage, const WallpaperStyle& style);

} // namespace WallpaperFamilies
} // namespace RecordCore
