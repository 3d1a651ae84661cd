#pragma once

#include "OmbrelRecord/AppModel/AppParts.h"
#include "OmbrelRecord/AppModel/Mailbox.h"
#include "OmbrelRecord/AppModel/SerialQueue.h"

#include <memory>

namespace OmbrelRecord {

/// Super+Alt+R on the desktop of the session. Main thread.
class DesktopHotKey : public HotKey {
public:
    /// The X server is asked on another thread.
    void grab(std::function<void(std::string problem)> done) override;

private:
    std::string take();

    Mailbox mailbox;
    std::shared_ptr<void> key; ///< the combination is ours while it lives; the queue's until it is idle
    SerialQueue queue;
};

} // namespace OmbrelRecord
