#pragma once

#include <cstdint>
#include <string>
#include <vector>

/// A synthetic voice that tells exactly when it says each word.
class Voice {
public:
    struct Word {
        std::string text;
        double start = 0; ///< seconds from the first sample
        double end = 0;
    };

    struct Speech {
        std::vector<float> samples; ///< 48 kHz, one channel, −1…1
        std::vector<Word> words;
    };

    enum class Speaker { slt, rms, awb, kal };

    static Speech say(const std::string& text, Speaker speaker = Speaker::slt);
};
