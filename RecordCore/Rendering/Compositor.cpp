#include "RecordCore/Rendering/Compositor.h"

#include "RecordCore/Rendering/Glyphs.h"
#include "RecordCore/Rendering/RgbPlanes.h"
#include "RecordCore/Rendering/WallpaperFile.h"
#include "RecordCore/Rendering/Wallpapers.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

namespace RecordCore {

namespace {

/// When a cache holds more than either of these, it is emptied before the next image comes in.
constexpr std::size_t mostTexts = 4000;
constexpr std::size_t mostTextBytes = std::size_t{96} << 20;

double share(double value) {
    return std::isnan(value) ? 0 : std::clamp(value, 0.0, 1.0);
}

Rgb limited(const Rgb& color) {
    return {share(color.r), share(color.g), share(color.b)};
}

PixelRect evenAround(const CanvasRect& rect, int width, int height) {
    const auto low = [](double v, int most) {
        return std::clamp(static_cast<int>(std::floor(std::clamp(v, -1.0, 1e6))), 0, most) & ~1;
    };
    const auto high = [](double v, int most) {
        return (std::clamp(static_cast<int>(std::ceil(std::clamp(v, -1.0, 1e6))), 0, most) + 1) & ~1;
    };
    // A chroma sample just right of the window takes in the window's last column.
    return {low(rect.x, width), low(rect.y, height), std::min(high(rect.maxX() + 1, width), width),
            high(rect.maxY(), height)};
}

/// The backdrop's gradient with its glow, on a canvas of that size.
RgbPlanes gradient(const Backdrop& backdrop, const Placement& place) {
    const double width = place.width;
    const double height = place.height;
    // From the top left corner towards the lower edge at three tenths of the width.
    const double dx = 0.3 * width;
    const double dy = height;
    const double length = dx * dx + dy * dy;
    const CanvasRect& window = place.window.rect;
    const double glowX = window.x + window.width / 2;
    const double glowY = window.y + window.height / 2 - 0.1 * window.height;
    const double reach = 0.75 * std::max(window.width, window.height);
    const double glowAlpha = backdrop.light ? 0.5 : 0.22;
    const Rgb from = limited(backdrop.top);
    const Rgb to = limited(backdrop.bottom);
    const Rgb glow = limited(backdrop.glow);

    // In single precision, whose error is far below a step of the dither, and with plain loops that become
    // vectors.
    const auto narrow = [](double value) { return static_cast<float>(value); };
    RgbPlanes planes(place.width, place.height);
    std::vector<float> along(static_cast<std::size_t>(place.width));
    std::vector<float> glowing(along.size());
    const float step = narrow(dx / length);
    const float gx = narrow(0.5 - glowX);
    const float perReach = narrow(1 / reach);
    const float strength = narrow(glowAlpha);
    for (int y = 0; y < place.height; ++y) {
        const float start = narrow((0.5 * dx + (y + 0.5) * dy) / length);
        const float gy = narrow(y + 0.5 - glowY);
        for (int x = 0; x < place.width; ++x) {
            const float fx = static_cast<float>(x);
            const float across = gx + fx;
            const std::size_t i = static_cast<std::size_t>(x);
            along[i] = std::min(start + step * fx, 1.0F);
            glowing[i] = strength * std::max(1 - std::sqrt(across * across + gy * gy) * perReach, 0.0F);
        }
        const auto mix = [&](float* out, double first, double second, double light) {
            const float low = narrow(first);
            const float span = narrow(second - first);
            const float target = narrow(light);
            for (int x = 0; x < place.width; ++x) {
                const std::size_t i = static_cast<std::size_t>(x);
                const float base = low + span * along[i];
                out[x] = base + (target - base) * glowing[i];
            }
        };
        mix(planes.red.row(y), from.r, to.r, glow.r);
        mix(planes.green.row(y), from.g, to.g, glow.g);
        mix(planes.blue.row(y), from.b, to.b, glow.b);
    }
    return planes;
}

} // namespace

Compositor::Compositor(CompositorSettings settings, const std::function<void()>& check) :
    given(std::move(settings)), place(Placement::make(given.format, given.sourceAspect, given.look.padding,
                                                      given.look.radius, given.cards.header, given.scale)) {
    const PixelRect area = evenAround(place.window.rect, place.width, place.height);
    mask = AlphaMask(place.window.mask(area.x0, area.y0, area.x1 - area.x0, area.y1 - area.y0), area.x0,
                     area.y0, area);
    prepareBackdrop(check ? check : [] {});
    const double scale = place.scale;
    if (!given.cards.title.empty())
        title = Glyphs::textBlock(given.cards.title, given.cards.subtitle, 0.8 * place.window.rect.width,
                                  64 * scale, Ink::gray(1), 0.9 * place.window.rect.height, true);
    if (!given.cards.endTitle.empty())
        end = Glyphs::endCard(given.cards.endTitle, given.cards.endSubtitle, scale, 0.84 * place.width);
    if (given.camera) prepareBubble();
    if (given.watermark) prepareWatermark();
}

void Compositor::prepareBackdrop(const std::function<void()>& check) {
    const Look& look = given.look;
    const double scale = place.scale;
    const int width = place.width;
    const int height = place.height;

    RgbPlanes planes;
    bool isImage = false;
    if (look.wallpaper)
        if (const auto image = WallpaperFile::load(*look.wallpaper, width, height)) {
            check();
            planes = RgbPlanes::covering(*image, width, height);
            isImage = true;
        }
    bool isSolid = false;
    if (!isImage && look.solid) {
        planes = RgbPlanes(width, height, limited(*look.solid));
        isSolid = true;
    }
    if (!isImage && !isSolid && look.wallpaperPreset) {
        if (const auto kept = Wallpapers::kept(*look.wallpaperPreset, width, height, check)) {
            planes = *kept;
            isImage = true;
        } else if (auto drawn = Wallpapers::draw(*look.wallpaperPreset, width, height, check)) {
            planes = std::move(*drawn);
            isImage = true;
        }
    }
    if (!isImage && !isSolid) planes = gradient(look.backdrop, place);

    check();
    if (look.blur > 0.5 && !isSolid) planes.blur(scale * look.blur, check);

    // Judged from what is really drawn: a file that is missing counts for nothing.
    Look drawn = look;
    drawn.wallpaper.reset();
    if (!isSolid) drawn.solid.reset();
    bright = isImage ? planes.luma(0, 0, width, height) > 0.62 : drawn.isLight();

    if (look.shadow > 0.01) {
        const double alpha = share(look.shadow * (bright ? 0.45 : 1.0));
        RoundedRect cast = place.window;
        cast.rect.y += 0.018 * height;
        const double sigma = 0.022 * width;
        // Room around the canvas for what lies outside of it: nothing does, so nothing may be repeated there.
        const int margin = static_cast<int>(std::ceil(4 * sigma));
        FloatPlane shadow = cast.mask(-margin, -margin, width + 2 * margin, height + 2 * margin);
        check();
        shadow.blur(sigma);
        check();
        planes.lay({0, 0, 0}, alpha, shadow, -margin, -margin);
    }

    const RoundedRect ring = place.window.grown(1.5 * scale);
    planes.lay(bright ? Rgb{0, 0, 0} : Rgb{1, 1, 1}, bright ? 0.12 : 0.14, ring.mask(0, 0, width, height), 0,
               0);

    if (place.band > 0) {
        const int band = static_cast<int>(std::lround(place.band));
        const Ink ink = planes.luma(0, 0, width, band) <= 0.6 ? Ink::gray(1) : Ink::gray(0.07);
        const bool tall = given.format == OutputFormat::tall;
        const Bitmap text = Glyphs::textBlock(given.cards.title, given.cards.subtitle, width - 120 * scale,
                                              (tall ? 62 : 48) * scale, ink, 0.9 * place.band);
        const double lift = tall ? 0 : 4 * scale;
        planes.lay(text, static_cast<int>(std::lround((width - text.width) / 2.0)),
                   static_cast<int>(std::lround((place.band - text.height) / 2.0 - lift)));
    }
    check();
    ground = planes.picture();
}

void Compositor::prepareBubble() {
    bubbleShape = place.bubble(*given.camera);
    if (!bubbleShape) return;
    const double d = bubbleShape->rect.width;
    const double sigma = 0.06 * d;
    bubbleMargin = static_cast<int>(std::ceil(3 * sigma + 0.04 * d)) + 2;
    const int side = static_cast<int>(d) + 2 * bubbleMargin;
    // In a square of its own, whose middle is the bubble's centre.
    RoundedRect cast = *bubbleShape;
    cast.rect.x = bubbleMargin;
    cast.rect.y = bubbleMargin + 0.04 * d;
    bubbleShadow = cast.mask(0, 0, side, side);
    bubbleShadow.blur(sigma);
    for (float& sample : bubbleShadow.samples)
        sample *= 0.55F;
    fullBubble = std::make_unique<Bubble>(bubbleAt(1));
}

Compositor::Bubble Compositor::bubbleAt(double cameraScale) const {
    Bubble bubble;
    bubble.scale = cameraScale < 0.999 ? std::clamp(cameraScale, 0.0, 1.0) : 1;
    const double k = bubble.scale;
    const double d = bubbleShape->rect.width * k;
    const double centerX = bubbleShape->rect.x + bubbleShape->rect.width / 2;
    const double centerY = bubbleShape->rect.y + bubbleShape->rect.height / 2;
    bubble.shape = RoundedRect::make({centerX - d / 2, centerY - d / 2, d, d}, bubbleShape->radius * k);

    const PixelRect area = evenAround(bubble.shape.rect, place.width, place.height);
    bubble.outside = AlphaMask(
        bubble.shape.mask(area.x0, area.y0, std::max(area.x1 - area.x0, 0), std::max(area.y1 - area.y0, 0)),
        area.x0, area.y0, area, true);

    // Under the bubble: the shadow, then the ring over it.
    const double ringWidth = (given.camera->border ? 4.0 : 2.5) * place.scale * k;
    const double ringAlpha = given.camera->border ? 0.95 : 0.22;
    const RoundedRect ring = bubble.shape.grown(ringWidth);
    const double half = (d / 2 + bubbleMargin * k);
    const int left = static_cast<int>(std::floor(centerX - half));
    const int top = static_cast<int>(std::floor(centerY - half));
    const int side = static_cast<int>(std::ceil(2 * half)) + 1;
    const FloatPlane edge = ring.mask(left, top, side, side);
    Bitmap image(side, side);
    const float sheetCenter = static_cast<float>(bubbleShadow.width) / 2;
    const float per = static_cast<float>(1 / std::max(k, 1e-6));
    const float offsetX = static_cast<float>(left + 0.5 - centerX);
    const float offsetY = static_cast<float>(top + 0.5 - centerY);
    const float white = 255 * static_cast<float>(ringAlpha);
    const float lastColumn = static_cast<float>(bubbleShadow.width - 1);
    const float lastRow = static_cast<float>(bubbleShadow.height - 1);
    for (int y = 0; y < image.height; ++y) {
        const float v =
            std::clamp((static_cast<float>(y) + offsetY) * per + sheetCenter - 0.5F, 0.0F, lastRow);
        const int j = std::min(static_cast<int>(v), bubbleShadow.height - 2);
        const float t = v - static_cast<float>(j);
        const float* above = bubbleShadow.row(j);
        const float* below = bubbleShadow.row(j + 1);
        const float* ringRow = edge.row(y);
        std::uint8_t* pixel = image.pixels.data() + static_cast<std::ptrdiff_t>(y) * image.stride();
        for (int x = 0; x < image.width; ++x, pixel += 4) {
            // The shadow is smooth: two by two samples serve at any size.
            const float u =
                std::clamp((static_cast<float>(x) + offsetX) * per + sheetCenter - 0.5F, 0.0F, lastColumn);
            const int i = std::min(static_cast<int>(u), bubbleShadow.width - 2);
            const float s = u - static_cast<float>(i);
            const float shadow = (above[i] + (above[i + 1] - above[i]) * s) * (1 - t) +
                                 (below[i] + (below[i + 1] - below[i]) * s) * t;
            const float light = white * ringRow[x];
            const float alpha = light + shadow * (255 - light);
            pixel[0] = pixel[1] = pixel[2] = static_cast<std::uint8_t>(light + 0.5F);
            pixel[3] = static_cast<std::uint8_t>(std::clamp(alpha, 0.0F, 255.0F) + 0.5F);
        }
    }
    bubble.under.set(image, left, top);
    return bubble;
}

void Compositor::prepareWatermark() {
    const Bitmap image = Glyphs::watermarkBadge(place.scale);
    const double margin = 24 * place.scale;
    // The lower right corner, unless the camera stands there; then the upper left, where nothing else does.
    bool right = true;
    bool bottom = true;
    if (bubbleShape) {
        const CanvasRect& camera = bubbleShape->rect;
        if (camera.maxX() > place.width - margin - image.width &&
            camera.maxY() > place.height - margin - image.height) {
            right = false;
            bottom = place.band > 0;
        }
    }
    const double x = right ? place.width - margin - image.width : margin;
    const double y = bottom ? place.height - margin - image.height : margin;
    badge.set(image, static_cast<int>(std::lround(x)), static_cast<int>(std::lround(y)));
}

template <typename Draw>
Compositor::Text Compositor::cached(const std::string& key, Draw draw) const {
    {
        const std::scoped_lock lock(cacheLock);
        if (const auto found = texts.find(key); found != texts.end()) return found->second;
    }
    // Drawn without the lock: two threads that miss together draw the same image twice, which does no harm.
    auto image = std::make_shared<const Overlay>(draw());
    const std::scoped_lock lock(cacheLock);
    if (texts.size() > mostTexts || textBytes > mostTextBytes) {
        texts.clear();
        textBytes = 0;
    }
    const auto [entry, added] = texts.emplace(key, std::move(image));
    if (added) textBytes += entry->second->bytes();
    return entry->second;
}

Compositor::Text Compositor::pill(std::int64_t speed, const std::string& label) const {
    return cached(fmt::format("pill|{}|{}", speed, label), [&] {
        const Bitmap image = Glyphs::pill(speed, label, place.scale);
        const double inset = 22 * place.scale;
        return Overlay(image, static_cast<int>(std::lround(place.window.rect.maxX() - image.width - inset)),
                       static_cast<int>(std::lround(place.window.rect.y + inset)));
    });
}

Compositor::Text Compositor::clock(const std::string& text) const {
    return cached("clock|" + text, [&] {
        const Bitmap image = Glyphs::clockBadge(text, place.scale);
        const double inset = 22 * place.scale;
        return Overlay(image, static_cast<int>(std::lround(place.window.rect.x + inset)),
                       static_cast<int>(std::lround(place.window.rect.maxY() - inset - image.height)));
    });
}

Compositor::Text Compositor::caption(int line, int activeWord) const {
    if (!given.captions || line < 0 || static_cast<std::size_t>(line) >= given.captions->lines.size())
        return nullptr;
    const CaptionLook& look = *given.captions;
    const int active = look.style == "highlight" ? activeWord : -1;
    return cached(fmt::format("cap|{}|{}", line, active), [&] {
        const double size = std::isfinite(look.size) ? std::clamp(look.size, 0.0, 1.0) : 0.045;
        const Bitmap image = Glyphs::captionLine(look.lines[static_cast<std::size_t>(line)], active,
                                                 look.style, size * place.height, 0.86 * place.width);
        const double bottom = std::isfinite(look.bottom) ? std::clamp(look.bottom, -1.0, 2.0) : 0.08;
        return Overlay(image, static_cast<int>(std::lround((place.width - image.width) / 2.0)),
                       static_cast<int>(std::lround(place.height - bottom * place.height - image.height)));
    });
}

std::size_t Compositor::cachedTexts() const {
    const std::scoped_lock lock(cacheLock);
    return texts.size();
}

} // namespace RecordCore
