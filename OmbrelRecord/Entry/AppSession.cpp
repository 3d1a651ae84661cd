#include "OmbrelRecord/Entry/AppSession.h"

#include "OmbrelRecord/AppModel/Diag.h"
#include "OmbrelRecord/AppModel/SessionRun.h"
#include "OmbrelRecord/EditorModel/EditorPlayer.h"
#include "OmbrelRecord/Entry/Backends.h"
#include "OmbrelRecord/Entry/Resources.h"
#include "OmbrelRecord/Entry/SpeechBackends.h"
#include "OmbrelRecord/Transcriber/Transcriber.h"
#include "RecordCore/Capture/RecordingRecovery.h"
#include "RecordCore/Export/Exporter.h"

#include <QtCore/QStandardPaths>
#include <exception>
#include <fmt/format.h>
#include <utility>

namespace OmbrelRecord {

using namespace RecordCore;

namespace fs = std::filesystem;

namespace {

/// Empty where the user has no such folder: nothing is to be put into the current one by mistake.
fs::path place(QStandardPaths::StandardLocation location) {
    const fs::path folder = QStandardPaths::writableLocation(location).toStdString();
    return folder.is_absolute() ? folder / "ombrel-record" : fs::path();
}

fs::path stillsFolder() {
    const fs::path cache = place(QStandardPaths::GenericCacheLocation);
    return cache.empty() ? cache : cache / "stills";
}

void log(std::string_view line) {
    Diag::log(line);
}

} // namespace

AppSession::AppSession() :
    mediaBackend(makeMediaBackend()), services(makeCaptureServices()),
    speech(makeSpeechEngine(*mediaBackend)), sources(*services.screen),
    cameras(services.cameras.get(), devices), thumbnails(*mediaBackend, stillsFolder()),
    updates(Updates::Source::ofBuild(), verifySignature), loader(*mediaBackend, editorParts()),
    appModel(std::make_unique<AppModel>(appParts())) {}

AppSession::~AppSession() = default;

EditorParts AppSession::editorParts() {
    EditorParts parts;
    parts.media = mediaBackend.get();
    parts.disposal = &disposal;
    parts.now = [] { return HostClock::system().now(); };
    parts.desktop = &desktop;
    parts.films = library.films();
    parts.cache = place(QStandardPaths::GenericCacheLocation);
    parts.exportFilm = [media = mediaBackend](const ExportJob& job,
                                              const std::function<void(double)>& progress,
                                              const std::atomic<bool>& cancel) {
        const ExportStats stats =
            Exporter::run(*media, job.source, job.plan, job.options, job.destination, {progress, &cancel});
        log(fmt::format("export: {} frames, {:.1f} s in {:.1f} s", stats.frames, stats.outputSeconds,
                        stats.wallSeconds));
    };
    parts.makePreview = EditorPlayer::factory(
        mediaBackend, [] { return makeSoundOutput(log); }, &disposal);
    // What the user is not told of a failure goes to the log.
    const auto listen = [this](const auto& work) {
        try {
            return work(Transcriber(*speech, *mediaBackend));
        } catch (const Transcriber::Failure& failure) {
            if (!failure.detail().empty()) log(fmt::format("captions: {}", failure.detail()));
            throw;
        }
    };
    const auto wanted = [](const std::string& language) {
        return language.empty() ? std::nullopt : std::optional(language);
    };
    parts.recognizeWords = [=](const fs::path& video, const std::string& language,
                               const std::function<void(double)>& progress, const std::atomic<bool>& cancel) {
        return listen([&](const Transcriber& transcriber) {
            return transcriber.words(video, wanted(language), {progress, &cancel});
        });
    };
    parts.alignWords = [=](const fs::path& video, std::vector<CaptionWord> words, const std::string& language,
                           const std::function<void(double)>& progress, const std::atomic<bool>& cancel) {
        return listen([&](const Transcriber& transcriber) {
            return transcriber.align(video, std::move(words), wanted(language), {progress, &cancel});
        });
    };
    return parts;
}

AppParts AppSession::appParts() {
    AppParts parts;
    parts.sources = &sources;
    parts.cameras = &cameras;
    parts.permissions = &permissions;
    parts.windows = &applicationWindows;
    parts.hotKey = &hotKey;
    parts.clock = &clock;
    parts.desktop = &desktop;
    parts.sound = services.sound.get();
    parts.thumbnails = &thumbnails;
    parts.settings = &settings;
    parts.update = &updates;
    parts.library = library;
    parts.sample = resource("sample");
    parts.sampleHome = place(QStandardPaths::GenericDataLocation);
    parts.log = log;
    parts.aside = [this](std::function<void()> work, std::function<void()> done) {
        files.post([to = mailbox.address(), work = std::move(work), done = std::move(done)] {
            work();
            to.post(done);
        });
    };
    parts.warmUp = [this] { files.post(loadMedia); };
    parts.makeRun = [this](const fs::path& folder, const RecordingRun::Setup& setup) {
        return std::make_unique<SessionRun>(devices, folder, setup, services.session(*mediaBackend, log));
    };
    parts.loadEditor = [this](const fs::path& video, std::optional<InputLog> inputLog, const fs::path& folder,
                              std::function<void(double)> progress, EditorLoader::Done done) {
        loader.load(video, std::move(inputLog), folder, std::move(progress), std::move(done));
    };
    parts.cancelLoad = [this] { loader.cancel(); };
    parts.recover = [this](const fs::path& folder, std::function<void(std::string)> done) {
        recover(folder, std::move(done));
    };
    return parts;
}

void AppSession::recover(const fs::path& folder, std::function<void(std::string)> done) {
    recovery.post([media = mediaBackend, to = mailbox.address(), folder, done = std::move(done)] {
        std::string failure;
        try {
            recoverRecording(folder, *media, log);
        } catch (const std::exception& error) {
            failure = error.what();
        }
        to.post([done, failure] { done(failure); });
    });
}

} // namespace OmbrelRecord
