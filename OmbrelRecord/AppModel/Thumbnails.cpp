#include "OmbrelRecord/AppModel/Thumbnails.h"

#include "OmbrelRecord/AppModel/FileKey.h"
#include "OmbrelRecord/AppModel/Images.h"
#include "RecordCore/Media/FrameCursor.h"

#include <QtCore/QMetaObject>
#include <algorithm>

namespace OmbrelRecord {

namespace {

constexpr QSize largest(320, 200);
/// The first moments often still show how the recording was begun.
constexpr double usualMoment = 1; ///< seconds

} // namespace

Thumbnails::Thumbnails(const RecordCore::MediaBackend& media, std::filesystem::path folder, QObject* parent) :
    QObject(parent), media(media), folder(std::move(folder)) {}

Thumbnails::~Thumbnails() {
    ending = true; // what still waits is passed over
}

Thumbnails::Facts Thumbnails::make(const RecordCore::MediaBackend& media,
                                   const std::filesystem::path& video) {
    RecordCore::FrameCursor frames(media.openVideo(video, 1));
    Facts facts;
    facts.duration = frames.info().duration;
    if (const RecordCore::VideoFrame* frame = frames.at(std::min(usualMoment, facts.duration / 2)))
        facts.still = imageOf(frame->picture, largest);
    return facts;
}

const Thumbnails::Facts* Thumbnails::facts(const std::filesystem::path& video) {
    const QString name = QString::fromStdString(video.string());
    const QString key = fileKey(video);
    if (const Facts* facts = known.object(key)) return facts;
    if (asked.contains(key)) return nullptr;
    asked.insert(key);
    queue.post([this, video, name, key] {
        if (ending) return;
        const QString kept = folder.empty()
                                 ? QString()
                                 : QString::fromStdString((folder / (key.toStdString() + ".png")).string());
        Facts facts;
        if (!kept.isEmpty() && facts.still.load(kept)) {
            facts.duration = facts.still.text(QStringLiteral("duration")).toDouble();
        } else {
            try {
                facts = make(media, video);
                if (!kept.isEmpty()) {
                    std::error_code ignored;
                    std::filesystem::create_directories(folder, ignored);
                    facts.still.setText(QStringLiteral("duration"), QString::number(facts.duration, 'g', 17));
                    facts.still.save(kept);
                }
            } catch (const std::exception&) {
                // A video that cannot be read has no still; the list shows it without one.
            }
        }
        QMetaObject::invokeMethod(this, [this, key, name, facts] { found(key, name, facts); });
    });
    return nullptr;
}

void Thumbnails::found(const QString& key, const QString& video, const Facts& facts) {
    asked.remove(key);
    known.insert(key, new Facts(facts));
    Q_EMIT ready(video);
}

} // namespace OmbrelRecord
