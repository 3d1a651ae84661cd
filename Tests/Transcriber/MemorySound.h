#pragma once

#include "RecordCore/Media/SoundReader.h"

#include <functional>
#include <utility>

/// A sound track that is computed: `sample(position, channel)` within 0…length.
class MemorySound : public RecordCore::SoundReader {
public:
    using Sample = std::function<double(std::int64_t, int)>;

    MemorySound(std::int64_t length, Sample sample) : length(length), sample(std::move(sample)) {}

    std::int64_t end() const override { return length; }

    void read(std::int64_t position, std::span<float> out) override {
        for (std::size_t i = 0; i < out.size(); ++i) {
            const std::int64_t at = position + static_cast<std::int64_t>(i / 2);
            const bool inside = at >= 0 && at < length;
            out[i] = inside ? static_cast<float>(sample(at, static_cast<int>(i % 2))) : 0;
        }
    }

private:
    std::int64_t length;
    Sample sample;
};
