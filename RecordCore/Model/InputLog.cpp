#include "RecordCore/Model/InputLog.h"

#include "RecordCore/Model/AtomicFile.h"
#include "RecordCore/Model/Json.h"

#include <cmath>

namespace RecordCore {

InputLog InputLog::load(const std::filesystem::path& file) {
    const std::string text = readFile(file);
    try {
        InputLog log;
        const Json object =
            parseJson(text, {{"cursor", appendTo(log.cursor)}, {"events", appendTo(log.events)}});
        JsonReading::requiredList(object, "cursor");
        JsonReading::requiredList(object, "events");
        JsonReading::optional(object, "keysTracked", log.keysTracked);
        JsonReading::optional(object, "cursorInVideo", log.cursorInVideo);
        JsonReading::optional(object, "cameraOffset", log.cameraOffset);
        return log;
    } catch (const RecordingError& error) {
        throw RecordingError(fmt::format("{}: {}", file.string(), error.what()));
    }
}

void InputLog::save(const std::filesystem::path& file) const {
    Json flags = Json::object();
    JsonWriting::put(flags, "keysTracked", keysTracked);
    JsonWriting::put(flags, "cursorInVideo", cursorInVideo);
    JsonWriting::put(flags, "cameraOffset", cameraOffset);
    std::string text = fmt::format(R"({{"cursor":{},"events":{})", finiteListText(cursor, file),
                                   finiteListText(events, file));
    if (!flags.empty()) text += ',';
    writeFileAtomically(file, text + finiteJsonText(flags, file).substr(1));
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
