#pragma once

#include <functional>
#include <memory>
#include <pulse/pulseaudio.h>
#include <string>

namespace RecordCore {

struct PulseRelease {
    void operator()(pa_operation* operation) const { pa_operation_unref(operation); }
    void operator()(pa_proplist* properties) const { pa_proplist_free(properties); }
};
using PulseOperation = std::unique_ptr<pa_operation, PulseRelease>;
using PulseProperties = std::unique_ptr<pa_proplist, PulseRelease>;

/// A thread of its own that serves one or more connections to the sound service. Callbacks of libpulse run on
/// it, with its lock held; everybody else takes the lock to touch anything of libpulse.
class PulseLoop {
public:
    /// Starts the thread. Throws RecordingError.
    PulseLoop();
    ~PulseLoop();
    PulseLoop(const PulseLoop&) = delete;
    PulseLoop& operator=(const PulseLoop&) = delete;

    /// Ends the thread; no callback runs after it returns. Without the lock, and not from a callback.
    void stop();

    /// A new context named after this program, with the lock held.
    pa_context* makeContext();

    pa_mainloop_api* api() { return pa_threaded_mainloop_get_api(loop); }

    /// With the lock held, from another thread than the loop's: waits until `done` (asked at every `signal`)
    /// or for at most `seconds`. Whether it was done.
    bool wait(pa_context* context, double seconds, const std::function<bool()>& done);
    void signal() { pa_threaded_mainloop_signal(loop, 0); }

    class Lock {
    public:
        explicit Lock(PulseLoop& owner) : loop(owner.loop) { pa_threaded_mainloop_lock(loop); }
        ~Lock() { pa_threaded_mainloop_unlock(loop); }
        Lock(const Lock&) = delete;
        Lock& operator=(const Lock&) = delete;

    private:
        pa_threaded_mainloop* loop;
    };

private:
    pa_threaded_mainloop* loop = nullptr;
    bool running = false;
};

/// What a failed connection to the sound service means, in words.
std::string pulseUnreachable(pa_context* context);

} // namespace RecordCore
