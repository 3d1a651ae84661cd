#include "OmbrelRecord/Theme/ColorScheme.h"

#include <QtCore/QEvent>
#include <QtDBus/QDBusConnection>
#include <QtDBus/QDBusMessage>
#include <QtDBus/QDBusPendingCallWatcher>
#include <QtDBus/QDBusPendingReply>
#include <QtGui/QGuiApplication>
#include <QtGui/QPalette>

namespace OmbrelRecord {

namespace {

const QString service = QStringLiteral("org.freedesktop.portal.Desktop");
const QString path = QStringLiteral("/org/freedesktop/portal/desktop");
const QString interface = QStringLiteral("org.freedesktop.portal.Settings");
const QString appearance = QStringLiteral("org.freedesktop.appearance");
const QString colorScheme = QStringLiteral("color-scheme");
const QString desktopInterface = QStringLiteral("org.gnome.desktop.interface");
const QString animations = QStringLiteral("enable-animations");

} // namespace

ColorScheme::ColorScheme(QObject* parent) : QObject(parent) {
    qApp->installEventFilter(this);
    withoutMotion = qEnvironmentVariableIntValue("OMBREL_REDUCED_MOTION") != 0;
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) return;
    bus.connect(service, path, interface, QStringLiteral("SettingChanged"), this,
                SLOT(settingChanged(QString, QString, QDBusVariant)));
    ask(appearance, colorScheme);
    ask(desktopInterface, animations);
}

bool ColorScheme::dark() const {
    if (preference != Preference::none) return preference == Preference::dark;
    const QPalette palette = QGuiApplication::palette();
    return palette.color(QPalette::Window).lightnessF() < palette.color(QPalette::WindowText).lightnessF();
}

bool ColorScheme::eventFilter(QObject* watched, QEvent* event) {
    if (watched == qApp && event->type() == QEvent::ApplicationPaletteChange) Q_EMIT changed();
    return QObject::eventFilter(watched, event);
}

void ColorScheme::ask(const QString& group, const QString& key) {
    QDBusMessage call = QDBusMessage::createMethodCall(service, path, interface, QStringLiteral("Read"));
    call << group << key;
    auto* watcher = new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(call), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher, group, key] {
        watcher->deleteLater();
        const QDBusPendingReply<QDBusVariant> reply = *watcher;
        if (!reply.isError()) take(group, key, reply.value().variant());
    });
}

void ColorScheme::settingChanged(const QString& group, const QString& key, const QDBusVariant& value) {
    take(group, key, value.variant());
}

void ColorScheme::take(const QString& group, const QString& key, QVariant value) {
    // Portals answer a variant in a variant.
    while (value.canConvert<QDBusVariant>())
        value = value.value<QDBusVariant>().variant();
    if (group == appearance && key == colorScheme) {
        const uint number = value.toUInt();
        preference = number == 1 ? Preference::dark : number == 2 ? Preference::light : Preference::none;
    } else if (group == desktopInterface && key == animations) {
        withoutMotion = !value.toBool();
    } else {
        return;
    }
    Q_EMIT changed();
}

} // namespace OmbrelRecord
