#include "RecordCore/Media/FFmpeg/Failure.h"

#include "RecordCore/Media/FFmpeg/Handles.h"
#include "RecordCore/Model/RecordingError.h"

#include <fmt/format.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <mutex>

namespace RecordCore::FFmpeg {

std::string errorText(int code) {
    if (code == AVERROR_INVALIDDATA) return "the contents are damaged or of an unknown kind";
    if (AVUNERROR(code) > 0 && AVUNERROR(code) < 4096) return std::strerror(AVUNERROR(code));
    std::array<char, AV_ERROR_MAX_STRING_SIZE> text{};
    av_strerror(code, text.data(), text.size());
    return text.data();
}

void fail(const std::filesystem::path& file, const std::string& what) {
    throw RecordingError(fmt::format("{}: {}", file.string(), what));
}

void fail(const std::filesystem::path& file, const std::string& what, int code) {
    throw RecordingError(fmt::format("{}: {}: {}", file.string(), what, errorText(code)));
}

void silenceLog() {
    static std::once_flag once;
    std::call_once(once, [] { av_log_set_callback([](void*, int, const char*, va_list) {}); });
}

} // namespace RecordCore::FFmpeg
