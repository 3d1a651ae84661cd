#include "OmbrelRecord/Entry/Commands.h"
#include "OmbrelRecord/Entry/ProgressBar.h"
#include "RecordCore/Export/LoadedRecording.h"

#include <fmt/format.h>

#include <cstdio>

namespace OmbrelRecord::Commands {

using namespace RecordCore;

void run(const Analyze& options, const MediaBackend& media) {
    const RecordingFiles files{options.folder};
    std::vector<ActivitySample> samples;
    {
        ProgressBar bar("Watching the recording");
        samples = analyzeVideo(media, files.video(), [&](double share) { bar.update(share); });
    }
    saveActivity(samples, files.activity());
    fmt::print("{}: {} activity samples\n", files.activity().string(), samples.size());
}

} // namespace OmbrelRecord::Commands
