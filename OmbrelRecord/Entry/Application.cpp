#include "OmbrelRecord/AppModel/Diag.h"
#include "OmbrelRecord/Application/OmbrelRecordApp.h"
#include "OmbrelRecord/Entry/AppSession.h"
#include "OmbrelRecord/Entry/Entry.h"
#include "OmbrelRecord/Entry/Jobs.h"

#include <QtCore/QSysInfo>
#include <QtCore/QTimer>
#include <QtGui/QGuiApplication>
#include <QtQml/QQmlApplicationEngine>
#include <cstdio>
#include <fmt/format.h>

namespace OmbrelRecord {

namespace {

/// The QML type that holds all windows; it is made with the model as its property `app`.
constexpr auto rootView = "MainWindow";

} // namespace

int Entry::headless(int argc, char** argv, const std::function<void()>& job) {
    // No windows, and no display needed; what captures the screen has connections of its own.
    qputenv("QT_QPA_PLATFORM", "offscreen");
    OmbrelRecordApp::prepare();
    QGuiApplication application(argc, argv);
    OmbrelRecordApp::dress();
    QTimer::singleShot(0, [&job] {
        job();
        QCoreApplication::exit(0);
    });
    return QCoreApplication::exec();
}

int Jobs::application(int argc, char** argv) {
    OmbrelRecordApp::prepare();
    QGuiApplication application(argc, argv);
    OmbrelRecordApp::dress();
    // While a recording runs there is no window but its panel.
    QGuiApplication::setQuitOnLastWindowClosed(false);
    Diag::install(OMBREL_VERSION, QSysInfo::prettyProductName().toStdString());
    AppSession session;
    QQmlApplicationEngine engine;
    OmbrelRecordApp::prepare(engine);
    QObject::connect(&engine, &QQmlEngine::quit, &application, &QCoreApplication::quit);
    engine.setInitialProperties({{QStringLiteral("app"), QVariant::fromValue(&session.model())}});
    engine.load(OmbrelRecordApp::view(QString::fromLatin1(rootView)));
    if (engine.rootObjects().isEmpty()) {
        fmt::print(stderr, "ombrel-record: the windows could not be opened\n");
        return 1;
    }
    session.model().begin();
    session.model().showMain();
    const int status = QCoreApplication::exec();
    Diag::flush();
    return status;
}

} // namespace OmbrelRecord
