#include "RecordCore/Capture/PulseAudio/PulseStream.h"

#include "RecordCore/Capture/HostClock.h"
#include "RecordCore/Media/SoundReader.h"
#include "RecordCore/Model/RecordingError.h"

#include <cstring>
#include <utility>

namespace RecordCore {

namespace {

constexpr double patience = 3;        // seconds `start` waits for the service
constexpr double retrySeconds = 0.5;  // between attempts to reach a service or device that failed
constexpr unsigned blockFrames = 960; // 20 ms: short enough for a lively meter, long enough to be cheap

template <class Self>
Self& self(void* user) {
    return *static_cast<Self*>(user);
}

} // namespace

PulseStream::PulseStream(Kind what, std::string device) : kind(what), id(std::move(device)) {}

PulseStream::~PulseStream() {
    stop();
}

const char* PulseStream::what() const {
    return kind == Kind::systemSound ? "the computer's sound" : "the microphone";
}

void PulseStream::start(Handlers receivers) {
    std::optional<std::string> failure;
    {
        const PulseLoop::Lock lock(loop);
        handlers = std::move(receivers);
        starting = true;
        connectContext(loop.makeContext());
        const bool answered = loop.wait(context, patience, [this] { return present || why; });
        if (!answered)
            failure = "the sound service does not answer";
        else if (!present)
            failure = why;
        starting = false;
    }
    if (failure) {
        stop();
        throw RecordingError(*failure);
    }
}

void PulseStream::stop() {
    // The thread ends first: after that nothing can call back into what is freed here.
    loop.stop();
    if (!context) return;
    dropContext();
}

void PulseStream::connectContext(pa_context* fresh) {
    context = fresh;
    pa_context_set_state_callback(
        context, [](pa_context*, void* user) { self<PulseStream>(user).contextChanged(); }, this);
    if (pa_context_connect(context, nullptr, PA_CONTEXT_NOFLAGS, nullptr) < 0) contextChanged();
}

void PulseStream::renewContext() {
    pa_context* fresh = nullptr;
    try {
        fresh = loop.makeContext();
    } catch (const RecordingError&) {
        retryLater(retrySeconds); // the old one still serves for waiting
        return;
    }
    dropContext();
    connectContext(fresh);
}

void PulseStream::dropContext() {
    query.reset();
    dropStream();
    retryLater(-1);
    pa_context_set_state_callback(context, nullptr, nullptr);
    pa_context_set_subscribe_callback(context, nullptr, nullptr);
    pa_context_disconnect(context);
    pa_context_unref(context);
    context = nullptr;
}

void PulseStream::contextChanged() {
    const pa_context_state_t state = pa_context_get_state(context);
    if (state == PA_CONTEXT_READY) {
        pa_context_set_subscribe_callback(
            context,
            [](pa_context*, pa_subscription_event_type_t event, unsigned, void* user) {
                const unsigned facility = event & PA_SUBSCRIPTION_EVENT_FACILITY_MASK;
                const unsigned type = event & PA_SUBSCRIPTION_EVENT_TYPE_MASK;
                // Changes of a source are its volume and the like; that the default changed is the server's.
                if (facility != PA_SUBSCRIPTION_EVENT_SERVER && type == PA_SUBSCRIPTION_EVENT_CHANGE) return;
                self<PulseStream>(user).askForDevices();
            },
            this);
        const auto mask =
            static_cast<pa_subscription_mask_t>(PA_SUBSCRIPTION_MASK_SOURCE | PA_SUBSCRIPTION_MASK_SERVER);
        const PulseOperation subscribed(pa_context_subscribe(context, mask, nullptr, nullptr));
        askForDevices();
    } else if (!PA_CONTEXT_IS_GOOD(state)) {
        lost(pulseUnreachable(context));
        retryLater(retrySeconds);
    }
}

void PulseStream::askForDevices() {
    if (query) {
        askAgain = true;
        return;
    }
    askAgain = false;
    query.emplace(context, [this](const PulseDevices& devices) {
        query.reset();
        choose(devices);
        if (askAgain) askForDevices();
    });
}

/// Connects to the device that is to be recorded now, unless the stream is on it already.
void PulseStream::choose(const PulseDevices& devices) {
    std::optional<SoundDevice> wanted;
    if (kind == Kind::systemSound)
        wanted = devices.systemSound();
    else
        wanted = id.empty() ? devices.defaultMicrophone() : devices.microphone(id);
    if (!wanted) {
        dropStream();
        lost(kind == Kind::systemSound ? "no sound output to record"
             : id.empty()              ? "no microphone"
                                       : "no microphone " + id);
        return;
    }
    if (stream && current == *wanted) return;
    connectStream(*wanted);
}

void PulseStream::connectStream(const SoundDevice& device) {
    dropStream();
    current = device;
    afterGap = true;
    const pa_sample_spec format{PA_SAMPLE_FLOAT32NE, soundRate, soundChannels};
    stream = pa_stream_new(context, what(), &format, nullptr);
    if (!stream) {
        lost(std::string(what()) + " can't be opened: " + pa_strerror(pa_context_errno(context)));
        return;
    }
    pa_stream_set_state_callback(
        stream, [](pa_stream*, void* user) { self<PulseStream>(user).streamChanged(); }, this);
    pa_stream_set_read_callback(
        stream, [](pa_stream*, std::size_t, void* user) { self<PulseStream>(user).read(); }, this);
    pa_stream_set_suspended_callback(
        stream, [](pa_stream*, void* user) { self<PulseStream>(user).afterGap = true; }, this);

    pa_buffer_attr attributes;
    std::memset(&attributes, 0xFF, sizeof attributes); // the service's choice, but for:
    attributes.fragsize = static_cast<std::uint32_t>(blockFrames * pa_frame_size(&format));
    // The stream stays on its device: a service would else move it to another when the device goes.
    const auto flags = static_cast<pa_stream_flags_t>(
        PA_STREAM_ADJUST_LATENCY | PA_STREAM_AUTO_TIMING_UPDATE | PA_STREAM_INTERPOLATE_TIMING |
        PA_STREAM_DONT_MOVE | PA_STREAM_START_UNMUTED);
    if (pa_stream_connect_record(stream, device.id.c_str(), &attributes, flags) < 0) streamChanged();
}

void PulseStream::dropStream() {
    if (!stream) return;
    pa_stream_set_state_callback(stream, nullptr, nullptr);
    pa_stream_set_read_callback(stream, nullptr, nullptr);
    pa_stream_set_suspended_callback(stream, nullptr, nullptr);
    pa_stream_disconnect(stream);
    pa_stream_unref(stream);
    stream = nullptr;
}

void PulseStream::streamChanged() {
    const pa_stream_state_t state = pa_stream_get_state(stream);
    if (state == PA_STREAM_READY) {
        present = true;
        why.reset();
        if (starting)
            loop.signal();
        else if (handlers.onDevice)
            handlers.onDevice(true, std::string(what()) + " is recorded from " + current.name);
    } else if (!PA_STREAM_IS_GOOD(state)) {
        lost(std::string(what()) + " can't be recorded from " + current.name + ": " +
             pa_strerror(pa_context_errno(context)));
        retryLater(retrySeconds);
    }
}

void PulseStream::lost(const std::string& message) {
    const bool news = present;
    present = false;
    why = message;
    if (starting)
        loop.signal();
    else if (news && handlers.onDevice)
        handlers.onDevice(false, message);
}

/// Tries again from where it failed: the service when that is gone, else the device. Negative: never mind.
void PulseStream::retryLater(double seconds) {
    if (retry) loop.api()->time_free(retry);
    retry = nullptr;
    if (seconds < 0) return;
    retry = pa_context_rttime_new(
        context, pa_rtclock_now() + static_cast<pa_usec_t>(seconds * 1e6),
        [](pa_mainloop_api*, pa_time_event*, const timeval*, void* user) {
            auto& me = self<PulseStream>(user);
            me.retryLater(-1);
            me.dropStream();
            if (PA_CONTEXT_IS_GOOD(pa_context_get_state(me.context))) {
                me.askForDevices();
            } else {
                me.renewContext();
            }
        },
        this);
}

void PulseStream::read() {
    for (;;) {
        const void* data = nullptr;
        std::size_t bytes = 0;
        if (pa_stream_peek(stream, &data, &bytes) < 0 || bytes == 0) return;
        if (!data) {
            silence.assign(bytes / sizeof(float), 0.0F);
            data = silence.data();
        }
        deliver(static_cast<const float*>(data), bytes);
        pa_stream_drop(stream);
    }
}

void PulseStream::deliver(const float* samples, std::size_t bytes) {
    pa_usec_t latency = 0;
    int ahead = 0; // a monitor hears what will be played only later
    if (pa_stream_get_latency(stream, &latency, &ahead) < 0)
        return; // the first blocks come before any timing
    const double age = static_cast<double>(latency) * 1e-6;
    const SoundBlock block{{samples, bytes / sizeof(float)},
                           HostClock::system().now() - (ahead ? -age : age),
                           std::exchange(afterGap, false)};
    if (handlers.onSound) handlers.onSound(block);
}

} // namespace RecordCore
