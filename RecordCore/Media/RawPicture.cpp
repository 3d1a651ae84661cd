#include "RecordCore/Media/PictureDecoder.h"

namespace RecordCore {

RawPicture RawPicture::contiguous(RawFormat format, int width, int height, const std::uint8_t* data,
                                  std::size_t bytes, std::ptrdiff_t stride) {
    RawPicture picture;
    picture.format = format;
    picture.width = width;
    picture.height = height;
    picture.bytes = bytes;
    if (!data || width < 2 || height < 2 || width > 16384 || height > 16384 || stride < 0) return picture;
    if (format == RawFormat::motionJpeg) {
        if (bytes > 0) picture.planes[0] = data;
        return picture;
    }
    const bool packed = format == RawFormat::yuyv || format == RawFormat::uyvy;
    const std::ptrdiff_t row = packed ? (width + 1) / 2 * 4 : width;
    if (stride == 0) stride = row;
    const std::ptrdiff_t chromaRows = packed ? 0 : (height + 1) / 2;
    const std::ptrdiff_t chromaStride = format == RawFormat::i420 ? (stride + 1) / 2 : stride;
    const std::ptrdiff_t chromaPlanes = packed ? 0 : format == RawFormat::i420 ? 2 : 1;
    const std::ptrdiff_t luma = stride * height;
    // Of the very last row only the pixels must be there, not the padding behind them.
    const std::ptrdiff_t slack =
        packed ? stride - row
               : chromaStride - (format == RawFormat::i420 ? (width + 1) / 2 : (width + 1) / 2 * 2);
    const std::ptrdiff_t needed = luma + chromaPlanes * chromaStride * chromaRows - (slack > 0 ? slack : 0);
    if (stride < row || static_cast<std::ptrdiff_t>(bytes) < needed) return picture;
    picture.planes[0] = data;
    picture.strides[0] = stride;
    for (std::ptrdiff_t plane = 1; plane <= chromaPlanes; ++plane) {
        picture.planes[static_cast<std::size_t>(plane)] =
            data + luma + (plane - 1) * chromaStride * chromaRows;
        picture.strides[static_cast<std::size_t>(plane)] = chromaStride;
    }
    return picture;
}

} // namespace RecordCore
