#pragma once

#include "OmbrelRecord/AppModel/Desktop.h"
#include "OmbrelRecord/AppModel/Disposal.h"
#include "RecordCore/Media/MediaBackend.h"
#include "RecordCore/Model/ExportOptions.h"
#include "RecordCore/Planning/Plan.h"

#include <atomic>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace OmbrelRecord {

struct OpenedRecording;
class PreviewPicture;

/// The film as the editor shows it. Main thread.
class EditorPreview {
public:
    virtual ~EditorPreview() = default;

    /// Shows the film of this project and plan from now on; `shown` is called on the main thread once it
    /// does, also when it could not be prepared. The player goes on where it is.
    virtual void update(const RecordCore::Project& project, const RecordCore::Plan& plan,
                        std::function<void()> shown) = 0;

    virtual void play() = 0;
    virtual void pause() = 0;
    virtual void seek(double outputSeconds) = 0;

    /// What it shows, for a view to draw; null when it shows nothing. Lives as long as the preview.
    virtual PreviewPicture* picture() { return nullptr; }

    /// Called on the main thread while it plays, and when it stops at the end.
    std::function<void(double outputSeconds)> onTime;
    std::function<void(bool playing)> onPlaying;
};

/// What is exported, and where to.
struct ExportJob {
    std::filesystem::path source;
    RecordCore::Plan plan;
    RecordCore::ExportOptions options;
    std::filesystem::path destination;
};

/// What an editor works with; everything outlives it.
struct EditorParts {
    /// Where pictures and sound for the views come from; without it they show none.
    const RecordCore::MediaBackend* media = nullptr;
    /// Where the editor's threads come to their end when it is left; without it the main thread waits for
    /// them.
    Disposal* disposal = nullptr;
    /// Seconds of a clock that never goes back.
    std::function<double()> now;
    Desktop* desktop = nullptr;
    /// Where what can be made anew is kept for the next time; empty: nowhere.
    std::filesystem::path cache;
    /// Where films are exported to.
    std::filesystem::path films;
    /// Writes a film; blocks, on a thread of the editor's. Gives up when `cancel` turns true. Throws.
    std::function<void(const ExportJob& job, const std::function<void(double)>& progress,
                       const std::atomic<bool>& cancel)>
        exportFilm;
    /// Recognises the words of a recording; blocks, on a thread of the editor's. An empty language is the
    /// user's. Throws with a message for the user.
    std::function<std::vector<RecordCore::CaptionWord>(
        const std::filesystem::path& video, const std::string& language,
        const std::function<void(double)>& progress, const std::atomic<bool>& cancel)>
        recognizeWords;
    /// The same words, corrected by hand, with the times at which the recording has them; as
    /// `recognizeWords`.
    std::function<std::vector<RecordCore::CaptionWord>(
        const std::filesystem::path& video, std::vector<RecordCore::CaptionWord> words,
        const std::string& language, const std::function<void(double)>& progress,
        const std::atomic<bool>& cancel)>
        alignWords;
    /// Makes the preview; may be empty: then there is none.
    std::function<std::unique_ptr<EditorPreview>(const OpenedRecording& recording)> makePreview;
};

} // namespace OmbrelRecord
