#pragma once

#include "RecordCore/Media/SoundReader.h"
#include "Tests/Transcriber/Voice.h"

#include <cmath>
#include <string>
#include <vector>

/// Sound in which somebody says something, and when each word is said.
struct Narration {
    std::vector<float> sound;       ///< 48 kHz, one channel
    std::vector<Voice::Word> words; ///< in seconds of the sound

    double seconds() const { return static_cast<double>(sound.size()) / RecordCore::soundRate; }

    void pause(double seconds) {
        sound.resize(sound.size() + static_cast<std::size_t>(std::llround(seconds * RecordCore::soundRate)));
    }

    void say(const std::string& text, Voice::Speaker speaker, float volume = 0.5F) {
        const Voice::Speech speech = Voice::say(text, speaker);
        for (const Voice::Word& word : speech.words)
            words.push_back({word.text, seconds() + word.start, seconds() + word.end});
        for (const float sample : speech.samples)
            sound.push_back(sample * volume);
    }
};
