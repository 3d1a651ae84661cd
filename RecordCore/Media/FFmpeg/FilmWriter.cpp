#include "RecordCore/Media/FFmpeg/FilmWriter.h"

#include "RecordCore/Media/FFmpeg/Failure.h"
#include "RecordCore/Model/RecordingError.h"
#include "RecordCore/Model/Uuid.h"

extern "C" {
#include <libavutil/channel_layout.h>
}

#include <fmt/format.h>

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>
#include <utility>

namespace RecordCore::FFmpeg {

namespace {

constexpr int bufferSize = 1 << 18; // bytes gathered before each write

} // namespace

FilmWriter::FilmWriter(std::filesystem::path path, Access access) : file(std::move(path)) {
    silenceLog();
    const std::filesystem::path folder = file.has_parent_path() ? file.parent_path() : ".";
    temporary =
        folder / fmt::format(".{}.{}.part", file.filename().string(), Uuid::fresh().text().substr(0, 8));
    if (std::filesystem::is_directory(file)) fail(file, "cannot be written", AVERROR(EISDIR));
    descriptor = ::open(temporary.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC,
                        access == Access::ownerOnly ? 0600 : 0666);
    if (descriptor < 0) fail(file, "cannot be written", AVERROR(errno));

    AVFormatContext* made = nullptr;
    if (avformat_alloc_output_context2(&made, nullptr, "mp4", nullptr) < 0) throw std::bad_alloc();
    context.reset(made);
    // To bring the index to the front, libav opens the file a second time by this name.
    context->url = av_strdup(("file:" + temporary.string()).c_str());
    auto* buffer = static_cast<unsigned char*>(av_malloc(bufferSize));
    context->pb = avio_alloc_context(buffer, bufferSize, 1, this, nullptr, putBytes, seekBytes);
    if (!context->pb) throw std::bad_alloc();
}

FilmWriter::~FilmWriter() {
    if (context && context->pb) {
        av_freep(&context->pb->buffer);
        avio_context_free(&context->pb);
    }
    if (descriptor >= 0) ::close(descriptor);
    if (!finished) ::unlink(temporary.c_str());
}

int FilmWriter::putBytes(void* self, std::uint8_t* bytes, int count) {
    auto& writer = *static_cast<FilmWriter*>(self);
    int done = 0;
    while (done < count) {
        const ssize_t written =
            ::write(writer.descriptor, bytes + done, static_cast<std::size_t>(count - done));
        if (written < 0 && errno == EINTR) continue;
        if (written < 0) {
            if (writer.writeError == 0) writer.writeError = errno;
            return AVERROR(errno);
        }
        done += static_cast<int>(written);
    }
    return count;
}

std::int64_t FilmWriter::seekBytes(void* self, std::int64_t offset, int whence) {
    auto& writer = *static_cast<FilmWriter*>(self);
    const off_t place = ::lseek(writer.descriptor, offset, whence & ~AVSEEK_FORCE);
    return place < 0 ? AVERROR(errno) : place;
}

/// Throws when libav reports an error, or the file took one that libav has not passed on yet.
void FilmWriter::check(int code) {
    if (writeError != 0) fail(file, "cannot be written", AVERROR(writeError));
    if (code < 0) fail(file, "cannot be written", code);
}

int FilmWriter::addTrack(const StreamDescription& description) {
    const std::scoped_lock lock(mutex);
    AVStream* stream = avformat_new_stream(context.get(), nullptr);
    if (!stream) throw std::bad_alloc();
    AVCodecParameters& parameters = *stream->codecpar;
    parameters.bit_rate = description.bitrate;
    if (description.codec == Codec::aac) {
        parameters.codec_type = AVMEDIA_TYPE_AUDIO;
        parameters.codec_id = AV_CODEC_ID_AAC;
        parameters.sample_rate = description.sampleRate;
        parameters.frame_size = description.frameSize;
        parameters.initial_padding = description.primingSamples;
        av_channel_layout_default(&parameters.ch_layout, description.channels);
    } else {
        const bool hevc = description.codec == Codec::hevc;
        parameters.codec_type = AVMEDIA_TYPE_VIDEO;
        parameters.codec_id = hevc ? AV_CODEC_ID_HEVC : AV_CODEC_ID_H264;
        if (hevc) parameters.codec_tag = MKTAG('h', 'v', 'c', '1'); // the name that every player knows
        parameters.width = description.width;
        parameters.height = description.height;
        parameters.format = AV_PIX_FMT_YUV420P;
        parameters.color_primaries = AVCOL_PRI_BT709;
        parameters.color_trc = AVCOL_TRC_BT709;
        parameters.color_space = AVCOL_SPC_BT709;
        parameters.color_range = AVCOL_RANGE_MPEG;
        parameters.sample_aspect_ratio = {1, 1};
        stream->sample_aspect_ratio = {1, 1};
        if (description.frameRate > 0) stream->avg_frame_rate = av_d2q(description.frameRate, 1'000'000);
    }
    parameters.extradata =
        static_cast<std::uint8_t*>(av_mallocz(description.extradata.size() + AV_INPUT_BUFFER_PADDING_SIZE));
    if (!parameters.extradata) throw std::bad_alloc();
    std::memcpy(parameters.extradata, description.extradata.data(), description.extradata.size());
    parameters.extradata_size = static_cast<int>(description.extradata.size());

    Track track;
    track.stream = stream;
    track.base = {description.timeBase.num, description.timeBase.den};
    stream->time_base = track.base;
    tracks.push_back(std::move(track));
    return stream->index;
}

void FilmWriter::begin() {
    const std::scoped_lock lock(mutex);
    Options options;
    options.set("movflags", "+faststart+write_colr");
    // The unit of track lengths: fine enough that none is cut or stretched by rounding.
    options.set("movie_timescale", 48000);
    check(avformat_write_header(context.get(), options.get()));
    begun = true;
}

void FilmWriter::write(int number, const Packet& packet) {
    const std::scoped_lock lock(mutex);
    Track& track = tracks.at(static_cast<std::size_t>(number));
    PacketHandle copy = makePacket();
    if (av_new_packet(copy.get(), static_cast<int>(packet.data.size())) < 0) throw std::bad_alloc();
    std::memcpy(copy->data, packet.data.data(), packet.data.size());
    copy->pts = packet.pts;
    copy->dts = packet.dts;
    copy->duration = packet.duration;
    copy->stream_index = number;
    if (packet.key) copy->flags |= AV_PKT_FLAG_KEY;
    if (PacketHandle before = std::exchange(track.last, std::move(copy))) put(std::move(before), track);
}

void FilmWriter::put(PacketHandle packet, Track& track) {
    av_packet_rescale_ts(packet.get(), track.base, track.stream->time_base);
    check(av_interleaved_write_frame(context.get(), packet.get()));
}

void FilmWriter::setEnd(int number, std::int64_t pts) {
    const std::scoped_lock lock(mutex);
    tracks.at(static_cast<std::size_t>(number)).end = pts;
}

void FilmWriter::finish() {
    const std::scoped_lock lock(mutex);
    if (!begun || finished) fail(file, "cannot be written: it was not begun");
    for (Track& track : tracks) {
        if (!track.last) continue;
        if (track.end) track.last->duration = std::max<std::int64_t>(*track.end - track.last->pts, 0);
        put(std::move(track.last), track);
    }
    check(av_write_trailer(context.get()));
    avio_flush(context->pb);
    check(context->pb->error);
    if (::fsync(descriptor) != 0) fail(file, "cannot be written", AVERROR(errno));
    const int closing = std::exchange(descriptor, -1);
    if (::close(closing) != 0) fail(file, "cannot be written", AVERROR(errno));
    if (::rename(temporary.c_str(), file.c_str()) != 0) fail(file, "cannot be written", AVERROR(errno));
    finished = true;
    // So that the move, too, survives a power cut; a folder that cannot be synced is no reason to fail.
    const std::filesystem::path folder = file.has_parent_path() ? file.parent_path() : ".";
    const int directory = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (directory >= 0) {
        ::fsync(directory);
        ::close(directory);
    }
}

} // namespace RecordCore::FFmpeg
