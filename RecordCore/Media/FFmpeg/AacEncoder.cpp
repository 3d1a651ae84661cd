#include "RecordCore/Media/FFmpeg/AacEncoder.h"

#include "RecordCore/Media/FFmpeg/Failure.h"
#include "RecordCore/Media/SoundReader.h"
#include "RecordCore/Model/RecordingError.h"

extern "C" {
#include <libavutil/channel_layout.h>
}

#include <fmt/format.h>

#include <algorithm>
#include <utility>

namespace RecordCore::FFmpeg {

AacEncoder::AacEncoder(std::int64_t bitrate, PacketSink packetSink) :
    sink(std::move(packetSink)), frame(makeFrame()), packet(makePacket()) {
    silenceLog();
    const AVCodec* codec = avcodec_find_encoder_by_name("aac");
    if (!codec) throw RecordingError("the AAC encoder is missing");
    encoder.reset(avcodec_alloc_context3(codec));
    if (!encoder) throw std::bad_alloc();
    encoder->bit_rate = bitrate;
    encoder->sample_rate = soundRate;
    encoder->sample_fmt = AV_SAMPLE_FMT_FLTP;
    encoder->time_base = {1, soundRate};
    av_channel_layout_default(&encoder->ch_layout, soundChannels);
    encoder->flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
    if (const int code = avcodec_open2(encoder.get(), codec, nullptr); code < 0)
        throw RecordingError(fmt::format("the AAC encoder cannot be opened: {}", errorText(code)));

    frame->format = AV_SAMPLE_FMT_FLTP;
    frame->nb_samples = encoder->frame_size;
    frame->sample_rate = soundRate;
    av_channel_layout_default(&frame->ch_layout, soundChannels);
    if (av_frame_get_buffer(frame.get(), 0) < 0) throw std::bad_alloc();

    stream.codec = Codec::aac;
    stream.extradata.assign(encoder->extradata, encoder->extradata + encoder->extradata_size);
    stream.timeBase = {1, soundRate};
    stream.bitrate = bitrate;
    stream.sampleRate = soundRate;
    stream.channels = soundChannels;
    stream.frameSize = encoder->frame_size;
    stream.primingSamples = encoder->initial_padding;
}

void AacEncoder::encode(std::span<const float> samples) {
    while (!samples.empty()) {
        // The encoder may still hold the frame sent before.
        if (filled == 0 && av_frame_make_writable(frame.get()) < 0) throw std::bad_alloc();
        const int count =
            std::min(encoder->frame_size - filled, static_cast<int>(samples.size() / soundChannels));
        if (count == 0) return;
        for (int channel = 0; channel < soundChannels; ++channel) {
            float* to = reinterpret_cast<float*>(frame->data[channel]) + filled;
            for (int i = 0; i < count; ++i)
                to[i] = usableSample(samples[static_cast<std::size_t>(i * soundChannels + channel)]);
        }
        filled += count;
        samples = samples.subspan(static_cast<std::size_t>(count) * soundChannels);
        if (filled == encoder->frame_size) send(frame.get());
    }
}

void AacEncoder::finish() {
    if (filled > 0) send(frame.get());
    send(nullptr);
}

void AacEncoder::send(AVFrame* next) {
    if (next) {
        next->nb_samples = filled;
        next->pts = position;
        position += filled;
        filled = 0;
    }
    int code = avcodec_send_frame(encoder.get(), next);
    while (code >= 0) {
        code = avcodec_receive_packet(encoder.get(), packet.get());
        if (code < 0) break;
        sink({{packet->data, static_cast<std::size_t>(packet->size)},
              packet->pts,
              packet->dts,
              packet->duration,
              true});
        av_packet_unref(packet.get());
    }
    if (code != AVERROR(EAGAIN) && code != AVERROR_EOF)
        throw RecordingError(fmt::format("the AAC encoder failed: {}", errorText(code)));
}

} // namespace RecordCore::FFmpeg
