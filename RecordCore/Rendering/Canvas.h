#pragma once

#include "RecordCore/Motion/FrameState.h"
#include "RecordCore/Rendering/Compositor.h"
#include "RecordCore/Rendering/PictureScaler.h"
#include "RecordCore/Rendering/WorkerPool.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <vector>

namespace RecordCore {

/// What the caller knows about the pictures it hands in; saves comparing them.
struct SourceHints {
    bool sameSource = false; ///< the source picture equals that of the frame before, sample for sample
    bool sameCamera = false; ///< likewise the camera picture
};

/// The picture of one consumer (an export, a preview). It remembers what it shows and redraws only the
/// blocks that can differ; the result is the same as of drawing everything, whatever was shown before.
/// Used by one thread at a time; rows are shared out to threads of its own.
class Canvas {
public:
    /// `threads` counts the caller; 0 takes the number of processors. The picture does not depend on it.
    explicit Canvas(std::shared_ptr<const Compositor> compositor, int threads = 0);
    ~Canvas();

    /// Composes a frame. The planes of source and camera are only read during the call. Without a source the
    /// window is black; without a camera no bubble is drawn. The picture returned stays as it is until the
    /// next call.
    const Picture& frame(const PlanarView& source, const FrameState& state,
                         const PlanarView* camera = nullptr, SourceHints hints = {});

    /// The picture shown.
    const Picture& picture() const { return shown; }

    /// One byte for each 16 × 16 block of the picture, in rows: 0 where the last call changed nothing. (A
    /// block marked as changed may have been redrawn to the same samples.)
    std::span<const std::uint8_t> changedBlocks() const { return dirty; }
    int blocksAcross() const { return across; }
    int blocksDown() const { return down; }
    /// Whether the last call can have changed anything.
    bool changed() const { return anyDirty; }

    const Compositor& compositor() const { return *recipe; }
    /// Forgets what is shown: the next frame is drawn whole.
    void invalidate() { everythingStale = true; }

private:
    /// A glyph drawn from outlines: what it looks like and where, in sixteenths of a pixel.
    struct GlyphKey {
        std::int64_t x = 0; ///< of the point it marks
        std::int64_t y = 0;
        std::int64_t size = 0;
        int fade = 0; ///< 0…255; 0 is not drawn
        bool operator==(const GlyphKey&) const = default;
    };
    struct Glyph {
        GlyphKey key;
        Overlay overlay;
        PixelRect rect; ///< what it covers; empty when it is not drawn
    };
    /// A drawing that moves up or down while it fades.
    struct Card {
        int fade = 0;
        std::int64_t offset = 0; ///< sixteenths of a pixel
        Overlay overlay;
    };
    struct TextItem {
        Compositor::Text overlay;
        int fade = 0;
        std::int64_t number = 0; ///< what the text was made from, to save looking it up again
        std::string words;
    };
    struct Unit {
        int row;
        int from;
        int to;
    };

    void takeSource(const PlanarView& source, const FrameState& state, bool same);
    void compareSource(const PlanarView& source);
    void markSourceTiles();
    void makeMapping(const SourceMapping& mapping, const PlanarView& source);
    void takeGlyphs(const FrameState& state);
    void setGlyph(Glyph& glyph, const GlyphKey& key, bool isPointer);
    void takeCard(Card& card, const Bitmap& image, double opacity, CanvasPoint center, double travel,
                  const Tint& ground, const PixelRect& area);
    void takeTexts(const FrameState& state);
    void setText(TextItem& item, Compositor::Text overlay, int fade);
    void takeCamera(const PlanarView* camera, const FrameState& state, bool same);
    void scaleCamera(const PlanarView& camera);

    void markAll();
    void mark(const PixelRect& rect);
    void compose(const PlanarView& source);
    void composeUnit(const PlanarView& source, const PixelRect& part, PictureScaler::Scratch& scratch);
    void layCard(const Card& card, const TintSamples& ground, const PixelRect& area);

    std::shared_ptr<const Compositor> recipe;
    WorkerPool pool;
    std::vector<PictureScaler::Scratch> scratches;
    Picture shown;
    int across = 0;
    int down = 0;
    std::vector<std::uint8_t> dirty;
    std::vector<std::uint8_t> insideWindow; ///< per block: 0 outside, 1 partly, 2 wholly
    std::vector<Unit> units;
    bool anyDirty = false;
    bool everythingStale = true;

    // The source as shown.
    std::optional<SourceMapping> mapping;
    int sourceWidth = 0;
    int sourceHeight = 0;
    PictureScaler scaler;
    Picture lastSource;
    bool lastSourceKnown = false; ///< whether that is the source shown
    int tilesAcross = 0;
    int tilesDown = 0;
    std::vector<std::uint8_t> changedTiles;
    std::vector<std::uint8_t> changedTileRows;
    std::vector<ScaleTable::Span> columnSpans; ///< source columns each column of blocks takes in
    std::vector<ScaleTable::Span> rowSpans;
    Picture nothing; ///< shown without a source

    // The drawings over it.
    Bitmap sketch;
    std::vector<Glyph> ripples;
    std::size_t rippleCount = 0;
    Glyph pointer;
    Card title;
    Card end;
    TintSamples titleGround;
    TintSamples endGround;
    TextItem pill;
    TextItem clock;
    TextItem caption;

    // The camera.
    bool cameraShown = false;
    double cameraScale = 1;
    std::optional<Compositor::Bubble> scaledBubble;
    const Compositor::Bubble* bubble = nullptr;
    PictureScaler cameraScaler;
    Picture lastCamera;
    Picture cameraPicture; ///< scaled, as large as the bubble's rectangle
};

} // namespace RecordCore
