#include "OmbrelRecord/Transcriber/Whisper/ChildProcess.h"

#include "RecordCore/Model/RecordingError.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <optional>
#include <poll.h>
#include <spawn.h>
#include <string_view>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

namespace OmbrelRecord::ChildProcess {

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::size_t keptMessages = 4096;
constexpr int pollMilliseconds = 100;              ///< how soon a cancellation is seen
constexpr auto patience = std::chrono::seconds(2); ///< between asking to terminate and making it

class Pipe {
public:
    Pipe() {
        if (::pipe2(ends.data(), O_CLOEXEC) != 0) ends = {-1, -1};
    }
    ~Pipe() {
        close(0);
        close(1);
    }
    Pipe(const Pipe&) = delete;
    Pipe& operator=(const Pipe&) = delete;

    bool valid() const { return ends[0] >= 0; }
    int readEnd() const { return ends[0]; }
    int writeEnd() const { return ends[1]; }
    void close(std::size_t end) {
        if (ends[end] >= 0) ::close(ends[end]);
        ends[end] = -1;
    }

private:
    std::array<int, 2> ends{-1, -1};
};

/// What a new process is given, for posix_spawn.
struct SpawnSettings {
    posix_spawn_file_actions_t files{};
    posix_spawnattr_t attributes{};

    SpawnSettings() {
        posix_spawn_file_actions_init(&files);
        posix_spawnattr_init(&attributes);
    }
    ~SpawnSettings() {
        posix_spawn_file_actions_destroy(&files);
        posix_spawnattr_destroy(&attributes);
    }
    SpawnSettings(const SpawnSettings&) = delete;
    SpawnSettings& operator=(const SpawnSettings&) = delete;
};

[[noreturn]] void fail(const std::filesystem::path& program, int error) {
    throw RecordCore::RecordingError(
        fmt::format("{}: cannot be started: {}", program.string(), std::strerror(error)));
}

} // namespace

Result run(const std::filesystem::path& program, const std::vector<std::string>& arguments,
           const std::atomic<bool>* cancel) {
    Pipe messages;
    if (!messages.valid()) fail(program, errno);

    SpawnSettings settings;
    posix_spawn_file_actions_addopen(&settings.files, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&settings.files, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_adddup2(&settings.files, messages.writeEnd(), STDERR_FILENO);
    // A group of its own, so that what a wrapper script starts is stopped with it. Signals as they are by
    // default: an interrupted parent ignores some.
    sigset_t signals;
    sigemptyset(&signals);
    posix_spawnattr_setsigmask(&settings.attributes, &signals);
    for (const int signal : {SIGINT, SIGTERM, SIGPIPE})
        sigaddset(&signals, signal);
    posix_spawnattr_setsigdefault(&settings.attributes, &signals);
    posix_spawnattr_setpgroup(&settings.attributes, 0);
    posix_spawnattr_setflags(&settings.attributes,
                             POSIX_SPAWN_SETPGROUP | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);

    std::vector<std::string> words{program.string()};
    words.insert(words.end(), arguments.begin(), arguments.end());
    std::vector<char*> argv;
    for (std::string& word : words)
        argv.push_back(word.data());
    argv.push_back(nullptr);

    pid_t child = 0;
    if (const int error =
            posix_spawn(&child, program.c_str(), &settings.files, &settings.attributes, argv.data(), environ))
        fail(program, error);
    messages.close(1);

    Result result;
    const auto receive = [&](int milliseconds) { // whether there was anything, or may be more
        pollfd waiting{messages.readEnd(), POLLIN, 0};
        if (::poll(&waiting, 1, milliseconds) <= 0 || messages.readEnd() < 0) return false;
        std::array<char, 1024> block{};
        const ssize_t count = ::read(messages.readEnd(), block.data(), block.size());
        if (count == 0) messages.close(0);
        if (count <= 0) return false;
        result.messages.append(block.data(), static_cast<std::size_t>(count));
        if (result.messages.size() > 2 * keptMessages)
            result.messages.erase(0, result.messages.size() - keptMessages);
        return true;
    };

    std::optional<Clock::time_point> asked;
    bool forced = false;
    for (;;) {
        int status = 0;
        const pid_t ended = ::waitpid(child, &status, WNOHANG);
        if (ended == child) {
            result.status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
            break;
        }
        if (ended < 0 && errno != EINTR) { // somebody else has collected it: nothing is known of its success
            result.status = 127;
            break;
        }
        receive(pollMilliseconds);
        if (!cancel || !cancel->load() || forced) continue;
        if (!asked) {
            ::kill(-child, SIGTERM);
            asked = Clock::now();
        } else if (Clock::now() - *asked > patience) {
            ::kill(-child, SIGKILL);
            forced = true;
        }
    }
    // What it wrote last; not what something that it left behind may still write.
    for (int blocks = 0; blocks < 64 && receive(0); ++blocks) {
    }
    return result;
}

std::filesystem::path find(const std::string& name) {
    const char* variable = std::getenv("PATH");
    const std::string path = variable ? variable : "";
    for (std::string_view rest = path; !rest.empty();) {
        const std::size_t end = std::min(rest.find(':'), rest.size());
        const std::filesystem::path candidate =
            std::filesystem::path(std::string(rest.substr(0, end))) / name;
        std::error_code ignored;
        if (end > 0 && std::filesystem::is_regular_file(candidate, ignored) &&
            ::access(candidate.c_str(), X_OK) == 0)
            return candidate;
        rest.remove_prefix(std::min(end + 1, rest.size()));
    }
    return {};
}

} // namespace OmbrelRecord::ChildProcess
