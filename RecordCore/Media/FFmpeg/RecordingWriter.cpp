#include "RecordCore/Media/FFmpeg/RecordingWriter.h"

#include "RecordCore/Media/FFmpeg/Failure.h"
#include "RecordCore/Media/FFmpeg/FilmWriter.h"
#include "RecordCore/Media/FFmpeg/InputFile.h"
#include "RecordCore/Model/RecordingError.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <fstream>
#include <optional>
#include <string_view>

namespace RecordCore::FFmpeg {

namespace {

StreamDescription describe(const AVStream& stream, const AVFormatContext& context,
                           const std::filesystem::path& file) {
    const AVCodecParameters& parameters = *stream.codecpar;
    StreamDescription description;
    switch (parameters.codec_id) {
    case AV_CODEC_ID_H264:
        description.codec = Codec::h264;
        break;
    case AV_CODEC_ID_HEVC:
        description.codec = Codec::hevc;
        break;
    case AV_CODEC_ID_AAC:
        description.codec = Codec::aac;
        break;
    default:
        fail(file, "not a recording of this program");
    }
    description.extradata.assign(parameters.extradata, parameters.extradata + parameters.extradata_size);
    description.timeBase = {stream.time_base.num, stream.time_base.den};
    description.bitrate = parameters.bit_rate;
    description.width = parameters.width;
    description.height = parameters.height;
    if (description.codec != Codec::aac)
        description.frameRate = av_q2d(av_guess_frame_rate(const_cast<AVFormatContext*>(&context),
                                                           const_cast<AVStream*>(&stream), nullptr));
    description.sampleRate = parameters.sample_rate;
    description.channels = parameters.ch_layout.nb_channels;
    description.frameSize = parameters.frame_size > 0 ? parameters.frame_size : 1024;
    description.primingSamples = parameters.initial_padding;
    return description;
}

/// What the boxes of a file say about it.
struct Shape {
    bool hasHeader = false;
    bool fragmented = false;           ///< the header has room for fragments
    std::optional<std::uint64_t> torn; ///< where a fragment's own header begins that is cut off
};

Shape shapeOf(const std::filesystem::path& path) {
    Shape shape;
    std::ifstream file(path, std::ios::binary);
    const std::uint64_t size = std::filesystem::file_size(path);
    const auto number = [](const std::array<char, 16>& bytes, std::size_t at, std::size_t count) {
        std::uint64_t value = 0;
        for (std::size_t i = 0; i < count; ++i)
            value = value << 8 | static_cast<std::uint8_t>(bytes[at + i]);
        return value;
    };
    std::uint64_t headerEnd = 0; // inside the header until there
    std::uint64_t at = 0;
    while (at < size) {
        std::array<char, 16> head{};
        file.clear();
        file.seekg(static_cast<std::streamoff>(at));
        file.read(head.data(), 16);
        if (file.gcount() < 8) {
            if (shape.fragmented && at >= headerEnd) shape.torn = at;
            break;
        }
        std::uint64_t length = number(head, 0, 4);
        const std::string_view name(head.data() + 4, 4);
        if (length == 1) length = number(head, 8, 8);
        if (length == 0) length = size - at;
        if (length < 8) break;
        if (name == "moov" && !shape.hasHeader) {
            if (at + length > size) break;
            shape.hasHeader = true;
            headerEnd = at + length;
            at += 8;
            continue;
        }
        if (name == "mvex" && at < headerEnd) shape.fragmented = true;
        if (name == "moof" && at + length > size) shape.torn = at;
        at += length;
    }
    return shape;
}

/// Plain copies that were under way when the program was killed.
void removeLeftovers(const std::filesystem::path& file) {
    const std::string prefix = "." + file.filename().string() + ".";
    std::error_code ignored;
    for (const auto& entry : std::filesystem::directory_iterator(file.parent_path(), ignored)) {
        const std::string name = entry.path().filename().string();
        if (name.size() == prefix.size() + 8 + 5 && name.starts_with(prefix) && name.ends_with(".part"))
            std::filesystem::remove(entry.path(), ignored);
    }
}

} // namespace

RecordingWriter::RecordingWriter(const std::filesystem::path& file) : file(file), fragments(file) {}

int RecordingWriter::addTrack(const StreamDescription& stream) {
    bases.push_back(stream.timeBase);
    return fragments.addTrack(stream);
}

void RecordingWriter::setEnd(int track, std::int64_t pts) {
    ends[track] = bases.at(static_cast<std::size_t>(track)).seconds(pts);
}

void RecordingWriter::finish() {
    try {
        fragments.close();
    } catch (const RecordingError&) {
        // The disk is full, and `write` has said so; what is there is worth keeping.
    }
    try {
        makePlain(file, ends);
    } catch (const RecordingError&) {
        // No room for a copy. The fragments are a readable file; only when there are none is the recording
        // lost, and then whoever opens it must be told now.
        InputFile(file).info();
    }
}

void makePlain(const std::filesystem::path& file, const std::map<int, double>& ends) {
    InputFile input(file);
    if (!input.video()) fail(file, "nothing can be recovered: the file has no video");
    const std::int64_t origin = input.origin();
    const AVRational originBase = input.video()->time_base;

    FilmWriter writer(file, FilmWriter::Access::ownerOnly);
    struct Track {
        int number = -1;
        std::int64_t shift = 0;
        double end = 0; ///< seconds
    };
    std::vector<Track> tracks(input.context()->nb_streams);
    for (unsigned i = 0; i < input.context()->nb_streams; ++i) {
        const AVStream& stream = *input.context()->streams[i];
        tracks[i].number = writer.addTrack(describe(stream, *input.context(), file));
        tracks[i].shift = av_rescale_q(origin, originBase, stream.time_base);
    }
    writer.begin();
    const PacketHandle packet = makePacket();
    double longest = 0;
    while (input.read(*packet)) {
        Track& track = tracks[static_cast<std::size_t>(packet->stream_index)];
        const AVStream& stream = *input.context()->streams[packet->stream_index];
        if (packet->pts != AV_NOPTS_VALUE && packet->dts != AV_NOPTS_VALUE) {
            Packet out;
            out.data = {packet->data, static_cast<std::size_t>(packet->size)};
            out.pts = packet->pts - track.shift;
            out.dts = packet->dts - track.shift;
            out.duration = packet->duration;
            out.key = (packet->flags & AV_PKT_FLAG_KEY) != 0;
            writer.write(track.number, out);
            track.end =
                std::max(track.end, static_cast<double>(out.pts + out.duration) * av_q2d(stream.time_base));
            longest = std::max(longest, track.end);
        }
        av_packet_unref(packet.get());
    }
    Track& picture = tracks[static_cast<std::size_t>(input.video()->index)];
    if (picture.end <= 0 && ends.empty()) {
        // A single frame without a length still is a picture.
        longest = std::max(longest, 0.04);
    }
    picture.end = std::max(picture.end, longest);
    for (const auto& [number, end] : ends)
        if (static_cast<std::size_t>(number) < tracks.size() && number == picture.number) picture.end = end;
    writer.setEnd(picture.number, std::llround(picture.end / av_q2d(originBase)));
    writer.finish();
}

bool recoverMovie(const std::filesystem::path& file) {
    std::error_code error;
    if (!std::filesystem::is_regular_file(file, error)) {
        static_cast<void>(InputFile(file)); // says what is wrong with it
        return false;
    }
    removeLeftovers(file);
    const Shape shape = shapeOf(file);
    if (!shape.hasHeader) fail(file, "nothing can be recovered: the file has no header");
    if (!shape.fragmented) return false;
    if (shape.torn) {
        // The list of a fragment's pictures without its end is of no use, and readers stumble over it.
        std::filesystem::resize_file(file, *shape.torn, error);
        if (error) fail(file, "cannot be written", AVERROR(error.value()));
    }
    makePlain(file, {});
    return true;
}

} // namespace RecordCore::FFmpeg
