#include "RecordCore/Capture/Microphones.h"

#include "RecordCore/Model/RecordingError.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <utility>

namespace RecordCore {

Microphones::Microphones(const SoundBackend& sound, Post toMain) : backend(sound), post(std::move(toMain)) {}

Microphones::~Microphones() {
    stopMeter();
}

void Microphones::select(std::optional<std::string> id) {
    selected = std::move(id);
    if (metering()) {
        stopMeter();
        startMeter();
    }
}

void Microphones::refresh() {
    try {
        listed = backend.microphones();
    } catch (const RecordingError&) {
        listed.clear();
    }
    const auto isChosen = [this](const Device& device) { return device.id == selected; };
    if (selected && std::none_of(listed.begin(), listed.end(), isChosen)) selected.reset();
}

std::optional<Microphones::Device> Microphones::active() const {
    try {
        const std::vector<Device> now = backend.microphones();
        const auto find = [&now](const std::string& id) {
            return std::find_if(now.begin(), now.end(),
                                [&id](const Device& device) { return device.id == id; });
        };
        auto found = selected ? find(*selected) : now.end();
        if (found == now.end()) found = find(backend.defaultMicrophone());
        if (found == now.end()) return {};
        return *found;
    } catch (const RecordingError&) {
        return {};
    }
}

void Microphones::startMeter() {
    if (metering()) return;
    const std::optional<Device> device = active();
    if (!device) return;
    // A value that is still on its way when the meter stops must not move it any more.
    auto run = std::make_shared<bool>();
    SoundStream::Handlers handlers;
    handlers.onSound = [this, toMain = post, watch = std::weak_ptr(run)](const SoundBlock& block) {
        const auto value =
            loudness({SampleBuffer::Format::float32, block.samples.data(), block.samples.size()});
        if (!value) return;
        toMain([this, watch, level = *value] {
            if (!watch.expired()) heard(level);
        });
    };
    try {
        auto fresh = backend.openMicrophone(device->id);
        fresh->start(std::move(handlers));
        stream = std::move(fresh);
        meterRun = std::move(run);
    } catch (const RecordingError&) {
        return;
    }
    if (onChange) onChange();
}

void Microphones::stopMeter() {
    meterRun.reset();
    const bool was = metering();
    if (was) stream->stop();
    stream.reset();
    shown = 0;
    if (was && onChange) onChange();
}

void Microphones::heard(double value) {
    shown = smoothed(shown, value);
    if (onChange) onChange();
}

std::optional<double> Microphones::loudness(const SampleBuffer& buffer) {
    if (!buffer.data || buffer.count == 0) return {};
    double sum = 0;
    switch (buffer.format) {
    case SampleBuffer::Format::float32: {
        const auto* samples = static_cast<const float*>(buffer.data);
        for (std::size_t i = 0; i < buffer.count; ++i)
            sum += static_cast<double>(samples[i]) * static_cast<double>(samples[i]);
        break;
    }
    case SampleBuffer::Format::int16: {
        const auto* samples = static_cast<const std::int16_t*>(buffer.data);
        for (std::size_t i = 0; i < buffer.count; ++i) {
            const double value = samples[i] * (1.0 / 32768);
            sum += value * value;
        }
        break;
    }
    case SampleBuffer::Format::other:
        return {};
    }
    const double rms = std::sqrt(sum / static_cast<double>(buffer.count));
    const double heard = rms > 0.000001 ? rms : 0.000001; // so also when a device delivers no numbers
    return std::clamp((20 * std::log10(heard) + 50) / 50, 0.0, 1.0);
}

double Microphones::smoothed(double level, double heard) {
    return heard > level ? heard : 0.18 * heard + 0.82 * level;
}

} // namespace RecordCore
