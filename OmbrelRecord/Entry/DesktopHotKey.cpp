#include "OmbrelRecord/Entry/DesktopHotKey.h"

#include "OmbrelRecord/AppModel/PlatformText.h"
#include "OmbrelRecord/Entry/Module.h"
#include "OmbrelRecord/Entry/Modules/Modules.h"
#include "RecordCore/Model/RecordingError.h"

#include <cstdlib>
#include <fmt/format.h>
#include <string_view>

namespace OmbrelRecord {

namespace {

bool onWayland() {
    const char* kind = std::getenv("XDG_SESSION_TYPE");
    return kind != nullptr && std::string_view(kind) == "wayland";
}

} // namespace

void DesktopHotKey::grab(std::function<void(std::string)> done) {
    queue.post([this, to = mailbox.address(), done = std::move(done)] {
        to.post([done, problem = take()] { done(problem); });
    });
}

std::string DesktopHotKey::take() {
    // There an X grab would work over X windows only, which is worse than none.
    if (onWayland()) return std::string(PlatformText::hotKeyOnWayland);
    try {
        key = module<Modules::Screen>().hotKey('r', [this, to = mailbox.address()] {
            to.post([this] {
                if (onPressed) onPressed();
            });
        });
        return {};
    } catch (const RecordCore::RecordingError& error) {
        if (std::string_view(error.what()) == "taken") return std::string(PlatformText::hotKeyTaken);
        return fmt::format("{} doesn't work here ({}). Use the Record button.", PlatformText::hotKey,
                           error.what());
    }
}

} // namespace OmbrelRecord
