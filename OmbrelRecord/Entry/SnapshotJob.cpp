#include "OmbrelRecord/Application/Snapshot.h"
#include "OmbrelRecord/Application/StillLife.h"
#include "OmbrelRecord/EditorModel/EditorModel.h"
#include "OmbrelRecord/EditorView/EditorSnapshots.h"
#include "OmbrelRecord/Entry/AppSession.h"
#include "OmbrelRecord/Entry/Jobs.h"
#include "OmbrelRecord/Entry/Tell.h"
#include "RecordCore/Model/RecordingFiles.h"

#include <QtCore/QTemporaryDir>
#include <algorithm>
#include <cstdio>
#include <exception>
#include <fmt/format.h>
#include <utility>

namespace OmbrelRecord {

using namespace RecordCore;

namespace fs = std::filesystem;

namespace {

/// The recording of a video in a folder of its own, where editing it harms nothing. The raw material is only
/// linked.
RecordingFiles borrowed(const fs::path& video, const fs::path& place) {
    const RecordingFiles from{video.parent_path()}, to{place};
    std::error_code missing;
    fs::create_symlink(video, to.video(), missing);
    for (const auto& [file, link] :
         {std::pair(from.camera(), to.camera()), std::pair(from.input(), to.input()),
          std::pair(from.activity(), to.activity())})
        if (fs::exists(file, missing)) fs::create_symlink(file, link, missing);
    if (fs::exists(from.project(), missing)) fs::copy_file(from.project(), to.project(), missing);
    return to;
}

} // namespace

void Jobs::snapshot(const fs::path& folder, const fs::path& video) {
    try {
        const QTemporaryDir place;
        // The folder's name is the recording's.
        const fs::path own = fs::path(place.path().toStdString()) / video.parent_path().filename();
        fs::create_directory(own);
        const RecordingFiles files = borrowed(video, own);
        AppSession session;
        std::optional<InputLog> log;
        if (fs::exists(files.input())) log = InputLog::load(files.input());
        EditorParts parts = session.editorParts();
        parts.exportFilm = EditorSnapshots::exportStill;
        EditorModel editor(
            OpenedRecording::open(session.media(), files.video(), std::move(log), files.folder),
            std::move(parts));
        std::vector<Snapshot::View> views = StillLife::views(session.media(), video);
        for (Snapshot::View& view : EditorSnapshots::views(editor))
            views.push_back(std::move(view));
        // SNAPSHOT_ONLY narrows it to views whose names hold that text.
        if (const QString only = qEnvironmentVariable("SNAPSHOT_ONLY"); !only.isEmpty())
            views.erase(std::remove_if(views.begin(), views.end(),
                                       [&](const Snapshot::View& view) { return !view.name.contains(only); }),
                        views.end());
        for (const std::string& problem : Snapshot::write(views, folder))
            tell("{}", problem);
    } catch (const std::exception& error) {
        tell("{}", error.what());
    }
}

} // namespace OmbrelRecord
