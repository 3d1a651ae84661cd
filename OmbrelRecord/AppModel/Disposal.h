#pragma once

#include "OmbrelRecord/AppModel/SerialQueue.h"

#include <memory>
#include <utility>

namespace OmbrelRecord {

/// Where things go whose end has to be waited for, a thread that still decodes a frame, say: who drops them
/// here goes on at once, and they end on a thread of the disposal's own. What they use must outlive
/// the disposal, whose own end waits for theirs.
class Disposal {
public:
    /// Any thread. `last` is the only owner. Without a place the thing ends at once, and the caller waits.
    static void drop(Disposal* place, std::shared_ptr<void> last) {
        if (place && last) place->queue.post([last = std::move(last)]() mutable { last.reset(); });
    }

private:
    SerialQueue queue;
};

} // namespace OmbrelRecord
