#pragma once

#include "RecordCore/Media/FFmpeg/Handles.h"
#include "RecordCore/Media/FFmpeg/InputFile.h"
#include "RecordCore/Media/VideoReader.h"

#include <array>
#include <cstdint>
#include <memory>
#include <vector>

namespace RecordCore::FFmpeg {

/// Hands out pictures of one size in the engine's pixel format whose memory is used again once nobody holds
/// them. The pictures may outlive the pool and may be freed on any thread.
class PicturePool {
public:
    FrameHandle get(int width, int height);

private:
    int width = 0;
    int height = 0;
    std::array<int, 3> strides{};
    std::array<std::size_t, 3> offsets{};
    BufferPoolHandle pool;
};

/// A linear map of Y'CbCr values, all in units of 8-bit codes: luma takes part of the chroma in, the chroma
/// planes mix among themselves. (Grey stays grey under every change of matrix, so chroma never needs luma.)
struct ColourMap {
    double lumaScale = 1, lumaFromCb = 0, lumaFromCr = 0, lumaOffset = 0;
    double cbFromCb = 1, cbFromCr = 0, crFromCb = 0, crFromCr = 1;

    bool identity() const { return *this == ColourMap{}; }
    bool operator==(const ColourMap&) const = default;
};

/// The map from a matrix with the given luma weights of red and blue, in full or video range, to BT.709
/// in video range.
ColourMap colourMapToBt709(double kr, double kb, bool fullRange);

/// Turns decoded frames into the engine's pixel format. What is untagged is taken for video range, and for
/// BT.601 when it is smaller than 1280 × 720 on both sides, else BT.709. Chroma that says nothing about its
/// place sits left. Primaries and transfer curves are left as they are. One thread at a time.
class PictureConverter {
public:
    /// `width` and `height` are the stored picture with square pixels, before turning.
    PictureConverter(int width, int height, Orientation orientation, const AVCodecParameters& tags);

    /// Consumes the frame; a frame that already is right is handed on as it is.
    VideoFrame convert(FrameHandle frame, double time);

private:
    struct Siting {
        double x = 0;   ///< of the chroma sample in its 2 × 2 block of luma samples: 0 left, 0.5 centre
        double y = 0.5; ///< 0 top, 0.5 centre
        bool operator==(const Siting&) const = default;
    };
    struct Source {
        AVPixelFormat format = AV_PIX_FMT_NONE;
        int width = 0;
        int height = 0;
        AVColorSpace matrix = AVCOL_SPC_UNSPECIFIED;
        bool fullRange = false;
        Siting siting;
        bool operator==(const Source&) const = default;
    };

    Source describe(const AVFrame& frame) const;
    void prepare(const Source& source);
    FrameHandle scale(const AVFrame& frame);
    FrameHandle recolour(const AVFrame& frame);
    FrameHandle turn(const AVFrame& frame);

    int width;
    int height;
    Orientation orientation;
    AVColorSpace taggedMatrix;
    AVColorRange taggedRange;
    AVChromaLocation taggedSiting;

    Source prepared;
    ScalerHandle scaler; ///< null when the planes are right already but for colour and place
    ColourMap map;
    Siting wanted;
    double shiftX = 0; ///< of the chroma, in chroma samples
    double shiftY = 0;
    PicturePool scaledPool, colouredPool, turnedPool;
    std::vector<std::int32_t> chromaPart; ///< rows of luma's share of chroma, fixed point
    std::vector<float> chromaRows;
};

} // namespace RecordCore::FFmpeg
