// Draws stills of many looks into the folder named by OMBREL_PICTURES, to be looked at. A raw yuv420p frame
// named by OMBREL_FRAME ("file:1920x1080") and one by OMBREL_CAMERA are used when given.

#include "RecordCore/Rendering/Canvas.h"
#include "RecordCore/Rendering/Fonts.h"
#include "RecordCore/Rendering/PngFile.h"
#include "Tests/Rendering/SamplePictures.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>

using namespace RecordCore;

namespace {

Picture rawPicture(const char* variable, int width, int height) {
    const char* given = std::getenv(variable);
    if (!given) return SamplePictures::screen(width, height);
    const std::string text = given;
    const auto colon = text.rfind(':');
    if (std::sscanf(text.c_str() + colon + 1, "%dx%d", &width, &height) != 2)
        return SamplePictures::screen(1920, 1080);
    Picture picture(width, height);
    std::ifstream file(text.substr(0, colon), std::ios::binary);
    for (int plane = 0; plane < 3; ++plane)
        for (int y = 0; y < picture.planeHeight(plane); ++y)
            file.read(reinterpret_cast<char*>(picture.row(plane, y)), picture.planeWidth(plane));
    return picture;
}

TEST(Gallery, draws) {
    const char* folder = std::getenv("OMBREL_PICTURES");
    if (!folder) GTEST_SKIP() << "set OMBREL_PICTURES to a folder to get the pictures";
    std::filesystem::create_directories(folder);
    const Picture source = rawPicture("OMBREL_FRAME", 1920, 1080);
    const Picture camera = rawPicture("OMBREL_CAMERA", 640, 480);
    const PlanarView cameraView = camera.view();
    const char* only = std::getenv("OMBREL_ONLY");

    CompositorSettings plain;
    plain.sourceAspect = static_cast<double>(source.width()) / source.height();
    plain.look.padding = 0.011;
    plain.look.radius = 0.62 * 0.02;
    plain.look.blur = 4.8;
    FrameState still;
    still.view = {0, 0, 1, 1};
    still.pointer = FrameState::Pointer{0.42, 0.4, 1};

    const auto draw = [&](const std::string& name, CompositorSettings settings, FrameState state,
                          bool withCamera) {
        if (only && name.find(only) == std::string::npos) return;
        // The view takes the window's shape, as a camera path's does.
        const auto compositor = std::make_shared<const Compositor>(settings);
        const CanvasRect& window = compositor->placement().window.rect;
        const double aspect = window.width / window.height;
        if (state.view == NRect::full() && settings.format != OutputFormat::wide) {
            const double w = std::min(1.0, aspect / settings.sourceAspect);
            state.view = NRect::centered(0.45, 0.5, w, w * settings.sourceAspect / aspect).clampedToUnit();
        }
        Canvas canvas(compositor);
        const Picture& picture = canvas.frame(source.view(), state, withCamera ? &cameraView : nullptr);
        writePng(std::filesystem::path(folder) / (name + ".png"), RgbImage::of(picture.view()));
    };

    FrameState everything = still;
    everything.view = {0.2, 0.15, 0.6, 0.6};
    everything.ripples = {{0.42, 0.4, 0.35}};
    everything.pill = FrameState::Pill{12, "skipping 1:52 of waiting", 1};
    everything.clock = 83;
    everything.caption = FrameState::Caption{0, 3, 1};
    CompositorSettings rich = plain;
    rich.cards = {"Four agents, one afternoon", "What they did while I had lunch", "Thanks for watching",
                  "Made with Ombrel Record", true};
    rich.camera = CameraStyle{};
    rich.watermark = true;
    rich.look.shadow = 0.6;
    rich.look.padding = 0.05;
    rich.captions =
        CaptionLook{{{"and", "then", "it", "finally", "compiled", "without"}}, "highlight", 0.045, 0.08};

    draw("default", plain, still, false);
    CompositorSettings twice = plain;
    twice.scale = 2;
    draw("default-2x", twice, still, false);
    for (const OutputFormat format : allOutputFormats) {
        std::string name(rawValue(format));
        std::replace(name.begin(), name.end(), ':', 'x');
        CompositorSettings settings = rich;
        settings.format = format;
        draw("format-" + name, settings, everything, true);
    }
    for (const char* style : {"arrow", "light", "outline", "dot"})
        for (const char* effect : {"ripple", "ring", "spotlight"}) {
            CompositorSettings settings = plain;
            settings.pointer = {style, effect};
            FrameState state = still;
            state.view = {0.3, 0.3, 0.3, 0.3};
            state.ripples = {{0.42, 0.4, 0.1}, {0.5, 0.5, 0.5}, {0.36, 0.5, 0.85}};
            draw(std::string("pointer-") + style + "-" + effect, settings, state, false);
        }
    for (const char* style : {"highlight", "clean", "boxed", "bold"}) {
        CompositorSettings settings = rich;
        settings.captions->style = style;
        settings.captions->lines = {{"and", "then", "it", "finally", "compiled", "without", "a", "single",
                                     "warning,", "which", "surprised", "everyone", "in", "the", "room"}};
        draw(std::string("caption-") + style, settings, everything, true);
    }
    for (const char* corner : {"tl", "tc", "tr", "ml", "mr", "bl", "bc", "br"})
        for (const char* shape : {"circle", "square", "rounded"}) {
            if (std::string(corner) != "tl" && std::string(corner) != "br" && std::string(shape) != "circle")
                continue;
            CompositorSettings settings = rich;
            settings.camera->corner = corner;
            settings.camera->shape = shape;
            settings.camera->border = std::string(corner) == "tl";
            FrameState state = still;
            state.cameraScale = std::string(corner) == "ml" ? 0.8 : 1;
            draw(std::string("camera-") + corner + "-" + shape, settings, state, true);
        }
    for (const std::string_view name : Backdrop::names()) {
        CompositorSettings settings = rich;
        settings.look.backdrop = *Backdrop::preset(name);
        draw("backdrop-" + std::string(name), settings, still, false);
        settings.format = OutputFormat::tall;
        draw("backdrop-tall-" + std::string(name), settings, still, false);
    }
    FrameState titled = still;
    titled.titleOpacity = 1;
    draw("title", rich, titled, false);
    titled.titleOpacity = 0.5;
    draw("title-half", rich, titled, false);
    FrameState ended = everything;
    ended.endOpacity = 1;
    draw("end", rich, ended, true);
    CompositorSettings solid = rich;
    solid.look.solid = Rgb{0.95, 0.6, 0.2};
    solid.look.shadow = 1;
    draw("solid", solid, everything, true);
    if (const char* wallpaper = std::getenv("OMBREL_WALLPAPER")) {
        CompositorSettings settings = rich;
        settings.look.wallpaper = wallpaper;
        settings.look.blur = 0;
        draw("wallpaper", settings, everything, true);
        settings.look.blur = 30;
        draw("wallpaper-blurred", settings, everything, true);
    }
}

} // namespace
