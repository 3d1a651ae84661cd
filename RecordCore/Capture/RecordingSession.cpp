#include "RecordCore/Capture/RecordingSession.h"

#include "RecordCore/Capture/RecordingRecovery.h"
#include "RecordCore/Model/ActivitySample.h"
#include "RecordCore/Model/RecordingError.h"

#include <fmt/format.h>
#include <sys/stat.h>

#include <utility>

namespace RecordCore {

namespace {

/// False when it was there already.
bool makePrivateFolder(const std::filesystem::path& folder) {
    if (std::filesystem::is_directory(folder)) return false;
    std::error_code error;
    if (folder.has_parent_path()) std::filesystem::create_directories(folder.parent_path(), error);
    if (mkdir(folder.c_str(), 0700) != 0)
        throw RecordingError(fmt::format("{}: cannot be created", folder.string()));
    return true;
}

} // namespace

RecordingSession::RecordingSession(std::filesystem::path folder, Setup setup, Services services) :
    files{std::move(folder)}, setup(std::move(setup)), services(std::move(services)) {}

RecordingSession::~RecordingSession() = default;

void RecordingSession::start() {
    madeFolder = makePrivateFolder(files.folder);
    if (std::filesystem::exists(files.video())) {
        recoverRecording(files.folder, services.screen.media, services.screen.log);
        throw RecordingError(fmt::format("{}: holds a recording already", files.folder.string()));
    }
    journal = std::make_unique<RecordingJournal>(files.journal(), services.screen.clock);
    try {
        if (setup.camera) startCamera();
        recorder = std::make_unique<ScreenRecorder>(setup.screen, services.screen);
        recorder->onStop = onStop;
        recorder->onUpkeep = [this] {
            if (cameraNoted || !camera) return;
            if (const auto first = camera->firstFrameTime()) {
                journal->camera(*first);
                cameraNoted = true;
            }
        };
        recorder->start(files.video(), journal.get());
        input = std::make_unique<InputRecorder>(
            InputRecorder::Region::of(services.screen.screen, setup.screen.source, recorder->width(),
                                      recorder->height()),
            services.screen.screen.openInput(), services.screen.clock, journal.get());
        input->start();
    } catch (...) {
        input.reset();
        recorder.reset();
        stopCamera();
        std::error_code ignored;
        std::filesystem::remove(files.video(), ignored);
        discard();
        throw;
    }
}

/// Removes what belongs to a recording that has no picture.
void RecordingSession::discard() {
    journal->remove();
    std::error_code ignored;
    std::filesystem::remove(files.camera(), ignored);
    if (madeFolder) std::filesystem::remove(files.folder, ignored); // unless somebody put something there
}

/// A recording without its camera is better than none.
void RecordingSession::startCamera() {
    try {
        if (services.cameras == nullptr) throw RecordingError("no camera");
        camera = std::make_unique<CameraRecorder>(*services.cameras, services.screen.media, setup.cameraID);
        camera->onEnd = [this](const std::string& message) {
            if (services.screen.log) services.screen.log(fmt::format("record: camera: {}", message));
        };
        camera->start(files.camera());
    } catch (const RecordingError& error) {
        camera.reset();
        trouble = fmt::format("The camera couldn't start, so this recording has no camera: {}", error.what());
    }
}

void RecordingSession::stopCamera() {
    if (!camera) return;
    try {
        camera->stop();
    } catch (const RecordingError& error) {
        trouble = error.what();
    }
}

InputLog RecordingSession::stop() {
    std::exception_ptr failure;
    try {
        recorder->stop();
    } catch (const RecordingError&) {
        failure = std::current_exception();
    }
    stopCamera();
    const auto first = recorder->firstFrameTime();
    InputLog log = input->stop(first.value_or(0));
    input.reset();
    if (const auto seen = camera ? camera->firstFrameTime() : std::nullopt; seen && first)
        log.cameraOffset = *seen - *first;
    if (failure) {
        // Nothing to keep, unless the movie is there and can only not be read now.
        if (!std::filesystem::exists(files.video())) discard();
        std::rethrow_exception(failure);
    }
    log.save(files.input());
    saveActivity(recorder->activity().samples(), files.activity());
    journal->remove();
    return log;
}

} // namespace RecordCore
