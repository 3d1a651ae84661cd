#include "RecordCore/Media/FragmentWriter.h"

#include "RecordCore/Model/RecordingError.h"

#include <fmt/format.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstring>
#include <fcntl.h>
#include <limits>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace RecordCore {

namespace {

// Both clocks count: the one on the wall bounds what a crash can take, the one of the media the memory.
constexpr std::chrono::milliseconds longestWait{800};
constexpr double longestSpan = 0.9; // seconds

/// Builds nested boxes: 4 bytes of length, 4 of name, contents. Numbers are big-endian.
class Boxes {
public:
    explicit Boxes(std::vector<std::uint8_t>& out) : out(out) {}

    template <typename Contents>
    void box(std::string_view name, Contents contents) {
        const std::size_t start = out.size();
        u32(0);
        text(name);
        contents();
        const auto length = static_cast<std::uint32_t>(out.size() - start);
        for (std::size_t i = 0; i < 4; ++i)
            out[start + i] = static_cast<std::uint8_t>(length >> (24 - 8 * i));
    }
    template <typename Contents>
    void fullBox(std::string_view name, unsigned version, std::uint32_t flags, Contents contents) {
        box(name, [&] {
            u32(version << 24 | flags);
            contents();
        });
    }
    void u8(unsigned value) { out.push_back(static_cast<std::uint8_t>(value)); }
    void u16(unsigned value) {
        u8(value >> 8);
        u8(value);
    }
    void u32(std::uint32_t value) {
        u16(value >> 16);
        u16(value & 0xFFFFU);
    }
    void u64(std::uint64_t value) {
        u32(static_cast<std::uint32_t>(value >> 32));
        u32(static_cast<std::uint32_t>(value));
    }
    void zeros(int count) { out.insert(out.end(), static_cast<std::size_t>(count), std::uint8_t{0}); }
    void text(std::string_view value) { out.insert(out.end(), value.begin(), value.end()); }
    void bytes(const std::vector<std::uint8_t>& value) { out.insert(out.end(), value.begin(), value.end()); }
    void matrix() {
        for (const std::uint32_t value : {0x10000U, 0U, 0U, 0U, 0x10000U, 0U, 0U, 0U, 0x40000000U})
            u32(value);
    }
    std::size_t position() const { return out.size(); }

private:
    std::vector<std::uint8_t>& out;
};

void pictureEntry(Boxes& boxes, const StreamDescription& stream) {
    const bool hevc = stream.codec == Codec::hevc;
    boxes.box(hevc ? "hvc1" : "avc1", [&] {
        boxes.zeros(6);
        boxes.u16(1); // data reference
        boxes.zeros(16);
        boxes.u16(static_cast<unsigned>(stream.width));
        boxes.u16(static_cast<unsigned>(stream.height));
        boxes.u32(0x00480000); // 72 dots per inch
        boxes.u32(0x00480000);
        boxes.u32(0);
        boxes.u16(1); // frames per sample
        boxes.zeros(32);
        boxes.u16(24);
        boxes.u16(0xFFFF);
        boxes.box(hevc ? "hvcC" : "avcC", [&] { boxes.bytes(stream.extradata); });
        boxes.box("colr", [&] {
            boxes.text("nclx");
            boxes.u16(1); // BT.709: primaries, transfer, matrix
            boxes.u16(1);
            boxes.u16(1);
            boxes.u8(0); // video range
        });
    });
}

void soundEntry(Boxes& boxes, const StreamDescription& stream) {
    boxes.box("mp4a", [&] {
        boxes.zeros(6);
        boxes.u16(1); // data reference
        boxes.zeros(8);
        boxes.u16(static_cast<unsigned>(stream.channels));
        boxes.u16(16);
        boxes.u32(0);
        boxes.u32(static_cast<std::uint32_t>(stream.sampleRate) << 16);
        boxes.fullBox("esds", 0, 0, [&] {
            // Descriptors of ISO/IEC 14496-1: a tag and a length below 128 each.
            const auto config = static_cast<unsigned>(stream.extradata.size());
            boxes.u8(0x03); // elementary stream
            boxes.u8(3 + 2 + 13 + 2 + config + 3);
            boxes.u16(0);
            boxes.u8(0);
            boxes.u8(0x04); // decoder
            boxes.u8(13 + 2 + config);
            boxes.u8(0x40); // MPEG-4 audio
            boxes.u8(0x15); // a sound stream
            boxes.zeros(3);
            boxes.u32(static_cast<std::uint32_t>(stream.bitrate));
            boxes.u32(static_cast<std::uint32_t>(stream.bitrate));
            boxes.u8(0x05); // its configuration
            boxes.u8(config);
            boxes.bytes(stream.extradata);
            boxes.u8(0x06); // sync layer: as MP4 has it
            boxes.u8(1);
            boxes.u8(2);
        });
    });
}

} // namespace

FragmentWriter::FragmentWriter(std::filesystem::path path) : file(std::move(path)) {
    // Never over another file's permissions or through its links.
    if (::unlink(file.c_str()) != 0 && errno != ENOENT)
        throw RecordingError(fmt::format("{}: cannot be written: {}", file.string(), std::strerror(errno)));
    descriptor = ::open(file.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
    if (descriptor < 0)
        throw RecordingError(fmt::format("{}: cannot be written: {}", file.string(), std::strerror(errno)));
}

FragmentWriter::~FragmentWriter() {
    try {
        close();
    } catch (const RecordingError&) {
        // Nobody is left to be told; what was written stays.
    }
}

int FragmentWriter::addTrack(const StreamDescription& stream) {
    const std::scoped_lock lock(mutex);
    tracks.push_back({stream, {}, {}});
    return static_cast<int>(tracks.size()) - 1;
}

void FragmentWriter::begin() {
    const std::scoped_lock lock(mutex);
    put(header());
}

std::vector<std::uint8_t> FragmentWriter::header() const {
    std::vector<std::uint8_t> bytes;
    Boxes boxes(bytes);
    boxes.box("ftyp", [&] {
        boxes.text("iso5");
        boxes.u32(512);
        boxes.text("iso5iso6mp41");
    });
    boxes.box("moov", [&] {
        boxes.fullBox("mvhd", 0, 0, [&] {
            boxes.zeros(8);
            boxes.u32(1000);
            boxes.u32(0);
            boxes.u32(0x10000); // rate
            boxes.u16(0x100);   // volume
            boxes.zeros(10);
            boxes.matrix();
            boxes.zeros(24);
            boxes.u32(static_cast<std::uint32_t>(tracks.size() + 1));
        });
        for (std::size_t i = 0; i < tracks.size(); ++i) {
            const StreamDescription& stream = tracks[i].stream;
            const bool sound = stream.codec == Codec::aac;
            boxes.box("trak", [&] {
                boxes.fullBox("tkhd", 0, 3, [&] {
                    boxes.zeros(8);
                    boxes.u32(static_cast<std::uint32_t>(i + 1));
                    boxes.zeros(4 + 4 + 8);
                    boxes.u16(0);
                    boxes.u16(sound ? 1 : 0); // sounds are alternatives of each other
                    boxes.u16(sound ? 0x100 : 0);
                    boxes.u16(0);
                    boxes.matrix();
                    boxes.u32(static_cast<std::uint32_t>(stream.width) << 16);
                    boxes.u32(static_cast<std::uint32_t>(stream.height) << 16);
                });
                if (stream.primingSamples > 0)
                    boxes.box("edts", [&] {
                        boxes.fullBox("elst", 0, 0, [&] {
                            boxes.u32(1);
                            boxes.u32(0); // as long as the track turns out to be
                            boxes.u32(static_cast<std::uint32_t>(stream.primingSamples));
                            boxes.u32(0x10000);
                        });
                    });
                boxes.box("mdia", [&] {
                    boxes.fullBox("mdhd", 0, 0, [&] {
                        boxes.zeros(8);
                        boxes.u32(static_cast<std::uint32_t>(stream.timeBase.den));
                        boxes.u32(0);
                        boxes.u16(0x55C4); // language: undetermined
                        boxes.u16(0);
                    });
                    boxes.fullBox("hdlr", 0, 0, [&] {
                        boxes.u32(0);
                        boxes.text(sound ? "soun" : "vide");
                        boxes.zeros(13);
                    });
                    boxes.box("minf", [&] {
                        if (sound)
                            boxes.fullBox("smhd", 0, 0, [&] { boxes.zeros(4); });
                        else
                            boxes.fullBox("vmhd", 0, 1, [&] { boxes.zeros(8); });
                        boxes.box("dinf", [&] {
                            boxes.fullBox("dref", 0, 0, [&] {
                                boxes.u32(1);
                                boxes.fullBox("url ", 0, 1, [] {});
                            });
                        });
                        boxes.box("stbl", [&] {
                            boxes.fullBox("stsd", 0, 0, [&] {
                                boxes.u32(1);
                                if (sound)
                                    soundEntry(boxes, stream);
                                else
                                    pictureEntry(boxes, stream);
                            });
                            for (const char* table : {"stts", "stsc", "stco"})
                                boxes.fullBox(table, 0, 0, [&] { boxes.u32(0); });
                            boxes.fullBox("stsz", 0, 0, [&] { boxes.zeros(8); });
                        });
                    });
                });
            });
        }
        boxes.box("mvex", [&] {
            for (std::size_t i = 0; i < tracks.size(); ++i)
                boxes.fullBox("trex", 0, 0, [&] {
                    boxes.u32(static_cast<std::uint32_t>(i + 1));
                    boxes.u32(1);
                    boxes.zeros(12);
                });
        });
    });
    return bytes;
}

void FragmentWriter::write(int number, const Packet& packet) {
    const std::scoped_lock lock(mutex);
    Track& track = tracks.at(static_cast<std::size_t>(number));
    const TimeBase base = track.stream.timeBase;
    // The file's time scale is whole ticks per second.
    const auto ticks = [&](std::int64_t time) { return time * base.num; };
    const std::int64_t dts = ticks(packet.dts) + track.stream.primingSamples;
    if (dts < 0) return;
    if (!track.samples.empty()) {
        Sample& before = track.samples.back();
        before.duration = dts - before.dts;
        if (before.duration < 0)
            throw RecordingError(fmt::format("{}: cannot be written: times go back", file.string()));
        if (static_cast<double>(dts - track.samples.front().dts) / base.den >= longestSpan) flush();
    }
    track.samples.push_back({dts, ticks(packet.duration),
                             static_cast<std::int32_t>(ticks(packet.pts - packet.dts)),
                             static_cast<std::uint32_t>(packet.data.size()), packet.key});
    track.data.insert(track.data.end(), packet.data.begin(), packet.data.end());
    if (!oldest) oldest = Clock::now();
    if (Clock::now() - *oldest >= longestWait) flush();
}

void FragmentWriter::tick() {
    const std::scoped_lock lock(mutex);
    if (oldest && Clock::now() - *oldest >= longestWait) flush();
}

void FragmentWriter::flushNow() {
    const std::scoped_lock lock(mutex);
    flush();
}

void FragmentWriter::flush() {
    if (!oldest) return;
    oldest.reset();
    fragment.clear();
    Boxes boxes(fragment);
    std::vector<std::size_t> offsets; // where each run notes the place of its data
    boxes.box("moof", [&] {
        boxes.fullBox("mfhd", 0, 0, [&] { boxes.u32(++sequence); });
        for (std::size_t i = 0; i < tracks.size(); ++i) {
            const Track& track = tracks[i];
            if (track.samples.empty()) continue;
            const bool sound = track.stream.codec == Codec::aac;
            boxes.box("traf", [&] {
                boxes.fullBox("tfhd", 0, 0x020000, [&] { boxes.u32(static_cast<std::uint32_t>(i + 1)); });
                boxes.fullBox("tfdt", 1, 0,
                              [&] { boxes.u64(static_cast<std::uint64_t>(track.samples.front().dts)); });
                // Data offset; duration, size, flags and reordering of every sample.
                boxes.fullBox("trun", 1, 0x000F01, [&] {
                    boxes.u32(static_cast<std::uint32_t>(track.samples.size()));
                    offsets.push_back(boxes.position());
                    boxes.u32(0);
                    for (const Sample& sample : track.samples) {
                        boxes.u32(static_cast<std::uint32_t>(std::min<std::int64_t>(
                            sample.duration, std::numeric_limits<std::uint32_t>::max())));
                        boxes.u32(sample.size);
                        boxes.u32(sample.key || sound ? 0x02000000 : 0x01010000);
                        boxes.u32(static_cast<std::uint32_t>(sample.reorder));
                    }
                });
            });
        }
    });
    std::size_t place = fragment.size() + 8;
    std::size_t run = 0;
    for (const Track& track : tracks) {
        if (track.samples.empty()) continue;
        for (std::size_t byte = 0; byte < 4; ++byte)
            fragment[offsets[run] + byte] = static_cast<std::uint8_t>(place >> (24 - 8 * byte));
        place += track.data.size();
        ++run;
    }
    boxes.box("mdat", [&] {
        for (const Track& track : tracks)
            boxes.bytes(track.data);
    });
    for (Track& track : tracks) {
        track.samples.clear();
        track.data.clear();
    }
    put(fragment);
}

void FragmentWriter::put(const std::vector<std::uint8_t>& bytes) {
    if (failure.empty()) {
        std::size_t done = 0;
        while (done < bytes.size()) {
            const ssize_t count = ::write(descriptor, bytes.data() + done, bytes.size() - done);
            if (count < 0 && errno == EINTR) continue;
            if (count < 0) {
                failure = fmt::format("{}: cannot be written: {}", file.string(), std::strerror(errno));
                // Half a fragment is of no use to anybody.
                if (::ftruncate(descriptor, length) != 0) break;
                break;
            }
            done += static_cast<std::size_t>(count);
        }
    }
    if (!failure.empty()) throw RecordingError(failure);
    length += static_cast<std::int64_t>(bytes.size());
}

void FragmentWriter::close() {
    const std::scoped_lock lock(mutex);
    if (descriptor < 0) return;
    const int open = std::exchange(descriptor, -1);
    try {
        descriptor = open;
        flush();
        descriptor = -1;
    } catch (...) {
        descriptor = -1;
        ::close(open);
        throw;
    }
    if (::close(open) != 0)
        throw RecordingError(fmt::format("{}: cannot be written: {}", file.string(), std::strerror(errno)));
}

} // namespace RecordCore
