#pragma once

#include "OmbrelRecord/AppModel/SerialQueue.h"
#include "RecordCore/Media/MediaBackend.h"

#include <QtCore/QCache>
#include <QtCore/QObject>
#include <QtCore/QSet>
#include <QtCore/QString>
#include <QtGui/QImage>
#include <atomic>
#include <filesystem>

namespace OmbrelRecord {

/// The stills and lengths that the list of recordings shows. Both are made on a thread of the object's own,
/// the latest asked for first, and kept: stills in memory and, when there is a folder for them, on the disk.
/// Main thread.
class Thumbnails : public QObject {
    Q_OBJECT

public:
    struct Facts {
        QImage still;        ///< at most 320 × 200; null when the video cannot be read
        double duration = 0; ///< seconds
    };

    /// `media` must outlive the object. `folder` may be empty: nothing is kept on the disk then.
    Thumbnails(const RecordCore::MediaBackend& media, std::filesystem::path folder,
               QObject* parent = nullptr);
    ~Thumbnails() override;

    /// What is known of a video. When that is nothing yet it is found out, and `ready` tells when it is.
    const Facts* facts(const std::filesystem::path& video);

    /// Makes the facts of a video; blocks. Any thread. Throws RecordingError.
    static Facts make(const RecordCore::MediaBackend& media, const std::filesystem::path& video);

Q_SIGNALS:
    void ready(const QString& video);

private:
    void found(const QString& key, const QString& video, const Facts& facts);

    const RecordCore::MediaBackend& media;
    std::filesystem::path folder;
    QCache<QString, Facts> known{200};
    QSet<QString> asked;
    std::atomic<bool> ending{false};
    SerialQueue queue;
};

} // namespace OmbrelRecord
