#include "Tests/System/Program.h"

#include "RecordCore/Model/AtomicFile.h"

#include <QtCore/QJsonDocument>
#include <QtNetwork/QLocalSocket>
#include <algorithm>
#include <sstream>

namespace fs = std::filesystem;

namespace {

/// All files below a folder that bear that name, in the order of their paths.
std::vector<fs::path> filesBelow(const fs::path& folder, const std::function<bool(const fs::path&)>& which) {
    std::vector<fs::path> found;
    std::error_code error;
    for (fs::recursive_directory_iterator at(folder, error), end; !error && at != end; at.increment(error))
        if (which(at->path())) found.push_back(at->path());
    std::sort(found.begin(), found.end());
    return found;
}

} // namespace

Program::Program(XSession& session, std::map<std::string, std::string> environment,
                 std::vector<std::string> arguments) :
    session(session) {
    std::map<std::string, std::string> own{{"HOME", (folder / "home").string()},
                                           {"XDG_CONFIG_HOME", (folder / "config").string()},
                                           {"XDG_CACHE_HOME", (folder / "cache").string()},
                                           {"XDG_DATA_HOME", (folder / "data").string()},
                                           {"XDG_STATE_HOME", (folder / "state").string()},
                                           {"XDG_RUNTIME_DIR", (folder / "runtime").string()},
                                           {"XDG_SESSION_TYPE", "x11"},
                                           {"WAYLAND_DISPLAY", ""},
                                           {"QT_QPA_PLATFORM", "xcb"},
                                           {"QT_QUICK_BACKEND", "software"},
                                           {"LC_ALL", "C.UTF-8"},
                                           {"OMBREL_INSPECT", (folder / "runtime/inspect").string()}};
    for (const char* place : {"home", "config", "cache", "data", "state", "runtime"})
        fs::create_directories(folder / place);
    fs::permissions(folder / "runtime", fs::perms::owner_all);
    for (auto& [name, value] : environment)
        own[name] = value;
    arguments.insert(arguments.begin(), OMBREL_RECORD_PROGRAM);
    process.emplace(std::move(arguments), ChildProcess::Options{own, folder / "said"});
}

std::string Program::said() const {
    return fs::exists(folder / "said") ? RecordCore::readFile(folder / "said") : std::string();
}

std::string Program::log() const {
    const auto logs = filesBelow(state(), [](const fs::path& file) { return file.extension() == ".log"; });
    return logs.empty() ? std::string() : RecordCore::readFile(logs.front());
}

bool Program::waitForLog(const std::string& line, double seconds) const {
    return eventually(seconds, [&] { return log().find(line) != std::string::npos; });
}

std::vector<fs::path> Program::recordings() const {
    std::vector<fs::path> found;
    for (const fs::path& file :
         filesBelow(home(), [](const fs::path& each) { return each.filename() == "recording.mp4"; }))
        found.push_back(file.parent_path());
    return found;
}

std::vector<fs::path> Program::films() const {
    return filesBelow(home(), [](const fs::path& file) {
        return file.parent_path().filename() == "Films" && file.extension() == ".mp4";
    });
}

Program::Shown Program::shown() {
    Shown all;
    QLocalSocket socket;
    socket.connectToServer(QString::fromStdString((folder / "runtime/inspect").string()));
    if (!socket.waitForConnected(1000)) return all;
    QByteArray answer;
    // It answers when its main thread comes to it.
    while (socket.waitForReadyRead(20000))
        answer += socket.readAll();
    answer += socket.readAll();
    const QJsonObject told = QJsonDocument::fromJson(answer).object();
    for (const QJsonValue& stall : told[QStringLiteral("stalls")].toArray())
        stalled.append(stall);
    keysHeard = all.keys = told[QStringLiteral("keys")].toInt();
    buttonsHeard = all.buttons = told[QStringLiteral("buttons")].toInt();
    for (const QJsonValue& window : told[QStringLiteral("windows")].toArray())
        all.windows.push_back(window.toObject());
    for (const QJsonValue& value : told[QStringLiteral("items")].toArray()) {
        const QJsonObject item = value.toObject();
        const auto text = [&item](const char* key) { return item[QLatin1String(key)].toString(); };
        const auto number = [&item](const char* key) { return item[QLatin1String(key)].toDouble(); };
        const auto flag = [&item](const char* key) { return item[QLatin1String(key)].toBool(); };
        all.items.push_back({text("window"), text("type"), text("role"), text("name"), text("description"),
                             text("object"), text("value"),
                             QRectF(number("x"), number("y"), number("width"), number("height")),
                             flag("enabled"), flag("focused"), flag("checked")});
    }
    return all;
}

bool Program::windowShown(const QString& title) {
    const Shown all = shown();
    return std::any_of(all.windows.begin(), all.windows.end(), [&](const QJsonObject& window) {
        return window[QStringLiteral("title")].toString() == title;
    });
}

std::optional<Program::Item> Program::find(const QString& what, const Which& which, double seconds) {
    std::optional<Item> last;
    Shown all;
    const bool found = eventually(seconds, [&] {
        all = shown();
        std::optional<Item> now;
        for (const Item& item : all.items)
            if (which(item)) now = item;
        // What still moves is not where it was by the time the pointer is there.
        const bool still = now && last && now->area == last->area && now->enabled;
        last = now;
        return still;
    });
    if (found) return last;
    std::ostringstream words;
    words << "not found: " << what.toStdString() << (last ? " (it moves, or is disabled)" : "")
          << "\nshown:\n";
    for (const Item& item : all.items)
        words << "  " << item.type.toStdString() << " " << item.role.toStdString() << " '"
              << item.name.toStdString() << "' " << item.object.toStdString()
              << (item.enabled ? "" : " disabled") << (item.focused ? " focused" : "") << "\n";
    vain = words.str() + "log:\n" + log() + "said:\n" + said();
    return std::nullopt;
}

std::optional<Program::Item> Program::named(const QString& name, const QString& role) {
    return find(name, [&](const Item& item) {
        return item.name == name &&
               (role.isEmpty() ? item.role != QLatin1String("StaticText") : item.role == role);
    });
}

std::optional<Program::Item> Program::object(const QString& name) {
    return find(name, [&](const Item& item) { return item.object == name; });
}

bool Program::gone(const Which& which, double seconds) {
    return eventually(seconds, [&] {
        const Shown all = shown();
        return !all.windows.empty() && std::none_of(all.items.begin(), all.items.end(), which);
    });
}

bool Program::click(const std::optional<Item>& item) {
    return item && clickAt(item->middle());
}

bool Program::clickAt(const QPointF& at) {
    session.movePointer(static_cast<int>(at.x()), static_cast<int>(at.y()));
    shown();
    session.click(1);
    rest(0, 1);
    return true;
}

void Program::drag(const QPointF& from, const QPointF& to) {
    session.movePointer(static_cast<int>(from.x()), static_cast<int>(from.y()));
    session.press(1);
    constexpr int steps = 8;
    for (int i = 1; i <= steps; ++i) {
        const QPointF at = from + (to - from) * i / steps;
        session.movePointer(static_cast<int>(at.x()), static_cast<int>(at.y()));
        rest(0, 0);
    }
    session.release(1);
    rest(0, 1);
}

void Program::key(const std::vector<std::uint32_t>& keysyms) {
    shown();
    session.typeKeys(keysyms);
    rest(keysyms == Keys::hotKey ? 0 : static_cast<int>(keysyms.size()), 0);
}

std::optional<Program::Item> Program::focused() {
    std::optional<Item> found;
    for (const Item& item : shown().items)
        if (item.focused) found = item; // the innermost is drawn last
    return found;
}

bool Program::tabTo(const QString& what, const Which& which) {
    for (int i = 0; i < 150; ++i) {
        const std::optional<Item> at = focused();
        if (at && which(*at)) return true;
        key({Keys::tab});
    }
    find(
        what + QStringLiteral(" by Tab"), [&](const Item& item) { return item.focused && which(item); }, 0.1);
    return false;
}

void Program::rest(int keys, int buttons) {
    session.sync();
    const int wantedKeys = keysHeard + keys, wantedButtons = buttonsHeard + buttons;
    eventually(5, [&] {
        const Shown now = shown();
        return now.keys >= wantedKeys && now.buttons >= wantedButtons;
    });
}
