#pragma once

#include "Tests/Support/TemporaryFolder.h"
#include "Tests/System/ChildProcess.h"

#include <optional>

/// A PulseAudio daemon of one test's own, in a folder of its own, with two outputs that play into nothing
/// ("speakers", the default, and "headphones") and no microphone. While it lives, this process and the
/// programs it starts reach it and no other.
class PulseDaemon {
public:
    PulseDaemon();
    ~PulseDaemon();

    static bool installed() {
        return ChildProcess::installed("pulseaudio") && ChildProcess::installed("pactl");
    }

    void start();
    void stop() { process.reset(); }
    /// Stops it where it stands, as an overloaded or broken service would be, or lets it go on.
    void freeze(bool frozen);
    /// `pactl` with these arguments; whether it went well.
    bool control(std::vector<std::string> arguments);
    std::filesystem::path folder() const { return own.path(); }

    /// A microphone that hears what is written into a pipe: 48 kHz, stereo, 16 bits.
    void plugMicrophone(const std::string& name);
    void unplugMicrophones();
    std::filesystem::path pipeOf(const std::string& name) const { return own.path() / (name + ".pipe"); }

private:
    TemporaryFolder own;
    std::string server;
    std::optional<ChildProcess> process;
};
