#pragma once

#include "RecordCore/Media/FFmpeg/PictureConverter.h"
#include "RecordCore/Media/PictureDecoder.h"

#include <optional>

namespace RecordCore::FFmpeg {

/// Camera pictures through libavcodec (Motion JPEG) and the converter that video files use too.
class FFmpegPictureDecoder : public PictureDecoder {
public:
    FFmpegPictureDecoder();
    PlanarView decode(const RawPicture& picture) override;

private:
    bool decodeJpeg(const RawPicture& picture);
    void wrap(const RawPicture& picture);

    FrameHandle frame;
    CodecHandle jpeg; ///< opened with the first picture that needs it
    PacketHandle packet;
    std::optional<PictureConverter> converter;
    int width = 0; ///< of the converter's pictures
    int height = 0;
    VideoFrame shown; ///< keeps the picture handed out last
};

} // namespace RecordCore::FFmpeg
