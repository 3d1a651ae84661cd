#include "OmbrelRecord/AppModel/SerialQueue.h"

#include <utility>

namespace OmbrelRecord {

SerialQueue::~SerialQueue() {
    {
        const std::lock_guard lock(mutex);
        ending = true;
    }
    changed.notify_all();
    if (thread.joinable()) thread.join();
}

void SerialQueue::post(std::function<void()> work) {
    {
        const std::lock_guard lock(mutex);
        waiting.push_back(std::move(work));
        if (!thread.joinable()) thread = std::thread([this] { run(); });
    }
    changed.notify_all();
}

void SerialQueue::wait() {
    std::unique_lock lock(mutex);
    changed.wait(lock, [this] { return waiting.empty() && !busy; });
}

void SerialQueue::run() {
    std::unique_lock lock(mutex);
    for (;;) {
        changed.wait(lock, [this] { return ending || !waiting.empty(); });
        if (waiting.empty()) return;
        std::function<void()> work = std::move(waiting.front());
        waiting.pop_front();
        busy = true;
        lock.unlock();
        work();
        work = nullptr; // what it holds goes here, not under the lock
        lock.lock();
        busy = false;
        changed.notify_all();
    }
}

} // namespace OmbrelRecord
