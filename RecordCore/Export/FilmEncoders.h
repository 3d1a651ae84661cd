#pragma once

#include "RecordCore/Export/FilmRanges.h"
#include "RecordCore/Media/MediaBackend.h"

#include <atomic>
#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace RecordCore {

/// Opens the encoders of a film: one for each of its ranges where they can be joined, else one for all. In
/// hardware where that is wanted and opens; it makes the whole film. `make` may be called from several
/// threads.
class FilmEncoders {
public:
    using RangeSink = std::function<void(std::size_t range, const Packet&)>;

    /// `film` describes all of it, with its forecast. The first encoder is opened at once: what comes after
    /// depends on what it is. `hardwareFailed` becomes true when one in hardware opened and then fails at its
    /// work. Throws RecordingError.
    FilmEncoders(const MediaBackend& media, const VideoSettings& film, int keysPerRange, RangeSink sink,
                 std::atomic<bool>& hardwareFailed);

    const std::vector<FilmRange>& ranges() const { return parts; }
    const StreamDescription& description() const { return stream; }
    const std::string& name() const { return encoderName; }
    bool hardware() const { return settings.hardware; }

    /// Once for each range.
    std::unique_ptr<VideoEncoder> make(std::size_t range);

private:
    std::unique_ptr<VideoEncoder> openFirst();
    std::unique_ptr<VideoEncoder> open(std::size_t range);

    const MediaBackend& media;
    VideoSettings settings; ///< of the whole film
    RangeSink sink;
    double forecast = 0; ///< of the whole film
    std::vector<FilmRange> parts;
    std::unique_ptr<VideoEncoder> first; ///< until it is asked for
    StreamDescription stream;
    std::string encoderName;
    std::atomic<bool>& hardwareFailed;
};

} // namespace RecordCore
