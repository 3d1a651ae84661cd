#include "RecordCore/Model/InputLog.h"

#include "RecordCore/Model/AtomicFile.h"
#include "RecordCore/Model/Json.h"

#include <cmath>

namespace RecordCore {

namespace {

const char* kindName(InputLog::Event::Kind kind) {
    switch (kind) {
    case InputLog::Event::Kind::click:
        return "click";
    case InputLog::Event::Kind::rightClick:
        return "rightClick";
    case InputLog::Event::Kind::key:
        return "key";
    case InputLog::Event::Kind::scroll:
        return "scroll";
    }
    return "key";
}

} // namespace

InputLog InputLog::load(const std::filesystem::path& file) {
    const std::string text = readFile(file);
    try {
        const Json object = parseJson(text);
        InputLog log;
        JsonReading::required(object, "cursor", log.cursor);
        JsonReading::required(object, "events", log.events);
        JsonReading::optional(object, "keysTracked", log.keysTracked);
        JsonReading::optional(object, "cursorInVideo", log.cursorInVideo);
        JsonReading::optional(object, "cameraOffset", log.cameraOffset);
        return log;
    } catch (const RecordingError& error) {
        throw RecordingError(fmt::format("{}: {}", file.string(), error.what()));
    }
}

void InputLog::save(const std::filesystem::path& file) const {
    // One position after the other: an hour has 200,000 of them, and as one tree they would take 100 MB.
    std::string text = R"({"cursor":[)";
    for (const CursorSample& sample : cursor) {
        if (&sample != &cursor.front()) text += ',';
        text += finiteJsonText({{"t", sample.t}, {"x", sample.x}, {"y", sample.y}}, file);
    }
    Json object;
    Json& list = object["events"] = Json::array();
    for (const Event& event : events) {
        Json entry{{"t", event.t}, {"kind", kindName(event.kind)}};
        JsonWriting::put(entry, "x", event.x);
        JsonWriting::put(entry, "y", event.y);
        list.push_back(std::move(entry));
    }
    JsonWriting::put(object, "keysTracked", keysTracked);
    JsonWriting::put(object, "cursorInVideo", cursorInVideo);
    JsonWriting::put(object, "cameraOffset", cameraOffset);
    writeFileAtomically(file, text + "]," + finiteJsonText(object, file).substr(1));
}

bool InputLog::userActive(double from, double to, double moveThreshold) const {
    for (const Event& event : events)
        if (from <= event.t && event.t < to) return true;

    const CursorSample* reference = nullptr;
    for (const CursorSample& sample : cursor) {
        if (!(from <= sample.t && sample.t < to)) continue;
        if (!reference)
            reference = &sample;
        else if (std::abs(sample.x - reference->x) > moveThreshold ||
                 std::abs(sample.y - reference->y) > moveThreshold)
            return true;
    }
    return false;
}

} // namespace RecordCore
