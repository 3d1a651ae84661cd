#include "RecordCore/Model/AtomicFile.h"

#include "RecordCore/Model/RecordingError.h"
#include "RecordCore/Model/Uuid.h"

#include <fmt/format.h>

#include <cerrno>
#include <cstdint>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace RecordCore {

namespace {

/// A POSIX file descriptor that closes itself.
class Descriptor {
public:
    explicit Descriptor(int fd) : fd(fd) {}
    ~Descriptor() {
        if (fd >= 0) ::close(fd);
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    int get() const { return fd; }
    int close() {
        const int result = ::close(fd);
        fd = -1;
        return result;
    }

private:
    int fd;
};

[[noreturn]] void fail(const std::filesystem::path& file, const char* what, int error) {
    throw RecordingError(fmt::format("{}: {}: {}", file.string(), what, std::strerror(error)));
}

} // namespace

void writeFileAtomically(const std::filesystem::path& file, std::string_view bytes) {
    const std::filesystem::path folder = file.has_parent_path() ? file.parent_path() : ".";
    const std::filesystem::path temporary =
        folder / fmt::format(".{}.{}", file.filename().string(), Uuid::fresh().text().substr(0, 8));

    Descriptor descriptor(::open(temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
    if (descriptor.get() < 0) fail(file, "cannot be written", errno);

    const auto giveUp = [&](int error) {
        ::unlink(temporary.c_str());
        fail(file, "cannot be written", error);
    };
    while (!bytes.empty()) {
        const ssize_t written = ::write(descriptor.get(), bytes.data(), bytes.size());
        if (written < 0 && errno == EINTR) continue;
        if (written < 0) giveUp(errno);
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
    if (::fsync(descriptor.get()) != 0) giveUp(errno);
    if (descriptor.close() != 0) giveUp(errno);
    if (::rename(temporary.c_str(), file.c_str()) != 0) giveUp(errno);

    // The move itself must also survive a power cut; a folder that cannot be synced is no reason to fail.
    const Descriptor directory(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (directory.get() >= 0) ::fsync(directory.get());
}

std::string readFile(const std::filesystem::path& file, std::size_t limit) {
    // Without blocking: opening a pipe that nobody writes to would wait for ever.
    const Descriptor descriptor(::open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    if (descriptor.get() < 0) fail(file, "cannot be read", errno);

    struct stat facts {};
    if (::fstat(descriptor.get(), &facts) != 0) fail(file, "cannot be read", errno);
    if (S_ISDIR(facts.st_mode)) fail(file, "cannot be read", EISDIR);
    if (!S_ISREG(facts.st_mode))
        throw RecordingError(fmt::format("{}: cannot be read: not a plain file", file.string()));
    if (static_cast<std::uintmax_t>(facts.st_size) > limit) fail(file, "cannot be read", EFBIG);

    std::string contents;
    contents.reserve(static_cast<std::size_t>(facts.st_size) + 1);
    char buffer[1 << 16];
    while (true) {
        const ssize_t count = ::read(descriptor.get(), buffer, sizeof buffer);
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) fail(file, "cannot be read", errno);
        if (count == 0) return contents;
        contents.append(buffer, static_cast<std::size_t>(count));
        if (contents.size() > limit) fail(file, "cannot be read", EFBIG);
    }
}

std::filesystem::path keepBeside(const std::filesystem::path& file) {
    std::filesystem::path kept;
    for (int number = 1; number < 1000; ++number) {
        const std::string suffix = number == 1 ? "" : fmt::format(" {}", number);
        kept = file.parent_path() /
               fmt::format("{} (unreadable{}){}", file.stem().string(), suffix, file.extension().string());
        if (::link(file.c_str(), kept.c_str()) == 0) return kept;
        if (errno == EEXIST) continue;
        std::error_code error; // not every file system has second names
        if (std::filesystem::copy_file(file, kept, error)) return kept;
        if (error != std::errc::file_exists) fail(kept, "cannot be written", error.value());
    }
    fail(kept, "cannot be written", EEXIST);
}

} // namespace RecordCore
