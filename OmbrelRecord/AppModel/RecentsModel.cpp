#include "OmbrelRecord/AppModel/RecentsModel.h"

#include "OmbrelRecord/AppModel/Thumbnails.h"

#include <QtCore/QDateTime>
#include <algorithm>
#include <chrono>

namespace OmbrelRecord {

namespace {

QString text(const std::filesystem::path& path) {
    return QString::fromStdString(path.string());
}

QDateTime dateOf(const Recording& recording) {
    if (recording.date == Recording::distantPast) return {};
    using std::chrono::milliseconds;
    return QDateTime::fromMSecsSinceEpoch(
        std::chrono::duration_cast<milliseconds>(recording.date.time_since_epoch()).count());
}

} // namespace

RecentsModel::RecentsModel(Thumbnails* thumbnails, QObject* parent) :
    QAbstractListModel(parent), thumbnails(thumbnails) {
    if (!thumbnails) return;
    connect(thumbnails, &Thumbnails::ready, this, [this](const QString& video) {
        for (std::size_t row = 0; row < listed.size(); ++row) {
            if (text(listed[row].video()) != video) continue;
            const QModelIndex changed = index(static_cast<int>(row));
            Q_EMIT dataChanged(changed, changed, {durationRole, stillRole});
        }
    });
}

void RecentsModel::setRecordings(std::vector<Recording> recordings) {
    // A view that is being looked at does not start over for nothing.
    if (recordings == listed && lookedUp) return;
    lookedUp = true;
    beginResetModel();
    listed = std::move(recordings);
    endResetModel();
    Q_EMIT countChanged();
}

QImage RecentsModel::still(const QString& name) const {
    if (!thumbnails) return {};
    const auto found = std::find_if(listed.begin(), listed.end(), [&](const Recording& recording) {
        return text(recording.folder.filename()) == name;
    });
    if (found == listed.end()) return {};
    const Thumbnails::Facts* facts = thumbnails->facts(found->video());
    return facts ? facts->still : QImage();
}

int RecentsModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : count();
}

QVariant RecentsModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || index.row() >= count()) return {};
    const Recording& recording = listed[static_cast<std::size_t>(index.row())];
    const auto facts = [&] { return thumbnails ? thumbnails->facts(recording.video()) : nullptr; };
    switch (role) {
    case Qt::DisplayRole:
    case nameRole:
        return text(recording.folder.filename());
    case folderRole:
        return text(recording.folder);
    case videoRole:
        return text(recording.video());
    case dateRole:
        return dateOf(recording);
    case durationRole: {
        const Thumbnails::Facts* known = facts();
        return known ? known->duration : 0.0;
    }
    case stillRole: {
        const Thumbnails::Facts* known = facts();
        return known && !known->still.isNull() ? QStringLiteral("still/") + text(recording.folder.filename())
                                               : QString();
    }
    default:
        return {};
    }
}

QHash<int, QByteArray> RecentsModel::roleNames() const {
    return {{nameRole, "name"}, {folderRole, "folder"},     {videoRole, "video"},
            {dateRole, "date"}, {durationRole, "duration"}, {stillRole, "still"}};
}

} // namespace OmbrelRecord
