#include "RecordCore/Rendering/Glyphs.h"

#include "RecordCore/Rendering/TextLayout.h"

#include <fmt/format.h>

#include <cairo.h>

#include <algorithm>
#include <cmath>
#include <numbers>

namespace RecordCore {

namespace {

constexpr Rgb accent{0x6C / 255.0, 0x7B / 255.0, 0xFF / 255.0};
constexpr Rgb speedColor{0xF5 / 255.0, 0xA5 / 255.0, 0x24 / 255.0};

/// Images of text are no larger than this, whatever the text.
constexpr double longestSide = 8192;

int pixels(double length) {
    return static_cast<int>(std::ceil(std::clamp(std::isfinite(length) ? length : 1.0, 1.0, longestSide)));
}

/// The outline of the arrow; its rounded stroke reaches the hot spot at (14, 10).
void arrowPath(cairo_t* cairo) {
    cairo_new_path(cairo);
    cairo_move_to(cairo, 19, 17.5);
    cairo_line_to(cairo, 19, 112);
    cairo_line_to(cairo, 40.5, 91);
    cairo_line_to(cairo, 55.5, 126.5);
    cairo_line_to(cairo, 71.5, 119.5);
    cairo_line_to(cairo, 56.5, 84.5);
    cairo_line_to(cairo, 86.5, 84.5);
    cairo_close_path(cairo);
}

/// A soft shadow below the current path (which stays): rings of growing width, each faint.
void softShadow(cairo_t* cairo, double reach, double drop, double strength) {
    cairo_path_t* path = cairo_copy_path(cairo);
    cairo_save(cairo);
    cairo_new_path(cairo);
    cairo_translate(cairo, 0, drop);
    cairo_append_path(cairo, path);
    cairo_restore(cairo);
    cairo_set_line_join(cairo, CAIRO_LINE_JOIN_ROUND);
    constexpr int rings = 5;
    for (int i = rings; i >= 1; --i) {
        cairo_set_source_rgba(cairo, 0, 0, 0, strength / rings);
        cairo_set_line_width(cairo, 2 * reach * i / rings);
        cairo_stroke_preserve(cairo);
    }
    cairo_new_path(cairo);
    cairo_append_path(cairo, path);
    cairo_path_destroy(path);
}

void circle(cairo_t* cairo, double x, double y, double radius) {
    cairo_new_sub_path(cairo);
    cairo_arc(cairo, x, y, radius, 0, 2 * std::numbers::pi);
    cairo_close_path(cairo);
}

void paintDot(cairo_t* cairo) {
    cairo_new_path(cairo);
    circle(cairo, 75, 75, 34);
    softShadow(cairo, 18, 3, 0.30);
    setInk(cairo, {accent, 0.92});
    cairo_fill_preserve(cairo);
    setInk(cairo, Ink::gray(1));
    cairo_set_line_width(cairo, 8);
    cairo_stroke(cairo);
}

template <typename Paint>
Bitmap sheet(double width, double height, double k, Paint paint) {
    Bitmap bitmap(pixels(width * k), pixels(height * k));
    const CairoSurface cairo(bitmap);
    cairo_scale(cairo, k, k);
    paint(cairo);
    return bitmap;
}

/// The dark capsule that pill, clock and watermark share.
void paintCapsule(cairo_t* cairo, double width, double height, double scale, double alpha) {
    const double line = std::max(scale, 1.0);
    roundedRectanglePath(cairo, 0, 0, width, height, height / 2);
    setInk(cairo, {{0.055, 0.06, 0.08}, alpha});
    cairo_fill(cairo);
    roundedRectanglePath(cairo, line / 2, line / 2, width - line, height - line, (height - line) / 2);
    setInk(cairo, Ink::gray(1, 0.14));
    cairo_set_line_width(cairo, line);
    cairo_stroke(cairo);
}

/// y at which a text's capitals stand in the middle of a height.
double centeredCapitals(const TextLayout& text, double size, double height) {
    constexpr double capitals = 0.70; // of the type size, of this typeface
    return height / 2 + capitals * size / 2 - text.baseline();
}

void paintPointerShape(cairo_t* cairo, const Ink& fill, const Ink& stroke, bool outlineOnly) {
    arrowPath(cairo);
    cairo_set_line_join(cairo, CAIRO_LINE_JOIN_ROUND);
    if (outlineOnly) {
        // Two thin dark edges keep a light outline visible on light ground.
        cairo_push_group(cairo);
        setInk(cairo, Ink::gray(0, 0.40));
        cairo_set_line_width(cairo, 13);
        cairo_stroke_preserve(cairo);
        setInk(cairo, stroke);
        cairo_set_line_width(cairo, 8.5);
        cairo_stroke(cairo);
        cairo_pop_group_to_source(cairo);
        cairo_paint(cairo);
        return;
    }
    softShadow(cairo, 14, 4, 0.26);
    setInk(cairo, stroke);
    cairo_set_line_width(cairo, 12);
    cairo_stroke_preserve(cairo);
    setInk(cairo, fill);
    cairo_set_line_width(cairo, 2);
    cairo_fill_preserve(cairo);
    cairo_stroke(cairo);
}

void paintPointer(cairo_t* cairo, std::string_view style) {
    if (style == "dot")
        paintDot(cairo);
    else if (style == "light")
        paintPointerShape(cairo, Ink::gray(1), Ink::gray(0.06), false);
    else if (style == "outline")
        paintPointerShape(cairo, Ink::gray(0, 0), Ink::gray(1), true);
    else
        paintPointerShape(cairo, Ink::gray(0.06), Ink::gray(1), false);
}

void paintRipple(cairo_t* cairo, bool thick) {
    cairo_new_path(cairo);
    if (!thick) {
        circle(cairo, 100, 100, 90);
        setInk(cairo, {{0.39, 0.40, 0.95}, 0.22});
        cairo_fill(cairo);
    }
    circle(cairo, 100, 100, thick ? 82 : 86);
    setInk(cairo, {{0.80, 0.82, 1.0}, 0.95});
    cairo_set_line_width(cairo, thick ? 12 : 7);
    cairo_stroke(cairo);
}

void paintSpotlight(cairo_t* cairo) {
    cairo_pattern_t* light = cairo_pattern_create_radial(100, 100, 0, 100, 100, 98);
    // A plateau of light that falls off smoothly to nothing: no edge, no hard centre.
    constexpr int stops = 16;
    for (int i = 0; i <= stops; ++i) {
        const double r = static_cast<double>(i) / stops;
        const double falloff = (1 - r * r) * (1 - r * r);
        cairo_pattern_add_color_stop_rgba(light, r, 1, 0.96, 0.84, 0.5 * falloff);
    }
    cairo_set_source(cairo, light);
    cairo_rectangle(cairo, 0, 0, Glyphs::rippleSheet, Glyphs::rippleSheet);
    cairo_fill(cairo);
    cairo_pattern_destroy(light);
}

} // namespace

void Glyphs::paintPointer(Bitmap& bitmap, std::string_view style, double x, double y, double k) {
    const CairoSurface cairo(bitmap);
    cairo_translate(cairo, x, y);
    cairo_scale(cairo, k, k);
    RecordCore::paintPointer(cairo, style);
}

void Glyphs::paintClick(Bitmap& bitmap, std::string_view effect, double x, double y, double k) {
    const CairoSurface cairo(bitmap);
    cairo_translate(cairo, x, y);
    cairo_scale(cairo, k, k);
    if (effect == "spotlight")
        paintSpotlight(cairo);
    else
        paintRipple(cairo, effect == "ring");
}

Bitmap Glyphs::pointer(std::string_view style, double k) {
    const PointerSheet size = pointerSheet(style);
    return sheet(size.width, size.height, k, [&](cairo_t* cairo) { RecordCore::paintPointer(cairo, style); });
}

Bitmap Glyphs::ripple(bool thick, double k) {
    return sheet(rippleSheet, rippleSheet, k, [&](cairo_t* cairo) { paintRipple(cairo, thick); });
}

Bitmap Glyphs::spotlight(double k) {
    return sheet(rippleSheet, rippleSheet, k, [](cairo_t* cairo) { paintSpotlight(cairo); });
}

Bitmap Glyphs::captionLine(const std::vector<std::string>& words, int active, std::string_view style,
                           double size, double maxWidth) {
    const bool boxed = style == "boxed";
    const bool bold = style == "bold";
    size = std::clamp(std::isfinite(size) ? size : 16.0, 1.0, 4096.0);
    const double padX = size * (boxed ? 0.55 : 0.35);
    const double padY = size * 0.3;

    std::vector<TextRun> runs;
    for (std::size_t i = 0; i < words.size(); ++i) {
        const bool highlighted = static_cast<int>(i) == active;
        const Ink ink = highlighted ? Ink{{1.0, 0.82, 0.4}} : Ink::gray(1);
        // The space belongs to the line's own colour, whichever word is lit.
        runs.push_back({i == 0 ? words[i] : " " + words[i], ink});
    }
    TextStyle textStyle;
    textStyle.size = size;
    textStyle.weight = style == "clean" ? 600 : 800;
    textStyle.kerning = -0.01 * size;
    textStyle.centered = true;
    textStyle.width = std::max(maxWidth - 2 * padX, size);
    const TextLayout text(runs, textStyle);

    const double textWidth = std::ceil(text.width());
    Bitmap image(pixels(2 * padX + textWidth), pixels(2 * padY + std::min(text.height(), 4000.0)));
    if (boxed) {
        const CairoSurface cairo(image);
        roundedRectanglePath(cairo, 0, 0, image.width, image.height, 0.32 * size);
        setInk(cairo, Ink::gray(0.04, 0.78));
        cairo_fill(cairo);
    }
    // The layout is as wide as the wrap width; its widest line starts at `left`.
    const double x = (image.width - text.width()) / 2 - text.left();
    if (!boxed) {
        Bitmap shape(image.width, image.height);
        {
            const CairoSurface cairo(shape);
            const Ink black = Ink::gray(0);
            text.draw(cairo, x, padY + 0.04 * size, &black);
        }
        // The radius is about where a shadow ends. Strokes are thinner than it, so it is made full beneath
        // them: white letters have to carry over a white page.
        const double radius = size * (bold ? 0.30 : 0.22);
        draw(image, blurredShadow(shape, radius / 2.5, Ink::gray(0, bold ? 0.95 : 0.8), 2.4), 0, 0);
    }
    const CairoSurface cairo(image);
    text.draw(cairo, x, padY);
    return image;
}

Bitmap Glyphs::pill(std::int64_t speed, std::string_view label, double scale) {
    const double height = 48 * scale;
    const double size = 23 * scale;
    TextStyle numberStyle;
    numberStyle.size = size;
    numberStyle.weight = 700;
    numberStyle.tabularFigures = true;
    const TextLayout number({{fmt::format("{}×", speed), Ink::gray(1)}}, numberStyle);
    TextStyle labelStyle;
    labelStyle.size = size * 0.87;
    labelStyle.weight = 500;
    labelStyle.mostLines = 1;
    labelStyle.width = 900 * scale;
    const TextLayout words({{std::string(label), Ink::gray(1, 0.78)}}, labelStyle);

    const double margin = 21 * scale;
    const double chevron = 13 * scale;
    const double chevronStep = 10.5 * scale;
    const double numberX = margin + chevronStep + chevron + 11 * scale;
    const double labelX = numberX + number.width() + 11 * scale;
    const double width = label.empty() ? numberX + number.width() + margin : labelX + words.width() + margin;

    Bitmap image(pixels(width), pixels(height));
    const CairoSurface cairo(image);
    paintCapsule(cairo, image.width, image.height, scale, 0.84);
    const double middle = image.height / 2.0;
    setInk(cairo, {speedColor});
    cairo_set_line_join(cairo, CAIRO_LINE_JOIN_ROUND);
    cairo_set_line_cap(cairo, CAIRO_LINE_CAP_ROUND);
    for (int i = 0; i < 2; ++i) {
        const double x = margin + i * chevronStep;
        const double rise = chevron * 0.55;
        cairo_move_to(cairo, x, middle - rise);
        cairo_line_to(cairo, x + chevron * 0.82, middle);
        cairo_line_to(cairo, x, middle + rise);
        cairo_close_path(cairo);
        cairo_set_line_width(cairo, 2 * scale);
        cairo_fill_preserve(cairo);
        cairo_stroke(cairo);
    }
    number.draw(cairo, numberX, centeredCapitals(number, size, image.height));
    // Both stand on one baseline.
    words.draw(cairo, labelX,
               centeredCapitals(number, size, image.height) + number.baseline() - words.baseline());
    return image;
}

Bitmap Glyphs::clockBadge(std::string_view text, double scale) {
    const double size = 23 * scale;
    TextStyle style;
    style.size = size;
    style.weight = 600;
    style.tabularFigures = true;
    style.mostLines = 1;
    style.width = 900 * scale;
    const TextLayout time({{std::string(text), Ink::gray(1)}}, style);
    const double margin = 20 * scale;
    Bitmap image(pixels(time.width() + 2 * margin), pixels(48 * scale));
    const CairoSurface cairo(image);
    paintCapsule(cairo, image.width, image.height, scale, 0.84);
    time.draw(cairo, (image.width - time.width()) / 2, centeredCapitals(time, size, image.height));
    return image;
}

Bitmap Glyphs::textBlock(std::string_view title, std::string_view subtitle, double width, double titleSize,
                         const Ink& ink, double maxHeight, bool shadow) {
    width = std::clamp(std::isfinite(width) ? width : 1.0, 1.0, longestSide);
    double size = std::clamp(std::isfinite(titleSize) ? titleSize : 16.0, 1.0, 4096.0);
    for (int attempt = 0;; ++attempt) {
        TextStyle titleStyle;
        titleStyle.size = size;
        titleStyle.weight = 700;
        titleStyle.kerning = -0.015 * size;
        titleStyle.centered = true;
        titleStyle.width = width;
        titleStyle.mostLines = 4;
        const TextLayout heading({{std::string(title), ink}}, titleStyle);
        TextStyle lineStyle;
        lineStyle.size = std::max(size * 0.46, 1.0);
        lineStyle.weight = 500;
        lineStyle.centered = true;
        lineStyle.width = width;
        lineStyle.mostLines = 3;
        const TextLayout line({{std::string(subtitle), {ink.color, ink.alpha * (shadow ? 0.88 : 0.74)}}},
                              lineStyle);

        const double gap = subtitle.empty() ? 0 : size * 0.14;
        const double height = heading.height() + (subtitle.empty() ? 0 : gap + line.height());
        if (maxHeight > 0 && height > maxHeight && attempt < 24) {
            size *= std::max(0.85, std::sqrt(maxHeight / height));
            continue;
        }
        // Room for the shadow on all sides.
        const double reach = shadow ? size * 0.5 : 0;
        Bitmap image(pixels(width + 2 * reach), pixels(height + 2 * reach));
        const auto draw = [&](cairo_t* cairo, const Ink* shape) {
            heading.draw(cairo, reach, reach, shape);
            if (!subtitle.empty()) line.draw(cairo, reach, reach + heading.height() + gap, shape);
        };
        if (shadow) {
            // Over a busy picture the letters need a ground: a wide dim one and a narrow one.
            Bitmap shape(image.width, image.height);
            const Ink black = Ink::gray(0);
            draw(CairoSurface(shape), &black);
            RecordCore::draw(image, blurredShadow(shape, size * 0.20, Ink::gray(0, 0.75)), 0, 0);
            RecordCore::draw(image, blurredShadow(shape, size * 0.05, Ink::gray(0, 0.45)), 0, 0);
        }
        draw(CairoSurface(image), nullptr);
        return image;
    }
}

Bitmap Glyphs::endCard(std::string_view title, std::string_view subtitle, double scale, double maxWidth) {
    return textBlock(title, subtitle, maxWidth, 76 * scale, Ink::gray(1));
}

Bitmap Glyphs::watermarkBadge(double scale) {
    const double size = 17 * scale;
    TextStyle style;
    style.size = size;
    style.weight = 600;
    const TextLayout name({{"Ombrel Record", Ink::gray(1, 0.9)}}, style);
    const double height = 34 * scale;
    const double margin = 14 * scale;
    const double dot = 4.5 * scale;
    Bitmap image(pixels(name.width() + 2 * margin + 2 * dot + 8 * scale), pixels(height));
    const CairoSurface cairo(image);
    paintCapsule(cairo, image.width, image.height, scale, 0.5);
    circle(cairo, margin + dot, image.height / 2.0, dot);
    setInk(cairo, {{1, 0x4D / 255.0, 0x4F / 255.0}});
    cairo_fill(cairo);
    name.draw(cairo, margin + 2 * dot + 8 * scale, centeredCapitals(name, size, image.height));
    return image;
}

} // namespace RecordCore
