#include "RecordCore/Media/FFmpeg/FFmpegMedia.h"
#include "RecordCore/Media/FrameCursor.h"
#include "RecordCore/Preview/FrameSeeker.h"
#include "Tests/Media/Clips.h"
#include "Tests/Support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <random>
#include <vector>

using namespace RecordCore;

namespace {

struct Wish {
    double seconds;
    double time;
    std::uint64_t pixels;
};

/// What a cursor that goes through the file finds on show at each of some times, in random order.
std::vector<Wish> wishes(const std::filesystem::path& file, double length) {
    std::vector<double> times;
    std::mt19937 random(7);
    std::uniform_real_distribution<double> anywhere(-0.2, length + 0.5);
    for (int i = 0; i < 150; ++i)
        times.push_back(anywhere(random));
    // Back and forth in small steps, as a hand on the timeline goes.
    for (int i = 0; i < 60; ++i)
        times.push_back(length / 2 - i * 0.03);
    for (int i = 0; i < 60; ++i)
        times.push_back(length / 2 + (i % 2 ? -1 : 1) * i * 0.02);
    std::vector<Wish> found;
    FrameCursor cursor(FFmpeg::openVideo(file, 1));
    for (const double time : times) {
        const VideoFrame* frame = cursor.at(time);
        found.push_back({time, frame->time, fingerprint(frame->picture)});
    }
    return found;
}

} // namespace

TEST(FrameSeeker, FindsTheFramesOfACursorInAnyOrder) {
    const TemporaryFolder folder;
    const struct {
        const char* name;
        const char* encoder;
        std::size_t kept;
    } cases[] = {
        {"plain.mp4", "-c:v libx264 -preset ultrafast -g 30 -bf 0", std::size_t{64} << 20},
        {"reordered.mp4", "-c:v libx264 -preset veryfast -g 45 -bf 2", std::size_t{64} << 20},
        {"forgetful.mp4", "-c:v libx264 -preset ultrafast -g 30 -bf 0", 0},
        {"unindexed.mkv", "-c:v libx264 -preset ultrafast -g 30 -bf 0", std::size_t{64} << 20},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const auto file = folder / c.name;
        // A variable frame rate: some frames are left out.
        ffmpeg(std::string("-f lavfi -i testsrc2=s=160x96:r=30:d=6 -vf select='mod(n\\,7)+mod(n\\,3)' "
                           "-fps_mode vfr ") +
               c.encoder + " " + file.string());
        FrameSeeker seeker(FFmpeg::openVideo(file, 2), c.kept);
        for (const Wish& wish : wishes(file, 6)) {
            seeker.want(wish.seconds);
            while (!seeker.step()) {
                ASSERT_GE(seeker.remaining(), 1);
                if (const auto near = seeker.best()) {
                    ASSERT_LE(near->time, wish.seconds + 1e-6);
                }
            }
            const auto frame = seeker.best();
            ASSERT_TRUE(frame);
            ASSERT_EQ(frame->time, wish.time) << "at " << wish.seconds;
            ASSERT_EQ(fingerprint(frame->picture), wish.pixels) << "at " << wish.seconds;
        }
    }
}

TEST(FrameSeeker, GoesTheShorterWay) {
    const TemporaryFolder folder;
    const auto file = folder / "clip.mp4";
    ffmpeg("-f lavfi -i testsrc2=s=160x96:r=30:d=10 -c:v libx264 -preset ultrafast -g 60 -bf 0 " +
           file.string());
    FrameSeeker seeker(FFmpeg::openVideo(file, 1), std::size_t{64} << 20);
    const auto steps = [&](double seconds) {
        int count = 0;
        for (seeker.want(seconds); !seeker.found(); ++count)
            seeker.step();
        return count;
    };
    steps(0);
    const struct {
        double seconds;
        int most;
        const char* why;
    } cases[] = {
        {0.5, 17, "forward"},
        {0.4, 0, "kept"},
        {0.1, 0, "kept"},
        {0.52, 1, "forward from where it was"},
        {8.05, 4, "a later key frame"},
        {8.2, 6, "forward"},
        {6.3, 11, "back to a key frame"},
        {6.25, 0, "kept"},
        {0.3, 0, "kept all the time"},
    };
    for (const auto& c : cases)
        EXPECT_LE(steps(c.seconds), c.most) << c.seconds << ": " << c.why;
}
