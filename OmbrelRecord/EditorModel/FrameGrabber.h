#pragma once

#include "OmbrelRecord/AppModel/Disposal.h"
#include "OmbrelRecord/AppModel/Mailbox.h"
#include "RecordCore/Media/MediaBackend.h"

#include <QtCore/QObject>
#include <QtGui/QImage>
#include <filesystem>
#include <memory>
#include <vector>

namespace OmbrelRecord {

/// Decodes single pictures of a video, small, on a thread of its own. Main thread.
class FrameGrabber : public QObject {
    Q_OBJECT

public:
    struct Wanted {
        quint64 key = 0; ///< the asker's own name for it
        double time = 0; ///< source seconds
        int height = 0;  ///< pixels; never enlarged
        /// A picture may be this many seconds too early where that spares decoding.
        double slack = 0;
    };

    /// `media` must outlive the object, and the disposal, where a picture in work may come to its end.
    FrameGrabber(const RecordCore::MediaBackend& media, const std::filesystem::path& video,
                 Disposal* disposal = nullptr, QObject* parent = nullptr);
    ~FrameGrabber() override;

    /// What is wanted now, the most urgent first; what was asked for before and is not among it is forgotten.
    void want(std::vector<Wanted> pictures);

Q_SIGNALS:
    /// `picture` is null where the video cannot be read.
    void grabbed(quint64 key, const QImage& picture);

private:
    class Work;

    Mailbox mailbox;
    std::shared_ptr<Work> work;
    Disposal* disposal;
};

} // namespace OmbrelRecord
