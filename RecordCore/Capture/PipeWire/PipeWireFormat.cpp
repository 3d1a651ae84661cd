#include "RecordCore/Capture/PipeWire/PipeWireFormat.h"

#include <algorithm>
#include <spa/param/format-utils.h>
#include <spa/param/video/format-utils.h>
#include <spa/pod/builder.h>
#include <spa/pod/iter.h>
#include <span>

namespace RecordCore {

namespace {

struct FormatPair {
    std::uint32_t theirs;
    RawFormat ours;
};
constexpr FormatPair formatTable[] = {{SPA_VIDEO_FORMAT_I420, RawFormat::i420},
                                      {SPA_VIDEO_FORMAT_NV12, RawFormat::nv12},
                                      {SPA_VIDEO_FORMAT_YUY2, RawFormat::yuyv},
                                      {SPA_VIDEO_FORMAT_UYVY, RawFormat::uyvy}};

std::optional<RawFormat> rawFormat(std::uint32_t theirs) {
    for (const FormatPair& pair : formatTable)
        if (pair.theirs == theirs) return pair.ours;
    return {};
}

/// The values of a property: one, or all of an enumeration; of a range the two ends after its default.
template <class Value>
std::span<const Value> valuesOf(const spa_pod* format, std::uint32_t key) {
    const spa_pod_prop* property = spa_pod_find_prop(format, nullptr, key);
    if (!property) return {};
    std::uint32_t count = 0;
    std::uint32_t choice = 0;
    const spa_pod* first = spa_pod_get_values(&property->value, &count, &choice);
    if (!first || SPA_POD_BODY_SIZE(first) != sizeof(Value)) return {};
    return {static_cast<const Value*>(SPA_POD_BODY_CONST(first)), count};
}

double rate(const spa_fraction& fraction) {
    return fraction.denom == 0 ? 0 : static_cast<double>(fraction.num) / fraction.denom;
}

bool isRange(const spa_pod* format, std::uint32_t key) {
    const spa_pod_prop* property = spa_pod_find_prop(format, nullptr, key);
    if (!property || property->value.type != SPA_TYPE_Choice) return false;
    std::uint32_t count = 0;
    std::uint32_t choice = 0;
    spa_pod_get_values(&property->value, &count, &choice);
    return choice == SPA_CHOICE_Range || choice == SPA_CHOICE_Step;
}

} // namespace

void addCameraModes(const spa_pod& param, std::vector<CameraMode>& modes) {
    std::uint32_t type = 0;
    std::uint32_t subtype = 0;
    if (spa_format_parse(&param, &type, &subtype) < 0 || type != SPA_MEDIA_TYPE_video) return;

    std::vector<RawFormat> formats;
    if (subtype == SPA_MEDIA_SUBTYPE_mjpg) formats.push_back(RawFormat::motionJpeg);
    if (subtype == SPA_MEDIA_SUBTYPE_raw)
        for (const std::uint32_t theirs : valuesOf<std::uint32_t>(&param, SPA_FORMAT_VIDEO_format))
            if (const auto ours = rawFormat(theirs);
                ours && std::find(formats.begin(), formats.end(), *ours) == formats.end())
                formats.push_back(*ours);

    double fps = 0;
    for (const spa_fraction& fraction : valuesOf<spa_fraction>(&param, SPA_FORMAT_VIDEO_framerate))
        fps = std::max(fps, rate(fraction));

    std::vector<spa_rectangle> sizes;
    const auto offered = valuesOf<spa_rectangle>(&param, SPA_FORMAT_VIDEO_size);
    if (offered.size() >= 3 && isRange(&param, SPA_FORMAT_VIDEO_size)) {
        // Any size between: ours when it is among them, else the device's own default.
        const spa_rectangle wanted{1280, 720};
        const bool fits = wanted.width >= offered[1].width && wanted.width <= offered[2].width &&
                          wanted.height >= offered[1].height && wanted.height <= offered[2].height;
        sizes.push_back(fits ? wanted : offered[0]);
    } else {
        sizes.assign(offered.begin(), offered.end());
    }

    for (const RawFormat format : formats)
        for (const spa_rectangle& size : sizes) {
            if (size.width > 16384 || size.height > 16384) continue;
            const CameraMode mode{format, static_cast<int>(size.width), static_cast<int>(size.height), fps};
            if (std::find(modes.begin(), modes.end(), mode) == modes.end()) modes.push_back(mode);
        }
}

const spa_pod* modeFormat(const CameraMode& mode, std::vector<std::uint8_t>& memory) {
    memory.resize(1024);
    spa_pod_builder builder{};
    spa_pod_builder_init(&builder, memory.data(), static_cast<std::uint32_t>(memory.size()));
    spa_pod_frame frame{};
    spa_pod_builder_push_object(&builder, &frame, SPA_TYPE_OBJECT_Format, SPA_PARAM_EnumFormat);
    const bool compressed = mode.format == RawFormat::motionJpeg;
    const std::uint32_t subtype = compressed ? SPA_MEDIA_SUBTYPE_mjpg : SPA_MEDIA_SUBTYPE_raw;
    spa_pod_builder_prop(&builder, SPA_FORMAT_mediaType, 0);
    spa_pod_builder_id(&builder, SPA_MEDIA_TYPE_video);
    spa_pod_builder_prop(&builder, SPA_FORMAT_mediaSubtype, 0);
    spa_pod_builder_id(&builder, subtype);
    for (const FormatPair& pair : formatTable)
        if (pair.ours == mode.format) {
            spa_pod_builder_prop(&builder, SPA_FORMAT_VIDEO_format, 0);
            spa_pod_builder_id(&builder, pair.theirs);
        }
    spa_pod_builder_prop(&builder, SPA_FORMAT_VIDEO_size, 0);
    spa_pod_builder_rectangle(&builder, static_cast<std::uint32_t>(mode.width),
                              static_cast<std::uint32_t>(mode.height));
    // The rate nearest to 30 that the device has.
    spa_pod_frame choice{};
    spa_pod_builder_prop(&builder, SPA_FORMAT_VIDEO_framerate, 0);
    spa_pod_builder_push_choice(&builder, &choice, SPA_CHOICE_Range, 0);
    spa_pod_builder_fraction(&builder, 30, 1);
    spa_pod_builder_fraction(&builder, 0, 1);
    spa_pod_builder_fraction(&builder, 1000, 1);
    spa_pod_builder_pop(&builder, &choice);
    return static_cast<const spa_pod*>(spa_pod_builder_pop(&builder, &frame));
}

std::optional<PipeWireVideoFormat> negotiatedFormat(const spa_pod& param) {
    std::uint32_t type = 0;
    std::uint32_t subtype = 0;
    if (spa_format_parse(&param, &type, &subtype) < 0 || type != SPA_MEDIA_TYPE_video) return {};
    PipeWireVideoFormat result;
    if (subtype == SPA_MEDIA_SUBTYPE_mjpg) {
        spa_video_info_mjpg info{};
        if (spa_format_video_mjpg_parse(&param, &info) < 0) return {};
        result.format = RawFormat::motionJpeg;
        result.width = static_cast<int>(info.size.width);
        result.height = static_cast<int>(info.size.height);
        return result;
    }
    spa_video_info_raw info{};
    if (subtype != SPA_MEDIA_SUBTYPE_raw || spa_format_video_raw_parse(&param, &info) < 0) return {};
    const auto format = rawFormat(info.format);
    if (!format) return {};
    result.format = *format;
    result.width = static_cast<int>(info.size.width);
    result.height = static_cast<int>(info.size.height);
    result.bt709 = info.color_matrix == SPA_VIDEO_COLOR_MATRIX_BT709;
    result.fullRange = info.color_range == SPA_VIDEO_COLOR_RANGE_0_255;
    return result;
}

} // namespace RecordCore
