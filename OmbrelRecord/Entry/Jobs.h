#pragma once

#include <filesystem>
#include <optional>

namespace OmbrelRecord {

/// What the process can be besides a verb. A build without the application says so and does nothing. Main
/// thread; the first three need a running event loop (`Entry::headless`) and throw nothing.
namespace Jobs {

/// Pictures of the interface with a recording open, as PNG files in `folder`.
void snapshot(const std::filesystem::path& folder, const std::filesystem::path& video);

/// Tries the search for updates on a feed of one's own: `folder` holds "feed.json", its signature
/// "feed.json.sig" and the public key "key", both in base64. The outcome is written to "report.txt" there.
void updateTest(const std::filesystem::path& folder);

/// Demonstration footage and stills of a recording. Without a log the one beside the video is taken.
void film(const std::filesystem::path& folder, const std::filesystem::path& video,
          const std::optional<std::filesystem::path>& log);

/// The application with its windows, until the user quits; the process's status. `file`: a movie or a
/// recording's folder to open, if not empty.
int application(int argc, char** argv, const std::filesystem::path& file);

} // namespace Jobs
} // namespace OmbrelRecord
