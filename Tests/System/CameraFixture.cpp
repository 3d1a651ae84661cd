// A camera for tests: a PipeWire node whose pictures show their own number. Each picture's number and time
// (CLOCK_MONOTONIC seconds) go to standard output as they are taken.
//
//   CameraFixture NAME FORMAT WIDTH HEIGHT FPS [nostamp|silent]
//
// FORMAT: yuyv, nv12 or i420. "nostamp": the pictures carry no time and no stride. "silent": none ever comes.

#include "Tests/System/NumberedPicture.h"

#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <pipewire/pipewire.h>
#include <spa/param/video/format-utils.h>
#include <string>
#include <vector>

namespace {

struct Fixture {
    std::string format;
    int width = 0;
    int height = 0;
    int fps = 0;
    bool stamps = true;
    bool silent = false;

    pw_main_loop* loop = nullptr;
    pw_stream* stream = nullptr;
    spa_source* timer = nullptr;
    std::uint32_t number = 0;

    std::uint32_t spaFormat() const {
        return format == "nv12"   ? SPA_VIDEO_FORMAT_NV12
               : format == "i420" ? SPA_VIDEO_FORMAT_I420
                                  : SPA_VIDEO_FORMAT_YUY2;
    }
    int stride() const { return format == "yuyv" ? 2 * width : width; }
    int size() const { return format == "yuyv" ? 2 * width * height : width * height * 3 / 2; }
};

Fixture& self(void* user) {
    return *static_cast<Fixture*>(user);
}

std::int64_t now() {
    timespec time{};
    clock_gettime(CLOCK_MONOTONIC, &time);
    return std::int64_t{time.tv_sec} * 1000000000 + time.tv_nsec;
}

void process(void* user) {
    Fixture& fixture = self(user);
    pw_buffer* held = pw_stream_dequeue_buffer(fixture.stream);
    if (!held) return;
    spa_data& data = held->buffer->datas[0];
    if (data.data) {
        const std::int64_t time = now();
        const std::uint32_t number = fixture.number++;
        drawNumber(static_cast<std::uint8_t*>(data.data), fixture.format, fixture.width, fixture.height,
                   number);
        data.chunk->offset = 0;
        data.chunk->size = static_cast<std::uint32_t>(fixture.size());
        data.chunk->stride = fixture.stamps ? fixture.stride() : 0;
        auto* header = static_cast<spa_meta_header*>(
            spa_buffer_find_meta_data(held->buffer, SPA_META_Header, sizeof(spa_meta_header)));
        if (header) {
            header->pts = fixture.stamps ? time : -1;
            header->flags = 0;
            header->seq = number;
            header->dts_offset = 0;
        }
        std::printf("%u %.9f\n", number, static_cast<double>(time) * 1e-9);
        std::fflush(stdout);
    }
    pw_stream_queue_buffer(fixture.stream, held);
}

void stateChanged(void* user, pw_stream_state, pw_stream_state state, const char*) {
    Fixture& fixture = self(user);
    timespec first{0, 1};
    timespec interval{0, 1000000000L / fixture.fps};
    timespec never{0, 0};
    const bool run = state == PW_STREAM_STATE_STREAMING && !fixture.silent;
    pw_loop_update_timer(pw_main_loop_get_loop(fixture.loop), fixture.timer, run ? &first : &never,
                         run ? &interval : &never, false);
}

void formatChanged(void* user, std::uint32_t id, const spa_pod* param) {
    if (!param || id != SPA_PARAM_Format) return;
    Fixture& fixture = self(user);
    std::array<std::uint8_t, 1024> memory;
    spa_pod_builder builder = SPA_POD_BUILDER_INIT(memory.data(), memory.size());
    std::array<const spa_pod*, 2> params{};
    params[0] = static_cast<const spa_pod*>(spa_pod_builder_add_object(
        &builder, SPA_TYPE_OBJECT_ParamBuffers, SPA_PARAM_Buffers, SPA_PARAM_BUFFERS_buffers,
        SPA_POD_CHOICE_RANGE_Int(4, 2, 8), SPA_PARAM_BUFFERS_blocks, SPA_POD_Int(1), SPA_PARAM_BUFFERS_size,
        SPA_POD_Int(fixture.size()), SPA_PARAM_BUFFERS_stride, SPA_POD_Int(fixture.stride()),
        SPA_PARAM_BUFFERS_dataType, SPA_POD_CHOICE_FLAGS_Int(1 << SPA_DATA_MemFd)));
    params[1] = static_cast<const spa_pod*>(spa_pod_builder_add_object(
        &builder, SPA_TYPE_OBJECT_ParamMeta, SPA_PARAM_Meta, SPA_PARAM_META_type, SPA_POD_Id(SPA_META_Header),
        SPA_PARAM_META_size, SPA_POD_Int(static_cast<int>(sizeof(spa_meta_header)))));
    pw_stream_update_params(fixture.stream, params.data(), params.size());
}

} // namespace

int main(int argc, char** argv) {
    if (argc < 6) return 2;
    Fixture fixture;
    fixture.format = argv[2];
    fixture.width = std::atoi(argv[3]);
    fixture.height = std::atoi(argv[4]);
    fixture.fps = std::atoi(argv[5]);
    if (argc > 6) {
        fixture.stamps = std::strcmp(argv[6], "nostamp") != 0;
        fixture.silent = std::strcmp(argv[6], "silent") == 0;
    }
    pw_init(nullptr, nullptr);
    fixture.loop = pw_main_loop_new(nullptr);
    pw_loop* loop = pw_main_loop_get_loop(fixture.loop);
    fixture.timer = pw_loop_add_timer(
        loop, [](void* user, std::uint64_t) { pw_stream_trigger_process(self(user).stream); }, &fixture);

    pw_stream_events events{};
    events.version = PW_VERSION_STREAM_EVENTS;
    events.state_changed = stateChanged;
    events.param_changed = formatChanged;
    events.process = process;
    const std::string description = std::string("Camera ") + argv[1];
    fixture.stream = pw_stream_new_simple(
        loop, argv[1],
        pw_properties_new(PW_KEY_MEDIA_CLASS, "Video/Source", PW_KEY_MEDIA_ROLE, "Camera", PW_KEY_NODE_NAME,
                          argv[1], PW_KEY_NODE_DESCRIPTION, description.c_str(), nullptr),
        &events, &fixture);
    if (!fixture.stream) return 1;

    std::array<std::uint8_t, 1024> memory;
    spa_pod_builder builder = SPA_POD_BUILDER_INIT(memory.data(), memory.size());
    const spa_rectangle size{static_cast<std::uint32_t>(fixture.width),
                             static_cast<std::uint32_t>(fixture.height)};
    const spa_fraction rate{static_cast<std::uint32_t>(fixture.fps), 1};
    const spa_pod* format = static_cast<const spa_pod*>(spa_pod_builder_add_object(
        &builder, SPA_TYPE_OBJECT_Format, SPA_PARAM_EnumFormat, SPA_FORMAT_mediaType,
        SPA_POD_Id(SPA_MEDIA_TYPE_video), SPA_FORMAT_mediaSubtype, SPA_POD_Id(SPA_MEDIA_SUBTYPE_raw),
        SPA_FORMAT_VIDEO_format, SPA_POD_Id(fixture.spaFormat()), SPA_FORMAT_VIDEO_size,
        SPA_POD_Rectangle(&size), SPA_FORMAT_VIDEO_framerate, SPA_POD_Fraction(&rate)));
    const auto flags = static_cast<pw_stream_flags>(PW_STREAM_FLAG_DRIVER | PW_STREAM_FLAG_MAP_BUFFERS);
    if (pw_stream_connect(fixture.stream, PW_DIRECTION_OUTPUT, PW_ID_ANY, flags, &format, 1) < 0) return 1;
    pw_main_loop_run(fixture.loop);
    return 0;
}
