#pragma once

#include "OmbrelRecord/EditorModel/FrameGrabber.h"

#include <QtCore/QCache>
#include <QtCore/QSet>

namespace OmbrelRecord {

/// The small pictures along a timeline. They stand at fixed moments, multiples of a distance that doubles
/// from level to level, so that scrolling never changes a picture. Decoded when they come into view, on a
/// thread of their own; a bounded number is kept. Main thread.
class Filmstrip : public QObject {
    Q_OBJECT

public:
    /// `media` must outlive the object and the disposal. Pictures are `height` pixels high.
    Filmstrip(const RecordCore::MediaBackend& media, const std::filesystem::path& video, double duration,
              int height, Disposal* disposal = nullptr, QObject* parent = nullptr);

    /// The level whose pictures stand at most `seconds` apart (the finest where none does), and how far apart
    /// they stand.
    static int levelFor(double seconds);
    static double distance(int level);

    /// The picture of a slot; null while it is not decoded yet.
    const QImage* picture(int level, qint64 slot) const;
    /// Whether all of these slots are there, but for those that cannot be decoded.
    bool complete(int level, qint64 first, qint64 last) const;
    int pictureHeight() const { return height; }
    /// A picture of another level that stands near: better than none.
    const QImage* standIn(int level, qint64 slot) const;

    /// The slots that show now. Those a little to either side are decoded after them.
    void show(int level, qint64 first, qint64 last);

Q_SIGNALS:
    /// A picture of the slots asked for last has come.
    void changed();

private:
    static quint64 key(int level, qint64 slot);

    double duration;
    int height;
    QCache<quint64, QImage> pictures;
    QSet<quint64> unreadable;
    quint64 shownFirst = 0;
    quint64 shownLast = 0;
    FrameGrabber grabber;
};

} // namespace OmbrelRecord
