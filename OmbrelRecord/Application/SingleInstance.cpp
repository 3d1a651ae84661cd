#include "OmbrelRecord/Application/SingleInstance.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QStandardPaths>
#include <QtNetwork/QLocalSocket>
#include <unistd.h>
#include <utility>

namespace OmbrelRecord {

namespace {

constexpr int patience = 500; // milliseconds, twice
constexpr qint64 longestPath = 64 << 10;

} // namespace

SingleInstance::SingleInstance(QString place, QObject* parent) : QObject(parent), place(std::move(place)) {
    server.setSocketOptions(QLocalServer::UserAccessOption);
    connect(&server, &QLocalServer::newConnection, this, [this] {
        while (QLocalSocket* other = server.nextPendingConnection()) {
            other->write("here\n");
            other->flush();
            connect(other, &QLocalSocket::disconnected, other, &QObject::deleteLater);
            // The name of the file ends with a zero, which no name has in it.
            const auto take = [this, other] {
                const QByteArray said = other->peek(longestPath);
                if (const qsizetype end = said.indexOf('\0'); end >= 0) {
                    other->disconnectFromServer();
                    Q_EMIT startedAgain(QFile::decodeName(said.first(end)));
                }
            };
            connect(other, &QLocalSocket::readyRead, this, take);
            take();
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

bool SingleInstance::tellOther(const QString& file) {
    QLocalSocket socket;
    socket.connectToServer(place);
    // One that hangs does not answer; then the user is better served by a second one.
    if (!socket.waitForConnected(patience) ||
        !(socket.bytesAvailable() > 0 || socket.waitForReadyRead(patience)))
        return false;
    socket.write(QFile::encodeName(file).append('\0'));
    socket.waitForBytesWritten(patience);
    return true;
}

bool SingleInstance::claim(const QString& file) {
    // Asked first: listening would quietly take the socket's name away from the other.
    if (tellOther(file)) return false;
    // What a crash left behind.
    QLocalServer::removeServer(place);
    server.listen(place);
    return true;
}

} // namespace OmbrelRecord
