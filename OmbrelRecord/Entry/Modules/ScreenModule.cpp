#include "OmbrelRecord/Entry/Modules/Modules.h"
#include "RecordCore/Capture/X11/X11HotKey.h"
#include "RecordCore/Capture/X11/X11ScreenBackend.h"

#include <utility>

namespace {

std::unique_ptr<RecordCore::ScreenBackend> screen() {
    return std::make_unique<RecordCore::X11ScreenBackend>();
}

std::shared_ptr<void> hotKey(char letter, std::function<void()> pressed) {
    return std::make_shared<RecordCore::X11HotKey>(letter, std::move(pressed));
}

} // namespace

OMBREL_MODULE const OmbrelRecord::Modules::Screen ombrelModule{
    {OmbrelRecord::Modules::Screen::file, OMBREL_VERSION}, screen, hotKey};
