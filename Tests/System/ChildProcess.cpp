#include "Tests/System/ChildProcess.h"

#include "RecordCore/Capture/HostClock.h"

#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <sstream>
#include <stdexcept>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

ChildProcess::ChildProcess(std::vector<std::string> command, const Options& options) {
    // Everything is laid out before the fork: between fork and exec hardly anything is allowed.
    std::map<std::string, std::string> environment;
    for (char** entry = environ; *entry; ++entry) {
        const std::string text = *entry;
        const std::size_t equals = text.find('=');
        if (equals != std::string::npos) environment[text.substr(0, equals)] = text.substr(equals + 1);
    }
    for (const auto& [name, value] : options.environment)
        environment[name] = value;
    std::vector<std::string> lines;
    for (const auto& [name, value] : environment)
        lines.push_back(name + "=" + value);
    std::vector<char*> variables;
    for (std::string& line : lines)
        variables.push_back(line.data());
    variables.push_back(nullptr);
    std::vector<char*> arguments;
    for (std::string& argument : command)
        arguments.push_back(argument.data());
    arguments.push_back(nullptr);
    const std::string output = options.output.empty() ? "/dev/null" : options.output.string();

    pid = fork();
    if (pid < 0) throw std::runtime_error("fork failed");
    if (pid == 0) {
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        setpgid(0, 0);
        const int in = open("/dev/null", O_RDONLY);
        const int out = open(output.c_str(), O_WRONLY | O_CREAT | O_APPEND, 0600);
        dup2(in, 0);
        dup2(out, 1);
        dup2(out, 2);
        execvpe(arguments[0], arguments.data(), variables.data());
        _exit(127);
    }
}

ChildProcess::~ChildProcess() {
    terminate();
}

bool ChildProcess::running() {
    if (pid > 0 && waitpid(pid, &status, WNOHANG) == pid) pid = -1;
    return pid > 0;
}

int ChildProcess::wait() {
    if (pid > 0) waitpid(pid, &status, 0);
    pid = -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

void ChildProcess::terminate() {
    if (!running()) return;
    ::kill(-pid, SIGTERM);
    if (!eventually(2, [this] { return !running(); })) kill();
}

void ChildProcess::kill() {
    if (!running()) return;
    ::kill(-pid, SIGKILL);
    wait();
}

bool ChildProcess::installed(const std::string& program) {
    const char* path = std::getenv("PATH");
    std::istringstream folders(path ? path : "/usr/bin:/bin");
    for (std::string folder; std::getline(folders, folder, ':');)
        if (access((folder + "/" + program).c_str(), X_OK) == 0) return true;
    return false;
}

int ChildProcess::run(std::vector<std::string> command, const Options& options) {
    ChildProcess process(std::move(command), options);
    return process.wait();
}

void pauseShortly() {
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
}

double monotonicSeconds() {
    return RecordCore::HostClock::system().now();
}
