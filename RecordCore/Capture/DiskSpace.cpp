#include "RecordCore/Capture/DiskSpace.h"

#include "RecordCore/Model/RecordingError.h"

#include <fmt/format.h>
#include <sys/statvfs.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace RecordCore {

namespace {
constexpr std::uint64_t mebibyte = 1024 * 1024;
}

std::uint64_t DiskSpace::warning() const {
    return std::min(2048 * mebibyte, std::max(total / 8, 2 * reserve()));
}

std::uint64_t DiskSpace::reserve() const {
    return std::clamp(total / 20, 4 * mebibyte, 256 * mebibyte);
}

DiskSpace DiskSpace::of(const std::filesystem::path& folder) {
    struct statvfs facts {};
    if (statvfs(folder.c_str(), &facts) != 0)
        throw RecordingError(fmt::format("{}: {}", folder.string(), std::strerror(errno)));
    const auto block = static_cast<std::uint64_t>(facts.f_frsize);
    return {block * facts.f_bavail, block * facts.f_blocks};
}

} // namespace RecordCore
