#pragma once

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>

namespace OmbrelRecord {

/// Runs functions one after another, in the order given, on a thread of its own that starts with the first.
/// Callable from any thread. The functions must not throw.
class SerialQueue {
public:
    SerialQueue() = default;
    /// Runs what was given, then ends.
    ~SerialQueue();
    SerialQueue(const SerialQueue&) = delete;
    SerialQueue& operator=(const SerialQueue&) = delete;

    void post(std::function<void()> work);
    /// Returns when everything posted before has run. Must not be called by the work itself.
    void wait();

private:
    void run();

    std::mutex mutex;
    std::condition_variable changed;
    // Guarded by the mutex.
    std::deque<std::function<void()>> waiting;
    bool busy = false;
    bool ending = false;
    std::thread thread;
};

} // namespace OmbrelRecord
