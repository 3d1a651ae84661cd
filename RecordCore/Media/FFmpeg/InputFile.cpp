#include "RecordCore/Media/FFmpeg/InputFile.h"

#include "RecordCore/Media/FFmpeg/Failure.h"
#include "RecordCore/Model/RecordingError.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <limits>
#include <sys/stat.h>
#include <unistd.h>

namespace RecordCore::FFmpeg {

namespace {

// A media file is opened because a user points at it, and may come from anywhere. Only these readers and
// decoders get to see it, and nothing in it can make us open another file or a network address.
constexpr const char* formatList = "mov,mp4,m4a,3gp,3g2,mj2,matroska,webm,avi,mpegts";
constexpr const char* codecList =
    "h264,hevc,vp8,vp9,libdav1d,libaom-av1,mpeg4,mpeg2video,mpeg1video,mjpeg,prores,dnxhd,ffv1,qtrle,png,"
    "rawvideo,libopenh264,huffyuv,ffvhuff,utvideo,"
    "aac,mp3float,mp3,mp2float,mp2,opus,libopus,vorbis,flac,alac,ac3,eac3,"
    "pcm_u8,pcm_s8,pcm_s16le,pcm_s16be,pcm_s24le,pcm_s24be,pcm_s32le,pcm_s32be,pcm_f32le,pcm_f32be,"
    "pcm_f64le,pcm_alaw,pcm_mulaw";
constexpr int mostBadPackets = 64;
constexpr std::size_t packetsForOrigin = 64;

double seconds(std::int64_t ticks, AVRational base) {
    // One rounding: a film's length decides how many frames it has.
    return static_cast<double>(ticks) * base.num / base.den;
}

/// "00:01:02.500000000", as Matroska writers note a track's end; none when it is something else.
double clockSeconds(const char* text) {
    int hours = 0;
    int minutes = 0;
    double rest = 0;
    if (std::sscanf(text, "%d:%d:%lf", &hours, &minutes, &rest) != 3) return 0;
    return hours * 3600.0 + minutes * 60.0 + rest;
}

} // namespace

InputFile::InputFile(std::filesystem::path path) : file(std::move(path)) {
    silenceLog();
    checkFile();

    AVFormatContext* context = avformat_alloc_context();
    if (!context) throw std::bad_alloc();
    context->max_streams = 100;
    Options options;
    options.set("protocol_whitelist", "file");
    options.set("format_whitelist", formatList);
    options.set("codec_whitelist", codecList);
    // The prefix keeps a name such as "concat:a" from being taken for anything but a name.
    const std::string url = "file:" + file.string();
    if (const int code = avformat_open_input(&context, url.c_str(), nullptr, options.get()); code < 0) {
        // A kind of file that is not on the list is reported as a wrong argument.
        fail(file, "not a video that can be read",
             code == AVERROR(EINVAL) || code == AVERROR_EOF ? AVERROR_INVALIDDATA : code);
    }
    handle.reset(context);

    for (unsigned i = 0; i < context->nb_streams; ++i) {
        const AVStream* stream = context->streams[i];
        const bool isMedia = stream->codecpar->codec_type == AVMEDIA_TYPE_VIDEO ||
                             stream->codecpar->codec_type == AVMEDIA_TYPE_AUDIO;
        if (!isMedia || (stream->disposition & AV_DISPOSITION_ATTACHED_PIC) != 0)
            context->streams[i]->discard = AVDISCARD_ALL;
    }

    // Where the header names a size, it is looked at before anything is decoded.
    for (unsigned i = 0; i < context->nb_streams; ++i)
        checkSize(context->streams[i]->codecpar->width, context->streams[i]->codecpar->height);

    std::vector<AVDictionary*> streamOptions(context->nb_streams, nullptr);
    for (AVDictionary*& entry : streamOptions) {
        av_dict_set_int(&entry, "max_pixels", mostPixels, 0);
        av_dict_set_int(&entry, "threads", 1, 0);
    }
    const int code = avformat_find_stream_info(context, streamOptions.data());
    for (AVDictionary*& entry : streamOptions)
        av_dict_free(&entry);
    if (code < 0) fail(file, "not a video that can be read", code);

    for (unsigned i = 0; i < context->nb_streams; ++i)
        if ((context->streams[i]->disposition & AV_DISPOSITION_ATTACHED_PIC) != 0)
            context->streams[i]->discard = AVDISCARD_ALL;
    const int best = av_find_best_stream(context, AVMEDIA_TYPE_VIDEO, -1, -1, nullptr, 0);
    if (best >= 0 && (context->streams[best]->disposition & AV_DISPOSITION_ATTACHED_PIC) == 0)
        videoStream = context->streams[best];
    if (videoStream) measurePicture();
    checkWhole();
}

/// An MP4 whose index speaks of more than the file holds was cut off, by a copy that broke off for example.
/// (A recording that was cut off has no such index: its fragments are read as far as they go.)
void InputFile::checkWhole() const {
    if (std::strcmp(handle->iformat->name, "mov,mp4,m4a,3gp,3g2,mj2") != 0) return;
    const std::int64_t size = avio_size(handle->pb);
    for (unsigned i = 0; i < handle->nb_streams; ++i) {
        AVStream* stream = handle->streams[i];
        const int entries = avformat_index_get_entries_count(stream);
        // A file in fragments is meant to be read as far as it goes: a crash may have cut it.
        if (entries == 0 || stream->nb_frames == 0) continue;
        const AVIndexEntry* last = avformat_index_get_entry(stream, entries - 1);
        if (last->pos + last->size > size)
            fail(file, fmt::format("the file is cut off: it holds {} bytes of at least {}", size,
                                   last->pos + last->size));
    }
}

void InputFile::checkFile() const {
    // Not blocking: a named pipe must be refused, not waited for.
    const int descriptor = ::open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (descriptor < 0) fail(file, "cannot be read", AVERROR(errno));
    struct stat facts {};
    const int result = ::fstat(descriptor, &facts);
    const int error = errno;
    ::close(descriptor);
    if (result != 0) fail(file, "cannot be read", AVERROR(error));
    if (S_ISDIR(facts.st_mode)) fail(file, "cannot be read", AVERROR(EISDIR));
    if (!S_ISREG(facts.st_mode)) fail(file, "cannot be read: not a regular file");
    if (facts.st_size == 0) fail(file, "not a video that can be read: the file is empty");
}

AVStream* InputFile::needVideo() const {
    if (!videoStream) fail(file, "the file has no video");
    return videoStream;
}

std::vector<AVStream*> InputFile::sounds() const {
    std::vector<AVStream*> found;
    for (unsigned i = 0; i < handle->nb_streams; ++i)
        if (handle->streams[i]->codecpar->codec_type == AVMEDIA_TYPE_AUDIO)
            found.push_back(handle->streams[i]);
    return found;
}

void InputFile::checkSize(double width, double height) const {
    if (width > longestSide || height > longestSide || width * height > static_cast<double>(mostPixels))
        fail(file, fmt::format("the picture is too large ({:.0f} × {:.0f})", width, height));
}

void InputFile::measurePicture() {
    const AVCodecParameters& parameters = *videoStream->codecpar;
    if (parameters.width <= 0 || parameters.height <= 0)
        fail(file, "not a video that can be read: the picture has no size");
    checkSize(parameters.width, parameters.height);
    storedWidth = parameters.width;
    storedHeight = parameters.height;

    // Pixels that are not square: the side that grows is stretched, so that no detail is lost.
    const AVRational aspect = av_guess_sample_aspect_ratio(handle.get(), videoStream, nullptr);
    if (aspect.num > 0 && aspect.den > 0 && aspect.num != aspect.den) {
        const double ratio = av_q2d(aspect);
        const double width = ratio > 1 ? std::round(storedWidth * ratio) : storedWidth;
        const double height = ratio < 1 ? std::round(storedHeight / ratio) : storedHeight;
        checkSize(width, height);
        storedWidth = static_cast<int>(width);
        storedHeight = static_cast<int>(height);
    }
}

Orientation InputFile::orientation() const {
    const uint8_t* data = av_stream_get_side_data(videoStream, AV_PKT_DATA_DISPLAYMATRIX, nullptr);
    if (!data) return {};
    // Row-major 3 × 3; a point (x, y) of the stored picture is shown at (a x + c y, b x + d y).
    std::array<std::int32_t, 9> matrix{};
    std::memcpy(matrix.data(), data, sizeof matrix);
    const double a = matrix[0];
    const double b = matrix[1];
    const double c = matrix[3];
    const double d = matrix[4];
    if (std::abs(a) + std::abs(d) >= std::abs(b) + std::abs(c)) return {false, a < 0, d < 0};
    return {true, c < 0, b < 0};
}

SourceInfo InputFile::info() {
    needVideo();
    SourceInfo facts;
    const bool turned = orientation().transpose;
    facts.width = turned ? storedHeight : storedWidth;
    facts.height = turned ? storedWidth : storedHeight;
    facts.hasAudio = !sounds().empty();
    facts.fps = av_q2d(videoStream->avg_frame_rate.den > 0 ? videoStream->avg_frame_rate : AVRational{0, 1});
    facts.duration = measureDuration(facts.fps);
    if (!(facts.duration <= longestDuration))
        fail(file, "the video claims to be longer than 100 hours; it is probably damaged");
    if (!(facts.duration > 0)) fail(file, "not a video that can be read: it has no length");
    if (!(facts.fps > 0) || facts.fps > 1000)
        facts.fps = av_q2d(av_guess_frame_rate(handle.get(), videoStream, nullptr));
    if (!(facts.fps > 0)) facts.fps = 30;
    return facts;
}

double InputFile::endOf(const AVStream* stream) const {
    if (stream->duration > 0 && stream->duration != AV_NOPTS_VALUE) {
        const std::int64_t first = stream->start_time != AV_NOPTS_VALUE ? stream->start_time : 0;
        return seconds(first + stream->duration, stream->time_base);
    }
    if (const AVDictionaryEntry* tag = av_dict_get(stream->metadata, "DURATION", nullptr, 0))
        if (const double end = clockSeconds(tag->value); end > 0) return end;
    if (handle->duration <= 0 || handle->duration == AV_NOPTS_VALUE) return 0;
    const std::int64_t first = handle->start_time == AV_NOPTS_VALUE ? 0 : handle->start_time;
    return seconds(first + handle->duration, AV_TIME_BASE_Q);
}

double InputFile::measureDuration(double& averageRate) {
    const double start = seconds(origin(), videoStream->time_base);
    const bool isMov = std::strcmp(handle->iformat->name, "mov,mp4,m4a,3gp,3g2,mj2") == 0;
    // An MP4 in fragments knows nothing about its length in the header; nor do some others.
    const bool headerKnows = isMov ? videoStream->nb_frames > 0
                                   : handle->duration_estimation_method != AVFMT_DURATION_FROM_BITRATE;
    if (headerKnows) {
        if (const int entries = isMov ? avformat_index_get_entries_count(videoStream) : 0;
            entries > 0 && videoStream->duration > 0) {
            // The index is exact; libav's own average looks at the first pictures only.
            std::int64_t shown = 0;
            for (int i = 0; i < entries; ++i)
                if ((avformat_index_get_entry(videoStream, i)->flags & AVINDEX_DISCARD_FRAME) == 0) ++shown;
            averageRate = static_cast<double>(shown) / seconds(videoStream->duration, videoStream->time_base);
        }
        if (videoStream->duration > 0 && videoStream->duration != AV_NOPTS_VALUE)
            return seconds(videoStream->duration, videoStream->time_base);
        if (const double end = endOf(videoStream); end > start) return end - start;
    }

    // Reads the file through once, on a handle of its own so that this one stands where it was.
    InputFile scan(file);
    AVStream* stream = scan.needVideo();
    scan.select(stream);
    const PacketHandle packet = makePacket();
    std::int64_t end = std::numeric_limits<std::int64_t>::min();
    std::int64_t frames = 0;
    while (scan.read(*packet)) {
        const std::int64_t pts = packet->pts != AV_NOPTS_VALUE ? packet->pts : packet->dts;
        if (packet->stream_index == stream->index && pts != AV_NOPTS_VALUE) {
            end = std::max(end, pts + packet->duration);
            ++frames;
        }
        av_packet_unref(packet.get());
    }
    if (frames == 0) fail(file, "not a video that can be read: it holds no pictures");
    const double length = seconds(end, stream->time_base) - start;
    if (length > 0) averageRate = static_cast<double>(frames) / length;
    return length;
}

std::int64_t InputFile::origin() {
    if (originKnown || !videoStream) return originTicks;
    // Pictures may be stored in another order than they are shown in; once a packet's decoding time has
    // reached the earliest presentation time seen, no later one can be shown earlier.
    std::int64_t first = std::numeric_limits<std::int64_t>::max();
    std::size_t seen = 0;
    while (seen < packetsForOrigin && pending.size() < 4096) {
        PacketHandle packet = makePacket();
        if (!readFromFile(*packet)) break;
        const bool counts =
            packet->stream_index == videoStream->index && (packet->flags & AV_PKT_FLAG_DISCARD) == 0;
        const std::int64_t dts = packet->dts;
        const std::int64_t pts = packet->pts != AV_NOPTS_VALUE ? packet->pts : dts;
        pending.push_back(std::move(packet));
        if (!counts || pts == AV_NOPTS_VALUE) continue;
        ++seen;
        first = std::min(first, pts);
        if (dts != AV_NOPTS_VALUE && dts >= first) break;
    }
    originKnown = true;
    if (seen > 0) originTicks = first;
    return originTicks;
}

void InputFile::select(const AVStream* stream) {
    for (unsigned i = 0; i < handle->nb_streams; ++i)
        handle->streams[i]->discard = handle->streams[i] == stream ? AVDISCARD_DEFAULT : AVDISCARD_ALL;
    std::erase_if(pending, [&](const PacketHandle& packet) { return packet->stream_index != stream->index; });
}

bool InputFile::read(AVPacket& packet) {
    if (pending.empty()) return readFromFile(packet);
    av_packet_move_ref(&packet, pending.front().get());
    pending.pop_front();
    return true;
}

bool InputFile::readFromFile(AVPacket& packet) {
    for (int bad = 0; bad < mostBadPackets; ++bad) {
        const int code = av_read_frame(handle.get(), &packet);
        if (code >= 0) {
            // A packet that the end of the file cuts short is no packet.
            if ((packet.flags & AV_PKT_FLAG_CORRUPT) == 0) return true;
            av_packet_unref(&packet);
            continue;
        }
        if (code == AVERROR_EOF) return false;
        if (code == AVERROR(EIO) || code == AVERROR(ENOMEM)) fail(file, "cannot be read", code);
    }
    return false;
}

bool InputFile::seek(const AVStream* stream, std::int64_t timestamp) {
    pending.clear();
    return av_seek_frame(handle.get(), stream->index, timestamp, AVSEEK_FLAG_BACKWARD) >= 0;
}

} // namespace RecordCore::FFmpeg
