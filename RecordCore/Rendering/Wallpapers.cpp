#include "RecordCore/Rendering/Wallpapers.h"

#include "RecordCore/Rendering/Wallpapers/Families.h"

#include <algorithm>
#include <array>
#include <mutex>
#include <utility>

namespace RecordCore {

namespace {

struct Recipe {
    Wallpapers::Entry entry;
    WallpaperFamilies::Make make;
    WallpaperStyle style;
};

// clang-format off
constexpr std::array recipes{
    Recipe{{"orbit", "Orbit", "Orbit"}, WallpaperFamilies::orbit,
           {1, {0x05060F, 0x0E1230, 0x3A35B8, 0x7C6BFF, 0xF3E9FF, 0x8FA0FF, 0x8A2BB0, 0xFF6FB5}, false}},
    Recipe{{"orbit-ember", "Ember", "Orbit"}, WallpaperFamilies::orbit,
           {4, {0x0B0507, 0x22090F, 0xA8281E, 0xFF7A3D, 0xFFF0D8, 0xFFB48A, 0x7A1E5C, 0xFF5E7E}, false}},
    Recipe{{"orbit-lagoon", "Lagoon", "Orbit"}, WallpaperFamilies::orbit,
           {7, {0x03090D, 0x06202A, 0x0A6C86, 0x2BC9C0, 0xEBFFF4, 0x7FE3E0, 0x1B4FA8, 0x5AA7FF}, false}},
    Recipe{{"orbit-graphite", "Graphite", "Orbit"}, WallpaperFamilies::orbit,
           {6, {0x07080A, 0x15171C, 0x3A4048, 0x8A939E, 0xFFFFFF, 0xB8C0CA, 0x30343C, 0x7C8896}, false}},
    Recipe{{"orbit-dawn", "Dawn", "Orbit"}, WallpaperFamilies::orbit,
           {9, {0xF4EFEA, 0xFBF4EE, 0xF5B9A0, 0xC9A4E8, 0xFFFFFF, 0xFFFFFF, 0xB9C4F5, 0xA9D0F0}, true}},

    Recipe{{"mesh-dusk", "Dusk", "Mesh"}, WallpaperFamilies::mesh,
           {3, {0x2C1A58, 0x1B1D52, 0xF0608A, 0xFFAA62, 0x4E2AA8, 0x8A3CB8}, false}},
    Recipe{{"mesh-reef", "Reef", "Mesh"}, WallpaperFamilies::mesh,
           {5, {0x0B2C4A, 0x0A1F3F, 0x1FA6A8, 0x6FD6B8, 0x14508C, 0x1B6FB0}, false}},
    Recipe{{"mesh-ink", "Ink", "Mesh"}, WallpaperFamilies::mesh,
           {12, {0x0D0F16, 0x1E2436, 0x3C4C7C, 0x161B2C, 0x2C3352, 0x0A0C12}, false}},
    Recipe{{"mesh-petal", "Petal", "Mesh"}, WallpaperFamilies::mesh,
           {8, {0xF7E9EE, 0xFFD9CF, 0xF3C6E6, 0xCFD6FF, 0xFFF1DC, 0xFBE3EA}, true}},

    Recipe{{"silk-midnight", "Midnight", "Silk"}, WallpaperFamilies::silk,
           {2, {0x04050E, 0x171B4F, 0x5866E8, 0x43218C, 0xB9C4FF, 0}, false}},
    Recipe{{"silk-rose", "Rose", "Silk"}, WallpaperFamilies::silk,
           {6, {0x2A0A1E, 0x9C2F5C, 0xFFB3A8, 0xC0506A, 0xFFE3D6, 0}, false}},
    Recipe{{"silk-emerald", "Emerald", "Silk"}, WallpaperFamilies::silk,
           {13, {0x01100E, 0x0A4A40, 0x58D0A0, 0x0E5A6A, 0xD8FFE8, 0}, false}},
    Recipe{{"silk-pearl", "Pearl", "Silk"}, WallpaperFamilies::silk,
           {11, {0xA9AEC2, 0xDDDFEA, 0xFFFFFF, 0xE6DDE4, 0xFFFFFF, 0}, true}},

    Recipe{{"aurora-north", "North", "Aurora"}, WallpaperFamilies::aurora,
           {1, {0x040A1A, 0x071B2B, 0x35E6A4, 0x1B5FA8, 0x2BD4C8, 0x3A3FB0, 0x59F0B0, 0x5A2D9A}}},
    Recipe{{"aurora-violet", "Violet", "Aurora"}, WallpaperFamilies::aurora,
           {5, {0x0A0618, 0x150B2C, 0xC86BFF, 0x4A2BC0, 0xFF6FB0, 0x6A2BB0, 0x7F8CFF, 0x2B3FB0}}},
    Recipe{{"aurora-ice", "Ice", "Aurora"}, WallpaperFamilies::aurora,
           {21, {0x050B18, 0x0A1830, 0x5FB8F8, 0x2456B0, 0xA8E0FF, 0x3A4FC0, 0x7FE8F0, 0x1F6FA8}}},
    Recipe{{"aurora-solstice", "Solstice", "Aurora"}, WallpaperFamilies::aurora,
           {8, {0x14081A, 0x2A0F1E, 0xFFB05A, 0xC0305A, 0xFF6A6A, 0x7A2B8A, 0xFFD08A, 0xA03A5A}}},

    Recipe{{"terrace-lagoon", "Lagoon", "Terraces"}, WallpaperFamilies::terraces,
           {3, {0x06202E, 0x0C3E55, 0x166A7E, 0x3FA5A0, 0x9FD8B8, 0xC8FFF0}, false}},
    Recipe{{"terrace-plum", "Plum", "Terraces"}, WallpaperFamilies::terraces,
           {12, {0x1A0B36, 0x32155C, 0x5C2888, 0xA04AA0, 0xF08CAA, 0xFFC8E8}, false}},
    Recipe{{"terrace-clay", "Clay", "Terraces"}, WallpaperFamilies::terraces,
           {23, {0x4A1F1A, 0x8A3B2A, 0xC7684A, 0xE8A07A, 0xF6D8B8, 0xFFE8D0}, false}},
    Recipe{{"terrace-paper", "Paper", "Terraces"}, WallpaperFamilies::terraces,
           {9, {0xD9DCE4, 0xE4E6EC, 0xEDEEF2, 0xF4F4F6, 0xFBFBFB, 0xFFFFFF}, true}},

    Recipe{{"dunes-dusk", "Dusk", "Dunes"}, WallpaperFamilies::dunes,
           {2, {0x141A44, 0x4B2F7A, 0xD9607E, 0x8E4A7E, 0x4A2A66, 0x140F2C, 0xFF9A5C, 0xC8608A}}},
    Recipe{{"dunes-moon", "Moonlight", "Dunes"}, WallpaperFamilies::dunes,
           {11, {0x050916, 0x0D1A38, 0x27406E, 0x2A4068, 0x16243F, 0x060A14, 0x9FC4FF, 0x3A5A8A}}},
    Recipe{{"dunes-sahara", "Sahara", "Dunes"}, WallpaperFamilies::dunes,
           {4, {0x8FB4C8, 0xE6D6C0, 0xFBE6C4, 0xE8B88A, 0xC97F4E, 0x6E3420, 0xFFF3D6, 0xF5D3AA}}},
    Recipe{{"dunes-mist", "Mist", "Dunes"}, WallpaperFamilies::dunes,
           {7, {0xC9D6E2, 0xE2E8EC, 0xF6F1EA, 0xC6D2DA, 0x8FA5B4, 0x4A6274, 0xFFFBF0, 0xEDF1F2}}},

    Recipe{{"glass-iris", "Iris", "Glass"}, WallpaperFamilies::glass,
           {1, {0x4A22B8, 0x6A3BF0, 0xFF5FA8, 0x2A5CF0, 0xFF8A5C, 0xFFFFFF}, false}},
    Recipe{{"glass-deep", "Deep", "Glass"}, WallpaperFamilies::glass,
           {5, {0x06203E, 0x0A5AA0, 0x10C0A8, 0x062A66, 0x1668E0, 0xB8FFF4}, false}},
    Recipe{{"glass-ember", "Ember", "Glass"}, WallpaperFamilies::glass,
           {3, {0x8A123C, 0xD8264A, 0xFF8A3C, 0x7A0F5A, 0xFF5A3C, 0xFFE6C8}, false}},
    Recipe{{"glass-frost", "Frost", "Glass"}, WallpaperFamilies::glass,
           {8, {0xEAEEF6, 0xCFE0FF, 0xFFD9E6, 0xE6D9FF, 0xFFE9D0, 0xFFFFFF}, true}},

    Recipe{{"prism-night", "Night", "Prism"}, WallpaperFamilies::prism,
           {2, {0x05060F, 0x0B0D24, 0x1A22B0, 0x2F7CF0, 0x7FD8E8, 0xC8C0D8, 0xB0528C, 0x35104A}, false}},
    Recipe{{"prism-plasma", "Plasma", "Prism"}, WallpaperFamilies::prism,
           {9, {0x08030F, 0x160828, 0x2A2BD8, 0x7A3BFF, 0xD04BE8, 0xFF5A9A, 0xF0705A, 0x561040}, false}},
    Recipe{{"prism-daylight", "Daylight", "Prism"}, WallpaperFamilies::prism,
           {7, {0xF6F5F8, 0xECEEF4, 0xC4C8FF, 0xBFE6FF, 0xCDF5E2, 0xFFF0C8, 0xFFD3CB, 0xF3D6F2}, true}},
};
// clang-format on

const Recipe* recipe(std::string_view name) {
    const auto found =
        std::find_if(recipes.begin(), recipes.end(), [&](const Recipe& r) { return r.entry.name == name; });
    return found == recipes.end() ? nullptr : &*found;
}

} // namespace

std::span<const Wallpapers::Entry> Wallpapers::all() {
    static const auto entries = [] {
        std::array<Entry, recipes.size()> list;
        std::transform(recipes.begin(), recipes.end(), list.begin(), [](const Recipe& r) { return r.entry; });
        return list;
    }();
    return entries;
}

bool Wallpapers::exists(std::string_view name) {
    return recipe(name) != nullptr;
}

std::optional<RgbPlanes> Wallpapers::draw(std::string_view name, int width, int height,
                                          const std::function<void()>& check) {
    const Recipe* found = recipe(name);
    if (!found || width < 1 || height < 1) return std::nullopt;
    const Stage stage = Stage::of(width, height);
    const auto shader = found->make(stage, found->style);
    RgbPlanes planes(width, height);
    constexpr int rowsPerCheck = 128;
    for (int y = 0; y < height; ++y) {
        if (check && y % rowsPerCheck == 0) check();
        ShadeRow row;
        row.width = width;
        row.stepU = static_cast<float>(stage.pixel);
        row.firstU = static_cast<float>((0.5 - width / 2.0) * stage.pixel);
        row.v = static_cast<float>((y + 0.5 - height / 2.0) * stage.pixel);
        row.r = planes.red.row(y);
        row.g = planes.green.row(y);
        row.b = planes.blue.row(y);
        shader->shade(row);
        encode(row.r, width);
        encode(row.g, width);
        encode(row.b, width);
    }
    return planes;
}

std::shared_ptr<const RgbPlanes> Wallpapers::kept(std::string_view name, int width, int height,
                                                  const std::function<void()>& check) {
    struct Drawn {
        std::string_view name; ///< the table's
        std::shared_ptr<const RgbPlanes> planes;
    };
    static std::mutex mutex;
    static std::array<Drawn, 2> last; // guarded by `mutex`; the newer one first

    const Recipe* found = recipe(name);
    if (!found || static_cast<double>(width) * height > mostKept) return nullptr;
    const auto draws = [&](const Drawn& drawn) {
        return drawn.name == name && drawn.planes->width() == width && drawn.planes->height() == height;
    };
    {
        const std::scoped_lock lock(mutex);
        if (draws(last[1])) std::swap(last[0], last[1]);
        if (draws(last[0])) return last[0].planes;
    }
    // Drawn without the lock: two threads that miss together draw the same picture twice, which does no harm.
    auto drawn = draw(name, width, height, check);
    if (!drawn) return nullptr;
    auto planes = std::make_shared<const RgbPlanes>(std::move(*drawn));
    const std::scoped_lock lock(mutex);
    last[1] = std::move(last[0]);
    last[0] = {found->entry.name, planes};
    return planes;
}

bool Wallpapers::isLight(std::string_view name) {
    const auto small = draw(name, 160, 90);
    return small && small->luma(0, 0, 160, 90) > 0.62;
}

} // namespace RecordCore
