#pragma once

#include <QtCore/QSize>
#include <QtCore/QString>
#include <QtCore/QVariantMap>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

class QQuickItem;

namespace OmbrelRecord {

/// Pictures of the interface, made off screen. Needs a QGuiApplication (the "offscreen" platform will do) and
/// its event loop, which it turns itself. Main thread.
class Snapshot {
public:
    /// One view to be shown.
    struct View {
        QString name;           ///< of the picture's file, without its ending
        QSize size;             ///< in points
        QString type;           ///< a QML type of our module, the root of the view
        QVariantMap properties; ///< what it is made with
        /// Brings it into the state that is to be seen; called when it stands in its window. May be empty.
        std::function<void(QQuickItem&)> arrange;
        /// Whether everything is there that is to be seen (pictures that load, for instance); asked again and
        /// again until it is, for at most ten seconds. May be empty.
        std::function<bool(QQuickItem&)> ready;
    };

    /// Writes a PNG for every view into a folder, which it makes: NAME.png in the dark scheme, light-NAME.png
    /// in the light one. Returns what went wrong, one line each.
    static std::vector<std::string> write(const std::vector<View>& views,
                                          const std::filesystem::path& folder);
};

} // namespace OmbrelRecord
