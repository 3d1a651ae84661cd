#include "RecordCore/Capture/X11/X11HotKey.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <algorithm>
#include <utility>

namespace RecordCore {

namespace {

// Keysyms, which are part of the protocol.
constexpr std::uint32_t superLeft = 0xFFEB, superRight = 0xFFEC, altLeft = 0xFFE9, altRight = 0xFFEA,
                        numLock = 0xFF7F;

/// The keys of the keyboard and what each stands for, column by column (shifted, of other groups …).
class KeyboardMap {
public:
    explicit KeyboardMap(const X11Connection& connection) :
        first(xcb_get_setup(connection.get())->min_keycode),
        reply(connection.reply<xcb_get_keyboard_mapping_reply_t>(xcb_get_keyboard_mapping(
            connection.get(), first,
            static_cast<std::uint8_t>(xcb_get_setup(connection.get())->max_keycode - first + 1)))) {}

    std::vector<xcb_keycode_t> keysOf(std::uint32_t keysym) const {
        std::vector<xcb_keycode_t> keys;
        if (!reply || reply->keysyms_per_keycode == 0) return keys;
        const xcb_keysym_t* symbols = xcb_get_keyboard_mapping_keysyms(reply.get());
        const int count = xcb_get_keyboard_mapping_keysyms_length(reply.get()) / reply->keysyms_per_keycode;
        for (int key = 0; key < count; ++key) {
            const xcb_keysym_t* column = symbols + key * reply->keysyms_per_keycode;
            if (std::find(column, column + reply->keysyms_per_keycode, keysym) !=
                column + reply->keysyms_per_keycode)
                keys.push_back(static_cast<xcb_keycode_t>(first + key));
        }
        return keys;
    }

private:
    xcb_keycode_t first;
    XcbReply<xcb_get_keyboard_mapping_reply_t> reply;
};

/// The bit of the modifier that one of the keys acts as, `usual` where none does.
std::uint16_t modifierOf(const X11Connection& connection, const KeyboardMap& map,
                         std::initializer_list<std::uint32_t> keysyms, std::uint16_t usual) {
    const auto reply =
        connection.reply<xcb_get_modifier_mapping_reply_t>(xcb_get_modifier_mapping(connection.get()));
    if (!reply) return usual;
    const xcb_keycode_t* codes = xcb_get_modifier_mapping_keycodes(reply.get());
    for (const std::uint32_t keysym : keysyms)
        for (const xcb_keycode_t key : map.keysOf(keysym))
            for (int modifier = 0; modifier < 8; ++modifier)
                for (int i = 0; i < reply->keycodes_per_modifier; ++i)
                    if (codes[modifier * reply->keycodes_per_modifier + i] == key)
                        return static_cast<std::uint16_t>(1U << modifier);
    return usual;
}

} // namespace

X11HotKey::X11HotKey(char letter, std::function<void()> onPressed) :
    keysym(static_cast<std::uint32_t>(letter)), pressed(std::move(onPressed)) {
    grab();
    wake = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    if (wake < 0) throw RecordingError("too many open files");
    thread = std::thread([this] { run(); });
}

X11HotKey::~X11HotKey() {
    ending = true;
    const std::uint64_t one = 1;
    static_cast<void>(!write(wake, &one, sizeof one));
    if (thread.joinable()) thread.join();
    close(wake);
}

std::vector<X11HotKey::Combination> X11HotKey::combinations() const {
    const KeyboardMap map(connection);
    const std::vector<xcb_keycode_t> keys = map.keysOf(keysym);
    const std::uint16_t base = modifierOf(connection, map, {superLeft, superRight}, XCB_MOD_MASK_4) |
                               modifierOf(connection, map, {altLeft, altRight}, XCB_MOD_MASK_1);
    const std::uint16_t number = modifierOf(connection, map, {numLock}, XCB_MOD_MASK_2);
    std::vector<Combination> all;
    for (const xcb_keycode_t key : keys)
        for (const int locks : {0, XCB_MOD_MASK_LOCK + 0, number + 0, XCB_MOD_MASK_LOCK | number})
            all.push_back({key, static_cast<std::uint16_t>(base | locks)});
    return all;
}

void X11HotKey::grab() {
    const std::vector<Combination> wanted = combinations();
    if (wanted.empty()) throw RecordingError("the keyboard has no such key");
    for (const Combination& combination : wanted) {
        if (!connection.done(xcb_grab_key_checked(connection.get(), 0, connection.root(),
                                                  combination.modifiers, combination.key, XCB_GRAB_MODE_ASYNC,
                                                  XCB_GRAB_MODE_ASYNC))) {
            release();
            throw RecordingError("taken");
        }
        held.push_back(combination);
    }
}

void X11HotKey::release() {
    for (const Combination& combination : std::exchange(held, {}))
        xcb_ungrab_key(connection.get(), combination.key, connection.root(), combination.modifiers);
    xcb_flush(connection.get());
}

void X11HotKey::run() {
    while (!ending && !connection.broken()) {
        while (xcb_generic_event_t* next = xcb_poll_for_event(connection.get())) {
            const XcbReply<xcb_generic_event_t> event(next);
            handle(*event);
        }
        if (ending || connection.broken()) return;
        pollfd files[2] = {{connection.descriptor(), POLLIN, 0}, {wake, POLLIN, 0}};
        poll(files, 2, -1);
    }
}

void X11HotKey::handle(const xcb_generic_event_t& event) {
    switch (event.response_type & 0x7F) {
    case XCB_KEY_PRESS: {
        // A key that is held repeats as releases and presses of the same moment.
        const auto& press = reinterpret_cast<const xcb_key_press_event_t&>(event);
        const bool repeated = down || press.time == released;
        down = true;
        if (!repeated) pressed();
        break;
    }
    case XCB_KEY_RELEASE:
        released = reinterpret_cast<const xcb_key_release_event_t&>(event).time;
        down = false;
        break;
    case XCB_MAPPING_NOTIFY:
        // Another layout: the letter may be another key now.
        try {
            release();
            grab();
        } catch (const RecordingError&) {
            // It is somebody else's there; back on the first layout it is asked for again.
        }
        break;
    default:
        break;
    }
}

} // namespace RecordCore
