#pragma once

#include "RecordCore/Model/Look.h"
#include "RecordCore/Model/NRect.h"
#include "RecordCore/Model/OutputFormat.h"
#include "RecordCore/Model/Styles.h"
#include "RecordCore/Rendering/Bitmap.h"
#include "RecordCore/Rendering/FloatPlane.h"
#include "RecordCore/Rendering/Overlay.h"
#include "RecordCore/Rendering/Picture.h"
#include "RecordCore/Rendering/Placement.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

namespace RecordCore {

/// Everything a film's looks depend on.
struct CompositorSettings {
    OutputFormat format = OutputFormat::wide;
    double sourceAspect = 16.0 / 9; ///< width over height of the source after the crop
    Look look;
    Cards cards;
    double scale = 1;          ///< canvas pixels per base unit, up to 4
    std::optional<NRect> crop; ///< of the source, when one is in force
    bool watermark = false;
    std::optional<CameraStyle> camera; ///< none: no camera bubble
    PointerStyle pointer;
    std::optional<CaptionLook> captions;

    bool operator==(const CompositorSettings&) const = default;
};

/// The recipe of a film's pictures: all that does not change from frame to frame is prepared once, when it is
/// made (about 0.2 s at scale 1). Immutable, so any number of canvases on any threads may share it; only the
/// cache of text images changes, under its own lock. Making one never fails: what cannot be had (a wallpaper
/// file) is left out, absurd numbers are limited.
class Compositor {
public:
    /// `check` is called every few hundredths of a second while it is being made; what it throws goes
    /// through.
    explicit Compositor(CompositorSettings settings, const std::function<void()>& check = {});
    Compositor(const Compositor&) = delete;
    Compositor& operator=(const Compositor&) = delete;

    const CompositorSettings& settings() const { return given; }
    const Placement& placement() const { return place; }
    int width() const { return place.width; }   ///< of the canvas in pixels, even
    int height() const { return place.height; } ///< even

    /// Whether the backdrop was judged light.
    bool brightBackdrop() const { return bright; }
    /// Backdrop, shadow, window ring and header text.
    const Picture& backdrop() const { return ground; }
    /// 255 inside the window, 0 outside; its rectangle holds all of the window.
    const AlphaMask& windowMask() const { return mask; }

    /// Title and end card drawings; empty when there are none.
    const Bitmap& titleImage() const { return title; }
    const Bitmap& endImage() const { return end; }
    /// The badge at its place; empty when not asked for.
    const Overlay& watermark() const { return badge; }

    /// The camera bubble at one size.
    struct Bubble {
        double scale = 1;
        RoundedRect shape;
        AlphaMask outside; ///< 255 where the camera is not seen
        Overlay under;     ///< shadow and ring
    };
    /// The bubble at its full size; null when there is none.
    const Bubble* bubble() const { return fullBubble.get(); }
    /// The bubble scaled about its centre.
    Bubble bubbleAt(double cameraScale) const;

    /// Text images at their places, from the cache or drawn now.
    using Text = std::shared_ptr<const Overlay>;
    Text pill(std::int64_t speed, const std::string& label) const;
    Text clock(const std::string& text) const;
    /// Null when there is no such line. The active word is lit in the style "highlight" only.
    Text caption(int line, int activeWord) const;

    std::size_t cachedTexts() const;

private:
    void prepareBackdrop(const std::function<void()>& check);
    void prepareBubble();
    void prepareWatermark();
    template <typename Draw>
    Text cached(const std::string& key, Draw draw) const;

    CompositorSettings given;
    Placement place;
    bool bright = false;
    Picture ground;
    AlphaMask mask;
    Bitmap title;
    Bitmap end;
    Overlay badge;
    std::unique_ptr<Bubble> fullBubble;
    std::optional<RoundedRect> bubbleShape;
    FloatPlane bubbleShadow; ///< alpha of the shadow, in a square about the bubble
    int bubbleMargin = 0;    ///< pixels of that square on each side of the bubble

    mutable std::mutex cacheLock; ///< guards what follows
    mutable std::unordered_map<std::string, Text> texts;
    mutable std::size_t textBytes = 0;
};

} // namespace RecordCore
