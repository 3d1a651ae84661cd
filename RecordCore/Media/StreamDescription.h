#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <vector>

namespace RecordCore {

/// A unit of integer time: one tick is num / den seconds.
struct TimeBase {
    int num = 1;
    int den = 1;
    double seconds(std::int64_t ticks) const { return static_cast<double>(ticks) * num / den; }
    bool operator==(const TimeBase&) const = default;
};

enum class Codec { h264, hevc, aac };

/// What a muxer must know about a stream of packets.
struct StreamDescription {
    Codec codec = Codec::h264;
    /// The avcC or hvcC record (packets then hold NAL units after 4-byte lengths), AudioSpecificConfig.
    std::vector<std::uint8_t> extradata;
    TimeBase timeBase;        ///< of the packets' times
    std::int64_t bitrate = 0; ///< bits per second, 0: unknown

    // Video only.
    int width = 0;
    int height = 0;
    double frameRate = 0; ///< nominal, for the header; packets carry the true times

    // Sound only.
    int sampleRate = 0;
    int channels = 0;
    int frameSize = 0;      ///< samples per packet
    int primingSamples = 0; ///< encoder delay at the start, in samples; the writer keeps it out of the timing
};

/// One encoded access unit, borrowed for the duration of a call.
struct Packet {
    std::span<const std::uint8_t> data;
    std::int64_t pts = 0; ///< in the stream's time base
    std::int64_t dts = 0;
    std::int64_t duration = 0; ///< 0: unknown
    bool key = false;
};

/// Receives packets in decoding order, on the thread that called the encoder.
using PacketSink = std::function<void(const Packet&)>;

} // namespace RecordCore
