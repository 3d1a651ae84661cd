#pragma once

#include "OmbrelRecord/AppModel/AppParts.h"
#include "OmbrelRecord/AppModel/Mailbox.h"

#include <memory>

namespace RecordCore {
class X11HotKey;
}

namespace OmbrelRecord {

/// Super+Alt+R on the desktop of the session. Main thread.
class DesktopHotKey : public HotKey {
public:
    DesktopHotKey();
    ~DesktopHotKey() override;
    std::string grab() override;

private:
    Mailbox mailbox;
    std::unique_ptr<RecordCore::X11HotKey> key;
};

} // namespace OmbrelRecord
