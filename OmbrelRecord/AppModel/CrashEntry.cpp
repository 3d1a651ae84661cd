#include "OmbrelRecord/AppModel/CrashEntry.h"

#include "OmbrelRecord/AppModel/IsoTime.h"

#include <execinfo.h>
#include <fcntl.h>
#include <signal.h>
#include <time.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cstdlib>
#include <cxxabi.h>
#include <exception>
#include <string_view>
#include <typeinfo>

namespace OmbrelRecord {

namespace {

// Everything the handlers touch is prepared beforehand: they must not allocate or take a lock.
std::array<char, 4096> logPath{};
std::atomic<bool> entryWritten{false};

std::string_view signalName(int number) {
    switch (number) {
    case SIGSEGV:
        return "SIGSEGV";
    case SIGBUS:
        return "SIGBUS";
    case SIGFPE:
        return "SIGFPE";
    case SIGILL:
        return "SIGILL";
    case SIGABRT:
        return "SIGABRT";
    default:
        return "signal";
    }
}

std::string_view reasonOf(const siginfo_t* info) {
    if (!info || (info->si_signo != SIGSEGV && info->si_signo != SIGBUS)) return {};
    if (info->si_code == SEGV_MAPERR) return "address not mapped";
    if (info->si_code == SEGV_ACCERR) return "no access to the address";
    return {};
}

void put(int file, std::string_view text) {
    // A log that cannot be written is lost.
    const ssize_t ignored = ::write(file, text.data(), text.size());
    static_cast<void>(ignored);
}

/// Usable in a signal handler: only system calls and arithmetic, and the stack is printed without allocating.
void writeEntry(std::string_view name, std::string_view reason) {
    if (entryWritten.exchange(true)) return; // terminate ends in SIGABRT: one entry for one crash
    const int file = ::open(logPath.data(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, S_IRUSR | S_IWUSR);
    if (file < 0) return;
    timespec now{};
    ::clock_gettime(CLOCK_REALTIME, &now);
    put(file, IsoTime(std::chrono::sys_seconds(std::chrono::seconds(now.tv_sec))).text());
    put(file, " EXCEPTION ");
    put(file, name);
    put(file, ": ");
    put(file, reason);
    put(file, "\n");
    std::array<void*, 64> frames{};
    const int count = ::backtrace(frames.data(), static_cast<int>(frames.size()));
    ::backtrace_symbols_fd(frames.data(), count, file);
    ::close(file);
}

void onSignal(int number, siginfo_t* info, void*) {
    writeEntry(signalName(number), reasonOf(info));
    // The handler was installed to run once: now the default takes its course, core dump included.
    ::raise(number);
}

[[noreturn]] void onTerminate() {
    const std::type_info* type = abi::__cxa_current_exception_type();
    if (!type) {
        writeEntry("terminate", "");
        std::abort();
    }
    int status = 0;
    char* readable = abi::__cxa_demangle(type->name(), nullptr, nullptr, &status);
    const std::string_view name = status == 0 && readable ? readable : type->name();
    try {
        throw;
    } catch (const std::exception& error) {
        writeEntry(name, error.what());
    } catch (...) {
        writeEntry(name, "");
    }
    std::abort();
}

} // namespace

void installCrashEntry(const std::filesystem::path& log) {
    const std::string& path = log.native();
    if (path.size() >= logPath.size()) return;
    path.copy(logPath.data(), path.size());
    logPath[path.size()] = '\0';

    // The first call loads the unwinder, which allocates: done here, not in the handler.
    std::array<void*, 1> probe{};
    ::backtrace(probe.data(), 1);

    // A stack that has overflowed cannot run the handler: it gets its own.
    static std::array<std::byte, 1 << 16> handlerStack{};
    stack_t stack{};
    stack.ss_sp = handlerStack.data();
    stack.ss_size = handlerStack.size();
    ::sigaltstack(&stack, nullptr);

    struct sigaction action {};
    action.sa_sigaction = onSignal;
    action.sa_flags = static_cast<int>(SA_SIGINFO | SA_ONSTACK | SA_RESETHAND);
    ::sigemptyset(&action.sa_mask);
    for (const int number : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT})
        ::sigaction(number, &action, nullptr);
    std::set_terminate(onTerminate);
}

} // namespace OmbrelRecord
