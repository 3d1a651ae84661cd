#include "OmbrelRecord/Entry/Commands.h"
#include "OmbrelRecord/Entry/Interrupt.h"
#include "OmbrelRecord/Entry/Loading.h"
#include "OmbrelRecord/Entry/ProgressBar.h"
#include "RecordCore/Export/Exporter.h"
#include "RecordCore/Model/Json.h"

#include <fmt/format.h>

#include <cstdio>
#include <utility>

namespace OmbrelRecord::Commands {

using namespace RecordCore;

void run(const Export& options, const MediaBackend& media) {
    const std::filesystem::path output = outputFile({options.folder}, options.output);
    LoadedRecording recording = loadForCommand(options.folder, options.format, media);
    const RecordCore::Plan plan = recording.plan();

    ExportOptions exportOptions;
    exportOptions.project = recording.project;
    exportOptions.log = std::move(recording.log); // an hour of it is megabytes
    exportOptions.fps = options.fps;
    exportOptions.scale = options.scale;
    exportOptions.bitrate = options.bitrate;
    exportOptions.watermark = options.watermark;
    exportOptions.hardware = !options.software;
    exportOptions.camera = recording.camera();

    ExportStats stats;
    {
        ProgressBar bar("Exporting");
        const Interrupt interrupt;
        Exporter::Hooks hooks;
        hooks.progress = [&](double share) { bar.update(share); };
        hooks.cancel = &interrupt.requested();
        stats = Exporter::run(media, recording.files.video(), plan, exportOptions, output, hooks);
    }
    if (options.json) {
        const Json object{{"file", options.output.string()},  {"frames", stats.frames},
                          {"repeated", stats.repeated},       {"outputSeconds", stats.outputSeconds},
                          {"wallSeconds", stats.wallSeconds}, {"encoder", stats.encoder},
                          {"hardware", stats.hardware}};
        fmt::print("{}\n", jsonText(object));
    } else {
        fmt::print("export: {} frames, {:.1f} s in {:.1f} s\n", stats.frames, stats.outputSeconds,
                   stats.wallSeconds);
    }
}

} // namespace OmbrelRecord::Commands
