#pragma once

#include "Tests/System/XSession.h"

#include <QtCore/QJsonArray>
#include <QtCore/QJsonObject>
#include <QtCore/QRectF>
#include <QtCore/QString>
#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

/// The application itself, as a program of its own with a home of its own on an X server of the test's, and
/// the hands that use it: real pointer and key events. Where things are it tells itself (OMBREL_INSPECT).
/// Every wait ends after a generous time; what it waited for in vain is told by `complaint`.
class Program {
public:
    struct Item {
        QString window, type, role, name, description, object, value;
        QRectF area; ///< pixels of the X screen
        bool enabled = false, focused = false, checked = false;
        QPointF middle() const { return area.center(); }
    };
    struct Shown {
        std::vector<QJsonObject> windows;
        std::vector<Item> items;
        int keys = 0, buttons = 0; ///< let go over its windows so far
    };
    using Which = std::function<bool(const Item&)>;

    /// `environment` is laid over the program's own.
    explicit Program(XSession& session, std::map<std::string, std::string> environment = {},
                     std::vector<std::string> arguments = {});

    bool running() { return process->running(); }
    /// Asks it to end and waits for it.
    void end() { process->terminate(); }

    std::filesystem::path home() const { return folder / "home"; }
    std::filesystem::path state() const { return folder / "state"; }
    /// What it printed, and what it wrote into its log.
    std::string said() const;
    std::string log() const;
    bool waitForLog(const std::string& line, double seconds = 60) const;
    /// The folders of recordings, the oldest first.
    std::vector<std::filesystem::path> recordings() const;
    std::vector<std::filesystem::path> films() const;

    /// What its windows show now; empty while it does not answer.
    Shown shown();
    bool windowShown(const QString& title);
    /// Everything that held up its main thread until now: [{ms, cpuMs, receiver, object, event}].
    const QJsonArray& stalls() const { return stalled; }

    /// Waits until something of that kind is shown and stands still. The last one drawn counts.
    std::optional<Item> find(const QString& what, const Which& which, double seconds = 60);
    std::optional<Item> named(const QString& name, const QString& role = {});
    std::optional<Item> object(const QString& name);
    bool gone(const Which& which, double seconds = 60);

    // With the mouse.
    bool click(const std::optional<Item>& item);
    bool clickAt(const QPointF& at);
    void drag(const QPointF& from, const QPointF& to);

    // With the keyboard.
    void key(const std::vector<std::uint32_t>& keysyms);
    /// Presses Tab until an item of that kind has the focus.
    bool tabTo(const QString& what, const Which& which);
    std::optional<Item> focused();

    /// What was waited for in vain, with what was shown then.
    const std::string& complaint() const { return vain; }

    static bool isNamed(const Item& item, const QString& name) { return item.name == name; }

private:
    /// Waits until it has heard of so many more keys and buttons, for a while at most: where it has not the
    /// focus, and of a hot key, it hears nothing.
    void rest(int keys, int buttons);

    XSession& session;
    TemporaryFolder folder;
    std::optional<ChildProcess> process;
    QJsonArray stalled;
    std::string vain;
    int keysHeard = 0, buttonsHeard = 0;
};

namespace Keys {
constexpr std::uint32_t super = 0xFFEB, alt = 0xFFE9, control = 0xFFE3, shift = 0xFFE1, tab = 0xFF09,
                        enter = 0xFF0D, escape = 0xFF1B, space = 0x20, home = 0xFF50, end = 0xFF57,
                        left = 0xFF51, up = 0xFF52, right = 0xFF53, down = 0xFF54, erase = 0xFFFF;
inline const std::vector<std::uint32_t> hotKey{super, alt, 'r'};
} // namespace Keys
