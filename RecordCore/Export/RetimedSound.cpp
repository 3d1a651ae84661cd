#include "RecordCore/Export/RetimedSound.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace RecordCore {

namespace {

constexpr std::int64_t fade = soundRate * 20 / 1000; ///< positions over which one piece passes into the next
constexpr double longestInput = 20;                  ///< source seconds stretched at a time
constexpr double shortestStretch = 0.25;             ///< output seconds
constexpr double bedLevel = -24;                     ///< decibels

std::int64_t position(double seconds) {
    return std::llround(seconds * soundRate);
}

/// Full level up to double speed, the bed from fourfold speed on and below half; in between by the octave.
float gainAt(double speed) {
    double decibels = 0;
    if (speed < 0.5 || speed >= 4)
        decibels = bedLevel;
    else if (speed > 2)
        decibels = bedLevel * (std::log2(speed) - 1);
    return static_cast<float>(std::pow(10, decibels / 20));
}

/// Lets nothing beyond ±1 and rounds off what comes near it; quiet sound passes unchanged.
float limited(float sample) {
    constexpr float knee = 0.8F;
    const float size = std::abs(sample);
    if (size <= knee) return sample;
    return std::copysign(knee + (1 - knee) * std::tanh((size - knee) / (1 - knee)), sample);
}

std::size_t floats(std::int64_t positions) {
    return static_cast<std::size_t>(positions) * soundChannels;
}

} // namespace

RetimedSound::RetimedSound(const Composition& composition, std::vector<std::unique_ptr<SoundReader>> tracks,
                           std::unique_ptr<TimeStretcher> stretcher, double longestStretch) :
    tracks(std::move(tracks)),
    stretcher(std::move(stretcher)), longestStretch(std::max(longestStretch, shortestStretch)) {
    retime(composition);
}

void RetimedSound::retime(const Composition& composition) {
    sections.clear();
    for (Rendered& one : rendered)
        one.section = SIZE_MAX;
    total = position(composition.duration);
    for (const Composition::Piece& piece : composition.screen)
        addSections(piece);
}

void RetimedSound::addSections(const Composition::Piece& piece) {
    const bool asRecorded = piece.speed == 1;
    const double length = piece.output.length();
    const double most = std::clamp(longestInput / piece.speed, shortestStretch, longestStretch);
    const double count = asRecorded ? 1 : std::max(1.0, std::ceil(length / most));
    for (double i = 0; i < count; ++i) {
        // Each place is computed from the piece's own, so that nothing adds up.
        const double from = length * (i / count);
        const double to = length * ((i + 1) / count);
        Section section;
        section.start = position(piece.output.start + from);
        section.end = position(piece.output.start + to);
        section.sourceStart = position(piece.source.start + from * piece.speed);
        section.speed = piece.speed;
        section.gain = gainAt(piece.speed);
        if (section.end > section.start) sections.push_back(section);
    }
}

void RetimedSound::read(std::int64_t from, std::span<float> out) {
    std::fill(out.begin(), out.end(), 0.0F);
    const std::int64_t to = from + static_cast<std::int64_t>(out.size() / soundChannels);
    // The first section that is heard, its fading tail included, at or after `from`.
    auto index = static_cast<std::size_t>(
        std::partition_point(sections.begin(), sections.end(),
                             [&](const Section& section) { return section.end + fade <= from; }) -
        sections.begin());
    for (; index < sections.size() && sections[index].start < to; ++index) {
        const bool last = index + 1 == sections.size();
        const std::int64_t begin = std::max(from, sections[index].start);
        const std::int64_t end = std::min(to, sections[index].end + (last ? 0 : fade));
        if (begin < end)
            mixSection(index, begin, end, out.subspan(floats(begin - from), floats(end - begin)));
    }
}

void RetimedSound::mixSection(std::size_t index, std::int64_t from, std::int64_t to, std::span<float> out) {
    const Section& section = sections[index];
    const std::span<const float> samples = samplesOf(index, from, to);
    // What begins with the film and what ends with the recording needs no fade.
    const bool fadesIn = index > 0 || section.sourceStart > 0;
    // The last one fades within itself, the others while the next fades in.
    const bool last = index + 1 == sections.size();
    const std::int64_t fadeOutEnd = last ? section.end : section.end + fade;
    for (std::int64_t at = from; at < to; ++at) {
        float level = section.gain;
        if (fadesIn && at - section.start < fade)
            level *= static_cast<float>(at - section.start) / static_cast<float>(fade);
        if (fadeOutEnd - at < fade) level *= static_cast<float>(fadeOutEnd - at) / static_cast<float>(fade);
        for (std::size_t channel = 0; channel < soundChannels; ++channel) {
            const std::size_t place = floats(at - from) + channel;
            out[place] += level * samples[place];
        }
    }
}

std::span<const float> RetimedSound::samplesOf(std::size_t index, std::int64_t from, std::int64_t to) {
    const Section& section = sections[index];
    if (section.speed != 1)
        return std::span(stretched(index)).subspan(floats(from - section.start), floats(to - from));
    scratch.resize(floats(to - from));
    readSource(section.sourceStart + (from - section.start), scratch);
    return scratch;
}

const std::vector<float>& RetimedSound::stretched(std::size_t index) {
    for (const Rendered& one : rendered)
        if (one.section == index) return one.samples;

    const Section& section = sections[index];
    const std::int64_t outputFrames = section.end - section.start + fade;
    const auto inputFrames =
        std::max<std::int64_t>(std::llround(static_cast<double>(outputFrames) * section.speed), 1);
    std::vector<float> input(floats(inputFrames));
    readSource(section.sourceStart, input);

    Rendered& place = rendered[oldest];
    oldest = 1 - oldest;
    place.samples = stretcher->stretch(input, outputFrames);
    place.section = index;
    return place.samples;
}

void RetimedSound::readSource(std::int64_t from, std::span<float> out) {
    std::fill(out.begin(), out.end(), 0.0F);
    if (tracks.size() == 1) {
        tracks.front()->read(from, out);
        return;
    }
    trackSamples.resize(out.size());
    for (const auto& track : tracks) {
        track->read(from, trackSamples);
        for (std::size_t i = 0; i < out.size(); ++i)
            out[i] += trackSamples[i];
    }
    std::transform(out.begin(), out.end(), out.begin(), limited);
}

} // namespace RecordCore
