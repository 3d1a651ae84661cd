#pragma once
// JSON forms of the model's values. Included by .cpp files only: the library's headers are heavy.

#include "RecordCore/Model/ActivitySample.h"
#include "RecordCore/Model/InputLog.h"
#include "RecordCore/Model/NRect.h"
#include "RecordCore/Model/Project.h"
#include "RecordCore/Model/RecordingError.h"
#include "RecordCore/Model/SourceInfo.h"
#include "RecordCore/Model/SpeedSegment.h"
#include "RecordCore/Model/TimeRange.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <cmath>
#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace RecordCore {

/// Keys keep the order in which they are written.
using Json = nlohmann::ordered_json;

/// Strict reading: a missing key, or a value of another type, throws RecordingError naming the key.
namespace JsonReading {

inline void decode(const Json& value, double& out) {
    if (!value.is_number()) throw RecordingError("is not a number");
    out = value.get<double>();
    if (!std::isfinite(out)) throw RecordingError("is not a finite number");
}

inline void decode(const Json& value, bool& out) {
    if (!value.is_boolean()) throw RecordingError("is not true or false");
    out = value.get<bool>();
}

inline void decode(const Json& value, std::string& out) {
    if (!value.is_string()) throw RecordingError("is not a text");
    out = value.get<std::string>();
}

void decode(const Json& value, NRect& out);
void decode(const Json& value, TimeRange& out);
void decode(const Json& value, SpeedBlock& out);
void decode(const Json& value, ZoomBlock& out);
void decode(const Json& value, CaptionWord& out);
void decode(const Json& value, ActivitySample& out);
void decode(const Json& value, InputLog::CursorSample& out);
void decode(const Json& value, InputLog::Event& out);
void decode(const Json& value, SpeedSegment::Reason& out);

template <typename T>
void decode(const Json& value, std::vector<T>& out) {
    if (!value.is_array()) throw RecordingError("is not a list");
    out.clear();
    out.reserve(value.size());
    for (const Json& element : value) {
        T decoded{};
        decode(element, decoded);
        out.push_back(std::move(decoded));
    }
}

/// The value of a key that must be there.
inline const Json& member(const Json& object, const char* key) {
    if (!object.is_object()) throw RecordingError("is not an object");
    const auto found = object.find(key);
    if (found == object.end()) throw RecordingError(fmt::format("has no \"{}\"", key));
    return *found;
}

template <typename T>
void required(const Json& object, const char* key, T& out) {
    const Json& value = member(object, key);
    try {
        decode(value, out);
    } catch (const RecordingError& error) {
        throw RecordingError(fmt::format("\"{}\" {}", key, error.what()));
    }
}

/// For a list whose elements have been read already.
inline void requiredList(const Json& object, const char* key) {
    if (!member(object, key).is_array()) throw RecordingError(fmt::format("\"{}\" is not a list", key));
}

/// An absent key and null both mean absent.
template <typename T>
void optional(const Json& object, const char* key, std::optional<T>& out) {
    if (!object.is_object()) throw RecordingError("is not an object");
    const auto found = object.find(key);
    if (found == object.end() || found->is_null()) {
        out.reset();
        return;
    }
    T decoded{};
    required(object, key, decoded);
    out = std::move(decoded);
}

} // namespace JsonReading

/// Writing; absent optionals are left out, numbers keep full precision.
namespace JsonWriting {

Json encode(const NRect& rect);
Json encode(const TimeRange& range);
Json encode(const SourceInfo& info);
Json encode(const SpeedSegment& segment);
Json encode(const SpeedBlock& block);
Json encode(const ZoomBlock& block);
Json encode(const CaptionWord& word);
Json encode(const ActivitySample& sample);
Json encode(const InputLog::CursorSample& sample);
Json encode(const InputLog::Event& event);
inline Json encode(double value) {
    return value;
}
inline Json encode(bool value) {
    return value;
}
inline Json encode(const std::string& value) {
    return value;
}

template <typename T>
Json encode(const std::vector<T>& values) {
    Json list = Json::array();
    for (const T& value : values)
        list.push_back(encode(value));
    return list;
}

template <typename T>
void put(Json& object, const char* key, const std::optional<T>& value) {
    if (value) object[key] = encode(*value);
}

} // namespace JsonWriting

/// Parses a text as JSON; throws RecordingError with the place of the fault.
Json parseJson(const std::string& text);

/// Takes one element of a long list after the other.
using ElementReader = std::function<void(const Json& element)>;

/// The same, but the named lists of the outermost object, or the outermost list for the name "", are read
/// element by element and stay empty in what is returned: an hour has hundreds of thousands of positions, and
/// as one tree they would take 200 MB.
Json parseJson(const std::string& text, const std::map<std::string, ElementReader>& lists);

/// Reads the elements of a list to the end of `out`.
template <typename T>
ElementReader appendTo(std::vector<T>& out) {
    return [&out](const Json& element) {
        T decoded{};
        JsonReading::decode(element, decoded);
        out.push_back(std::move(decoded));
    };
}

/// The text of a JSON value; bytes that are not UTF-8 are replaced. `indent` as in the library (−1: compact).
std::string jsonText(const Json& value, int indent = -1);

/// The same for a value that is to stand in `file`. Throws RecordingError that names the file for a number
/// that is not finite: JSON has no way to write it, and the file could not be read back.
std::string finiteJsonText(const Json& value, const std::filesystem::path& file, int indent = -1);

/// The text of a list that is too long for a tree.
template <typename T>
std::string finiteListText(const std::vector<T>& values, const std::filesystem::path& file) {
    std::string text = "[";
    for (const T& value : values) {
        if (&value != &values.front()) text += ',';
        text += finiteJsonText(JsonWriting::encode(value), file);
    }
    return text + ']';
}

/// Writes a JSON value to `file`, atomically, with a line break at the end when it is indented. Throws
/// RecordingError that names the file, also for a number that is not finite.
void saveJson(const Json& value, const std::filesystem::path& file, int indent = -1);

} // namespace RecordCore
