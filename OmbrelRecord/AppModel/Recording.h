#pragma once

#include <chrono>
#include <filesystem>
#include <optional>

namespace OmbrelRecord {

/// A recording in the library, by its folder.
struct Recording {
    /// What `date` is when the file system does not tell one.
    static constexpr std::chrono::system_clock::time_point distantPast =
        std::chrono::system_clock::time_point::min();

    std::filesystem::path folder;
    std::chrono::system_clock::time_point date = distantPast; ///< when the folder was created

    std::filesystem::path video() const { return folder / "recording.mp4"; }
    /// The input log, when there is one.
    std::optional<std::filesystem::path> log() const;

    bool operator==(const Recording&) const = default;
};

} // namespace OmbrelRecord
