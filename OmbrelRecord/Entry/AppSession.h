#pragma once

#include "OmbrelRecord/AppModel/AppModel.h"
#include "OmbrelRecord/AppModel/Desktop.h"
#include "OmbrelRecord/AppModel/Disposal.h"
#include "OmbrelRecord/AppModel/Mailbox.h"
#include "OmbrelRecord/AppModel/SerialQueue.h"
#include "OmbrelRecord/AppModel/SessionCameras.h"
#include "OmbrelRecord/AppModel/SessionParts.h"
#include "OmbrelRecord/AppModel/SessionSources.h"
#include "OmbrelRecord/AppModel/Thumbnails.h"
#include "OmbrelRecord/EditorModel/EditorLoader.h"
#include "OmbrelRecord/EditorModel/EditorParts.h"
#include "OmbrelRecord/Entry/CaptureServices.h"
#include "OmbrelRecord/Entry/DesktopHotKey.h"
#include "OmbrelRecord/Transcriber/SpeechRecognizer.h"
#include "OmbrelRecord/Updates/Updates.h"
#include "RecordCore/Media/MediaBackend.h"

#include <QtCore/QSettings>
#include <memory>

namespace OmbrelRecord {

/// The application without its windows: the model over the parts of the running session. Needs a
/// QGuiApplication with its names set. Main thread.
class AppSession {
public:
    AppSession();
    ~AppSession();
    AppSession(const AppSession&) = delete;
    AppSession& operator=(const AppSession&) = delete;

    AppModel& model() { return *appModel; }
    ApplicationWindows& windows() { return applicationWindows; }
    QSettings& preferences() { return settings; }
    const RecordCore::MediaBackend& media() const { return *mediaBackend; }

    /// What editors work with in this session, for those who open one without the model.
    EditorParts editorParts();

private:
    AppParts appParts();
    void recover(const std::filesystem::path& folder, std::function<void(std::string)> done);

    std::shared_ptr<const RecordCore::MediaBackend> mediaBackend;
    CaptureServices services;
    std::unique_ptr<SpeechEngine> speech;
    Disposal disposal; ///< after what the editors' threads use
    QSettings settings;
    SystemFlowClock clock;
    SessionPermissions permissions;
    ApplicationWindows applicationWindows;
    SessionDesktop desktop;
    Library library;
    Mailbox mailbox;
    SerialQueue devices;  ///< where recorders and the camera's preview take turns
    SerialQueue recovery; ///< of recordings that were cut off
    SerialQueue files;    ///< where the model's files are read
    DesktopHotKey hotKey;
    SessionSources sources;
    SessionCameras cameras;
    Thumbnails thumbnails;
    Updates updates;
    EditorLoader loader;
    std::unique_ptr<AppModel> appModel;
};

} // namespace OmbrelRecord
