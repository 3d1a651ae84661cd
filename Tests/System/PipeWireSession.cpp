#include "Tests/System/PipeWireSession.h"

#include <cstdlib>
#include <fstream>
#include <sstream>
#include <stdexcept>

PipeWireSession::PipeWireSession() {
    const std::string folder = own.path().string();
    environment = {{"HOME", folder},
                   {"XDG_RUNTIME_DIR", folder},
                   {"XDG_CONFIG_HOME", folder},
                   {"XDG_STATE_HOME", folder},
                   {"PIPEWIRE_RUNTIME_DIR", folder},
                   {"DBUS_SESSION_BUS_ADDRESS", "unix:path=" + folder + "/bus"}};
    setenv("PIPEWIRE_RUNTIME_DIR", folder.c_str(), 1);
    bus.emplace(std::vector<std::string>{"dbus-daemon", "--session", "--nofork", "--nopidfile", "--nosyslog",
                                         "--address=unix:path=" + folder + "/bus"},
                options("bus.log"));
    daemon.emplace(std::vector<std::string>{"pipewire"}, options("pipewire.log"));
    if (!eventually(10, [&] {
            return std::filesystem::exists(own / "bus") && std::filesystem::exists(own / "pipewire-0");
        }))
        throw std::runtime_error("pipewire does not start");
    // Bluetooth is not wanted, and its watch on logins ends the session manager where systemd does not run.
    const std::filesystem::path settings = own.path() / "wireplumber/bluetooth.lua.d";
    std::filesystem::create_directories(settings);
    std::ofstream(settings / "51-none.lua") << "bluez_monitor.enabled = false\n"
                                               "bluez_monitor.properties[\"with-logind\"] = false\n";
    manager.emplace(std::vector<std::string>{"wireplumber"}, options("wireplumber.log"));
}

PipeWireSession::~PipeWireSession() {
    cameras.clear();
    manager.reset();
    daemon.reset();
    bus.reset();
    unsetenv("PIPEWIRE_RUNTIME_DIR");
}

bool PipeWireSession::installed() {
    return ChildProcess::installed("pipewire") && ChildProcess::installed("wireplumber") &&
           ChildProcess::installed("dbus-daemon") && ChildProcess::installed("pw-cli");
}

ChildProcess::Options PipeWireSession::options(const std::string& log) const {
    return {environment, own / log.c_str()};
}

void PipeWireSession::plugCamera(const std::string& name, const std::string& format, int width, int height,
                                 int fps, const std::string& kind) {
    std::vector<std::string> command{
        OMBREL_CAMERA_FIXTURE, name, format, std::to_string(width), std::to_string(height),
        std::to_string(fps)};
    if (!kind.empty()) command.push_back(kind);
    cameras.push_back(std::make_unique<ChildProcess>(command, options(name + ".log")));
    const std::string listing = "nodes-" + name + ".log";
    if (!eventually(10, [&] {
            std::filesystem::remove(own / listing.c_str());
            ChildProcess::run({"pw-cli", "ls", "Node"}, options(listing));
            std::stringstream text;
            text << std::ifstream(own / listing.c_str()).rdbuf();
            return text.str().find("\"" + name + "\"") != std::string::npos;
        }))
        throw std::runtime_error("the camera does not appear");
}

std::map<unsigned, double> PipeWireSession::taken(const std::string& name) const {
    std::map<unsigned, double> times;
    std::ifstream log(own / (name + ".log").c_str());
    unsigned number = 0;
    for (double time = 0; log >> number >> time;)
        times[number] = time;
    return times;
}
