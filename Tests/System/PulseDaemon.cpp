#include "Tests/System/PulseDaemon.h"

#include <csignal>
#include <cstdlib>
#include <fstream>
#include <stdexcept>

PulseDaemon::PulseDaemon() : server("unix:" + (own / "native").string()) {
    std::ofstream script(own / "default.pa");
    script << "load-module module-native-protocol-unix auth-anonymous=1 socket=" << (own / "native").string()
           << "\n";
    // Without rewinds a null sink works in short blocks, as a sound card does.
    for (const char* name : {"speakers", "headphones"})
        script << "load-module module-null-sink norewinds=1 rate=48000 sink_name=" << name << "\n";
    script << "set-default-sink speakers\n";
    script.close();
    setenv("PULSE_SERVER", server.c_str(), 1);
    start();
}

PulseDaemon::~PulseDaemon() {
    stop();
    unsetenv("PULSE_SERVER");
}

void PulseDaemon::start() {
    std::filesystem::remove(own / "native");
    const std::string home = own.path().string();
    process.emplace(std::vector<std::string>{"pulseaudio", "-n", "-F", (own / "default.pa").string(),
                                             "--daemonize=no", "--use-pid-file=no", "--exit-idle-time=-1",
                                             "--high-priority=no", "--realtime=no", "--log-target=stderr"},
                    ChildProcess::Options{{{"HOME", home},
                                           {"XDG_RUNTIME_DIR", home},
                                           {"XDG_CONFIG_HOME", home},
                                           {"PULSE_RUNTIME_PATH", home},
                                           {"PULSE_STATE_PATH", home},
                                           {"DBUS_SESSION_BUS_ADDRESS", "disabled:"}},
                                          own / "pulseaudio.log"});
    if (!eventually(10, [this] { return std::filesystem::exists(own / "native") && control({"info"}); }))
        throw std::runtime_error("pulseaudio does not start");
}

bool PulseDaemon::control(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), {"pactl", "-s", server});
    return ChildProcess::run(std::move(arguments), {{{"HOME", own.path().string()}}, own / "pactl.log"}) == 0;
}

void PulseDaemon::freeze(bool frozen) {
    ::kill(process->id(), frozen ? SIGSTOP : SIGCONT);
}

void PulseDaemon::plugMicrophone(const std::string& name) {
    if (!control({"load-module", "module-pipe-source", "source_name=" + name, "file=" + pipeOf(name).string(),
                  "format=s16le", "rate=48000", "channels=2"}))
        throw std::runtime_error("no pipe source");
}

void PulseDaemon::unplugMicrophones() {
    control({"unload-module", "module-pipe-source"});
}
