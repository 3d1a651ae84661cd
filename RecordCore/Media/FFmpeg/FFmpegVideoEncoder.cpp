#include "RecordCore/Media/FFmpeg/FFmpegVideoEncoder.h"

#include "RecordCore/Media/FFmpeg/Failure.h"
#include "RecordCore/Media/FFmpeg/NalUnits.h"
#include "RecordCore/Model/RecordingError.h"

extern "C" {
#include <libavutil/hwcontext.h>
#include <libavutil/opt.h>
}

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <utility>

namespace RecordCore::FFmpeg {

FFmpegVideoEncoder::FFmpegVideoEncoder(const VideoSettings& wanted, PacketSink packetSink) :
    settings(wanted), sink(std::move(packetSink)), packet(makePacket()) {
    silenceLog();
    const std::string family = settings.codec == Codec::hevc ? "hevc" : "h264";
    const bool opened = settings.hardware ? open(family + "_vaapi") || open(family + "_nvenc")
                                          : settings.codec == Codec::hevc && open("libx265");
    if (!opened)
        throw RecordingError(
            fmt::format("no {} encoder for {} opens at {} × {}", settings.hardware ? "hardware" : "software",
                        settings.codec == Codec::hevc ? "HEVC" : "H.264", settings.width, settings.height));
}

bool FFmpegVideoEncoder::openDevice() {
    AVBufferRef* made = nullptr;
    if (av_hwdevice_ctx_create(&made, AV_HWDEVICE_TYPE_VAAPI, nullptr, nullptr, 0) < 0) return false;
    device.reset(made);
    const BufferHandle frames(av_hwframe_ctx_alloc(device.get()));
    if (!frames) throw std::bad_alloc();
    auto* pool = reinterpret_cast<AVHWFramesContext*>(frames->data);
    pool->format = AV_PIX_FMT_VAAPI;
    pool->sw_format = AV_PIX_FMT_NV12;
    pool->width = settings.width;
    pool->height = settings.height;
    pool->initial_pool_size = 8;
    if (av_hwframe_ctx_init(frames.get()) < 0) return false;
    encoder->hw_frames_ctx = av_buffer_ref(frames.get());
    upload = makeFrame();
    upload->format = AV_PIX_FMT_NV12;
    upload->width = settings.width;
    upload->height = settings.height;
    if (av_frame_get_buffer(upload.get(), 0) < 0) throw std::bad_alloc();
    return true;
}

bool FFmpegVideoEncoder::open(const std::string& codecName) {
    const AVCodec* codec = avcodec_find_encoder_by_name(codecName.c_str());
    if (!codec) return false;
    encoder.reset(avcodec_alloc_context3(codec));
    if (!encoder) throw std::bad_alloc();
    encoder->width = settings.width;
    encoder->height = settings.height;
    encoder->sample_aspect_ratio = {1, 1};
    encoder->time_base = {settings.timeBase.num, settings.timeBase.den};
    encoder->framerate = av_d2q(settings.frameRate, 1'000'000);
    encoder->bit_rate = settings.bitrate;
    encoder->color_primaries = AVCOL_PRI_BT709;
    encoder->color_trc = AVCOL_TRC_BT709;
    encoder->colorspace = AVCOL_SPC_BT709;
    encoder->color_range = AVCOL_RANGE_MPEG;
    encoder->chroma_sample_location = AVCHROMA_LOC_LEFT;
    encoder->flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
    // In real time key frames are asked for by time; the count is only a last resort.
    encoder->gop_size = settings.realTime ? 1 << 20 : settings.keyInterval;
    if (settings.realTime) encoder->max_b_frames = 0;
    encoder->pix_fmt = AV_PIX_FMT_YUV420P;

    Options options;
    const bool vaapi = codecName.ends_with("_vaapi");
    if (codecName == "libx265") {
        const std::string preset = !settings.preset.empty() ? settings.preset
                                   : settings.realTime      ? "ultrafast"
                                                            : "fast";
        std::string parameters = "log-level=none:repeat-headers=0:open-gop=0";
        if (settings.realTime) parameters += ":keyint=-1:scenecut=0";
        if (settings.threads > 0) parameters += fmt::format(":pools={}", settings.threads);
        options.set("preset", preset.c_str());
        if (settings.realTime) options.set("tune", "zerolatency");
        options.set("forced-idr", 1);
        options.set("x265-params", parameters.c_str());
        label = "libx265 " + preset;
    } else {
        label = codecName;
        if (vaapi) {
            encoder->pix_fmt = AV_PIX_FMT_VAAPI;
            if (settings.realTime) options.set("async_depth", 1);
            if (!openDevice()) return false;
        } else {
            options.set("forced-idr", 1);
            if (settings.realTime) {
                options.set("tune", "ull");
                options.set("delay", std::int64_t{0});
                options.set("zerolatency", 1);
            }
            if (!settings.preset.empty()) options.set("preset", settings.preset.c_str());
        }
    }
    if (avcodec_open2(encoder.get(), codec, options.get()) < 0) return false;

    const std::span<const std::uint8_t> sets(encoder->extradata,
                                             static_cast<std::size_t>(encoder->extradata_size));
    stream.codec = settings.codec;
    stream.extradata = configurationRecord(settings.codec, sets);
    if (stream.extradata.empty()) return false;
    startCodes = sets[0] != 1;
    stream.timeBase = settings.timeBase;
    stream.bitrate = settings.bitrate;
    stream.width = settings.width;
    stream.height = settings.height;
    stream.frameRate = settings.frameRate;
    return true;
}

FrameHandle FFmpegVideoEncoder::fill(const PlanarView& picture) {
    if (picture.width != settings.width || picture.height != settings.height)
        throw RecordingError(fmt::format("a frame measures {} × {} instead of {} × {}", picture.width,
                                         picture.height, settings.width, settings.height));
    if (upload) {
        if (av_frame_make_writable(upload.get()) < 0) throw std::bad_alloc();
        for (int y = 0; y < picture.height; ++y)
            std::memcpy(upload->data[0] + std::ptrdiff_t{y} * upload->linesize[0],
                        picture.planes[0] + y * picture.strides[0], static_cast<std::size_t>(picture.width));
        for (int y = 0; y < picture.planeHeight(1); ++y) {
            std::uint8_t* to = upload->data[1] + std::ptrdiff_t{y} * upload->linesize[1];
            const std::uint8_t* cb = picture.planes[1] + y * picture.strides[1];
            const std::uint8_t* cr = picture.planes[2] + y * picture.strides[2];
            for (int x = 0; x < picture.planeWidth(1); ++x) {
                to[2 * x] = cb[x];
                to[2 * x + 1] = cr[x];
            }
        }
        FrameHandle frame = makeFrame();
        if (av_hwframe_get_buffer(encoder->hw_frames_ctx, frame.get(), 0) < 0 ||
            av_hwframe_transfer_data(frame.get(), upload.get(), 0) < 0)
            throw RecordingError("a frame cannot be handed to " + label);
        return frame;
    }
    // The buffer of the frame before is used again unless the encoder still holds it.
    FrameHandle frame = last ? std::move(last) : makeFrame();
    if (!frame->buf[0]) {
        frame->format = AV_PIX_FMT_YUV420P;
        frame->width = settings.width;
        frame->height = settings.height;
        if (av_frame_get_buffer(frame.get(), 0) < 0) throw std::bad_alloc();
    } else if (av_frame_make_writable(frame.get()) < 0) {
        throw std::bad_alloc();
    }
    for (int plane = 0; plane < 3; ++plane) {
        const auto index = static_cast<std::size_t>(plane);
        for (int y = 0; y < picture.planeHeight(plane); ++y)
            std::memcpy(frame->data[index] + std::ptrdiff_t{y} * frame->linesize[index],
                        picture.planes[index] + y * picture.strides[index],
                        static_cast<std::size_t>(picture.planeWidth(plane)));
    }
    return frame;
}

void FFmpegVideoEncoder::encode(const PlanarView& picture, std::int64_t pts, const FrameHints& hints) {
    if (lastPts && pts <= *lastPts) throw RecordingError("frame times do not rise");
    last = fill(picture);
    last->pict_type = hints.keyFrame ? AV_PICTURE_TYPE_I : AV_PICTURE_TYPE_NONE;
    last->pts = pts;
    send(last.get());
}

void FFmpegVideoEncoder::repeat(const PlanarView&, std::int64_t pts) {
    if (!last) throw RecordingError("there is no frame to repeat");
    if (pts <= *lastPts) throw RecordingError("frame times do not rise");
    last->pict_type = AV_PICTURE_TYPE_NONE;
    last->pts = pts;
    send(last.get());
}

void FFmpegVideoEncoder::send(AVFrame* frame) {
    if (frame) {
        const bool due =
            settings.realTime && lastKey &&
            settings.timeBase.seconds(frame->pts - *lastKey) >= settings.keyInterval / settings.frameRate;
        if (!lastKey || due) frame->pict_type = AV_PICTURE_TYPE_I;
        if (frame->pict_type == AV_PICTURE_TYPE_I) lastKey = frame->pts;
        lastPts = frame->pts;
    }
    const int code = avcodec_send_frame(encoder.get(), frame);
    if (code < 0) throw RecordingError(fmt::format("{} failed: {}", label, errorText(code)));
    receive();
}

void FFmpegVideoEncoder::receive() {
    while (true) {
        const int code = avcodec_receive_packet(encoder.get(), packet.get());
        if (code == AVERROR(EAGAIN) || code == AVERROR_EOF) return;
        if (code < 0) throw RecordingError(fmt::format("{} failed: {}", label, errorText(code)));
        if (settings.realTime) {
            deliver(*packet, 0);
        } else {
            if (held) deliver(*held, 0);
            if (!held) held = makePacket();
            av_packet_unref(held.get());
            av_packet_move_ref(held.get(), packet.get());
        }
        av_packet_unref(packet.get());
    }
}

void FFmpegVideoEncoder::deliver(const AVPacket& encoded, std::int64_t duration) {
    std::span<const std::uint8_t> data(encoded.data, static_cast<std::size_t>(encoded.size));
    if (startCodes) {
        withLengths(data, converted);
        data = converted;
    }
    sink({data, encoded.pts, encoded.dts, duration, (encoded.flags & AV_PKT_FLAG_KEY) != 0});
}

void FFmpegVideoEncoder::finish(std::int64_t endPts) {
    if (!lastPts) return;
    send(nullptr);
    if (held) deliver(*held, endPts - *lastPts);
    held.reset();
}

} // namespace RecordCore::FFmpeg
