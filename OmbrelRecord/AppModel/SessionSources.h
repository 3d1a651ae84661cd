#pragma once

#include "OmbrelRecord/AppModel/AppParts.h"
#include "OmbrelRecord/AppModel/Mailbox.h"
#include "OmbrelRecord/AppModel/SerialQueue.h"

namespace OmbrelRecord {

/// The screens and windows of the session, asked on a thread of the object's own. Main thread.
class SessionSources : public Sources {
public:
    /// The backend outlives the object.
    explicit SessionSources(const RecordCore::ScreenBackend& backend) : backend(backend) {}

    bool accessGranted() override;
    void requestAccess(std::function<void(bool granted)> done) override;
    bool openAccessSettings() override { return false; }
    void list(std::function<void(ShareableContent)> done) override;
    void activate(std::uint32_t window) override;
    void still(const RecordCore::ScreenSource& source, QSize largest,
               std::function<void(QImage)> done) override;
    bool seesKeys() override;
    void askAllowed(std::function<void(bool access, bool keys)> done) override;
    void requestKeys() override {} // X11 asks nobody

private:
    const RecordCore::ScreenBackend& backend;
    Mailbox mailbox;
    SerialQueue questions;
    SerialQueue stills; ///< of its own: a still may be long in coming
};

} // namespace OmbrelRecord
