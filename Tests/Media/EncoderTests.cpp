// Encoders: what comes out of them is decoded and looked at.

#include "RecordCore/Media/FFmpeg/FFmpegMedia.h"
#include "RecordCore/Media/X264/StillPictures.h"
#include "Tests/Media/Clips.h"
#include "Tests/Media/TestMovie.h"
#include "Tests/Support/TemporaryFolder.h"

#include <cmath>
#include <cstring>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace RecordCore;
using namespace TestMovie;

namespace {

struct StillCase {
    std::string name;
    std::string preset;
    int threads;
    bool realTime;
};
void PrintTo(const StillCase& c, std::ostream* out) {
    *out << c.name;
}

class Stills : public testing::TestWithParam<StillCase> {};

using Prints = std::vector<std::uint64_t>;

Prints printsOf(const std::filesystem::path& file) {
    Prints prints;
    const auto reader = FFmpeg::openVideo(file, 1);
    while (const auto frame = reader->next())
        prints.push_back(fingerprint(frame->picture));
    return prints;
}

/// Encodes frames, some of which repeat the one before, and returns the fingerprints of what is decoded.
Prints encodeAndDecode(const std::filesystem::path& file, const VideoSettings& wanted,
                       const std::vector<bool>& repeats, bool hints) {
    Movie movie(file, MovieLayout::film, wanted, false);
    Drawing drawing;
    std::vector<std::uint8_t> changed(std::size_t{width / 16} * (height / 16));
    std::vector<std::uint8_t> before;
    PlanarView view;
    int number = 0;
    const auto scale = wanted.timeBase.den / 60;
    for (std::size_t i = 0; i < repeats.size(); ++i) {
        const auto pts = static_cast<std::int64_t>(i) * scale;
        if (repeats[i]) {
            movie.video->repeat(view, pts);
            continue;
        }
        view = drawing.frame(++number);
        std::vector<std::uint8_t> luma(view.planes[0], view.planes[0] + width * height);
        for (int block = 0; !before.empty() && block < width / 16 * (height / 16); ++block) {
            const int left = block % (width / 16) * 16;
            const int top = block / (width / 16) * 16;
            bool differs = false;
            for (int y = top; y < top + 16; ++y)
                differs =
                    differs || std::memcmp(&luma[static_cast<std::size_t>(y * width + left)],
                                           &before[static_cast<std::size_t>(y * width + left)], 16) != 0;
            changed[static_cast<std::size_t>(block)] = differs ? 1 : 0;
        }
        FrameHints frameHints;
        if (hints && !before.empty()) frameHints.changedBlocks = changed;
        before = std::move(luma);
        movie.video->encode(view, pts, frameHints);
    }
    const auto end = static_cast<std::int64_t>(repeats.size()) * scale;
    movie.video->finish(end);
    movie.writer->setEnd(movie.videoTrack, end);
    movie.writer->finish();
    return printsOf(file);
}

/// Mean squared error of a decoded picture's luma against the drawing of that number.
double lumaError(const PlanarView& picture, int number) {
    Drawing drawing;
    const PlanarView drawn = drawing.frame(number);
    double sum = 0;
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            const double d = picture.planes[0][y * picture.strides[0] + x] - drawn.planes[0][y * width + x];
            sum += d * d;
        }
    return sum / (width * height);
}

/// Runs of all lengths below the ten frames after which a still is refined; more pictures than a frame
/// number has values, many of them between two key frames.
std::vector<bool> repeatsInRuns() {
    std::vector<bool> repeats;
    for (int run = 0; repeats.size() < 400; ++run) {
        repeats.insert(repeats.end(), static_cast<std::size_t>(1 + run % 4), false);
        repeats.insert(repeats.end(), static_cast<std::size_t>(run % 10), true);
    }
    return repeats;
}

TEST_P(Stills, EqualTheFrameBeforeAndKeepTheOthersInTheirPlace) {
    const StillCase& c = GetParam();
    const TemporaryFolder folder;
    VideoSettings wanted = settings(c.realTime);
    wanted.preset = c.preset;
    wanted.threads = c.threads;
    wanted.timeBase = {1, 600};
    const std::vector<bool> repeats = repeatsInRuns();
    const auto file = folder / "with.mp4";
    const Prints prints = encodeAndDecode(file, wanted, repeats, false);
    ASSERT_EQ(prints.size(), repeats.size());
    const std::string keyTimes =
        ffprobe("-select_streams v -skip_frame nokey -show_entries frame=pts_time " + file.string());
    std::vector<std::size_t> keys;
    std::istringstream lines(keyTimes);
    for (double time = 0; lines >> time;)
        keys.push_back(static_cast<std::size_t>(std::llround(time * 60)));
    EXPECT_GE(keys.size(), 4U);

    const auto reader = FFmpeg::openVideo(file, 1);
    int number = 0;
    for (std::size_t i = 0; i < repeats.size(); ++i) {
        const auto frame = reader->next();
        ASSERT_TRUE(frame);
        EXPECT_NEAR(frame->time, static_cast<double>(i) / 60, 1e-6);
        if (repeats[i]) {
            // The still frame is sent anew where a key frame is due.
            const bool key = std::find(keys.begin(), keys.end(), i) != keys.end();
            EXPECT_TRUE(key || prints[i] == prints[i - 1]) << "repeat " << i;
        } else {
            ++number;
        }
        const double own = lumaError(frame->picture, number);
        EXPECT_LT(own * 4, lumaError(frame->picture, number - 1)) << "frame " << i;
        EXPECT_LT(own * 4, lumaError(frame->picture, number + 1)) << "frame " << i;
    }

    // A strict decoder finds nothing to complain about.
    ffmpeg("-err_detect explode -xerror -i " + file.string() +
           " -fps_mode passthrough -enc_time_base 1:1000000 -f null -");
}

TEST_P(Stills, ChangeNoOtherPicture) {
    const StillCase& c = GetParam();
    const TemporaryFolder folder;
    VideoSettings wanted = settings(c.realTime);
    wanted.preset = c.preset;
    wanted.threads = c.threads;
    wanted.timeBase = {1, 60};

    // The very same packets once as they are and once with repeats between them: encoding twice would also
    // compare the encoder with itself, which need not agree to the bit on every machine.
    std::vector<std::vector<std::uint8_t>> packets;
    const auto encoder = X264::makeEncoder(
        wanted, [&](const Packet& packet) { packets.emplace_back(packet.data.begin(), packet.data.end()); });
    Drawing drawing;
    for (int i = 0; i < 200; ++i)
        encoder->encode(drawing.frame(i), i, {});
    encoder->finish(200);
    ASSERT_EQ(packets.size(), 200U);

    const auto write = [&](const std::filesystem::path& file, const std::vector<bool>& repeats) {
        const StreamDescription& stream = encoder->description();
        const std::vector<std::uint8_t>& record = stream.extradata;
        const auto setAt = [&](std::size_t at) {
            const std::size_t length = record[at] * 256U + record[at + 1];
            return std::span(record).subspan(at + 2, length);
        };
        const auto sequence = setAt(6);
        auto stills = X264::StillPictures::forStream(sequence, setAt(6 + 2 + sequence.size() + 1));
        if (!stills) throw std::runtime_error("repeats do not fit this stream");
        const auto movie = FFmpeg::createMovie(file, MovieLayout::film);
        const int track = movie->addTrack(stream);
        movie->begin();
        std::size_t taken = 0;
        std::vector<std::uint8_t> unit;
        std::vector<std::uint8_t> data;
        const auto putUnit = [&] {
            for (int byte = 3; byte >= 0; --byte)
                data.push_back(static_cast<std::uint8_t>(unit.size() >> (8 * byte)));
            data.insert(data.end(), unit.begin(), unit.end());
            unit.clear();
        };
        for (std::size_t i = 0; i < repeats.size() && taken < packets.size(); ++i) {
            data.clear();
            bool key = false;
            if (repeats[i]) {
                stills->appendRepeat(unit);
                putUnit();
            } else {
                std::span<const std::uint8_t> rest(packets[taken++]);
                while (rest.size() > 4) {
                    const std::size_t length =
                        rest[0] * 16777216U + rest[1] * 65536U + rest[2] * 256U + rest[3];
                    key = key || (rest[4] & 0x1F) == 5;
                    stills->append(rest.subspan(4, length), unit);
                    putUnit();
                    rest = rest.subspan(4 + length);
                }
            }
            const auto pts = static_cast<std::int64_t>(i);
            movie->write(track, {data, pts, pts, 1, key});
        }
        movie->finish();
        return printsOf(file);
    };
    const Prints plain = write(folder / "plain.mp4", std::vector<bool>(packets.size(), false));
    ASSERT_EQ(plain.size(), packets.size());
    std::vector<bool> repeats = repeatsInRuns();
    const Prints with = write(folder / "with.mp4", repeats);
    Prints own;
    for (std::size_t i = 0; i < with.size(); ++i) {
        if (!repeats[i]) own.push_back(with[i]);
        EXPECT_TRUE(!repeats[i] || with[i] == with[i - 1]) << "repeat " << i;
    }
    ASSERT_GT(own.size(), 100U);
    EXPECT_EQ(own, Prints(plain.begin(), plain.begin() + static_cast<std::ptrdiff_t>(own.size())));
}

INSTANTIATE_TEST_SUITE_P(Presets, Stills,
                         testing::Values(StillCase{"veryfast", "veryfast", 1, false},
                                         StillCase{"superfastThreads", "superfast", 3, false},
                                         StillCase{"medium", "medium", 2, false},
                                         StillCase{"ultrafastWithoutCabac", "ultrafast", 1, false},
                                         StillCase{"realTime", "superfast", 2, true}),
                         [](const auto& one) { return one.param.name; });

TEST(LongStills, AreRefinedAndKeyed) {
    const TemporaryFolder folder;
    // Motion, then a still of four seconds.
    std::vector<bool> repeats(60, false);
    repeats.resize(300, true);
    const auto file = folder / "film.mp4";
    for (const bool hints : {false, true}) {
        const auto prints = encodeAndDecode(file, settings(false), repeats, hints);
        ASSERT_EQ(prints.size(), 300U);
        // Only the refinement and the key frames in the still are new pictures, unless they equal the one
        // before.
        std::vector<std::size_t> changes;
        for (std::size_t i = 60; i < prints.size(); ++i)
            if (prints[i] != prints[i - 1]) changes.push_back(i);
        EXPECT_THAT(changes, testing::IsSupersetOf({69U, 120U}));
        EXPECT_THAT(changes, testing::IsSubsetOf({69U, 120U, 240U}));

        // The still ends closer to what was drawn than it began.
        const auto error = [&](double time) {
            const auto reader = FFmpeg::openVideo(file, 1);
            reader->seek(time);
            return lumaError(reader->next()->picture, 60);
        };
        EXPECT_LT(error(4.5), error(1.0));
        const auto size = std::filesystem::file_size(file);
        EXPECT_LT(size, 400'000 / 8 * 5 * 1.3);
    }
}

TEST(X264Encoder, PlainPathKeepsEveryFrame) {
    const TemporaryFolder folder;
    VideoSettings wanted = settings(false);
    wanted.freeStills = false;
    wanted.keyInterval = 50;
    std::vector<bool> repeats(90, false);
    for (std::size_t i = 20; i < 50; ++i)
        repeats[i] = true;
    EXPECT_EQ(encodeAndDecode(folder / "film.mp4", wanted, repeats, false).size(), 90U);
    ffmpeg("-err_detect explode -xerror -i " + (folder / "film.mp4").string() +
           " -fps_mode passthrough -enc_time_base 1:1000000 -f null -");
    EXPECT_EQ(ffprobe("-select_streams v -show_entries stream=profile,color_range,color_space,color_transfer,"
                      "color_primaries " +
                      (folder / "film.mp4").string()),
              "High,tv,bt709,bt709,bt709\n");
}

TEST(RealTimeEncoders, DeliverEveryFrameAtOnceAndKeysByTime) {
    const TemporaryFolder folder;
    for (const Codec codec : {Codec::h264, Codec::hevc}) {
        const auto file = folder / (codec == Codec::h264 ? "h264.mp4" : "hevc.mp4");
        VideoSettings wanted = settings(true);
        wanted.codec = codec;
        Movie movie(file, MovieLayout::recording, wanted, false);
        // A screen that moves in bursts: variable times, some frames seconds apart.
        Drawing drawing;
        std::vector<double> times;
        double time = 0;
        for (int i = 0; i < 60; ++i) {
            times.push_back(time);
            movie.video->encode(drawing.frame(i), std::llround(time * 1e6), {});
            EXPECT_EQ(movie.packets, i + 1) << movie.video->name();
            time += i % 20 == 19 ? 2.7 : 1 / 60.0 + (i % 3) * 0.004;
        }
        movie.video->finish(std::llround(time * 1e6));
        movie.writer->setEnd(movie.videoTrack, std::llround(time * 1e6));
        movie.writer->finish();

        const auto reader = FFmpeg::openVideo(file, 2);
        EXPECT_NEAR(reader->info().duration, time, 1e-4);
        const auto seen = restOfTimes(*reader);
        ASSERT_EQ(seen.size(), times.size());
        for (std::size_t i = 0; i < times.size(); ++i)
            EXPECT_NEAR(seen[i], times[i], 2e-6);
        const std::string keys =
            ffprobe("-select_streams v -skip_frame nokey -show_entries frame=pts_time " + file.string());
        EXPECT_EQ(std::count(keys.begin(), keys.end(), '\n'), 3) << keys;
        ffmpeg("-err_detect explode -xerror -i " + file.string() +
               " -fps_mode passthrough -enc_time_base 1:1000000 -f null -");
        EXPECT_EQ(
            ffprobe(
                "-select_streams v -show_entries stream=codec_name,codec_tag_string,has_b_frames,color_range,"
                "color_space " +
                file.string()),
            codec == Codec::h264 ? "h264,avc1,0,tv,bt709\n" : "hevc,hvc1,0,tv,bt709\n");
    }
}

TEST(HevcFilm, KeepsEveryFrame) {
    const TemporaryFolder folder;
    VideoSettings wanted = settings(false);
    wanted.codec = Codec::hevc;
    std::vector<bool> repeats(70, false);
    for (std::size_t i = 20; i < 40; ++i)
        repeats[i] = true;
    EXPECT_EQ(encodeAndDecode(folder / "film.mp4", wanted, repeats, false).size(), 70U);
    EXPECT_NEAR(FFmpeg::sourceInfo(folder / "film.mp4").duration, 70 / 60.0, 1e-4);
    ffmpeg("-err_detect explode -xerror -i " + (folder / "film.mp4").string() +
           " -fps_mode passthrough -enc_time_base 1:1000000 -f null -");
}

TEST(HardwareEncoders, WorkOrSayThatThereIsNone) {
    VideoSettings wanted = settings(true);
    wanted.hardware = true;
    for (const Codec codec : {Codec::hevc, Codec::h264}) {
        wanted.codec = codec;
        int packets = 0;
        std::unique_ptr<VideoEncoder> encoder;
        const std::string message =
            messageOf([&] { encoder = FFmpeg::makeVideoEncoder(wanted, [&](const Packet&) { ++packets; }); });
        if (!encoder) {
            EXPECT_THAT(message, testing::HasSubstr("no hardware encoder"));
            continue;
        }
        Drawing drawing;
        encoder->encode(drawing.frame(0), 0, {});
        encoder->finish(100);
        EXPECT_EQ(packets, 1);
    }
}

} // namespace
