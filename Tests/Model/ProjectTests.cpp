#include "RecordCore/Model/Project.h"

#include "RecordCore/Model/RecordingError.h"
#include "Tests/Support/Printing.h"
#include "Tests/Support/TemporaryFolder.h"

#include <cmath>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>
#include <nlohmann/json.hpp>
#include <set>
#include <sstream>

using namespace RecordCore;
using Reason = SpeedSegment::Reason;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

std::optional<Project> loaded(const std::string& text, std::string* problem = nullptr) {
    const TemporaryFolder folder;
    std::ofstream(folder / "project.json", std::ios::binary) << text;
    return Project::load(folder / "project.json", problem);
}

std::string saved(const Project& project) {
    const TemporaryFolder folder;
    project.save(folder / "project.json");
    std::ifstream stream(folder / "project.json", std::ios::binary);
    std::ostringstream text;
    text << stream.rdbuf();
    return text.str();
}

/// What the file of an untouched project holds, written out by hand.
const char* const untouched = R"({
    "format": "16:9", "wallpaperPreset": "orbit", "backdrop": "night", "backgroundBlur": 0.08,
    "padding": 0.011, "radius": 0.62, "shadow": 0.0, "cursorSize": 1.6, "cursorSmooth": true,
    "clickRipples": true, "hideIdleCursor": true, "cursorStyle": "arrow", "clickEffect": "ripple",
    "clickBounce": 0.6, "cameraShow": true, "cameraCircle": true, "cameraSize": 0.24, "cameraCorner": "br",
    "cameraMirror": true, "cameraShape": "circle", "cameraBorder": false, "cameraMakeRoom": true,
    "showTitle": false, "title": "", "subtitle": "", "showEnd": false, "endTitle": "Made with Dallowby",
    "endSubtitle": "", "showClock": false, "skipWaiting": true, "followAction": true, "maxZoom": 1.7,
    "maxSpeed": 40.0, "motion": "focused", "showCaptions": false, "captionStyle": "highlight",
    "captionSize": 0.045, "captionBottom": 0.08, "trimStart": 0.0, "cuts": [], "splits": []})";

Project everythingSet() {
    Project p;
    p.format = "4:5";
    p.wallpaperPreset = "";
    p.wallpaper = "hills é.png";
    p.solidColor = "#102030";
    p.title = "a \"quoted\"\nline";
    p.captions = {{"word", 0.1, 0.1 + 0.2}};
    p.crop = NRect{0.1, 0.2, 0.3, 0.4};
    p.trimStart = 1.0 / 3;
    p.trimEnd = 9;
    p.cuts = {{3, 4}, {6, 5}};
    p.splits = {2, 1};
    p.speedBlocks = {SpeedBlock::make(1, 2, 4, Reason::agentWorking)};
    p.zoomBlocks = std::vector<ZoomBlock>{};
    return p;
}

/// Equality but for the ids, which are made afresh.
void forgetIds(Project& p) {
    if (p.speedBlocks)
        for (SpeedBlock& block : *p.speedBlocks)
            block.id = {};
    if (p.zoomBlocks)
        for (ZoomBlock& block : *p.zoomBlocks)
            block.id = {};
}

TEST(ProjectFile, HoldsEveryFieldSortedAndPretty) {
    const std::string text = saved(Project());
    EXPECT_EQ(nlohmann::json::parse(text), nlohmann::json::parse(untouched));

    const auto ordered = nlohmann::ordered_json::parse(text);
    std::vector<std::string> keys;
    for (const auto& [key, value] : ordered.items())
        keys.push_back(key);
    EXPECT_TRUE(std::is_sorted(keys.begin(), keys.end()));
    EXPECT_GT(std::count(text.begin(), text.end(), '\n'), 30);
}

TEST(ProjectFile, ComesBackAsItWas) {
    for (Project project : {Project(), everythingSet()}) {
        auto back = loaded(saved(project));
        ASSERT_TRUE(back);
        forgetIds(project);
        forgetIds(*back);
        EXPECT_EQ(*back, project);
    }
    const auto json = nlohmann::json::parse(saved(everythingSet()));
    EXPECT_FALSE(json["speedBlocks"][0].contains("id"));
    EXPECT_EQ(json["wallpaperPreset"], "") << "left out, it would come back as the default";
    EXPECT_TRUE(json.contains("zoomBlocks")) << "no blocks is another thing than the automatic ones";
}

TEST(ProjectFile, DefaultsFillWhatIsMissing) {
    Project expected;
    expected.format = "9:16";
    EXPECT_EQ(loaded(R"({"format": "9:16"})"), expected);
    EXPECT_EQ(loaded(R"({"format": "9:16", "from the future": {"a": [1]}})"), expected);
    EXPECT_EQ(loaded("{}"), Project());

    Project bare;
    bare.wallpaperPreset.reset();
    EXPECT_EQ(loaded(R"({"wallpaperPreset": null, "crop": null, "trimEnd": null, "captions": null})"), bare);
}

TEST(ProjectFile, OlderSwitchesAreBroughtForward) {
    const struct {
        const char* text;
        const char* shape;
        const char* effect;
    } cases[]{
        {R"({"cameraCircle": false})", "rounded", "ripple"},
        {R"({"cameraCircle": true})", "circle", "ripple"},
        {R"({"cameraCircle": false, "cameraShape": "circle"})", "circle", "ripple"},
        {R"({"clickRipples": false})", "circle", "none"},
        {R"({"clickRipples": true})", "circle", "ripple"},
        {R"({"clickRipples": false, "clickEffect": "ring"})", "circle", "ring"},
        {R"({"clickRipples": false, "cameraCircle": false})", "rounded", "none"},
    };
    for (const auto& [text, shape, effect] : cases) {
        const auto project = loaded(text);
        ASSERT_TRUE(project) << text;
        EXPECT_EQ(project->cameraShape, shape) << text;
        EXPECT_EQ(project->clickEffect, effect) << text;
    }
}

TEST(ProjectFile, WhatIsNoProjectIsRefusedWithTheCause) {
    for (const char* text : {
             "[]",
             "",
             "{",
             "\"text\"",
             R"({"padding": "wide"})",
             R"({"padding": null})",
             R"({"cuts": null})",
             R"({"cursorSmooth": 1})",
             R"({"cuts": [{"start": 1}]})",
             R"({"cuts": [[1, 2]]})",
             R"({"splits": ["1"]})",
             R"({"crop": {"x": 0, "y": 0, "w": 1}})",
             R"({"speedBlocks": [{"start": 0, "end": 1, "speed": 2, "reason": "bored"}]})",
             R"({"speedBlocks": [{"start": 0, "end": 1, "speed": 2}]})",
             R"({"zoomBlocks": [{"start": 0, "end": 1, "x": 0, "y": 0}]})",
             R"({"captions": [{"text": 5, "start": 0, "end": 1}]})",
             R"({"trimStart": 1e999})",
             R"({"clickRipples": "no"})",
         }) {
        std::string problem;
        EXPECT_FALSE(loaded(text, &problem)) << text;
        EXPECT_THAT(problem, testing::HasSubstr("project.json")) << text;
    }
    EXPECT_FALSE(Project::load("/nonexistent/project.json"));
}

TEST(ProjectFile, NeverHoldsWhatCannotBeReadBack) {
    Project project;
    const TemporaryFolder folder;
    project.save(folder / "project.json");
    project.padding = std::numeric_limits<double>::quiet_NaN();
    EXPECT_THROW(project.save(folder / "project.json"), RecordingError);
    project.padding = 0;
    project.cuts = {{0, std::numeric_limits<double>::infinity()}};
    EXPECT_THROW(project.save(folder / "project.json"), RecordingError);
    EXPECT_EQ(Project::load(folder / "project.json"), Project()) << "the old file stays";

    project = Project();
    project.title = "broken \xff text";
    EXPECT_TRUE(loaded(saved(project)));
}

TEST(ProjectFile, EveryDecodedBlockHasAnIdOfItsOwn) {
    const char* text = R"({"speedBlocks": [{"start":0,"end":1,"speed":2,"reason":"manual"},
        {"start":0,"end":1,"speed":2,"reason":"manual"}],
        "zoomBlocks": [{"start":0,"end":1,"x":0.5,"y":0.5,"zoom":2}, {"start":0,"end":1,"x":0.5,"y":0.5,"zoom":2}]})";
    const auto a = loaded(text), b = loaded(text);
    ASSERT_TRUE(a && b);
    std::set<std::string> ids;
    for (const auto* p : {&*a, &*b}) {
        for (const SpeedBlock& block : *p->speedBlocks)
            ids.insert(block.id.text());
        for (const ZoomBlock& block : *p->zoomBlocks)
            ids.insert(block.id.text());
    }
    EXPECT_EQ(ids.size(), 8u);
    EXPECT_NE(*a, *b);
    EXPECT_EQ(*a, Project(*a)) << "a copy keeps the ids";
}

struct EditCase {
    const char* name;
    double duration;
    double trimStart;
    std::optional<double> trimEnd;
    std::vector<TimeRange> cuts;
    std::vector<TimeRange> merged, kept, removed;
};

TEST(Project, CutsAndTrims) {
    const std::vector<EditCase> cases{
        {"untouched", 10, 0, {}, {}, {}, {{0, 10}}, {}},
        {"overlap", 10, 1, 9, {{3, 4}, {3.5, 5}}, {{3, 5}}, {{1, 3}, {5, 9}}, {{0, 1}, {3, 5}, {9, 10}}},
        {"touching cuts join", 10, 0, {}, {{4, 5}, {3, 4}}, {{3, 5}}, {{0, 3}, {5, 10}}, {{3, 5}}},
        {"a cut inside another", 10, 0, {}, {{2, 8}, {3, 4}}, {{2, 8}}, {{0, 2}, {8, 10}}, {{2, 8}}},
        {"too short a cut", 10, 0, {}, {{2, 2.0000005}}, {}, {{0, 10}}, {}},
        {"a reversed cut", 10, 0, {}, {{6, 5}}, {}, {{0, 10}}, {}},
        {"a sliver between cuts",
         10,
         0,
         {},
         {{2, 3}, {3.005, 4}},
         {{2, 3}, {3.005, 4}},
         {{0, 2}, {4, 10}},
         {{2, 3}, {3.005, 4}}},
        {"cut over the start trim", 10, 2, {}, {{1, 3}}, {{1, 3}}, {{3, 10}}, {{0, 3}}},
        {"cut over the end trim", 10, 0, 8, {{7, 9}}, {{7, 9}}, {{0, 7}}, {{7, 10}}},
        {"cut past the end", 10, 0, {}, {{9, 20}}, {{9, 20}}, {{0, 9}}, {{9, 20}}},
        {"cut beyond the end", 10, 0, {}, {{12, 20}}, {{12, 20}}, {{0, 10}}, {{12, 20}}},
        {"cut before the start", 10, 0, {}, {{-5, 1}}, {{-5, 1}}, {{1, 10}}, {{-5, 1}}},
        {"everything cut", 10, 0, {}, {{0, 10}}, {{0, 10}}, {}, {{0, 10}}},
        {"trims crossed", 10, 6, 4, {}, {}, {}, {{0, 10}}},
        {"trims meet", 10, 5, 5, {}, {}, {}, {{0, 10}}},
        {"trim end past the end", 10, 0, 20, {}, {}, {{0, 10}}, {}},
        {"negative trim", 10, -3, {}, {}, {}, {{0, 10}}, {}},
        {"no duration", 0, 0, {}, {}, {}, {}, {}},
    };
    for (const EditCase& c : cases) {
        Project p;
        p.trimStart = c.trimStart;
        p.trimEnd = c.trimEnd;
        p.cuts = c.cuts;
        EXPECT_EQ(p.mergedCuts(), c.merged) << c.name;
        EXPECT_EQ(p.kept(c.duration), c.kept) << c.name;
        EXPECT_EQ(p.removed(c.duration), c.removed) << c.name;
    }
}

TEST(Project, SplitsDivideWhatIsKept) {
    const struct {
        std::vector<double> splits;
        std::vector<TimeRange> pieces;
    } cases[]{
        {{}, {{0, 3}, {6, 10}}},
        {{4, 5}, {{0, 3}, {6, 10}}},               // inside the cut
        {{6.015625, 9.984375}, {{0, 3}, {6, 10}}}, // within 0.02 s of an end
        {{6.03125, 9.96875}, {{0, 3}, {6, 6.03125}, {6.03125, 9.96875}, {9.96875, 10}}},
        {{8, 2, 7}, {{0, 2}, {2, 3}, {6, 7}, {7, 8}, {8, 10}}},              // in any order
        {{7, 7.0078125}, {{0, 3}, {6, 7}, {7, 7.0078125}, {7.0078125, 10}}}, // close to each other
    };
    for (const auto& [splits, pieces] : cases) {
        Project p;
        p.cuts = {{3, 6}};
        p.splits = splits;
        EXPECT_EQ(p.pieces(10), pieces) << testing::PrintToString(splits);
    }
    Project p;
    p.trimStart = 5;
    p.trimEnd = 5;
    p.splits = {5};
    EXPECT_THAT(p.pieces(10), IsEmpty());
}

TEST(Project, CropChangesFactsActivityAndInputTogether) {
    const SourceInfo info{1920, 1080, 12.5, 60, true};
    const std::vector<ActivitySample> samples{
        {0, 0.5, {}},
        {1, 0.5, NRect{0.125, 0.25, 0.875, 0.75}}, // covers the crop and more
        {2, 0.5, NRect{0.5, 0.625, 0.125, 0.0625}},
        {3, 0.5, NRect{0, 0, 0.25, 0.5}},        // touches the crop's corner only
        {4, 0.5, NRect{0, 0.5, 0.375, 0.03125}}, // reaches in from the left
    };
    InputLog log;
    log.cursor = {{0, 0.5, 0.625}, {1, 0, 1}};
    log.events = {{1, InputLog::Event::Kind::click, 0.25, 0.75}, {2, InputLog::Event::Kind::key, {}, {}}};
    log.keysTracked = false;
    log.cameraOffset = 0.25;

    Project p;
    p.crop = NRect{0.25, 0.5, 0.5, 0.25};
    const auto [newInfo, newSamples, newLog] = p.cropped(info, samples, log);
    EXPECT_EQ(newInfo, (SourceInfo{960, 270, 12.5, 60, true}));
    EXPECT_THAT(newSamples,
                ElementsAre(ActivitySample{0, 0.5, {}}, ActivitySample{1, 0.5, NRect::full()},
                            ActivitySample{2, 0.5, NRect{0.5, 0.5, 0.25, 0.25}}, ActivitySample{3, 0, {}},
                            ActivitySample{4, 0.5, NRect{0, 0, 0.25, 0.125}}));
    ASSERT_TRUE(newLog);
    InputLog expected = log;
    expected.cursor = {{0, 0.5, 0.5}, {1, -0.5, 2}};
    expected.events[0].x = 0.0;
    expected.events[0].y = 1.0;
    EXPECT_EQ(*newLog, expected);
    EXPECT_EQ(p.cropped(log), expected);
    EXPECT_FALSE(p.cropped(info, samples, std::nullopt).log);
    EXPECT_DOUBLE_EQ(p.sourceAspect(info), 32.0 / 9);

    for (const NRect& tooSmall : {NRect{0, 0, 0.01, 1}, NRect{0, 0, 1, 0.01}, NRect{0, 0, -1, 1}}) {
        p.crop = tooSmall;
        const auto [sameInfo, sameSamples, sameLog] = p.cropped(info, samples, log);
        EXPECT_EQ(sameInfo, info);
        EXPECT_EQ(sameSamples, samples);
        EXPECT_EQ(sameLog, log);
    }
    // The aspect looks at the crop as soon as it has an area.
    p.crop = NRect{0, 0, 0.005, 0.01};
    EXPECT_DOUBLE_EQ(p.sourceAspect(info), 0.5 * 1920 / 1080);
    p.crop = NRect{0, 0, 0, 1};
    EXPECT_DOUBLE_EQ(p.sourceAspect(info), 16.0 / 9);

    const struct {
        NRect crop;
        std::int64_t width, height;
    } sizes[]{
        {{0, 0, 0.3334, 0.3334}, 640, 360}, // 640.1 and 360.07 are cut, not rounded
        {{0, 0, 0.0105, 0.9999}, 20, 1079},
        {{-5, 2, 1.5, 1.25}, 2880, 1350},
    };
    for (const auto& [crop, width, height] : sizes) {
        p.crop = crop;
        const SourceInfo found = p.cropped(info, {}, {}).info;
        EXPECT_EQ(found.width, width);
        EXPECT_EQ(found.height, height);
    }
    p.crop = NRect{0, 0, 0.02, 0.02};
    EXPECT_EQ(p.cropped(SourceInfo{10, 10, 1, 1, false}, {}, {}).info.width, 2);
    p.crop = NRect{0, 0, 1e300, 1e300};
    EXPECT_GT(p.cropped(info, {}, {}).info.width, 0) << "no overflow";
}

TEST(Project, UnknownFormatIsTheFirst) {
    Project p;
    p.format = "21:9";
    EXPECT_EQ(p.outputFormat(), OutputFormat::wide);
    p.format = "1:1";
    EXPECT_EQ(p.outputFormat(), OutputFormat::square);
}

} // namespace
