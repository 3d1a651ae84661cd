#include "RecordCore/Media/FFmpeg/FFmpegSoundReader.h"

#include "RecordCore/Media/FFmpeg/Failure.h"
#include "RecordCore/Model/RecordingError.h"

extern "C" {
#include <libavutil/channel_layout.h>
}

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>

namespace RecordCore::FFmpeg {

namespace {

constexpr double jitter = 0.002;                    // seconds; smaller steps in time are no gaps
constexpr std::int64_t readThrough = 2 * soundRate; // samples; further ahead it pays to seek
constexpr std::int64_t preroll = soundRate / 5;     // samples decoded before they count (AAC, Opus)

} // namespace

FFmpegSoundReader::FFmpegSoundReader(const std::filesystem::path& file, int streamIndex) :
    input(file), stream(input.context()->streams[streamIndex]), frame(makeFrame()), packet(makePacket()) {
    if (input.video()) origin = static_cast<double>(input.origin()) * av_q2d(input.video()->time_base);
    const double length = input.endOf(stream) - origin;
    if (!(length <= longestDuration))
        fail(file, "the sound claims to be longer than 100 hours; it is probably damaged");
    lastPosition = std::max<std::int64_t>(0, std::llround(length * soundRate));
    openDecoder();
    input.select(stream);
    // Reading for the origin has gone past the first sounds.
    seek(0);
}

void FFmpegSoundReader::openDecoder() {
    const AVCodec* codec = avcodec_find_decoder(stream->codecpar->codec_id);
    int code = AVERROR_DECODER_NOT_FOUND;
    if (codec) {
        decoder.reset(avcodec_alloc_context3(codec));
        if (!decoder) throw std::bad_alloc();
        code = avcodec_parameters_to_context(decoder.get(), stream->codecpar);
        decoder->pkt_timebase = stream->time_base;
        Options options;
        options.set("codec_whitelist", input.context()->codec_whitelist);
        if (code >= 0) code = avcodec_open2(decoder.get(), codec, options.get());
    }
    if (code < 0)
        fail(input.path(), fmt::format("the sound is in a format that cannot be read ({})",
                                       avcodec_get_name(stream->codecpar->codec_id)));
}

void FFmpegSoundReader::seek(std::int64_t position) {
    const double seconds = static_cast<double>(position - preroll) / soundRate + origin;
    const double base = av_q2d(stream->time_base);
    const std::int64_t first = stream->start_time != AV_NOPTS_VALUE ? stream->start_time : 0;
    // Priming lies before the track's first sample and must be decoded, too.
    const auto ticks = seconds <= static_cast<double>(first) * base
                           ? first - static_cast<std::int64_t>(1 / base)
                           : static_cast<std::int64_t>(std::floor(seconds / base));
    if (!input.seek(stream, ticks) && !input.seek(stream, first)) {
        const int index = stream->index;
        input = InputFile(input.path());
        stream = input.context()->streams[index];
        input.select(stream);
    }
    avcodec_flush_buffers(decoder.get());
    resampler.reset();
    runs.clear();
    ended = false;
    drained = false;
    expected.reset();
}

bool FFmpegSoundReader::decode() {
    while (!ended) {
        int code = avcodec_receive_frame(decoder.get(), frame.get());
        if (code >= 0) {
            if (frame->nb_samples > 0 && (frame->flags & AV_FRAME_FLAG_CORRUPT) == 0) append(*frame);
            av_frame_unref(frame.get());
            return true;
        }
        if (code == AVERROR(ENOMEM)) throw std::bad_alloc();
        if (code == AVERROR_EOF || (code != AVERROR(EAGAIN) && drained)) {
            resample(nullptr);
            ended = true;
            break;
        }
        if (code != AVERROR(EAGAIN)) continue; // one damaged frame
        bool got = false;
        while (!drained && (got = input.read(*packet)) && packet->stream_index != stream->index)
            av_packet_unref(packet.get());
        if (got) {
            code = avcodec_send_packet(decoder.get(), packet.get()); // what it refuses is silence
            av_packet_unref(packet.get());
            if (code == AVERROR(ENOMEM)) throw std::bad_alloc();
        } else {
            drained = true;
            avcodec_send_packet(decoder.get(), nullptr);
        }
    }
    return false;
}

void FFmpegSoundReader::append(const AVFrame& decoded) {
    const std::int64_t pts = decoded.best_effort_timestamp;
    const double time = pts != AV_NOPTS_VALUE ? static_cast<double>(pts) * av_q2d(stream->time_base)
                                              : expected.value_or(origin);
    const bool goesOn = resampler && expected && std::abs(time - *expected) <= jitter &&
                        decoded.format == format && decoded.sample_rate == rate &&
                        decoded.ch_layout.nb_channels == channels;
    if (!goesOn) startRun(decoded, time);
    // A run is timed by its beginning; adding up lengths keeps rounded time stamps out of it.
    expected = (goesOn ? *expected : time) + static_cast<double>(decoded.nb_samples) / decoded.sample_rate;
    resample(&decoded);
}

void FFmpegSoundReader::startRun(const AVFrame& decoded, double time) {
    resample(nullptr);
    AVChannelLayout from{};
    if (decoded.ch_layout.order == AV_CHANNEL_ORDER_UNSPEC)
        av_channel_layout_default(&from, decoded.ch_layout.nb_channels);
    else
        av_channel_layout_copy(&from, &decoded.ch_layout);
    AVChannelLayout stereo{};
    av_channel_layout_default(&stereo, soundChannels);
    SwrContext* made = nullptr;
    int code =
        swr_alloc_set_opts2(&made, &stereo, AV_SAMPLE_FMT_FLT, soundRate, &from,
                            static_cast<AVSampleFormat>(decoded.format), decoded.sample_rate, 0, nullptr);
    av_channel_layout_uninit(&from);
    resampler.reset(made);
    if (code >= 0) {
        // One voice on one channel is as loud on both; the library would halve its power.
        constexpr std::array<double, soundChannels> both{1, 1};
        if (decoded.ch_layout.nb_channels == 1) swr_set_matrix(made, both.data(), 1);
        code = swr_init(made);
    }
    if (code < 0) fail(input.path(), "the sound is in a format that cannot be converted", code);
    format = decoded.format;
    rate = decoded.sample_rate;
    channels = decoded.ch_layout.nb_channels;
    runs.push_back({std::llround((time - origin) * soundRate), {}});
}

/// Appends a frame to the last run; without one, what the resampler still holds.
void FFmpegSoundReader::resample(const AVFrame* decoded) {
    if (!resampler) return;
    const int space = swr_get_out_samples(resampler.get(), decoded ? decoded->nb_samples : 0);
    if (space <= 0) return;
    std::vector<float>& samples = runs.back().samples;
    const std::size_t before = samples.size();
    samples.resize(before + static_cast<std::size_t>(space) * soundChannels);
    auto* to = reinterpret_cast<std::uint8_t*>(samples.data() + before);
    auto** from = decoded ? const_cast<const std::uint8_t**>(decoded->extended_data) : nullptr;
    const int count = swr_convert(resampler.get(), &to, space, from, decoded ? decoded->nb_samples : 0);
    samples.resize(before + static_cast<std::size_t>(std::max(count, 0)) * soundChannels);
    if (count < 0) fail(input.path(), "the sound cannot be converted", count);
    std::transform(samples.begin() + static_cast<std::ptrdiff_t>(before), samples.end(),
                   samples.begin() + static_cast<std::ptrdiff_t>(before), usableSample);
}

void FFmpegSoundReader::read(std::int64_t position, std::span<float> out) {
    std::fill(out.begin(), out.end(), 0.0F);
    const auto count = static_cast<std::int64_t>(out.size()) / soundChannels;
    const std::int64_t stop = std::min(position + count, lastPosition);
    if (position < 0 || stop <= position) {
        // Nothing but what lies after a negative start, if anything.
        if (position < 0 && position + count > 0)
            read(0, out.subspan(static_cast<std::size_t>(-position) * soundChannels));
        return;
    }
    const bool behind = position < from;
    const std::int64_t have = runs.empty() ? from : runs.back().end();
    if (behind || (!ended && position > have + readThrough)) seek(position);
    from = position;

    while (!ended && (runs.empty() || runs.back().end() < stop))
        decode();
    for (const Run& run : runs) {
        const std::int64_t first = std::max(position, run.start);
        const std::int64_t last = std::min(stop, run.end());
        if (first >= last) continue;
        std::copy_n(run.samples.begin() + (first - run.start) * soundChannels, (last - first) * soundChannels,
                    out.begin() + (first - position) * soundChannels);
    }
    // What lies behind is dropped now and then, not sample by sample.
    while (runs.size() > 1 && runs.front().end() <= stop)
        runs.pop_front();
    if (!runs.empty() && stop - runs.front().start > readThrough) {
        Run& run = runs.front();
        const std::int64_t done = std::min(stop, run.end()) - run.start;
        run.samples.erase(run.samples.begin(), run.samples.begin() + done * soundChannels);
        run.start += done;
        from = std::max(from, run.start);
    }
}

} // namespace RecordCore::FFmpeg
