#pragma once

#include <functional>
#include <memory>
#include <pipewire/pipewire.h>
#include <string>

namespace RecordCore {

struct PipeWireRelease {
    void operator()(pw_properties* properties) const { pw_properties_free(properties); }
    void operator()(pw_context* context) const { pw_context_destroy(context); }
    void operator()(pw_proxy* proxy) const { pw_proxy_destroy(proxy); }
    void operator()(pw_stream* stream) const { pw_stream_destroy(stream); }
};
template <class Handle>
using PipeWireHandle = std::unique_ptr<Handle, PipeWireRelease>;

/// A connection to PipeWire with a thread of its own. Callbacks run on that thread with its lock held;
/// everybody else takes the lock to touch anything of PipeWire, or stops the thread first.
class PipeWireLoop {
public:
    /// Starts the thread and connects to the session's PipeWire, or to the one behind `descriptor` (which is
    /// taken over) when that is not negative. Throws RecordingError when there is none.
    explicit PipeWireLoop(int descriptor = -1);
    ~PipeWireLoop();
    PipeWireLoop(const PipeWireLoop&) = delete;
    PipeWireLoop& operator=(const PipeWireLoop&) = delete;

    /// Ends the thread; no callback runs after it returns. Without the lock, and not from a callback.
    void stop();

    pw_core* core() const { return connection; }

    /// Called on the loop's thread when the connection breaks.
    std::function<void(const std::string& message)> onBreak;

    /// With the lock held, from another thread than the loop's: waits until `done` (asked at every `signal`)
    /// or for at most `seconds`. Whether it was done.
    bool wait(double seconds, const std::function<bool()>& done);
    void signal() { pw_thread_loop_signal(loop, false); }
    /// With the lock held: waits until everything asked so far is answered. Throws RecordingError.
    void roundTrip(double seconds = 2);

    /// With the lock held (once), which is let go meanwhile: waits until everything handed to the loop's
    /// thread so far has run.
    void flush();

    class Lock {
    public:
        explicit Lock(PipeWireLoop& owner) : loop(owner.loop) { pw_thread_loop_lock(loop); }
        ~Lock() { pw_thread_loop_unlock(loop); }
        Lock(const Lock&) = delete;
        Lock& operator=(const Lock&) = delete;

    private:
        pw_thread_loop* loop;
    };

private:
    pw_thread_loop* loop = nullptr;
    PipeWireHandle<pw_context> context;
    pw_core* connection = nullptr; ///< belongs to the context
    spa_hook listener{};
    int answered = -1; ///< sequence number of the last answer
    bool broken = false;
};

} // namespace RecordCore
