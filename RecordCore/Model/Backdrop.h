#pragma once

#include <array>
#include <optional>
#include <string_view>

namespace RecordCore {

/// A colour in gamma-encoded sRGB, each component 0…1.
struct Rgb {
    double r = 0;
    double g = 0;
    double b = 0;
    bool operator==(const Rgb&) const = default;
};

/// A two-colour gradient with a glow.
struct Backdrop {
    Rgb top;
    Rgb bottom;
    Rgb glow;
    bool light = false; ///< dark text and marks go on it

    /// The preset names in menu order.
    static const std::array<std::string_view, 8>& names();
    /// The preset with that name, if there is one.
    static std::optional<Backdrop> preset(std::string_view name);
    /// The "night" preset.
    static Backdrop standard();

    bool operator==(const Backdrop&) const = default;
};

} // namespace RecordCore
