#include "RecordCore/Model/ActivitySample.h"
#include "RecordCore/Model/InputLog.h"
#include "RecordCore/Model/RecordingError.h"
#include "Tests/Support/TemporaryFolder.h"

#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <sstream>

using namespace RecordCore;
using Kind = InputLog::Event::Kind;

namespace {

std::string read(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    std::ostringstream text;
    text << stream.rdbuf();
    return text.str();
}

void write(const std::filesystem::path& file, const std::string& text) {
    std::ofstream(file, std::ios::binary) << text;
}

/// The message with which reading `text` fails; empty when it does not.
template <typename Load>
std::string failure(const Load& load, const std::string& text) {
    const TemporaryFolder folder;
    const auto file = folder / "side.json";
    write(file, text);
    try {
        load(file);
        return {};
    } catch (const RecordingError& error) {
        EXPECT_THAT(error.what(), testing::HasSubstr(file.string()));
        return std::string(error.what()).substr(file.string().size());
    }
}

TEST(InputLog, KeepsEverythingThroughAFile) {
    InputLog log;
    log.cursor = {{0, 0.1, 0.2}, {1.0 / 60, -1, -1}, {0.1 + 0.2, 1.0000000000000002, 5e-324}};
    log.events = {{0.5, Kind::click, 0.25, 0.75},
                  {1.5, Kind::rightClick, 0.0, 1.5},
                  {2.5, Kind::key, {}, {}},
                  {3.5, Kind::scroll, 0.5, 0.5}};
    const TemporaryFolder folder;
    const auto file = folder / "input.json";
    for (const std::optional<bool> flag :
         {std::optional<bool>(), std::optional<bool>(true), std::optional<bool>(false)}) {
        log.keysTracked = log.cursorInVideo = flag;
        log.cameraOffset = flag ? std::optional<double>(-0.125) : std::nullopt;
        log.save(file);
        EXPECT_EQ(InputLog::load(file), log);
    }
}

TEST(InputLog, WritesAbsentFieldsNotAtAll) {
    InputLog log;
    log.events = {{2, Kind::key, {}, {}}, {3, Kind::click, 0.5, 0.25}};
    const TemporaryFolder folder;
    log.save(folder / "input.json");
    const auto json = nlohmann::json::parse(read(folder / "input.json"));
    EXPECT_EQ(json, nlohmann::json::parse(R"({"cursor": [], "events": [{"t": 2.0, "kind": "key"},
        {"t": 3.0, "kind": "click", "x": 0.5, "y": 0.25}]})"));
    EXPECT_EQ(read(folder / "input.json").find('\n'), std::string::npos) << "compact";
}

TEST(InputLog, ReadsWhatIsOptionalAndRefusesWhatIsWrong) {
    const struct {
        const char* text;
        const char* message; ///< a part of it; empty when the text is right
    } cases[]{
        {R"({"cursor":[],"events":[]})", ""},
        {R"({"cursor":[],"events":[],"keysTracked":null,"cursorInVideo":null,"cameraOffset":null})", ""},
        {R"({"cursor":[{"t":0,"x":1,"y":2,"pressure":3}],"events":[{"t":1,"kind":"key","code":30}],"v":[{}]})",
         ""},
        {R"({"cursor":[],"events":[{"t":1,"kind":"scroll","x":null,"y":null}]})", ""},
        {R"({"events":[]})", "cursor"},
        {R"({"cursor":[]})", "events"},
        {R"({"cursor":null,"events":[]})", "cursor"},
        {R"({"cursor":[{"t":0,"x":1}],"events":[]})", "\"y\""},
        {R"({"cursor":[{"t":0,"x":"1","y":1}],"events":[]})", "\"x\""},
        {R"({"cursor":[{"t":0,"x":true,"y":1}],"events":[]})", "\"x\""},
        {R"({"cursor":[[0,1,2]],"events":[]})", "cursor"},
        {R"({"cursor":[],"events":[{"kind":"key"}]})", "\"t\""},
        {R"({"cursor":[],"events":[{"t":1}]})", "\"kind\""},
        {R"({"cursor":[],"events":[{"t":1,"kind":"doubleClick"}]})", "doubleClick"},
        {R"({"cursor":[],"events":[{"t":1,"kind":"Click"}]})", "Click"},
        {R"({"cursor":[],"events":[{"t":1,"kind":2}]})", "\"kind\""},
        {R"({"cursor":[],"events":[{"t":1,"kind":"click","x":"left"}]})", "\"x\""},
        {R"({"cursor":[],"events":[],"keysTracked":1})", "keysTracked"},
        {R"({"cursor":[{"t":1e999,"x":0,"y":0}],"events":[]})", ""},
        {R"([])", "object"},
        {"", "JSON"},
        {R"({"cursor":[],"events":[])", "JSON"},
        {R"({"cursor":[],"events":[]} trailing)", "JSON"},
    };
    for (const auto& [text, message] : cases) {
        if (std::string_view(text).find("1e999") != std::string_view::npos) {
            EXPECT_NE(failure(InputLog::load, text), "") << "a number beyond all doubles";
            continue;
        }
        const std::string found = failure(InputLog::load, text);
        if (*message == 0)
            EXPECT_EQ(found, "") << text;
        else
            EXPECT_THAT(found, testing::HasSubstr(message)) << text;
    }
    EXPECT_THROW(InputLog::load("/nonexistent/input.json"), RecordingError);
}

TEST(InputLog, SurvivesDeepNesting) {
    // A hostile file must not exhaust the stack.
    const std::string text = "{\"cursor\":" + std::string(2'000'000, '[');
    EXPECT_NE(failure(InputLog::load, text), "");
    EXPECT_NE(failure(InputLog::load, text + std::string(2'000'000, ']') + "}"), "");
}

TEST(InputLog, UserActive) {
    InputLog log;
    EXPECT_FALSE(log.userActive(-1e9, 1e9, 0));

    log.events = {{2, Kind::key, {}, {}}};
    EXPECT_TRUE(log.userActive(2, 3, 1)) << "an event at the start is inside";
    EXPECT_FALSE(log.userActive(1, 2, 1)) << "an event at the end is outside";

    const auto moves = [](std::vector<InputLog::CursorSample> samples, double from, double to,
                          double threshold) {
        InputLog moved;
        moved.cursor = std::move(samples);
        return moved.userActive(from, to, threshold);
    };
    // Numbers that binary fractions hold exactly, so that the strict comparison is what is tested.
    EXPECT_FALSE(moves({{0, 0.5, 0.5}, {1, 0.75, 0.5}, {2, 0.5, 0.5}}, 0, 3, 0.25))
        << "exactly the threshold";
    EXPECT_TRUE(moves({{0, 0.5, 0.5}, {1, 0.75, 0.5}, {2, 0.5, 0.5}}, 0, 3, 0.1875)) << "out and back";
    EXPECT_TRUE(moves({{0, 0.5, 0.5}, {1, 0.5, 0.25}}, 0, 3, 0.125)) << "the other axis, the other way";
    EXPECT_FALSE(moves({{0, 0.5, 0.5}, {1, 0.6875, 0.6875}}, 0, 3, 0.1875)) << "each axis for itself";
    EXPECT_TRUE(moves({{0, 0, 0}, {1, 0.125, 0}, {2, 0.25, 0}}, 0, 3, 0.125))
        << "the first sample stays the reference";
    EXPECT_FALSE(moves({{0, 0, 0}, {1, 0.5, 0.5}, {2, 0.5, 0.5}}, 1, 3, 0.125))
        << "a sample before the window is no reference";
    EXPECT_FALSE(moves({{0, 0, 0}, {1, 0.5, 0.5}}, 0, 1, 0.125)) << "half-open";
}

TEST(ActivityFile, IsABareListWithOptionalFocus) {
    const std::vector<ActivitySample> samples{{0, 0, {}}, {1.0 / 15, 0.125, NRect{0.1, 0.2, 0.3, 0.4}}};
    const TemporaryFolder folder;
    saveActivity(samples, folder / "activity.json");
    EXPECT_EQ(loadActivity(folder / "activity.json"), samples);
    const auto json = nlohmann::json::parse(read(folder / "activity.json"));
    ASSERT_TRUE(json.is_array());
    EXPECT_FALSE(json[0].contains("focus"));

    EXPECT_EQ(failure(loadActivity, R"([{"t":1,"energy":0,"focus":null,"more":1}])"), "");
    EXPECT_THAT(failure(loadActivity, R"([{"t":1,"energy":0,"focus":{"x":0,"y":0,"w":1}}])"),
                testing::HasSubstr("\"h\""));
    EXPECT_THAT(failure(loadActivity, R"([{"t":1}])"), testing::HasSubstr("energy"));
    EXPECT_NE(failure(loadActivity, R"({"samples":[]})"), "");
}

} // namespace
