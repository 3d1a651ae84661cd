#pragma once

#include "RecordCore/Capture/BlockMap.h"
#include "RecordCore/Capture/CapturePicture.h"
#include "RecordCore/Capture/ScreenStream.h"

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <memory>
#include <mutex>
#include <vector>

namespace RecordCore {

/// Hands pictures from the thread that captures to the thread that encodes, through a fixed set of pictures
/// that are used again and again; each takes over only the blocks that changed since it was last used. When
/// the encoder falls behind, the newest waiting picture is replaced by the newer one: the oldest are kept in
/// order, the screen's last state always arrives, and what was lost is counted.
///
/// One producer calls `push`, one consumer `take`; `close` and `dropped` from anywhere.
class FrameQueue {
public:
    using Deadline = std::chrono::steady_clock::time_point;

    struct Frame {
        CapturePicture picture;
        double time = 0;  ///< host clock seconds
        BlockMap changed; ///< against the frame taken before this one
    private:
        friend class FrameQueue;
        BlockMap stale; ///< blocks in which this picture is behind the screen
    };

    /// At least 3 pictures: one being encoded, one being filled, one waiting.
    FrameQueue(int width, int height, int pictures);

    void push(const ScreenFrame& frame);

    /// The next frame, which stays valid until the next one is taken. None when nothing came before the
    /// deadline, or the queue is closed and empty.
    const Frame* take(Deadline deadline);
    /// The frame taken last; none before the first.
    const Frame* current() const { return held; }

    /// No more is pushed; what waits can still be taken.
    void close();
    bool finished() const;
    std::int64_t dropped() const;

private:
    mutable std::mutex mutex;
    std::condition_variable arrived;
    std::vector<std::unique_ptr<Frame>> frames;
    // Guarded by the mutex.
    std::deque<Frame*> idle;
    std::deque<Frame*> waiting;
    Frame* held = nullptr; ///< the consumer's
    bool closed = false;
    std::int64_t droppedFrames = 0;
};

} // namespace RecordCore
