#pragma once

#include "RecordCore/Media/FFmpeg/Handles.h"
#include "RecordCore/Media/VideoEncoder.h"

#include <optional>
#include <string>
#include <vector>

namespace RecordCore::FFmpeg {

/// HEVC through libx265, or HEVC and H.264 through the machine's own encoder (VAAPI, NVENC). In real time
/// nothing is reordered and key frames come by time.
class FFmpegVideoEncoder final : public VideoEncoder {
public:
    FFmpegVideoEncoder(const VideoSettings& settings, PacketSink sink);

    const StreamDescription& description() const override { return stream; }
    std::string name() const override { return label; }
    void encode(const PlanarView& picture, std::int64_t pts, const FrameHints& hints) override;
    /// What was sent last is sent again: it may be in the hardware already.
    void repeat(const PlanarView& picture, std::int64_t pts) override;
    void finish(std::int64_t endPts) override;

private:
    /// Tries to open an encoder of libavcodec; false when it is missing or does not work here.
    bool open(const std::string& codecName);
    bool openDevice();
    FrameHandle fill(const PlanarView& picture);
    void send(AVFrame* frame);
    void receive();
    void deliver(const AVPacket& packet, std::int64_t duration);

    VideoSettings settings;
    PacketSink sink;
    std::string label;
    StreamDescription stream;
    BufferHandle device;
    CodecHandle encoder;
    FrameHandle last;   ///< the picture sent last, for repeats
    FrameHandle upload; ///< hardware: the picture in main memory
    PacketHandle packet;
    PacketHandle held; ///< film: delivered once it is known whether it is the last
    std::vector<std::uint8_t> converted;
    bool startCodes = true; ///< packets come with start codes
    std::optional<std::int64_t> lastKey;
    std::optional<std::int64_t> lastPts;
};

} // namespace RecordCore::FFmpeg
