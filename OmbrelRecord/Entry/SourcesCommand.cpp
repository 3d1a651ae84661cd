#include "OmbrelRecord/Entry/SourcesCommand.h"

#include "OmbrelRecord/Entry/Tell.h"
#include "RecordCore/Capture/WindowList.h"
#include "RecordCore/Model/RecordingError.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>
#include <unistd.h>

#include <cstdio>

namespace OmbrelRecord::Commands {

using namespace RecordCore;
using Json = nlohmann::ordered_json;

namespace {

Json rectangle(const ScreenRect& rect) {
    return {{"x", rect.x}, {"y", rect.y}, {"width", rect.width}, {"height", rect.height}};
}

/// What `make` lists; an empty list, and a note, when the service is not there.
template <typename Make>
Json listed(const char* what, Make make) {
    try {
        return make();
    } catch (const RecordingError& error) {
        tell("no {}: {}", what, error.what());
        return Json::array();
    }
}

} // namespace

void runSources(const CaptureServices& services) {
    Json sources;
    sources["displays"] = listed("displays", [&] {
        Json list = Json::array();
        for (const DisplayInfo& display : services.screen->displays()) {
            Json entry{{"id", display.id}, {"name", display.name}, {"main", display.main}};
            entry.update(rectangle(display.frame));
            list.push_back(std::move(entry));
        }
        return list;
    });
    sources["windows"] = listed("windows", [&] {
        Json list = Json::array();
        for (const WindowInfo& window : recordableWindows(services.screen->windows(), getpid())) {
            Json entry{{"id", window.id},
                       {"name", windowName(window)},
                       {"application", window.application},
                       {"title", window.title}};
            entry.update(rectangle(window.frame));
            list.push_back(std::move(entry));
        }
        return list;
    });
    sources["microphones"] = listed("microphones", [&] {
        Json list = Json::array();
        const std::string preferred = services.sound->defaultMicrophone();
        for (const SoundDevice& device : services.sound->microphones())
            list.push_back({{"id", device.id}, {"name", device.name}, {"default", device.id == preferred}});
        return list;
    });
    sources["cameras"] = listed("cameras", [&] {
        Json list = Json::array();
        if (services.cameras)
            for (const CameraDevice& device : services.cameras->cameras())
                list.push_back({{"id", device.id}, {"name", device.name}});
        return list;
    });
    // Titles are whatever programs set; what is no UTF-8 in them must not end the listing.
    fmt::print("{}\n", sources.dump(2, ' ', false, Json::error_handler_t::replace));
}

} // namespace OmbrelRecord::Commands
