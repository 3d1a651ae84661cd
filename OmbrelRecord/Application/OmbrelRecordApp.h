#pragma once

#include "OmbrelRecord/AppModel/AppModel.h"
#include "OmbrelRecord/RecordingHUD/PanelPlacement.h"

#include <QtCore/QObject>
#include <QtCore/QPointer>
#include <QtCore/QSettings>
#include <QtCore/QUrl>
#include <QtQml/QQmlComponent>
#include <QtQml/QQmlEngine>
#include <QtQuick/QQuickWindow>
#include <functional>
#include <memory>
#include <string>
#include <vector>

class QLocale;

namespace OmbrelRecord {

class Theme;

/// The windowed application: QML engine, fonts and windows over the models. Main thread.
class OmbrelRecordApp : public QObject {
    Q_OBJECT

public:
    /// Why there can be no windows, for the user; empty when there can. Before the QGuiApplication is made,
    /// which ends the process where it finds no display.
    static std::string missingDisplay();
    /// Called once, before the QGuiApplication is made: what it and Qt Quick must know from the beginning.
    static void prepare();
    /// The interface in the language of a locale where there is a translation, else in English. `dress` takes
    /// the desktop's.
    static void translate(const QLocale& locale);
    class Views;
    /// Called once, when there is a QGuiApplication: its fonts, and how windows are drawn here. Attends to
    /// views that are being read.
    static void dress(Views* views = nullptr);
    /// Makes an engine able to load our views.
    static void prepare(QQmlEngine& engine);

    /// The engine's theme; null when our module cannot be loaded.
    static Theme* theme(QQmlEngine& engine);
    /// The file of one of our QML types.
    static QUrl view(const QString& type);

    /// An engine that has begun to read what the main window is made of, on a thread of its own: meanwhile
    /// the caller can prepare the rest. Needs the QGuiApplication.
    class Views {
    public:
        Views();
        /// Modules that the reading came upon are set up by the main thread, and it waits until that happens:
        /// to be called now and then where there is other work in between.
        void attend();

    private:
        friend class OmbrelRecordApp;
        QQmlEngine engine;
        std::vector<std::unique_ptr<QQmlComponent>> ahead;
    };

    /// `views`, `model` and `settings` outlive the object; settings may be none.
    OmbrelRecordApp(Views& views, AppModel& model, QSettings* settings, QObject* parent = nullptr);
    ~OmbrelRecordApp() override;

    /// Opens the main window, or shows the one there is. False when it cannot be made.
    bool openMainWindow();
    /// Calls once the main window has drawn its first frame; half a second after this where it draws none, as
    /// on a workspace that is not shown. After `openMainWindow`.
    void whenShown(std::function<void()> work);
    /// The application was started again: its window comes to the front. While a recording runs whose panel
    /// had to hide, this is the way to end it that is always there.
    void startedAgain(const QString& file = {});

    QQuickWindow* mainWindow() const { return window; }
    /// The panel of a running recording; null when there is none, also because it had to hide.
    QQuickWindow* recordingPanel() const { return panel; }
    QQuickWindow* countdownPanel() const { return counter; }

private Q_SLOTS:
    void quit();

private:
    QQuickWindow* make(const QString& type);
    static void retire(QPointer<QQuickWindow>& old);
    void countdownChanged();
    void flowChanged();
    void questionChanged();
    std::optional<QRect> panelPlace(QSize size) const;
    void restore();
    void remember();

    AppModel& model;
    QSettings* settings;
    Views& views;
    QQmlEngine& engine;
    QPointer<QQuickWindow> window;
    QPointer<QQuickWindow> counter;
    QPointer<QQuickWindow> panel;
    QPointer<QQuickWindow> question;
    std::unique_ptr<QObject> tray;
};

} // namespace OmbrelRecord
