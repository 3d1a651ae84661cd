#include "RecordCore/Activity/LiveActivity.h"

#include <gtest/gtest.h>

#include <initializer_list>

using namespace RecordCore;
using namespace RecordCore::ActivityAnalyzer;

namespace {

Mask maskWith(std::initializer_list<std::pair<int, int>> cells) {
    Mask mask(cols * rows);
    for (const auto& [x, y] : cells)
        mask[static_cast<std::size_t>(y * cols + x)] = 1;
    return mask;
}

/// A block of `count` cells, eight to a row.
Mask block(int x, int y, int count) {
    Mask mask(cols * rows);
    for (int i = 0; i < count; ++i)
        mask[static_cast<std::size_t>((y + i / 8) * cols + x + i % 8)] = 1;
    return mask;
}

Mask both(Mask a, const Mask& b) {
    for (std::size_t i = 0; i < a.size(); ++i)
        a[i] = static_cast<std::uint8_t>(a[i] | b[i]);
    return a;
}

/// A picture of one luma value, as large as the grid.
class Frame {
public:
    explicit Frame(std::uint8_t luma) : pixels(256 * 160, luma) {}
    std::uint8_t& at(int x, int y) { return pixels[static_cast<std::size_t>(y * 256 + x)]; }
    PlanarView view() const {
        return {{pixels.data(), pixels.data(), pixels.data()}, {256, 128, 128}, 256, 160};
    }

private:
    std::vector<std::uint8_t> pixels;
};

} // namespace

TEST(LumaGrid, samplesTheMiddleOfEachGridPixel) {
    // A picture of 8 × 6, luma = 10 · row + column; the grid is 4 × 2: columns 1, 3, 5, 7 of rows 1 and 4.
    std::vector<std::uint8_t> luma;
    std::vector<std::uint8_t> bgra;
    for (int y = 0; y < 6; ++y) {
        for (int x = 0; x < 8; ++x) {
            luma.push_back(static_cast<std::uint8_t>(10 * y + x));
            for (const int value : {200, 10 * y + x, 0, 255})
                bgra.push_back(static_cast<std::uint8_t>(value));
        }
    }
    std::vector<std::uint8_t> grid(8);
    lumaGrid(PlanarView{{luma.data(), nullptr, nullptr}, {8, 0, 0}, 8, 6}, 4, 2, grid);
    EXPECT_EQ(grid, (std::vector<std::uint8_t>{11, 13, 15, 17, 41, 43, 45, 47}));

    lumaGrid(BgraView{bgra.data(), 32, 8, 6}, 4, 2, grid);
    EXPECT_EQ(grid[5], (43 * 183 + 200 * 19) >> 8);

    const std::vector<std::uint8_t> before = grid;
    lumaGrid(PlanarView{}, 4, 2, grid);
    EXPECT_EQ(grid, before) << "no pixels: unchanged";
    std::vector<std::uint8_t> large(256 * 160, 1);
    lumaGrid(PlanarView{{luma.data(), nullptr, nullptr}, {8, 0, 0}, 1, 1}, 256, 160, large);
    EXPECT_EQ(large.back(), luma[0]);
}

TEST(ChangeMask, tellsVisibleChanges) {
    struct Case {
        const char* what;
        std::vector<int> differences; // of the cell's first pixels
        bool changed;
    };
    const std::vector<Case> cases{
        {"a slight change all over", std::vector<int>(16, 10), true},
        {"just too little", std::vector<int>(16, 8), false},
        {"one pixel", {255}, true},
        {"one clear pixel", {128}, false},
        {"two clear pixels", {30, 26}, true},
        {"one clear, one not", {30, 24}, false},
    };
    for (const Case& c : cases) {
        std::vector<std::uint8_t> previous(256 * 160, 0);
        std::vector<std::uint8_t> current = previous;
        for (std::size_t i = 0; i < c.differences.size(); ++i)
            current[(8 + i / 4) * 256 + 12 + i % 4] = static_cast<std::uint8_t>(c.differences[i]);
        Mask mask;
        changeMask(current, previous, cols, rows, mask);
        EXPECT_EQ(mask, c.changed ? maskWith({{3, 2}}) : maskWith({})) << c.what;
        changeMask(previous, current, cols, rows, mask);
        EXPECT_EQ(mask, c.changed ? maskWith({{3, 2}}) : maskWith({})) << c.what << ", the other way";
    }
}

TEST(Components, joinCellsAcrossOneGap) {
    EXPECT_EQ(components(maskWith({{4, 4}, {6, 4}}), cols, rows).size(), 1U);
    EXPECT_EQ(components(maskWith({{4, 4}, {7, 4}}), cols, rows).size(), 2U);
    EXPECT_EQ(components(maskWith({{4, 4}, {6, 6}}), cols, rows).size(), 1U);
    EXPECT_EQ(components(maskWith({{63, 4}, {0, 5}}), cols, rows).size(), 2U) << "no wrapping round";
    EXPECT_TRUE(components({}, 0, 0).empty());
    const auto groups = components(maskWith({{10, 3}, {9, 5}, {30, 1}}), cols, rows);
    ASSERT_EQ(groups.size(), 2U);
    EXPECT_EQ(groups[0].minX, 30);
    EXPECT_EQ(groups[1], (Group{{3 * cols + 10, 5 * cols + 9}, 9, 3, 10, 5}));
}

TEST(MainArea, leavesSmallSideShowsOut) {
    const auto area = [](const Mask& mask) { return mainArea(components(mask, cols, rows), cols, rows); };
    EXPECT_EQ(area(maskWith({})), std::nullopt);
    EXPECT_EQ(area(both(block(0, 0, 40), block(40, 20, 9))), (NRect{0, 0, 8.0 / 64, 5.0 / 40}));
    EXPECT_EQ(area(both(block(0, 0, 40), block(40, 20, 10))), (NRect{0, 0, 48.0 / 64, 22.0 / 40}));
}

TEST(Summary, dropsSmallBlinkersOnly) {
    const auto energies = [](const Mask& mask, int frames, int changing) {
        std::vector<double> times;
        std::vector<Mask> masks;
        for (int i = 0; i < frames; ++i) {
            times.push_back(i / 15.0);
            masks.push_back(i % changing == 0 ? mask : maskWith({}));
        }
        std::vector<double> result;
        for (const ActivitySample& sample : summarize(times, masks, cols, rows, window))
            result.push_back(sample.energy);
        return result;
    };
    // Ten cells that change in every second frame are a blinker, eleven are not, nor ten that change rarely.
    EXPECT_EQ(energies(block(4, 4, 10), 100, 2)[50], 0);
    EXPECT_EQ(energies(block(4, 4, 11), 100, 2)[50], 11.0 / 2560);
    EXPECT_EQ(energies(block(4, 4, 10), 100, 3)[51], 10.0 / 2560);
    EXPECT_EQ(energies(block(4, 4, 10), 1, 1), std::vector<double>{0}) << "a window of one frame";
    EXPECT_TRUE(summarize({}, {}, cols, rows, window).empty());
}

TEST(Summary, looksTwoSecondsEitherWay) {
    // Nine cells change in frames 0 to 30: from frame 31 on less and less of the window has them.
    std::vector<double> times;
    std::vector<Mask> masks;
    for (int i = 0; i < 200; ++i) {
        times.push_back(i);
        masks.push_back(i <= 30 || i == 80 ? block(4, 4, 9) : maskWith({}));
    }
    const auto samples = summarize(times, masks, cols, rows, window);
    EXPECT_EQ(samples[0].energy, 0);
    EXPECT_EQ(samples[30].energy, 0) << "31 of 61 frames";
    EXPECT_GT(samples[80].energy, 0);
    EXPECT_EQ(samples[80].focus, (NRect{4.0 / 64, 4.0 / 40, 8.0 / 64, 2.0 / 40}));
    EXPECT_EQ(samples[80].t, 80);
}

TEST(LiveActivity, samplesFifteenFramesASecond) {
    LiveActivity activity;
    const Frame grey(100);
    EXPECT_TRUE(activity.add(grey.view(), 0));
    EXPECT_FALSE(activity.add(grey.view(), 1.0 / 30));
    EXPECT_TRUE(activity.add(grey.view(), 1.0 / 15 - 0.0000005));
    EXPECT_FALSE(activity.add(grey.view(), 0.1));
    EXPECT_EQ(activity.samples().size(), 2U);
}

TEST(LiveActivity, seesWhatChanged) {
    LiveActivity activity;
    Frame frame(100);
    activity.add(frame.view(), 0);
    for (int y = 80; y < 160; ++y)
        for (int x = 128; x < 256; ++x)
            frame.at(x, y) = 180;
    activity.add(frame.view(), 1);
    activity.add(frame.view(), 2);
    const auto samples = activity.samples();
    ASSERT_EQ(samples.size(), 3U);
    EXPECT_EQ(samples[0], (ActivitySample{0, 0, std::nullopt}));
    EXPECT_EQ(samples[1], (ActivitySample{1, 0.25, NRect{0.5, 0.5, 0.5, 0.5}}));
    EXPECT_EQ(samples[2].energy, 0);
}
