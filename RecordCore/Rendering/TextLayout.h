#pragma once

#include "RecordCore/Rendering/CairoSurface.h"

#include <memory>
#include <string>
#include <vector>

namespace RecordCore {

/// A piece of text in one colour.
struct TextRun {
    std::string text;
    Ink ink;
};

struct TextStyle {
    double size = 16;   ///< pixels
    int weight = 400;   ///< 400, 500, 600, 700 or 800
    double kerning = 0; ///< pixels added between letters
    bool tabularFigures = false;
    bool centered = false;
    double width = 0;  ///< lines are wrapped at this width; 0 never wraps
    int mostLines = 0; ///< what does not fit is cut with an ellipsis; 0 for no limit
};

/// A laid out text. Laying out is serialised over all threads: an object holds the one lock of the text
/// engine while it lives, so keep it short-lived and on one thread.
class TextLayout {
public:
    TextLayout(const std::vector<TextRun>& runs, const TextStyle& style);
    ~TextLayout();
    TextLayout(const TextLayout&) = delete;
    TextLayout& operator=(const TextLayout&) = delete;

    double width() const;  ///< of the widest line, rounded up to the glyphs' advance
    double height() const; ///< of all lines
    int lines() const;
    /// From the top to the first baseline.
    double baseline() const;
    /// Left edge of the text inside the wrap width.
    double left() const;

    /// Draws with the upper left corner of the layout's box at (x, y). `shape` draws all of it in that ink
    /// instead of the runs' own.
    void draw(cairo_t* cairo, double x, double y, const Ink* shape = nullptr) const;

private:
    struct State;
    std::unique_ptr<State> state;
};

} // namespace RecordCore
