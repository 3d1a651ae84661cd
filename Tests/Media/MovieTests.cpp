#include "RecordCore/Media/FFmpeg/FFmpegMedia.h"
#include "RecordCore/Media/X264/StillPictures.h"
#include "RecordCore/Media/X264/X264Encoder.h"
#include "RecordCore/Model/AtomicFile.h"
#include "RecordCore/Model/RecordingError.h"
#include "Tests/Media/Clips.h"
#include "Tests/Support/TemporaryFolder.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <csignal>
#include <cstring>
#include <numbers>
#include <sstream>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace RecordCore;

namespace {

constexpr int width = 160;
constexpr int height = 96;

/// A grey picture with a bright bar whose place tells the number.
class Drawing {
public:
    Drawing() : bytes(static_cast<std::size_t>(width * height * 3 / 2), 128) {}

    PlanarView frame(int number) {
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x)
                bytes[static_cast<std::size_t>(y * width + x)] =
                    static_cast<std::uint8_t>((x + y + number * 3) % 96 < 16 ? 220 : 60 + (x ^ y) % 32);
        return view();
    }
    PlanarView flat(int luma) {
        std::fill(bytes.begin(), bytes.begin() + width * height, static_cast<std::uint8_t>(luma));
        return view();
    }
    PlanarView view() const {
        const std::uint8_t* data = bytes.data();
        return {{data, data + width * height, data + width * height * 5 / 4},
                {width, width / 2, width / 2},
                width,
                height};
    }

private:
    std::vector<std::uint8_t> bytes;
};

VideoSettings settings(bool realTime) {
    VideoSettings result;
    result.width = width;
    result.height = height;
    result.bitrate = 400'000;
    result.realTime = realTime;
    result.threads = 2;
    if (realTime) result.timeBase = {1, 1'000'000};
    return result;
}

/// Encoders and a writer joined, as a recorder or an exporter joins them.
class Movie {
public:
    Movie(const std::filesystem::path& file, MovieLayout layout, const VideoSettings& wanted,
          bool withSound) :
        writer(FFmpeg::createMovie(file, layout)),
        video(makeEncoder(wanted, [this](const Packet& packet) {
            ++packets;
            writer->write(videoTrack, packet);
        })) {
        videoTrack = writer->addTrack(video->description());
        if (withSound) {
            sound = FFmpeg::makeSoundEncoder(
                192'000, [this](const Packet& packet) { writer->write(soundTrack, packet); });
            soundTrack = writer->addTrack(sound->description());
        }
        writer->begin();
    }

    std::unique_ptr<MovieWriter> writer;
    std::unique_ptr<VideoEncoder> video;
    std::unique_ptr<SoundEncoder> sound;
    int videoTrack = 0;
    int soundTrack = 0;
    int packets = 0;

private:
    static std::unique_ptr<VideoEncoder> makeEncoder(const VideoSettings& wanted, PacketSink sink) {
        if (wanted.codec == Codec::h264) return X264::makeEncoder(wanted, std::move(sink));
        return FFmpeg::makeVideoEncoder(wanted, std::move(sink));
    }
};

std::string messageOf(const std::function<void()>& action) {
    try {
        action();
    } catch (const RecordingError& error) {
        return error.what();
    }
    return "(no error)";
}

/// The time at which a lasting loudness begins.
double onset(SoundReader& reader, double from) {
    std::vector<float> samples(static_cast<std::size_t>(soundRate) * 2);
    const auto first = std::llround(from * soundRate);
    reader.read(first, samples);
    for (std::size_t i = 0; i < samples.size(); i += 2)
        if (std::abs(samples[i]) > 0.1F)
            return static_cast<double>(first + static_cast<std::int64_t>(i / 2)) / soundRate;
    return -1;
}

double flash(VideoReader& reader) {
    while (const auto frame = reader.next())
        if (patch(frame->picture, 0.5, 0.5)[0] > 150) return frame->time;
    return -1;
}

/// Dark and silent, but for a flash and a beep that begin at the same instant and last.
void flashAndBeep(Movie& movie, double at, double length, TimeBase base) {
    Drawing drawing;
    const int frames = static_cast<int>(length * 30);
    std::vector<float> samples;
    for (int i = 0; i < frames; ++i) {
        const double time = i / 30.0;
        movie.video->encode(drawing.flat(time >= at - 1e-9 ? 200 : 40),
                            std::llround(time * base.den / base.num), {});
        samples.clear();
        for (std::int64_t s = std::int64_t{i} * soundRate / 30; s < std::int64_t{i + 1} * soundRate / 30;
             ++s) {
            const double t = static_cast<double>(s) / soundRate;
            const auto value =
                static_cast<float>(t < at ? 0.0 : 0.5 * std::cos(2 * std::numbers::pi * 1000 * (t - at)));
            samples.insert(samples.end(), {value, value});
        }
        movie.sound->encode(samples);
    }
    movie.video->finish(std::llround(length * base.den / base.num));
    movie.sound->finish();
}

TEST(Film, KeepsFlashAndBeepTogether) {
    const TemporaryFolder folder;
    for (const bool reordered : {false, true}) {
        const auto file = folder / (reordered ? "reordered.mp4" : "film.mp4");
        VideoSettings wanted = settings(false);
        wanted.freeStills = !reordered; // without it the encoder reorders frames
        Movie movie(file, MovieLayout::film, wanted, true);
        flashAndBeep(movie, 1.5, 3, wanted.timeBase);
        EXPECT_FALSE(std::filesystem::exists(file));
        movie.writer->finish();

        const auto video = FFmpeg::openVideo(file, 1);
        EXPECT_NEAR(video->info().duration, 3, 1e-3);
        EXPECT_NEAR(flash(*video), 1.5, 1e-6);
        auto sounds = FFmpeg::openSound(file);
        ASSERT_EQ(sounds.size(), 1U);
        EXPECT_NEAR(onset(*sounds[0], 1), 1.5, 0.002);
        EXPECT_NEAR(static_cast<double>(sounds[0]->end()) / soundRate, 3, 0.025);

        // As another player sees it: all that starts, starts at 0, and decoded sound begins where it should.
        EXPECT_EQ(ffprobe("-show_entries stream=start_time " + file.string()), "0.000000\n0.000000\n");
        const auto wave = folder / "sound.raw";
        ffmpeg("-i " + file.string() + " -f f32le -ac 1 " + wave.string());
        const std::string bytes = readFile(wave);
        std::size_t first = 0;
        for (float value = 0; std::abs(value) < 0.1F; ++first)
            std::memcpy(&value, bytes.data() + first * 4, 4);
        EXPECT_NEAR(static_cast<double>(first) / soundRate, 1.5, 0.002);
        // The index stands before the pictures.
        const std::string whole = readFile(file);
        EXPECT_LT(whole.find("moov"), whole.find("mdat"));
    }
}

TEST(Film, LeavesNothingUnlessItIsWhole) {
    const TemporaryFolder folder;
    const auto file = folder / "film.mp4";
    writeFileAtomically(file, "an old film");
    {
        Movie movie(file, MovieLayout::film, settings(false), true);
        flashAndBeep(movie, 0.1, 0.5, {1, 60});
    }
    EXPECT_EQ(readFile(file), "an old film");
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.path()), {}), 1);
    {
        Movie movie(file, MovieLayout::film, settings(false), true);
        flashAndBeep(movie, 0.1, 0.5, {1, 60});
        movie.writer->finish();
    }
    EXPECT_EQ(FFmpeg::sourceInfo(file).duration, 0.5);
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.path()), {}), 1);
}

TEST(Film, NamesTheFileThatCannotBeWritten) {
    const TemporaryFolder folder;
    std::filesystem::create_directory(folder / "folder.mp4");
    for (const auto& [name, cause] :
         {std::pair{"none/film.mp4", "cannot be written: No such file or directory"},
          std::pair{"folder.mp4", "cannot be written: Is a directory"}}) {
        const auto file = folder / name;
        for (const MovieLayout layout : {MovieLayout::film, MovieLayout::recording})
            EXPECT_EQ(messageOf([&] { FFmpeg::createMovie(file, layout); }), file.string() + ": " + cause);
    }
}

/// Runs `action` in a process of its own that may write files of at most `limit` bytes; what it returns.
int inChild(rlim_t limit, const std::function<int()>& action) {
    const pid_t child = ::fork();
    if (child == 0) {
        ::signal(SIGXFSZ, SIG_IGN); // writing then fails with EFBIG, as it fails with ENOSPC on a full disk
        const rlimit bound{limit, limit};
        ::setrlimit(RLIMIT_FSIZE, &bound);
        int result = 99;
        try {
            result = action();
        } catch (...) {
        }
        ::_exit(result);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

TEST(Film, FullDiskIsAClearError) {
    const TemporaryFolder folder;
    const auto file = folder / "film.mp4";
    // While packets come, and only when the index is written.
    for (const rlim_t limit : {20'000U, 60'000U}) {
        const int result = inChild(limit, [&] {
            const std::string message = messageOf([&] {
                Movie movie(file, MovieLayout::film, settings(false), true);
                flashAndBeep(movie, 0.1, 2.5, {1, 60});
                movie.writer->finish();
            });
            return message == file.string() + ": cannot be written: File too large" ? 0 : 1;
        });
        EXPECT_EQ(result, 0) << limit;
        EXPECT_TRUE(std::filesystem::is_empty(folder.path()));
    }
}

TEST(Recording, FullDiskKeepsWhatIsThere) {
    const TemporaryFolder folder;
    const auto file = folder / "recording.mp4";
    const int result = inChild(60'000, [&] {
        Movie movie(file, MovieLayout::recording, settings(true), true);
        const std::string message = messageOf([&] { flashAndBeep(movie, 0.1, 20, {1, 1'000'000}); });
        if (message != file.string() + ": cannot be written: File too large") return 1;
        movie.writer->finish();
        return 0;
    });
    ASSERT_EQ(result, 0);
    const auto video = FFmpeg::openVideo(file, 1);
    EXPECT_GT(video->info().duration, 0.9);
    EXPECT_GT(restOfTimes(*video).size(), 25U);
}

TEST(Recording, BecomesAPlainFileThatHoldsTheLastFrame) {
    const TemporaryFolder folder;
    const auto file = folder / "recording.mp4";
    Movie movie(file, MovieLayout::recording, settings(true), true);
    flashAndBeep(movie, 1.5, 3, {1, 1'000'000});
    // The header and all but the last second are on the disk.
    struct stat facts {};
    ASSERT_EQ(::stat(file.c_str(), &facts), 0);
    EXPECT_EQ(facts.st_mode & 0777U, 0600U);
    EXPECT_NEAR(FFmpeg::sourceInfo(file).duration, 2.4, 0.6);
    movie.writer->setEnd(movie.videoTrack, 7'250'000); // then the screen stood still until the stop
    movie.writer->finish();

    EXPECT_EQ(readFile(file).find("moof"), std::string::npos);
    EXPECT_LT(readFile(file).find("moov"), readFile(file).find("mdat"));
    ASSERT_EQ(::stat(file.c_str(), &facts), 0);
    EXPECT_EQ(facts.st_mode & 0777U, 0600U);
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.path()), {}), 1);
    const auto video = FFmpeg::openVideo(file, 1);
    EXPECT_NEAR(video->info().duration, 7.25, 1e-3);
    EXPECT_NEAR(flash(*video), 1.5, 1e-5);
    auto sounds = FFmpeg::openSound(file);
    ASSERT_EQ(sounds.size(), 1U);
    EXPECT_NEAR(onset(*sounds[0], 1), 1.5, 0.002);
    EXPECT_FALSE(FFmpeg::recoverMovie(file)) << "a whole file is left alone";
}

TEST(Recording, SurvivesAKill) {
    const TemporaryFolder folder;
    const auto file = folder / "recording.mp4";
    std::array<int, 2> pipe{};
    ASSERT_EQ(::pipe(pipe.data()), 0);
    const pid_t child = ::fork();
    if (child == 0) {
        // Records until it is killed and reports the time of every frame it has handed to the writer; the
        // sound starts late, as a microphone may.
        Movie movie(file, MovieLayout::recording, settings(true), true);
        Drawing drawing;
        const std::vector<float> silence(1600 * 2);
        for (int i = 0;; ++i) {
            const double time = i / 30.0;
            movie.video->encode(drawing.frame(i), std::llround(time * 1e6), {});
            if (i > 5) movie.sound->encode(silence);
            movie.writer->tick();
            if (::write(pipe[1], &time, sizeof time) != sizeof time) ::_exit(1);
            if (i == 200) ::pause();
        }
    }
    double last = 0;
    while (last < 200 / 30.0 - 1e-9)
        ASSERT_EQ(::read(pipe[0], &last, sizeof last), static_cast<ssize_t>(sizeof last));
    ::kill(child, SIGKILL);
    ::waitpid(child, nullptr, 0);
    ::close(pipe[0]);
    ::close(pipe[1]);
    // What a copy that was under way leaves behind goes, too.
    writeFileAtomically(folder / ".recording.mp4.0123abcd.part", "half");

    const double before = FFmpeg::sourceInfo(file).duration;
    EXPECT_GT(before, last - 1);
    EXPECT_TRUE(FFmpeg::recoverMovie(file));
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.path()), {}), 1);
    EXPECT_EQ(readFile(file).find("moof"), std::string::npos);
    const auto video = FFmpeg::openVideo(file, 1);
    const std::vector<double> times = restOfTimes(*video);
    EXPECT_GT(times.back(), last - 1);
    EXPECT_EQ(times.size(), static_cast<std::size_t>(std::llround(times.back() * 30)) + 1)
        << "no frame in between is lost";
    EXPECT_FALSE(FFmpeg::recoverMovie(file));

    // The end of the disk may also fall into the middle of a fragment.
    const std::string whole = readFile(file);
    EXPECT_THAT(messageOf([&] { FFmpeg::recoverMovie(folder / "none.mp4"); }),
                testing::HasSubstr("No such file"));
    writeFileAtomically(folder / "header.mp4", whole.substr(0, 20));
    EXPECT_THAT(messageOf([&] { FFmpeg::recoverMovie(folder / "header.mp4"); }),
                testing::HasSubstr("nothing can be recovered"));
}

TEST(Recording, RecoversFromACutAnywhere) {
    const TemporaryFolder folder;
    const auto file = folder / "recording.mp4";
    {
        Movie movie(file, MovieLayout::recording, settings(true), true);
        flashAndBeep(movie, 1.5, 4, {1, 1'000'000});
    } // ends without `finish`
    const std::string whole = readFile(file);
    double before = 0;
    for (const double part : {0.4, 0.55, 0.7, 0.836, 0.84, 0.85, 1.0}) {
        writeFileAtomically(
            file, whole.substr(0, static_cast<std::size_t>(static_cast<double>(whole.size()) * part)));
        ASSERT_TRUE(FFmpeg::recoverMovie(file)) << part;
        const auto video = FFmpeg::openVideo(file, 1);
        const auto times = restOfTimes(*video);
        EXPECT_GE(times.back(), before);
        EXPECT_GT(times.back(), 4 * part - 1.2) << part;
        before = times.back();
    }
    EXPECT_NEAR(before, 4 - 1 / 30.0, 1e-5);
}

// --- Repeated frames ------------------------------------------------------------------------------------

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
    int number = 0;
    const auto scale = wanted.timeBase.den / 60;
    for (std::size_t i = 0; i < repeats.size(); ++i) {
        const auto pts = static_cast<std::int64_t>(i) * scale;
        if (repeats[i]) {
            movie.video->repeat(pts);
            continue;
        }
        const PlanarView view = drawing.frame(++number);
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

// --- Encoders for recording -----------------------------------------------------------------------------

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
