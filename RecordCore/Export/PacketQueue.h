#pragma once

#include "RecordCore/Media/StreamDescription.h"

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <mutex>
#include <vector>

namespace RecordCore {

/// Joins the packets of ranges that are encoded side by side: they go in at any time and come out in the
/// film's order. Usable from any thread; one takes.
class PacketQueue {
public:
    explicit PacketQueue(std::size_t ranges) : waiting(ranges), closed(ranges) {}

    /// A copy of a packet.
    struct Stored {
        std::vector<std::uint8_t> data;
        std::int64_t pts = 0;
        std::int64_t dts = 0;
        std::int64_t duration = 0;
        bool key = false;
        Packet packet() const { return {data, pts, dts, duration, key}; }
    };

    /// Waits while very much is held already, but never for the range whose turn it is. Throws RecordingError
    /// "stopped" after `stop`.
    void put(std::size_t range, const Packet& packet);
    /// There are no more packets of this range.
    void close(std::size_t range);

    /// Those whose turn it is; none after a while without any, after `stop` or at the end.
    std::vector<Stored> take(std::chrono::milliseconds atMost);
    /// Whether all have been taken.
    bool ended() const;

    /// Lets nobody wait any more.
    void stop();

private:
    void passOver();

    mutable std::mutex mutex; ///< guards all that follows
    std::condition_variable filled;
    std::condition_variable emptied;
    std::vector<std::vector<Stored>> waiting; ///< of each range
    std::vector<char> closed;                 ///< of each range
    std::size_t current = 0;                  ///< whose turn it is
    std::size_t held = 0;                     ///< bytes
    bool stopped = false;
};

} // namespace RecordCore
