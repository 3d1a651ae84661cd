#pragma once

#include "RecordCore/Media/StreamDescription.h"
#include "RecordCore/Model/PictureView.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace RecordCore {

/// What is known of a film's frame before any is composed.
struct FrameForecast {
    float cost = 1; ///< what it will about take, beside the others
    /// Steps by which its quantiser should differ from the others': what moves fast is gone at once, what
    /// stands is looked at, and others build upon it.
    int offset = 0;
};

/// The part of a film that an encoder makes; others make the rest. The parts follow each other without gaps,
/// and each begins with a key frame.
struct FilmPart {
    std::int64_t begin = 0; ///< ticks
    std::int64_t end = 0;   ///< ticks
    double share = 1;       ///< of what the whole film will cost, as forecast
};

/// What encoding some frames of a film has taken: what must be known of the others to keep the film's rate.
struct EncodingTally {
    double seconds = 0; ///< of film
    double asked = 0;   ///< forecast of the frames taken, in seconds of an even film
    double coded = 0;   ///< of these, of those that have come out
    double cost = 0;    ///< what those that came out took, whatever the quantiser
    double bits = 0;
    int quantiser = 0; ///< in force at the end of them; 0: there were none

    EncodingTally& operator+=(const EncodingTally& later) {
        seconds += later.seconds;
        asked += later.asked;
        coded += later.coded;
        cost += later.cost;
        bits += later.bits;
        if (later.quantiser != 0) quantiser = later.quantiser;
        return *this;
    }
    bool operator==(const EncodingTally&) const = default;
};

/// What an encoder is to make. The film is always tagged BT.709, video range.
struct VideoSettings {
    Codec codec = Codec::h264;
    int width = 0;  ///< even
    int height = 0; ///< even
    TimeBase timeBase{1, 60};
    double frameRate = 60;    ///< expected rate
    std::int64_t bitrate = 0; ///< average, bits per second
    /// About where a film ends, in ticks of the time base, so that its average bit rate can be kept;
    /// 0: not known.
    std::int64_t expectedEnd = 0;
    /// Where encoders of their own make the parts of a film (see VideoEncoder::makesParts); none: one makes
    /// all.
    std::optional<FilmPart> part;
    std::vector<FrameForecast> forecast; ///< of each of the part's frames; empty: nothing is known
    int keyInterval = 120;               ///< most frames from key frame to key frame
    bool realTime = false;               ///< low delay and no reordering (capture), else best quality (film)
    /// Take a hardware encoder or none: making the encoder throws where no such one opens at this size.
    /// Off, a software encoder is made.
    bool hardware = false;
    std::string preset;     ///< the encoder's own preset name; empty: the default for the use
    int threads = 0;        ///< 0: as many as suit the machine
    bool freeStills = true; ///< film in H.264: write repeated frames without asking the encoder
};

/// What the caller knows about a frame; everything is optional.
struct FrameHints {
    bool keyFrame = false; ///< make this a key frame
    /// One byte per 16×16 macroblock, row by row, not 0 where the picture may differ from the frame before;
    /// empty: unknown.
    std::span<const std::uint8_t> changedBlocks;
};

/// Encodes pictures into packets that go to the sink given when the encoder was made. One thread at a time.
/// Throws RecordingError.
class VideoEncoder {
public:
    virtual ~VideoEncoder() = default;

    /// Complete from the start (parameter sets included).
    virtual const StreamDescription& description() const = 0;

    /// What encodes, for the log: "libx264 superfast", "hevc_vaapi" …
    virtual std::string name() const { return {}; }

    /// The picture is copied or consumed before the call returns. Times rise strictly. In real time the
    /// frame's packet is delivered before the call returns, with duration 0 (see MovieWriter::setEnd).
    virtual void encode(const PlanarView& picture, std::int64_t pts, const FrameHints& hints = {}) = 0;

    /// A frame that equals the one before, to the pixel; `picture` is that one, still there.
    virtual void repeat(const PlanarView& picture, std::int64_t pts) = 0;

    /// Delivers what is still held back. `endPts` is where the last frame's time ends.
    virtual void finish(std::int64_t endPts) = 0;

    /// Whether several such encoders, alike but for their part, can make the parts of one film: all describe
    /// the same stream, and what one makes depends on nothing but its pictures and what it was told.
    virtual bool makesParts() const { return false; }
    /// What the frames so far have taken.
    virtual EncodingTally tally() const { return {}; }
    /// What is known of the film's other parts. They are reckoned with from here on.
    virtual void setElsewhere(const EncodingTally& others) { static_cast<void>(others); }
};

} // namespace RecordCore
