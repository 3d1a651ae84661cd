#include "RecordCore/Model/Backdrop.h"

#include <cstddef>

namespace RecordCore {

namespace {

constexpr std::array<std::string_view, 8> presetNames{"night",   "ember", "aurora", "graphite",
                                                      "sunrise", "ocean", "paper",  "snow"};

constexpr std::array<Backdrop, 8> presets{{
    {{0.05, 0.06, 0.13}, {0.13, 0.08, 0.24}, {0.36, 0.45, 1.0}, false},
    {{0.12, 0.06, 0.10}, {0.30, 0.12, 0.22}, {1.0, 0.62, 0.45}, false},
    {{0.03, 0.10, 0.12}, {0.07, 0.07, 0.20}, {0.30, 0.95, 0.75}, false},
    {{0.09, 0.09, 0.10}, {0.16, 0.16, 0.18}, {0.75, 0.78, 0.85}, false},
    {{0.98, 0.55, 0.38}, {0.62, 0.28, 0.72}, {1.0, 0.85, 0.55}, false},
    {{0.10, 0.45, 0.85}, {0.05, 0.15, 0.45}, {0.45, 0.95, 1.0}, false},
    {{0.95, 0.94, 0.92}, {0.86, 0.85, 0.83}, {1.0, 1.0, 1.0}, true},
    {{0.90, 0.93, 1.0}, {0.80, 0.84, 0.96}, {1.0, 1.0, 1.0}, true},
}};

} // namespace

const std::array<std::string_view, 8>& Backdrop::names() {
    return presetNames;
}

std::optional<Backdrop> Backdrop::preset(std::string_view name) {
    for (std::size_t i = 0; i < presetNames.size(); ++i)
        if (presetNames[i] == name) return presets[i];
    return std::nullopt;
}

Backdrop Backdrop::standard() {
    return presets[0];
}

} // namespace RecordCore
