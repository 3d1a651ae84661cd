#include "OmbrelRecord/RecordingHUD/PanelPlacement.h"

#include <gtest/gtest.h>
#include <ostream>

namespace OmbrelRecord {
namespace {

using PanelPlacement::Display;

constexpr QSize panel(320, 82);

/// A display with a task bar of 40 points at its bottom.
Display display(QRect frame, bool main = false, QPoint origin = {}, qreal ratio = 1) {
    const QSize points = QSizeF(frame.width() / ratio, frame.height() / ratio).toSize();
    return {frame, QRect(origin, points - QSize(0, 40)), origin, ratio, main};
}

TEST(PanelPlacement, StandsAtTheBottomOfTheMainDisplayOrStepsAside) {
    const Display left = display({0, 0, 1920, 1080}, true);
    const Display right = display({1920, 0, 1280, 1024}, false, {1920, 0});
    const Display fine = display({1920, 0, 3840, 2160}, false, {1920, 0}, 2);
    const Display mirror = display({0, 0, 1280, 720});
    const QRect bottomOfLeft(800, 1080 - 40 - 10 - 82, 320, 82);
    const QRect bottomOfRight(1920 + 480, 1024 - 40 - 10 - 82, 320, 82);
    struct Case {
        const char* what;
        std::vector<Display> displays;
        QRect recorded;
        std::optional<QRect> place;
    };
    const Case cases[] = {
        {"nothing recorded", {left}, {}, bottomOfLeft},
        {"main display listed last", {right, left}, {}, bottomOfLeft},
        {"the only display", {left}, left.frame, std::nullopt},
        {"the main one of two", {left, right}, left.frame, bottomOfRight},
        {"the other one of two", {left, right}, right.frame, bottomOfLeft},
        {"both as one", {left, right}, QRect(0, 0, 3200, 1080), std::nullopt},
        {"a mirrored display is recorded with the main one", {left, mirror}, left.frame, std::nullopt},
        {"a window at the top", {left}, QRect(100, 0, 1500, 600), bottomOfLeft},
        {"a window at the bottom", {left}, QRect(700, 600, 600, 440), QRect(800, 10, 320, 82)},
        {"a window over all but the bar", {left}, QRect(0, 0, 1920, 1040), std::nullopt},
        {"a window that ends one pixel above", {left}, QRect(0, 0, 1920, 948), bottomOfLeft},
        {"one that reaches one pixel in", {left, right}, QRect(0, 0, 1920, 949), bottomOfRight},
        {"points of two pixels", {left, fine}, left.frame, QRect(1920 + 800, 1080 - 40 - 10 - 82, 320, 82)},
        {"no display", {}, {}, std::nullopt},
        {"a display smaller than the panel", {display({0, 0, 300, 200}, true)}, {}, std::nullopt},
    };
    for (const Case& c : cases) {
        const auto place = PanelPlacement::place(c.displays, panel, c.recorded);
        EXPECT_EQ(place.has_value(), c.place.has_value()) << c.what;
        if (place && c.place) {
            EXPECT_EQ(*place, *c.place) << c.what << ": at " << place->x() << ", " << place->y();
        }
    }
}

TEST(PanelPlacement, CountsPixelsOutwardsAtOddScales) {
    const Display odd = display({100, 0, 1920, 1080}, true, {100, 0}, 1.5);
    EXPECT_EQ(PanelPlacement::pixels(odd, QRect(101, 1, 3, 3)), QRect(101, 1, 5, 5));
}

} // namespace
} // namespace OmbrelRecord
