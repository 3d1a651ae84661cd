#include "RecordCore/Media/FFmpeg/FFmpegMedia.h"
#include "Tests/Support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <vector>

using namespace RecordCore;

namespace {

/// A grey picture but for its last luma and chroma samples.
std::vector<std::uint8_t> grey(std::size_t bytes) {
    return std::vector<std::uint8_t>(bytes, 128);
}

} // namespace

TEST(RawPicture, FitsItsPlanesIntoTheMemoryOrHasNone) {
    struct Case {
        const char* name;
        RawFormat format;
        int width, height;
        std::ptrdiff_t stride;
        std::size_t bytes;
        bool fits;
        std::ptrdiff_t second; ///< where the second plane lies; 0: there is none
    };
    for (const Case& c : {
             Case{"i420", RawFormat::i420, 8, 4, 0, 48, true, 32},
             Case{"i420 a byte short", RawFormat::i420, 8, 4, 0, 47, false, 0},
             Case{"i420 padded", RawFormat::i420, 8, 4, 16, 64 + 32 - 4, true, 64},
             Case{"i420 padded, last row short", RawFormat::i420, 8, 4, 16, 64 + 32 - 5, false, 0},
             Case{"odd size", RawFormat::i420, 7, 3, 0, 21 + 2 * 8, true, 21},
             Case{"nv12", RawFormat::nv12, 8, 4, 0, 48, true, 32},
             Case{"nv12 padded", RawFormat::nv12, 8, 4, 12, 72 - 4, true, 48},
             Case{"yuyv", RawFormat::yuyv, 8, 4, 0, 64, true, 0},
             Case{"yuyv of a stride too small", RawFormat::yuyv, 8, 4, 12, 64, false, 0},
             Case{"no size", RawFormat::yuyv, 0, 4, 0, 64, false, 0},
             Case{"a size beyond sense", RawFormat::i420, 1 << 30, 1 << 30, 0, 64, false, 0},
             Case{"a negative stride", RawFormat::i420, 8, 4, -8, 48, false, 0},
             Case{"empty Motion JPEG", RawFormat::motionJpeg, 8, 4, 0, 0, false, 0},
         }) {
        SCOPED_TRACE(c.name);
        const std::vector<std::uint8_t> memory = grey(c.bytes);
        const RawPicture picture =
            RawPicture::contiguous(c.format, c.width, c.height, memory.data(), c.bytes, c.stride);
        EXPECT_EQ(picture.planes[0] != nullptr, c.fits);
        EXPECT_EQ(picture.planes[1] ? picture.planes[1] - picture.planes[0] : 0, c.second);
        EXPECT_EQ(FFmpeg::makePictureDecoder()->decode(picture).empty(), !c.fits);
    }
}

TEST(PictureDecoder, DecodesMotionJpegInOurColours) {
    const TemporaryFolder folder;
    const std::string file = (folder / "red.jpg").string();
    const std::string command =
        "ffmpeg -nostdin -v error -f lavfi -i color=0xBE2828:s=64x48 -frames:v 1 -q:v 2 -y " + file;
    if (std::system(command.c_str()) != 0) GTEST_SKIP() << "ffmpeg is not installed";
    std::ifstream stream(file, std::ios::binary);
    std::vector<char> bytes{std::istreambuf_iterator<char>(stream), {}};
    const auto decoder = FFmpeg::makePictureDecoder();
    const auto decode = [&](std::size_t length) {
        return decoder->decode(RawPicture::contiguous(
            RawFormat::motionJpeg, 64, 48, reinterpret_cast<const std::uint8_t*>(bytes.data()), length, 0));
    };
    const auto expectRed = [&] {
        const PlanarView red = decode(bytes.size());
        ASSERT_EQ(red.width, 64);
        ASSERT_EQ(red.height, 48);
        // sRGB 190, 40, 40 in BT.709, video range; JPEG itself is BT.601 in full range.
        EXPECT_NEAR(red.planes[0][24 * red.strides[0] + 32], 78, 2);
        EXPECT_NEAR(red.planes[1][12 * red.strides[1] + 16], 113, 2);
        EXPECT_NEAR(red.planes[2][12 * red.strides[2] + 16], 194, 2);
    };
    expectRed();
    EXPECT_TRUE(decode(20).empty()); // cut off, as a bad cable does
    expectRed();
}
