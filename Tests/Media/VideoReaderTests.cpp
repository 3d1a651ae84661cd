#include "RecordCore/Media/FFmpeg/FFmpegMedia.h"
#include "RecordCore/Model/AtomicFile.h"
#include "RecordCore/Model/RecordingError.h"
#include "Tests/Media/Clips.h"
#include "Tests/Support/TemporaryFolder.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <functional>
#include <sys/stat.h>
#include <unistd.h>

using namespace RecordCore;

namespace {

// Four flat quarters: red, green, blue and a light grey. Flat areas survive every codec nearly exactly.
struct Quarter {
    double x, y;
    double red, green, blue;
};
constexpr std::array<Quarter, 4> quarters{{{0.25, 0.25, 200, 40, 40},
                                           {0.75, 0.25, 40, 180, 60},
                                           {0.25, 0.75, 30, 60, 210},
                                           {0.75, 0.75, 190, 190, 190}}};

/// A lavfi source of 8 frames at 10 a second.
std::string source(int width, int height) {
    const auto colour = [&](const Quarter& q) {
        return fmt::format("color=c=0x{:02x}{:02x}{:02x}:s={}x{}:r=10:d=0.8,format=gbrp", int(q.red),
                           int(q.green), int(q.blue), (width + 1) / 2, (height + 1) / 2);
    };
    return fmt::format(
        "-f lavfi -i \"{}[a];{}[b];{}[c];{}[d];[a][b][c][d]xstack=inputs=4:layout=0_0|w0_0|0_h0|w0_h0,"
        "crop={}:{}:0:0\"",
        colour(quarters[0]), colour(quarters[1]), colour(quarters[2]), colour(quarters[3]), width, height);
}

struct ColourCase {
    std::string name;
    std::string file;
    int width, height;
    std::string filter; ///< what turns the RGB source into the stored picture
    std::string encoder;
    Quarter (*where)(Quarter) = nullptr; ///< where a quarter is seen, when not where it was drawn
    int shownWidth = 0, shownHeight = 0;
};

void PrintTo(const ColourCase& c, std::ostream* out) {
    *out << c.name;
}

std::string matrix(const std::string& name, const std::string& range, const std::string& format) {
    return fmt::format(
        "-vf scale=out_color_matrix={}:out_range={}:flags=accurate_rnd+full_chroma_int,format={}", name,
        range, format);
}

const std::string x264 = "-c:v libx264 -preset ultrafast -qp 8 ";
const std::string tag709 = " -colorspace bt709 -color_range tv";

Quarter turnedRight(Quarter q) {
    return {1 - q.y, q.x, q.red, q.green, q.blue};
}
Quarter turnedLeft(Quarter q) {
    return {q.y, 1 - q.x, q.red, q.green, q.blue};
}
Quarter turnedOver(Quarter q) {
    return {1 - q.x, 1 - q.y, q.red, q.green, q.blue};
}

class Colours : public testing::TestWithParam<ColourCase> {};

TEST_P(Colours, ArriveAsBt709VideoRange) {
    const ColourCase& c = GetParam();
    const TemporaryFolder folder;
    const auto file = folder / c.file.c_str();
    const std::size_t bar = c.encoder.find('|'); // what follows is a second, copying pass
    ffmpeg(source(c.width, c.height) + " " + c.filter + " " + c.encoder.substr(0, bar) + " " + file.string());
    if (bar != std::string::npos) {
        const auto plain = folder / ("plain-" + c.file).c_str();
        std::filesystem::rename(file, plain);
        ffmpeg("-i " + plain.string() + " " + c.encoder.substr(bar + 1) + " " + file.string());
    }

    const auto reader = FFmpeg::openVideo(file, 2);
    const int width = c.shownWidth > 0 ? c.shownWidth : c.width;
    const int height = c.shownHeight > 0 ? c.shownHeight : c.height;
    EXPECT_EQ(reader->info().width, width);
    EXPECT_EQ(reader->info().height, height);
    EXPECT_NEAR(reader->info().duration, 0.8, 0.002);
    EXPECT_NEAR(reader->info().fps, 10, 0.01);
    EXPECT_FALSE(reader->info().hasAudio);
    int frames = 0;
    while (const auto frame = reader->next()) {
        ASSERT_EQ(frame->picture.width, width);
        ASSERT_EQ(frame->picture.height, height);
        EXPECT_NEAR(frame->time, frames / 10.0, 0.001);
        ++frames;
        for (const Quarter& drawn : quarters) {
            const Quarter q = c.where ? c.where(drawn) : drawn;
            const auto expected = bt709(q.red, q.green, q.blue);
            const auto seen = patch(frame->picture, q.x, q.y);
            for (std::size_t i = 0; i < 3; ++i)
                EXPECT_NEAR(seen[i], expected[i], 2) << "plane " << i << " at " << q.x << "," << q.y;
        }
    }
    EXPECT_EQ(frames, 8);
}

INSTANTIATE_TEST_SUITE_P(
    Files, Colours,
    testing::Values(
        ColourCase{"h264", "a.mp4", 160, 96, matrix("bt709", "tv", "yuv420p"), x264 + tag709},
        ColourCase{"bt601", "a.mov", 160, 96, matrix("bt601", "tv", "yuv420p"),
                   x264 + "-colorspace smpte170m"},
        ColourCase{"untaggedSmallIs601", "a.mkv", 160, 96, matrix("bt601", "tv", "yuv420p"), x264},
        ColourCase{"untaggedLargeIs709", "a.mp4", 1280, 96, matrix("bt709", "tv", "yuv420p"), x264},
        ColourCase{"bt2020TenBit", "a.mp4", 160, 96, matrix("bt2020", "tv", "yuv420p10"),
                   x264 + "-colorspace bt2020nc"},
        ColourCase{"fullRange", "a.mp4", 160, 96, matrix("bt709", "pc", "yuv420p"),
                   x264 + "-colorspace bt709 -color_range pc"},
        ColourCase{"fullRange601", "a.mov", 160, 96, matrix("bt601", "pc", "yuvj420p"), "-c:v mjpeg -q:v 2"},
        ColourCase{"hevcTenBit", "a.mp4", 160, 96, matrix("bt709", "tv", "yuv420p10"),
                   "-c:v libx265 -preset ultrafast -x265-params log-level=none:qp=8" + tag709},
        ColourCase{"fourTwoTwo", "a.mkv", 160, 96, matrix("bt709", "tv", "yuv422p"), x264 + tag709},
        ColourCase{"fourFourFourTenBit601", "a.mkv", 160, 96, matrix("bt601", "tv", "yuv444p10"),
                   x264 + "-colorspace smpte170m"},
        ColourCase{"rgb", "a.mkv", 160, 96, "-vf format=gbrp", "-c:v libx264rgb -preset ultrafast -qp 4"},
        ColourCase{"rgbLossless", "a.mov", 160, 96, "-vf format=rgb24", "-c:v qtrle"},
        ColourCase{"vp9", "a.webm", 160, 96, matrix("bt709", "tv", "yuv420p"),
                   "-c:v libvpx-vp9 -deadline realtime -cpu-used 8 -b:v 0 -crf 4" + tag709},
        ColourCase{"av1", "a.mp4", 160, 96, matrix("bt709", "tv", "yuv420p"),
                   "-c:v libaom-av1 -usage realtime -cpu-used 8 -b:v 0 -crf 4" + tag709},
        ColourCase{"avi", "a.avi", 160, 96, matrix("bt601", "tv", "yuv420p"), "-c:v mpeg4 -q:v 1 -bf 0"},
        ColourCase{"transportStream", "a.ts", 160, 96, matrix("bt709", "tv", "yuv420p"), x264 + tag709},
        ColourCase{"fragments", "a.mp4", 160, 96, matrix("bt709", "tv", "yuv420p"),
                   x264 + "-g 3 -movflags frag_keyframe+empty_moov+default_base_moof" + tag709},
        ColourCase{"odd", "a.mkv", 161, 97, matrix("bt601", "tv", "yuv444p"), x264 + "-colorspace smpte170m"},
        ColourCase{"oddTurned", "a.mp4", 161, 97, matrix("bt709", "tv", "yuv444p"),
                   x264 + tag709 + "|-c copy -metadata:s:v rotate=270", turnedRight, 97, 161},
        ColourCase{"turnedRight", "a.mp4", 160, 96, matrix("bt709", "tv", "yuv420p"),
                   x264 + tag709 + "|-c copy -metadata:s:v rotate=270", turnedRight, 96, 160},
        ColourCase{"turnedLeft", "a.mov", 160, 96, matrix("bt601", "tv", "yuv420p"),
                   x264 + "-colorspace smpte170m|-c copy -metadata:s:v rotate=90", turnedLeft, 96, 160},
        ColourCase{"turnedOver", "a.mp4", 160, 96, matrix("bt709", "tv", "yuv420p"),
                   x264 + tag709 + "|-c copy -metadata:s:v rotate=180", turnedOver},
        ColourCase{"widePixels", "a.mp4", 120, 96, matrix("bt709", "tv", "yuv420p") + ",setsar=4/3",
                   x264 + tag709, nullptr, 160, 96},
        ColourCase{"tallPixels", "a.mkv", 160, 96, matrix("bt709", "tv", "yuv420p") + ",setsar=1/2",
                   x264 + tag709, nullptr, 160, 192}),
    [](const auto& one) { return one.param.name; });

// --- Order, seeking, skipping ---------------------------------------------------------------------------

/// Frames that differ from each other, in different shapes of stream.
struct StreamCase {
    std::string name;
    std::string arguments; ///< everything after the source
};
void PrintTo(const StreamCase& c, std::ostream* out) {
    *out << c.name;
}

class Streams : public testing::TestWithParam<StreamCase> {
protected:
    void SetUp() override {
        const std::string container = GetParam().name == "webm"  ? "a.webm"
                                      : GetParam().name == "mkv" ? "a.mkv"
                                                                 : "a.mp4";
        file = folder / container.c_str();
        ffmpeg("-f lavfi -i testsrc2=s=128x96:r=30:d=4 " + GetParam().arguments + " " + file.string());
        const auto reader = FFmpeg::openVideo(file, 1);
        while (const auto frame = reader->next()) {
            times.push_back(frame->time);
            prints.push_back(fingerprint(frame->picture));
        }
    }

    /// The number of the frame shown at a time.
    std::size_t shownAt(double seconds) const {
        std::size_t index = 0;
        while (index + 1 < times.size() && times[index + 1] <= seconds + 1e-6)
            ++index;
        return index;
    }

    TemporaryFolder folder;
    std::filesystem::path file;
    std::vector<double> times;
    std::vector<std::uint64_t> prints;
};

TEST_P(Streams, StartAtZeroAndRise) {
    ASSERT_GE(times.size(), 40U);
    EXPECT_EQ(times.front(), 0);
    for (std::size_t i = 1; i < times.size(); ++i)
        EXPECT_GT(times[i], times[i - 1]);
    const SourceInfo info = FFmpeg::sourceInfo(file);
    EXPECT_NEAR(info.duration, 4, 0.02);
    EXPECT_NEAR(info.fps, static_cast<double>(times.size()) / 4, 0.3);
}

TEST_P(Streams, SameWithMoreThreads) {
    const auto reader = FFmpeg::openVideo(file, 3);
    for (std::size_t i = 0; i < times.size(); ++i) {
        const auto frame = reader->next();
        ASSERT_TRUE(frame) << i;
        EXPECT_EQ(frame->time, times[i]);
        EXPECT_EQ(fingerprint(frame->picture), prints[i]) << i;
    }
    EXPECT_FALSE(reader->next());
}

TEST_P(Streams, SeekFindsTheFrameShown) {
    const auto reader = FFmpeg::openVideo(file, 2);
    // Forwards, backwards, the same again, on and just beside frame times, outside.
    const std::vector<double> places{
        1.0,  1.01,  3.9, 0.5,    0.5, times[7], times[7] - 2e-6, times[7] + 0.5e-6, 2.97, 0.0,
        -1.0, 100.0, 2.0, 2.0333, 2.4, 1.99};
    for (const double place : places) {
        reader->seek(place);
        for (std::size_t i = shownAt(place); i < std::min(shownAt(place) + 3, times.size()); ++i) {
            const auto frame = reader->next();
            ASSERT_TRUE(frame) << place;
            EXPECT_EQ(frame->time, times[i]) << place;
            EXPECT_EQ(fingerprint(frame->picture), prints[i]) << place;
        }
    }
}

TEST_P(Streams, SkippingReturnsWhatIsShown) {
    for (const double step : {0.11, 0.667, 1.3}) {
        const auto reader = FFmpeg::openVideo(file, 2);
        std::optional<VideoFrame> current = reader->next();
        std::optional<VideoFrame> following = reader->next();
        int returned = 2;
        for (double place = 0; place < 4; place += step) {
            // As an export reads: advance while the following frame is due.
            reader->skipTo(place);
            while (following && following->time <= place + 1e-6) {
                current = std::move(following);
                following = reader->next();
                ++returned;
            }
            ASSERT_TRUE(current);
            EXPECT_EQ(current->time, times[shownAt(place)]) << place;
            EXPECT_EQ(fingerprint(current->picture), prints[shownAt(place)]) << place;
        }
        EXPECT_LE(returned, 4 / step * 2 + 4); // frames between are not handed out
    }
}

INSTANTIATE_TEST_SUITE_P(
    Files, Streams,
    testing::Values(
        StreamCase{"plain", "-c:v libx264 -preset ultrafast -g 30 -bf 0"},
        StreamCase{"reordered", "-c:v libx264 -preset veryfast -g 20 -bf 3 -b_strategy 0"},
        StreamCase{"openGroups",
                   "-c:v libx264 -preset veryfast -g 20 -bf 3 -b_strategy 0 -x264-params open-gop=1"},
        StreamCase{"hevcOpenGroups",
                   "-c:v libx265 -preset ultrafast -g 15 -bf 3 -x265-params log-level=none:open-gop=1"},
        StreamCase{"oneKey", "-c:v libx264 -preset ultrafast -g 1000"},
        StreamCase{"variable", "-vf \"select=not(mod(n\\,7))+gt(mod(n\\,30)\\,20)\" -vsync vfr -c:v libx264 "
                               "-preset ultrafast -g 12 -bf 2 -video_track_timescale 6000"},
        StreamCase{"fragments", "-c:v libx264 -preset ultrafast -g 20 -bf 2 -movflags "
                                "frag_keyframe+empty_moov+default_base_moof"},
        StreamCase{"late", "-c:v libx264 -preset ultrafast -g 20 -bf 2 -output_ts_offset 1.5"},
        StreamCase{"mkv", "-c:v libx264 -preset ultrafast -g 20 -bf 2"},
        StreamCase{"webm", "-c:v libvpx-vp9 -deadline realtime -cpu-used 8 -g 20"}),
    [](const auto& one) { return one.param.name; });

// --- Files that are not right ---------------------------------------------------------------------------

std::string messageOf(const std::function<void()>& action) {
    try {
        action();
    } catch (const RecordingError& error) {
        return error.what();
    }
    return "(no error)";
}

void write(const std::filesystem::path& file, const std::string& bytes) {
    std::ofstream(file, std::ios::binary) << bytes;
}

std::string contents(const std::filesystem::path& file) {
    return readFile(file);
}

/// Overwrites the bytes at `offset` from the first place where `tag` stands.
std::string patched(std::string bytes, const std::string& tag, std::size_t offset,
                    const std::string& replacement) {
    const std::size_t at = bytes.find(tag);
    if (at == std::string::npos) throw std::runtime_error("no " + tag);
    return bytes.replace(at + offset, replacement.size(), replacement);
}

TEST(BadVideos, AreRefusedInOneClearLine) {
    const TemporaryFolder folder;
    ffmpeg("-f lavfi -i testsrc2=s=128x96:r=30:d=2 -c:v libx264 -preset ultrafast -bf 0 " +
           (folder / "good.mp4").string());
    ffmpeg("-f lavfi -i sine=d=1 -c:a aac " + (folder / "sound.mp4").string());
    const std::string good = contents(folder / "good.mp4");

    write(folder / "text.mp4", std::string(5000, 'x') + "\nhello\n");
    write(folder / "short.mp4", "hi");
    write(folder / "empty.mp4", "");
    write(folder / "noIndex.mp4", good.substr(0, good.size() / 2)); // the index stands at the end
    write(folder / "playlist.mp4", "#EXTM3U\n#EXT-X-TARGETDURATION:5\n#EXTINF:5,\n/etc/passwd\n");
    // Version 0 headers: 32-bit units per second, then 32-bit duration. One unit a second, 2^31 − 1 units.
    const std::string absurd("\0\0\0\1\x7f\xff\xff\xff", 8);
    write(folder / "long.mp4", patched(patched(patched(good, "edts", 0, "free"), "mdhd", 16, absurd), "stts",
                                       16, std::string("\0\xff\xff\xff", 4)));
    // Width and height of the sample description: 65535 each, with the parameter sets gone.
    write(folder / "huge.mp4",
          patched(patched(good, std::string("avc1\0\0\0\0\0\0\0\1", 12), 28, "\xff\xff\xff\xff"), "avcC", 0,
                  "xxxx"));
    std::filesystem::create_directory(folder / "folder.mp4");
    ASSERT_EQ(::mkfifo((folder / "pipe.mp4").c_str(), 0600), 0);
    write(folder / "secret.mp4", good);
    std::filesystem::permissions(folder / "secret.mp4", std::filesystem::perms::none);

    const std::vector<std::pair<std::string, std::string>> expected{
        {"text.mp4", "not a video that can be read"},
        {"short.mp4", "not a video that can be read"},
        {"empty.mp4", "not a video that can be read: the file is empty"},
        {"noIndex.mp4", "not a video that can be read"},
        {"playlist.mp4", "not a video that can be read"},
        {"sound.mp4", "the file has no video"},
        {"folder.mp4", "cannot be read: Is a directory"},
        {"pipe.mp4", "cannot be read: not a regular file"},
        {"missing.mp4", "cannot be read: No such file or directory"},
        {"long.mp4", "longer than 100 hours"},
        {"huge.mp4", "the picture is too large"},
    };
    testing::internal::CaptureStderr();
    for (const auto& [name, cause] : expected) {
        const auto file = folder / name.c_str();
        for (const std::string& message :
             {messageOf([&] { FFmpeg::openVideo(file, 1); }), messageOf([&] { FFmpeg::sourceInfo(file); })}) {
            EXPECT_THAT(message, testing::StartsWith(file.string() + ": ")) << name;
            EXPECT_THAT(message, testing::HasSubstr(cause)) << name;
            EXPECT_EQ(message.find('\n'), std::string::npos);
        }
    }
    if (::geteuid() != 0) {
        EXPECT_THAT(messageOf([&] { FFmpeg::openVideo(folder / "secret.mp4", 1); }),
                    testing::HasSubstr("Permission"));
    }
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    // A name is only a name, and never an address.
    EXPECT_THAT(messageOf([&] { FFmpeg::openVideo("http://127.0.0.1:9/a.mp4", 1); }),
                testing::HasSubstr("No such file"));
}

TEST(BadVideos, GiveThePicturesTheyHave) {
    const TemporaryFolder folder;
    ffmpeg("-f lavfi -i testsrc2=s=128x96:r=30:d=2 -c:v libx264 -preset ultrafast -bf 0 -g 10 -movflags "
           "+faststart " +
           (folder / "good.mp4").string());
    const std::string good = contents(folder / "good.mp4");
    write(folder / "cut.mp4", good.substr(0, good.size() * 6 / 10));
    std::string holes = good;
    for (std::size_t i = good.size() / 2; i < good.size() / 2 + 3000; ++i)
        holes[i] = static_cast<char>(i * 37);
    write(folder / "holes.mp4", holes);
    testing::internal::CaptureStderr();
    const auto times = restOfTimes(*FFmpeg::openVideo(folder / "holes.mp4", 2));
    EXPECT_GE(times.size(), 40U);
    EXPECT_LE(times.size(), 59U);
    // Half a file is not taken for a short film.
    EXPECT_THAT(messageOf([&] { FFmpeg::openVideo(folder / "cut.mp4", 2); }),
                testing::HasSubstr("the file is cut off"));
    // All pictures gone: an error, not an empty film.
    std::string none = good;
    std::fill(none.begin() + static_cast<std::ptrdiff_t>(good.find("mdat")) + 4, none.end(), '\0');
    write(folder / "none.mp4", none);
    EXPECT_THAT(messageOf([&] { restOfTimes(*FFmpeg::openVideo(folder / "none.mp4", 2)); }),
                testing::HasSubstr("no picture"));
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST(VideoReader, HonoursACutAtTheStart) {
    // A copy from 1.3 s on starts at the key frame at 1 s and hides what comes before in an edit list.
    const TemporaryFolder folder;
    ffmpeg("-f lavfi -i testsrc2=s=128x96:r=30:d=3 -f lavfi -i sine=d=3 -c:v libx264 -preset ultrafast -g 30 "
           "-bf 2 "
           "-c:a aac " +
           (folder / "whole.mp4").string());
    ffmpeg("-ss 1.3 -i " + (folder / "whole.mp4").string() + " -c copy " + (folder / "cut.mp4").string());
    const auto whole = FFmpeg::openVideo(folder / "whole.mp4", 1);
    whole->seek(1.3);
    const auto cut = FFmpeg::openVideo(folder / "cut.mp4", 1);
    EXPECT_NEAR(cut->info().duration, 1.7, 0.02);
    EXPECT_NEAR(cut->info().fps, 30, 0.5);
    for (const double place : {0.0, 0.8}) {
        whole->seek(1.3 + place);
        cut->seek(place);
        const auto expected = whole->next();
        const auto seen = cut->next();
        ASSERT_TRUE(seen);
        EXPECT_NEAR(seen->time, place, 0.001);
        EXPECT_EQ(fingerprint(seen->picture), fingerprint(expected->picture));
    }
}

TEST(VideoReader, HandsRightFramesOnWithoutCopying) {
    const TemporaryFolder folder;
    ffmpeg("-f lavfi -i testsrc2=s=128x96:r=30:d=0.5 -pix_fmt yuv420p -colorspace bt709 -color_range tv -c:v "
           "libx264 "
           "-preset ultrafast " +
           (folder / "a.mp4").string());
    const auto reader = FFmpeg::openVideo(folder / "a.mp4", 2);
    auto first = reader->next();
    const std::uint64_t before = fingerprint(first->picture);
    // Frames stay as they are for as long as they are held, whatever is decoded meanwhile, and after the
    // reader.
    std::vector<VideoFrame> held;
    while (auto frame = reader->next())
        held.push_back(std::move(*frame));
    EXPECT_EQ(held.size(), 14U);
    EXPECT_EQ(fingerprint(first->picture), before);
}

} // namespace
