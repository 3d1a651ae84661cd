// The yardstick: a Qt Quick window with nothing in it, of the size and colour of the application's.

#include <QtGui/QGuiApplication>
#include <QtQml/QQmlApplicationEngine>
#include <QtQuick/QQuickWindow>

// Drawn as the application draws it where there is no graphics processor.
int main(int argc, char** argv) {
    const QGuiApplication application(argc, argv);
    if (!qEnvironmentVariableIsSet("QT_QUICK_BACKEND"))
        QQuickWindow::setSceneGraphBackend(QStringLiteral("software"));
    QQmlApplicationEngine engine;
    engine.loadData("import QtQuick\n"
                    "Window { width: 1320; height: 788; visible: true; color: '#0E0F13'; title: 'Empty' }\n");
    return engine.rootObjects().isEmpty() ? 1 : QGuiApplication::exec();
}
