#pragma once

#include <array>
#include <optional>
#include <string_view>

namespace RecordCore {

/// A size in pixels or base units.
struct Size {
    double width = 0;
    double height = 0;
    bool operator==(const Size&) const = default;
};

/// A rectangle in base canvas pixels, origin top-left.
struct CanvasRect {
    double x = 0;
    double y = 0;
    double width = 0;
    double height = 0;
    double maxX() const { return x + width; }
    double maxY() const { return y + height; }
    bool operator==(const CanvasRect&) const = default;
};

/// The shapes of film the recorder makes.
enum class OutputFormat { wide, portrait, tall, square };

inline constexpr std::array<OutputFormat, 4> allOutputFormats{OutputFormat::wide, OutputFormat::portrait,
                                                              OutputFormat::tall, OutputFormat::square};

/// The stored value ("16:9", "4:5", "9:16", "1:1") and the format with a stored value, if there is one.
std::string_view rawValue(OutputFormat format);
std::optional<OutputFormat> outputFormat(std::string_view rawValue);

/// What the format is called in the interface: "YouTube", "X", "Shorts", "Square".
std::string_view label(OutputFormat format);

/// Canvas size in pixels at scale 1.
Size canvas(OutputFormat format);

/// Pixels at scale 1 that are kept free at the top for a header.
double headerHeight(OutputFormat format);

/// The length in pixels at scale 1 that the corner radius is a fraction of.
double referenceLength(OutputFormat format);

/// Where the recording stands on the canvas, in base pixels with the origin at the top-left.
/// Only the wide format fits the rectangle to the source's aspect (width over height).
/// A padding below 0 counts as 0, one that would leave no window is limited to the largest that does;
/// an aspect that is not a positive number counts as the canvas's own.
CanvasRect window(OutputFormat format, double sourceAspect, double padding);

} // namespace RecordCore
