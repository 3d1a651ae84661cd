#include "RecordCore/Media/FFmpeg/PictureConverter.h"

#include "RecordCore/Model/RecordingError.h"

extern "C" {
#include <libavutil/opt.h>
#include <libavutil/pixdesc.h>
}

#include <algorithm>
#include <cmath>

namespace RecordCore::FFmpeg {

namespace {

constexpr int align = 64; // bytes; also of every row, so that vector code may read whole registers

int chromaSize(int size) {
    return (size + 1) / 2;
}

struct LumaWeights {
    double kr;
    double kb;
};

LumaWeights lumaWeights(AVColorSpace matrix) {
    switch (matrix) {
    case AVCOL_SPC_BT470BG:
    case AVCOL_SPC_SMPTE170M:
        return {0.299, 0.114};
    case AVCOL_SPC_FCC:
        return {0.30, 0.11};
    case AVCOL_SPC_SMPTE240M:
        return {0.212, 0.087};
    case AVCOL_SPC_BT2020_NCL:
    case AVCOL_SPC_BT2020_CL:
        return {0.2627, 0.0593};
    default:
        return {0.2126, 0.0722};
    }
}

/// The formats whose name says "full range" are the plain ones with a flag.
AVPixelFormat withoutRange(AVPixelFormat format, bool& fullRange) {
    switch (format) {
    case AV_PIX_FMT_YUVJ420P:
        fullRange = true;
        return AV_PIX_FMT_YUV420P;
    case AV_PIX_FMT_YUVJ422P:
        fullRange = true;
        return AV_PIX_FMT_YUV422P;
    case AV_PIX_FMT_YUVJ440P:
        fullRange = true;
        return AV_PIX_FMT_YUV440P;
    case AV_PIX_FMT_YUVJ444P:
        fullRange = true;
        return AV_PIX_FMT_YUV444P;
    case AV_PIX_FMT_YUVJ411P:
        fullRange = true;
        return AV_PIX_FMT_YUV411P;
    default:
        return format;
    }
}

std::uint8_t clampByte(int value) {
    return static_cast<std::uint8_t>(std::clamp(value, 0, 255));
}

} // namespace

FrameHandle PicturePool::get(int newWidth, int newHeight) {
    if (!pool || newWidth != width || newHeight != height) {
        width = newWidth;
        height = newHeight;
        std::size_t size = 0;
        for (std::size_t plane = 0; plane < 3; ++plane) {
            const int columns = plane == 0 ? width : chromaSize(width);
            const int rows = plane == 0 ? height : chromaSize(height);
            strides[plane] = (columns + align - 1) / align * align;
            offsets[plane] = size;
            size += static_cast<std::size_t>(strides[plane]) * static_cast<std::size_t>(rows);
        }
        pool.reset(av_buffer_pool_init(size + align, nullptr));
        if (!pool) throw std::bad_alloc();
    }
    FrameHandle frame = makeFrame();
    frame->buf[0] = av_buffer_pool_get(pool.get());
    if (!frame->buf[0]) throw std::bad_alloc();
    for (std::size_t plane = 0; plane < 3; ++plane) {
        frame->data[plane] = frame->buf[0]->data + offsets[plane];
        frame->linesize[plane] = strides[plane];
    }
    frame->width = width;
    frame->height = height;
    frame->format = AV_PIX_FMT_YUV420P;
    return frame;
}

ColourMap colourMapToBt709(double kr, double kb, bool fullRange) {
    // Recommendation ITU-R BT.709, 3.2 to 3.5: E'y = kr E'r + kg E'g + kb E'b, chroma scaled to ±0.5.
    const double targetKr = 0.2126;
    const double targetKb = 0.0722;
    const double lumaRange = fullRange ? 255 : 219;
    const double chromaRange = fullRange ? 255 : 224;
    const auto convert = [&](double cb, double cr) {
        const double red = 2 * (1 - kr) * cr;
        const double blue = 2 * (1 - kb) * cb;
        const double green = -(kr * red + kb * blue) / (1 - kr - kb);
        const double luma = targetKr * red + (1 - targetKr - targetKb) * green + targetKb * blue;
        return std::array<double, 3>{luma, (blue - luma) / (2 * (1 - targetKb)),
                                     (red - luma) / (2 * (1 - targetKr))};
    };
    const auto fromCb = convert(1, 0);
    const auto fromCr = convert(0, 1);
    ColourMap map;
    map.lumaScale = 219 / lumaRange;
    map.lumaFromCb = 219 * fromCb[0] / chromaRange;
    map.lumaFromCr = 219 * fromCr[0] / chromaRange;
    map.lumaOffset = 16 - (fullRange ? 0 : 16) * map.lumaScale;
    map.cbFromCb = 224 * fromCb[1] / chromaRange;
    map.cbFromCr = 224 * fromCr[1] / chromaRange;
    map.crFromCb = 224 * fromCb[2] / chromaRange;
    map.crFromCr = 224 * fromCr[2] / chromaRange;
    return map;
}

PictureConverter::PictureConverter(int width, int height, Orientation orientation,
                                   const AVCodecParameters& tags) :
    width(width),
    height(height), orientation(orientation), taggedMatrix(tags.color_space), taggedRange(tags.color_range),
    taggedSiting(tags.chroma_location) {}

PictureConverter::Source PictureConverter::describe(const AVFrame& frame) const {
    Source source;
    source.width = frame.width;
    source.height = frame.height;
    const AVColorRange range = frame.color_range != AVCOL_RANGE_UNSPECIFIED ? frame.color_range : taggedRange;
    source.fullRange = range == AVCOL_RANGE_JPEG;
    source.format = withoutRange(static_cast<AVPixelFormat>(frame.format), source.fullRange);
    source.matrix = frame.colorspace != AVCOL_SPC_UNSPECIFIED ? frame.colorspace : taggedMatrix;
    if (source.matrix == AVCOL_SPC_UNSPECIFIED || source.matrix == AVCOL_SPC_RESERVED)
        source.matrix = frame.width < 1280 && frame.height < 720 ? AVCOL_SPC_SMPTE170M : AVCOL_SPC_BT709;
    const AVChromaLocation siting =
        frame.chroma_location != AVCHROMA_LOC_UNSPECIFIED ? frame.chroma_location : taggedSiting;
    if (siting == AVCHROMA_LOC_CENTER || siting == AVCHROMA_LOC_TOP || siting == AVCHROMA_LOC_BOTTOM)
        source.siting.x = 0.5;
    if (siting == AVCHROMA_LOC_TOP || siting == AVCHROMA_LOC_TOPLEFT) source.siting.y = 0;
    if (siting == AVCHROMA_LOC_BOTTOM || siting == AVCHROMA_LOC_BOTTOMLEFT) source.siting.y = 1;
    return source;
}

void PictureConverter::prepare(const Source& source) {
    prepared = source;
    const AVPixFmtDescriptor* format = av_pix_fmt_desc_get(source.format);
    if (!format || (format->flags & AV_PIX_FMT_FLAG_HWACCEL) != 0)
        throw RecordingError("a frame has an unknown pixel format");
    const bool rgb = (format->flags & (AV_PIX_FMT_FLAG_RGB | AV_PIX_FMT_FLAG_PAL)) != 0 ||
                     source.format == AV_PIX_FMT_MONOBLACK || source.format == AV_PIX_FMT_MONOWHITE;

    // Chroma must sit left once the picture is turned. Seen from the picture as it lies, that is another
    // place: along an axis of n samples that is mirrored, sample p goes to n − 1 − p, and with it the place
    // in a block of two (which for an odd n is a block's border).
    const int outWidth = orientation.transpose ? height : width;
    const int outHeight = orientation.transpose ? width : height;
    const auto before = [](bool flip, int size, double place) {
        return flip ? (size % 2 == 0 ? 1.0 : 0.0) - place : place;
    };
    const double alongX = before(orientation.flipX, outWidth, 0);
    const double alongY = before(orientation.flipY, outHeight, 0.5);
    wanted = orientation.transpose ? Siting{alongY, alongX} : Siting{alongX, alongY};

    const bool exact =
        source.format == AV_PIX_FMT_YUV420P && source.width == width && source.height == height;
    scaler.reset();
    Siting siting = source.siting;
    if (!exact) {
        scaler.reset(sws_alloc_context());
        if (!scaler) throw std::bad_alloc();
        const int flags = SWS_BICUBIC | SWS_ACCURATE_RND | SWS_FULL_CHR_H_INP | SWS_FULL_CHR_H_INT;
        const bool subsampledX = format->log2_chroma_w > 0 && !rgb;
        const bool subsampledY = format->log2_chroma_h > 0 && !rgb;
        av_opt_set_int(scaler.get(), "srcw", source.width, 0);
        av_opt_set_int(scaler.get(), "srch", source.height, 0);
        av_opt_set_int(scaler.get(), "src_format", source.format, 0);
        av_opt_set_int(scaler.get(), "dstw", width, 0);
        av_opt_set_int(scaler.get(), "dsth", height, 0);
        av_opt_set_int(scaler.get(), "dst_format", AV_PIX_FMT_YUV420P, 0);
        av_opt_set_int(scaler.get(), "sws_flags", flags, 0);
        // In 256ths of a luma sample.
        if (subsampledX) av_opt_set_int(scaler.get(), "src_h_chr_pos", std::lround(siting.x * 256), 0);
        if (subsampledY) av_opt_set_int(scaler.get(), "src_v_chr_pos", std::lround(siting.y * 256), 0);
        av_opt_set_int(scaler.get(), "dst_h_chr_pos", 0, 0);
        av_opt_set_int(scaler.get(), "dst_v_chr_pos", 128, 0);
        if (sws_init_context(scaler.get(), nullptr, nullptr) < 0)
            throw RecordingError("a frame has a pixel format that cannot be converted");
        // The scaler changes the layout of the samples only, never their meaning, unless they are RGB.
        const int* bt709 = sws_getCoefficients(SWS_CS_ITU709);
        sws_setColorspaceDetails(scaler.get(), bt709, rgb ? 1 : 0, bt709, 0, 0, 1 << 16, 1 << 16);
        // Planes that are only copied stay where they are.
        const bool samePlanes =
            subsampledX && subsampledY && source.width == width && source.height == height;
        if (!samePlanes) siting = {};
    }
    map = rgb ? ColourMap{}
              : colourMapToBt709(lumaWeights(source.matrix).kr, lumaWeights(source.matrix).kb,
                                 source.fullRange);
    shiftX = (wanted.x - siting.x) / 2;
    shiftY = (wanted.y - siting.y) / 2;
    if (std::abs(map.lumaFromCb) < 1e-9 && std::abs(map.lumaFromCr) < 1e-9 &&
        std::abs(map.lumaScale - 1) < 1e-9)
        map = {};
}

VideoFrame PictureConverter::convert(FrameHandle frame, double time) {
    if (const Source source = describe(*frame); source != prepared) prepare(source);
    if (scaler) frame = scale(*frame);
    if (!map.identity() || shiftX != 0 || shiftY != 0) frame = recolour(*frame);
    if (!orientation.upright()) frame = turn(*frame);

    VideoFrame result;
    result.time = time;
    for (std::size_t plane = 0; plane < 3; ++plane) {
        result.picture.planes[plane] = frame->data[plane];
        result.picture.strides[plane] = frame->linesize[plane];
    }
    result.picture.width = frame->width;
    result.picture.height = frame->height;
    result.owner = std::shared_ptr<const void>(frame.release(), [](AVFrame* held) { FreeFrame()(held); });
    return result;
}

FrameHandle PictureConverter::scale(const AVFrame& frame) {
    FrameHandle out = scaledPool.get(width, height);
    if (sws_scale(scaler.get(), frame.data, frame.linesize, 0, frame.height, out->data, out->linesize) < 0)
        throw RecordingError("a frame could not be converted");
    return out;
}

FrameHandle PictureConverter::recolour(const AVFrame& frame) {
    FrameHandle out = colouredPool.get(frame.width, frame.height);
    const int columns = chromaSize(frame.width);
    const int rows = chromaSize(frame.height);
    constexpr int bits = 14;
    constexpr int one = 1 << bits;
    const auto fixed = [](double value) { return static_cast<int>(std::lround(value * one)); };
    const int lumaScale = fixed(map.lumaScale);
    const int lumaOffset = fixed(map.lumaOffset) + one / 2;
    const int lumaFromCb = fixed(map.lumaFromCb);
    const int lumaFromCr = fixed(map.lumaFromCr);

    if (lumaFromCb == 0 && lumaFromCr == 0) {
        for (int y = 0; y < frame.height; ++y) {
            const std::uint8_t* from = frame.data[0] + std::ptrdiff_t{y} * frame.linesize[0];
            std::uint8_t* to = out->data[0] + std::ptrdiff_t{y} * out->linesize[0];
            for (int x = 0; x < frame.width; ++x)
                to[x] = clampByte((from[x] * lumaScale + lumaOffset) >> bits);
        }
    } else {
        // Chroma at the place of each luma sample, linearly between its samples.
        chromaPart.resize(static_cast<std::size_t>(columns + 1));
        for (int y = 0; y < frame.height; ++y) {
            const double place = (y - prepared.siting.y) / 2;
            const int upper = static_cast<int>(std::floor(place));
            const int weight = static_cast<int>(std::lround((place - upper) * 256));
            const std::ptrdiff_t rowA = std::clamp(upper, 0, rows - 1);
            const std::ptrdiff_t rowB = std::clamp(upper + 1, 0, rows - 1);
            const std::uint8_t* cbA = frame.data[1] + rowA * frame.linesize[1];
            const std::uint8_t* cbB = frame.data[1] + rowB * frame.linesize[1];
            const std::uint8_t* crA = frame.data[2] + rowA * frame.linesize[2];
            const std::uint8_t* crB = frame.data[2] + rowB * frame.linesize[2];
            for (int x = 0; x < columns; ++x) {
                const int cb = cbA[x] * (256 - weight) + cbB[x] * weight - 128 * 256;
                const int cr = crA[x] * (256 - weight) + crB[x] * weight - 128 * 256;
                chromaPart[static_cast<std::size_t>(x)] =
                    (cb * (lumaFromCb >> 2) + cr * (lumaFromCr >> 2)) >> 6;
            }
            chromaPart[static_cast<std::size_t>(columns)] = chromaPart[static_cast<std::size_t>(columns - 1)];

            const std::uint8_t* from = frame.data[0] + std::ptrdiff_t{y} * frame.linesize[0];
            std::uint8_t* to = out->data[0] + std::ptrdiff_t{y} * out->linesize[0];
            const bool centred = prepared.siting.x == 0.5;
            for (int x = 0; x < frame.width; ++x) {
                const auto c = static_cast<std::size_t>(x / 2);
                int part = chromaPart[c];
                if (centred) {
                    const std::size_t other = x % 2 == 0 ? (c == 0 ? 0 : c - 1) : c + 1;
                    part = (3 * part + chromaPart[other]) / 4;
                } else if (x % 2 != 0) {
                    part = (part + chromaPart[c + 1]) / 2;
                }
                to[x] = clampByte((from[x] * lumaScale + part + lumaOffset) >> bits);
            }
        }
    }

    // Chroma is moved to where it belongs and mixed in one go.
    const int left = static_cast<int>(std::floor(shiftX));
    const int top = static_cast<int>(std::floor(shiftY));
    const auto weightX = static_cast<float>(shiftX - left);
    const auto weightY = static_cast<float>(shiftY - top);
    chromaRows.resize(static_cast<std::size_t>(columns) * 2);
    float* const cbRow = chromaRows.data();
    float* const crRow = cbRow + columns;
    for (int y = 0; y < rows; ++y) {
        for (const std::size_t plane : {std::size_t{1}, std::size_t{2}}) {
            const std::ptrdiff_t stride = frame.linesize[plane];
            const std::uint8_t* a = frame.data[plane] + std::clamp(y + top, 0, rows - 1) * stride;
            const std::uint8_t* b = frame.data[plane] + std::clamp(y + top + 1, 0, rows - 1) * stride;
            float* row = plane == 1 ? cbRow : crRow;
            const auto vertical = [&](int x) {
                const auto above = static_cast<float>(a[x]);
                return above + (static_cast<float>(b[x]) - above) * weightY - 128;
            };
            if (left == 0 && weightX == 0) {
                for (int x = 0; x < columns; ++x)
                    row[x] = vertical(x);
                continue;
            }
            for (int x = 0; x < columns; ++x) {
                const float first = vertical(std::clamp(x + left, 0, columns - 1));
                const float second = vertical(std::clamp(x + left + 1, 0, columns - 1));
                row[x] = first + (second - first) * weightX;
            }
        }
        std::uint8_t* cb = out->data[1] + std::ptrdiff_t{y} * out->linesize[1];
        std::uint8_t* cr = out->data[2] + std::ptrdiff_t{y} * out->linesize[2];
        const auto cbCb = static_cast<float>(map.cbFromCb);
        const auto cbCr = static_cast<float>(map.cbFromCr);
        const auto crCb = static_cast<float>(map.crFromCb);
        const auto crCr = static_cast<float>(map.crFromCr);
        for (int x = 0; x < columns; ++x) {
            // 128.5 rounds to the nearest code; the sum is never negative enough to matter to the cast.
            cb[x] = clampByte(static_cast<int>(cbRow[x] * cbCb + crRow[x] * cbCr + 128.5F));
            cr[x] = clampByte(static_cast<int>(cbRow[x] * crCb + crRow[x] * crCr + 128.5F));
        }
    }
    return out;
}

FrameHandle PictureConverter::turn(const AVFrame& frame) {
    const int outWidth = orientation.transpose ? frame.height : frame.width;
    const int outHeight = orientation.transpose ? frame.width : frame.height;
    FrameHandle out = turnedPool.get(outWidth, outHeight);
    for (std::size_t plane = 0; plane < 3; ++plane) {
        const int columns = plane == 0 ? outWidth : chromaSize(outWidth);
        const int rows = plane == 0 ? outHeight : chromaSize(outHeight);
        const std::ptrdiff_t stride = frame.linesize[plane];
        for (int y = 0; y < rows; ++y) {
            const int v = orientation.flipY ? rows - 1 - y : y;
            const int first = orientation.flipX ? columns - 1 : 0;
            const std::ptrdiff_t along = orientation.transpose ? stride : 1;
            const std::uint8_t* from =
                frame.data[plane] + (orientation.transpose ? v + first * stride : v * stride + first);
            const std::ptrdiff_t step = orientation.flipX ? -along : along;
            std::uint8_t* to = out->data[plane] + std::ptrdiff_t{y} * out->linesize[plane];
            for (int x = 0; x < columns; ++x, from += step)
                to[x] = *from;
        }
    }
    return out;
}

} // namespace RecordCore::FFmpeg
