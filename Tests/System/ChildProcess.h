#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <vector>

/// A program that runs for as long as the object lives; it also ends when the test process does.
class ChildProcess {
public:
    struct Options {
        std::map<std::string, std::string> environment; ///< on top of this process's own
        std::filesystem::path output;                   ///< standard output and error; empty: nowhere
    };

    ChildProcess(std::vector<std::string> command, const Options& options);
    ~ChildProcess();
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    bool running();
    /// Waits for the program's end and returns its exit status, −1 for a signal.
    int wait();
    /// Asks it to end, and after two seconds no longer asks.
    void terminate();
    void kill();
    int id() const { return pid; }

    /// Whether a program of that name is installed.
    static bool installed(const std::string& program);
    /// Runs a program to its end; its exit status.
    static int run(std::vector<std::string> command, const Options& options);

private:
    int pid = -1;
    int status = 0;
};

/// Waits until a condition holds, asking every few milliseconds, at most for `seconds`. Whether it held.
template <class Condition>
bool eventually(double seconds, Condition holds);

void pauseShortly();
double monotonicSeconds();

template <class Condition>
bool eventually(double seconds, Condition holds) {
    const double end = monotonicSeconds() + seconds;
    while (!holds()) {
        if (monotonicSeconds() > end) return false;
        pauseShortly();
    }
    return true;
}
