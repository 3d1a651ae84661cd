#include "OmbrelRecord/EditorModel/LookPreset.h"

#include "RecordCore/Model/AtomicFile.h"
#include "RecordCore/Model/Json.h"
#include "RecordCore/Model/RecordingError.h"

#include <fmt/format.h>

namespace OmbrelRecord {

using RecordCore::Json;
using RecordCore::Project;
using RecordCore::RecordingError;

namespace fs = std::filesystem;

namespace {

/// Calls visit(key, member of LookPreset, member of Project) for every field of a look.
template <typename Visit>
void eachField(Visit visit) {
#define OMBREL_LOOK_FIELD(name) visit(#name, &LookPreset::name, &Project::name)
    OMBREL_LOOK_FIELD(wallpaperPreset);
    OMBREL_LOOK_FIELD(wallpaper);
    OMBREL_LOOK_FIELD(solidColor);
    OMBREL_LOOK_FIELD(backdrop);
    OMBREL_LOOK_FIELD(backgroundBlur);
    OMBREL_LOOK_FIELD(padding);
    OMBREL_LOOK_FIELD(radius);
    OMBREL_LOOK_FIELD(shadow);
    OMBREL_LOOK_FIELD(cursorSize);
    OMBREL_LOOK_FIELD(cursorStyle);
    OMBREL_LOOK_FIELD(clickEffect);
    OMBREL_LOOK_FIELD(clickBounce);
    OMBREL_LOOK_FIELD(cameraShape);
    OMBREL_LOOK_FIELD(cameraBorder);
    OMBREL_LOOK_FIELD(captionStyle);
    OMBREL_LOOK_FIELD(captionSize);
    OMBREL_LOOK_FIELD(captionBottom);
#undef OMBREL_LOOK_FIELD
}

/// A missing field keeps its default.
template <typename T>
void read(const Json& object, const char* key, T& out) {
    if (object.contains(key)) RecordCore::JsonReading::required(object, key, out);
}
template <typename T>
void read(const Json& object, const char* key, std::optional<T>& out) {
    RecordCore::JsonReading::optional(object, key, out);
}

template <typename T>
void write(Json& object, const char* key, const T& value) {
    object[key] = RecordCore::JsonWriting::encode(value);
}
template <typename T>
void write(Json& object, const char* key, const std::optional<T>& value) {
    RecordCore::JsonWriting::put(object, key, value);
}

LookPreset onWallpaper(const char* name, const char* wallpaper, double padding, double shadow) {
    LookPreset look;
    look.name = name;
    look.wallpaperPreset = wallpaper;
    look.padding = padding;
    look.shadow = shadow;
    return look;
}

LookPreset onColor(const char* name, const char* color, double padding, double radius, double shadow) {
    LookPreset look;
    look.name = name;
    look.wallpaperPreset = "";
    look.solidColor = color;
    look.padding = padding;
    look.radius = radius;
    look.shadow = shadow;
    return look;
}

std::vector<LookPreset> designed() {
    std::vector<LookPreset> looks;
    // What a new project has.
    looks.push_back(LookPreset::of(Project(), "Orbit", {}));

    looks.push_back(onWallpaper("Stage", "orbit", 0.05, 0.65));

    LookPreset studio = onWallpaper("Studio", "silk-pearl", 0.052, 0.55);
    studio.radius = 0.7;
    studio.clickEffect = "ring";
    studio.captionStyle = "clean";
    looks.push_back(studio);

    looks.push_back(onWallpaper("Midnight", "silk-midnight", 0.05, 0.7));

    LookPreset northern = onWallpaper("Northern", "aurora-north", 0.045, 0.6);
    northern.radius = 0.75;
    looks.push_back(northern);

    LookPreset paper = onWallpaper("Paper", "terrace-paper", 0.06, 0.45);
    paper.radius = 0.4;
    paper.clickEffect = "ring";
    paper.captionStyle = "boxed";
    paper.cameraShape = "rounded";
    looks.push_back(paper);

    LookPreset horizon = onWallpaper("Horizon", "dunes-dusk", 0.055, 0.6);
    horizon.backgroundBlur = 0.1;
    looks.push_back(horizon);

    LookPreset frosted = onWallpaper("Frosted", "glass-frost", 0.05, 0.5);
    frosted.radius = 0.9;
    frosted.cameraBorder = true;
    looks.push_back(frosted);

    LookPreset petal = onWallpaper("Petal", "mesh-petal", 0.05, 0.45);
    petal.radius = 0.8;
    petal.captionStyle = "bold";
    looks.push_back(petal);

    LookPreset keynote = onWallpaper("Keynote", "prism-night", 0.06, 0.8);
    keynote.cursorSize = 2;
    keynote.clickEffect = "spotlight";
    keynote.captionStyle = "bold";
    looks.push_back(keynote);

    LookPreset ink = onColor("Ink", "#0E0F13", 0.03, 0.5, 0);
    ink.cursorStyle = "outline";
    ink.clickEffect = "ring";
    ink.captionStyle = "clean";
    looks.push_back(ink);

    LookPreset bare = onColor("Edge to edge", "#000000", 0, 0, 0);
    bare.cameraShape = "rounded";
    looks.push_back(bare);
    return looks;
}

} // namespace

LookPreset LookPreset::of(const Project& project, std::string name, const fs::path& folder) {
    LookPreset look;
    eachField([&](const char*, auto ours, auto theirs) { look.*ours = project.*theirs; });
    look.name = std::move(name);
    if (look.wallpaper && !look.wallpaper->empty() && fs::path(*look.wallpaper).is_relative())
        look.wallpaper = (folder / *look.wallpaper).string();
    return look;
}

void LookPreset::applyTo(Project& project) const {
    eachField([&](const char*, auto ours, auto theirs) { project.*theirs = this->*ours; });
}

const std::vector<LookPreset>& LookPreset::builtIn() {
    static const std::vector<LookPreset> looks = designed();
    return looks;
}

LookPresetFile::Contents LookPresetFile::load(const fs::path& file) {
    Contents contents;
    std::error_code ignored;
    if (!fs::exists(file, ignored)) return contents;
    try {
        const Json json = RecordCore::parseJson(RecordCore::readFile(file, std::size_t{1} << 24));
        if (!json.is_object() || !json.contains("looks") || !json["looks"].is_array())
            throw RecordingError("has no list of looks");
        for (const Json& entry : json["looks"]) {
            try {
                LookPreset look;
                RecordCore::JsonReading::required(entry, "name", look.name);
                eachField([&](const char* key, auto ours, auto) { read(entry, key, look.*ours); });
                contents.looks.push_back(std::move(look));
            } catch (const RecordingError& error) {
                contents.problem = fmt::format("{}: a look {}", file.string(), error.what());
            }
        }
    } catch (const RecordingError& error) {
        const std::string cause = error.what();
        contents.problem =
            cause.starts_with(file.string()) ? cause : fmt::format("{}: {}", file.string(), cause);
    }
    return contents;
}

void LookPresetFile::save(const fs::path& file, const std::vector<LookPreset>& looks) {
    Json list = Json::array();
    for (const LookPreset& look : looks) {
        Json object = Json::object();
        object["name"] = look.name;
        eachField([&](const char* key, auto ours, auto) { write(object, key, look.*ours); });
        list.push_back(std::move(object));
    }
    Json json = Json::object();
    json["looks"] = std::move(list);
    std::error_code error;
    fs::create_directories(file.parent_path(), error);
    if (error) throw RecordingError(fmt::format("{}: {}", file.parent_path().string(), error.message()));
    RecordCore::writeFileAtomically(file, RecordCore::jsonText(json, 2) + "\n");
}

} // namespace OmbrelRecord
