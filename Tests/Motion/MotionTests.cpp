#include "RecordCore/Motion/Camera.h"
#include "RecordCore/Motion/CameraPath.h"
#include "RecordCore/Motion/PointerTrack.h"
#include "RecordCore/Motion/Scene.h"
#include "RecordCore/Planning/Planner.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

using namespace RecordCore;
using Reason = SpeedSegment::Reason;

namespace {

Plan planOf(std::vector<SpeedSegment> segments) {
    Plan plan;
    plan.source = {1920, 1080, segments.empty() ? 0 : segments.back().end, 60, false};
    plan.segments = std::move(segments);
    plan.shots = {{0, NRect::full()}};
    return plan;
}

Plan asRecorded(double duration) {
    return planOf({{0, duration, 1, Reason::normal}});
}

/// A log with a pointer sample every 60th of a second at places given by a function.
template <typename Place>
InputLog logAlong(double duration, Place place) {
    InputLog log;
    log.cursorInVideo = false;
    for (int i = 0; i / 60.0 < duration; ++i)
        log.cursor.push_back({i / 60.0, place(i / 60.0), 0.5});
    return log;
}

/// Integrates x″ = −2ωx′ − ω²(x − target) in small steps.
double simulated(double from, double target, double omega, double seconds) {
    double x = from;
    double v = 0;
    const double dt = 1e-5;
    for (double t = 0; t < seconds; t += dt) {
        const double a = -2 * omega * v - omega * omega * (x - target);
        v += a * dt;
        x += v * dt;
    }
    return x;
}

} // namespace

TEST(Camera, movesAsACriticallyDampedSpring) {
    Camera camera = Camera::resting({0, 0.25, 0.5, 0.5}, 1, 1, 4.6);
    const NRect target{0.4, 0.25, 0.5, 0.5};
    NRect view;
    for (int i = 0; i < 30; ++i)
        view = camera.step(target, 1.0 / 60);
    EXPECT_NEAR(view.midX(), simulated(0.25, 0.65, 4.6, 0.5), 1e-4);
    EXPECT_NEAR(view.w, 0.5, 1e-12);

    // One step of half a second comes to the same.
    Camera leaping = Camera::resting({0, 0.25, 0.5, 0.5}, 1, 1, 4.6);
    EXPECT_NEAR(leaping.step(target, 0.5).midX(), view.midX(), 1e-12);
}

TEST(Camera, restsAtItsTargetAndStaysInside) {
    const NRect rest{0.1, 0.2, 0.5, 0.5};
    Camera camera = Camera::resting(rest, 1, 1, 4.6);
    const NRect start = camera.current();
    for (int i = 0; i < 1000; ++i)
        EXPECT_EQ(camera.step(rest, 1.0 / 60), start);

    // Zooming out at the corner never shows what lies outside the source.
    Camera corner = Camera::resting({0.75, 0.75, 0.25, 0.25}, 1, 1, 4.6);
    for (int i = 0; i < 200; ++i)
        EXPECT_TRUE(NRect::full().contains(corner.step(NRect::full(), 1.0 / 60)));
}

TEST(CameraPath, hasAViewForEveryFrameAndInterpolates) {
    Plan plan = asRecorded(10);
    plan.shots = {{0, NRect::full()}, {2, {0.25, 0.25, 0.5, 0.5}}};
    const CameraPath path = CameraPath::of(plan, 60, 4.6);
    ASSERT_EQ(path.views.size(), 601U);
    EXPECT_EQ(path.views[119], NRect::full());
    EXPECT_NE(path.views[120], NRect::full()) << "the step at the shot's own frame moves already";
    EXPECT_EQ(path.view(150 / 60.0), path.views[150]);
    EXPECT_NEAR(path.view(150.25 / 60.0).w, path.views[150].w * 0.75 + path.views[151].w * 0.25, 1e-12);
    EXPECT_EQ(path.view(1000), path.views.back());
    EXPECT_EQ(path.view(-5), path.views.front());
    EXPECT_EQ(CameraPath::of(Plan(), 60, 4.6).views.size(), 1U);
}

namespace {

/// The largest distance, in canvas pixels, by which a point of the picture stands elsewhere under another
/// view.
double displacement(const NRect& view, const NRect& other, double width, double height) {
    return std::max({std::abs(view.x - other.x) / view.w * width,
                     std::abs(view.y - other.y) / view.h * height,
                     std::abs(view.x + view.w - other.x - other.w) / view.w * width,
                     std::abs(view.y + view.h - other.y - other.h) / view.h * height});
}

} // namespace

TEST(SettledPath, restsWhereNobodySeesItMove) {
    Plan plan = asRecorded(20);
    // In, aside by a little, out again, and a view that is left before it is reached.
    plan.shots = {{0, NRect::full()}, {1, {0.25, 0.25, 0.5, 0.5}}, {5, {0.26, 0.25, 0.5, 0.5}},
                  {9, NRect::full()}, {13, {0.1, 0.4, 0.6, 0.6}},  {13.8, {0.3, 0.1, 0.55, 0.55}}};
    const CameraPath path = CameraPath::of(plan, 60, 4.6);
    constexpr double width = 1845, height = 1038;
    const SettledPath settled(path, width, height);

    int moves = 0, steps = 0;
    double largestStep = 0;
    for (int i = 0; i < 1200; ++i) {
        SCOPED_TRACE(i);
        const NRect view = settled.view(path, i / 60.0);
        ASSERT_LE(displacement(path.views[static_cast<std::size_t>(i)], view, width, height),
                  1.0 / 16 * 1.001);
        if (i == 0) continue;
        const NRect before = settled.view(path, (i - 1) / 60.0);
        const NRect raw = path.views[static_cast<std::size_t>(i)];
        const double moved = displacement(path.views[static_cast<std::size_t>(i - 1)], raw, width, height);
        moves += moved > 1e-4;
        if (view == before) continue;
        ++steps;
        // What is seen to move moves as before: never further at once than a little more than the camera
        // does.
        EXPECT_LE(displacement(before, view, width, height), moved * 1.001 + 1.0 / 8);
        if (moved < 1.0 / 16) largestStep = std::max(largestStep, displacement(before, view, width, height));
    }
    // Five movements take about three seconds each until the last ten-thousandth of a pixel.
    EXPECT_GT(moves, 700);
    EXPECT_LT(steps, moves * 2 / 3);
    EXPECT_LT(largestStep, 0.2);

    // Where the path rests it is kept to the last bit that matters.
    EXPECT_EQ(settled.view(path, 0.5), NRect::full());
    const struct {
        double seconds;
        NRect place;
    } rests[]{{4.98, {0.25, 0.25, 0.5, 0.5}}, {8.9, {0.26, 0.25, 0.5, 0.5}}, {12.9, NRect::full()}};
    for (const auto& [seconds, place] : rests) {
        EXPECT_LT(displacement(settled.view(path, seconds), place, width, height), 1e-3) << seconds;
        EXPECT_EQ(settled.view(path, seconds - 0.5), settled.view(path, seconds)) << seconds;
    }
}

TEST(SettledPath, answersForAnyTime) {
    Plan plan = asRecorded(4);
    plan.shots = {{0, NRect::full()}, {1, {0.25, 0.25, 0.5, 0.5}}};
    for (const double fps : {60.0, 30.0, 59.94}) {
        const CameraPath path = CameraPath::of(plan, fps, 4.6);
        const SettledPath settled(path, 1845, 1038);
        // A frame's own time is that frame's, however it was calculated.
        for (int i = 1; i < 4 * fps; ++i) {
            const double seconds = i / fps;
            EXPECT_EQ(settled.view(path, std::nextafter(seconds, 0)), settled.view(path, seconds));
            EXPECT_EQ(settled.view(path, std::nextafter(seconds, 9)), settled.view(path, seconds));
        }
        const NRect a = settled.view(path, 70 / fps), b = settled.view(path, 71 / fps);
        EXPECT_NEAR(settled.view(path, 70.25 / fps).w, a.w * 0.75 + b.w * 0.25, 1e-12);
        EXPECT_EQ(settled.view(path, -3), settled.view(path, 0));
        EXPECT_EQ(settled.view(path, 1e9), settled.view(path, 4));
    }
    // Views that cannot be computed with are handed on as they are.
    CameraPath broken{60, std::vector<NRect>(3, NRect{0, 0, 0, 0})};
    broken.views[1] = {0.5, 0.5, std::numeric_limits<double>::quiet_NaN(), 1};
    const SettledPath settled(broken, 1845, 1038);
    EXPECT_EQ(settled.view(broken, 2 / 60.0), broken.views[2]);
}

TEST(Scene, drawsTheSettledViewAndAllThatFollowsIt) {
    Plan plan = asRecorded(6);
    plan.shots = {{0, NRect::full()}, {1, {0.25, 0.25, 0.5, 0.5}}};
    const Scene scene(plan, Project(), std::nullopt, 60);
    int stood = 0;
    for (int i = 61; i < 360; ++i) {
        const FrameState exact = scene.state(i / 60.0), drawn = scene.drawn(i / 60.0);
        EXPECT_EQ(drawn.view, scene.drawnView(i / 60.0));
        EXPECT_NEAR(drawn.cameraScale, exact.cameraScale, 1e-3);
        const FrameState before = scene.drawn((i - 1) / 60.0);
        if (drawn.view != before.view) continue;
        ++stood;
        EXPECT_EQ(drawn.cameraScale, before.cameraScale) << "the bubble rests with the camera";
    }
    EXPECT_GT(stood, 150);
}

TEST(PointerTrack, isDrawnOnlyWhenItIsNotInThePicture) {
    const TimeMap map(asRecorded(2));
    InputLog log = logAlong(2, [](double) { return 0.5; });
    EXPECT_TRUE(PointerTrack::of(log, map, Project(), 60));
    for (const std::optional<bool> inVideo : {std::optional<bool>(true), std::optional<bool>()}) {
        log.cursorInVideo = inVideo;
        EXPECT_FALSE(PointerTrack::of(log, map, Project(), 60));
    }
    log.cursorInVideo = false;
    log.cursor.resize(1);
    EXPECT_FALSE(PointerTrack::of(log, map, Project(), 60));
    EXPECT_FALSE(PointerTrack::of(std::nullopt, map, Project(), 60));
}

TEST(PointerTrack, followsTheRecordedPath) {
    const TimeMap map(planOf({{0, 2, 1, Reason::normal}, {2, 4, 4, Reason::manual}}));
    const InputLog log = logAlong(4, [](double t) { return t / 4; });
    Project project;
    project.cursorSmooth = false;
    const auto exact = PointerTrack::of(log, map, project, 60);
    EXPECT_NEAR(exact->state(1.5).x, 0.375, 1e-9);
    EXPECT_NEAR(exact->state(2.25).x, 0.75, 1e-9) << "a second further at four times the speed";
    EXPECT_NEAR(exact->state(99).x, 239.0 / 240, 1e-9) << "the last sample";

    project.cursorSmooth = true;
    const auto smooth = PointerTrack::of(log, map, project, 60);
    EXPECT_EQ(smooth->state(0).x, 0);
    // A spring of rate ω lags a steady movement by 2/ω seconds.
    EXPECT_NEAR(smooth->state(1.5).x, (1.5 - 2.0 / 24) / 4, 0.003);
}

TEST(PointerTrack, hidesARestingPointer) {
    // Moves until 1 s, then creeps too slowly to count, then moves again at 5 s.
    const InputLog log = logAlong(8, [](double t) {
        return t < 1 ? t * 0.1 : t < 5 ? 0.1 + (t - 1) * 0.04 : 0.3 + (t - 5) * 0.1;
    });
    Project project;
    const TimeMap map(asRecorded(8));
    const auto track = PointerTrack::of(log, map, project, 60);
    EXPECT_EQ(track->state(2.9).opacity, 1);
    const double first = std::ceil((log.cursor[60].t + 2.0) * 60 + 1) / 60;
    EXPECT_LT(track->state(first).opacity, 1);
    EXPECT_NEAR(track->state(first + 1 / 60.0).opacity, track->state(first).opacity * 0.85, 1e-9);
    EXPECT_LT(track->state(4.9).opacity, 0.01);
    EXPECT_GT(track->state(6).opacity, 0.99);

    project.hideIdleCursor = false;
    EXPECT_EQ(PointerTrack::of(log, map, project, 60)->state(4.9).opacity, 1);
    // At nine frames a second and less it fades at once.
    project.hideIdleCursor = true;
    EXPECT_EQ(PointerTrack::of(log, map, project, 9)->state(4).opacity, 0);
}

TEST(PointerTrack, keepsTheClicksThatAreNotCut) {
    const TimeMap map(
        planOf({{0, 2, 1, Reason::normal}, {2, 4, 1, Reason::cut}, {4, 12, 2, Reason::manual}}));
    InputLog log = logAlong(2, [](double) { return 0.5; });
    using Kind = InputLog::Event::Kind;
    log.events = {{1, Kind::click, 0.1, 0.1},      {2.5, Kind::click, 0.2, 0.2},
                  {8, Kind::rightClick, 0.3, 0.3}, {8.5, Kind::key, std::nullopt, std::nullopt},
                  {8.5, Kind::scroll, 0.4, 0.4},   {8.5, Kind::click, 0.5, std::nullopt}};
    const auto track = PointerTrack::of(log, map, Project(), 60);
    ASSERT_EQ(track->ripples(1.225).size(), 1U);
    EXPECT_NEAR(track->ripples(1.225)[0].progress, 0.5, 1e-12);
    EXPECT_EQ(track->ripples(1)[0].progress, 0);
    EXPECT_TRUE(track->ripples(1.5).empty());
    EXPECT_TRUE(track->ripples(2).empty()) << "the click in the cut is gone";
    ASSERT_EQ(track->ripples(4.1).size(), 1U);
    EXPECT_EQ(track->ripples(4.1)[0].x, 0.3);
    EXPECT_TRUE(track->ripples(4.46).empty());
}

TEST(Scene, showsThePillWhileTimeFlies) {
    const Plan plan = planOf({{0, 2, 1, Reason::normal},
                              {2, 11.5, 8, Reason::idle},
                              {11.5, 21.5, 40.9, Reason::agentWorking},
                              {21.5, 31.5, 2, Reason::manual},
                              {31.5, 32, 0.5, Reason::manual}});
    const Scene scene(plan, Project(), std::nullopt, 60);
    const auto pillAt = [&](double source) { return scene.state(plan.outputTime(source)).pill; };
    EXPECT_FALSE(pillAt(1));
    EXPECT_EQ(pillAt(5), (FrameState::Pill{8, "skipping the wait", 1}));
    EXPECT_EQ(pillAt(16)->label, "skipping 0:10 of waiting");
    EXPECT_EQ(pillAt(16)->speed, 40);
    EXPECT_EQ(pillAt(25)->label, "fast-forward");
    EXPECT_FALSE(pillAt(31.75));
    EXPECT_NEAR(pillAt(2 + 8 * 0.06)->opacity, 0.5, 1e-9) << "0.06 s of film after it begins";
}

TEST(Scene, timesTheCards) {
    Project project;
    project.showTitle = project.showEnd = true;
    project.title = "Title";
    const Scene scene(asRecorded(10), project, std::nullopt, 60);
    const struct {
        double t, title, end;
    } cases[]{{0, 1, 0},   {1.7, 1, 0},   {1.95, 0.5, 0}, {2.3, 0, 0},
              {7.2, 0, 0}, {7.4, 0, 0.5}, {7.7, 0, 1},    {10, 0, 1}};
    for (const auto& [t, title, end] : cases) {
        EXPECT_NEAR(scene.state(t).titleOpacity, title, 1e-9) << t;
        EXPECT_NEAR(scene.state(t).endOpacity, end, 1e-9) << t;
    }
    project.title.clear();
    project.endTitle.clear();
    const Scene bare(asRecorded(10), project, std::nullopt, 60);
    EXPECT_EQ(bare.state(0).titleOpacity, 0);
    EXPECT_EQ(bare.state(9).endOpacity, 0);
}

TEST(Scene, bouncesOnClicksAndShrinksTheBubble) {
    InputLog log = logAlong(10, [](double) { return 0.5; });
    log.events = {{5, InputLog::Event::Kind::click, 0.5, 0.5}};
    Project project;
    project.cursorSize = 2;
    Plan plan = asRecorded(10);
    plan.shots = {{0, {0.25, 0.25, 0.5, 0.5}}};
    const Scene scene(plan, project, log, 60);
    EXPECT_EQ(scene.state(4).pointerScale, 2);
    // The bounce is deepest when sin is 1: at 0.275 of the ripple.
    EXPECT_NEAR(scene.state(5 + 0.45 * 0.275).pointerScale, 2 * (1 - 0.22 * 0.6), 1e-9);
    EXPECT_NEAR(scene.state(4).cameraScale, 1 - 0.24, 1e-9) << "fully zoomed in";

    project.cameraMakeRoom = false;
    project.clickBounce = 0;
    const Scene plain(plan, project, log, 60);
    EXPECT_EQ(plain.state(5.1).pointerScale, 2);
    EXPECT_EQ(plain.state(4).cameraScale, 1);
    EXPECT_EQ(Scene(plan, project, std::nullopt, 60).state(4).pointerScale, 1.6) << "no pointer";
}

TEST(Scene, showsCaptionsAndTheClock) {
    Project project;
    project.showCaptions = project.showClock = true;
    project.trimStart = 1;
    project.captions = {{"one", 3, 3.2}, {"two", 3.4, 3.6}, {"three.", 3.7, 4}};
    const SourceInfo info{1920, 1080, 10, 60, false};
    project.skipWaiting = false;
    const Plan plan = Planner::plan(info, {}, std::nullopt, project, 16.0 / 9);
    const Scene scene(plan, project, std::nullopt, 60);
    EXPECT_FALSE(scene.state(1.9).caption);
    EXPECT_EQ(scene.state(2.0).caption->word, 0);
    EXPECT_EQ(scene.state(2.45).caption->word, 1);
    EXPECT_EQ(scene.state(3.2).caption->word, 2);
    EXPECT_NEAR(scene.state(1.95 + 0.06).caption->opacity, 0.5, 1e-9);
    EXPECT_NEAR(scene.state(3.35 - 0.03).caption->opacity, 0.25, 1e-9);
    EXPECT_FALSE(scene.state(3.35).caption);
    EXPECT_NEAR(*scene.state(2).clock, 2, 1e-9) << "counted from the first kept frame";
    EXPECT_EQ(scene.frameCount(), 540);
}
