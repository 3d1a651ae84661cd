#pragma once

#include <functional>

namespace OmbrelRecord {

/// Where the process begins: one of four jobs without windows, a verb, or the application.
namespace Entry {

/// Decides by the arguments, the program's path among them, and returns the process's status. A switch that
/// lacks its arguments counts as absent.
int main(int argc, char** argv);

/// Runs a job on the main thread while the event loop turns, without windows; the status is always 0, what
/// the job has to say it writes.
int headless(int argc, char** argv, const std::function<void()>& job);

} // namespace Entry
} // namespace OmbrelRecord
