#include "RecordCore/Capture/PulseAudio/PulseOutput.h"

#include "RecordCore/Media/SoundReader.h"
#include "RecordCore/Model/RecordingError.h"

#include <algorithm>
#include <utility>

namespace RecordCore {

namespace {

constexpr unsigned bufferFrames = soundRate * 60 / 1000; ///< enough for a busy machine, little to wait for
constexpr unsigned frameBytes = soundChannels * sizeof(float);

PulseOutput& self(void* user) {
    return *static_cast<PulseOutput*>(user);
}

} // namespace

PulseOutput::~PulseOutput() {
    // The thread ends first: after that nothing can call back into what is freed here.
    loop.stop();
    dropContext();
}

void PulseOutput::start(Source next) {
    const PulseLoop::Lock lock(loop);
    dropStream();
    source = std::move(next);
    written = 0;
    failed = false;
    if (context && !PA_CONTEXT_IS_GOOD(pa_context_get_state(context))) dropContext();
    if (!context)
        connectContext();
    else if (pa_context_get_state(context) == PA_CONTEXT_READY)
        connectStream();
}

void PulseOutput::stop() {
    const PulseLoop::Lock lock(loop);
    dropStream();
    source = nullptr;
}

std::optional<double> PulseOutput::heard() const {
    const PulseLoop::Lock lock(loop);
    if (failed) return std::nullopt;
    pa_usec_t latency = 0;
    int negative = 0;
    // Asked before the service has told its timing: the sound is on its way.
    if (!stream || pa_stream_get_state(stream) != PA_STREAM_READY || written == 0 ||
        pa_stream_get_latency(stream, &latency, &negative) < 0)
        return 0.0;
    const double ahead = static_cast<double>(latency) * 1e-6 * soundRate * (negative ? -1 : 1);
    return std::clamp(static_cast<double>(written) - ahead, 0.0, static_cast<double>(written));
}

void PulseOutput::connectContext() {
    try {
        context = loop.makeContext();
    } catch (const RecordingError&) {
        failed = true;
        return;
    }
    pa_context_set_state_callback(
        context, [](pa_context*, void* user) { self(user).contextChanged(); }, this);
    if (pa_context_connect(context, nullptr, PA_CONTEXT_NOAUTOSPAWN, nullptr) < 0) failed = true;
}

void PulseOutput::dropContext() {
    dropStream();
    if (!context) return;
    pa_context_set_state_callback(context, nullptr, nullptr);
    pa_context_disconnect(context);
    pa_context_unref(context);
    context = nullptr;
}

void PulseOutput::contextChanged() {
    const pa_context_state_t state = pa_context_get_state(context);
    if (state == PA_CONTEXT_READY) {
        if (source && !stream) connectStream();
    } else if (!PA_CONTEXT_IS_GOOD(state)) {
        failed = true;
    }
}

void PulseOutput::connectStream() {
    const pa_sample_spec format{PA_SAMPLE_FLOAT32NE, soundRate, soundChannels};
    stream = pa_stream_new(context, "preview", &format, nullptr);
    if (!stream) {
        failed = true;
        return;
    }
    pa_stream_set_state_callback(
        stream,
        [](pa_stream* changed, void* user) {
            if (!PA_STREAM_IS_GOOD(pa_stream_get_state(changed))) self(user).failed = true;
        },
        this);
    pa_stream_set_write_callback(
        stream, [](pa_stream*, std::size_t bytes, void* user) { self(user).write(bytes); }, this);
    pa_buffer_attr attributes;
    attributes.maxlength = attributes.prebuf = attributes.minreq = attributes.fragsize = ~0U;
    attributes.tlength = bufferFrames * frameBytes;
    const auto flags = static_cast<pa_stream_flags_t>(
        PA_STREAM_ADJUST_LATENCY | PA_STREAM_AUTO_TIMING_UPDATE | PA_STREAM_INTERPOLATE_TIMING);
    if (pa_stream_connect_playback(stream, nullptr, &attributes, flags, nullptr, nullptr) < 0) failed = true;
}

void PulseOutput::dropStream() {
    if (!stream) return;
    pa_stream_set_state_callback(stream, nullptr, nullptr);
    pa_stream_set_write_callback(stream, nullptr, nullptr);
    pa_stream_disconnect(stream);
    pa_stream_unref(stream);
    stream = nullptr;
}

void PulseOutput::write(std::size_t bytes) {
    while (bytes >= frameBytes) {
        void* memory = nullptr;
        std::size_t room = bytes;
        if (pa_stream_begin_write(stream, &memory, &room) < 0 || !memory) break;
        room = std::min(room, bytes) / frameBytes * frameBytes;
        if (room == 0) {
            pa_stream_cancel_write(stream);
            break;
        }
        source({static_cast<float*>(memory), room / sizeof(float)});
        if (pa_stream_write(stream, memory, room, nullptr, 0, PA_SEEK_RELATIVE) < 0) break;
        written += static_cast<std::int64_t>(room / frameBytes);
        bytes -= room;
    }
}

} // namespace RecordCore
