#include "RecordCore/Media/FFmpeg/FFmpegMedia.h"
#include "RecordCore/Model/AtomicFile.h"
#include "RecordCore/Model/RecordingError.h"
#include "Tests/Media/Clips.h"
#include "Tests/Media/TestMovie.h"
#include "Tests/Support/TemporaryFolder.h"

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
using namespace TestMovie;

namespace {

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

} // namespace
