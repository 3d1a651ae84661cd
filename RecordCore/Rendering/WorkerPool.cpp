#include "RecordCore/Rendering/WorkerPool.h"

#include <algorithm>

namespace RecordCore {

WorkerPool::WorkerPool(int threads) {
    const int wanted = threads > 0 ? threads : static_cast<int>(std::thread::hardware_concurrency());
    for (int thread = 1; thread < std::clamp(wanted, 1, 64); ++thread)
        workers.emplace_back([this, thread] { work(thread); });
}

WorkerPool::~WorkerPool() {
    {
        const std::scoped_lock lock(mutex);
        closing = true;
    }
    start.notify_all();
    for (std::thread& worker : workers)
        worker.join();
}

void WorkerPool::takeItems(int thread, void* task, Call call, int count) {
    for (int item = next++; item < count; item = next++)
        call(task, item, thread);
}

void WorkerPool::runErased(int count, void* task, Call call) {
    if (workers.empty() || count < 2) {
        for (int item = 0; item < count; ++item)
            call(task, item, 0);
        return;
    }
    {
        const std::scoped_lock lock(mutex);
        next = 0;
        currentTask = task;
        currentCall = call;
        currentCount = count;
        busy = static_cast<int>(workers.size());
        ++generation;
    }
    start.notify_all();
    takeItems(0, task, call, count);
    std::unique_lock lock(mutex);
    done.wait(lock, [this] { return busy == 0; });
}

void WorkerPool::work(int thread) {
    unsigned seen = 0;
    for (;;) {
        void* task = nullptr;
        Call call = nullptr;
        int count = 0;
        {
            std::unique_lock lock(mutex);
            start.wait(lock, [&] { return closing || generation != seen; });
            if (closing) return;
            seen = generation;
            task = currentTask;
            call = currentCall;
            count = currentCount;
        }
        takeItems(thread, task, call, count);
        const std::scoped_lock lock(mutex);
        if (--busy == 0) done.notify_one();
    }
}

} // namespace RecordCore
