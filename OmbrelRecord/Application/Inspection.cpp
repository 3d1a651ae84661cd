#include "OmbrelRecord/Application/Inspection.h"

#include "OmbrelRecord/Application/ItemTree.h"
#include "OmbrelRecord/Application/StallWatch.h"

#include <QtCore/QJsonDocument>
#include <QtNetwork/QLocalSocket>

namespace OmbrelRecord {

QString Inspection::wanted() {
    return qEnvironmentVariable("OMBREL_INSPECT");
}

Inspection::Inspection(const QString& socket) {
    server.setSocketOptions(QLocalServer::UserAccessOption);
    QObject::connect(&server, &QLocalServer::newConnection, &server, [this] {
        while (QLocalSocket* other = server.nextPendingConnection()) {
            QObject::connect(other, &QLocalSocket::disconnected, other, &QObject::deleteLater);
            QJsonObject told = ItemTree::shown();
            if (auto* watch = dynamic_cast<StallWatch*>(QCoreApplication::instance())) {
                watch->disregard();
                told[QStringLiteral("stalls")] = watch->take();
                told[QStringLiteral("keys")] = watch->keysHeard();
                told[QStringLiteral("buttons")] = watch->buttonsHeard();
            }
            other->write(QJsonDocument(told).toJson(QJsonDocument::Compact));
            other->disconnectFromServer();
        }
    });
    server.listen(socket);
}

} // namespace OmbrelRecord
