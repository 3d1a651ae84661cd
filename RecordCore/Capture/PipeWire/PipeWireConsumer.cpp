#include "RecordCore/Capture/PipeWire/PipeWireConsumer.h"

#include "RecordCore/Capture/HostClock.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <spa/buffer/meta.h>
#include <spa/param/buffers.h>
#include <spa/pod/builder.h>
#include <utility>

namespace RecordCore {

namespace {

// A time stamp further from now than this is not of the host clock.
constexpr double oldest = 2;
constexpr double farthestAhead = 0.1;

PipeWireConsumer& self(void* user) {
    return *static_cast<PipeWireConsumer*>(user);
}

} // namespace

PipeWireConsumer::~PipeWireConsumer() {
    const PipeWireLoop::Lock lock(loop);
    handlers = {};
    if (!stream) return;
    pw_stream_disconnect(stream.get());
    loop.flush(); // calls that were on their way still find the stream
    spa_hook_remove(&listener);
    stream.reset();
}

PipeWireConsumer::Outcome PipeWireConsumer::connect(const Setup& setup, Handlers receivers, double seconds) {
    handlers = std::move(receivers);
    pw_properties* properties =
        pw_properties_new(PW_KEY_MEDIA_TYPE, "Video", PW_KEY_MEDIA_CATEGORY, "Capture", PW_KEY_MEDIA_ROLE,
                          setup.role.c_str(), PW_KEY_APP_NAME, "Ombrel Record", nullptr);
    if (!setup.target.empty()) pw_properties_set(properties, PW_KEY_TARGET_OBJECT, setup.target.c_str());
    stream.reset(pw_stream_new(loop.core(), setup.name.c_str(), properties));
    if (!stream) return Outcome::refused;

    static const pw_stream_events events = [] {
        pw_stream_events e{};
        e.version = PW_VERSION_STREAM_EVENTS;
        e.state_changed = [](void* user, pw_stream_state, pw_stream_state state, const char* error) {
            self(user).stateChanged(state, error);
        };
        e.param_changed = [](void* user, std::uint32_t id, const spa_pod* param) {
            if (id == SPA_PARAM_Format) self(user).formatChanged(param);
        };
        e.process = [](void* user) { self(user).process(); };
        return e;
    }();
    pw_stream_add_listener(stream.get(), &listener, &events, this);

    std::vector<const spa_pod*> formats(setup.formats.begin(), setup.formats.end());
    const auto flags = static_cast<pw_stream_flags>(PW_STREAM_FLAG_AUTOCONNECT | PW_STREAM_FLAG_MAP_BUFFERS |
                                                    PW_STREAM_FLAG_DONT_RECONNECT);
    if (pw_stream_connect(stream.get(), PW_DIRECTION_INPUT, setup.node, flags, formats.data(),
                          static_cast<std::uint32_t>(formats.size())) < 0)
        return Outcome::refused;
    loop.wait(seconds, [this] { return outcome.has_value(); });
    started = true;
    return outcome.value_or(Outcome::refused);
}

void PipeWireConsumer::stateChanged(pw_stream_state state, const char* error) {
    if (state == PW_STREAM_STATE_STREAMING && !outcome) {
        outcome = Outcome::streaming;
        loop.signal();
    }
    const bool dead = state == PW_STREAM_STATE_ERROR || (state == PW_STREAM_STATE_UNCONNECTED && outcome);
    if (state == PW_STREAM_STATE_ERROR && !outcome) {
        const bool formats = error && std::strstr(error, "format");
        outcome = formats ? Outcome::noFormat : Outcome::refused;
        loop.signal();
    }
    if (dead && started && !std::exchange(ended, true) && handlers.onEnd)
        handlers.onEnd(error ? error : "the source is gone");
}

void PipeWireConsumer::formatChanged(const spa_pod* format) {
    if (!format) return;
    if (handlers.onFormat && !handlers.onFormat(*format)) {
        if (!outcome) outcome = Outcome::noFormat;
        loop.signal();
        return;
    }
    std::array<std::uint8_t, 2048> memory;
    spa_pod_builder builder{};
    spa_pod_builder_init(&builder, memory.data(), memory.size());
    std::vector<const spa_pod*> params;
    params.push_back(static_cast<const spa_pod*>(spa_pod_builder_add_object(
        &builder, SPA_TYPE_OBJECT_ParamBuffers, SPA_PARAM_Buffers, SPA_PARAM_BUFFERS_buffers,
        SPA_POD_CHOICE_RANGE_Int(4, 2, 8), SPA_PARAM_BUFFERS_dataType,
        SPA_POD_CHOICE_FLAGS_Int((1 << SPA_DATA_MemPtr) | (1 << SPA_DATA_MemFd)))));
    params.push_back(static_cast<const spa_pod*>(spa_pod_builder_add_object(
        &builder, SPA_TYPE_OBJECT_ParamMeta, SPA_PARAM_Meta, SPA_PARAM_META_type, SPA_POD_Id(SPA_META_Header),
        SPA_PARAM_META_size, SPA_POD_Int(static_cast<int>(sizeof(spa_meta_header))))));
    if (handlers.moreMetadata)
        for (const spa_pod* param : handlers.moreMetadata(builder))
            params.push_back(param);
    pw_stream_update_params(stream.get(), params.data(), static_cast<std::uint32_t>(params.size()));
}

void PipeWireConsumer::process() {
    pw_buffer* newest = nullptr;
    while (pw_buffer* next = pw_stream_dequeue_buffer(stream.get())) {
        if (newest) pw_stream_queue_buffer(stream.get(), newest);
        newest = next;
    }
    if (!newest) return;
    if (handlers.onPicture) hand(*newest);
    pw_stream_queue_buffer(stream.get(), newest);
}

void PipeWireConsumer::hand(const pw_buffer& held) {
    const spa_buffer& buffer = *held.buffer;
    blocks.clear();
    for (std::uint32_t i = 0; i < buffer.n_datas; ++i) {
        const spa_data& data = buffer.datas[i];
        if (!data.data || !data.chunk || (data.chunk->flags & SPA_CHUNK_FLAG_CORRUPTED)) return;
        // What the other side says is not to be trusted further than the memory reaches.
        const std::uint32_t offset = std::min(data.chunk->offset, data.maxsize);
        const std::uint32_t bytes = std::min(data.chunk->size, data.maxsize - offset);
        blocks.push_back({static_cast<const std::uint8_t*>(data.data) + offset, bytes, data.chunk->stride});
    }
    const double now = HostClock::system().now();
    PipeWirePicture picture{blocks, now, &buffer};
    const auto* header = static_cast<const spa_meta_header*>(
        spa_buffer_find_meta_data(&buffer, SPA_META_Header, sizeof(spa_meta_header)));
    if (header) {
        if (header->flags & SPA_META_HEADER_FLAG_CORRUPTED) return;
        const double stamp = static_cast<double>(header->pts) * 1e-9;
        if (header->pts > 0 && stamp > now - oldest && stamp < now + farthestAhead) picture.time = stamp;
    }
    handlers.onPicture(picture);
}

} // namespace RecordCore
