#pragma once

#include "OmbrelRecord/AppModel/SerialQueue.h"
#include "OmbrelRecord/EditorModel/EditorModel.h"
#include "OmbrelRecord/EditorModel/EditorParts.h"
#include "RecordCore/Media/MediaBackend.h"

#include <QtCore/QObject>
#include <atomic>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace OmbrelRecord {

/// Opens recordings for editing without keeping the main thread waiting: a video whose activity is not known
/// is decoded whole, on a thread of the object's own. Main thread; what still goes on when the object goes is
/// given up, and nothing is called any more.
class EditorLoader : public QObject {
    Q_OBJECT

public:
    using Progress = std::function<void(double)>;
    /// The model, or none and what went wrong.
    using Done = std::function<void(std::unique_ptr<EditorModel> model, const std::string& failure)>;

    /// `media` must outlive the object.
    EditorLoader(const RecordCore::MediaBackend& media, EditorParts parts, QObject* parent = nullptr);
    ~EditorLoader() override;

    /// `progress` (0…1) and `done` are called on the main thread, later. A recording that is still being
    /// opened is given up for this one.
    void load(const std::filesystem::path& video, std::optional<RecordCore::InputLog> log,
              const std::filesystem::path& folder, Progress progress, Done done);

    /// Gives up the recording that is being opened; nothing more is called for it.
    void cancel();

private:
    const RecordCore::MediaBackend& media;
    EditorParts parts;
    std::shared_ptr<std::atomic<bool>> cancelled; ///< of the recording being opened
    SerialQueue queue;
};

} // namespace OmbrelRecord
