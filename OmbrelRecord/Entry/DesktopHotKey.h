#pragma once

#include "OmbrelRecord/AppModel/AppParts.h"
#include "OmbrelRecord/AppModel/Mailbox.h"

#include <memory>

namespace OmbrelRecord {

/// Super+Alt+R on the desktop of the session. Main thread.
class DesktopHotKey : public HotKey {
public:
    std::string grab() override;

private:
    Mailbox mailbox;
    std::shared_ptr<void> key; ///< the combination is ours while it lives
};

} // namespace OmbrelRecord
