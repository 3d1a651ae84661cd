#include "RecordCore/Rendering/Canvas.h"
#include "RecordCore/Rendering/ColorMatrix.h"
#include "RecordCore/Rendering/Fonts.h"
#include "RecordCore/Rendering/Kernels/Kernels.h"
#include "RecordCore/Rendering/RgbImage.h"
#include "Tests/Rendering/SamplePictures.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

using namespace RecordCore;
using SamplePictures::Random;

namespace {

constexpr double nan = std::numeric_limits<double>::quiet_NaN();

class CanvasTest : public ::testing::Test {
protected:
    void SetUp() override { Fonts::useOnlyCarriedFonts(true); }
    void TearDown() override { Fonts::useOnlyCarriedFonts(false); }

    static std::shared_ptr<const Compositor> make(CompositorSettings settings) {
        return std::make_shared<const Compositor>(std::move(settings));
    }

    static CompositorSettings everything(OutputFormat format, double scale) {
        CompositorSettings settings;
        settings.format = format;
        settings.scale = scale;
        settings.look.padding = 0.03;
        settings.look.radius = 0.0124;
        settings.look.shadow = 0.5;
        settings.cards = {"Title", "and subtitle", "The end", "of it", true};
        settings.camera = CameraStyle{};
        settings.watermark = true;
        settings.captions = CaptionLook{{{"one", "two", "three"}, {"four"}}, "highlight", 0.05, 0.1};
        return settings;
    }

    static FrameState randomState(Random& random, const FrameState& before) {
        FrameState state = before;
        switch (random.below(14)) {
        case 0:
            state.view = NRect::centered(random.unit(), random.unit(), 0.5, 0.5).clampedToUnit();
            break;
        case 1:
            state.view.x += random.between(-0.00001, 0.00001);
            break;
        case 2:
            state.pointer = FrameState::Pointer{random.unit(), random.unit(), random.unit()};
            break;
        case 3:
            state.pointer.reset();
            break;
        case 4:
            state.ripples.clear();
            for (int i = random.below(4); i > 0; --i)
                state.ripples.push_back({random.unit(), random.unit(), random.unit()});
            break;
        case 5:
            state.pill = FrameState::Pill{random.below(50), "fast-forward", random.unit()};
            break;
        case 6:
            state.pill.reset();
            break;
        case 7:
            state.titleOpacity = random.below(3) / 2.0;
            break;
        case 8:
            state.endOpacity = random.below(4) == 0 ? random.unit() : 0;
            break;
        case 9:
            state.clock = random.below(100);
            break;
        case 10:
            state.cameraScale = random.below(2) ? 1 : random.between(0.76, 1);
            break;
        case 11:
            state.caption = FrameState::Caption{random.below(3), random.below(4), random.unit()};
            break;
        case 12:
            state.caption.reset();
            break;
        default:
            state.pointerScale = random.between(1, 2);
            break;
        }
        return state;
    }
};

TEST_F(CanvasTest, redrawsExactlyWhatDrawingEverythingDraws) {
    for (const OutputFormat format : allOutputFormats) {
        SCOPED_TRACE(std::string(rawValue(format)));
        Random random(static_cast<std::uint32_t>(format) + 11);
        CompositorSettings settings = everything(format, 0.34);
        settings.pointer.effect = format == OutputFormat::tall ? "spotlight" : "ripple";
        if (format == OutputFormat::square) settings.crop = NRect{0.1, 0.05, 0.7, 0.9};
        const auto compositor = make(settings);
        Canvas canvas(compositor, 2);
        Picture source = SamplePictures::screen(501, 333);
        Picture camera = SamplePictures::screen(120, 90, 9);
        FrameState state;
        Picture before = canvas.picture();
        int stillFrames = 0;
        for (int i = 0; i < 160; ++i) {
            if (random.below(3) == 0) state = randomState(random, state);
            SourceHints hints{true, true};
            if (i == 0) hints = {};
            if (random.below(3) == 0) {
                SamplePictures::scribble(source, random.below(500), random.below(330), 1 + random.below(40),
                                         1 + random.below(20), static_cast<std::uint32_t>(i));
                hints.sameSource = false;
            } else if (random.below(2) == 0) {
                hints.sameSource = false; // not said, though it is
            }
            if (random.below(6) == 0) {
                SamplePictures::scribble(camera, random.below(100), random.below(80), 9, 9,
                                         static_cast<std::uint32_t>(i));
                hints.sameCamera = false;
            }
            const PlanarView cameraView = camera.view();
            const bool withCamera = i % 50 < 40;
            if (i % 50 == 0 || i % 50 == 40) hints.sameCamera = false;
            canvas.frame(source.view(), state, withCamera ? &cameraView : nullptr, hints);

            Canvas fresh(compositor, 1);
            ASSERT_TRUE(canvas.picture() ==
                        fresh.frame(source.view(), state, withCamera ? &cameraView : nullptr))
                << "frame " << i;

            // A block that is not marked has not changed by a single sample.
            bool anyMarked = false;
            for (int y = 0; y < canvas.blocksDown(); ++y)
                for (int x = 0; x < canvas.blocksAcross(); ++x) {
                    if (canvas.changedBlocks()[static_cast<std::size_t>(y * canvas.blocksAcross() + x)]) {
                        anyMarked = true;
                        continue;
                    }
                    for (int plane = 0; plane < 3; ++plane) {
                        const int size = plane == 0 ? 16 : 8;
                        const int width = std::min(size, before.planeWidth(plane) - x * size);
                        for (int j = y * size; j < std::min((y + 1) * size, before.planeHeight(plane)); ++j)
                            ASSERT_EQ(0, std::memcmp(before.row(plane, j) + x * size,
                                                     canvas.picture().row(plane, j) + x * size,
                                                     static_cast<std::size_t>(width)))
                                << "frame " << i;
                    }
                }
            EXPECT_EQ(anyMarked, canvas.changed());
            stillFrames += !canvas.changed();
            before = canvas.picture();
        }
        EXPECT_GT(stillFrames, 10); // and it does leave alone what stays
    }
}

TEST_F(CanvasTest, comesToRest) {
    // A camera and a pointer that close in on a place, as springs do, change nothing any more long before
    // their numbers stop changing.
    const auto compositor = make(everything(OutputFormat::wide, 0.5));
    Canvas canvas(compositor, 1);
    const Picture source = SamplePictures::screen(640, 360);
    int lastChange = 0;
    for (int i = 0; i < 200; ++i) {
        const double left = 0.3 * std::exp(-0.12 * i);
        FrameState state;
        state.view = {0.2 + left, 0.1, 0.6, 0.6};
        state.pointer = FrameState::Pointer{0.5 - left, 0.4, 1};
        canvas.frame(source.view(), state, nullptr, {i > 0, false});
        if (canvas.changed()) lastChange = i;
    }
    EXPECT_LT(lastChange, 110);
    EXPECT_GT(lastChange, 30);
}

TEST_F(CanvasTest, isTheSameWithAnyThreadsAndInstructions) {
    const auto compositor = make(everything(OutputFormat::portrait, 0.6));
    const Picture source = SamplePictures::screen(1201, 777);
    const Picture camera = SamplePictures::screen(320, 240, 4);
    const PlanarView cameraView = camera.view();
    FrameState state;
    state.view = {0.11, 0.07, 0.47, 0.8};
    state.pointer = FrameState::Pointer{0.3, 0.3, 0.8};
    state.ripples = {{0.31, 0.3, 0.3}};
    state.cameraScale = 0.83;
    state.caption = FrameState::Caption{0, 1, 0.7};
    Canvas reference(compositor, 1);
    reference.frame(source.view(), state, &cameraView);
    for (const int threads : {2, 3, 7}) {
        Canvas canvas(compositor, threads);
        EXPECT_TRUE(canvas.frame(source.view(), state, &cameraView) == reference.picture()) << threads;
    }
    for (int target = 0; target < Kernels::targetCount(); ++target) {
        Kernels::useTarget(target);
        Canvas canvas(compositor, 1);
        EXPECT_TRUE(canvas.frame(source.view(), state, &cameraView) == reference.picture())
            << Kernels::targetName();
    }
    Kernels::useTarget(-1);
}

TEST_F(CanvasTest, showsTheSourceWhereItBelongs) {
    // Padding 0 on a 16:9 source of twice the canvas: each pixel is the mean of its four, the frame exactly
    // fills.
    CompositorSettings settings;
    settings.scale = 0.25;
    Picture source(960, 540);
    for (int y = 0; y < 540; ++y)
        for (int x = 0; x < 960; ++x)
            source.row(0, y)[x] = static_cast<std::uint8_t>(20 + x * 100 / 960 + y * 100 / 540);
    Canvas canvas(make(settings), 1);
    FrameState state;
    const Picture& full = canvas.frame(source.view(), state);
    ASSERT_EQ(full.width(), 480);
    for (const int y : {0, 7, 100, 269})
        for (const int x : {0, 5, 240, 479}) {
            const double exact = 20 + (2 * x + 0.5) * 100 / 960 + (2 * y + 0.5) * 100 / 540;
            EXPECT_NEAR(full.row(0, y)[x], exact, 1.6) << x << ' ' << y;
        }
    // A quarter of it, from a crop: source pixels one to one.
    settings.crop = NRect{0.25, 0.25, 0.5, 0.5};
    state.view = {0.5, 0.5, 0.5, 0.5};
    settings.scale = 0.125;
    Canvas cropped(make(settings), 1);
    const Picture& part = cropped.frame(source.view(), state);
    for (const int y : {0, 50, 134})
        for (const int x : {0, 100, 239})
            EXPECT_EQ(part.row(0, y)[x], source.row(0, 270 + y)[480 + x]) << x << ' ' << y;
}

TEST_F(CanvasTest, keepsTheFractionsOfTheWindowsEdges) {
    // Black source on a white backdrop: luma at the edges is the covered part.
    CompositorSettings settings;
    settings.look.solid = Rgb{1, 1, 1};
    settings.look.padding = 0.02;
    settings.sourceAspect = 1.61;
    settings.scale = 0.5;
    const auto compositor = make(settings);
    const CanvasRect& window = compositor->placement().window.rect;
    Canvas canvas(compositor, 1);
    const Picture source = SamplePictures::plain(644, 400, {0, 0, 0});
    const Picture& picture = canvas.frame(source.view(), {});
    const auto expected = [](double covered, int under) { return covered * 16 + (1 - covered) * under; };
    const int y = 270;
    const int left = static_cast<int>(window.x);
    const int right = static_cast<int>(window.maxX());
    const int under = compositor->backdrop().row(0, y)[left];
    EXPECT_NEAR(picture.row(0, y)[left], expected(left + 1 - window.x, under), 1);
    EXPECT_NEAR(picture.row(0, y)[right],
                expected(window.maxX() - right, compositor->backdrop().row(0, y)[right]), 1);
    EXPECT_EQ(picture.row(0, y)[left + 1], 16);
    EXPECT_EQ(picture.row(0, y)[left - 2], 235);
    const int bottom = static_cast<int>(window.maxY());
    EXPECT_NEAR(picture.row(0, bottom)[480],
                expected(window.maxY() - bottom, compositor->backdrop().row(0, bottom)[480]), 1);
}

TEST_F(CanvasTest, obeysTheThresholds) {
    const auto compositor = make(everything(OutputFormat::wide, 0.3));
    const Picture source = SamplePictures::plain(640, 360, {0.5, 0.5, 0.5});
    const Picture camera = SamplePictures::plain(64, 64, {0.9, 0.1, 0.1});
    Canvas plain(compositor, 1);
    plain.frame(source.view(), {});
    const auto draws = [&](FrameState state) {
        Canvas canvas(compositor, 1);
        return !(canvas.frame(source.view(), state) == plain.picture());
    };
    const auto with = [](auto change) {
        FrameState state;
        change(state);
        return state;
    };
    for (const double opacity : {0.01, 0.0, -1.0, nan}) {
        EXPECT_FALSE(draws(with([&](FrameState& s) { s.pointer = FrameState::Pointer{0.5, 0.5, opacity}; })));
        EXPECT_FALSE(draws(with([&](FrameState& s) { s.pill = FrameState::Pill{3, "x", opacity}; })));
        EXPECT_FALSE(draws(with([&](FrameState& s) { s.caption = FrameState::Caption{0, 0, opacity}; })));
        EXPECT_FALSE(draws(with([&](FrameState& s) { s.titleOpacity = opacity; })));
        EXPECT_FALSE(draws(with([&](FrameState& s) { s.endOpacity = opacity; })));
    }
    EXPECT_TRUE(draws(with([](FrameState& s) { s.pointer = FrameState::Pointer{0.5, 0.5, 0.03125}; })));
    EXPECT_TRUE(draws(with([](FrameState& s) { s.pill = FrameState::Pill{3, "x", 0.03125}; })));
    EXPECT_TRUE(draws(with([](FrameState& s) { s.titleOpacity = 0.03125; })));
    EXPECT_TRUE(draws(with([](FrameState& s) { s.clock = 0; })));
    for (const int line : {-1, 2, 1000})
        EXPECT_FALSE(draws(with([&](FrameState& s) { s.caption = FrameState::Caption{line, 0, 1}; })));
    EXPECT_TRUE(draws(with([](FrameState& s) { s.ripples = {{0.5, 0.5, 0.5}}; })));
    EXPECT_FALSE(draws(with([](FrameState& s) { s.ripples = {{0.5, 0.5, 1}}; })));

    CompositorSettings quiet = everything(OutputFormat::wide, 0.3);
    quiet.pointer.effect = "none";
    Canvas canvas(make(quiet), 1);
    EXPECT_TRUE(canvas.frame(source.view(), with([](FrameState& s) {
                                 s.ripples = {{0.5, 0.5, 0.5}};
                             })) == plain.picture());
}

TEST_F(CanvasTest, placesThePointersHotSpot) {
    // The first dark pixels of the pointer, seen from above and from the left, are at its point.
    CompositorSettings settings;
    const Picture source = SamplePictures::plain(960, 540, {0.5, 0.5, 0.5});
    for (const double scale : {1.0, 2.0})
        for (const double zoom : {1.0, 0.4}) {
            settings.scale = scale;
            Canvas canvas(make(settings), 2);
            FrameState state;
            state.view = {0.1, 0.2, zoom, zoom};
            state.pointer = FrameState::Pointer{0.1 + zoom * 0.5, 0.2 + zoom * 0.5, 1};
            const Picture& picture = canvas.frame(source.view(), state);
            const int ground = picture.row(0, 4)[4];
            int top = 1 << 20;
            int left = 1 << 20;
            for (int y = 0; y < picture.height(); ++y)
                for (int x = 0; x < picture.width(); ++x)
                    if (picture.row(0, y)[x] > ground + 60) { // the light edge, not the shadow
                        top = std::min(top, y);
                        left = std::min(left, x);
                    }
            const double k = 1080 * scale * 1.6 * 0.026 / zoom / 118;
            EXPECT_NEAR(top, 540 * scale, 2.5 * k + 1);
            EXPECT_NEAR(left, 960 * scale, 2.5 * k + 1);
        }
}

TEST_F(CanvasTest, drawsTheCamerasMiddleMirrored) {
    // Left third of the middle square red, the rest blue; outside the square green, never seen.
    Picture camera(160, 90);
    for (int plane = 0; plane < 3; ++plane)
        for (int y = 0; y < camera.planeHeight(plane); ++y)
            for (int x = 0; x < camera.planeWidth(plane); ++x) {
                const int place = plane == 0 ? x : 2 * x;
                const Rgb color = place < 30 || place >= 130 ? Rgb{0, 1, 0}
                                  : place < 65               ? Rgb{1, 0, 0}
                                                             : Rgb{0, 0, 1};
                const auto samples = Bt709::fromRgb(color);
                const double values[] = {samples.y, samples.cb, samples.cr};
                camera.row(plane, y)[x] = static_cast<std::uint8_t>(std::lround(values[plane]));
            }
    const PlanarView view = camera.view();
    const Picture source = SamplePictures::plain(640, 360, {0.5, 0.5, 0.5});
    for (const bool mirror : {false, true})
        for (const double scale : {1.0, 0.8}) {
            CompositorSettings settings;
            settings.camera = CameraStyle{};
            settings.camera->mirror = mirror;
            settings.camera->shape = "square";
            settings.scale = 0.5;
            const auto compositor = make(settings);
            Canvas canvas(compositor, 1);
            FrameState state;
            state.cameraScale = scale;
            const RgbImage image = RgbImage::of(canvas.frame(source.view(), state, &view).view());
            const CanvasRect full = compositor->bubble()->shape.rect;
            const double side = full.width * scale;
            const double centerX = full.x + full.width / 2;
            const double centerY = full.y + full.height / 2;
            const auto red = [&](double share) { // across the bubble
                const auto* pixel =
                    image.at(static_cast<int>(centerX + (share - 0.5) * side), static_cast<int>(centerY));
                return pixel[0] > 200 && pixel[1] < 60 && pixel[2] < 60;
            };
            EXPECT_EQ(red(0.2), !mirror);
            EXPECT_EQ(red(0.8), mirror);
            for (const double share : {0.03, 0.97})
                EXPECT_LT(
                    image.at(static_cast<int>(centerX + (share - 0.5) * side), static_cast<int>(centerY))[1],
                    90);
            // Just outside stands the ring, then the source again.
            const auto* outside = image.at(static_cast<int>(centerX - side / 2 - 40 * scale),
                                           static_cast<int>(centerY - side / 2));
            EXPECT_NEAR(outside[0], outside[1], 4);
        }
}

TEST_F(CanvasTest, survivesAbsurdNumbers) {
    const Picture source = SamplePictures::screen(333, 221);
    const Picture speck = SamplePictures::plain(1, 1, {1, 1, 1});
    for (const double value : {nan, 1e300, -1e300, -5.0, 0.0, std::numeric_limits<double>::infinity()}) {
        SCOPED_TRACE(value);
        CompositorSettings settings = everything(OutputFormat::wide, 0.2);
        settings.look.padding = settings.look.radius = settings.look.shadow = settings.look.blur = value;
        settings.look.backdrop.top = {value, value, value};
        settings.crop = NRect{value, value, value, value};
        settings.camera->size = value;
        settings.captions->size = settings.captions->bottom = value;
        settings.captions->lines = {{std::string(100000, 'm')}};
        settings.sourceAspect = value;
        settings.cards.title = std::string(50000, 'W');
        settings.cards.subtitle = "\xff\xfe broken \xc3";
        Canvas canvas(make(settings), 2);
        FrameState state;
        state.view = {value, value, value, value};
        state.pointer = FrameState::Pointer{value, value, 1};
        state.pointerScale = value;
        state.ripples.assign(1000, {value, value, value});
        state.pill =
            FrameState::Pill{std::numeric_limits<std::int64_t>::min(), std::string(70000, 'x'), value};
        state.clock = value;
        state.cameraScale = value;
        state.titleOpacity = state.endOpacity = value;
        state.caption = FrameState::Caption{0, -7, 1};
        const PlanarView camera = speck.view();
        EXPECT_EQ(canvas.frame(source.view(), state, &camera).width(), 384);
        state.pointer = FrameState::Pointer{0.5, 0.5, 1};
        state.view = NRect::full();
        canvas.frame(speck.view(), state, &camera);
        canvas.frame({}, state);
    }
}

} // namespace
