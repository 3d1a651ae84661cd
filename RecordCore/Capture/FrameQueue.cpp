#include "RecordCore/Capture/FrameQueue.h"

namespace RecordCore {

FrameQueue::FrameQueue(int width, int height, int pictures) {
    for (int i = 0; i < pictures; ++i) {
        auto frame = std::make_unique<Frame>();
        frame->picture = CapturePicture(width, height);
        frame->changed = BlockMap(width, height);
        frame->stale = frame->changed;
        frame->stale.markAll();
        idle.push_back(frame.get());
        frames.push_back(std::move(frame));
    }
}

void FrameQueue::push(const ScreenFrame& fresh) {
    Frame* frame = nullptr;
    {
        const std::lock_guard lock(mutex);
        if (closed) return;
        if (!idle.empty()) {
            frame = idle.front();
            idle.pop_front();
            frame->changed.clear();
        } else {
            frame = waiting.back();
            waiting.pop_back();
            ++droppedFrames;
        }
    }
    // Only the producer looks at what is stale.
    for (const auto& each : frames)
        each->stale.add(fresh.changedBlocks.data());
    frame->changed.add(fresh.changedBlocks.data());
    frame->picture.copyBlocks(fresh.picture, frame->stale.marks);
    frame->stale.clear();
    frame->time = fresh.time;
    {
        const std::lock_guard lock(mutex);
        waiting.push_back(frame);
    }
    arrived.notify_one();
}

const FrameQueue::Frame* FrameQueue::take(Deadline deadline) {
    std::unique_lock lock(mutex);
    arrived.wait_until(lock, deadline, [this] { return !waiting.empty() || closed; });
    if (waiting.empty()) return nullptr;
    if (held != nullptr) idle.push_back(held);
    held = waiting.front();
    waiting.pop_front();
    return held;
}

void FrameQueue::close() {
    {
        const std::lock_guard lock(mutex);
        closed = true;
    }
    arrived.notify_all();
}

bool FrameQueue::finished() const {
    const std::lock_guard lock(mutex);
    return closed && waiting.empty();
}

std::int64_t FrameQueue::dropped() const {
    const std::lock_guard lock(mutex);
    return droppedFrames;
}

} // namespace RecordCore
