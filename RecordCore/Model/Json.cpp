#include "RecordCore/Model/Json.h"

#include "RecordCore/Model/AtomicFile.h"

namespace RecordCore {

namespace {

void requireFinite(const Json& value) {
    if (value.is_number_float() && !std::isfinite(value.get<double>()))
        throw RecordingError("holds a number that is not finite");
    if (!value.is_structured()) return;
    for (const auto& [key, element] : value.items()) {
        try {
            requireFinite(element);
        } catch (const RecordingError& error) {
            if (value.is_array()) throw;
            throw RecordingError(fmt::format("\"{}\" {}", key, error.what()));
        }
    }
}

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

namespace JsonReading {

void decode(const Json& value, NRect& out) {
    required(value, "x", out.x);
    required(value, "y", out.y);
    required(value, "w", out.w);
    required(value, "h", out.h);
}

void decode(const Json& value, TimeRange& out) {
    required(value, "start", out.start);
    required(value, "end", out.end);
}

void decode(const Json& value, SpeedSegment::Reason& out) {
    std::string text;
    decode(value, text);
    const auto reason = reasonNamed(text);
    if (!reason) throw RecordingError(fmt::format("has an unknown reason \"{}\"", text));
    out = *reason;
}

void decode(const Json& value, SpeedBlock& out) {
    required(value, "start", out.start);
    required(value, "end", out.end);
    required(value, "speed", out.speed);
    required(value, "reason", out.reason);
}

void decode(const Json& value, ZoomBlock& out) {
    required(value, "start", out.start);
    required(value, "end", out.end);
    required(value, "x", out.x);
    required(value, "y", out.y);
    required(value, "zoom", out.zoom);
}

void decode(const Json& value, CaptionWord& out) {
    required(value, "text", out.text);
    required(value, "start", out.start);
    required(value, "end", out.end);
}

void decode(const Json& value, ActivitySample& out) {
    required(value, "t", out.t);
    required(value, "energy", out.energy);
    optional(value, "focus", out.focus);
}

void decode(const Json& value, InputLog::CursorSample& out) {
    required(value, "t", out.t);
    required(value, "x", out.x);
    required(value, "y", out.y);
}

void decode(const Json& value, InputLog::Event& out) {
    required(value, "t", out.t);
    std::string kind;
    required(value, "kind", kind);
    if (kind == "click")
        out.kind = InputLog::Event::Kind::click;
    else if (kind == "rightClick")
        out.kind = InputLog::Event::Kind::rightClick;
    else if (kind == "key")
        out.kind = InputLog::Event::Kind::key;
    else if (kind == "scroll")
        out.kind = InputLog::Event::Kind::scroll;
    else
        throw RecordingError(fmt::format("has an unknown kind of event \"{}\"", kind));
    optional(value, "x", out.x);
    optional(value, "y", out.y);
}

} // namespace JsonReading

namespace JsonWriting {

Json encode(const NRect& rect) {
    return {{"x", rect.x}, {"y", rect.y}, {"w", rect.w}, {"h", rect.h}};
}

Json encode(const TimeRange& range) {
    return {{"start", range.start}, {"end", range.end}};
}

Json encode(const SourceInfo& info) {
    return {{"width", info.width},
            {"height", info.height},
            {"duration", info.duration},
            {"fps", info.fps},
            {"hasAudio", info.hasAudio}};
}

Json encode(const SpeedSegment& segment) {
    return {{"start", segment.start},
            {"end", segment.end},
            {"speed", segment.speed},
            {"reason", name(segment.reason)}};
}

Json encode(const SpeedBlock& block) {
    return {
        {"start", block.start}, {"end", block.end}, {"speed", block.speed}, {"reason", name(block.reason)}};
}

Json encode(const ZoomBlock& block) {
    return {{"start", block.start}, {"end", block.end}, {"x", block.x}, {"y", block.y}, {"zoom", block.zoom}};
}

Json encode(const CaptionWord& word) {
    return {{"text", word.text}, {"start", word.start}, {"end", word.end}};
}

Json encode(const ActivitySample& sample) {
    Json object{{"t", sample.t}, {"energy", sample.energy}};
    put(object, "focus", sample.focus);
    return object;
}

Json encode(const InputLog::CursorSample& sample) {
    return {{"t", sample.t}, {"x", sample.x}, {"y", sample.y}};
}

Json encode(const InputLog::Event& event) {
    Json object{{"t", event.t}, {"kind", kindName(event.kind)}};
    put(object, "x", event.x);
    put(object, "y", event.y);
    return object;
}

} // namespace JsonWriting

Json parseJson(const std::string& text) {
    return parseJson(text, {});
}

Json parseJson(const std::string& text, const std::map<std::string, ElementReader>& lists) {
    const ElementReader* reader = nullptr; // of the list that is being parsed
    std::string key;
    int elementDepth = 0;
    if (const auto outermost = lists.find(""); outermost != lists.end()) {
        reader = &outermost->second;
        elementDepth = 1;
    }
    const auto keep = [&](int depth, Json::parse_event_t event, const Json& parsed) {
        if (event == Json::parse_event_t::key && depth == 1) {
            key = parsed.get<std::string>();
            const auto found = lists.find(key);
            reader = found != lists.end() ? &found->second : nullptr;
            elementDepth = 2;
        }
        const bool complete = event == Json::parse_event_t::object_end ||
                              event == Json::parse_event_t::array_end || event == Json::parse_event_t::value;
        if (!reader || !complete || depth != elementDepth) return true;
        try {
            (*reader)(parsed);
        } catch (const RecordingError& error) {
            if (key.empty()) throw;
            throw RecordingError(fmt::format("\"{}\" {}", key, error.what()));
        }
        return false;
    };
    try {
        return lists.empty() ? Json::parse(text) : Json::parse(text, keep);
    } catch (const nlohmann::json::parse_error& error) {
        throw RecordingError(fmt::format("is not valid JSON (at byte {})", error.byte));
    } catch (const nlohmann::json::exception&) {
        throw RecordingError("is not valid JSON (a number is too large)");
    }
}

std::string jsonText(const Json& value, int indent) {
    return value.dump(indent, ' ', false, Json::error_handler_t::replace);
}

std::string finiteJsonText(const Json& value, const std::filesystem::path& file, int indent) {
    try {
        requireFinite(value);
    } catch (const RecordingError& error) {
        throw RecordingError(fmt::format("{}: cannot be written: {}", file.string(), error.what()));
    }
    return jsonText(value, indent);
}

void saveJson(const Json& value, const std::filesystem::path& file, int indent) {
    writeFileAtomically(file, finiteJsonText(value, file, indent) + (indent < 0 ? "" : "\n"));
}

} // namespace RecordCore
