#include "RecordCore/Capture/X11/X11Connection.h"

#include "RecordCore/Capture/HostClock.h"

#include <fmt/format.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>
#include <xcb/xcbext.h>

#include <cerrno>
#include <chrono>
#include <condition_variable>
#include <cstring>
#include <mutex>
#include <thread>

namespace RecordCore {

namespace {

/// What a connection is made in. The library's own call waits for a server that hangs without an end and
/// cannot be interrupted, so it runs on a thread that is left behind when its time is up; whoever of the two
/// comes last throws the connection away.
struct Attempt {
    std::mutex mutex;
    std::condition_variable over;
    xcb_connection_t* connection = nullptr;
    int screen = 0;
    bool abandoned = false;
};

/// None when the server does not answer in time.
xcb_connection_t* connectTo(const std::string& display, int& screen) {
    const auto attempt = std::make_shared<Attempt>();
    std::thread([attempt, display] {
        int number = 0;
        xcb_connection_t* made = xcb_connect(display.c_str(), &number);
        const std::lock_guard lock(attempt->mutex);
        if (attempt->abandoned) {
            xcb_disconnect(made);
            return;
        }
        attempt->connection = made;
        attempt->screen = number;
        attempt->over.notify_one();
    }).detach();
    std::unique_lock lock(attempt->mutex);
    attempt->abandoned = !attempt->over.wait_for(lock, std::chrono::duration<double>(X11Connection::patience),
                                                 [&] { return attempt->connection != nullptr; });
    screen = attempt->screen;
    return attempt->connection;
}

} // namespace

bool x11ServerListens() {
    char* host = nullptr;
    int number = 0;
    if (xcb_parse_display(nullptr, &host, &number, nullptr) == 0) return false;
    const std::unique_ptr<char, FreeXcb> owned(host);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    const std::string path = fmt::format("/tmp/.X11-unix/X{}", number);
    path.copy(address.sun_path, sizeof address.sun_path - 1);
    const int file = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    if (file < 0) return false;
    // "Again": so many wait for it already.
    const bool listens =
        connect(file, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0 || errno == EAGAIN;
    close(file);
    return listens;
}

X11Connection::X11Connection(const std::string& display) {
    const char* variable = std::getenv("DISPLAY");
    const std::string name = !display.empty() ? display : variable != nullptr ? variable : "";
    if (name.empty()) throw RecordingError("no display: DISPLAY is not set");
    int number = 0;
    connection = connectTo(name, number);
    if (connection == nullptr || broken()) {
        if (connection != nullptr) xcb_disconnect(connection);
        throw RecordingError(fmt::format("no display: the X server {} does not answer", name));
    }
    xcb_screen_iterator_t iterator = xcb_setup_roots_iterator(xcb_get_setup(connection));
    while (number > 0 && iterator.rem > 1) {
        xcb_screen_next(&iterator);
        --number;
    }
    defaultScreen = iterator.data;
}

X11Connection::~X11Connection() {
    xcb_disconnect(connection);
}

void X11Connection::cut() const {
    shutdown(descriptor(), SHUT_RDWR);
}

/// Not the library's own wait, which has no end: it asks whether the answer is here and sleeps on the line.
void* X11Connection::await(unsigned sequence) const {
    xcb_flush(connection);
    const double end = HostClock::system().now() + patience;
    for (;;) {
        void* answer = nullptr;
        xcb_generic_error_t* refusal = nullptr;
        if (xcb_poll_for_reply(connection, sequence, &answer, &refusal) != 0) {
            std::free(refusal);
            return answer;
        }
        if (broken()) return nullptr;
        const double left = end - HostClock::system().now();
        if (!endless && left <= 0) {
            cut();
            throw RecordingError("the X server does not answer any more");
        }
        pollfd line{descriptor(), POLLIN, 0};
        poll(&line, 1, endless ? -1 : static_cast<int>(left * 1000) + 1);
    }
}

bool X11Connection::done(xcb_void_cookie_t checked) const {
    sync(); // after which the library knows without waiting
    const XcbReply<xcb_generic_error_t> error(xcb_request_check(connection, checked));
    return !error && !broken();
}

void X11Connection::sync() const {
    static_cast<void>(reply<xcb_get_input_focus_reply_t>(xcb_get_input_focus(connection)));
}

const xcb_query_extension_reply_t* X11Connection::extension(xcb_extension_t& id) const {
    xcb_prefetch_extension_data(connection, &id);
    sync();
    if (broken()) return nullptr;
    const xcb_query_extension_reply_t* data = xcb_get_extension_data(connection, &id);
    return data != nullptr && data->present != 0 ? data : nullptr;
}

const xcb_query_extension_reply_t& X11Connection::require(xcb_extension_t& id, const char* name) const {
    const xcb_query_extension_reply_t* data = extension(id);
    if (data == nullptr) throw RecordingError(fmt::format("the X server has no {} extension", name));
    return *data;
}

xcb_atom_t X11Connection::atom(const char* name) const {
    const auto cookie = xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(std::strlen(name)), name);
    const auto answer = reply<xcb_intern_atom_reply_t>(cookie);
    return answer ? answer->atom : static_cast<xcb_atom_t>(XCB_ATOM_NONE);
}

std::vector<std::uint32_t> X11Connection::values(xcb_window_t window, xcb_atom_t property,
                                                 xcb_atom_t type) const {
    // A client list of 64 Ki windows is more than any server holds.
    const auto cookie = xcb_get_property(connection, 0, window, property, type, 0, 65536);
    const auto answer = reply<xcb_get_property_reply_t>(cookie);
    if (!answer || answer->format != 32) return {};
    const auto* data = static_cast<const std::uint32_t*>(xcb_get_property_value(answer.get()));
    return {data, data + xcb_get_property_value_length(answer.get()) / 4};
}

std::string X11Connection::bytes(xcb_window_t window, xcb_atom_t property, xcb_atom_t type) const {
    const auto cookie = xcb_get_property(connection, 0, window, property, type, 0, 1024);
    const auto answer = reply<xcb_get_property_reply_t>(cookie);
    if (!answer || answer->format != 8) return {};
    return {static_cast<const char*>(xcb_get_property_value(answer.get())),
            static_cast<std::size_t>(xcb_get_property_value_length(answer.get()))};
}

} // namespace RecordCore
