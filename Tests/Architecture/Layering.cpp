#include "Tests/Architecture/Layering.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <fmt/format.h>

namespace Layering {

namespace {

using Names = std::vector<std::string_view>;

/// A room of the house: which files are in it, and which files of the project they may include besides
/// those of the room itself. The first room whose folder holds a file is the file's room, so a folder
/// inside another stands before it.
struct Room {
    std::string_view folder;
    Names sees; ///< folders (ending in '/'; without the rooms inside them) or single headers
};

const std::vector<Room>& rooms() {
    static const std::vector<Room> table{
        {"RecordCore/Model/", {}},
        {"RecordCore/Activity/", {"RecordCore/Model/"}},
        {"RecordCore/Planning/", {"RecordCore/Model/"}},
        {"RecordCore/Motion/", {"RecordCore/Model/", "RecordCore/Planning/"}},
        {"RecordCore/Rendering/", {"RecordCore/Model/", "RecordCore/Motion/FrameState.h"}},
        {"RecordCore/Media/FFmpeg/", {"RecordCore/Model/", "RecordCore/Media/"}},
        {"RecordCore/Media/X264/", {"RecordCore/Model/", "RecordCore/Media/"}},
        {"RecordCore/Media/RubberBand/", {"RecordCore/Model/", "RecordCore/Media/"}},
        {"RecordCore/Media/", {"RecordCore/Model/"}},
        // Loading a recording may mean looking at its video for activity.
        {"RecordCore/Export/",
         {"RecordCore/Model/", "RecordCore/Activity/", "RecordCore/Planning/", "RecordCore/Motion/",
          "RecordCore/Rendering/", "RecordCore/Media/"}},
        {"RecordCore/Preview/",
         {"RecordCore/Model/", "RecordCore/Planning/", "RecordCore/Motion/", "RecordCore/Rendering/",
          "RecordCore/Media/", "RecordCore/Export/Timeline.h", "RecordCore/Export/RetimedSound.h",
          "RecordCore/Export/Exporter.h"}},
        {"RecordCore/Capture/X11/", {"RecordCore/Model/", "RecordCore/Media/", "RecordCore/Capture/"}},
        {"RecordCore/Capture/PipeWire/", {"RecordCore/Model/", "RecordCore/Media/", "RecordCore/Capture/"}},
        {"RecordCore/Capture/PulseAudio/", {"RecordCore/Model/", "RecordCore/Media/", "RecordCore/Capture/"}},
        {"RecordCore/Capture/V4L2/", {"RecordCore/Model/", "RecordCore/Media/", "RecordCore/Capture/"}},
        {"RecordCore/Capture/Evdev/", {"RecordCore/Model/", "RecordCore/Media/", "RecordCore/Capture/"}},
        {"RecordCore/Capture/", {"RecordCore/Model/", "RecordCore/Activity/", "RecordCore/Media/"}},
        {"OmbrelRecord/Entry/", {"RecordCore/", "OmbrelRecord/"}},
        {"OmbrelRecord/Transcriber/PocketSphinx/",
         {"RecordCore/Model/", "RecordCore/Media/", "OmbrelRecord/Transcriber/"}},
        {"OmbrelRecord/Transcriber/Whisper/",
         {"RecordCore/Model/", "RecordCore/Media/", "OmbrelRecord/Transcriber/"}},
        // Serves the command line, too, which needs no Qt.
        {"OmbrelRecord/Transcriber/",
         {"RecordCore/Model/", "RecordCore/Planning/", "RecordCore/Media/",
          "OmbrelRecord/AppModel/PlatformText.h"}},
        {"OmbrelRecord/",
         {"RecordCore/Model/", "RecordCore/Activity/", "RecordCore/Planning/", "RecordCore/Motion/",
          "RecordCore/Rendering/", "RecordCore/Media/", "RecordCore/Export/", "RecordCore/Preview/",
          "RecordCore/Capture/", "OmbrelRecord/Transcriber/"}},
    };
    return table;
}

const Room* roomOf(std::string_view file) {
    for (const Room& room : rooms())
        if (file.starts_with(room.folder)) return &room;
    return nullptr;
}

/// Headers of a library, by how they begin, and the only folders or files that may name them.
struct Library {
    Names headers;
    Names homes;
};

const std::vector<Library>& libraries() {
    static const std::vector<Library> table{
        {{"libavcodec/", "libavformat/", "libavutil/", "libavfilter/", "libavdevice/", "libswscale/",
          "libswresample/"},
         {"RecordCore/Media/FFmpeg/"}},
        {{"x264.h"}, {"RecordCore/Media/X264/"}},
        {{"rubberband/"}, {"RecordCore/Media/RubberBand/"}},
        {{"cairo", "pango/", "gdk-pixbuf/", "fontconfig/", "ft2build.h", "freetype2/", "glib", "gio/",
          "gobject/"},
         {"RecordCore/Rendering/"}},
        {{"hwy/"}, {"RecordCore/Rendering/Kernels/", "RecordCore/Capture/Kernels/"}},
        {{"xcb/", "X11/"}, {"RecordCore/Capture/X11/"}},
        {{"pulse/"}, {"RecordCore/Capture/PulseAudio/"}},
        {{"pipewire/", "spa/"}, {"RecordCore/Capture/PipeWire/"}},
        {{"linux/videodev2.h"}, {"RecordCore/Capture/V4L2/"}},
        {{"linux/input", "libevdev/", "libudev.h"}, {"RecordCore/Capture/Evdev/"}},
        {{"pocketsphinx/", "sphinxbase/"}, {"OmbrelRecord/Transcriber/PocketSphinx/"}},
        {{"gnutls/"}, {"OmbrelRecord/Updates/"}},
        {{"CLI/"}, {"OmbrelRecord/Entry/"}},
        {{"spdlog/"}, {"OmbrelRecord/"}},
        {{"fmt/"}, {"RecordCore/", "OmbrelRecord/"}},
    };
    return table;
}

bool startsWithAny(std::string_view text, const Names& beginnings) {
    return std::any_of(beginnings.begin(), beginnings.end(),
                       [&](std::string_view beginning) { return text.starts_with(beginning); });
}

bool isHeader(std::string_view file) {
    return file.ends_with(".h");
}

/// "vector", "cstdint": the standard library's headers have neither a folder nor an ending.
bool isStandard(std::string_view path) {
    return std::all_of(path.begin(), path.end(),
                       [](char c) { return (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '_'; });
}

/// The C library and the kernel's plain interfaces.
bool isSystem(std::string_view path) {
    static constexpr std::array<std::string_view, 19> plain{
        "unistd.h", "fcntl.h",  "errno.h",  "signal.h",   "poll.h",   "pthread.h", "sched.h",
        "time.h",   "dirent.h", "dlfcn.h",  "spawn.h",    "malloc.h", "termios.h", "pwd.h",
        "stdlib.h", "string.h", "locale.h", "execinfo.h", "cxxabi.h"};
    return path.starts_with("sys/") || std::find(plain.begin(), plain.end(), path) != plain.end();
}

bool isQt(std::string_view path) {
    return path.starts_with("Qt") || path.starts_with("qt") || path.starts_with("qpa/") ||
           (path.size() > 1 && path[0] == 'Q' && path[1] >= 'A' && path[1] <= 'Z');
}

/// What is wrong with a bracketed include; empty when nothing is.
std::string libraryBreach(std::string_view file, std::string_view path) {
    if (isStandard(path) || isSystem(path)) return {};
    if (isQt(path)) {
        if (file.starts_with("OmbrelRecord/Transcriber/"))
            return fmt::format("<{}>: captions are made without Qt", path);
        if (file.starts_with("OmbrelRecord/")) return {};
        return fmt::format("<{}>: Qt belongs to OmbrelRecord", path);
    }
    if (path.starts_with("nlohmann/")) {
        if (!isHeader(file) || file == "RecordCore/Model/Json.h") return {};
        return fmt::format("<{}>: heavy; only in .cpp files and RecordCore/Model/Json.h", path);
    }
    for (const Library& library : libraries()) {
        if (!startsWithAny(path, library.headers)) continue;
        if (startsWithAny(file, library.homes)) return {};
        return fmt::format("<{}>: belongs to {}", path, fmt::join(library.homes, ", "));
    }
    return fmt::format("<{}>: no library of ours; Tests/Architecture/Layering.cpp lists them", path);
}

/// What is wrong with including a file of the project; empty when nothing is.
std::string roomBreach(std::string_view file, std::string_view path) {
    const Room* to = roomOf(path);
    if (!to) return fmt::format("\"{}\": includes are written from the root of the sources", path);
    const Room* from = roomOf(file);
    if (!from) return "the file is in no folder of the layering; Tests/Architecture/Layering.cpp lists them";
    if (from == to) {
        // The application is one room of many folders; what names backends stays out of all of them.
        return {};
    }
    for (const std::string_view seen : from->sees) {
        if (!seen.ends_with('/')) {
            if (path == seen) return {};
            continue;
        }
        if (!path.starts_with(seen)) continue;
        // The whole engine, for the entry; else the very room, not one inside it.
        if (seen == to->folder || seen == "RecordCore/" || seen == "OmbrelRecord/") return {};
    }
    return fmt::format("\"{}\": {} may not see {}", path, from->folder, to->folder);
}

/// The text with comments and the contents of raw strings blanked, line breaks kept, so that only what the
/// compiler reads is left. Plain strings stay: an include's path is one.
std::string withoutComments(std::string_view text) {
    std::string out(text);
    const auto blank = [&](std::size_t from, std::size_t to) {
        for (std::size_t i = from; i < std::min(to, out.size()); ++i)
            if (out[i] != '\n') out[i] = ' ';
    };
    const auto after = [&](std::string_view what, std::size_t from) {
        const std::size_t at = text.find(what, from);
        return at == std::string_view::npos ? text.size() : at + what.size();
    };
    for (std::size_t i = 0; i < text.size();) {
        const std::string_view rest = text.substr(i);
        std::size_t end = i + 1;
        if (rest.starts_with("//")) {
            end = std::min(text.find('\n', i), text.size());
            blank(i, end);
        } else if (rest.starts_with("/*")) {
            end = after("*/", i + 2);
            blank(i, end);
        } else if (rest.starts_with("R\"")) {
            const std::size_t open = text.find('(', i);
            if (open != std::string_view::npos) {
                end = after(fmt::format("){}\"", text.substr(i + 2, open - i - 2)), open);
                blank(open, end);
            }
        } else if (rest[0] == '"' ||
                   (rest[0] == '\'' && (i == 0 || !std::isalnum(static_cast<unsigned char>(text[i - 1]))))) {
            while (end < text.size() && text[end] != rest[0] && text[end] != '\n')
                end += text[end] == '\\' ? 2 : 1;
            ++end;
        }
        i = end;
    }
    return out;
}

} // namespace

std::vector<Include> includes(std::string_view text) {
    const std::string code = withoutComments(text);
    std::vector<Include> found;
    int line = 0;
    for (std::size_t begin = 0; begin < code.size();) {
        ++line;
        const std::size_t end = std::min(code.find('\n', begin), code.size());
        std::string_view rest = std::string_view(code).substr(begin, end - begin);
        const auto skip = [&rest](std::string_view word) {
            rest.remove_prefix(std::min(rest.find_first_not_of(" \t"), rest.size()));
            const bool is = rest.starts_with(word);
            if (is) rest.remove_prefix(word.size());
            return is;
        };
        if (skip("#") && skip("include")) {
            skip("");
            Include include{line, {}, 0};
            if (rest.starts_with('"') || rest.starts_with('<')) {
                include.opening = rest.front();
                rest.remove_prefix(1);
                rest = rest.substr(0, rest.find(include.opening == '<' ? '>' : '"'));
            } else {
                rest = rest.substr(0, rest.find_first_of(" \t\r"));
            }
            // Blanking keeps every position, so the path can be taken from the text that outlives this call.
            include.path = text.substr(static_cast<std::size_t>(rest.data() - code.data()), rest.size());
            found.push_back(include);
        }
        begin = end + 1;
    }
    return found;
}

std::vector<std::string> breaches(std::string_view file, std::string_view text) {
    std::vector<std::string> list;
    const auto report = [&](int line, const std::string& what) {
        if (!what.empty()) list.push_back(fmt::format("{}:{}: {}", file, line, what));
    };
    if (!roomOf(file))
        report(1, "the file is in no folder of the layering; Tests/Architecture/Layering.cpp lists them");
    if (isHeader(file) && text.find("#pragma once") == std::string_view::npos)
        report(1, "a header without #pragma once");
    for (const Include& include : includes(text)) {
        if (include.opening == '<')
            report(include.line, libraryBreach(file, include.path));
        else if (include.opening == '"')
            report(include.line, roomBreach(file, include.path));
        else
            report(include.line, fmt::format("{}: a computed include hides what is included", include.path));
    }
    return list;
}

} // namespace Layering
