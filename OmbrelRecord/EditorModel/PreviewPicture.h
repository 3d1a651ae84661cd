#pragma once

#include "RecordCore/Model/NRect.h"

#include <QtCore/QObject>
#include <QtCore/QPointF>
#include <QtCore/QRectF>
#include <QtCore/QSize>
#include <QtGui/QImage>
#include <optional>

namespace OmbrelRecord {

/// What a preview shows at the moment, between the player that makes the pictures and the view that draws
/// them: the view says how large it is, the player hands over pictures of that size. Points of the picture
/// run from (0, 0) in its top left corner to (1, 1). Main thread.
class PreviewPicture : public QObject {
    Q_OBJECT

public:
    /// How the recording lies in the picture.
    struct Placement {
        QRectF window{0, 0, 1, 1};                            ///< of the recording, in points of the picture
        RecordCore::NRect view = RecordCore::NRect::full();   ///< what of the cropped recording it shows
        std::optional<RecordCore::NRect> crop = std::nullopt; ///< of the whole recording, when in force
    };

    using QObject::QObject;

    /// The picture, empty before the first one. Pixels are opaque; they stay as they are as long as a copy of
    /// the image is held.
    const QImage& image() const { return shown; }
    /// Width over height of the film, also before the first picture.
    double aspect() const { return filmAspect; }
    /// Output time of the picture.
    double seconds() const { return time; }
    /// False for one that stands in while the right one is being decoded.
    bool exact() const { return isExact; }
    const Placement& placement() const { return place; }

    /// The recording's point (normalised to the crop in force, as zooms are given) under a point of the
    /// picture, and back. Points outside the window go on in the same scale.
    QPointF recordingPoint(const QPointF& picture) const;
    QPointF picturePoint(const QPointF& recording) const;
    /// A point normalised to the crop in terms of the whole recording, and back.
    QPointF uncropped(const QPointF& recording) const;
    QPointF cropped(const QPointF& whole) const;

    /// For the view: the room there is for the picture, in device pixels; an empty size where it is not
    /// shown.
    void setViewSize(const QSize& pixels);
    QSize viewSize() const { return room; }

    // For the player.
    void show(const QImage& image, double seconds, bool exact, const Placement& placement);
    void setAspect(double aspect);

Q_SIGNALS:
    void changed();       ///< there is a new picture
    void placed();        ///< the recording lies elsewhere in the picture, or time has gone on
    void aspectChanged(); ///< the film has another shape
    void viewSizeChanged();

private:
    QImage shown;
    double filmAspect = 16.0 / 9;
    double time = 0;
    bool isExact = true;
    Placement place;
    QSize room;
};

} // namespace OmbrelRecord
