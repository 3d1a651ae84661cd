#include "OmbrelRecord/AppModel/AppModel.h"
#include "OmbrelRecord/AppModel/AppModelParts.h"
#include "OmbrelRecord/AppModel/PlatformText.h"
#include "RecordCore/Model/Clock.h"
#include "RecordCore/Model/RecordingFiles.h"

#include <algorithm>
#include <cmath>
#include <exception>
#include <fmt/format.h>
#include <system_error>
#include <utility>

// The way of a recording: from the press of the button to the saved files.

namespace OmbrelRecord {

using namespace RecordCore;
using namespace AppModelParts;

namespace fs = std::filesystem;

namespace {

constexpr int countdownFrom = 3;
constexpr double countdownStep = 0.8; ///< seconds each number shows
constexpr double tickInterval = 0.25; ///< seconds
constexpr double meterInterval = 0.07;
constexpr int framesPerSecond = 60;

QRect rectangle(const ScreenRect& rect) {
    return QRectF(rect.x, rect.y, rect.width, rect.height).toAlignedRect();
}

} // namespace

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
        setProblem(tr("No display to record.").toStdString());
        return enter(Flow::home);
    }
    countdownFrame = display ? rectangle(display->frame) : QRect();
    parts.windows->hide();
    if (parts.warmUp) parts.warmUp();
    enter(Flow::counting);
    countFrom(countdownFrom);
}

void AppModel::windowGone() {
    setProblem(tr("That window has closed. Pick another one, or a whole screen.").toStdString());
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
    recordedLevel = 0;
    Q_EMIT elapsedChanged();
    enter(Flow::recording);
    tick(++flowRun);
    if (withMicrophone) meter(flowRun);
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
    setProblem(tr("Couldn't start recording: %1").arg(text(description)).toStdString());
    showMain();
}

void AppModel::tick(std::uint64_t which) {
    if (which != flowRun || !isRecording()) return;
    elapsedTime = parts.clock->now() - startedAt;
    Q_EMIT elapsedChanged();
    parts.clock->after(tickInterval, this, [this, which] { tick(which); });
}

void AppModel::meter(std::uint64_t which) {
    if (which != flowRun || !isRecording()) return;
    if (const double level = run->microphoneLevel(); level != recordedLevel) {
        recordedLevel = level;
        Q_EMIT microphoneLevelChanged();
    }
    parts.clock->after(meterInterval, this, [this, which] { meter(which); });
}

void AppModel::endedByItself(const std::string& description) {
    if (state == Flow::preparing) {
        endedEarly = description; // it has not even been said that it started
        return;
    }
    if (!isRecording()) return;
    setProblem(tr("Recording stopped: %1").arg(text(description)).toStdString());
    stopRecording();
}

void AppModel::stopRecording() {
    if (!isRecording()) return;
    elapsedTime = parts.clock->now() - startedAt;
    log(fmt::format("record: stop after {:.0f} s", std::floor(elapsedTime)));
    run->hold(); // our own window comes up now
    ask({});
    message = tr("Finishing the recording…");
    enter(Flow::saving);
    showMain();
    run->stop(whileAlive(this, [this](RecordingRun::Stopped result) { stopped(std::move(result)); }));
}

void AppModel::stopped(RecordingRun::Stopped result) {
    if (state != Flow::saving) return;
    const std::unique_ptr<RecordingRun> ended = std::move(run);
    if (!result.failure.empty()) {
        log(fmt::format("record: save failed {}", result.failure));
        return removeFolder([this, failure = result.failure] {
            enter(Flow::home);
            startPreviews();
            setProblem(tr("The recording couldn't be saved: %1").arg(text(failure)).toStdString());
        });
    }
    if (!result.problem.empty()) setProblem(result.problem);
    log("record: saved, opening the editor");
    refreshRecents();
    open(RecordingFiles{folder}.video(), std::move(result.log), folder);
}

void AppModel::discardRecording() {
    if (!isRecording() || !currentQuestion.isEmpty()) return;
    ask({{QStringLiteral("title"), tr("Discard this recording?")},
         {QStringLiteral("text"),
          tr("The %1 recorded so far will be deleted. Recording continues while you decide.")
              .arg(text(clock(elapsedTime)))},
         {QStringLiteral("buttons"), QStringList{tr("Discard"), tr("Keep Recording")}}});
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
        removeFolder([this] {
            enter(Flow::home);
            showMain();
            startPreviews();
        });
    }));
}

/// Of the recording, which may be large.
void AppModel::removeFolder(std::function<void()> done) {
    aside(
        [gone = folder] {
            std::error_code ignored;
            fs::remove_all(gone, ignored);
        },
        [this, done = std::move(done)] {
            refreshRecents();
            done();
        });
}

} // namespace OmbrelRecord
