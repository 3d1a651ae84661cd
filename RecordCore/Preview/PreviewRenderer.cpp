#include "RecordCore/Preview/PreviewRenderer.h"

#include "RecordCore/Rendering/RgbImage.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <utility>

namespace RecordCore {

namespace {

constexpr int bandHeight = 16; ///< of a canvas's blocks

/// Where a canvas lies in an image: as large as fits, in the middle.
PixelRect fitted(int width, int height, const PreviewImage& image) {
    const double factor =
        std::min(static_cast<double>(image.width) / width, static_cast<double>(image.height) / height);
    const int w = std::clamp(static_cast<int>(std::lround(width * factor)), 1, image.width);
    const int h = std::clamp(static_cast<int>(std::lround(height * factor)), 1, image.height);
    const int x = (image.width - w) / 2;
    const int y = (image.height - h) / 2;
    return {x, y, x + w, y + h};
}

void blacken(PreviewImage& image) {
    for (std::size_t i = 0; i < image.pixels.size(); i += 4) {
        image.pixels[i] = image.pixels[i + 1] = image.pixels[i + 2] = 0;
        image.pixels[i + 3] = 255;
    }
}

} // namespace

void PreviewRenderer::update(std::shared_ptr<const Scene> nextScene,
                             std::shared_ptr<const Compositor> nextCompositor) {
    // What goes is freed without the lock.
    const std::lock_guard lock(mutex);
    currentScene.swap(nextScene);
    currentCompositor.swap(nextCompositor);
}

std::shared_ptr<const Scene> PreviewRenderer::scene() const {
    const std::lock_guard lock(mutex);
    return currentScene;
}

std::shared_ptr<const Compositor> PreviewRenderer::compositor() const {
    const std::lock_guard lock(mutex);
    return currentCompositor;
}

void PreviewRenderer::onNextFrame(std::function<void()> callback) {
    const std::lock_guard lock(mutex);
    next = std::move(callback);
}

bool PreviewRenderer::render(const PlanarView& source, const PlanarView* camera, double at,
                             PreviewImage& image) {
    if (!compose(source, camera, at)) return false;
    draw(image);
    announce();
    return true;
}

void PreviewRenderer::announce() {
    std::function<void()> callback;
    {
        const std::lock_guard lock(mutex);
        callback = std::exchange(next, nullptr);
    }
    if (callback) callback();
}

bool PreviewRenderer::compose(const PlanarView& source, const PlanarView* camera, double at,
                              SourceHints hints) {
    std::shared_ptr<const Scene> scene;
    std::shared_ptr<const Compositor> compositor;
    {
        const std::lock_guard lock(mutex);
        scene = currentScene;
        compositor = currentCompositor;
    }
    if (!scene || !compositor) return false;
    if (!canvas || &canvas->compositor() != compositor.get()) {
        canvas = std::make_unique<Canvas>(compositor);
        ++canvasNumber;
        bandVersions.assign(static_cast<std::size_t>(canvas->blocksDown()), version);
    }
    const FrameState state = scene->drawn(at);
    shownView = state.view;
    canvas->frame(source, state, camera, hints);
    isChanged = canvas->changed();
    if (!isChanged) return true;
    ++version;
    const auto blocks = canvas->changedBlocks();
    const auto across = static_cast<std::size_t>(canvas->blocksAcross());
    for (std::size_t band = 0; band < bandVersions.size(); ++band) {
        const auto row = blocks.subspan(band * across, across);
        if (std::any_of(row.begin(), row.end(), [](std::uint8_t block) { return block != 0; }))
            bandVersions[band] = version;
    }
    return true;
}

void PreviewRenderer::draw(PreviewImage& image) {
    if (!canvas) return;
    const Picture& picture = canvas->picture();
    const PixelRect area = fitted(picture.width(), picture.height(), image);
    const bool fresh = image.drawn.canvas != canvasNumber;
    if (fresh && (area.x0 > 0 || area.y0 > 0 || area.x1 < image.width || area.y1 < image.height))
        blacken(image);
    if (area.x1 - area.x0 != picture.width() || area.y1 - area.y0 != picture.height()) {
        drawScaled(area, image);
    } else {
        std::uint8_t* origin =
            image.pixels.data() + area.y0 * image.stride() + static_cast<std::ptrdiff_t>(area.x0) * 4;
        // A row takes in the chroma of its neighbours. Bands that follow one another are drawn at once.
        int from = 0;
        int to = 0;
        const auto flush = [&] {
            if (from < to) toBgra(picture.view(), origin, image.stride(), from, to);
        };
        for (std::size_t band = 0; band < bandVersions.size(); ++band) {
            if (!fresh && bandVersions[band] <= image.drawn.version) continue;
            const int top = static_cast<int>(band) * bandHeight;
            const int low = std::max(top - 1, 0);
            const int high = std::min(top + bandHeight + 1, picture.height());
            if (low > to) {
                flush();
                from = low;
            }
            to = high;
        }
        flush();
    }
    image.drawn = {canvasNumber, version};
}

void PreviewRenderer::drawScaled(const PixelRect& area, PreviewImage& image) {
    const Picture& picture = canvas->picture();
    const int width = area.x1 - area.x0;
    const int height = area.y1 - area.y0;
    // The scaler works in blocks and even rows; what is too much is not drawn.
    const PixelRect padded{0, 0, (width + 15) / 16 * 16, (height + 1) / 2 * 2};
    if (scaledCanvas != canvasNumber || scaledArea.x1 != padded.x1 || scaledArea.y1 != padded.y1) {
        scaledCanvas = canvasNumber;
        scaledArea = padded;
        scaler.make({static_cast<double>(picture.width()) / width, 0},
                    {static_cast<double>(picture.height()) / height, 0}, picture.width(), picture.height(),
                    padded);
        scaled.resize(padded.x1, padded.y1);
    }
    for (int plane = 0; plane < 3; ++plane)
        scaler.scale(picture.view(), plane, padded, scaled, 0, 0, scratch);
    PlanarView shown = scaled.view();
    shown.width = width;
    shown.height = height;
    toBgra(shown, image.pixels.data() + area.y0 * image.stride() + static_cast<std::ptrdiff_t>(area.x0) * 4,
           image.stride(), 0, height);
}

} // namespace RecordCore
