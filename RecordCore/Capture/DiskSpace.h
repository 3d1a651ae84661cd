#pragma once

#include <cstdint>
#include <filesystem>

namespace RecordCore {

/// Room on the disk that a recording goes to, in bytes.
struct DiskSpace {
    std::uint64_t free = 0;
    std::uint64_t total = 0;

    /// Below it the recording says so: 2 GiB, or an eighth of a small disk.
    std::uint64_t warning() const;
    /// Below it the recording ends while there is still room to finish it: 256 MiB, or a twentieth of a small
    /// disk, but not less than some seconds of a recording take (4 MiB).
    std::uint64_t reserve() const;

    /// Throws RecordingError when the folder's disk cannot be asked.
    static DiskSpace of(const std::filesystem::path& folder);
};

} // namespace RecordCore
