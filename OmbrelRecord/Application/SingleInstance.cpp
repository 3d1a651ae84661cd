#include "OmbrelRecord/Application/SingleInstance.h"

#include <QtCore/QDir>
#include <QtCore/QStandardPaths>
#include <QtNetwork/QLocalSocket>
#include <unistd.h>
#include <utility>

namespace OmbrelRecord {

namespace {

constexpr int patience = 500; // milliseconds, twice

} // namespace

SingleInstance::SingleInstance(QString place, QObject* parent) : QObject(parent), place(std::move(place)) {
    server.setSocketOptions(QLocalServer::UserAccessOption);
    connect(&server, &QLocalServer::newConnection, this, [this] {
        while (QLocalSocket* other = server.nextPendingConnection()) {
            // That somebody called says it all.
            other->write("here\n");
            other->flush();
            connect(other, &QLocalSocket::disconnected, other, &QObject::deleteLater);
            Q_EMIT startedAgain();
        }
    });
}

QString SingleInstance::standardPlace() {
    const QString runtime = qEnvironmentVariable("XDG_RUNTIME_DIR");
    // A session of its own has a display of its own: two of them can record at the same time.
    QString session = qEnvironmentVariable("WAYLAND_DISPLAY", qEnvironmentVariable("DISPLAY"));
    session.replace(QLatin1Char('/'), QLatin1Char('-'));
    const QString name = QStringLiteral("ombrel-record%1.socket").arg(session);
    if (!runtime.isEmpty() && QDir(runtime).exists()) return QDir(runtime).filePath(name);
    return QDir::temp().filePath(QStringLiteral("%1.%2").arg(name).arg(getuid()));
}

bool SingleInstance::tellOther() {
    QLocalSocket socket;
    socket.connectToServer(place);
    // One that hangs does not answer; then the user is better served by a second one.
    return socket.waitForConnected(patience) &&
           (socket.bytesAvailable() > 0 || socket.waitForReadyRead(patience));
}

bool SingleInstance::claim() {
    // Asked first: listening would quietly take the socket's name away from the other.
    if (tellOther()) return false;
    // What a crash left behind.
    QLocalServer::removeServer(place);
    server.listen(place);
    return true;
}

} // namespace OmbrelRecord
