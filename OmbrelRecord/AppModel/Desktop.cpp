#include "OmbrelRecord/AppModel/Desktop.h"

#include "OmbrelRecord/AppModel/Library.h"

#include <QtCore/QList>
#include <QtCore/QMimeData>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QUrl>
#include <QtDBus/QDBusConnection>
#include <QtDBus/QDBusMessage>
#include <QtDBus/QDBusPendingCallWatcher>
#include <QtDBus/QDBusPendingReply>
#include <QtGui/QClipboard>
#include <QtGui/QDesktopServices>
#include <QtGui/QGuiApplication>

namespace OmbrelRecord {

namespace {

QUrl urlOf(const std::filesystem::path& file) {
    return QUrl::fromLocalFile(QString::fromStdString(std::filesystem::absolute(file).string()));
}

} // namespace

void SessionDesktop::reveal(const std::filesystem::path& file) {
    const QUrl folder = urlOf(file.parent_path());
    QDBusMessage call = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.FileManager1"), QStringLiteral("/org/freedesktop/FileManager1"),
        QStringLiteral("org.freedesktop.FileManager1"), QStringLiteral("ShowItems"));
    call << QStringList(urlOf(file).toString(QUrl::FullyEncoded)) << QString();
    // The file manager may have to be started first: the answer is not waited for.
    auto* watcher = new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(call));
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, [watcher, folder] {
        if (QDBusPendingReply<>(*watcher).isError()) QDesktopServices::openUrl(folder);
        watcher->deleteLater();
    });
}

void SessionDesktop::copyFile(const std::filesystem::path& file) {
    QClipboard* clipboard = QGuiApplication::clipboard();
    if (!clipboard) return;
    const QUrl url = urlOf(file);
    auto* data = new QMimeData;
    data->setUrls({url});
    // What file managers look for when a file is pasted.
    data->setData(QStringLiteral("x-special/gnome-copied-files"), "copy\n" + url.toEncoded());
    clipboard->setMimeData(data);
}

void SessionDesktop::trash(const std::filesystem::path& file) {
    moveToTrash(file);
}

} // namespace OmbrelRecord
