#pragma once

#include "OmbrelRecord/AppModel/AppParts.h"
#include "OmbrelRecord/AppModel/RecentsModel.h"
#include "RecordCore/Capture/Microphones.h"

#include <QtCore/QObject>
#include <QtCore/QRect>
#include <QtCore/QSize>
#include <QtCore/QString>
#include <QtCore/QVariant>
#include <QtGui/QImage>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace OmbrelRecord {

class EditorModel;

/// The application's one model: what the home screen shows, and the way of a recording from the press of the
/// record button over countdown, capture and saving to the editor. It runs as a state machine (`Flow`) whose
/// steps wait for its parts without blocking. Main thread.
///
/// Pictures are had through `image` by their names; a view shows them with an image provider and asks again
/// when the revision that belongs to them changes.
class AppModel : public QObject {
    Q_OBJECT
    Q_MOC_INCLUDE("OmbrelRecord/EditorModel/EditorModel.h")
    // What the main window shows.
    Q_PROPERTY(Screen screen READ screen NOTIFY screenChanged)
    Q_PROPERTY(QString workingMessage READ workingMessage NOTIFY screenChanged)
    /// What is worked at can be given up (`cancelWorking`).
    Q_PROPERTY(bool cancellable READ cancellable NOTIFY screenChanged)
    Q_PROPERTY(OmbrelRecord::EditorModel* editor READ editor NOTIFY editorChanged)
    /// A message for the user; empty: none.
    Q_PROPERTY(QString problem READ problem NOTIFY problemChanged)
    /// An alert to be shown: {title, text, buttons: [text]}; empty: none. The answer goes to `answer`.
    Q_PROPERTY(QVariantMap question READ question NOTIFY questionChanged)
    Q_PROPERTY(QObject* update READ update CONSTANT)

    // The source.
    Q_PROPERTY(bool hasScreenAccess READ hasScreenAccess NOTIFY hasScreenAccessChanged)
    /// Whether displays and windows have been looked up; until then there are none here.
    Q_PROPERTY(bool sourcesListed READ sourcesListed NOTIFY sourcesChanged)
    /// [{id, name, main, x, y, width, height}], in desktop pixels.
    Q_PROPERTY(QVariantList displays READ displayList NOTIFY sourcesChanged)
    Q_PROPERTY(quint32 displayID READ displayID NOTIFY sourcesChanged)
    /// [{id, name, application, title, width, height}]
    Q_PROPERTY(QVariantList windows READ windowList NOTIFY sourcesChanged)
    /// 0: none, the whole display is recorded.
    Q_PROPERTY(quint32 windowID READ windowID NOTIFY sourcesChanged)
    Q_PROPERTY(QString targetName READ targetName NOTIFY sourcesChanged)
    /// The pixels that the live preview is shown in; it is no larger.
    Q_PROPERTY(QSize previewSize MEMBER previewSize)
    /// Null as long as there is none. In `image` it is "preview".
    Q_PROPERTY(QImage livePreview READ livePreview NOTIFY livePreviewChanged)
    Q_PROPERTY(int livePreviewRevision READ livePreviewRevision NOTIFY livePreviewChanged)
    /// Counts the pictures of the sources that `refreshSourceStills` asks for. In `image` they are
    /// "display/ID" and "window/ID".
    Q_PROPERTY(int sourceStillsRevision READ sourceStillsRevision NOTIFY sourceStillsChanged)

    // What is recorded with it.
    Q_PROPERTY(bool systemAudio READ systemAudio WRITE setSystemAudio NOTIFY systemAudioChanged)
    Q_PROPERTY(bool microphone READ microphone NOTIFY microphoneChanged)
    /// [{id, name}]
    Q_PROPERTY(QVariantList microphones READ microphoneList NOTIFY microphonesChanged)
    /// Empty: the system's default.
    Q_PROPERTY(QString microphoneID READ microphoneID WRITE chooseMicrophone NOTIFY microphonesChanged)
    /// The name of the one that would be recorded; empty when the computer has none.
    Q_PROPERTY(QString activeMicrophone READ activeMicrophone NOTIFY microphonesChanged)
    Q_PROPERTY(double microphoneLevel READ microphoneLevel NOTIFY microphoneLevelChanged)
    Q_PROPERTY(bool camera READ camera NOTIFY cameraChanged)
    /// [{id, name}]
    Q_PROPERTY(QVariantList cameras READ cameraList NOTIFY camerasChanged)
    /// Empty: the default one.
    Q_PROPERTY(QString cameraID READ cameraID WRITE chooseCamera NOTIFY camerasChanged)
    /// Counts the pictures of the camera; 0 while there is none. In `image` they are "camera".
    Q_PROPERTY(int cameraRevision READ cameraRevision NOTIFY cameraPictureChanged)
    /// Why the camera shows nothing; empty while it does or is off.
    Q_PROPERTY(QString cameraMessage READ cameraMessage NOTIFY cameraPictureChanged)
    Q_PROPERTY(bool seesKeys READ seesKeys NOTIFY seesKeysChanged)

    // The recording.
    Q_PROPERTY(bool starting READ starting NOTIFY flowChanged)
    Q_PROPERTY(bool isRecording READ isRecording NOTIFY flowChanged)
    /// 3, 2, 1; 0: none runs. The panel belongs in the middle of `recordedFrame`.
    Q_PROPERTY(int countdown READ countdown NOTIFY countdownChanged)
    /// The display that is recorded, or that holds the centre of the window that is, in desktop pixels.
    Q_PROPERTY(QRect recordedFrame READ recordedFrame NOTIFY countdownChanged)
    Q_PROPERTY(double elapsed READ elapsed NOTIFY elapsedChanged)
    Q_PROPERTY(QString elapsedText READ elapsedText NOTIFY elapsedChanged)
    Q_PROPERTY(QString hotKeyName READ hotKeyName CONSTANT)
    /// Why the hot key does nothing; empty when it works.
    Q_PROPERTY(QString hotKeyProblem READ hotKeyProblem NOTIFY hotKeyProblemChanged)

    // The library.
    Q_PROPERTY(OmbrelRecord::RecentsModel* recents READ recents CONSTANT)
    /// Recordings that were cut off and have been made whole: [{name, folder}].
    Q_PROPERTY(QVariantList recovered READ recoveredList NOTIFY recoveredChanged)
    Q_PROPERTY(bool hasSample READ hasSample CONSTANT)

public:
    enum class Screen { home, working, editor };
    Q_ENUM(Screen)

    /// Where the way of a recording stands.
    enum class Flow {
        home,
        resolving, ///< starting: the source is looked up
        counting,  ///< starting: the countdown runs
        checking,  ///< starting: the source is looked up again
        preparing, ///< starting: the recorders start
        recording,
        discarding, ///< the recorders end, and what they wrote is deleted
        saving,     ///< working: "Finishing the recording…"
        recovering, ///< working: "Making the recording whole…"
        loading,    ///< working: "Watching your recording…"
        editing
    };
    Q_ENUM(Flow)

    explicit AppModel(AppParts parts, QObject* parent = nullptr);
    ~AppModel() override;

    /// Called once, when the application has started: lists what there is, takes the hot key, and looks for
    /// recordings that were cut off. The choices of the last time are restored before, with the object; what
    /// the system allows is taken for granted until then, so that a view does not change for nothing.
    Q_INVOKABLE void begin();

    Flow flow() const { return state; }
    Screen screen() const;
    QString workingMessage() const { return message; }
    bool cancellable() const { return state == Flow::recovering || state == Flow::loading; }
    /// Back home without what was to be opened. A recording that is being made whole becomes so all the same.
    Q_INVOKABLE void cancelWorking();
    EditorModel* editor() const { return openEditor.get(); }
    QString problem() const { return currentProblem; }
    Q_INVOKABLE void dismissProblem();
    QVariantMap question() const { return currentQuestion; }
    /// Answers the question with one of its buttons, 0 being the first.
    Q_INVOKABLE void answer(int button);
    QObject* update() const { return parts.update; }

    // The source.

    bool hasScreenAccess() const { return screenAccess; }
    bool sourcesListed() const { return listed; }
    const std::vector<RecordCore::DisplayInfo>& displays() const { return content.displays; }
    quint32 displayID() const { return chosenDisplay; }
    const std::vector<RecordCore::WindowInfo>& windows() const { return recordable; }
    quint32 windowID() const { return chosenWindow; }
    QString targetName() const;
    static QString displayName(const RecordCore::DisplayInfo& display);
    static QString windowName(const RecordCore::WindowInfo& window);
    /// The display whose frame holds the centre of the given frame.
    const RecordCore::DisplayInfo* screen(const RecordCore::ScreenRect& frame) const;

    Q_INVOKABLE void refreshDisplays();
    void updateWindows(const std::vector<RecordCore::WindowInfo>& shareable);
    Q_INVOKABLE void chooseDisplay(quint32 id);
    Q_INVOKABLE void chooseWindow(quint32 id);
    Q_INVOKABLE void requestScreenAccess();

    QImage livePreview() const { return preview; }
    int livePreviewRevision() const { return previewRevision; }
    /// Shows the source while the home screen is shown. A view that is not seen ends it.
    Q_INVOKABLE void startLivePreview();
    Q_INVOKABLE void stopLivePreview();
    Q_INVOKABLE void capturePreview();

    int sourceStillsRevision() const { return sourceStillsCount; }
    /// Takes small pictures of all displays and windows, one after another.
    Q_INVOKABLE void refreshSourceStills();

    /// "preview", "camera", or what the still of a recent recording is called.
    QImage image(const QString& name) const;

    // What is recorded with it.

    bool systemAudio() const { return withSystemAudio; }
    void setSystemAudio(bool on);
    bool microphone() const { return withMicrophone; }
    Q_INVOKABLE void toggleMicrophone();
    QString microphoneID() const;
    Q_INVOKABLE void chooseMicrophone(const QString& id);
    Q_INVOKABLE void refreshMicrophones();
    QString activeMicrophone() const { return activeName; }
    /// 0…1: of the microphone on the home screen, or of the one that is being recorded.
    double microphoneLevel() const { return run ? recordedLevel : mics.level(); }
    bool camera() const { return withCamera; }
    Q_INVOKABLE void toggleCamera();
    QString cameraID() const { return chosenCamera; }
    Q_INVOKABLE void chooseCamera(const QString& id);
    Q_INVOKABLE void refreshCameras();
    int cameraRevision() const { return cameraCount; }
    QString cameraMessage() const { return cameraProblem; }
    bool seesKeys() const { return keysSeen; }
    Q_INVOKABLE void requestKeys();

    // The recording.

    bool starting() const;
    bool isRecording() const { return state == Flow::recording; }
    int countdown() const { return count; }
    QRect recordedFrame() const { return countdownFrame; }
    double elapsed() const { return elapsedTime; }
    QString elapsedText() const;
    QString hotKeyName() const;
    QString hotKeyProblem() const { return hotKeyTrouble; }
    Q_INVOKABLE void startRecording();
    Q_INVOKABLE void stopRecording();
    Q_INVOKABLE void discardRecording();
    void hotKeyPressed();

    // The library and the editor.

    RecentsModel* recents() const { return recentList; }
    Q_INVOKABLE void refreshRecents();
    void open(const std::filesystem::path& video, std::optional<RecordCore::InputLog> log,
              const std::filesystem::path& folder);
    /// Opens the recording in a folder.
    Q_INVOKABLE void open(const QString& folder);
    /// Asks the view for a movie file (`fileWanted`).
    Q_INVOKABLE void openFile();
    /// Opens a movie, with the input log that lies beside it.
    Q_INVOKABLE void openVideo(const QString& file);
    /// Opens what somebody named: a recording's folder, or a movie.
    void openPath(const QString& path);
    Q_INVOKABLE void openSample();
    bool hasSample() const;
    /// Moves a recording's folder to the trash.
    Q_INVOKABLE void trash(const QString& folder);
    Q_INVOKABLE void reveal(const QString& folder);
    Q_INVOKABLE void backHome();
    Q_INVOKABLE void showMain();

    QVariantList recoveredList() const { return recoveredRecordings; }
    /// Forgets the offer of recovered recordings.
    Q_INVOKABLE void dismissRecovered();

Q_SIGNALS:
    void screenChanged();
    void flowChanged();
    void editorChanged();
    void problemChanged();
    void questionChanged();
    void hasScreenAccessChanged();
    void sourcesChanged();
    void livePreviewChanged();
    void sourceStillsChanged();
    void systemAudioChanged();
    void microphoneChanged();
    void microphonesChanged();
    void microphoneLevelChanged();
    void cameraChanged();
    void camerasChanged();
    void cameraPictureChanged();
    void seesKeysChanged();
    void countdownChanged();
    void elapsedChanged();
    void hotKeyProblemChanged();
    void recoveredChanged();
    /// A movie file is to be chosen (`openVideo`): movies of any kind, MPEG-4 and QuickTime movies.
    void fileWanted();

private:
    void log(const std::string& line) const { parts.log(line); }
    void enter(Flow next);
    void setMessage(const QString& text);
    void setProblem(const std::string& text);
    void ask(QVariantMap question);

    void take(ShareableContent fresh);
    void resolved();
    void countFrom(int number);
    void check();
    void prepare();
    void started(const RecordingRun::Started& result);
    void startFailed(const std::string& description);
    void windowGone();
    void tick(std::uint64_t run);
    void meter(std::uint64_t run);
    void endedByItself(const std::string& message);
    void stopped(RecordingRun::Stopped result);
    void discard();
    void removeFolder(std::function<void()> done);
    void aside(std::function<void()> work, std::function<void()> done);
    /// Working, up to the editor: the log is read from the file, when there is one.
    void openWithLog(const std::filesystem::path& video, const std::filesystem::path& log,
                     const std::filesystem::path& folder);
    void beginLoading(const std::filesystem::path& folder);
    void load(const std::filesystem::path& video, std::optional<RecordCore::InputLog> log,
              const std::filesystem::path& folder);
    void loaded(std::unique_ptr<EditorModel> model, const std::string& failure);
    void leaveEditor(Flow next);

    void startPreviews();
    void stopPreviews();
    void previewAgain(std::uint64_t run);
    void nextSourceStill();
    RecordCore::ScreenSource source() const;
    void pollKeys(int polls);
    void recoverNext();
    void remember(const char* name, const QVariant& value);
    bool remembered(const char* name) const;
    bool idle() const { return state == Flow::home || state == Flow::editing; }

    QVariantList displayList() const;
    QVariantList windowList() const;
    QVariantList microphoneList() const;
    QVariantList cameraList() const;

    AppParts parts;
    Flow state = Flow::home;
    QString message;
    std::unique_ptr<EditorModel> openEditor;
    std::vector<std::unique_ptr<EditorModel>> leftEditors; ///< as long as views may look at them
    QString currentProblem;
    QVariantMap currentQuestion;

    bool screenAccess = true;
    bool listed = false;
    ShareableContent content;
    std::vector<RecordCore::WindowInfo> recordable;
    quint32 chosenDisplay = 0;
    quint32 chosenWindow = 0;
    std::optional<RecordCore::WindowInfo> target; ///< the chosen window, as it was last listed
    QSize previewSize{1920, 1200};
    QImage preview;
    int previewRevision = 0;
    std::uint64_t previewRun = 0; ///< counts the runs of the live preview; what belongs to an older one ends
    bool previewing = false;
    std::map<QString, QImage> sourceStills;  ///< by the names of `image`
    std::vector<QString> sourceStillsWanted; ///< the names of those still to be taken, the next one last
    int sourceStillsCount = 0;

    bool withSystemAudio = false;
    bool withMicrophone = false;
    RecordCore::Microphones mics;
    QString activeName;
    bool withCamera = false;
    std::vector<Cameras::Device> cameraDevices;
    QString chosenCamera;
    int cameraCount = 0;
    QString cameraProblem;
    bool keysSeen = true;

    int count = 0;
    QRect countdownFrame;
    std::uint64_t flowRun = 0; ///< counts the recordings; a tick of an older one ends
    double startedAt = 0;
    double elapsedTime = 0;
    double recordedLevel = 0; ///< of the microphone, while a recording runs
    QString hotKeyTrouble;
    std::filesystem::path folder;
    std::unique_ptr<RecordingRun> run;
    std::optional<std::string> endedEarly; ///< a run ended before its start was reported

    RecentsModel* recentList;
    std::uint64_t openings = 0; ///< counts what was opened; what belongs to an older one ends
    std::vector<std::filesystem::path> unfinished;
    QVariantList recoveredRecordings;
};

} // namespace OmbrelRecord
