#pragma once

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/frame.h>
#include <libswresample/swresample.h>
#include <libswscale/swscale.h>
}

#include <memory>
#include <new>

namespace RecordCore::FFmpeg {

// Owners of libav objects. One function object for each kind of handle frees it.

struct FreeInput {
    void operator()(AVFormatContext* context) const { avformat_close_input(&context); }
};
struct FreeOutput {
    void operator()(AVFormatContext* context) const { avformat_free_context(context); }
};
struct FreeCodec {
    void operator()(AVCodecContext* context) const { avcodec_free_context(&context); }
};
struct FreeFrame {
    void operator()(AVFrame* frame) const { av_frame_free(&frame); }
};
struct FreePacket {
    void operator()(AVPacket* packet) const { av_packet_free(&packet); }
};
struct FreeScaler {
    void operator()(SwsContext* context) const { sws_freeContext(context); }
};
struct FreeResampler {
    void operator()(SwrContext* context) const { swr_free(&context); }
};
struct FreeBufferPool {
    void operator()(AVBufferPool* pool) const { av_buffer_pool_uninit(&pool); }
};
struct FreeBuffer {
    void operator()(AVBufferRef* buffer) const { av_buffer_unref(&buffer); }
};

using InputHandle = std::unique_ptr<AVFormatContext, FreeInput>;
using OutputHandle = std::unique_ptr<AVFormatContext, FreeOutput>;
using CodecHandle = std::unique_ptr<AVCodecContext, FreeCodec>;
using FrameHandle = std::unique_ptr<AVFrame, FreeFrame>;
using PacketHandle = std::unique_ptr<AVPacket, FreePacket>;
using ScalerHandle = std::unique_ptr<SwsContext, FreeScaler>;
using ResamplerHandle = std::unique_ptr<SwrContext, FreeResampler>;
using BufferPoolHandle = std::unique_ptr<AVBufferPool, FreeBufferPool>;
using BufferHandle = std::unique_ptr<AVBufferRef, FreeBuffer>;

inline FrameHandle makeFrame() {
    FrameHandle frame(av_frame_alloc());
    if (!frame) throw std::bad_alloc();
    return frame;
}

inline PacketHandle makePacket() {
    PacketHandle packet(av_packet_alloc());
    if (!packet) throw std::bad_alloc();
    return packet;
}

/// A dictionary of options, freed at the end of the scope.
class Options {
public:
    Options() = default;
    ~Options() { av_dict_free(&dictionary); }
    Options(const Options&) = delete;
    Options& operator=(const Options&) = delete;

    void set(const char* key, const char* value) { av_dict_set(&dictionary, key, value, 0); }
    void set(const char* key, std::int64_t value) { av_dict_set_int(&dictionary, key, value, 0); }
    AVDictionary** get() { return &dictionary; }

private:
    AVDictionary* dictionary = nullptr;
};

} // namespace RecordCore::FFmpeg
