#include "OmbrelRecord/AppModel/FileKey.h"

#include <QtCore/QCryptographicHash>
#include <QtCore/QDateTime>
#include <QtCore/QFileInfo>

namespace OmbrelRecord {

QString fileKey(const std::filesystem::path& path) {
    const QFileInfo file(QString::fromStdString(path.string()));
    const QString text = QStringLiteral("%1 %2 %3")
                             .arg(file.absoluteFilePath())
                             .arg(file.size())
                             .arg(file.lastModified().toMSecsSinceEpoch());
    return QString::fromLatin1(QCryptographicHash::hash(text.toUtf8(), QCryptographicHash::Sha1).toHex());
}

} // namespace OmbrelRecord
