#include "OmbrelRecord/Entry/CaptionsCommand.h"

#include "OmbrelRecord/Entry/Interrupt.h"
#include "OmbrelRecord/Entry/Loading.h"
#include "OmbrelRecord/Entry/ProgressBar.h"
#include "OmbrelRecord/Entry/SpeechBackends.h"
#include "OmbrelRecord/Entry/Tell.h"
#include "OmbrelRecord/Transcriber/CaptionFile.h"
#include "OmbrelRecord/Transcriber/Transcriber.h"
#include "RecordCore/Model/AtomicFile.h"
#include "RecordCore/Model/RecordingError.h"
#include "RecordCore/Model/RecordingFiles.h"

#include <fmt/format.h>

#include <cstdio>
#include <utility>

namespace OmbrelRecord::Commands {

using namespace RecordCore;

namespace {

bool present(const std::filesystem::path& file) {
    std::error_code ignored;
    return std::filesystem::exists(file, ignored);
}

/// Recognition takes minutes: what can only fail afterwards is tried beforehand.
void prepareOutput(std::optional<std::filesystem::path>& output, const RecordingFiles& files) {
    if (!output) return;
    output = outputFile(files, *output);
    const std::filesystem::path folder = output->has_parent_path() ? output->parent_path() : ".";
    if (!std::filesystem::is_directory(folder))
        throw RecordingError(fmt::format("{}: no such folder", folder.string()));
    if (std::filesystem::is_directory(*output))
        throw RecordingError(fmt::format("{}: is a folder", output->string()));
}

std::vector<CaptionWord> recognise(const Captions& options, const RecordingFiles& files,
                                   const MediaBackend& media) {
    const std::unique_ptr<SpeechEngine> engine = makeSpeechEngine(media);
    ProgressBar bar("Listening");
    bar.update(0);
    const Interrupt interrupt;
    Transcriber::Hooks hooks;
    hooks.progress = [&](double share) { bar.update(share); };
    hooks.cancel = &interrupt.requested();
    try {
        const Transcriber transcriber(*engine, media);
        if (!options.retime) return transcriber.words(files.video(), options.language, hooks);
        std::string problem;
        const std::optional<Project> project = Project::load(files.project(), &problem);
        if (!project) throw RecordingError(problem);
        if (!project->captions || project->captions->empty())
            throw RecordingError(fmt::format("{}: holds no captions", files.project().string()));
        return transcriber.align(files.video(), *project->captions, options.language, hooks);
    } catch (const Transcriber::Failure& failure) {
        if (failure.detail().empty()) throw;
        throw RecordingError(fmt::format("{} ({})", failure.what(), failure.detail()));
    }
}

/// Puts the words into the project as it is now: it may have changed while we listened.
void store(std::vector<CaptionWord> words, const RecordingFiles& files) {
    std::string problem;
    std::optional<Project> project = Project::load(files.project(), &problem);
    if (!project && present(files.project())) {
        const std::filesystem::path kept = keepBeside(files.project());
        tell("{}; kept as {}, starting from the default project", problem, kept.filename().string());
    }
    if (!project) project.emplace();
    project->captions = std::move(words);
    project->showCaptions = true;
    project->save(files.project());
}

} // namespace

void run(const Captions& options, const MediaBackend& media) {
    const RecordingFiles files{options.folder};
    if (!present(files.video()))
        throw RecordingError(fmt::format("{}: there is no recording here", files.video().string()));
    std::optional<std::filesystem::path> srt = options.srt;
    std::optional<std::filesystem::path> vtt = options.vtt;
    prepareOutput(srt, files);
    prepareOutput(vtt, files);

    std::vector<CaptionWord> words = recognise(options, files, media);
    if (words.empty()) throw RecordingError(Transcriber::noSpeech);
    const std::size_t count = words.size();
    store(std::move(words), files);
    fmt::print("{}: {} words\n", files.project().string(), count);

    if (!srt && !vtt) return;
    const LoadedRecording recording = loadForCommand(options.folder, std::nullopt, media);
    const RecordCore::Plan plan = recording.plan();
    const std::vector<CaptionLayout::Line> lines = CaptionFile::lines(recording.project, &plan);
    for (const auto& [file, format] :
         {std::pair(srt, CaptionFile::Format::srt), std::pair(vtt, CaptionFile::Format::vtt)}) {
        if (!file) continue;
        CaptionFile::write(CaptionFile::text(lines, format), *file);
        fmt::print("{}: {} captions\n", file->string(), lines.size());
    }
}

} // namespace OmbrelRecord::Commands
