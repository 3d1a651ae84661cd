#include "RecordCore/Capture/PulseAudio/PulseLoop.h"

#include "RecordCore/Model/RecordingError.h"

namespace RecordCore {

PulseLoop::PulseLoop() : loop(pa_threaded_mainloop_new()) {
    if (!loop) throw RecordingError("no thread for the sound service");
    if (pa_threaded_mainloop_start(loop) < 0) {
        pa_threaded_mainloop_free(loop);
        throw RecordingError("no thread for the sound service");
    }
    running = true;
}

PulseLoop::~PulseLoop() {
    stop();
    pa_threaded_mainloop_free(loop);
}

void PulseLoop::stop() {
    if (!running) return;
    running = false;
    pa_threaded_mainloop_stop(loop);
}

pa_context* PulseLoop::makeContext() {
    const PulseProperties properties(pa_proplist_new());
    pa_proplist_sets(properties.get(), PA_PROP_APPLICATION_NAME, "Ombrel Record");
    pa_proplist_sets(properties.get(), PA_PROP_APPLICATION_ID, "ombrel-record");
    pa_proplist_sets(properties.get(), PA_PROP_APPLICATION_ICON_NAME, "ombrel-record");
    pa_context* context = pa_context_new_with_proplist(api(), nullptr, properties.get());
    if (!context) throw RecordingError("no connection to the sound service");
    return context;
}

bool PulseLoop::wait(pa_context* context, double seconds, const std::function<bool()>& done) {
    struct Deadline {
        PulseLoop& loop;
        bool passed = false;
    } deadline{*this};
    pa_time_event* event = pa_context_rttime_new(
        context, pa_rtclock_now() + static_cast<pa_usec_t>(seconds * 1e6),
        [](pa_mainloop_api*, pa_time_event*, const timeval*, void* user) {
            auto& ended = *static_cast<Deadline*>(user);
            ended.passed = true;
            ended.loop.signal();
        },
        &deadline);
    while (!done() && !deadline.passed)
        pa_threaded_mainloop_wait(loop);
    if (event) api()->time_free(event);
    return done();
}

std::string pulseUnreachable(pa_context* context) {
    const int error = pa_context_errno(context);
    if (error == PA_ERR_CONNECTIONREFUSED || error == PA_ERR_INVALIDSERVER)
        return "no sound service is running (neither PulseAudio nor PipeWire answers)";
    return std::string("the sound service can't be reached: ") + pa_strerror(error);
}

} // namespace RecordCore
