#include "RecordCore/Media/FFmpeg/FFmpegVideoReader.h"

#include "RecordCore/Media/FFmpeg/FFmpegMedia.h"
#include "RecordCore/Media/FFmpeg/Failure.h"
#include "RecordCore/Model/RecordingError.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <thread>

namespace RecordCore::FFmpeg {

namespace {

constexpr double timeSlack = 1e-6;               // seconds; times this close are the same
constexpr std::size_t packetsAhead = 5;          // looked at to tell which pictures cannot be shown
constexpr int mostThreads = 8;                   // every thread holds a picture of its own
constexpr std::int64_t hugePicture = 33'000'000; // pixels; decoded on one thread to bound the memory

} // namespace

FFmpegVideoReader::FFmpegVideoReader(const std::filesystem::path& file, int threads) :
    input(file), facts(input.info()), stream(input.needVideo()), origin(input.origin()),
    tick(av_q2d(stream->time_base)),
    converter(input.squareWidth(), input.squareHeight(), input.orientation(), *stream->codecpar),
    received(makeFrame()) {
    input.select(stream);
    openDecoder(threads);
}

void FFmpegVideoReader::openDecoder(int threads) {
    const AVCodec* codec = nullptr;
    // av_find_best_stream prefers what the list of allowed decoders names, as does opening by id; the AV1
    // entry of libavcodec itself decodes on hardware only.
    if (stream->codecpar->codec_id == AV_CODEC_ID_AV1) codec = avcodec_find_decoder_by_name("libdav1d");
    if (!codec) codec = avcodec_find_decoder(stream->codecpar->codec_id);
    if (!codec)
        fail(input.path(), fmt::format("the video is in a format that cannot be read ({})",
                                       avcodec_get_name(stream->codecpar->codec_id)));
    decoder.reset(avcodec_alloc_context3(codec));
    if (!decoder) throw std::bad_alloc();
    int code = avcodec_parameters_to_context(decoder.get(), stream->codecpar);
    if (code >= 0) {
        decoder->pkt_timebase = stream->time_base;
        decoder->max_pixels = mostPixels;
        const int machine = static_cast<int>(std::max(1U, std::thread::hardware_concurrency()));
        const std::int64_t pixels = std::int64_t{decoder->width} * decoder->height;
        decoder->thread_count =
            pixels > hugePicture ? 1 : std::min(threads > 0 ? threads : machine, mostThreads);
        decoder->thread_type = FF_THREAD_FRAME | FF_THREAD_SLICE;
        Options options;
        options.set("codec_whitelist", input.context()->codec_whitelist);
        code = avcodec_open2(decoder.get(), codec, options.get());
    }
    if (code < 0)
        fail(input.path(), fmt::format("the video is in a format that cannot be read ({})",
                                       avcodec_get_name(stream->codecpar->codec_id)));
}

std::int64_t FFmpegVideoReader::ticks(double seconds) const {
    const double exact = std::floor((seconds + timeSlack) / tick);
    // Far beyond either end is as good as infinitely far, and safe to calculate with.
    return origin + static_cast<std::int64_t>(std::clamp(exact, -1e15, 1e15));
}

double FFmpegVideoReader::timeOf(std::int64_t pts) const {
    return static_cast<double>(pts - origin) * stream->time_base.num / stream->time_base.den;
}

bool FFmpegVideoReader::fillQueue(std::size_t count) {
    while (queue.size() < count && !fileEnded) {
        PacketHandle packet = makePacket();
        if (!input.read(*packet)) {
            fileEnded = true;
            break;
        }
        if (packet->stream_index != stream->index) continue;
        if (packet->dts != AV_NOPTS_VALUE) {
            lastRead = packet->dts;
            if (packet->pts != AV_NOPTS_VALUE) mostReorder = std::max(mostReorder, packet->pts - packet->dts);
        }
        if (dropLeading && !firstAfterJump && packet->pts != AV_NOPTS_VALUE) firstAfterJump = packet->pts;
        queue.push_back(std::move(packet));
    }
    return !queue.empty();
}

bool FFmpegVideoReader::canBeSkipped(const AVPacket& packet) const {
    if (packet.pts == AV_NOPTS_VALUE || timeOf(packet.pts) >= target) return false;
    // Not shown for certain when another picture is shown after it and not after the target.
    const std::int64_t limit = ticks(target);
    return std::any_of(queue.begin(), queue.end(), [&](const PacketHandle& later) {
        return later->pts != AV_NOPTS_VALUE && later->pts > packet.pts && later->pts <= limit;
    });
}

/// Hands the decoder one more packet, or tells it that there are no more. False when it knew already.
bool FFmpegVideoReader::feed() {
    if (drained) return false;
    const bool hasTarget = target > lastDecoded;
    if (!fillQueue(hasTarget ? packetsAhead : 1)) {
        drained = true;
        avcodec_send_packet(decoder.get(), nullptr);
        return true;
    }
    const PacketHandle packet = std::move(queue.front());
    queue.pop_front();
    // Pictures that no other one refers to need not be decoded when they are not shown.
    decoder->skip_frame = hasTarget && canBeSkipped(*packet) ? AVDISCARD_NONREF : AVDISCARD_DEFAULT;
    // A packet that the decoder refuses is a damaged frame; those after it may be well.
    const int code = avcodec_send_packet(decoder.get(), packet.get());
    if (code == AVERROR(ENOMEM)) throw std::bad_alloc();
    return true;
}

std::optional<FFmpegVideoReader::Decoded> FFmpegVideoReader::decode() {
    while (true) {
        const int code = avcodec_receive_frame(decoder.get(), received.get());
        if (code == AVERROR_EOF) break;
        if (code == AVERROR(EAGAIN)) {
            if (!feed()) break;
            continue;
        }
        if (code == AVERROR(ENOMEM)) throw std::bad_alloc();
        if (code < 0) {
            if (drained) break;
            continue; // one damaged frame
        }
        Decoded decoded;
        decoded.frame = makeFrame();
        av_frame_move_ref(decoded.frame.get(), received.get());
        const AVFrame& frame = *decoded.frame;
        if ((frame.flags & AV_FRAME_FLAG_CORRUPT) != 0 || frame.decode_error_flags != 0) continue;
        const std::int64_t pts = frame.best_effort_timestamp;
        if (pts == AV_NOPTS_VALUE)
            decoded.time = std::isfinite(lastDecoded) ? lastDecoded + 1 / facts.fps : 0;
        else
            decoded.time = timeOf(pts);
        if (firstAfterJump && pts != AV_NOPTS_VALUE && pts < *firstAfterJump) continue;
        if (decoded.time <= lastDecoded) continue; // times rise strictly
        lastDecoded = decoded.time;
        anyDecoded = true;
        return decoded;
    }
    if (!anyDecoded) fail(input.path(), "no picture of the video can be decoded");
    return std::nullopt;
}

std::optional<VideoFrame> FFmpegVideoReader::next() {
    const auto take = [&]() -> std::optional<Decoded> {
        if (ahead.empty()) return decode();
        Decoded first = std::move(ahead.front());
        ahead.pop_front();
        return first;
    };
    std::optional<Decoded> current = take();
    while (current && current->time < target) {
        std::optional<Decoded> following = take();
        if (!following) break;
        if (following->time > target + timeSlack) {
            ahead.push_front(std::move(*following));
            break;
        }
        current = std::move(following);
    }
    if (!current) return std::nullopt;

    // A reference is kept: a later `seek` may ask for the same frame again.
    last.emplace();
    last->time = current->time;
    last->frame.reset(av_frame_clone(current->frame.get()));
    if (!last->frame) throw std::bad_alloc();
    try {
        return converter.convert(std::move(current->frame), current->time);
    } catch (const RecordingError& error) {
        fail(input.path(), error.what());
    }
}

std::optional<std::int64_t> FFmpegVideoReader::keyBefore(double seconds) const {
    const int index = av_index_search_timestamp(stream, ticks(seconds) - mostReorder, AVSEEK_FLAG_BACKWARD);
    if (index < 0) return std::nullopt;
    return avformat_index_get_entry(stream, index)->timestamp;
}

void FFmpegVideoReader::jump(std::int64_t timestamp, bool leadingLost) {
    if (!input.seek(stream, timestamp)) {
        // Some files cannot be searched; they can be opened anew and read from the start.
        input = InputFile(input.path());
        stream = input.needVideo();
        origin = input.origin();
        input.select(stream);
        leadingLost = false;
    }
    avcodec_flush_buffers(decoder.get());
    queue.clear();
    ahead.clear();
    last.reset();
    fileEnded = false;
    drained = false;
    lastRead.reset();
    dropLeading = leadingLost;
    firstAfterJump.reset();
    lastDecoded = -std::numeric_limits<double>::infinity();
}

void FFmpegVideoReader::seek(double seconds) {
    if (std::isnan(seconds)) seconds = 0;
    const std::optional<std::int64_t> key = keyBefore(seconds);
    // Going on from here is right when the frame wanted is not before the last one returned, and pays
    // unless a later key frame is nearer.
    const bool reachable = last && last->time <= seconds + timeSlack;
    if (reachable && (!key || (lastRead && *key <= *lastRead))) {
        ahead.push_front(std::move(*last));
        last.reset();
        target = seconds;
        return;
    }
    for (double back = 0;; back = back * 4 + 1) {
        const bool fromStart = seconds - back <= 0;
        target = seconds;
        jump(fromStart ? std::min(origin, stream->start_time != AV_NOPTS_VALUE ? stream->start_time : origin)
                       : ticks(seconds - back),
             !fromStart);
        std::optional<Decoded> first = decode();
        const bool found = first && first->time <= seconds + timeSlack;
        if (first) ahead.push_back(std::move(*first));
        // Where a search lands too late (pictures stored out of order, a coarse index), it starts earlier.
        if (found || fromStart) return;
    }
}

void FFmpegVideoReader::skipTo(double seconds) {
    if (std::isnan(seconds) || seconds <= target) return;
    target = seconds;
    const std::optional<std::int64_t> key = keyBefore(seconds);
    if (key && lastRead && *key > *lastRead) jump(*key, true);
}

std::optional<VideoReader::SeekCost> FFmpegVideoReader::seekCost(double seconds) const {
    const std::int64_t wanted = ticks(seconds);
    const int key = av_index_search_timestamp(stream, wanted - mostReorder, AVSEEK_FLAG_BACKWARD);
    const int last = av_index_search_timestamp(stream, wanted, AVSEEK_FLAG_BACKWARD | AVSEEK_FLAG_ANY);
    if (key < 0 || last < key) return std::nullopt;
    return SeekCost{timeOf(avformat_index_get_entry(stream, key)->timestamp + mostReorder), last - key + 1};
}

std::vector<VideoReader::Stored> FFmpegVideoReader::stored() const {
    std::vector<Stored> frames;
    const int count = avformat_index_get_entries_count(stream);
    frames.reserve(static_cast<std::size_t>(std::max(count, 0)));
    for (int i = 0; i < count; ++i) {
        const AVIndexEntry* entry = avformat_index_get_entry(stream, i);
        frames.push_back({timeOf(entry->timestamp + mostReorder), 8.0 * entry->size,
                          (entry->flags & AVINDEX_KEYFRAME) != 0});
    }
    return frames;
}

} // namespace RecordCore::FFmpeg
