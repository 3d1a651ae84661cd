#include "OmbrelRecord/AppModel/Diag.h"

#include "OmbrelRecord/AppModel/CrashEntry.h"
#include "OmbrelRecord/AppModel/IsoTime.h"
#include "OmbrelRecord/AppModel/PlatformText.h"

#include <fcntl.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <fmt/format.h>

namespace OmbrelRecord {

namespace {

constexpr std::uintmax_t mostBytes = 1'000'000;

/// Errors are swallowed: logging must never be the reason that something else fails.
void append(const std::filesystem::path& file, std::string_view line) noexcept {
    const auto open = [&file] {
        return ::open(file.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, S_IRUSR | S_IWUSR);
    };
    int descriptor = open();
    if (descriptor < 0) {
        std::error_code ignored;
        std::filesystem::create_directories(file.parent_path(), ignored);
        descriptor = open();
    }
    if (descriptor < 0) return;
    while (!line.empty()) {
        const ssize_t written = ::write(descriptor, line.data(), line.size());
        if (written <= 0) break;
        line.remove_prefix(static_cast<std::size_t>(written));
    }
    ::close(descriptor);
}

std::filesystem::path stateFolder() {
    if (const char* folder = std::getenv("XDG_STATE_HOME"); folder && folder[0] == '/') return folder;
    const char* home = std::getenv("HOME");
    return std::filesystem::path(home ? home : "/tmp") / ".local" / "state";
}

/// Never destroyed: threads that outlive `main` may still log.
DiagLog& shared() {
    static DiagLog& log = []() -> DiagLog& {
        auto* made = new DiagLog(stateFolder() / "Logs" / "Ombrel Record" / "ombrel-record.log");
        std::atexit([] { shared().flush(); });
        return *made;
    }();
    return log;
}

} // namespace

DiagLog::DiagLog(std::filesystem::path file) : path(std::move(file)) {
    std::error_code ignored;
    std::filesystem::create_directories(path.parent_path(), ignored);
}

void DiagLog::dropWhenLarge() {
    std::error_code error;
    const std::uintmax_t size = std::filesystem::file_size(path, error);
    if (!error && size > mostBytes) std::filesystem::remove(path, error);
}

void DiagLog::log(std::string_view message) {
    const auto now = std::chrono::floor<std::chrono::seconds>(std::chrono::system_clock::now());
    queue.post([this, line = fmt::format("{} {}\n", IsoTime(now).text(), message)] { append(path, line); });
}

namespace Diag {

const std::filesystem::path& file() {
    return shared().file();
}

void install(std::string_view version, std::string_view systemVersion) {
    shared().dropWhenLarge();
    log(fmt::format("launch {} {} {}", version.empty() ? "dev" : version, PlatformText::system,
                    systemVersion));
    installCrashEntry(file());
}

void log(std::string_view message) {
    shared().log(message);
}

void flush() {
    shared().flush();
}

} // namespace Diag
} // namespace OmbrelRecord
