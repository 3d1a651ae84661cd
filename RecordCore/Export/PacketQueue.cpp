#include "RecordCore/Export/PacketQueue.h"

#include "RecordCore/Model/RecordingError.h"

#include <utility>

namespace RecordCore {

namespace {
constexpr std::size_t mostHeld = std::size_t{256} << 20; ///< bytes
}

void PacketQueue::put(std::size_t range, const Packet& packet) {
    Stored stored{
        {packet.data.begin(), packet.data.end()}, packet.pts, packet.dts, packet.duration, packet.key};
    {
        std::unique_lock lock(mutex);
        emptied.wait(lock, [&] { return stopped || range <= current || held < mostHeld; });
        if (stopped) throw RecordingError("stopped");
        held += stored.data.size();
        waiting[range].push_back(std::move(stored));
        if (range != current) return;
    }
    filled.notify_one();
}

void PacketQueue::close(std::size_t range) {
    {
        const std::lock_guard lock(mutex);
        closed[range] = 1;
        passOver();
    }
    filled.notify_one();
    emptied.notify_all();
}

/// Goes on to the first range of which something is or will be there.
void PacketQueue::passOver() {
    while (current < closed.size() && closed[current] && waiting[current].empty())
        ++current;
}

std::vector<PacketQueue::Stored> PacketQueue::take(std::chrono::milliseconds atMost) {
    std::vector<Stored> taken;
    {
        std::unique_lock lock(mutex);
        filled.wait_for(lock, atMost,
                        [&] { return stopped || current == closed.size() || !waiting[current].empty(); });
        if (current == closed.size()) return taken;
        taken.swap(waiting[current]);
        for (const Stored& packet : taken)
            held -= packet.data.size();
        passOver();
    }
    emptied.notify_all();
    return taken;
}

bool PacketQueue::ended() const {
    const std::lock_guard lock(mutex);
    return current == closed.size();
}

void PacketQueue::stop() {
    {
        const std::lock_guard lock(mutex);
        stopped = true;
    }
    filled.notify_all();
    emptied.notify_all();
}

} // namespace RecordCore
