#pragma once

#include <atomic>
#include <filesystem>
#include <string>
#include <vector>

namespace OmbrelRecord {

/// Runs another program to its end, without a shell.
namespace ChildProcess {

struct Result {
    int status = 0;       ///< exit status; 128 + n when signal n ended it
    std::string messages; ///< the end of what it wrote to standard error, a few kilobytes at most
};

/// Starts `program` (a path; not searched for) with nothing on its standard input and what it prints thrown
/// away, and waits. Once `cancel` (may be null) turns true, the program and what it has started are asked to
/// terminate, then made to. Throws RecordingError when the program cannot be started.
Result run(const std::filesystem::path& program, const std::vector<std::string>& arguments,
           const std::atomic<bool>* cancel);

/// The program of that name in PATH; empty when there is none.
std::filesystem::path find(const std::string& name);

} // namespace ChildProcess
} // namespace OmbrelRecord
