#include "RecordCore/Media/FFmpeg/FFmpegPictureDecoder.h"

#include "RecordCore/Media/FFmpeg/FFmpegMedia.h"
#include "RecordCore/Media/FFmpeg/Failure.h"
#include "RecordCore/Model/RecordingError.h"

#include <limits>
#include <utility>

namespace RecordCore::FFmpeg {

namespace {

AVPixelFormat pixelFormat(RawFormat format) {
    switch (format) {
    case RawFormat::i420:
        return AV_PIX_FMT_YUV420P;
    case RawFormat::nv12:
        return AV_PIX_FMT_NV12;
    case RawFormat::yuyv:
        return AV_PIX_FMT_YUYV422;
    case RawFormat::uyvy:
        return AV_PIX_FMT_UYVY422;
    case RawFormat::motionJpeg:
        break;
    }
    return AV_PIX_FMT_NONE;
}

} // namespace

FFmpegPictureDecoder::FFmpegPictureDecoder() {
    silenceLog();
}

PlanarView FFmpegPictureDecoder::decode(const RawPicture& picture) {
    shown = {};
    if (!picture.planes[0]) return {};
    frame = makeFrame();
    if (picture.format == RawFormat::motionJpeg) {
        if (!decodeJpeg(picture)) return {};
    } else {
        wrap(picture);
    }
    if (!converter || frame->width != width || frame->height != height) {
        width = frame->width;
        height = frame->height;
        const std::unique_ptr<AVCodecParameters, void (*)(AVCodecParameters*)> untagged(
            avcodec_parameters_alloc(), [](AVCodecParameters* held) { avcodec_parameters_free(&held); });
        if (!untagged) throw std::bad_alloc();
        converter.emplace(width, height, Orientation(), *untagged);
    }
    shown = converter->convert(std::move(frame), 0);
    return shown.picture;
}

bool FFmpegPictureDecoder::decodeJpeg(const RawPicture& picture) {
    if (!jpeg) {
        const AVCodec* codec = avcodec_find_decoder(AV_CODEC_ID_MJPEG);
        if (codec) jpeg.reset(avcodec_alloc_context3(codec));
        if (!jpeg) throw RecordingError("no decoder for Motion JPEG");
        jpeg->thread_count = 1; // frame threads would hold pictures back
        jpeg->max_pixels = std::int64_t{16384} * 16384;
        if (const int code = avcodec_open2(jpeg.get(), codec, nullptr); code < 0)
            throw RecordingError("no decoder for Motion JPEG: " + errorText(code));
        packet = makePacket();
    }
    if (picture.bytes > static_cast<std::size_t>(std::numeric_limits<int>::max() / 2)) return false;
    // The decoder reads a little past the end, so it needs a copy with padding.
    av_packet_unref(packet.get());
    if (av_new_packet(packet.get(), static_cast<int>(picture.bytes)) < 0) throw std::bad_alloc();
    std::copy_n(picture.planes[0], picture.bytes, packet->data);
    if (avcodec_send_packet(jpeg.get(), packet.get()) < 0) return false;
    return avcodec_receive_frame(jpeg.get(), frame.get()) >= 0;
}

/// Describes the camera's own memory as a frame; the converter is done with it when it returns, or hands it
/// out as it is until the next call.
void FFmpegPictureDecoder::wrap(const RawPicture& picture) {
    frame->format = pixelFormat(picture.format);
    frame->width = picture.width;
    frame->height = picture.height;
    frame->colorspace = picture.bt709 ? AVCOL_SPC_BT709 : AVCOL_SPC_SMPTE170M;
    frame->color_range = picture.fullRange ? AVCOL_RANGE_JPEG : AVCOL_RANGE_MPEG;
    for (std::size_t plane = 0; plane < 3; ++plane) {
        frame->data[plane] = const_cast<std::uint8_t*>(picture.planes[plane]);
        frame->linesize[plane] = static_cast<int>(picture.strides[plane]);
    }
}

std::unique_ptr<PictureDecoder> makePictureDecoder() {
    return std::make_unique<FFmpegPictureDecoder>();
}

} // namespace RecordCore::FFmpeg
