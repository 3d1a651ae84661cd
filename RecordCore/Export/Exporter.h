#pragma once

#include "RecordCore/Media/MediaBackend.h"
#include "RecordCore/Model/ExportOptions.h"
#include "RecordCore/Planning/Plan.h"
#include "RecordCore/Rendering/Compositor.h"

#include <atomic>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>

namespace RecordCore {

/// What an export did.
struct ExportStats {
    std::int64_t frames = 0;   ///< output frames written
    std::int64_t repeated = 0; ///< of these, frames that equalled the one before
    double outputSeconds = 0;  ///< length of the film
    double wallSeconds = 0;    ///< time the export took
    std::string encoder;       ///< what encoded the picture
    bool hardware = false;     ///< whether that was a hardware encoder
};

/// Writes the finished film: decodes the recording once, composes every output frame, encodes H.264 and
/// AAC and writes an MPEG-4 file.
namespace Exporter {

struct Hooks {
    std::function<void(double)> progress;      ///< share done, 0…1; called on the calling thread
    const std::atomic<bool>* cancel = nullptr; ///< when it turns true the export gives up
};

/// How the work is shared out.
struct Sharing {
    /// Ranges made at the same time, 0: as suits the machine. The film is the same with any number.
    int workers = 0;
    /// Key intervals from border to border, where the film's length allows.
    int keysPerRange = 8;
};

/// Exports `source` under `plan` to `destination`, which is replaced only when the new film is whole. Runs on
/// threads of its own; the calling thread writes the film until it is done. When a hardware encoder fails on
/// the way the film is begun anew in software. Throws RecordingError: "cancelled" when asked to, else naming
/// the file and the cause; nothing is left behind then.
ExportStats run(const MediaBackend& media, const std::filesystem::path& source, const Plan& plan,
                const ExportOptions& options, const std::filesystem::path& destination,
                const Hooks& hooks = {}, const Sharing& sharing = {});

/// The compositor's recipe for a project. `folder` is what a relative wallpaper path is taken from.
CompositorSettings compositorSettings(const Plan& plan, const Project& project, const SourceInfo& source,
                                      double scale, bool watermark, bool camera,
                                      const std::filesystem::path& folder);

/// Bits per second that a film gets when nothing else is asked for.
std::int64_t defaultBitrate(int width, int height, double fps);

} // namespace Exporter
} // namespace RecordCore
