#include "Tests/Architecture/Layering.h"

#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sstream>

namespace {

namespace fs = std::filesystem;

std::string contents(const fs::path& file) {
    std::ifstream stream(file, std::ios::binary);
    std::ostringstream text;
    text << stream.rdbuf();
    return text.str();
}

TEST(Layering, EveryFileIncludesOnlyWhatItsLayerMaySee) {
    const fs::path root(OMBREL_SOURCE_DIR);
    std::vector<std::string> all;
    std::size_t files = 0;
    for (const char* module : {"RecordCore", "OmbrelRecord"}) {
        for (const fs::directory_entry& entry : fs::recursive_directory_iterator(root / module)) {
            const fs::path ending = entry.path().extension();
            if (!entry.is_regular_file() || (ending != ".h" && ending != ".cpp")) continue;
            ++files;
            const std::string name = entry.path().lexically_relative(root).generic_string();
            for (std::string& breach : Layering::breaches(name, contents(entry.path())))
                all.push_back(std::move(breach));
        }
    }
    EXPECT_THAT(all, testing::IsEmpty());
    EXPECT_GT(files, 20u) << "the sources were not found under " << root;
}

struct Case {
    const char* file;
    const char* line;
    bool allowed;
};

TEST(Layering, TellsBreachesFromWhatIsAllowed) {
    const std::vector<Case> cases{
        // Inside the engine.
        {"RecordCore/Model/A.cpp", "#include \"RecordCore/Model/NRect.h\"", true},
        {"RecordCore/Model/A.cpp", "#include \"RecordCore/Planning/Plan.h\"", false},
        {"RecordCore/Planning/A.cpp", "#include \"RecordCore/Motion/Camera.h\"", false},
        {"RecordCore/Motion/A.cpp", "#include \"RecordCore/Planning/Plan.h\"", true},
        {"RecordCore/Rendering/A.cpp", "#include \"RecordCore/Motion/FrameState.h\"", true},
        {"RecordCore/Rendering/A.cpp", "#include \"RecordCore/Motion/Scene.h\"", false},
        {"RecordCore/Rendering/A.cpp", "#include \"RecordCore/Planning/Plan.h\"", false},
        {"RecordCore/Rendering/Kernels/A.cpp", "#include \"RecordCore/Rendering/Picture.h\"", true},
        {"RecordCore/Media/VideoReader.h", "#include \"RecordCore/Activity/LiveActivity.h\"", false},
        {"RecordCore/Export/A.cpp", "#include \"RecordCore/Rendering/Compositor.h\"", true},
        {"RecordCore/Export/A.cpp", "#include \"RecordCore/Capture/ScreenRecorder.h\"", false},
        {"RecordCore/Preview/A.cpp", "#include \"RecordCore/Export/Timeline.h\"", true},
        {"RecordCore/Preview/A.cpp", "#include \"RecordCore/Export/LoadedRecording.h\"", false},
        {"RecordCore/Capture/A.cpp", "#include \"RecordCore/Activity/LiveActivity.h\"", true},
        {"RecordCore/Capture/A.cpp", "#include \"RecordCore/Rendering/Picture.h\"", false},
        // Backends are seen by themselves and by the entry alone.
        {"RecordCore/Media/A.cpp", "#include \"RecordCore/Media/FFmpeg/Decoder.h\"", false},
        {"RecordCore/Media/FFmpeg/A.cpp", "#include \"RecordCore/Media/FFmpeg/Decoder.h\"", true},
        {"RecordCore/Media/FFmpeg/A.cpp", "#include \"RecordCore/Media/VideoReader.h\"", true},
        {"RecordCore/Media/FFmpeg/A.cpp", "#include \"RecordCore/Media/X264/X264Encoder.h\"", false},
        {"RecordCore/Export/A.cpp", "#include \"RecordCore/Media/FFmpeg/Decoder.h\"", false},
        {"RecordCore/Capture/A.cpp", "#include \"RecordCore/Capture/X11/X11Screen.h\"", false},
        {"RecordCore/Capture/X11/A.cpp", "#include \"RecordCore/Capture/ScreenSource.h\"", true},
        {"RecordCore/Capture/X11/A.cpp", "#include \"RecordCore/Capture/PipeWire/Cast.h\"", false},
        {"OmbrelRecord/Entry/A.cpp", "#include \"RecordCore/Media/X264/X264Encoder.h\"", true},
        {"OmbrelRecord/Entry/A.cpp", "#include \"OmbrelRecord/AppModel/Library.h\"", true},
        {"OmbrelRecord/AppModel/A.cpp", "#include \"RecordCore/Capture/X11/X11Screen.h\"", false},
        {"OmbrelRecord/AppModel/A.cpp", "#include \"RecordCore/Capture/ScreenRecorder.h\"", true},
        {"OmbrelRecord/AppModel/A.cpp", "#include \"OmbrelRecord/Entry/Entry.h\"", false},
        {"RecordCore/Model/A.cpp", "#include \"OmbrelRecord/AppModel/Library.h\"", false},
        {"OmbrelRecord/EditorModel/A.cpp", "#include \"OmbrelRecord/Transcriber/Transcriber.h\"", true},
        {"OmbrelRecord/EditorModel/A.cpp", "#include \"OmbrelRecord/Transcriber/Whisper/A.h\"", false},
        {"OmbrelRecord/Transcriber/A.cpp", "#include \"OmbrelRecord/AppModel/Library.h\"", false},
        {"OmbrelRecord/Transcriber/A.cpp", "#include <QObject>", false},
        // Libraries.
        {"RecordCore/Media/FFmpeg/A.h", "#include <libavcodec/avcodec.h>", true},
        {"RecordCore/Media/A.h", "#include <libavutil/frame.h>", false},
        {"RecordCore/Media/X264/A.cpp", "#include <x264.h>", true},
        {"RecordCore/Media/FFmpeg/A.cpp", "#include <x264.h>", false},
        {"RecordCore/Media/RubberBand/A.cpp", "#include <rubberband/RubberBandStretcher.h>", true},
        {"RecordCore/Export/A.cpp", "#include <rubberband/RubberBandStretcher.h>", false},
        {"RecordCore/Rendering/A.cpp", "#include <pango/pangocairo.h>", true},
        {"OmbrelRecord/HomeView/A.cpp", "#include <cairo/cairo.h>", false},
        {"OmbrelRecord/HomeView/A.cpp", "#include <cairo.h>", false},
        {"RecordCore/Rendering/Kernels/A.cpp", "#include <hwy/highway.h>", true},
        {"RecordCore/Rendering/A.cpp", "#include <hwy/highway.h>", false},
        {"RecordCore/Capture/X11/A.cpp", "#include <xcb/shm.h>", true},
        {"RecordCore/Capture/A.cpp", "#include <xcb/shm.h>", false},
        {"RecordCore/Capture/PipeWire/A.cpp", "#include <spa/param/video/format.h>", true},
        {"RecordCore/Capture/V4L2/A.cpp", "#include <spa/param/video/format.h>", false},
        {"RecordCore/Capture/A.cpp", "#include <pulse/pulseaudio.h>", false},
        {"RecordCore/Capture/A.cpp", "#include <linux/videodev2.h>", false},
        {"OmbrelRecord/AppModel/A.h", "#include <QObject>", true},
        {"OmbrelRecord/AppModel/A.h", "#include <QtCore/qobject.h>", true},
        {"RecordCore/Capture/A.h", "#include <QObject>", false},
        {"RecordCore/Planning/A.cpp", "#include <nlohmann/json.hpp>", true},
        {"RecordCore/Planning/A.h", "#include <nlohmann/json.hpp>", false},
        {"RecordCore/Model/Json.h", "#include <nlohmann/json.hpp>", true},
        {"RecordCore/Model/A.cpp", "#include <unistd.h>", true},
        {"RecordCore/Model/A.cpp", "#include <cstdint>", true},
        {"RecordCore/Model/A.cpp", "#include <boost/any.hpp>", false},
        {"RecordCore/Model/A.cpp", "#include <immintrin.h>", false},
        // Form.
        {"RecordCore/Model/A.cpp", "#include \"NRect.h\"", false},
        {"RecordCore/Model/A.cpp", "#include \"../Planning/Plan.h\"", false},
        {"RecordCore/Model/A.cpp", "#include PLATFORM_HEADER", false},
        {"RecordCore/Attic/A.cpp", "", false},
    };
    for (const Case& c : cases) {
        const std::string guard = std::string_view(c.file).ends_with(".h") ? "#pragma once\n" : "";
        const auto found = Layering::breaches(c.file, guard + c.line + "\n");
        EXPECT_EQ(found.empty(), c.allowed) << c.file << ": " << c.line << "\n"
                                            << testing::PrintToString(found);
    }
    EXPECT_FALSE(Layering::breaches("RecordCore/Model/A.h", "struct A {};\n").empty());
}

TEST(Layering, ReadsWhatTheCompilerReads) {
    const std::string text = "// #include <comment>\n"
                             "/* #include <block>\n"
                             "#include <block2>\n"
                             "*/ #include <after>\n"
                             "const char* a = \"/* \"; char b = '\"'; int c = 1'000;\n"
                             "#if 0\n"
                             "  #  include \t<disabled> // why\n"
                             "#endif\n"
                             "const char* d = R\"x(\n#include <raw>\n)x\";\n"
                             "#include \"RecordCore/Model/NRect.h\"\r\n"
                             "#include MACRO\n"
                             "#include <last>";
    std::vector<std::string> found;
    for (const Layering::Include& include : Layering::includes(text))
        found.push_back(std::to_string(include.line) + " " + std::string(include.path));
    EXPECT_THAT(found, testing::ElementsAre("4 after", "7 disabled", "12 RecordCore/Model/NRect.h",
                                            "13 MACRO", "14 last"));
}

} // namespace
