#pragma once

#include "RecordCore/Capture/CameraRecorder.h"
#include "RecordCore/Capture/CameraStream.h"
#include "RecordCore/Capture/InputRecorder.h"
#include "RecordCore/Capture/RecordingJournal.h"
#include "RecordCore/Capture/ScreenRecorder.h"
#include "RecordCore/Model/InputLog.h"
#include "RecordCore/Model/RecordingFiles.h"

#include <functional>
#include <memory>
#include <string>

namespace RecordCore {

/// One recording from start to stop: screen with sound, camera and input into a folder, with the journal
/// that makes it survive a crash. For one thread, but for `onStop`.
class RecordingSession {
public:
    struct Setup {
        ScreenRecorder::Setup screen;
        bool camera = false;
        std::string cameraID; ///< empty: the default one
    };

    struct Services {
        ScreenRecorder::Services screen;
        const CameraBackend* cameras = nullptr; ///< none: there is no camera service
    };

    /// `folder` is created, for its owner only, when it does not exist.
    RecordingSession(std::filesystem::path folder, Setup setup, Services services);
    ~RecordingSession();

    /// Starts everything. Throws RecordingError; nothing is left in the folder then, and a folder that was
    /// created is gone again. A recording that the
    /// folder already holds is an error (one that was cut off is made whole first), so that none is ever
    /// lost. A camera that does not start is no error: `problem` tells it.
    void start();

    /// Ends everything and writes input.json and activity.json. Throws RecordingError when no picture came or
    /// the files cannot be written.
    InputLog stop();

    /// What the user should know although the recording goes on; empty: nothing.
    const std::string& problem() const { return trouble; }
    ScreenRecorder& screen() { return *recorder; }

    /// See ScreenRecorder::onStop. Set before `start`.
    std::function<void(const std::string& message)> onStop;

private:
    void startCamera();
    void stopCamera();
    void discard();

    RecordingFiles files;
    Setup setup;
    Services services;
    std::string trouble;
    bool madeFolder = false;
    std::unique_ptr<RecordingJournal> journal;
    std::unique_ptr<CameraRecorder> camera;
    bool cameraNoted = false; ///< in the journal; the screen recorder's encoding thread's
    std::unique_ptr<ScreenRecorder> recorder;
    std::unique_ptr<InputRecorder> input;
};

} // namespace RecordCore
