#include "OmbrelRecord/Application/OmbrelRecordApp.h"

#include "OmbrelRecord/Icons/IconSet.h"
#include "OmbrelRecord/Theme/Theme.h"

#include <QtCore/QDebug>
#include <QtCore/QUrl>
#include <QtCore/QtPlugin>
#include <QtGui/QGuiApplication>
#include <QtGui/QIcon>
#include <QtQml/QQmlComponent>
#include <QtQml/QQmlEngine>
#include <QtQml/QQmlExtensionPlugin>

Q_IMPORT_QML_PLUGIN(OmbrelRecordPlugin)

namespace OmbrelRecord {

void OmbrelRecordApp::prepare() {
    QCoreApplication::setOrganizationName(QStringLiteral("Ombrel Record"));
    QCoreApplication::setApplicationName(QStringLiteral("Ombrel Record"));
    QCoreApplication::setApplicationVersion(QStringLiteral(OMBREL_VERSION));
    QGuiApplication::setDesktopFileName(QStringLiteral("ombrel-record"));
    QGuiApplication::setHighDpiScaleFactorRoundingPolicy(Qt::HighDpiScaleFactorRoundingPolicy::PassThrough);
}

void OmbrelRecordApp::dress() {
    Theme::loadFonts();
    QFont font(QStringLiteral("Plus Jakarta Sans"));
    font.setPixelSize(13);
    font.setWeight(QFont::Medium);
    QGuiApplication::setFont(font);
    QGuiApplication::setWindowIcon(IconSet::application());
}

void OmbrelRecordApp::prepare(QQmlEngine& engine) {
    engine.addImportPath(QStringLiteral("qrc:/qt/qml"));
}

Theme* OmbrelRecordApp::theme(QQmlEngine& engine) {
    // The types of a module are known once something imports it.
    QQmlComponent component(&engine);
    component.setData("import QtQml\nimport OmbrelRecord\nQtObject {}", QUrl());
    if (component.isError()) qWarning() << component.errorString();
    return engine.singletonInstance<Theme*>(qmlTypeId("OmbrelRecord", 1, 0, "Theme"));
}

QUrl OmbrelRecordApp::view(const QString& type) {
    return QUrl(QStringLiteral("qrc:/qt/qml/OmbrelRecord/%1.qml").arg(type));
}

} // namespace OmbrelRecord
