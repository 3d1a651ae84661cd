#include "OmbrelRecord/Entry/CommandLine.h"

#include "OmbrelRecord/Entry/Backends.h"
#include "OmbrelRecord/Entry/CaptionsCommand.h"
#include "OmbrelRecord/Entry/CaptureServices.h"
#include "OmbrelRecord/Entry/Commands.h"
#include "OmbrelRecord/Entry/Interrupt.h"
#include "OmbrelRecord/Entry/RecordCommand.h"
#include "OmbrelRecord/Entry/SourcesCommand.h"
#include "OmbrelRecord/Entry/Tell.h"
#include "RecordCore/Model/OutputFormat.h"
#include "RecordCore/Model/RecordingError.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <iostream>
#include <string>
#include <vector>

namespace OmbrelRecord::CommandLine {

namespace fs = std::filesystem;

namespace {

using RecordCore::MediaBackend;

const CLI::Validator formatNames = CLI::IsMember({"16:9", "4:5", "9:16", "1:1"});

/// CLI's own range lets through what is no number at all.
CLI::Validator numberIn(double low, double high) {
    const CLI::Range range(low, high);
    return {[range](std::string& text) {
                double value = 0;
                if (CLI::detail::lexical_cast(text, value) && std::isnan(value))
                    return text + " is no number";
                return range(text);
            },
            range.get_description()};
}

/// What was printed may still be on its way; whoever reads it has to know when it did not arrive.
void flushOutput() {
    errno = 0;
    if (std::fflush(stdout) == 0 && std::ferror(stdout) == 0) return;
    throw RecordCore::RecordingError(
        fmt::format("standard output: cannot be written: {}", std::strerror(errno != 0 ? errno : EIO)));
}

void addFolder(CLI::App& verb, std::filesystem::path& folder) {
    verb.add_option("FOLDER", folder, "Folder of the recording")->required();
}

void addOutput(CLI::App& verb, std::filesystem::path& output, const char* what) {
    verb.add_option("-o,--output", output, what)->required();
}

void addPicture(CLI::App& verb, std::optional<std::string>& format, double& scale, double& fps) {
    verb.add_option("--format", format, "Shape of the film (the project's when not given)")
        ->check(formatNames);
    verb.add_option("--scale", scale, "Factor on the canvas size; 2 makes a 4K film")
        ->check(numberIn(0.1, 4.0));
    verb.add_option("--fps", fps, "Frames per second")->check(numberIn(1.0, 240.0));
}

} // namespace

std::optional<int> run(int argc, char** argv) {
    CLI::App app("Records a screen and makes a finished film of it.", "ombrel-record");
    app.set_version_flag("--version", OMBREL_VERSION);
    app.require_subcommand(1);
    app.footer("Without a verb the window opens; with a movie or a recording's folder in its place, that is "
               "opened there.");
    const auto backend = [] { return makeMediaBackend(); };

    Commands::Record record;
    CLI::App& recordVerb = *app.add_subcommand("record", "Record a screen until Ctrl-C");
    recordVerb.add_option("-o,--output", record.folder, "Folder of the recording, made if it is not there")
        ->required();
    CLI::Option* display = recordVerb.add_option("--display", record.display,
                                                 "Display: its id or its place in `sources`, from 1");
    recordVerb.add_option("--window", record.window, "Id of a window in `sources`")->excludes(display);
    recordVerb.add_option("--seconds", record.seconds, "Stop by itself after this time")
        ->check(numberIn(0.1, 86400.0));
    recordVerb.add_option("--fps", record.fps, "Most frames per second")->check(CLI::Range(1, 240));
    recordVerb.add_flag("--system-sound", record.systemSound, "Record what the computer plays");
    CLI::Option* microphone =
        recordVerb
            .add_option("--microphone", record.microphoneID, "Record a microphone: an id, or the default one")
            ->expected(0, 1);
    recordVerb.add_flag("--camera", record.camera, "Record the camera");
    recordVerb.callback([&] {
        record.microphone = microphone->count() > 0;
        const auto media = backend();
        const CaptureServices services = makeCaptureServices();
        const Interrupt interrupt;
        Commands::run(record, *media, services, interrupt.requested());
    });

    CLI::App& sourcesVerb =
        *app.add_subcommand("sources", "List displays, windows, microphones and cameras as JSON");
    sourcesVerb.callback([] { Commands::runSources(makeCaptureServices()); });

    Commands::Analyze analyze;
    CLI::App& analyzeVerb = *app.add_subcommand("analyze", "Write activity.json from recording.mp4");
    addFolder(analyzeVerb, analyze.folder);
    analyzeVerb.callback([&] { Commands::run(analyze, *backend()); });

    Commands::Plan plan;
    CLI::App& planVerb = *app.add_subcommand("plan", "Print the plan of the film as JSON");
    addFolder(planVerb, plan.folder);
    planVerb.add_option("--frames", plan.frames, "Also print the state of every frame at this rate")
        ->check(numberIn(1.0, 240.0));
    planVerb.callback([&] { Commands::run(plan, *backend()); });

    Commands::Still still;
    CLI::App& stillVerb = *app.add_subcommand("still", "Draw one frame of the film");
    addFolder(stillVerb, still.folder);
    stillVerb.add_option("--at", still.at, "Time in the film, in seconds")
        ->required()
        ->check(numberIn(-1e9, 1e9));
    addPicture(stillVerb, still.format, still.scale, still.fps);
    stillVerb.add_flag("--camera", still.camera, "Show the camera bubble");
    addOutput(stillVerb, still.output, "PNG file to write");
    stillVerb.callback([&] { Commands::run(still, *backend()); });

    Commands::Export film;
    CLI::App& exportVerb = *app.add_subcommand("export", "Make the film");
    addFolder(exportVerb, film.folder);
    addPicture(exportVerb, film.format, film.scale, film.fps);
    exportVerb.add_option("--bitrate", film.bitrate, "Video bits per second (chosen by size when not given)")
        ->check(CLI::Range(std::int64_t{50'000}, std::int64_t{1'000'000'000}));
    exportVerb.add_flag("--watermark", film.watermark, "Draw a watermark");
    exportVerb.add_flag("--software", film.software, "Use no hardware encoder");
    exportVerb.add_flag("--json", film.json, "Print the statistics as JSON");
    addOutput(exportVerb, film.output, "MP4 file to write");
    exportVerb.callback([&] { Commands::run(film, *backend()); });

    Commands::Captions captions;
    CLI::App& captionsVerb = *app.add_subcommand("captions", "Recognise what is said and caption the film");
    addFolder(captionsVerb, captions.folder);
    captionsVerb.add_option("--language", captions.language,
                            "Language spoken, as en-US (yours when not given)");
    captionsVerb.add_flag("--retime", captions.retime,
                          "Keep the project's words, corrected as they are, and find their times anew");
    captionsVerb.add_option("--srt", captions.srt, "Also write the film's captions to this SubRip file");
    captionsVerb.add_option("--vtt", captions.vtt, "Also write the film's captions to this WebVTT file");
    captionsVerb.callback([&] { Commands::run(captions, *backend()); });

    const std::string first = argc > 1 ? argv[1] : "";
    const auto verbs = app.get_subcommands({});
    const bool isVerb =
        std::any_of(verbs.begin(), verbs.end(), [&](CLI::App* verb) { return verb->get_name() == first; });
    if (!isVerb && first != "--help" && first != "-h" && first != "--version") {
        std::error_code ignored;
        if (const fs::path named = file(argc, argv); named.empty() || fs::exists(named, ignored))
            return std::nullopt;
        tell("there is no verb or file \"{}\"; ombrel-record --help lists the verbs", first);
        return 2;
    }

    try {
        app.parse(argc, argv);
        flushOutput();
        return 0;
    } catch (const CLI::ParseError& error) {
        return app.exit(error, std::cout, std::cerr) == 0 ? 0 : 2;
    } catch (const RecordCore::RecordingError& error) {
        tell("{}", error.what());
    } catch (const std::bad_alloc&) {
        tell("there is not enough memory for this");
    } catch (const std::exception& error) {
        tell("{}", error.what());
    }
    return 1;
}

fs::path file(int argc, char** argv) {
    return argc > 1 && argv[1][0] != '-' ? fs::path(argv[1]) : fs::path();
}

} // namespace OmbrelRecord::CommandLine
