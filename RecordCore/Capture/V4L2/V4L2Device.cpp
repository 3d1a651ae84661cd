#include "RecordCore/Capture/V4L2/V4L2Device.h"

#include "RecordCore/Model/RecordingError.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/ioctl.h>
#include <sys/mman.h>
#include <unistd.h>
#include <utility>

namespace RecordCore {

namespace {

constexpr std::uint32_t bufferCount = 4;

struct FormatPair {
    std::uint32_t theirs;
    RawFormat ours;
};
constexpr std::array<FormatPair, 6> formats{{{V4L2_PIX_FMT_YUV420, RawFormat::i420},
                                             {V4L2_PIX_FMT_NV12, RawFormat::nv12},
                                             {V4L2_PIX_FMT_YUYV, RawFormat::yuyv},
                                             {V4L2_PIX_FMT_UYVY, RawFormat::uyvy},
                                             {V4L2_PIX_FMT_MJPEG, RawFormat::motionJpeg},
                                             {V4L2_PIX_FMT_JPEG, RawFormat::motionJpeg}}};

std::optional<RawFormat> ourFormat(std::uint32_t theirs) {
    for (const FormatPair& pair : formats)
        if (pair.theirs == theirs) return pair.ours;
    return {};
}

double rate(const v4l2_fract& interval) {
    return interval.numerator == 0 ? 0 : static_cast<double>(interval.denominator) / interval.numerator;
}

} // namespace

std::optional<V4L2Device> V4L2Device::open(const std::string& path) {
    const int descriptor = ::open(path.c_str(), O_RDWR | O_NONBLOCK | O_CLOEXEC);
    if (descriptor < 0) {
        if (errno == EBUSY || errno == EACCES || errno == EPERM) throw RecordingError("camera busy");
        return {};
    }
    V4L2Device device(descriptor, path);
    v4l2_capability capability{};
    if (device.control(VIDIOC_QUERYCAP, &capability) < 0) return {};
    const std::uint32_t can =
        (capability.capabilities & V4L2_CAP_DEVICE_CAPS) ? capability.device_caps : capability.capabilities;
    if (!(can & V4L2_CAP_VIDEO_CAPTURE) || !(can & V4L2_CAP_STREAMING)) return {};
    const auto* card = reinterpret_cast<const char*>(capability.card);
    device.card.assign(card, strnlen(card, sizeof capability.card));
    return device;
}

V4L2Device::V4L2Device(V4L2Device&& other) noexcept {
    *this = std::move(other);
}

V4L2Device& V4L2Device::operator=(V4L2Device&& other) noexcept {
    if (this == &other) return *this;
    close();
    fd = std::exchange(other.fd, -1);
    file = std::move(other.file);
    card = std::move(other.card);
    mappings = std::exchange(other.mappings, {});
    format = other.format;
    rawFormat = other.rawFormat;
    running = std::exchange(other.running, false);
    return *this;
}

V4L2Device::~V4L2Device() {
    close();
}

void V4L2Device::close() {
    if (fd < 0) return;
    if (running) {
        v4l2_buf_type type = V4L2_BUF_TYPE_VIDEO_CAPTURE;
        control(VIDIOC_STREAMOFF, &type);
    }
    for (const Mapping& mapping : mappings)
        munmap(mapping.memory, mapping.length);
    ::close(fd);
    fd = -1;
}

int V4L2Device::control(unsigned long request, void* argument) const {
    int result;
    do
        result = ioctl(fd, request, argument);
    while (result < 0 && errno == EINTR);
    return result;
}

std::vector<CameraMode> V4L2Device::modes() const {
    std::vector<CameraMode> found;
    for (std::uint32_t i = 0; i < 256; ++i) {
        v4l2_fmtdesc description{};
        description.index = i;
        description.type = V4L2_BUF_TYPE_VIDEO_CAPTURE;
        if (control(VIDIOC_ENUM_FMT, &description) < 0) break;
        if (const auto ours = ourFormat(description.pixelformat))
            addSizes(description.pixelformat, *ours, found);
    }
    return found;
}

void V4L2Device::addSizes(std::uint32_t pixelFormat, RawFormat ours, std::vector<CameraMode>& found) const {
    for (std::uint32_t i = 0; i < 256; ++i) {
        v4l2_frmsizeenum size{};
        size.index = i;
        size.pixel_format = pixelFormat;
        if (control(VIDIOC_ENUM_FRAMESIZES, &size) < 0) break;
        std::uint32_t width = size.discrete.width;
        std::uint32_t height = size.discrete.height;
        if (size.type != V4L2_FRMSIZE_TYPE_DISCRETE) {
            // Any size between: ours when it is among them, else the largest.
            const v4l2_frmsize_stepwise& range = size.stepwise;
            width = std::clamp<std::uint32_t>(1280, range.min_width, range.max_width);
            height = std::clamp<std::uint32_t>(720, range.min_height, range.max_height);
        }
        if (width < 2 || height < 2 || width > 16384 || height > 16384) continue;
        found.push_back(
            {ours, static_cast<int>(width), static_cast<int>(height), fastest(pixelFormat, width, height)});
        if (size.type != V4L2_FRMSIZE_TYPE_DISCRETE) break;
    }
}

double V4L2Device::fastest(std::uint32_t pixelFormat, std::uint32_t width, std::uint32_t height) const {
    double fps = 0;
    for (std::uint32_t i = 0; i < 256; ++i) {
        v4l2_frmivalenum interval{};
        interval.index = i;
        interval.pixel_format = pixelFormat;
        interval.width = width;
        interval.height = height;
        if (control(VIDIOC_ENUM_FRAMEINTERVALS, &interval) < 0) break;
        const bool discrete = interval.type == V4L2_FRMIVAL_TYPE_DISCRETE;
        fps = std::max(fps, rate(discrete ? interval.discrete : interval.stepwise.min));
        if (!discrete) break;
    }
    return fps;
}

void V4L2Device::start(const CameraMode& mode) {
    const auto check = [](int result) {
        if (result < 0) throw RecordingError(errno == EBUSY ? "camera busy" : "camera output");
    };
    v4l2_format wanted{};
    wanted.type = V4L2_BUF_TYPE_VIDEO_CAPTURE;
    wanted.fmt.pix.width = static_cast<std::uint32_t>(mode.width);
    wanted.fmt.pix.height = static_cast<std::uint32_t>(mode.height);
    wanted.fmt.pix.field = V4L2_FIELD_ANY;
    for (const FormatPair& pair : formats) {
        if (pair.ours != mode.format) continue;
        wanted.fmt.pix.pixelformat = pair.theirs;
        if (control(VIDIOC_S_FMT, &wanted) >= 0 || errno == EBUSY) break;
    }
    // Drivers may change what was asked for; what counts is what they answer.
    check(control(VIDIOC_S_FMT, &wanted));
    const auto ours = ourFormat(wanted.fmt.pix.pixelformat);
    if (!ours) throw RecordingError("camera output");
    rawFormat = *ours;
    format = wanted.fmt.pix;

    v4l2_streamparm speed{};
    speed.type = V4L2_BUF_TYPE_VIDEO_CAPTURE;
    speed.parm.capture.timeperframe = {1, 30};
    control(VIDIOC_S_PARM, &speed); // many cannot; they run at their own

    v4l2_requestbuffers request{};
    request.count = bufferCount;
    request.type = V4L2_BUF_TYPE_VIDEO_CAPTURE;
    request.memory = V4L2_MEMORY_MMAP;
    check(control(VIDIOC_REQBUFS, &request));
    if (request.count < 2) throw RecordingError("camera output");
    for (std::uint32_t i = 0; i < request.count; ++i) {
        v4l2_buffer buffer{};
        buffer.index = i;
        buffer.type = V4L2_BUF_TYPE_VIDEO_CAPTURE;
        buffer.memory = V4L2_MEMORY_MMAP;
        check(control(VIDIOC_QUERYBUF, &buffer));
        void* memory = mmap(nullptr, buffer.length, PROT_READ | PROT_WRITE, MAP_SHARED, fd, buffer.m.offset);
        if (memory == MAP_FAILED) throw RecordingError("camera output");
        mappings.push_back({memory, buffer.length});
        check(control(VIDIOC_QBUF, &buffer));
    }
    v4l2_buf_type type = V4L2_BUF_TYPE_VIDEO_CAPTURE;
    check(control(VIDIOC_STREAMON, &type));
    running = true;
}

std::optional<V4L2Device::Buffer> V4L2Device::take() {
    v4l2_buffer raw{};
    raw.type = V4L2_BUF_TYPE_VIDEO_CAPTURE;
    raw.memory = V4L2_MEMORY_MMAP;
    if (control(VIDIOC_DQBUF, &raw) < 0) {
        if (errno == EAGAIN || errno == EIO) return {}; // EIO: a picture was lost, the flow goes on
        throw RecordingError("the camera is gone");
    }
    if (raw.index >= mappings.size()) throw RecordingError("the camera is gone");
    const Mapping& mapping = mappings[raw.index];
    Buffer buffer;
    buffer.index = raw.index;
    buffer.data = {static_cast<const std::uint8_t*>(mapping.memory),
                   std::min<std::size_t>(raw.bytesused, mapping.length)};
    buffer.damaged = (raw.flags & V4L2_BUF_FLAG_ERROR) != 0;
    if ((raw.flags & V4L2_BUF_FLAG_TIMESTAMP_MASK) == V4L2_BUF_FLAG_TIMESTAMP_MONOTONIC)
        buffer.time =
            static_cast<double>(raw.timestamp.tv_sec) + static_cast<double>(raw.timestamp.tv_usec) * 1e-6;
    return buffer;
}

void V4L2Device::giveBack(const Buffer& buffer) {
    v4l2_buffer raw{};
    raw.index = buffer.index;
    raw.type = V4L2_BUF_TYPE_VIDEO_CAPTURE;
    raw.memory = V4L2_MEMORY_MMAP;
    control(VIDIOC_QBUF, &raw); // a device that is gone shows at the next `take`
}

RawPicture V4L2Device::picture(const Buffer& buffer) const {
    RawPicture picture = RawPicture::contiguous(
        rawFormat, static_cast<int>(format.width), static_cast<int>(format.height), buffer.data.data(),
        buffer.data.size(), static_cast<std::ptrdiff_t>(format.bytesperline));
    picture.bt709 = format.ycbcr_enc == V4L2_YCBCR_ENC_709 || (format.ycbcr_enc == V4L2_YCBCR_ENC_DEFAULT &&
                                                               format.colorspace == V4L2_COLORSPACE_REC709);
    picture.fullRange = format.quantization == V4L2_QUANTIZATION_FULL_RANGE;
    return picture;
}

} // namespace RecordCore
