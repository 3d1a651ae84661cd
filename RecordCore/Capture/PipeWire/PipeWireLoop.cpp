#include "RecordCore/Capture/PipeWire/PipeWireLoop.h"

#include "RecordCore/Model/RecordingError.h"

#include <cerrno>
#include <mutex>

namespace RecordCore {

namespace {

void initialise() {
    static std::once_flag once;
    std::call_once(once, [] { pw_init(nullptr, nullptr); }); // never undone: other parts may still use it
}

} // namespace

PipeWireLoop::PipeWireLoop(int descriptor) {
    initialise();
    loop = pw_thread_loop_new("ombrel-video", nullptr);
    if (loop) context.reset(pw_context_new(pw_thread_loop_get_loop(loop), nullptr, 0));
    if (context && pw_thread_loop_start(loop) == 0) {
        const Lock lock(*this);
        connection = descriptor < 0 ? pw_context_connect(context.get(), nullptr, 0)
                                    : pw_context_connect_fd(context.get(), descriptor, nullptr, 0);
        if (connection) {
            static const pw_core_events events = [] {
                pw_core_events e{};
                e.version = PW_VERSION_CORE_EVENTS;
                e.done = [](void* user, std::uint32_t id, int seq) {
                    auto& self = *static_cast<PipeWireLoop*>(user);
                    if (id != PW_ID_CORE) return;
                    self.answered = seq;
                    self.signal();
                };
                e.error = [](void* user, std::uint32_t id, int, int result, const char* message) {
                    auto& self = *static_cast<PipeWireLoop*>(user);
                    if (id != PW_ID_CORE || result != -EPIPE) return;
                    self.broken = true;
                    self.signal();
                    if (self.onBreak) self.onBreak(message ? message : "connection lost");
                };
                return e;
            }();
            pw_core_add_listener(connection, &listener, &events, this);
        }
    }
    if (!connection) {
        stop();
        context.reset();
        if (loop) pw_thread_loop_destroy(loop);
        throw RecordingError("PipeWire is not running");
    }
}

PipeWireLoop::~PipeWireLoop() {
    stop();
    spa_hook_remove(&listener);
    pw_core_disconnect(connection);
    context.reset();
    pw_thread_loop_destroy(loop);
}

void PipeWireLoop::stop() {
    if (loop) pw_thread_loop_stop(loop);
}

bool PipeWireLoop::wait(double seconds, const std::function<bool()>& done) {
    timespec deadline{};
    pw_thread_loop_get_time(loop, &deadline, static_cast<std::int64_t>(seconds * 1e9));
    while (!done())
        if (pw_thread_loop_timed_wait_full(loop, &deadline) != 0) return done();
    return true;
}

void PipeWireLoop::flush() {
    const auto nothing = [](spa_loop*, bool, std::uint32_t, const void*, std::size_t, void*) { return 0; };
    pw_loop_invoke(pw_thread_loop_get_loop(loop), nothing, SPA_ID_INVALID, nullptr, 0, true, nullptr);
}

void PipeWireLoop::roundTrip(double seconds) {
    const int wanted = pw_core_sync(connection, PW_ID_CORE, 0);
    if (!wait(seconds, [&] { return broken || answered == wanted; }))
        throw RecordingError("PipeWire does not answer");
    if (broken) throw RecordingError("PipeWire is not running");
}

} // namespace RecordCore
