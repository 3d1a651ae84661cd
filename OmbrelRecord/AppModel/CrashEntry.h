#pragma once

#include <filesystem>

namespace OmbrelRecord {

/// From here on, an exception that nobody catches and every fatal signal (SIGSEGV, SIGBUS, SIGFPE, SIGILL,
/// SIGABRT) appends an entry "EXCEPTION <name>: <reason>" with the stack to the file, on the crashing thread;
/// then the process dies as it would have. Called once, on the main thread.
void installCrashEntry(const std::filesystem::path& log);

} // namespace OmbrelRecord
