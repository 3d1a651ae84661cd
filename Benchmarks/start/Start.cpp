// From the start of a program to its first window with something drawn in it, the processor time it has taken
// by then, and its memory two seconds later, for the application and for an empty Qt Quick window in turn.
// Needs an X display without a window manager (xvfb-run -s "-screen 0 1920x1080x24" will do). Further
// programs, such as the application of another build, are measured in the same turns. usage:
// ombrel-bench-start [runs [program ...]]

#include <xcb/xcb.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <fmt/format.h>
#include <fstream>
#include <spawn.h>
#include <string>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;

struct Figures {
    double seconds = 0;
    double cpu = 0;       ///< seconds of all its threads
    double megabytes = 0; ///< proportional set: memory shared with others counts in part
};

double megabytes(pid_t pid) {
    std::ifstream file(fmt::format("/proc/{}/smaps_rollup", pid));
    std::string word;
    while (file >> word)
        if (word == "Pss:") {
            double kilobytes = 0;
            file >> kilobytes;
            return kilobytes / 1024;
        }
    return 0;
}

/// Of all its threads, those that have ended, too.
double cpuSeconds(pid_t pid) {
    clockid_t clock{};
    timespec time{};
    if (clock_getcpuclockid(pid, &clock) != 0 || clock_gettime(clock, &time) != 0) return 0;
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

/// Whether a window of the screen is large, shown, and holds another pixel than the screen's own black.
bool drawn(xcb_connection_t* connection, xcb_window_t root) {
    xcb_query_tree_reply_t* tree =
        xcb_query_tree_reply(connection, xcb_query_tree(connection, root), nullptr);
    if (!tree) return false;
    bool found = false;
    const xcb_window_t* children = xcb_query_tree_children(tree);
    for (int i = 0; i < xcb_query_tree_children_length(tree) && !found; ++i) {
        auto* place = xcb_get_geometry_reply(connection, xcb_get_geometry(connection, children[i]), nullptr);
        auto* state = xcb_get_window_attributes_reply(
            connection, xcb_get_window_attributes(connection, children[i]), nullptr);
        if (place && state && place->width > 800 && state->map_state == XCB_MAP_STATE_VIEWABLE) {
            auto* image = xcb_get_image_reply(
                connection,
                xcb_get_image(connection, XCB_IMAGE_FORMAT_Z_PIXMAP, children[i], 4, 4, 1, 1, ~0U), nullptr);
            if (image) {
                const std::uint8_t* pixel = xcb_get_image_data(image);
                found = pixel[0] + pixel[1] + pixel[2] > 0;
            }
            std::free(image);
        }
        std::free(place);
        std::free(state);
    }
    std::free(tree);
    return found;
}

Figures run(const char* program, xcb_connection_t* connection, xcb_window_t root) {
    std::string name = program;
    char* arguments[] = {name.data(), nullptr};
    pid_t pid = 0;
    const auto start = Clock::now();
    if (posix_spawn(&pid, program, nullptr, nullptr, arguments, environ) != 0) std::exit(1);
    Figures figures;
    while (!drawn(connection, root)) {
        if (Clock::now() - start > std::chrono::seconds(30)) {
            fmt::print(stderr, "{} shows no window\n", program);
            break;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    figures.seconds = std::chrono::duration<double>(Clock::now() - start).count();
    figures.cpu = cpuSeconds(pid);
    std::this_thread::sleep_for(std::chrono::seconds(2));
    figures.megabytes = megabytes(pid);
    kill(pid, SIGTERM);
    waitpid(pid, nullptr, 0);
    // Its window must not be taken for the next one's.
    while (drawn(connection, root))
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    return figures;
}

double median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

} // namespace

int main(int argc, char** argv) {
    const int runs = argc > 1 ? std::max(1, std::atoi(argv[1])) : 7;
    xcb_connection_t* connection = xcb_connect(nullptr, nullptr);
    if (xcb_connection_has_error(connection) != 0) {
        fmt::print(stderr, "no X display\n");
        return 1;
    }
    const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
    struct Program {
        const char* name;
        const char* path;
        std::vector<double> seconds, cpu, sizes;
    };
    std::vector<Program> programs{{"empty window", EMPTY_WINDOW, {}, {}, {}},
                                  {"application", OMBREL_RECORD_PROGRAM, {}, {}, {}}};
    for (int i = 2; i < argc; ++i)
        programs.push_back({"another", argv[i], {}, {}, {}});
    // The first round warms the caches and is not counted; then one after the other, so that all meet the
    // same machine.
    for (int round = 0; round <= runs; ++round)
        for (Program& program : programs) {
            const Figures figures = run(program.path, connection, root);
            if (round == 0) continue;
            program.seconds.push_back(figures.seconds);
            program.cpu.push_back(figures.cpu);
            program.sizes.push_back(figures.megabytes);
        }
    fmt::print("              until drawn   processor       memory   ratios\n");
    const Program& empty = programs.front();
    for (const Program& program : programs)
        fmt::print("{:12}  {:9.3f} s {:9.3f} s {:9.1f} MB   {:.2f} {:.2f} {:.2f}\n", program.name,
                   median(program.seconds), median(program.cpu), median(program.sizes),
                   median(program.seconds) / median(empty.seconds), median(program.cpu) / median(empty.cpu),
                   median(program.sizes) / median(empty.sizes));
    xcb_disconnect(connection);
    return 0;
}
