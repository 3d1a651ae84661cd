#pragma once

#include "RecordCore/Motion/Scene.h"
#include "RecordCore/Preview/PreviewImage.h"
#include "RecordCore/Rendering/Canvas.h"
#include "RecordCore/Rendering/Compositor.h"
#include "RecordCore/Rendering/PictureScaler.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

namespace RecordCore {

/// Composes the frames of a preview, by the scene and the compositor of the moment, which an editor swaps
/// while the film plays. `update`, `scene`, `compositor` and `onNextFrame` may be called from any thread;
/// frames are rendered by one thread at a time.
class PreviewRenderer {
public:
    /// Both change together: every frame is composed by what belongs together.
    void update(std::shared_ptr<const Scene> scene, std::shared_ptr<const Compositor> compositor);

    std::shared_ptr<const Scene> scene() const;
    std::shared_ptr<const Compositor> compositor() const;

    /// Is called once, on the rendering thread, when the next frame has been rendered.
    void onNextFrame(std::function<void()> callback);

    /// Composes the frame at output time `at` and draws it into `image`, scaled to fit and in the middle,
    /// with black around it. Without a scene and compositor nothing is drawn. Whether it was.
    bool render(const PlanarView& source, const PlanarView* camera, double at, PreviewImage& image);

    // The same in two steps, for those who want to know whether there is anything to draw.

    /// Whether there is a picture; it is `changed` when it may differ from the one composed before.
    bool compose(const PlanarView& source, const PlanarView* camera, double at, SourceHints hints = {});
    bool changed() const { return isChanged; }
    /// The picture composed last; null before the first.
    const Picture* picture() const { return canvas ? &canvas->picture() : nullptr; }
    /// What it shows of the recording, and where.
    const NRect& view() const { return shownView; }
    const Compositor* composedBy() const { return canvas ? &canvas->compositor() : nullptr; }
    /// Draws it; only what has changed since when the image was drawn the last time.
    void draw(PreviewImage& image);
    /// The frame is done: calls `onNextFrame`.
    void announce();

private:
    void drawScaled(const PixelRect& area, PreviewImage& image);

    mutable std::mutex mutex;
    // Guarded by the mutex.
    std::shared_ptr<const Scene> currentScene;
    std::shared_ptr<const Compositor> currentCompositor;
    std::function<void()> next;

    // Of the rendering thread.
    std::unique_ptr<Canvas> canvas;
    std::uint64_t canvasNumber = 0;
    std::uint64_t version = 0;
    std::vector<std::uint64_t> bandVersions; ///< of each row of blocks: when it changed last
    bool isChanged = false;
    NRect shownView = NRect::full();
    PictureScaler scaler; ///< for images of another size
    PictureScaler::Scratch scratch;
    PixelRect scaledArea;
    std::uint64_t scaledCanvas = 0;
    Picture scaled;
};

} // namespace RecordCore
