#pragma once

#include "OmbrelRecord/AppModel/Recording.h"

#include <QtCore/QAbstractListModel>
#include <QtGui/QImage>
#include <vector>

namespace OmbrelRecord {

class Thumbnails;

/// The recent recordings, newest first, as a list for views. Main thread.
class RecentsModel : public QAbstractListModel {
    Q_OBJECT
    Q_PROPERTY(int count READ count NOTIFY countChanged)
    /// Whether the recordings have been looked up; until then there are none here.
    Q_PROPERTY(bool listed READ isListed NOTIFY countChanged)

public:
    /// Names in views: name, folder, video, date, duration, still.
    enum Role {
        nameRole = Qt::UserRole + 1,
        folderRole, ///< the folder's path; what `AppModel::open` and `trash` want
        videoRole,
        dateRole,     ///< QDateTime; invalid when it is not known
        durationRole, ///< seconds; 0 as long as it is not known
        stillRole,    ///< what `AppModel::image` calls the still; empty as long as there is none
    };
    Q_ENUM(Role)

    /// `thumbnails` may be none; it outlives the object.
    explicit RecentsModel(Thumbnails* thumbnails, QObject* parent = nullptr);

    const std::vector<Recording>& recordings() const { return listed; }
    void setRecordings(std::vector<Recording> recordings);
    bool isListed() const { return lookedUp; }
    int count() const { return static_cast<int>(listed.size()); }

    /// The still of the recording of that folder name; null when there is none.
    QImage still(const QString& name) const;

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

Q_SIGNALS:
    void countChanged();

private:
    Thumbnails* thumbnails;
    std::vector<Recording> listed;
    bool lookedUp = false;
};

} // namespace OmbrelRecord
