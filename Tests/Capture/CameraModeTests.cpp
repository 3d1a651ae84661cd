#include "RecordCore/Capture/CameraMode.h"

#include <gtest/gtest.h>

#include <vector>

using namespace RecordCore;

TEST(CameraMode, PrefersFluentHighDefinition) {
    using enum RawFormat;
    struct Case {
        const char* name;
        std::vector<CameraMode> modes;
        std::size_t best;
    };
    for (const Case& c : {
             Case{"usual camera: raw is slow at full size",
                  {{yuyv, 640, 480, 30},
                   {yuyv, 1280, 720, 10},
                   {motionJpeg, 1280, 720, 30},
                   {motionJpeg, 1920, 1080, 30}},
                  2},
             Case{"raw before compressed", {{motionJpeg, 1280, 720, 60}, {yuyv, 1280, 720, 30}}, 1},
             Case{"planar before packed", {{yuyv, 1280, 720, 30}, {i420, 1280, 720, 30}}, 1},
             Case{"exact before larger", {{nv12, 1920, 1080, 30}, {nv12, 1280, 720, 30}}, 1},
             Case{"larger before smaller", {{nv12, 640, 480, 30}, {nv12, 1920, 1080, 30}}, 1},
             Case{"nearest of the larger", {{nv12, 3840, 2160, 30}, {nv12, 1920, 1080, 30}}, 1},
             Case{"another shape of the same area", {{nv12, 960, 960, 30}, {nv12, 640, 480, 30}}, 0},
             Case{"film speed is fluent", {{nv12, 1280, 720, 23.976}, {nv12, 640, 480, 30}}, 0},
             Case{"no speed told", {{nv12, 640, 480, 0}, {nv12, 1280, 720, 0}}, 1},
             Case{"none is fluent: the fastest", {{nv12, 1280, 720, 5}, {nv12, 640, 480, 15}}, 1},
             Case{"nonsense is passed over", {{nv12, 0, 0, 30}, {nv12, 320, 240, 30}}, 1},
         }) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(chooseCameraMode(c.modes), c.best);
    }
    EXPECT_FALSE(chooseCameraMode({}));
}
