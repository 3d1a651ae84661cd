#include "Tests/Views/EditorFixture.h"

#include "RecordCore/Model/RecordingError.h"

#include <chrono>
#include <cstdlib>

using namespace OmbrelRecord;
using namespace RecordCore;
namespace fs = std::filesystem;

EditorFixture::EditorFixture() {
    const char* other = std::getenv("OMBREL_RECORDING");
    fs::create_directories(folder());
    fs::copy(other ? fs::path(other) : fs::path(OMBREL_SOURCE_DIR) / "OmbrelRecord/Resources/sample",
             folder(), fs::copy_options::recursive | fs::copy_options::overwrite_existing);
    given.now = [] {
        return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
    };
    given.desktop = &desktop;
    given.films = films();
    given.media = &media;
    reopen();
}

void EditorFixture::reopen() {
    editor.reset();
    RecordingFiles files{folder()};
    // Decoded once for all tests of a run.
    static std::vector<ActivitySample> activity;
    if (!activity.empty() && !fs::exists(files.activity())) saveActivity(activity, files.activity());
    std::optional<InputLog> log;
    if (fs::exists(files.input())) log = InputLog::load(files.input());
    editor = std::make_unique<EditorModel>(
        OpenedRecording::open(media, files.video(), std::move(log), folder()), given);
    activity = editor->recording().samples;
}
