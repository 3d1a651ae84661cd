#include "RecordCore/Capture/PulseAudio/PulseDevices.h"

#include <algorithm>
#include <utility>

namespace RecordCore {

namespace {

std::string text(const char* chars) {
    return chars ? chars : "";
}

} // namespace

std::optional<SoundDevice> PulseDevices::defaultMicrophone() const {
    if (auto found = microphone(defaultSource)) return found;
    const auto first =
        std::find_if(sources.begin(), sources.end(), [](const Source& source) { return !source.monitor; });
    if (first == sources.end()) return {};
    return first->device;
}

std::optional<SoundDevice> PulseDevices::systemSound() const {
    const std::string wanted = defaultSink + ".monitor";
    for (const Source& source : sources)
        if (source.device.id == wanted) return source.device;
    return {};
}

std::optional<SoundDevice> PulseDevices::microphone(const std::string& id) const {
    for (const Source& source : sources)
        if (source.device.id == id && !source.monitor) return source.device;
    return {};
}

PulseDeviceQuery::PulseDeviceQuery(pa_context* context, Answer receiver) : answer(std::move(receiver)) {
    ask(pa_context_get_server_info(
        context,
        [](pa_context* from, const pa_server_info* info, void* user) {
            auto& query = *static_cast<PulseDeviceQuery*>(user);
            if (!info) return;
            query.devices.defaultSink = text(info->default_sink_name);
            query.devices.defaultSource = text(info->default_source_name);
            query.ask(pa_context_get_source_info_list(
                from,
                [](pa_context*, const pa_source_info* source, int end, void* owner) {
                    auto& self = *static_cast<PulseDeviceQuery*>(owner);
                    if (end == 0 && source) {
                        self.devices.sources.push_back({{text(source->name), text(source->description)},
                                                        source->monitor_of_sink != PA_INVALID_INDEX});
                        return;
                    }
                    // The answer may be the end of this query: nothing of it is touched afterwards.
                    const PulseDevices result = std::move(self.devices);
                    const Answer receive = std::move(self.answer);
                    receive(result);
                },
                user));
        },
        this));
}

PulseDeviceQuery::~PulseDeviceQuery() {
    ask(nullptr);
}

void PulseDeviceQuery::ask(pa_operation* next) {
    if (operation) {
        pa_operation_cancel(operation);
        pa_operation_unref(operation);
    }
    operation = next;
}

} // namespace RecordCore
