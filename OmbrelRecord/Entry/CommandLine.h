#pragma once

#include <filesystem>
#include <optional>

namespace OmbrelRecord {

/// The headless verbs of the program: `plan`, `still`, `export` and the others.
namespace CommandLine {

/// Runs the verb that the first argument names and returns the exit status: 0 for success, 1 for failure,
/// 2 for wrong usage. None when the first argument is no verb, so that the caller goes on to the windows; it
/// is then a switch or a file that is there. Errors go to standard error, one line each.
std::optional<int> run(int argc, char** argv);

/// The file that the windows are to open; empty when none is named.
std::filesystem::path file(int argc, char** argv);

} // namespace CommandLine
} // namespace OmbrelRecord
