#pragma once

#include "RecordCore/Capture/CameraMode.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <linux/videodev2.h>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace RecordCore {

/// A video device of the kernel that was opened for capture. One thread at a time.
class V4L2Device {
public:
    /// One captured picture; its memory belongs to the driver again after `giveBack`.
    struct Buffer {
        std::uint32_t index = 0;
        std::span<const std::uint8_t> data;
        std::optional<double> time; ///< host clock seconds, when the driver tells it
        bool damaged = false;
    };

    /// None when there is no such device, or one that captures no pictures. Throws RecordingError
    /// "camera busy" when it exists and may not be opened.
    static std::optional<V4L2Device> open(const std::string& path);

    V4L2Device(V4L2Device&& other) noexcept;
    V4L2Device& operator=(V4L2Device&& other) noexcept;
    ~V4L2Device();

    const std::string& path() const { return file; }
    const std::string& name() const { return card; }
    int descriptor() const { return fd; } ///< readable when a picture waits

    /// What it offers and we can read.
    std::vector<CameraMode> modes() const;

    /// Chooses a mode and starts the flow. Throws RecordingError "camera output" or "camera busy".
    void start(const CameraMode& mode);

    /// The picture that has waited longest, none when none waits. Throws RecordingError when the device is
    /// gone.
    std::optional<Buffer> take();
    void giveBack(const Buffer& buffer);

    /// A buffer's bytes as a picture of the running mode.
    RawPicture picture(const Buffer& buffer) const;

private:
    struct Mapping {
        void* memory = nullptr;
        std::size_t length = 0;
    };

    V4L2Device(int descriptor, std::string path) : fd(descriptor), file(std::move(path)) {}
    int control(unsigned long request, void* argument) const;
    void addSizes(std::uint32_t pixelFormat, RawFormat format, std::vector<CameraMode>& modes) const;
    double fastest(std::uint32_t pixelFormat, std::uint32_t width, std::uint32_t height) const;
    void close();

    int fd = -1;
    std::string file;
    std::string card;
    std::vector<Mapping> mappings;
    v4l2_pix_format format{};
    RawFormat rawFormat = RawFormat::yuyv;
    bool running = false;
};

} // namespace RecordCore
