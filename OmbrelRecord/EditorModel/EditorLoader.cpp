#include "OmbrelRecord/EditorModel/EditorLoader.h"

#include "RecordCore/Model/RecordingError.h"

#include <QtCore/QMetaObject>

namespace OmbrelRecord {

EditorLoader::EditorLoader(const RecordCore::MediaBackend& media, EditorParts parts, QObject* parent) :
    QObject(parent), media(media), parts(std::move(parts)) {
    this->parts.media = &media;
}

EditorLoader::~EditorLoader() {
    cancel();
}

void EditorLoader::cancel() {
    if (cancelled) *cancelled = true;
}

void EditorLoader::load(const std::filesystem::path& video, std::optional<RecordCore::InputLog> log,
                        const std::filesystem::path& folder, Progress progress, Done done) {
    cancel();
    cancelled = std::make_shared<std::atomic<bool>>(false);
    queue.post([this, video, folder, progress = std::move(progress), done = std::move(done),
                given = cancelled, log = std::move(log)]() mutable {
        const auto onMain = [this, &given](auto work) {
            QMetaObject::invokeMethod(this, [given, work = std::move(work)]() mutable {
                if (!*given) work();
            });
        };
        auto recording = std::make_shared<std::optional<OpenedRecording>>();
        std::string failure;
        int shown = -1;
        try {
            *recording = OpenedRecording::open(media, video, std::move(log), folder, [&](double share) {
                if (*given) throw RecordCore::RecordingError("cancelled");
                // A recording has thousands of frames; the message changes a hundred times.
                const int percent = static_cast<int>(share * 100);
                if (percent == shown) return;
                shown = percent;
                onMain([progress, share] { progress(share); });
            });
        } catch (const std::exception& error) {
            failure = error.what();
        }
        onMain([this, recording, failure, done = std::move(done)] {
            if (*recording)
                done(std::make_unique<EditorModel>(std::move(**recording), parts), {});
            else
                done(nullptr, failure);
        });
    });
}

} // namespace OmbrelRecord
