#pragma once

#include "RecordCore/Media/FFmpeg/Handles.h"
#include "RecordCore/Media/SoundEncoder.h"

namespace RecordCore::FFmpeg {

/// AAC-LC by libavcodec's own encoder.
class AacEncoder final : public SoundEncoder {
public:
    AacEncoder(std::int64_t bitrate, PacketSink sink);

    const StreamDescription& description() const override { return stream; }
    void encode(std::span<const float> samples) override;
    void finish() override;

private:
    void send(AVFrame* frame);

    PacketSink sink;
    StreamDescription stream;
    CodecHandle encoder;
    FrameHandle frame; ///< being filled
    PacketHandle packet;
    std::int64_t position = 0; ///< of the frame's first sample
    int filled = 0;            ///< samples in the frame
};

} // namespace RecordCore::FFmpeg
