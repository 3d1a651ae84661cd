#pragma once

#include "OmbrelRecord/AppModel/Desktop.h"
#include "OmbrelRecord/AppModel/Library.h"
#include "RecordCore/Capture/ScreenBackend.h"
#include "RecordCore/Capture/SoundStream.h"
#include "RecordCore/Model/InputLog.h"

#include <QtCore/QObject>
#include <QtCore/QSettings>
#include <QtGui/QImage>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace OmbrelRecord {

class EditorModel;
class Thumbnails;

// What the application's model works with. All of it belongs to the main thread: what takes long happens
// elsewhere, and every function given as `done` is called on the main thread, later, at most once. None is
// called any more once the object that was asked has gone.

/// What can be recorded, in the system's order.
struct ShareableContent {
    std::vector<RecordCore::DisplayInfo> displays;
    std::vector<RecordCore::WindowInfo> windows;
    bool operator==(const ShareableContent&) const = default;
};

/// The screens and windows of the session.
class Sources {
public:
    virtual ~Sources() = default;

    /// Whether the screen may be captured; does not ask the user.
    virtual bool accessGranted() = 0;
    /// Asks the user, where the system has a way to.
    virtual void requestAccess(std::function<void(bool granted)> done) = 0;
    /// Opens the system's page on that permission. False where there is none.
    virtual bool openAccessSettings() = 0;

    /// Nothing is listed where there is no screen.
    virtual void list(std::function<void(ShareableContent)> done) = 0;
    /// Brings a window to the front.
    virtual void activate(std::uint32_t window) = 0;
    /// What the source shows now, within `largest`; a null image when it cannot be had.
    virtual void still(const RecordCore::ScreenSource& source, QSize largest,
                       std::function<void(QImage)> done) = 0;

    /// Whether key presses of other programs can be observed.
    virtual bool seesKeys() = 0;
    /// `accessGranted` and `seesKeys` without waiting for the system's answer.
    virtual void askAllowed(std::function<void(bool access, bool keys)> done) {
        done(accessGranted(), seesKeys());
    }
    /// Asks the user for that, where the system has a way to; returns at once.
    virtual void requestKeys() = 0;
};

/// One recording: screen, sound, camera and input, into a folder.
class RecordingRun {
public:
    struct Setup {
        RecordCore::ScreenSource source;
        bool systemAudio = false;
        bool microphone = false;
        std::optional<std::string> microphoneID;
        bool camera = false;
        std::string cameraID; ///< empty: the default one
        int fps = 60;
    };
    struct Started {
        std::string failure; ///< empty: it records
        std::string problem; ///< what the user should know although it records
    };
    struct Stopped {
        std::string failure; ///< empty: all files are written
        std::string problem;
        RecordCore::InputLog log;
    };

    /// Ends a recording that still runs; its files are kept.
    virtual ~RecordingRun() = default;

    /// Starts camera, screen and input, in this order; nothing is left in the folder when it fails. Called
    /// once.
    virtual void start(std::function<void(Started)> done) = 0;
    /// The user has ended it: what comes on the screen from now on is not in the film, although `stop` may
    /// take its time to begin. After `start` succeeded.
    virtual void hold() {}
    /// Ends all and writes the files. Called once, after `start` succeeded.
    virtual void stop(std::function<void(Stopped)> done) = 0;

    /// How loud the microphone is that it records, 0…1.
    virtual double microphoneLevel() const { return 0; }

    /// The recording has ended by itself, on the main thread; `stop` is still to be called. Set before
    /// `start`.
    std::function<void(const std::string& message)> onEnd;
};

/// The cameras, and one of them shown while nothing is recorded.
class Cameras {
public:
    struct Device {
        std::string id;
        std::string name;
        bool operator==(const Device&) const = default;
    };

    virtual ~Cameras() = default;

    /// The default camera first.
    virtual void list(std::function<void(std::vector<Device>)> done) = 0;
    /// Shows a camera (an empty id: the default one) in place of the one shown.
    virtual void startPreview(const std::string& id) = 0;
    /// The camera is free for a recording that starts after this.
    virtual void stopPreview() = 0;
    /// The newest picture, null when there is none.
    virtual QImage picture() = 0;

    /// There is another picture.
    std::function<void()> onPicture;
    /// The camera did not start or went away.
    std::function<void(const std::string& message)> onFailure;
};

/// What the system lets the user allow.
class Permissions {
public:
    virtual ~Permissions() = default;
    virtual void requestMicrophone(std::function<void(bool granted)> done) = 0;
    virtual void requestCamera(std::function<void(bool granted)> done) = 0;
};

/// The application's own windows, as a whole.
class MainWindows {
public:
    virtual ~MainWindows() = default;
    /// Hides the main windows that are shown.
    virtual void hide() = 0;
    /// Shows what was hidden, or opens the main window when there is none, and brings it to the front.
    virtual void show() = 0;
};

/// The key combination that works whatever program has the keyboard.
class HotKey {
public:
    virtual ~HotKey() = default;
    /// Why it cannot be had, for the user; empty: it is ours. Called once.
    virtual void grab(std::function<void(std::string problem)> done) = 0;
    /// It was pressed. Set before `grab`.
    std::function<void()> onPressed;
};

/// Time, as the recording flow sees it.
class FlowClock {
public:
    virtual ~FlowClock() = default;
    /// Seconds of a clock that never goes back.
    virtual double now() = 0;
    /// Calls `work` once, after `seconds`, unless `context` has gone by then.
    virtual void after(double seconds, QObject* context, std::function<void()> work) = 0;
};

/// Everything the application's model works with; all of it outlives the model.
struct AppParts {
    Sources* sources = nullptr;
    Cameras* cameras = nullptr;
    Permissions* permissions = nullptr;
    MainWindows* windows = nullptr;
    HotKey* hotKey = nullptr; ///< may be none
    FlowClock* clock = nullptr;
    Desktop* desktop = nullptr;
    const RecordCore::SoundBackend* sound = nullptr;
    Thumbnails* thumbnails = nullptr; ///< may be none: recordings are listed without stills
    QSettings* settings = nullptr;    ///< may be none: nothing is remembered
    QObject* update = nullptr;        ///< may be none
    Library library;
    /// A folder with the sample recording; empty: this build has none.
    std::filesystem::path sample;
    /// The folder in which the sample is put to be opened: what is brought along is never written to.
    std::filesystem::path sampleHome;

    std::function<void(std::string_view line)> log;

    /// Runs `work` on another thread, after what was given before, then `done`. For what reads and deletes
    /// files: a disk may be slow. None: `work` runs at once, on the main thread.
    std::function<void(std::function<void()> work, std::function<void()> done)> aside;

    /// A recording starts in a few seconds: what it needs may be loaded. May be none.
    std::function<void()> warmUp;
    /// Makes a recording into a folder that is there.
    std::function<std::unique_ptr<RecordingRun>(const std::filesystem::path& folder,
                                                const RecordingRun::Setup& setup)>
        makeRun;

    /// Opens a recording for editing. A recording that is still being opened is given up for this one.
    std::function<void(
        const std::filesystem::path& video, std::optional<RecordCore::InputLog> log,
        const std::filesystem::path& folder, std::function<void(double)> progress,
        std::function<void(std::unique_ptr<EditorModel> model, const std::string& failure)> done)>
        loadEditor;
    /// Gives up what is being opened: nothing more is called for it. May be none.
    std::function<void()> cancelLoad;

    /// Makes a recording that was cut off whole; `failure` is empty when it is.
    std::function<void(const std::filesystem::path& folder, std::function<void(std::string failure)> done)>
        recover;
};

} // namespace OmbrelRecord
