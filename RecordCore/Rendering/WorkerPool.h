#pragma once

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <thread>
#include <vector>

namespace RecordCore {

/// A few threads that share out the rows of a picture. `run` is called by one thread at a time, which works
/// along and returns when everything is done. Tasks must not throw.
class WorkerPool {
public:
    /// `threads` counts the caller; 0 takes the number of processors.
    explicit WorkerPool(int threads);
    ~WorkerPool();
    WorkerPool(const WorkerPool&) = delete;
    WorkerPool& operator=(const WorkerPool&) = delete;

    int threads() const { return static_cast<int>(workers.size()) + 1; }

    /// Calls task(item, thread) for every item 0 … count − 1; thread is 0 … threads() − 1.
    template <typename Task>
    void run(int count, Task& task) {
        runErased(count, &task,
                  [](void* self, int item, int thread) { (*static_cast<Task*>(self))(item, thread); });
    }

private:
    using Call = void (*)(void*, int, int);
    void runErased(int count, void* task, Call call);
    void work(int thread);
    void takeItems(int thread, void* task, Call call, int count);

    std::vector<std::thread> workers;
    std::atomic<int> next{0};

    std::mutex mutex; ///< guards what follows
    std::condition_variable start;
    std::condition_variable done;
    void* currentTask = nullptr;
    Call currentCall = nullptr;
    int currentCount = 0;
    unsigned generation = 0;
    int busy = 0;
    bool closing = false;
};

} // namespace RecordCore
