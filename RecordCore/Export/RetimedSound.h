#pragma once

#include "RecordCore/Export/Timeline.h"
#include "RecordCore/Media/SoundReader.h"
#include "RecordCore/Media/TimeStretcher.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

namespace RecordCore {

/// The film's sound: all tracks of the source mixed, sped up and slowed down with the picture, the pitch
/// kept. Speech faster than double speed is hard to follow and soon mere babble: the level falls with the
/// speed, and from fourfold on (or below half) only a quiet bed remains. Every piece begins on the very
/// sample at which its picture does; pieces are crossfaded, so that joints don't click. Memory stays bounded
/// however long the recording. One thread at a time.
class RetimedSound {
public:
    /// At most `longestStretch` output seconds are time-stretched as a whole: the longer, the smoother; the
    /// shorter, the sooner a `read` from anywhere within returns.
    RetimedSound(const Composition& composition, std::vector<std::unique_ptr<SoundReader>> tracks,
                 std::unique_ptr<TimeStretcher> stretcher, double longestStretch = 10);

    /// Goes on as the sound of another film of the same recording, with its tracks where they stand.
    void retime(const Composition& composition);

    /// Length of the film in sample positions.
    std::int64_t length() const { return total; }

    /// Fills `out` (2 floats per position) from `position` on; silence beyond the end. Any position may be
    /// asked for; going on where the last call ended is cheapest.
    void read(std::int64_t position, std::span<float> out);

    /// Makes a `read` that is under way return soon, with sound of no use. From any thread; for good.
    void interrupt() { stretcher->interrupt(); }

private:
    /// A stretch that is read or time-stretched as a whole.
    struct Section {
        std::int64_t start = 0;       ///< output position
        std::int64_t end = 0;         ///< output position; its sound goes on for a crossfade
        std::int64_t sourceStart = 0; ///< source position
        double speed = 1;
        float gain = 1;
    };
    struct Rendered {
        std::size_t section = SIZE_MAX;
        std::vector<float> samples;
    };

    void addSections(const Composition::Piece& piece);
    /// Adds a section's sound over [from, to) to `out`, which begins at `from`, faded in and out.
    void mixSection(std::size_t index, std::int64_t from, std::int64_t to, std::span<float> out);
    std::span<const float> samplesOf(std::size_t index, std::int64_t from, std::int64_t to);
    const std::vector<float>& stretched(std::size_t index);
    void readSource(std::int64_t position, std::span<float> out);

    std::vector<std::unique_ptr<SoundReader>> tracks;
    std::unique_ptr<TimeStretcher> stretcher;
    double longestStretch;
    std::vector<Section> sections; ///< in output order
    std::int64_t total = 0;
    std::array<Rendered, 2> rendered; ///< the stretched sections in use: one and the one fading out
    std::size_t oldest = 0;
    std::vector<float> scratch;
    std::vector<float> trackSamples;
};

} // namespace RecordCore
