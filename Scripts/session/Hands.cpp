// A pair of hands for an X server: reads what to do from standard input, a line each, and does it as a person
// would, through real input events (XTEST). Coordinates are points, within a window named by its class (the
// name before them) or on the whole screen ("screen"); --scale says how many pixels a point has.
//
//   place CLASS X Y WIDTH HEIGHT   waits for the window, then puts and sizes it
//   move CLASS X Y                 glides there
//   click | double | right         with the left button, twice, with the right one
//   scroll LINES                   turns the wheel, down when positive
//   type TEXT                      the rest of the line
//   key NAME                       Return, Home, End, Escape, Tab or a letter, after "ctrl+" with Control
//   wait SECONDS
//   until FILE [SECONDS]           waits until the file exists, a minute when no time is given
//
// usage: SessionHands [--scale N] < script

#include <xcb/xcb.h>
#include <xcb/xtest.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <iostream>
#include <map>
#include <memory>
#include <random>
#include <sstream>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace {

template <class T>
struct Free {
    void operator()(T* reply) const { std::free(reply); }
};
template <class T>
using Reply = std::unique_ptr<T, Free<T>>;
#define ASK(connection, request, ...)                                                                        \
    Reply<request##_reply_t>(                                                                                \
        request##_reply(connection, request(connection __VA_OPT__(, ) __VA_ARGS__), nullptr))

void pause(double seconds) {
    std::this_thread::sleep_for(std::chrono::duration<double>(seconds));
}

class Hands {
public:
    explicit Hands(double scale) : scale(scale), connection(xcb_connect(nullptr, nullptr)) {
        if (xcb_connection_has_error(connection) != 0) throw std::runtime_error("no X server");
        root = xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
        learnKeys();
    }
    ~Hands() { xcb_disconnect(connection); }
    Hands(const Hands&) = delete;
    Hands& operator=(const Hands&) = delete;

    void place(const std::string& name, double x, double y, double width, double height) {
        const xcb_window_t window = find(name);
        xcb_client_message_event_t message{};
        message.response_type = XCB_CLIENT_MESSAGE;
        message.format = 32;
        message.window = window;
        message.type = atom("_NET_MOVERESIZE_WINDOW");
        message.data.data32[0] = 1 | 0xF << 8 | 2 << 12; // north-west gravity; all four values; from a user
        const double values[] = {x, y, width, height};
        for (int i = 0; i < 4; ++i)
            message.data.data32[i + 1] = static_cast<std::uint32_t>(std::lround(values[i] * scale));
        xcb_send_event(connection, 0, root,
                       XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                       reinterpret_cast<const char*>(&message));
        for (int i = 0; i < 200; ++i) {
            const auto now = ASK(connection, xcb_get_geometry, window);
            if (now && now->width == message.data.data32[3] && now->height == message.data.data32[4]) return;
            pause(0.02);
        }
        // Terminals are sized by whole letters: near is good enough.
    }

    /// A glide in the time a person needs for the way (Fitts), slow at both ends (minimum jerk), a little
    /// bent.
    void move(const std::string& name, double x, double y) {
        double toX = x * scale, toY = y * scale;
        if (name != "screen") {
            const auto origin = ASK(connection, xcb_translate_coordinates, find(name), root, 0, 0);
            if (!origin) throw std::runtime_error(name + " has gone");
            toX += origin->dst_x;
            toY += origin->dst_y;
        }
        const auto at = ASK(connection, xcb_query_pointer, root);
        if (!at) throw std::runtime_error("the X server has gone");
        const double fromX = at->root_x, fromY = at->root_y;
        const double way = std::hypot(toX - fromX, toY - fromY) / scale;
        const double seconds = 0.25 + 0.13 * std::log2(1 + way / 20);
        const double bend = (random() % 2 == 0 ? 0.06 : -0.06) * (0.5 + chance());
        const int steps = std::max(1, static_cast<int>(seconds * 125));
        const auto began = std::chrono::steady_clock::now();
        for (int i = 1; i <= steps; ++i) {
            const double t = static_cast<double>(i) / steps;
            const double s = t * t * t * (10 - 15 * t + 6 * t * t);
            const double aside = bend * 4 * s * (1 - s);
            point(fromX + (toX - fromX) * s - (toY - fromY) * aside,
                  fromY + (toY - fromY) * s + (toX - fromX) * aside);
            std::this_thread::sleep_until(began + std::chrono::duration<double>(seconds * t));
        }
    }

    void click(std::uint8_t button, int times) {
        pause(0.12 + 0.06 * chance());
        for (int i = 0; i < times; ++i) {
            if (i > 0) pause(0.09);
            fake(XCB_BUTTON_PRESS, button);
            pause(0.07);
            fake(XCB_BUTTON_RELEASE, button);
        }
    }

    void scroll(int lines) {
        for (int i = 0; i < std::abs(lines); ++i) {
            fake(XCB_BUTTON_PRESS, lines > 0 ? 5 : 4);
            fake(XCB_BUTTON_RELEASE, lines > 0 ? 5 : 4);
            pause(0.06 + 0.05 * chance());
        }
    }

    void type(const std::string& text) {
        for (const char letter : text) {
            press(static_cast<unsigned char>(letter), false);
            pause(letter == ' ' ? 0.09 + 0.08 * chance() : 0.06 + 0.07 * chance());
        }
    }

    void key(std::string name) {
        const bool control = name.starts_with("ctrl+");
        if (control) name = name.substr(5);
        static const std::map<std::string, xcb_keysym_t> named{
            {"Return", 0xFF0D}, {"Home", 0xFF50}, {"End", 0xFF57}, {"Escape", 0xFF1B}, {"Tab", 0xFF09}};
        const auto known = named.find(name);
        if (known == named.end() && name.size() != 1) throw std::runtime_error("no key " + name);
        press(known != named.end() ? known->second : static_cast<unsigned char>(name[0]), control);
        pause(0.12);
    }

    static void until(const std::filesystem::path& file, double seconds) {
        for (const auto began = std::chrono::steady_clock::now(); !std::filesystem::exists(file); pause(0.05))
            if (std::chrono::steady_clock::now() - began > std::chrono::duration<double>(seconds))
                throw std::runtime_error(file.string() + " does not come");
    }

private:
    struct Key {
        std::uint8_t code = 0;
        bool shifted = false;
    };

    void learnKeys() {
        const xcb_setup_t* setup = xcb_get_setup(connection);
        const int first = setup->min_keycode, count = setup->max_keycode - first + 1;
        const auto map = ASK(connection, xcb_get_keyboard_mapping, static_cast<xcb_keycode_t>(first),
                             static_cast<std::uint8_t>(count));
        if (!map) throw std::runtime_error("no keyboard");
        const xcb_keysym_t* symbols = xcb_get_keyboard_mapping_keysyms(map.get());
        for (int level = 1; level >= 0; --level) // so that the plain key wins
            for (int i = 0; i < count; ++i) {
                const xcb_keysym_t symbol = symbols[i * map->keysyms_per_keycode + level];
                if (symbol != 0) keys[symbol] = {static_cast<std::uint8_t>(first + i), level == 1};
            }
        shift = keys[0xFFE1].code;
        control = keys[0xFFE3].code;
    }

    void press(xcb_keysym_t symbol, bool withControl) {
        const auto key = keys.find(symbol);
        if (key == keys.end()) throw std::runtime_error("the keyboard lacks a letter");
        if (withControl) fake(XCB_KEY_PRESS, control);
        if (key->second.shifted) fake(XCB_KEY_PRESS, shift);
        fake(XCB_KEY_PRESS, key->second.code);
        fake(XCB_KEY_RELEASE, key->second.code);
        if (key->second.shifted) fake(XCB_KEY_RELEASE, shift);
        if (withControl) fake(XCB_KEY_RELEASE, control);
    }

    void fake(std::uint8_t type, std::uint8_t detail) {
        xcb_test_fake_input(connection, type, detail, XCB_CURRENT_TIME, root, 0, 0, 0);
        xcb_flush(connection);
    }

    void point(double x, double y) {
        xcb_test_fake_input(connection, XCB_MOTION_NOTIFY, 0, XCB_CURRENT_TIME, root,
                            static_cast<std::int16_t>(std::lround(x)),
                            static_cast<std::int16_t>(std::lround(y)), 0);
        xcb_flush(connection);
    }

    xcb_atom_t atom(const char* name) {
        const auto reply =
            ASK(connection, xcb_intern_atom, 0, static_cast<std::uint16_t>(std::strlen(name)), name);
        return reply ? reply->atom : static_cast<xcb_atom_t>(XCB_ATOM_NONE);
    }

    /// The managed window of that class; waits for it.
    xcb_window_t find(const std::string& name) {
        const xcb_atom_t list = atom("_NET_CLIENT_LIST");
        for (int i = 0; i < 600; ++i, pause(0.05)) {
            const auto windows = ASK(connection, xcb_get_property, 0, root, list, XCB_ATOM_WINDOW, 0, 1024);
            if (!windows) continue;
            const auto* ids = static_cast<const xcb_window_t*>(xcb_get_property_value(windows.get()));
            for (int k = 0; k < xcb_get_property_value_length(windows.get()) / 4; ++k) {
                const auto property =
                    ASK(connection, xcb_get_property, 0, ids[k], XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, 0, 64);
                if (!property) continue;
                const std::string classes(
                    static_cast<const char*>(xcb_get_property_value(property.get())),
                    static_cast<std::size_t>(xcb_get_property_value_length(property.get())));
                const std::size_t end = classes.find('\0');
                if (end != std::string::npos && classes.substr(end + 1, name.size()) == name &&
                    classes.size() == end + name.size() + 2)
                    return ids[k];
            }
        }
        throw std::runtime_error("no window " + name);
    }

    /// The same in every run, so that sessions can be compared.
    double chance() { return static_cast<double>(random() % 1000) / 1000; }

    double scale;
    xcb_connection_t* connection;
    xcb_window_t root = 0;
    std::map<xcb_keysym_t, Key> keys;
    std::uint8_t shift = 0;
    std::uint8_t control = 0;
    std::mt19937 random{1};
};

void perform(Hands& hands, const std::string& line) {
    std::istringstream words(line);
    std::string verb, name;
    double x = 0, y = 0, width = 0, height = 0;
    words >> verb;
    if (verb == "place" && words >> name >> x >> y >> width >> height)
        return hands.place(name, x, y, width, height);
    if (verb == "move" && words >> name >> x >> y) return hands.move(name, x, y);
    if (verb == "click") return hands.click(1, 1);
    if (verb == "double") return hands.click(1, 2);
    if (verb == "right") return hands.click(3, 1);
    if (verb == "scroll" && words >> x) return hands.scroll(static_cast<int>(x));
    if (verb == "type" && line.size() > 5) return hands.type(line.substr(5));
    if (verb == "key" && words >> name) return hands.key(name);
    if (verb == "wait" && words >> x) return pause(x);
    if (verb == "until" && words >> name) return Hands::until(name, words >> x ? x : 60);
    throw std::runtime_error("what is: " + line);
}

} // namespace

int main(int argc, char** argv) {
    try {
        double scale = 1;
        if (argc == 3 && std::strcmp(argv[1], "--scale") == 0)
            scale = std::atof(argv[2]);
        else if (argc != 1)
            return 2;
        Hands hands(scale);
        for (std::string line; std::getline(std::cin, line);)
            if (!line.empty() && line[0] != '#') perform(hands, line);
        return 0;
    } catch (const std::exception& error) {
        std::cerr << "hands: " << error.what() << '\n';
        return 1;
    }
}
