#pragma once

#include <optional>
#include <string>
#include <vector>

namespace RecordCore {

struct Project;

/// How the camera bubble looks.
struct CameraStyle {
    std::string shape = "circle"; ///< "circle", "square" or any other: rounded
    double size = 0.24;           ///< side as a share of the canvas's shorter side
    std::string corner = "br";    ///< first letter t, m or b; last letter l, c or r
    bool mirror = true;
    bool border = false;

    /// None when the project shows no camera bubble.
    static std::optional<CameraStyle> of(const Project& project);
    bool operator==(const CameraStyle&) const = default;
};

/// How the pointer and clicks look.
struct PointerStyle {
    std::string style = "arrow";   ///< "arrow", "light", "outline" or "dot"
    std::string effect = "ripple"; ///< "ripple", "ring", "spotlight" or "none"

    static PointerStyle of(const Project& project);
    bool operator==(const PointerStyle&) const = default;
};

/// How captions look, with the words of every line.
struct CaptionLook {
    std::vector<std::vector<std::string>> lines;
    std::string style = "highlight"; ///< "highlight", "clean", "boxed" or "bold"
    double size = 0.045;             ///< font size as a share of the canvas height
    double bottom = 0.08;            ///< bottom of the caption as a share of the canvas height

    bool operator==(const CaptionLook&) const = default;
};

/// Title and end cards.
struct Cards {
    std::string title;
    std::string subtitle;
    std::string endTitle;
    std::string endSubtitle;
    bool header = false; ///< the title also stands in the band above the window

    static Cards of(const Project& project);
    bool operator==(const Cards&) const = default;
};

} // namespace RecordCore
