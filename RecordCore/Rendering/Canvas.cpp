#include "RecordCore/Rendering/Canvas.h"

#include "RecordCore/Model/Clock.h"
#include "RecordCore/Rendering/Glyphs.h"
#include "RecordCore/Rendering/Kernels/Kernels.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace RecordCore {

namespace {

constexpr int block = 16;
constexpr int tileWidth = 64; ///< of the source, for comparing
constexpr int tileHeight = 16;
/// Opacities up to this draw nothing.
constexpr double leastOpacity = 0.01;
/// More ripples than this at once are not drawn.
constexpr std::size_t mostRipples = 64;
/// Fewer blocks than this are not worth waking other threads.
constexpr int fewBlocks = 120;

const Tint titleTint{{0, 0, 0}, 0.55};
const Tint endTint{{0.02, 0.025, 0.05}, 0.82};

/// An opacity in 255ths; from 0.999 on it is full.
int fadeOf(double opacity) {
    if (!(opacity > 0)) return 0;
    return opacity >= 0.999 ? 255 : static_cast<int>(std::lround(opacity * 255));
}

/// Positions are kept to a sixteenth of a pixel: what has come to rest stays the same.
std::int64_t sixteenths(double pixels) {
    return std::isfinite(pixels) ? std::llround(std::clamp(pixels, -1e6, 1e6) * 16) : -16'000'000;
}

PixelRect whole(const Placement& place) {
    return {0, 0, place.width, place.height};
}

/// The rectangle with its columns moved out to whole blocks, as the scaler takes them.
PixelRect inBlocks(const PixelRect& rect) {
    return {rect.x0 / block * block, rect.y0, (rect.x1 + block - 1) / block * block, rect.y1};
}

/// A view that can be computed with: a size that is not a positive number counts as the whole.
NRect usable(const NRect& view) {
    NRect result = view;
    if (!(std::isfinite(view.x) && std::isfinite(view.w) && view.w > 1e-9)) result.x = 0, result.w = 1;
    if (!(std::isfinite(view.y) && std::isfinite(view.h) && view.h > 1e-9)) result.y = 0, result.h = 1;
    return result;
}

std::optional<NRect> usable(const std::optional<NRect>& crop) {
    if (!crop) return std::nullopt;
    const bool good = std::isfinite(crop->x) && std::isfinite(crop->y) && std::isfinite(crop->w) &&
                      std::isfinite(crop->h) && crop->w > 1e-9 && crop->h > 1e-9;
    return good ? crop : std::nullopt;
}

} // namespace

Canvas::Canvas(std::shared_ptr<const Compositor> compositor, int threads) :
    recipe(std::move(compositor)), pool(threads), scratches(static_cast<std::size_t>(pool.threads())),
    shown(recipe->width(), recipe->height()), across((recipe->width() + block - 1) / block),
    down((recipe->height() + block - 1) / block), nothing(2, 2), titleGround(titleTint), endGround(endTint) {
    const std::size_t count = static_cast<std::size_t>(across) * static_cast<std::size_t>(down);
    dirty.resize(count);
    insideWindow.resize(count);
    units.reserve(count);
    columnSpans.resize(static_cast<std::size_t>(across));
    rowSpans.resize(static_cast<std::size_t>(down));
    ripples.resize(mostRipples);

    const Placement& place = recipe->placement();
    const PixelRect& area = recipe->windowMask().rect();
    for (int y = 0; y < down; ++y)
        for (int x = 0; x < across; ++x) {
            const PixelRect part =
                PixelRect{x * block, y * block, (x + 1) * block, (y + 1) * block}.intersected(whole(place));
            // One column more: chroma takes in the column to its left.
            const bool full = place.window.covers(part.x0 - 1, part.y0, part.x1, part.y1);
            insideWindow[static_cast<std::size_t>(y * across + x)] = part.intersected(area).empty() ? 0
                                                                     : full                         ? 2
                                                                                                    : 1;
        }
}

Canvas::~Canvas() = default;

const Picture& Canvas::frame(const PlanarView& source, const FrameState& state, const PlanarView* camera,
                             SourceHints hints) {
    const bool usableSource = !source.empty() && source.width > 0 && source.height > 0;
    const PlanarView& input = usableSource ? source : nothing.view();
    std::fill(dirty.begin(), dirty.end(), std::uint8_t{0});
    anyDirty = false;

    takeSource(input, state, hints.sameSource && usableSource);
    takeGlyphs(state);

    const Placement& place = recipe->placement();
    const CanvasRect& window = place.window.rect;
    takeCard(title, recipe->titleImage(), state.titleOpacity,
             {window.x + window.width / 2, window.y + window.height / 2}, 20 * place.scale, titleTint,
             recipe->windowMask().rect());
    takeTexts(state);
    takeCamera(camera, state, hints.sameCamera);
    takeCard(end, recipe->endImage(), state.endOpacity, {place.width / 2.0, place.height / 2.0},
             -24 * place.scale, endTint, whole(place));

    if (everythingStale) markAll();
    everythingStale = false;
    if (anyDirty) compose(input);
    return shown;
}

void Canvas::markAll() {
    std::fill(dirty.begin(), dirty.end(), std::uint8_t{1});
    anyDirty = true;
}

void Canvas::mark(const PixelRect& rect) {
    const PixelRect part = rect.intersected(whole(recipe->placement()));
    if (part.empty()) return;
    anyDirty = true;
    const int from = part.x0 / block;
    const int to = (part.x1 + block - 1) / block;
    for (int y = part.y0 / block; y < (part.y1 + block - 1) / block; ++y)
        std::fill_n(dirty.begin() + y * across + from, to - from, std::uint8_t{1});
}

// The source.

void Canvas::takeSource(const PlanarView& source, const FrameState& state, bool same) {
    const Placement& place = recipe->placement();
    const SourceMapping wanted = SourceMapping::make(usable(state.view), usable(recipe->settings().crop),
                                                     source.width, source.height, place.window.rect.width);
    const bool moved =
        !mapping || !(*mapping == wanted) || source.width != sourceWidth || source.height != sourceHeight;
    if (moved) {
        makeMapping(wanted, source);
        mark(recipe->windowMask().rect());
        // While the view moves all is redrawn anyway: comparing would be for nothing.
        if (!same) lastSourceKnown = false;
        return;
    }
    if (same) return;
    if (lastSourceKnown && lastSource.width() == source.width && lastSource.height() == source.height) {
        compareSource(source);
        markSourceTiles();
    } else {
        lastSource.assign(source);
        lastSourceKnown = true;
        mark(recipe->windowMask().rect());
    }
}

void Canvas::makeMapping(const SourceMapping& wanted, const PlanarView& source) {
    const CanvasRect& window = recipe->placement().window.rect;
    const PixelRect& area = recipe->windowMask().rect();
    const double a = wanted.width / window.width; // source pixels for a canvas pixel
    mapping = wanted;
    sourceWidth = source.width;
    sourceHeight = source.height;
    scaler.make({a, wanted.left - a * window.x}, {a, wanted.bottom - a * window.maxY()}, source.width,
                source.height, inBlocks(area));
    for (int x = 0; x < across; ++x) {
        const int from = std::max(x * block, area.x0);
        const int to = std::min((x + 1) * block, area.x1);
        columnSpans[static_cast<std::size_t>(x)] =
            from < to ? scaler.sourceColumns(from, to) : ScaleTable::Span{0, 0};
    }
    for (int y = 0; y < down; ++y) {
        const int from = std::max(y * block, area.y0);
        const int to = std::min((y + 1) * block, area.y1);
        rowSpans[static_cast<std::size_t>(y)] =
            from < to ? scaler.sourceRows(from, to) : ScaleTable::Span{0, 0};
    }
    tilesAcross = (source.width + tileWidth - 1) / tileWidth;
    tilesDown = (source.height + tileHeight - 1) / tileHeight;
    changedTiles.resize(static_cast<std::size_t>(tilesAcross) * static_cast<std::size_t>(tilesDown));
    changedTileRows.resize(static_cast<std::size_t>(tilesDown));
}

void Canvas::compareSource(const PlanarView& source) {
    std::fill(changedTiles.begin(), changedTiles.end(), std::uint8_t{0});
    auto compareRow = [&](int tileRow, int) {
        std::uint8_t* flags = changedTiles.data() + static_cast<std::ptrdiff_t>(tileRow) * tilesAcross;
        for (int plane = 0; plane < 3; ++plane) {
            const std::size_t index = static_cast<std::size_t>(plane);
            const int divisor = plane == 0 ? 1 : 2;
            const int last = std::min((tileRow + 1) * tileHeight / divisor, source.planeHeight(plane));
            for (int y = tileRow * tileHeight / divisor; y < last; ++y)
                Kernels::markDifferences(source.planes[index] + source.strides[index] * y,
                                         lastSource.row(plane, y), source.planeWidth(plane),
                                         tileWidth / divisor, flags);
        }
        const bool any = std::any_of(flags, flags + tilesAcross, [](std::uint8_t flag) { return flag != 0; });
        changedTileRows[static_cast<std::size_t>(tileRow)] = any;
        if (!any) return;
        for (int plane = 0; plane < 3; ++plane) {
            const std::size_t index = static_cast<std::size_t>(plane);
            const int divisor = plane == 0 ? 1 : 2;
            const int width = tileWidth / divisor;
            const int last = std::min((tileRow + 1) * tileHeight / divisor, source.planeHeight(plane));
            for (int y = tileRow * tileHeight / divisor; y < last; ++y)
                for (int tile = 0; tile < tilesAcross; ++tile) {
                    if (!flags[tile]) continue;
                    const int x = tile * width;
                    std::memcpy(lastSource.row(plane, y) + x,
                                source.planes[index] + source.strides[index] * y + x,
                                static_cast<std::size_t>(std::min(width, source.planeWidth(plane) - x)));
                }
        }
    };
    pool.run(tilesDown, compareRow);
}

void Canvas::markSourceTiles() {
    for (int y = 0; y < down; ++y) {
        const ScaleTable::Span rows = rowSpans[static_cast<std::size_t>(y)];
        if (rows.low >= rows.high) continue;
        const int firstRow = rows.low / tileHeight;
        const int lastRow = std::min((rows.high - 1) / tileHeight, tilesDown - 1);
        bool any = false;
        for (int tileRow = firstRow; tileRow <= lastRow; ++tileRow)
            any = any || changedTileRows[static_cast<std::size_t>(tileRow)];
        if (!any) continue;
        for (int x = 0; x < across; ++x) {
            const ScaleTable::Span columns = columnSpans[static_cast<std::size_t>(x)];
            if (columns.low >= columns.high) continue;
            const int firstTile = columns.low / tileWidth;
            const int lastTile = std::min((columns.high - 1) / tileWidth, tilesAcross - 1);
            bool hit = false;
            for (int tileRow = firstRow; tileRow <= lastRow && !hit; ++tileRow) {
                const std::uint8_t* flags =
                    changedTiles.data() + static_cast<std::ptrdiff_t>(tileRow) * tilesAcross;
                for (int tile = firstTile; tile <= lastTile && !hit; ++tile)
                    hit = flags[tile] != 0;
            }
            if (hit) {
                dirty[static_cast<std::size_t>(y * across + x)] = 1;
                anyDirty = true;
            }
        }
    }
}

// The drawings over it.

void Canvas::takeGlyphs(const FrameState& state) {
    const Placement& place = recipe->placement();
    const NRect view = usable(state.view);
    const double size = place.pointerSize(state.pointerScale, view.h);
    const std::string& effect = recipe->settings().pointer.effect;

    std::size_t count = 0;
    if (effect != "none")
        for (const FrameState::Ripple& ripple : state.ripples) {
            if (count == mostRipples) break;
            const double progress = std::isnan(ripple.progress) ? 1 : std::clamp(ripple.progress, 0.0, 1.0);
            const int fade = fadeOf(1 - progress);
            const double side = size * Placement::rippleFactor(effect, progress);
            const CanvasPoint at = place.point(ripple.x, ripple.y, view);
            setGlyph(ripples[count++], {sixteenths(at.x), sixteenths(at.y), sixteenths(side), fade}, false);
        }
    for (std::size_t i = count; i < rippleCount; ++i)
        setGlyph(ripples[i], {}, false);
    rippleCount = count;

    GlyphKey key;
    if (state.pointer && state.pointer->opacity > leastOpacity) {
        const CanvasPoint at = place.point(state.pointer->x, state.pointer->y, view);
        key = {sixteenths(at.x), sixteenths(at.y), sixteenths(size), fadeOf(state.pointer->opacity)};
    }
    setGlyph(pointer, key, true);
}

void Canvas::setGlyph(Glyph& glyph, const GlyphKey& key, bool isPointer) {
    if (key == glyph.key) return;
    mark(glyph.rect);
    const bool sameDrawing = key.x == glyph.key.x && key.y == glyph.key.y && key.size == glyph.key.size &&
                             !glyph.overlay.empty() && key.fade > 0;
    glyph.key = key;
    if (sameDrawing) {
        mark(glyph.rect);
        return;
    }
    glyph.rect = {};
    glyph.overlay.clear();
    if (key.fade == 0 || key.size <= 0) return;

    const PointerStyle& style = recipe->settings().pointer;
    const Glyphs::PointerSheet sheet =
        isPointer ? Glyphs::pointerSheet(style.style)
                  : Glyphs::PointerSheet{Glyphs::rippleSheet, Glyphs::rippleSheet, Glyphs::rippleSheet / 2,
                                         Glyphs::rippleSheet / 2};
    const double k =
        static_cast<double>(key.size) / 16 / (isPointer ? Glyphs::pointerUnit : Glyphs::rippleSheet);
    const double left = static_cast<double>(key.x) / 16 - sheet.hotX * k;
    const double top = static_cast<double>(key.y) / 16 - sheet.hotY * k;
    const PixelRect& window = recipe->windowMask().rect();
    const auto pixel = [](double value) { return static_cast<int>(std::clamp(value, -1e6, 1e6)); };
    // Only what can be seen in the window is drawn.
    const PixelRect area =
        PixelRect{pixel(std::floor(left)) & ~1, pixel(std::floor(top)) & ~1,
                  pixel(std::ceil(left + sheet.width * k)), pixel(std::ceil(top + sheet.height * k))}
            .intersected(window);
    if (area.empty()) return;
    sketch.reset(area.x1 - area.x0, area.y1 - area.y0);
    if (isPointer)
        Glyphs::paintPointer(sketch, style.style, left - area.x0, top - area.y0, k);
    else
        Glyphs::paintClick(sketch, style.effect, left - area.x0, top - area.y0, k);
    glyph.overlay.set(sketch, area.x0, area.y0);
    glyph.rect = glyph.overlay.rect().intersected(window);
    mark(glyph.rect);
}

void Canvas::takeCard(Card& card, const Bitmap& image, double opacity, CanvasPoint center, double travel,
                      const Tint& ground, const PixelRect& area) {
    const int fade = opacity > leastOpacity && !image.empty() ? fadeOf(opacity) : 0;
    // At rest it stands on a whole pixel; on its way there it may stand between two.
    const std::int64_t offset = fade == 0 ? 0
                                          : sixteenths(std::round(center.y - image.height / 2.0) +
                                                       (fade == 255 ? 0 : (1 - opacity) * travel));
    if (fade == card.fade && offset == card.offset) return;
    mark(area);
    if (fade > 0 && (offset != card.offset || card.overlay.empty())) {
        const std::int64_t top = offset >= 0 ? offset / 16 : -((-offset + 15) / 16);
        const int left = static_cast<int>(std::lround(center.x - image.width / 2.0));
        card.overlay.set(image, left, static_cast<int>(top), static_cast<double>(offset - top * 16) / 16,
                         ground);
    }
    card.fade = fade;
    card.offset = offset;
}

void Canvas::setText(TextItem& item, Compositor::Text overlay, int fade) {
    if (!overlay) fade = 0;
    if (fade == 0) overlay.reset();
    if (item.overlay == overlay && item.fade == fade) return;
    if (item.overlay) mark(item.overlay->rect());
    if (overlay) mark(overlay->rect());
    item.overlay = std::move(overlay);
    item.fade = fade;
}

void Canvas::takeTexts(const FrameState& state) {
    if (state.pill && state.pill->opacity > leastOpacity) {
        const bool same = pill.overlay && pill.number == state.pill->speed && pill.words == state.pill->label;
        setText(pill, same ? pill.overlay : recipe->pill(state.pill->speed, state.pill->label),
                fadeOf(state.pill->opacity));
        pill.number = state.pill->speed;
        pill.words = state.pill->label;
    } else {
        setText(pill, nullptr, 0);
    }

    if (state.clock) {
        const double seconds = std::isfinite(*state.clock) ? std::clamp(*state.clock, 0.0, 1e15) : 0;
        const std::int64_t number = static_cast<std::int64_t>(seconds);
        const bool same = clock.overlay && clock.number == number;
        setText(clock, same ? clock.overlay : recipe->clock(RecordCore::clock(seconds)), 255);
        clock.number = number;
    } else {
        setText(clock, nullptr, 0);
    }

    if (state.caption && state.caption->opacity > leastOpacity)
        setText(caption, recipe->caption(state.caption->line, state.caption->word),
                fadeOf(state.caption->opacity));
    else
        setText(caption, nullptr, 0);
}

void Canvas::takeCamera(const PlanarView* camera, const FrameState& state, bool same) {
    const bool show =
        recipe->bubble() && camera && !camera->empty() && camera->width > 0 && camera->height > 0;
    if (!show) {
        if (cameraShown && bubble) {
            mark(bubble->under.rect());
            mark(bubble->outside.rect());
        }
        cameraShown = false;
        return;
    }

    // Steps of the scale that are finer than a thirtieth of a pixel are not drawn.
    const double wanted =
        state.cameraScale < 0.999 ? std::round(std::clamp(state.cameraScale, 0.0, 1.0) * 8192) / 8192 : 1;
    const bool moved = !bubble || wanted != cameraScale;
    if (moved && cameraShown) {
        mark(bubble->under.rect());
        mark(bubble->outside.rect());
    }
    const bool sized = lastCamera.width() == camera->width && lastCamera.height() == camera->height;
    bool fresh = !cameraShown || !sized;
    if (!fresh && !same) {
        const PlanarView before = lastCamera.view();
        for (int plane = 0; plane < 3 && !fresh; ++plane) {
            const std::size_t index = static_cast<std::size_t>(plane);
            for (int y = 0; y < camera->planeHeight(plane) && !fresh; ++y)
                fresh = std::memcmp(camera->planes[index] + camera->strides[index] * y,
                                    before.planes[index] + before.strides[index] * y,
                                    static_cast<std::size_t>(camera->planeWidth(plane))) != 0;
        }
    }
    if (moved || !sized) {
        cameraScale = wanted;
        if (wanted < 1) {
            scaledBubble = recipe->bubbleAt(wanted);
            bubble = &*scaledBubble;
        } else {
            bubble = recipe->bubble();
        }
        const CanvasRect& rect = bubble->shape.rect;
        const int side = std::min(camera->width, camera->height);
        const double a = side / std::max(rect.width, 1e-3);
        const double x = (camera->width - side) / 2.0;
        const double y = (camera->height - side) / 2.0;
        AxisMapping columns{a, x - a * rect.x};
        if (recipe->settings().camera->mirror) columns = {-a, x + side + a * rect.x};
        cameraScaler.make(columns, {a, y - a * rect.y}, camera->width, camera->height,
                          inBlocks(bubble->outside.rect()));
    }
    if (fresh) lastCamera.assign(*camera);
    if (fresh || moved) scaleCamera(lastCamera.view());
    if (moved || !cameraShown) mark(bubble->under.rect());
    if (fresh || moved) mark(bubble->outside.rect());
    cameraShown = true;
}

void Canvas::scaleCamera(const PlanarView& camera) {
    if (bubble->outside.rect().empty()) return;
    const PixelRect area = inBlocks(bubble->outside.rect());
    cameraPicture.resize(area.x1 - area.x0, area.y1 - area.y0);
    constexpr int rows = 32;
    auto scaleRows = [&](int item, int thread) {
        const PixelRect part =
            PixelRect{area.x0, area.y0 + item * rows, area.x1, area.y0 + (item + 1) * rows}.intersected(area);
        for (int plane = 0; plane < 3; ++plane)
            cameraScaler.scale(camera, plane, part, cameraPicture, area.x0, area.y0,
                               scratches[static_cast<std::size_t>(thread)]);
    };
    pool.run((area.y1 - area.y0 + rows - 1) / rows, scaleRows);
}

// Composing.

void Canvas::compose(const PlanarView& source) {
    units.clear();
    int blocks = 0;
    for (int y = 0; y < down; ++y) {
        const std::uint8_t* flags = dirty.data() + static_cast<std::ptrdiff_t>(y) * across;
        for (int x = 0; x < across;) {
            if (!flags[x]) {
                ++x;
                continue;
            }
            const int from = x;
            while (x < across && flags[x])
                ++x;
            units.push_back({y, from, x});
            blocks += x - from;
        }
    }
    const PixelRect all = whole(recipe->placement());
    auto composeItem = [&](int item, int thread) {
        const Unit& unit = units[static_cast<std::size_t>(item)];
        const PixelRect part =
            PixelRect{unit.from * block, unit.row * block, unit.to * block, (unit.row + 1) * block}
                .intersected(all);
        composeUnit(source, part, scratches[static_cast<std::size_t>(thread)]);
    };
    const int count = static_cast<int>(units.size());
    if (blocks < fewBlocks) {
        for (int item = 0; item < count; ++item)
            composeItem(item, 0);
    } else {
        pool.run(count, composeItem);
    }
}

void Canvas::composeUnit(const PlanarView& source, const PixelRect& part, PictureScaler::Scratch& scratch) {
    const Picture& ground = recipe->backdrop();
    const AlphaMask& mask = recipe->windowMask();
    const PixelRect inside = part.intersected(mask.rect());

    // The scaler fills whole blocks; what it writes beside the window is covered by the backdrop next.
    if (!inside.empty())
        for (int plane = 0; plane < 3; ++plane)
            scaler.scale(source, plane, {inside.x0 / block * block, inside.y0, inside.x1, inside.y1}, shown,
                         0, 0, scratch);

    // The backdrop where there is no window.
    for (int plane = 0; plane < 3; ++plane) {
        const int divisor = plane == 0 ? 1 : 2;
        for (int y = part.y0 / divisor; y < part.y1 / divisor; ++y) {
            const auto copy = [&](int from, int to) {
                if (from < to)
                    std::memcpy(shown.row(plane, y) + from / divisor, ground.row(plane, y) + from / divisor,
                                static_cast<std::size_t>((to - from) / divisor));
            };
            const bool windowRow = !inside.empty() && y >= inside.y0 / divisor && y < inside.y1 / divisor;
            if (windowRow) {
                copy(part.x0, inside.x0);
                copy(inside.x1, part.x1);
            } else {
                copy(part.x0, part.x1);
            }
        }
    }

    if (!inside.empty()) {
        for (std::size_t i = 0; i < rippleCount; ++i)
            ripples[i].overlay.drawOn(shown, inside, ripples[i].key.fade);
        pointer.overlay.drawOn(shown, inside, pointer.key.fade);
        layCard(title, titleGround, inside);

        // The window's edge, where its mask is not full.
        const int row = part.y0 / block;
        for (int x = inside.x0 / block; x < (inside.x1 + block - 1) / block; ++x) {
            if (insideWindow[static_cast<std::size_t>(row * across + x)] == 2) continue;
            const PixelRect edge = inside.intersected({x * block, part.y0, (x + 1) * block, part.y1});
            if (edge.empty()) continue;
            for (int plane = 0; plane < 3; ++plane) {
                const int divisor = plane == 0 ? 1 : 2;
                for (int y = edge.y0 / divisor; y < edge.y1 / divisor; ++y)
                    Kernels::mixUnder(shown.row(plane, y) + edge.x0 / divisor,
                                      ground.row(plane, y) + edge.x0 / divisor,
                                      mask.row(plane, y) + (edge.x0 - mask.rect().x0) / divisor,
                                      (edge.x1 - edge.x0) / divisor);
            }
        }
    }

    if (pill.overlay) pill.overlay->drawOn(shown, part, pill.fade);
    if (clock.overlay) clock.overlay->drawOn(shown, part, clock.fade);
    if (cameraShown) {
        bubble->under.drawOn(shown, part, 255);
        const PixelRect& area = bubble->outside.rect();
        const PixelRect seen = part.intersected(area);
        if (!seen.empty())
            for (int plane = 0; plane < 3; ++plane) {
                const int divisor = plane == 0 ? 1 : 2;
                for (int y = seen.y0 / divisor; y < seen.y1 / divisor; ++y)
                    Kernels::mixUnder(shown.row(plane, y) + seen.x0 / divisor,
                                      cameraPicture.row(plane, y - area.y0 / divisor) +
                                          (seen.x0 - area.x0 / block * block) / divisor,
                                      bubble->outside.row(plane, y) + (seen.x0 - area.x0) / divisor,
                                      (seen.x1 - seen.x0) / divisor);
            }
    }
    if (caption.overlay) caption.overlay->drawOn(shown, part, caption.fade);
    recipe->watermark().drawOn(shown, part, 255);
    layCard(end, endGround, part);
}

void Canvas::layCard(const Card& card, const TintSamples& ground, const PixelRect& area) {
    if (card.fade == 0) return;
    const PixelRect image = card.overlay.rect().intersected(area);
    if (image.empty()) {
        ground.layOver(shown, area, card.fade);
        return;
    }
    ground.layOver(shown, {area.x0, area.y0, area.x1, image.y0}, card.fade);
    ground.layOver(shown, {area.x0, image.y0, image.x0, image.y1}, card.fade);
    card.overlay.drawOn(shown, image, card.fade);
    ground.layOver(shown, {image.x1, image.y0, area.x1, image.y1}, card.fade);
    ground.layOver(shown, {area.x0, image.y1, area.x1, area.y1}, card.fade);
}

} // namespace RecordCore
