#pragma once

#include "Tests/Support/TemporaryFolder.h"
#include "Tests/System/ChildProcess.h"

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

/// PipeWire and its session manager, of one test's own, on a bus and in folders of their own. While it lives,
/// this process and the programs it starts reach it and no other.
class PipeWireSession {
public:
    PipeWireSession();
    ~PipeWireSession();

    static bool installed();

    /// Starts a camera whose pictures show their numbers, and waits until it is there. `format` is "yuyv",
    /// "nv12" or "i420"; `kind` is empty, "nostamp" or "silent".
    void plugCamera(const std::string& name, const std::string& format, int width, int height, int fps,
                    const std::string& kind = {});
    void unplugCameras() { cameras.clear(); }
    /// Host clock seconds at which a camera took each picture, by its number.
    std::map<unsigned, double> taken(const std::string& name) const;

    /// Runs a program as a client of the session.
    ChildProcess::Options options(const std::string& log) const;

private:
    TemporaryFolder own;
    std::map<std::string, std::string> environment;
    std::optional<ChildProcess> bus, daemon, manager;
    std::vector<std::unique_ptr<ChildProcess>> cameras;
};
