#pragma once

#include "RecordCore/Model/PictureView.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>

namespace RecordCore {

/// How a camera lays out the bytes of a picture.
enum class RawFormat { i420, nv12, yuyv, uyvy, motionJpeg };

/// One picture as a camera delivers it, borrowed.
struct RawPicture {
    RawFormat format = RawFormat::i420;
    int width = 0;
    int height = 0;
    std::array<const std::uint8_t*, 3> planes{}; ///< as many as the format has; Motion JPEG: the first
    std::array<std::ptrdiff_t, 3> strides{};     ///< bytes from row to row
    std::size_t bytes = 0;                       ///< Motion JPEG: length of its data
    bool bt709 = false;     ///< else BT.601, which is what cameras mean unless they say otherwise
    bool fullRange = false; ///< Motion JPEG says it itself

    /// A picture whose planes follow each other in one piece of memory. `stride` is that of the first plane;
    /// 0: rows without padding. Empty planes when the memory is too short for it.
    static RawPicture contiguous(RawFormat format, int width, int height, const std::uint8_t* data,
                                 std::size_t bytes, std::ptrdiff_t stride);
};

/// Turns camera pictures into the engine's pixel format. One thread at a time.
class PictureDecoder {
public:
    virtual ~PictureDecoder() = default;

    /// The result lives until the next call and as long as the picture given. Empty for one that is damaged
    /// or of no sense; cameras deliver such now and then. Throws RecordingError when decoding is impossible
    /// for good.
    virtual PlanarView decode(const RawPicture& picture) = 0;
};

using PictureDecoderFactory = std::function<std::unique_ptr<PictureDecoder>()>;

} // namespace RecordCore
