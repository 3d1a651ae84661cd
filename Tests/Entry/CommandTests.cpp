#include "Tests/Support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

// The verbs, from the built program: what they print, leave behind and return.

namespace {

namespace fs = std::filesystem;
using nlohmann::json;

struct Outcome {
    int status = -1;
    std::string out;
    std::string err;
};

std::string contents(const fs::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

void write(const fs::path& file, const std::string& text) {
    std::ofstream(file, std::ios::binary) << text;
}

std::string quoted(const fs::path& path) {
    return "'" + path.string() + "'";
}

/// Runs a shell command; its exit status and what it printed.
Outcome shell(const std::string& command) {
    const TemporaryFolder folder;
    const int status = std::system(
        ("{ " + command + "; } >" + quoted(folder / "out") + " 2>" + quoted(folder / "err")).c_str());
    return {WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status), contents(folder / "out"),
            contents(folder / "err")};
}

/// Memory is limited, so that absurd input cannot take the machine with it.
Outcome program(const std::string& arguments) {
    return shell("ulimit -v 6000000; timeout 100 '" OMBREL_PROGRAM "' " + arguments);
}

std::vector<fs::path> files(const fs::path& folder) {
    std::vector<fs::path> found(fs::directory_iterator(folder), fs::directory_iterator{});
    return found;
}

class Commands : public testing::Test {
protected:
    /// A recording of two seconds: a picture that changes once a second, a sound, a pointer and a click.
    void SetUp() override {
        recording = folder / "recording";
        fs::create_directory(recording);
        ASSERT_EQ(
            shell("ffmpeg -v error -f lavfi -i testsrc=s=320x180:r=30:d=2 -f lavfi -i sine=d=2 -c:v libx264 "
                  "-pix_fmt yuv420p -movflags +faststart " +
                  quoted(recording / "recording.mp4"))
                .status,
            0);
        write(
            recording / "input.json",
            R"({"cursor":[{"t":0,"x":0.2,"y":0.2},{"t":2,"x":0.8,"y":0.8}],)"
            R"("events":[{"t":1,"kind":"click","x":0.5,"y":0.5}],"keysTracked":true,"cursorInVideo":false})");
    }

    fs::path with(const std::string& name, const std::string& text) {
        write(recording / name, text);
        return recording;
    }

    TemporaryFolder folder;
    fs::path recording;
    fs::path film = folder / "film.mp4";
};

} // namespace

TEST_F(Commands, exportMakesAFilmInEveryFormat) {
    const struct {
        const char* format;
        int width, height;
    } cases[]{{"16:9", 1920, 1080}, {"4:5", 1080, 1350}, {"9:16", 1080, 1920}, {"1:1", 1080, 1080}};
    for (const auto& [format, width, height] : cases) {
        SCOPED_TRACE(format);
        const Outcome outcome =
            program("export " + quoted(recording) + " --json --format " + format + " -o " + quoted(film));
        ASSERT_EQ(outcome.status, 0) << outcome.err;
        EXPECT_EQ(json::parse(outcome.out).at("frames"), 120);

        const json probe =
            json::parse(shell("ffprobe -v error -count_frames -show_streams -of json " + quoted(film)).out);
        const json& video = probe.at("streams").at(0);
        EXPECT_EQ(video.at("width"), width);
        EXPECT_EQ(video.at("height"), height);
        EXPECT_EQ(video.at("codec_name"), "h264");
        EXPECT_EQ(video.at("profile"), "High");
        EXPECT_EQ(video.at("avg_frame_rate"), "60/1");
        EXPECT_EQ(video.at("nb_read_frames"), "120");
        EXPECT_EQ(video.at("color_range"), "tv");
        for (const char* tag : {"color_space", "color_transfer", "color_primaries"})
            EXPECT_EQ(video.at(tag), "bt709");
        const json& sound = probe.at("streams").at(1);
        EXPECT_EQ(sound.at("codec_name"), "aac");
        EXPECT_EQ(sound.at("sample_rate"), "48000");
        EXPECT_EQ(sound.at("channels"), 2);
        EXPECT_NEAR(std::stod(sound.at("duration").get<std::string>()), 2, 1024.0 / 48000);
    }
}

TEST_F(Commands, badInputIsNamedAndLeavesNothingBehind) {
    const std::string whole = contents(recording / "recording.mp4");
    const fs::path silent = folder / "silent.mp4";
    ASSERT_EQ(shell("ffmpeg -v error -f lavfi -i sine=d=1 " + quoted(silent)).status, 0);
    const struct {
        const char* what;
        std::string bytes;
    } cases[]{
        {"an empty file", ""},
        {"cut off within the index", whole.substr(0, 700)},
        {"cut off within the pictures", whole.substr(0, whole.size() / 2)},
        {"cut off at the very end", whole.substr(0, whole.size() - 1)},
        {"text", "This is no video.\n"},
        {"sound alone", contents(silent)},
    };
    for (const auto& [what, bytes] : cases) {
        SCOPED_TRACE(what);
        write(recording / "recording.mp4", bytes);
        for (const char* verb : {"export", "still --at 1", "plan", "analyze"}) {
            const bool writes = std::string(verb) != "plan" && std::string(verb) != "analyze";
            const Outcome outcome =
                program(std::string(verb) + " " + quoted(recording) + (writes ? " -o " + quoted(film) : ""));
            EXPECT_EQ(outcome.status, 1) << verb;
            EXPECT_NE(outcome.err.find((recording / "recording.mp4").string()), std::string::npos)
                << outcome.err;
            EXPECT_EQ(std::count(outcome.err.begin(), outcome.err.end(), '\n'), 1) << outcome.err;
            EXPECT_EQ(outcome.out, "");
        }
        EXPECT_FALSE(fs::exists(recording / "activity.json"));
        EXPECT_EQ(files(folder.path()).size(), 2U) << "the recording and the sound of this test";
    }
    fs::remove(recording / "recording.mp4");
    EXPECT_EQ(program("export " + quoted(recording) + " -o " + quoted(film)).status, 1);
    EXPECT_EQ(program("export " + quoted(folder / "nowhere") + " -o " + quoted(film)).status, 1);
}

TEST_F(Commands, anOldFilmSurvivesAFailedExport) {
    write(film, "the old film");
    // A limit on the size of files stands in for a full disk; it makes writes fail in the same way.
    const Outcome outcome = shell("trap '' XFSZ; ulimit -f 60; '" OMBREL_PROGRAM "' export " +
                                  quoted(recording) + " --bitrate 40000000 -o " + quoted(film));
    EXPECT_EQ(outcome.status, 1);
    EXPECT_NE(outcome.err.find(film.string()), std::string::npos) << outcome.err;
    EXPECT_EQ(contents(film), "the old film");
    EXPECT_EQ(files(folder.path()).size(), 2U);
    EXPECT_EQ(program("export " + quoted(recording) + " -o " + quoted(folder / "no/such/folder.mp4")).status,
              1);
}

TEST_F(Commands, whatBelongsToTheRecordingIsNeverWrittenOver) {
    with("project.json", "{}");
    fs::create_hard_link(recording / "recording.mp4", folder / "second name.mp4");
    fs::create_symlink(recording / "recording.mp4", folder / "link.mp4");
    ASSERT_EQ(mkfifo((folder / "pipe").c_str(), 0600), 0);
    const std::string movie = contents(recording / "recording.mp4");
    for (const char* verb : {"still --at 0", "export"})
        for (const fs::path& output :
             {recording / "recording.mp4", recording / "../recording/input.json", recording / "camera.mp4",
              recording / "project.json", folder / "second name.mp4", folder / "link.mp4", folder / "pipe"}) {
            const Outcome outcome = program(verb + (" " + quoted(recording)) + " -o " + quoted(output));
            EXPECT_EQ(outcome.status, 1) << verb << output;
            EXPECT_NE(outcome.err.find(output.string()), std::string::npos) << outcome.err;
        }
    EXPECT_EQ(contents(recording / "recording.mp4"), movie);
    EXPECT_FALSE(fs::exists(recording / "camera.mp4"));
    EXPECT_TRUE(fs::is_fifo(folder / "pipe"));

    // A link elsewhere is written through.
    write(film, "old");
    fs::create_symlink("film.mp4", folder / "latest.mp4");
    EXPECT_EQ(program("still " + quoted(recording) + " --at 0 -o " + quoted(folder / "latest.mp4")).status,
              0);
    EXPECT_TRUE(fs::is_symlink(folder / "latest.mp4"));
    EXPECT_NE(contents(film), "old");
}

TEST_F(Commands, outputThatDoesNotArriveIsAnError) {
    for (const std::string& arguments : {"plan " + quoted(recording), "plan --frames 60 " + quoted(recording),
                                         "export --json " + quoted(recording) + " -o " + quoted(film)}) {
        const Outcome outcome = program(arguments + " >/dev/full");
        EXPECT_EQ(outcome.status, 1) << arguments;
        EXPECT_NE(outcome.err.find("standard output"), std::string::npos) << outcome.err;
    }
}

TEST_F(Commands, aMessageThatNobodyCanReadEndsNothing) {
    EXPECT_EQ(program("plan " + quoted(folder / "none") + " 2>/dev/full").status, 1);
    with("project.json", "[]"); // worth a note
    EXPECT_EQ(program("export " + quoted(recording) + " -o " + quoted(film) + " 2>/dev/full").status, 0);
    EXPECT_TRUE(fs::exists(film));
}

TEST_F(Commands, anExportWhoseTerminalIsClosedLeavesNothingBehind) {
    // Twice, as the shell and the terminal each do.
    const std::string hangUp =
        " & p=$!; until ls -A " + quoted(folder.path()) +
        " | grep -q part || ! kill -0 $p; do sleep 0.01; done; kill -HUP $p; kill -HUP $p; wait $p";
    EXPECT_EQ(
        program("export " + quoted(recording) + " --scale 4 --fps 240 -o " + quoted(film) + hangUp).status,
        1);
    EXPECT_EQ(files(folder.path()).size(), 1U);
}

TEST_F(Commands, brokenSideFilesAreDoneWithout) {
    with("project.json", "{\"format\": 7}");
    with("activity.json", "[{]");
    with("input.json", R"({"cursor":[],"events":[{"t":1,"kind":"dance"}]})");
    with("camera.mp4", "no movie");
    const Outcome outcome = program("export " + quoted(recording) + " -o " + quoted(film));
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    for (const char* name : {"project.json", "activity.json", "input.json", "camera.mp4"})
        EXPECT_NE(outcome.err.find((recording / name).string()), std::string::npos) << outcome.err;
    EXPECT_EQ(std::count(outcome.err.begin(), outcome.err.end(), '\n'), 4) << outcome.err;
    EXPECT_TRUE(fs::exists(film));
}

TEST_F(Commands, absurdNumbersMakeAFilmOrAnError) {
    const std::vector<std::string> fields{
        R"("padding":X)",
        R"("radius":X)",
        R"("shadow":X)",
        R"("backgroundBlur":X)",
        R"("cursorSize":X)",
        R"("cameraSize":X)",
        R"("maxZoom":X)",
        R"("maxSpeed":X)",
        R"("trimStart":X)",
        R"("trimEnd":X)",
        R"("splits":[X,X])",
        R"("cuts":[{"start":X,"end":1}])",
        R"("crop":{"x":X,"y":X,"w":X,"h":X})",
        R"("crop":{"x":0,"y":0,"w":X,"h":0.5})",
        R"("zoomBlocks":[{"start":0,"end":X,"x":X,"y":X,"zoom":X}])",
        R"("speedBlocks":[{"start":0,"end":2,"speed":X,"reason":"manual"}])",
        R"("showCaptions":true,"captionSize":X,"captionBottom":X,"captions":[{"text":"word","start":X,"end":X}])",
        R"("clickBounce":X)",
    };
    for (const std::string& field : fields) {
        for (const char* number : {"1e300", "-5", "0"}) {
            std::string text = "{" + field + "}";
            for (std::size_t at = 0; (at = text.find('X', at)) != std::string::npos;)
                text.replace(at, 1, number);
            const Outcome outcome =
                program("still " + quoted(with("project.json", text)) + " --at 0.5 -o " + quoted(film));
            EXPECT_TRUE(outcome.status == 0 || outcome.status == 1)
                << text << " " << outcome.status << outcome.err;
            EXPECT_EQ(outcome.status == 0, outcome.err.empty()) << text << outcome.err;
        }
    }
    fs::remove(recording / "project.json");
    with("input.json",
         R"({"cursor":[{"t":-1e300,"x":1e300,"y":0},{"t":1,"x":-1e300,"y":1e300},{"t":1e300,"x":0,"y":0}],)"
         R"("events":[{"t":0.5,"kind":"click","x":1e300,"y":-1e300}],"cursorInVideo":false})");
    EXPECT_EQ(program("export " + quoted(recording) + " -o " + quoted(film)).status, 0);
}

TEST_F(Commands, planTellsEveryFrame) {
    const Outcome outcome = program("plan " + quoted(recording) + " --frames 30");
    ASSERT_EQ(outcome.status, 0) << outcome.err;
    const json plan = json::parse(outcome.out);
    EXPECT_EQ(plan.at("frames").size(), 60U);
    EXPECT_EQ(plan.at("frames").at(31).at("ripples").size(), 1U);
    EXPECT_FALSE(plan.at("frames").at(31).contains("pill"));
    EXPECT_FALSE(plan.at("plan").contains("crop"));
    EXPECT_EQ(plan.at("style").at("format"), "16:9");
}

TEST_F(Commands, aStillIsTheFilmsFrame) {
    ASSERT_EQ(program("export " + quoted(recording) + " --bitrate 60000000 -o " + quoted(film)).status, 0);
    for (const int frame : {0, 45, 61, 119}) {
        const fs::path still = folder / "still.png";
        // Any time within the frame.
        ASSERT_EQ(program("still " + quoted(recording) + " --at " + std::to_string((frame + 0.4) / 60) +
                          " -o " + quoted(still))
                      .status,
                  0);
        const Outcome compared = shell("ffmpeg -v error -i " + quoted(film) + " -i " + quoted(still) +
                                       " -filter_complex \"[0]select=eq(n\\," + std::to_string(frame) +
                                       "),scale=in_color_matrix=bt709,format=gbrp[a];[1]format=gbrp[b];[a][b]"
                                       "psnr=f=-\" -frames:v 1 -f null -");
        const std::size_t at = compared.out.find("psnr_avg:");
        ASSERT_NE(at, std::string::npos) << compared.out << compared.err;
        EXPECT_GT(std::strtod(compared.out.c_str() + at + 9, nullptr), 36) << "frame " << frame;
    }
}

TEST_F(Commands, withoutADesktopTheWindowsSayWhatIsMissing) {
    for (const char* display : {"", "DISPLAY=:4711 ", "WAYLAND_DISPLAY=none "}) {
        const Outcome outcome = shell("env -u DISPLAY -u WAYLAND_DISPLAY -u QT_QPA_PLATFORM " +
                                      std::string(display) + " timeout 60 '" OMBREL_PROGRAM "'");
        EXPECT_EQ(outcome.status, 1) << display;
        EXPECT_NE(outcome.err.find("needs a desktop"), std::string::npos) << outcome.err;
    }
}

TEST_F(Commands, aModuleThatIsNotOursIsToldByName) {
    const fs::path own = folder / "modules";
    const fs::path module = own / "ombrel-media.so";
    // A search path of the environment goes before the program's own.
    const auto plan = [&] {
        return shell("LD_LIBRARY_PATH=" + quoted(own) + " '" OMBREL_PROGRAM "' plan " + quoted(recording));
    };
    fs::create_directory(own);
    EXPECT_EQ(plan().status, 0);
    write(module, "no library");
    const Outcome damaged = plan();
    EXPECT_EQ(damaged.status, 1);
    EXPECT_NE(damaged.err.find("ombrel-media.so"), std::string::npos) << damaged.err;
    fs::copy_file(OMBREL_MODULES "/ombrel-sound.so", module, fs::copy_options::overwrite_existing);
    const Outcome another = plan();
    EXPECT_EQ(another.status, 1);
    EXPECT_NE(another.err.find("not one of its modules"), std::string::npos) << another.err;
}

TEST_F(Commands, whatAVerbDoesNotNeedIsNotLoaded) {
    const auto modules = [](const std::string& arguments) {
        return shell("LD_DEBUG=files '" OMBREL_PROGRAM "' " + arguments +
                     " 2>&1 >/dev/null | grep -o 'calling init: .*' | grep -o "
                     "'ombrel-[a-z]*\\.so\\|libavformat' | "
                     "sort -u | tr '\\n' ' '")
            .out;
    };
    EXPECT_EQ(modules("--help"), "");
    EXPECT_EQ(modules("plan " + quoted(recording)), "libavformat ombrel-kernels.so ombrel-media.so ");
}

TEST_F(Commands, wrongUsageIsTold) {
    for (const char* arguments : {"export", "still x", "plan", "export x -o y --format 3:2",
                                  "export x -o y --fps 0", "plan x --frames many", "plan x --frames nan",
                                  "still x -o y --at nan", "export x -o y --scale nan"}) {
        const Outcome outcome = program(arguments);
        EXPECT_EQ(outcome.status, 2) << arguments;
        EXPECT_NE(outcome.err, "") << arguments;
    }
    for (const char* arguments : {"--help", "export --help", "--version"}) {
        EXPECT_EQ(program(arguments).status, 0) << arguments;
        EXPECT_EQ(program(arguments).err, "") << arguments;
    }
}
