#include "OmbrelRecord/AppModel/AppModel.h"

#include "OmbrelRecord/AppModel/PlatformText.h"
#include "OmbrelRecord/EditorModel/EditorModel.h"
#include "RecordCore/Capture/WindowList.h"
#include "RecordCore/Model/Clock.h"
#include "RecordCore/Model/RecordingFiles.h"

#include <QtCore/QMetaObject>
#include <QtCore/QPointer>
#include <QtCore/QVariantMap>
#include <algorithm>
#include <cmath>
#include <exception>
#include <fmt/format.h>
#include <iterator>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace OmbrelRecord {

using namespace RecordCore;

namespace fs = std::filesystem;

namespace {

constexpr int countdownFrom = 3;
constexpr double countdownStep = 0.8; ///< seconds each number shows
constexpr double tickInterval = 0.25; ///< seconds
constexpr double previewInterval = 1.2;
constexpr QSize largestPreview(1920, 1200);
constexpr QSize sourceStillSize(320, 200);
const QString displayStill = QStringLiteral("display/");
const QString windowStill = QStringLiteral("window/");
constexpr int mostKeyPolls = 60;
constexpr double keyPollInterval = 1; ///< seconds
constexpr int framesPerSecond = 60;
constexpr auto sampleName = "Sample · 4 agents fix a bug";

constexpr auto systemAudioKey = "home.systemAudio";
constexpr auto microphoneKey = "home.microphone";
constexpr auto microphoneIDKey = "home.microphoneID";
constexpr auto cameraKey = "home.camera";
constexpr auto cameraIDKey = "home.cameraID";

QString text(std::string_view utf8) {
    return QString::fromUtf8(utf8.data(), static_cast<qsizetype>(utf8.size()));
}

QString pathText(const fs::path& path) {
    return QString::fromStdString(path.string());
}

fs::path toPath(const QString& path) {
    return fs::path(path.toStdString());
}

template <typename Item>
const Item* withId(const std::vector<Item>& list, std::uint32_t id) {
    const auto found =
        std::find_if(list.begin(), list.end(), [id](const Item& item) { return item.id == id; });
    return found == list.end() ? nullptr : &*found;
}

QRect rectangle(const ScreenRect& rect) {
    return QRectF(rect.x, rect.y, rect.width, rect.height).toAlignedRect();
}

/// Calls `work` only while the object lives; the parts that are asked outlive it.
template <typename Work>
auto whileAlive(QObject* object, Work work) {
    return [watch = QPointer<QObject>(object), work = std::move(work)](auto&&... arguments) {
        if (watch) work(std::forward<decltype(arguments)>(arguments)...);
    };
}

} // namespace

AppModel::AppModel(AppParts given, QObject* parent) :
    QObject(parent), parts(std::move(given)),
    mics(*parts.sound,
         [this](std::function<void()> work) {
             QMetaObject::invokeMethod(this, std::move(work), Qt::QueuedConnection);
         }),
    recentList(new RecentsModel(parts.thumbnails, this)) {
    mics.onChange = [this] { Q_EMIT microphoneLevelChanged(); };
    parts.cameras->onPicture = [this] {
        ++cameraCount;
        cameraProblem.clear();
        Q_EMIT cameraPictureChanged();
    };
    parts.cameras->onFailure = [this](const std::string& description) {
        cameraCount = 0;
        cameraProblem = text(description);
        Q_EMIT cameraPictureChanged();
    };
    if (parts.hotKey) parts.hotKey->onPressed = [this] { hotKeyPressed(); };
}

AppModel::~AppModel() {
    parts.cameras->onPicture = nullptr;
    parts.cameras->onFailure = nullptr;
    if (parts.hotKey) parts.hotKey->onPressed = nullptr;
    mics.onChange = nullptr;
    if (run) run->onEnd = nullptr;
}

void AppModel::begin() {
    screenAccess = parts.sources->accessGranted();
    keysSeen = parts.sources->seesKeys();
    withSystemAudio = remembered(systemAudioKey);
    if (parts.settings) {
        chosenCamera = parts.settings->value(text(cameraIDKey)).toString();
        const QString microphone = parts.settings->value(text(microphoneIDKey)).toString();
        if (!microphone.isEmpty()) mics.select(microphone.toStdString());
    }
    Q_EMIT hasScreenAccessChanged();
    Q_EMIT seesKeysChanged();
    Q_EMIT systemAudioChanged();
    refreshDisplays();
    refreshMicrophones();
    refreshCameras();
    refreshRecents();
    if (remembered(microphoneKey)) toggleMicrophone();
    if (remembered(cameraKey)) toggleCamera();
    if (parts.hotKey) {
        hotKeyTrouble = text(parts.hotKey->grab());
        if (!hotKeyTrouble.isEmpty()) setProblem(hotKeyTrouble.toStdString());
        Q_EMIT hotKeyProblemChanged();
    }
    for (const Recording& recording : parts.library.unfinished())
        unfinished.push_back(recording.folder);
    recoverNext();
    startLivePreview();
}

// What the main window shows.

AppModel::Screen AppModel::screen() const {
    switch (state) {
    case Flow::saving:
    case Flow::loading:
        return Screen::working;
    case Flow::editing:
        return Screen::editor;
    default:
        return Screen::home;
    }
}

bool AppModel::starting() const {
    return state == Flow::resolving || state == Flow::counting || state == Flow::checking ||
           state == Flow::preparing;
}

void AppModel::enter(Flow next) {
    const Screen before = screen();
    state = next;
    Q_EMIT flowChanged();
    if (screen() != before) Q_EMIT screenChanged();
}

void AppModel::setMessage(const QString& fresh) {
    if (fresh == message) return;
    message = fresh;
    Q_EMIT screenChanged();
}

void AppModel::setProblem(const std::string& description) {
    currentProblem = text(description);
    Q_EMIT problemChanged();
}

void AppModel::dismissProblem() {
    setProblem({});
}

void AppModel::ask(QVariantMap question) {
    currentQuestion = std::move(question);
    Q_EMIT questionChanged();
}

void AppModel::remember(const char* name, const QVariant& value) {
    if (parts.settings) parts.settings->setValue(text(name), value);
}

bool AppModel::remembered(const char* name) const {
    return parts.settings && parts.settings->value(text(name)).toBool();
}

// The source.

QString AppModel::displayName(const DisplayInfo& display) {
    return text(display.name.empty() ? fmt::format("Display {}", display.id) : display.name);
}

QString AppModel::windowName(const WindowInfo& window) {
    return text(RecordCore::windowName(window));
}

QString AppModel::targetName() const {
    if (chosenWindow != 0 && target) return windowName(*target);
    if (const DisplayInfo* display = withId(content.displays, chosenDisplay)) return displayName(*display);
    return QStringLiteral("Choose a screen");
}

const DisplayInfo* AppModel::screen(const ScreenRect& frame) const {
    const double x = frame.x + frame.width / 2;
    const double y = frame.y + frame.height / 2;
    for (const DisplayInfo& display : content.displays) {
        const ScreenRect& area = display.frame;
        if (x >= area.x && x < area.x + area.width && y >= area.y && y < area.y + area.height)
            return &display;
    }
    return nullptr;
}

void AppModel::refreshDisplays() {
    parts.sources->list(whileAlive(this, [this](ShareableContent fresh) { take(std::move(fresh)); }));
}

void AppModel::take(ShareableContent fresh) {
    const bool changed = fresh.displays != content.displays;
    content = std::move(fresh);
    if (!withId(content.displays, chosenDisplay))
        chosenDisplay = content.displays.empty() ? 0 : content.displays.front().id;
    if (const WindowInfo* window = withId(content.windows, chosenWindow)) target = *window;
    updateWindows(content.windows);
    if (!changed) return;
    Q_EMIT sourcesChanged();
    capturePreview();
}

void AppModel::updateWindows(const std::vector<WindowInfo>& shareable) {
    std::vector<WindowInfo> fresh = recordableWindows(shareable, getpid());
    const bool same = std::equal(
        fresh.begin(), fresh.end(), recordable.begin(), recordable.end(),
        [](const WindowInfo& a, const WindowInfo& b) { return a.id == b.id && a.title == b.title; });
    if (same) return; // a list that is being looked at is not drawn anew for nothing
    recordable = std::move(fresh);
    Q_EMIT sourcesChanged();
}

void AppModel::chooseDisplay(quint32 id) {
    chosenDisplay = id;
    chosenWindow = 0;
    target.reset();
    Q_EMIT sourcesChanged();
    capturePreview();
}

void AppModel::chooseWindow(quint32 id) {
    chosenWindow = id;
    if (const WindowInfo* window = withId(content.windows, id)) target = *window;
    Q_EMIT sourcesChanged();
    capturePreview();
}

void AppModel::requestScreenAccess() {
    parts.sources->requestAccess(whileAlive(this, [this](bool granted) {
        if (!granted && !parts.sources->openAccessSettings())
            setProblem(std::string(PlatformText::noScreenAccess));
        screenAccess = parts.sources->accessGranted();
        Q_EMIT hasScreenAccessChanged();
        refreshDisplays();
    }));
}

ScreenSource AppModel::source() const {
    if (chosenWindow != 0) return WindowSource{chosenWindow};
    return DisplaySource{chosenDisplay};
}

void AppModel::startLivePreview() {
    previewing = true;
    capturePreview();
}

void AppModel::stopLivePreview() {
    previewing = false;
    ++previewRun;
}

/// One still now, and the next ones from then on.
void AppModel::capturePreview() {
    if (previewing) previewAgain(++previewRun);
}

void AppModel::previewAgain(std::uint64_t wanted) {
    if (wanted != previewRun) return;
    const auto later = [this, wanted] {
        parts.clock->after(previewInterval, this, [this, wanted] { previewAgain(wanted); });
    };
    if (state != Flow::home || !screenAccess || content.displays.empty()) return later();
    parts.sources->still(source(), largestPreview, whileAlive(this, [this, wanted, later](QImage still) {
                             if (wanted != previewRun) return;
                             if (state == Flow::home) {
                                 preview = std::move(still);
                                 ++previewRevision;
                                 Q_EMIT livePreviewChanged();
                             }
                             later();
                         }));
}

void AppModel::refreshSourceStills() {
    const bool idleNow = sourceStillsWanted.empty();
    sourceStillsWanted.clear();
    for (const WindowInfo& window : recordable)
        sourceStillsWanted.push_back(windowStill + QString::number(window.id));
    for (const DisplayInfo& display : content.displays)
        sourceStillsWanted.push_back(displayStill + QString::number(display.id));
    std::erase_if(sourceStills, [this](const auto& entry) {
        return std::ranges::find(sourceStillsWanted, entry.first) == sourceStillsWanted.end();
    });
    if (idleNow) nextSourceStill();
}

/// One at a time: a session with many windows is looked at without a moment's halt.
void AppModel::nextSourceStill() {
    if (sourceStillsWanted.empty()) return;
    const QString name = sourceStillsWanted.back();
    const quint32 id = name.mid(name.indexOf(QLatin1Char('/')) + 1).toUInt();
    const ScreenSource asked =
        name.startsWith(displayStill) ? ScreenSource(DisplaySource{id}) : ScreenSource(WindowSource{id});
    parts.sources->still(asked, sourceStillSize, whileAlive(this, [this, name](QImage still) {
                             if (!still.isNull()) sourceStills[name] = std::move(still);
                             ++sourceStillsCount;
                             Q_EMIT sourceStillsChanged();
                             std::erase(sourceStillsWanted, name);
                             nextSourceStill();
                         }));
}

QImage AppModel::image(const QString& name) const {
    if (name == QLatin1String("preview")) return preview;
    if (name == QLatin1String("camera")) return parts.cameras->picture();
    if (const auto known = sourceStills.find(name); known != sourceStills.end()) return known->second;
    const QLatin1String still("still/");
    return name.startsWith(still) ? recentList->still(name.mid(still.size())) : QImage();
}

// What is recorded with it.

void AppModel::setSystemAudio(bool on) {
    if (on == withSystemAudio) return;
    withSystemAudio = on;
    remember(systemAudioKey, on);
    Q_EMIT systemAudioChanged();
}

void AppModel::toggleMicrophone() {
    if (withMicrophone) {
        withMicrophone = false;
        remember(microphoneKey, false);
        mics.stopMeter();
        Q_EMIT microphoneChanged();
        return;
    }
    parts.permissions->requestMicrophone(whileAlive(this, [this](bool granted) {
        if (!granted)
            return setProblem(fmt::format("Ombrel Record can't use the microphone. Turn it on in {}.",
                                          PlatformText::microphoneSettings));
        withMicrophone = true;
        remember(microphoneKey, true);
        refreshMicrophones();
        if (state == Flow::home) mics.startMeter();
        Q_EMIT microphoneChanged();
    }));
}

QString AppModel::microphoneID() const {
    return text(mics.selectedID().value_or(""));
}

void AppModel::chooseMicrophone(const QString& id) {
    mics.select(id.isEmpty() ? std::nullopt : std::optional(id.toStdString()));
    remember(microphoneIDKey, id);
    refreshMicrophones();
}

void AppModel::refreshMicrophones() {
    mics.refresh();
    const std::optional<Microphones::Device> active = mics.active();
    activeName = active ? text(active->name) : QString();
    Q_EMIT microphonesChanged();
}

void AppModel::toggleCamera() {
    if (withCamera) {
        withCamera = false;
        remember(cameraKey, false);
        parts.cameras->stopPreview();
        cameraCount = 0;
        cameraProblem.clear();
        Q_EMIT cameraChanged();
        Q_EMIT cameraPictureChanged();
        return;
    }
    parts.permissions->requestCamera(whileAlive(this, [this](bool granted) {
        if (!granted)
            return setProblem(fmt::format("Ombrel Record can't use the camera. Turn it on in {}.",
                                          PlatformText::cameraSettings));
        withCamera = true;
        remember(cameraKey, true);
        refreshCameras();
        if (state == Flow::home) parts.cameras->startPreview(chosenCamera.toStdString());
        Q_EMIT cameraChanged();
    }));
}

void AppModel::chooseCamera(const QString& id) {
    chosenCamera = id;
    remember(cameraIDKey, id);
    if (withCamera && state == Flow::home) parts.cameras->startPreview(id.toStdString());
    Q_EMIT camerasChanged();
}

void AppModel::refreshCameras() {
    parts.cameras->list(whileAlive(this, [this](std::vector<Cameras::Device> devices) {
        cameraDevices = std::move(devices);
        Q_EMIT camerasChanged();
    }));
}

void AppModel::startPreviews() {
    if (withCamera) parts.cameras->startPreview(chosenCamera.toStdString());
    if (withMicrophone) mics.startMeter();
}

void AppModel::stopPreviews() {
    mics.stopMeter();
    parts.cameras->stopPreview();
    cameraCount = 0;
    Q_EMIT cameraPictureChanged();
}

void AppModel::requestKeys() {
    parts.sources->requestKeys();
    pollKeys(0);
}

void AppModel::pollKeys(int polls) {
    const bool seen = parts.sources->seesKeys();
    if (seen != keysSeen) {
        keysSeen = seen;
        Q_EMIT seesKeysChanged();
    }
    if (seen || polls >= mostKeyPolls) return;
    parts.clock->after(keyPollInterval, this, [this, polls] { pollKeys(polls + 1); });
}

// The recording.

QString AppModel::elapsedText() const {
    return text(clock(elapsedTime));
}

QString AppModel::hotKeyName() const {
    return text(PlatformText::hotKey);
}

void AppModel::hotKeyPressed() {
    if (isRecording())
        stopRecording();
    else
        startRecording();
}

void AppModel::startRecording() {
    if (!idle()) return;
    if (state == Flow::editing) backHome();
    setProblem({});
    screenAccess = parts.sources->accessGranted();
    Q_EMIT hasScreenAccessChanged();
    if (!screenAccess) {
        log("record: no screen access");
        requestScreenAccess();
        return;
    }
    log(fmt::format("record: start (window {}, camera {}, mic {}, sound {})",
                    chosenWindow == 0 ? "none" : std::to_string(chosenWindow), withCamera, withMicrophone,
                    withSystemAudio));
    enter(Flow::resolving);
    parts.sources->list(whileAlive(this, [this](ShareableContent fresh) {
        if (state != Flow::resolving) return;
        take(std::move(fresh));
        resolved();
    }));
}

void AppModel::resolved() {
    const DisplayInfo* display = nullptr;
    if (chosenWindow != 0) {
        const WindowInfo* window = withId(content.windows, chosenWindow);
        if (!window) return windowGone();
        parts.sources->activate(window->id);
        display = screen(window->frame);
    } else {
        display = withId(content.displays, chosenDisplay);
    }
    if (!display && !content.displays.empty()) display = &content.displays.front();
    if (!display && chosenWindow == 0) {
        setProblem("No display to record.");
        return enter(Flow::home);
    }
    countdownFrame = display ? rectangle(display->frame) : QRect();
    parts.windows->hide();
    enter(Flow::counting);
    countFrom(countdownFrom);
}

void AppModel::windowGone() {
    setProblem("That window has closed. Pick another one, or a whole screen.");
    chosenWindow = 0;
    target.reset();
    Q_EMIT sourcesChanged();
    enter(Flow::home);
}

void AppModel::countFrom(int number) {
    count = number;
    Q_EMIT countdownChanged();
    if (number == 0) return check();
    parts.clock->after(countdownStep, this, [this, number] { countFrom(number - 1); });
}

/// A window may have closed while the countdown ran.
void AppModel::check() {
    if (chosenWindow == 0) return prepare();
    enter(Flow::checking);
    parts.sources->list(whileAlive(this, [this](ShareableContent fresh) {
        if (state != Flow::checking) return;
        take(std::move(fresh));
        if (withId(content.windows, chosenWindow)) return prepare();
        windowGone();
        showMain();
    }));
}

void AppModel::prepare() {
    enter(Flow::preparing);
    endedEarly.reset();
    try {
        folder.clear();
        folder = parts.library.newFolder();
        log(fmt::format("record: countdown done, folder {}", folder.filename().string()));
        RecordingRun::Setup setup;
        setup.source = source();
        setup.systemAudio = withSystemAudio;
        setup.fps = framesPerSecond;
        if (withMicrophone) {
            const std::optional<Microphones::Device> device = mics.active();
            mics.stopMeter();
            log(fmt::format("record: microphone {}", device ? device->name : "No microphone"));
            // A computer without a microphone records all the same.
            setup.microphone = device.has_value();
            if (device) setup.microphoneID = device->id;
        }
        if (withCamera) {
            parts.cameras->stopPreview();
            setup.camera = true;
            setup.cameraID = chosenCamera.toStdString();
        }
        run = parts.makeRun(folder, setup);
        run->onEnd = [this](const std::string& description) { endedByItself(description); };
        run->start(whileAlive(this, [this](const RecordingRun::Started& result) { started(result); }));
    } catch (const std::exception& error) {
        startFailed(error.what());
    }
}

void AppModel::started(const RecordingRun::Started& result) {
    if (state != Flow::preparing) return;
    if (!result.failure.empty()) return startFailed(result.failure);
    if (!result.problem.empty()) setProblem(result.problem);
    log("record: capturing");
    startedAt = parts.clock->now();
    elapsedTime = 0;
    Q_EMIT elapsedChanged();
    enter(Flow::recording);
    tick(++flowRun);
    if (endedEarly) endedByItself(*std::exchange(endedEarly, std::nullopt));
}

void AppModel::startFailed(const std::string& description) {
    // It goes last: it holds what called this.
    const std::unique_ptr<RecordingRun> failed = std::move(run);
    log(fmt::format("record: failed {}", description));
    // Nothing was recorded: an empty folder would only be in the way. Another one stays.
    std::error_code ignored;
    if (!folder.empty()) fs::remove(folder, ignored);
    enter(Flow::home);
    startPreviews();
    setProblem(fmt::format("Couldn't start recording: {}", description));
    showMain();
}

void AppModel::tick(std::uint64_t which) {
    if (which != flowRun || !isRecording()) return;
    elapsedTime = parts.clock->now() - startedAt;
    Q_EMIT elapsedChanged();
    parts.clock->after(tickInterval, this, [this, which] { tick(which); });
}

void AppModel::endedByItself(const std::string& description) {
    if (state == Flow::preparing) {
        endedEarly = description; // it has not even been said that it started
        return;
    }
    if (!isRecording()) return;
    setProblem(fmt::format("Recording stopped: {}", description));
    stopRecording();
}

void AppModel::stopRecording() {
    if (!isRecording()) return;
    elapsedTime = parts.clock->now() - startedAt;
    log(fmt::format("record: stop after {:.0f} s", std::floor(elapsedTime)));
    ask({});
    message = QStringLiteral("Finishing the recording…");
    enter(Flow::saving);
    showMain();
    run->stop(whileAlive(this, [this](RecordingRun::Stopped result) { stopped(std::move(result)); }));
}

void AppModel::stopped(RecordingRun::Stopped result) {
    if (state != Flow::saving) return;
    const std::unique_ptr<RecordingRun> ended = std::move(run);
    if (!result.failure.empty()) {
        log(fmt::format("record: save failed {}", result.failure));
        std::error_code ignored;
        fs::remove_all(folder, ignored);
        refreshRecents();
        enter(Flow::home);
        startPreviews();
        setProblem(fmt::format("The recording couldn't be saved: {}", result.failure));
        return;
    }
    if (!result.problem.empty()) setProblem(result.problem);
    log("record: saved, opening the editor");
    refreshRecents();
    open(RecordingFiles{folder}.video(), std::move(result.log), folder);
}

void AppModel::discardRecording() {
    if (!isRecording() || !currentQuestion.isEmpty()) return;
    ask({{QStringLiteral("title"), QStringLiteral("Discard this recording?")},
         {QStringLiteral("text"),
          text(fmt::format("The {} recorded so far will be deleted. Recording continues while you decide.",
                           clock(elapsedTime)))},
         {QStringLiteral("buttons"),
          QStringList{QStringLiteral("Discard"), QStringLiteral("Keep Recording")}}});
}

void AppModel::answer(int button) {
    if (currentQuestion.isEmpty()) return;
    ask({});
    if (button == 0) discard();
}

void AppModel::discard() {
    if (!isRecording()) return;
    elapsedTime = parts.clock->now() - startedAt;
    log(fmt::format("record: discarded after {:.0f} s", std::floor(elapsedTime)));
    enter(Flow::discarding);
    run->stop(whileAlive(this, [this](const RecordingRun::Stopped&) {
        const std::unique_ptr<RecordingRun> ended = std::move(run);
        std::error_code ignored;
        fs::remove_all(folder, ignored);
        refreshRecents();
        enter(Flow::home);
        showMain();
        startPreviews();
    }));
}

// The library and the editor.

void AppModel::refreshRecents() {
    recentList->setRecordings(parts.library.recordings());
}

void AppModel::open(const fs::path& video, std::optional<InputLog> inputLog, const fs::path& place) {
    if (state == Flow::editing) closeEditor();
    if (state == Flow::home) stopPreviews();
    if (!idle() && state != Flow::saving) return;
    message = QStringLiteral("Watching your recording…");
    enter(Flow::loading);
    Q_EMIT screenChanged(); // the message is another one even where the screen is the same
    log(fmt::format("editor: loading {}", place.filename().string()));
    parts.loadEditor(video, std::move(inputLog), place,
                     whileAlive(this,
                                [this](double share) {
                                    if (state == Flow::loading)
                                        setMessage(text(fmt::format("Watching your recording… {}%",
                                                                    static_cast<int>(share * 100))));
                                }),
                     whileAlive(this, [this](std::unique_ptr<EditorModel> model, const std::string& failure) {
                         if (state == Flow::loading) loaded(std::move(model), failure);
                     }));
}

void AppModel::loaded(std::unique_ptr<EditorModel> model, const std::string& failure) {
    if (!model) {
        log(fmt::format("editor: failed {}", failure));
        enter(Flow::home);
        startPreviews();
        setProblem(fmt::format("Couldn't open that video: {}", failure));
        return;
    }
    openEditor = std::move(model);
    Q_EMIT editorChanged();
    enter(Flow::editing);
    showMain();
    log("editor: open");
}

void AppModel::open(const QString& name) {
    if (!idle()) return;
    const Recording recording{toPath(name)};
    const auto openIt = [this, recording] {
        std::optional<InputLog> inputLog;
        try {
            if (const auto file = recording.log()) inputLog = InputLog::load(*file);
        } catch (const std::exception& error) {
            log(fmt::format("editor: {}", error.what())); // the film can be made without it
        }
        open(recording.video(), std::move(inputLog), recording.folder);
    };
    std::error_code ignored;
    if (!fs::exists(RecordingFiles{recording.folder}.journal(), ignored)) return openIt();
    // It was cut off, and its turn has not come yet.
    parts.recover(recording.folder, whileAlive(this, [this, openIt](const std::string& failure) {
                      if (!idle()) return;
                      if (failure.empty()) return openIt();
                      log(fmt::format("editor: failed {}", failure));
                      setProblem(fmt::format("Couldn't open that video: {}", failure));
                  }));
}

void AppModel::openFile() {
    if (idle()) Q_EMIT fileWanted();
}

void AppModel::openVideo(const QString& file) {
    if (!idle()) return;
    const fs::path video = toPath(file);
    const fs::path place = video.parent_path();
    std::optional<InputLog> inputLog;
    try {
        const fs::path beside = RecordingFiles{place}.input();
        std::error_code ignored;
        if (fs::exists(beside, ignored)) inputLog = InputLog::load(beside);
    } catch (const std::exception&) {
        // Whatever it is, it is no input log.
    }
    open(video, std::move(inputLog), place);
}

bool AppModel::hasSample() const {
    std::error_code ignored;
    return !parts.sample.empty() && fs::exists(RecordingFiles{parts.sample}.video(), ignored);
}

/// A copy that can be edited; one that is there stays as the user left it.
fs::path AppModel::unpackSample() const {
    const fs::path unpacked = parts.sampleHome / sampleName;
    fs::create_directories(unpacked);
    for (const fs::directory_entry& entry : fs::directory_iterator(parts.sample)) {
        const fs::path copy = unpacked / entry.path().filename();
        if (fs::exists(copy)) continue;
        // A copy that is cut off must not count as one.
        const fs::path part = unpacked / "part";
        fs::copy_file(entry.path(), part, fs::copy_options::overwrite_existing);
        fs::rename(part, copy);
    }
    return unpacked;
}

void AppModel::openSample() {
    if (!idle()) return;
    if (!hasSample()) return setProblem("The sample isn't in this build.");
    try {
        open(pathText(unpackSample()));
    } catch (const std::exception& error) {
        setProblem(fmt::format("Couldn't open that video: {}", error.what()));
    }
}

void AppModel::trash(const QString& name) {
    if (!idle()) return;
    if (state == Flow::editing) backHome(); // what it has not saved yet is saved before
    try {
        parts.desktop->trash(toPath(name));
    } catch (const std::exception& error) {
        setProblem(error.what());
    }
    refreshRecents();
}

void AppModel::reveal(const QString& name) {
    parts.desktop->reveal(toPath(name));
}

void AppModel::closeEditor() {
    openEditor->pause();
    // Views let go of it before it goes.
    const std::unique_ptr<EditorModel> closing = std::move(openEditor);
    Q_EMIT editorChanged();
}

void AppModel::backHome() {
    if (state != Flow::editing) return;
    closeEditor();
    enter(Flow::home);
    refreshRecents();
    startPreviews();
}

void AppModel::showMain() {
    parts.windows->show();
    const char* what = screen() == Screen::home ? "home" : screen() == Screen::working ? "working" : "editor";
    log(fmt::format("window: shown {}", what));
}

/// One after another; what is still being recorded by another process is left to it.
void AppModel::recoverNext() {
    if (unfinished.empty()) return;
    const fs::path next = unfinished.front();
    unfinished.erase(unfinished.begin());
    parts.recover(next, whileAlive(this, [this, next](const std::string& failure) {
                      if (failure.empty()) {
                          log(fmt::format("record: recovered {}", next.filename().string()));
                          recoveredRecordings.append(
                              QVariantMap{{QStringLiteral("name"), pathText(next.filename())},
                                          {QStringLiteral("folder"), pathText(next)}});
                          Q_EMIT recoveredChanged();
                          refreshRecents();
                      } else {
                          log(fmt::format("record: not recovered {}: {}", next.filename().string(), failure));
                      }
                      recoverNext();
                  }));
}

void AppModel::dismissRecovered() {
    recoveredRecordings.clear();
    Q_EMIT recoveredChanged();
}

// For views.

namespace {

QVariantMap device(const std::string& id, const std::string& name) {
    return {{QStringLiteral("id"), text(id)}, {QStringLiteral("name"), text(name)}};
}

} // namespace

QVariantList AppModel::displayList() const {
    QVariantList list;
    for (const DisplayInfo& display : content.displays)
        list.append(QVariantMap{{QStringLiteral("id"), display.id},
                                {QStringLiteral("name"), displayName(display)},
                                {QStringLiteral("main"), display.main},
                                {QStringLiteral("x"), display.frame.x},
                                {QStringLiteral("y"), display.frame.y},
                                {QStringLiteral("width"), display.frame.width},
                                {QStringLiteral("height"), display.frame.height}});
    return list;
}

QVariantList AppModel::windowList() const {
    QVariantList list;
    for (const WindowInfo& window : recordable)
        list.append(QVariantMap{{QStringLiteral("id"), window.id},
                                {QStringLiteral("name"), windowName(window)},
                                {QStringLiteral("application"), text(window.application)},
                                {QStringLiteral("title"), text(window.title)},
                                {QStringLiteral("width"), window.frame.width},
                                {QStringLiteral("height"), window.frame.height}});
    return list;
}

QVariantList AppModel::microphoneList() const {
    QVariantList list;
    for (const Microphones::Device& microphone : mics.devices())
        list.append(device(microphone.id, microphone.name));
    return list;
}

QVariantList AppModel::cameraList() const {
    QVariantList list;
    for (const Cameras::Device& camera : cameraDevices)
        list.append(device(camera.id, camera.name));
    return list;
}

} // namespace OmbrelRecord
