#include "OmbrelRecord/Entry/Commands.h"
#include "OmbrelRecord/Entry/Loading.h"
#include "RecordCore/Model/Json.h"
#include "RecordCore/Model/Styles.h"
#include "RecordCore/Motion/Scene.h"
#include "RecordCore/Planning/CaptionLayout.h"
#include "RecordCore/Planning/Planner.h"

#include <fmt/format.h>

#include <cstdio>

namespace OmbrelRecord::Commands {

using namespace RecordCore;

namespace {

Json encodePlan(const RecordCore::Plan& plan) {
    Json object;
    object["source"] = JsonWriting::encode(plan.source);
    object["segments"] = JsonWriting::encode(plan.segments);
    Json& shots = object["shots"] = Json::array();
    for (const Shot& shot : plan.shots)
        shots.push_back({{"start", shot.start}, {"view", JsonWriting::encode(shot.view)}});
    object["baseW"] = plan.baseW;
    object["baseH"] = plan.baseH;
    JsonWriting::put(object, "crop", plan.crop);
    return object;
}

Json encodeCaptions(const std::vector<CaptionLayout::Line>& lines) {
    Json list = Json::array();
    for (const CaptionLayout::Line& line : lines) {
        Json words = Json::array();
        for (const CaptionLayout::Word& word : line.words)
            words.push_back({{"text", word.text}, {"start", word.start}, {"end", word.end}});
        list.push_back({{"start", line.start}, {"end", line.end}, {"words", std::move(words)}});
    }
    return list;
}

Json encodeStyle(const Project& project, const SourceInfo& info) {
    const CanvasRect rect = window(project.outputFormat(), project.sourceAspect(info), project.padding);
    return {{"format", rawValue(project.outputFormat())},
            {"window", {{"x", rect.x}, {"y", rect.y}, {"w", rect.width}, {"h", rect.height}}},
            {"clickEffect", project.clickEffect},
            {"cursorStyle", project.cursorStyle},
            {"cameraShape", project.cameraShape},
            {"header", Cards::of(project).header}};
}

Json encodeFrame(double t, double sourceTime, const FrameState& state) {
    Json object{{"t", t}, {"sourceTime", sourceTime}, {"view", JsonWriting::encode(state.view)}};
    if (state.pointer)
        object["pointer"] = {
            {"x", state.pointer->x}, {"y", state.pointer->y}, {"opacity", state.pointer->opacity}};
    object["pointerScale"] = state.pointerScale;
    Json& ripples = object["ripples"] = Json::array();
    for (const FrameState::Ripple& ripple : state.ripples)
        ripples.push_back({{"x", ripple.x}, {"y", ripple.y}, {"progress", ripple.progress}});
    if (state.pill)
        object["pill"] = {
            {"speed", state.pill->speed}, {"label", state.pill->label}, {"opacity", state.pill->opacity}};
    object["titleOpacity"] = state.titleOpacity;
    object["endOpacity"] = state.endOpacity;
    if (state.clock) object["clock"] = *state.clock;
    object["cameraScale"] = state.cameraScale;
    if (state.caption)
        object["caption"] = {{"line", state.caption->line},
                             {"word", state.caption->word},
                             {"opacity", state.caption->opacity}};
    return object;
}

void print(const std::string& text) {
    std::fwrite(text.data(), 1, text.size(), stdout);
}

} // namespace

void run(const Plan& options, const MediaBackend& media) {
    const LoadedRecording recording = loadForCommand(options.folder, std::nullopt, media);
    const auto& [files, info, samples, log, project, notes, cameraBroken] = recording;
    const double aspect = Planner::viewportAspect(project, info);
    const RecordCore::Plan plan = recording.plan();
    if (options.frames) requireReasonableLength(plan, *options.frames);

    Json object;
    object["plan"] = encodePlan(plan);
    object["outputDuration"] = plan.outputDuration();
    object["speedBlocks"] = JsonWriting::encode(Planner::speedBlocks(info, samples, log, project));
    object["zoomBlocks"] = JsonWriting::encode(Planner::zoomBlocks(info, samples, log, project, aspect));
    object["kept"] = JsonWriting::encode(project.kept(info.duration));
    object["removed"] = JsonWriting::encode(project.removed(info.duration));
    object["pieces"] = JsonWriting::encode(project.pieces(info.duration));
    object["captionLines"] = encodeCaptions(CaptionLayout::shownLines(project, plan));
    object["style"] = encodeStyle(project, info);

    std::string text = jsonText(object);
    if (!options.frames) {
        print(text + "\n");
        return;
    }
    // The frames are printed one by one: a long film has more of them than belong in memory.
    const double fps = *options.frames;
    const Scene scene(plan, project, log, fps);
    text.back() = ',';
    print(text + "\"frames\":[");
    const double duration = plan.outputDuration();
    for (std::int64_t i = 0; static_cast<double>(i) < duration * fps; ++i) {
        const double t = static_cast<double>(i) / fps;
        const std::string frame = jsonText(encodeFrame(t, scene.times().sourceTime(t), scene.state(t)));
        print(i == 0 ? frame : "," + frame);
    }
    print("]}\n");
}

} // namespace OmbrelRecord::Commands
