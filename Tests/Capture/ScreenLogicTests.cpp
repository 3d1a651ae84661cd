#include "RecordCore/Capture/BlockMap.h"
#include "RecordCore/Capture/DiskSpace.h"
#include "RecordCore/Capture/EncoderChoice.h"
#include "RecordCore/Capture/FramePacer.h"
#include "RecordCore/Capture/FrameQueue.h"
#include "RecordCore/Capture/ScreenFit.h"
#include "RecordCore/Capture/WindowList.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>

using namespace RecordCore;
using testing::ElementsAre;

TEST(BlockMap, RunsCoverExactlyTheMarkedBlocksWithoutOverlap) {
    std::mt19937 random(3);
    for (int round = 0; round < 200; ++round) {
        BlockMap map(16 * 13, 16 * 9);
        for (auto& mark : map.marks)
            mark = random() % 3 == 0;
        const int gap = round % 3;
        std::vector<BlockMap::Run> runs;
        map.runs(gap, runs);
        std::vector<int> covered(map.marks.size(), 0);
        for (const auto& run : runs)
            for (int y = run.y; y < run.y + run.height; ++y)
                for (int x = run.x; x < run.x + run.width; ++x)
                    ++covered[static_cast<std::size_t>(y * map.columns + x)];
        for (std::size_t i = 0; i < covered.size(); ++i) {
            EXPECT_LE(covered[i], 1);
            if (map.marks[i] != 0) {
                EXPECT_EQ(covered[i], 1);
            } else if (gap == 0) {
                EXPECT_EQ(covered[i], 0);
            }
        }
    }
}

TEST(BlockMap, PixelsMarkTheBlocksTheyTouchAndBoxesBecomeOneRun) {
    BlockMap map(100, 50);
    map.markPixels(-5, -5, 3, 3);
    EXPECT_FALSE(map.any());
    map.markPixels(15, 16, 18, 32);
    map.markPixels(96, 0, 400, 1);
    std::vector<BlockMap::Run> runs;
    map.runs(2, runs);
    EXPECT_THAT(runs, ElementsAre(BlockMap::Run{6, 0, 1, 1}, BlockMap::Run{0, 1, 3, 2}));
}

TEST(FramePacer, TakesEveryFrameOfAProgramThatDrawsAtOurRateAndNeverMoreThanTheRate) {
    struct Case {
        const char* name;
        double drawn;  ///< frames drawn a second
        double jitter; ///< seconds
        double least;  ///< share of the smaller of both rates that is taken
    };
    for (const Case& c :
         {Case{"as often as we take", 60, 0, 1}, Case{"the same with jitter", 60, 0.004, 0.99},
          Case{"much more often", 1000, 0, 0.99}, Case{"seldom", 7, 0.01, 1}}) {
        std::mt19937 random(1);
        std::uniform_real_distribution<double> jitter(0, c.jitter);
        FramePacer pacer(60);
        int taken = 0, drawn = 0;
        double last = -1, pending = 0; // when what waits to be taken was drawn; 0: nothing waits
        const double length = 20;
        for (int i = 1; i < length * c.drawn; ++i) {
            const double time = i / c.drawn + jitter(random);
            const auto take = [&](double now) {
                EXPECT_GE(now - last, 0.9 / 60 - 1e-9) << c.name;
                pacer.taken(now);
                last = now;
                pending = 0;
                ++taken;
            };
            if (pending > 0 && pacer.due() <= time) take(std::max(pacer.due(), pending));
            pending = time;
            ++drawn;
            if (pacer.due() <= time) take(time);
        }
        EXPECT_LE(taken, 60 * length + 2) << c.name;
        EXPECT_GE(taken, c.least * std::min(60.0, c.drawn) * length - 1) << c.name;
    }
}

TEST(ScreenFit, KeepsPixelsWhereItCanAndFitsWhatIsLarger) {
    struct Case {
        int content[2], picture[2];
        ScreenFit expected;
    };
    for (const Case& c : {Case{{640, 480}, {640, 480}, {0, 0, 640, 480, true}},
                          Case{{641, 481}, {640, 480}, {0, 0, 640, 480, true}},
                          Case{{320, 201}, {640, 480}, {160, 140, 320, 200, false}},
                          Case{{1280, 480}, {640, 480}, {0, 120, 640, 240, false}},
                          Case{{1280, 1920}, {640, 480}, {160, 0, 320, 480, false}},
                          Case{{5000, 10}, {640, 480}, {0, 238, 640, 2, false}}})
        EXPECT_EQ(ScreenFit::of(c.content[0], c.content[1], c.picture[0], c.picture[1]), c.expected)
            << c.content[0] << " x " << c.content[1];
}

TEST(ScreenFit, TellsWhereThePictureLiesOnTheDesktop) {
    // The window's corners have to come out where they are drawn in the picture.
    for (const ScreenRect& frame :
         {ScreenRect{100, 50, 640, 480}, ScreenRect{100, 50, 320, 200}, ScreenRect{-30, 10, 1280, 480}}) {
        const ScreenFit fit =
            ScreenFit::of(static_cast<int>(frame.width), static_cast<int>(frame.height), 640, 480);
        const CapturedArea area = capturedArea(frame, 640, 480);
        EXPECT_EQ(area.frame, frame);
        EXPECT_NEAR((frame.x - area.picture.x) / area.picture.width * 640, fit.x, 1e-9);
        EXPECT_NEAR((frame.y - area.picture.y) / area.picture.height * 480, fit.y, 1e-9);
        EXPECT_NEAR((frame.x + frame.width - area.picture.x) / area.picture.width * 640, fit.x + fit.width,
                    1e-9);
        EXPECT_NEAR((frame.y + frame.height - area.picture.y) / area.picture.height * 480, fit.y + fit.height,
                    1e-9);
    }
}

TEST(ScreenScaler, KeepsFlatAreasAndMovesNothing) {
    // A step at the middle stays at the middle.
    constexpr int width = 300, height = 90;
    std::vector<std::uint8_t> pixels(static_cast<std::size_t>(width) * height * 4);
    for (std::size_t i = 0; i < pixels.size(); ++i)
        pixels[i] = i / 4 % width < width / 2 ? 201 : 17;
    ScreenScaler scaler;
    std::vector<std::uint8_t> out;
    for (const int target : {100, 77 * 2, 299, 40}) {
        scaler.scale({pixels.data(), width * 4, width, height}, target, 30, out);
        for (int x = 0; x < target; ++x) {
            const double middle = (x + 0.5) / target * width;
            const int value = out[static_cast<std::size_t>(11 * target + x) * 4];
            const double reach = std::max(1.0, static_cast<double>(width) / target);
            if (middle < width / 2.0 - reach) {
                EXPECT_EQ(value, 201) << target << " at " << x;
            } else if (middle > width / 2.0 + reach) {
                EXPECT_EQ(value, 17) << target << " at " << x;
            }
        }
    }
}

namespace {

/// A screen that knows what every picture has to look like.
struct Screen {
    Screen() : picture(64, 32), changed(64, 32) {}

    ScreenFrame draw(int column, int row, std::uint8_t value, double time) {
        changed.clear();
        changed.at(column, row) = 1;
        for (int y = 0; y < 16; ++y)
            for (int x = 0; x < 16; ++x)
                picture.plane(0)[(row * 16 + y) * picture.stride(0) + column * 16 + x] = value;
        return {picture.view(), time, changed.marks};
    }
    ScreenFrame whole(double time) {
        changed.markAll();
        return {picture.view(), time, changed.marks};
    }

    CapturePicture picture;
    BlockMap changed;
};

bool equal(const PlanarView& a, const PlanarView& b) {
    for (int y = 0; y < a.height; ++y)
        if (!std::equal(a.planes[0] + y * a.strides[0], a.planes[0] + y * a.strides[0] + a.width,
                        b.planes[0] + y * b.strides[0]))
            return false;
    return true;
}

} // namespace

TEST(FrameQueue, GivesWholePicturesInOrderThoughOnlyChangesAreCopied) {
    Screen screen;
    FrameQueue queue(64, 32, 4);
    queue.push(screen.whole(0));
    for (int i = 1; i < 50; ++i) {
        queue.push(screen.draw(i % 4, i / 4 % 2, static_cast<std::uint8_t>(i + 30), i));
        if (i % 2 == 0) continue; // two wait at times
        while (const auto* frame = queue.take(std::chrono::steady_clock::now())) {
            if (frame->time == i) {
                EXPECT_TRUE(equal(frame->picture.view(), screen.picture.view())) << i;
                EXPECT_EQ(frame->changed.count(), 1);
            }
        }
    }
    EXPECT_EQ(queue.dropped(), 0);
}

TEST(FrameQueue, AnEncoderThatFallsBehindLosesCountedFramesButNotTheLastPicture) {
    Screen screen;
    FrameQueue queue(64, 32, 3);
    queue.push(screen.whole(0));
    const auto* first = queue.take(std::chrono::steady_clock::now());
    ASSERT_NE(first, nullptr);
    for (int i = 1; i <= 6; ++i)
        queue.push(screen.draw(i % 4, i / 4, static_cast<std::uint8_t>(i + 30), i));
    EXPECT_EQ(queue.dropped(), 4); // one is encoded, two wait
    EXPECT_EQ(first->time, 0);     // nobody wrote into what is being encoded
    queue.close();
    const auto* second = queue.take(std::chrono::steady_clock::now());
    ASSERT_NE(second, nullptr);
    EXPECT_EQ(second->time, 1);
    const auto* last = queue.take(std::chrono::steady_clock::now());
    ASSERT_NE(last, nullptr);
    EXPECT_EQ(last->time, 6);
    EXPECT_TRUE(equal(last->picture.view(), screen.picture.view()));
    EXPECT_EQ(last->changed.count(), 5); // what the dropped ones changed is told with it: 2, 3, 4, 5, 6
    EXPECT_EQ(queue.take(std::chrono::steady_clock::now()), nullptr);
    EXPECT_TRUE(queue.finished());
}

TEST(WindowList, KeepsWhatCanBeRecordedSorted) {
    const auto window = [](std::uint32_t id, const char* application, const char* title) {
        return WindowInfo{id, application, title, 100, 0, true, {0, 0, 240, 160}};
    };
    std::vector<WindowInfo> windows{
        window(1, "Mail", "b"),    window(2, "Editor", "z"), window(3, "Mail", ""),  window(4, "Mail", "b"),
        window(5, "", "nameless"), window(6, "Own", "own"),  window(7, "Dock", ""),  window(8, "Hidden", ""),
        window(9, "Narrow", ""),   window(10, "Low", ""),    window(11, "NoPid", "")};
    windows[5].processId = 42;
    windows[6].layer = 1;
    windows[7].onScreen = false;
    windows[8].frame.width = 239;
    windows[9].frame.height = 159;
    windows[10].processId = 0;
    std::vector<std::uint32_t> ids;
    for (const auto& kept : recordableWindows(windows, 42))
        ids.push_back(kept.id);
    EXPECT_THAT(ids, ElementsAre(2, 3, 1, 4, 11));
}

TEST(WindowList, NamesWindows) {
    const auto name = [](const std::string& application, const std::string& title) {
        return windowName({1, application, title, 0, 0, true, {}});
    };
    EXPECT_EQ(name("", ""), "Window");
    EXPECT_EQ(name("Mail", ""), "Mail");
    EXPECT_EQ(name("Mail", "Mail"), "Mail");
    EXPECT_EQ(name("", "Letter"), "Window · Letter");
    const std::string umlauts = [] {
        std::string text;
        for (int i = 0; i < 46; ++i)
            text += "ä";
        return text;
    }();
    EXPECT_EQ(name("M", umlauts), "M · " + umlauts);
    EXPECT_EQ(name("M", umlauts + "x"), "M · " + umlauts.substr(0, 90) + "…");
}

TEST(EncoderChoice, BitrateFollowsTheSizeAndHasAFloor) {
    EXPECT_EQ(recordingBitrate(3024, 1964, 60), 7839659);
    EXPECT_EQ(recordingBitrate(1920, 1080, 60), 6000000);
}

TEST(DiskSpace, KeepsAReserveThatSuitsTheDisk) {
    constexpr std::uint64_t mebibyte = 1024 * 1024;
    const DiskSpace tiny{0, 8 * mebibyte}, small{0, 100 * mebibyte}, large{0, 1000000 * mebibyte};
    EXPECT_EQ(tiny.reserve(), 4 * mebibyte);
    EXPECT_EQ(small.reserve(), 5 * mebibyte);
    EXPECT_EQ(large.reserve(), 256 * mebibyte);
    EXPECT_LT(small.reserve(), small.warning());
    EXPECT_LT(large.reserve(), large.warning());
    EXPECT_THROW(DiskSpace::of("/no such folder"), std::exception);
}
