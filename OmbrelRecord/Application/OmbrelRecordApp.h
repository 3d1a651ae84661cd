#pragma once

class QQmlEngine;
class QUrl;
class QString;

namespace OmbrelRecord {

class Theme;

/// The windowed application: QML engine, fonts and windows over the models. Main thread.
class OmbrelRecordApp {
public:
    /// Called once, before the QGuiApplication is made: what it and Qt Quick must know from the beginning.
    static void prepare();
    /// Called once, when there is a QGuiApplication: its names, its fonts.
    static void dress();
    /// Makes an engine able to load our views.
    static void prepare(QQmlEngine& engine);

    /// The engine's theme; null when our module cannot be loaded.
    static Theme* theme(QQmlEngine& engine);

    /// The file of one of our QML types.
    static QUrl view(const QString& type);
};

} // namespace OmbrelRecord
