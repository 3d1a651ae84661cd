#pragma once

#include "RecordCore/Capture/ScreenBackend.h"

namespace RecordCore {

/// The X11 session named by DISPLAY. Each call connects anew, so that nothing depends on an earlier
/// connection.
class X11ScreenBackend final : public ScreenBackend {
public:
    bool accessGranted() const override;
    std::vector<DisplayInfo> displays() const override;
    std::vector<WindowInfo> windows() const override;
    std::unique_ptr<ScreenStream> openScreen(const ScreenSource& source, int fps) const override;
    std::unique_ptr<InputSource> openInput() const override;
    std::unique_ptr<WindowBounds> openBounds(std::uint32_t windowId, int pictureWidth,
                                             int pictureHeight) const override;
    void activate(std::uint32_t windowId) const override;
};

} // namespace RecordCore
