#include "Tests/Transcriber/Voice.h"

#include <flite/flite.h>

#include <cmath>
#include <memory>
#include <numbers>
#include <stdexcept>

extern "C" {
cst_voice* register_cmu_us_slt(const char*);
cst_voice* register_cmu_us_rms(const char*);
cst_voice* register_cmu_us_awb(const char*);
cst_voice* register_cmu_us_kal16(const char*);
}

namespace {

cst_voice* voiceOf(Voice::Speaker speaker) {
    static const int initialised = flite_init();
    static_cast<void>(initialised);
    switch (speaker) {
    case Voice::Speaker::slt: {
        static cst_voice* const voice = register_cmu_us_slt(nullptr);
        return voice;
    }
    case Voice::Speaker::rms: {
        static cst_voice* const voice = register_cmu_us_rms(nullptr);
        return voice;
    }
    case Voice::Speaker::awb: {
        static cst_voice* const voice = register_cmu_us_awb(nullptr);
        return voice;
    }
    case Voice::Speaker::kal:
        break;
    }
    static cst_voice* const voice = register_cmu_us_kal16(nullptr);
    return voice;
}

/// Three samples for each one, by a sinc under a Hann window.
std::vector<float> tripled(const short* samples, int count) {
    constexpr int reach = 16;
    std::vector<float> out;
    for (int i = 0; i < count * 3; ++i) {
        double sum = 0;
        for (int k = i / 3 - reach; k <= i / 3 + reach; ++k) {
            if (k < 0 || k >= count) continue;
            const double x = std::numbers::pi * (i / 3.0 - k);
            const double window = 0.5 + 0.5 * std::cos(x / (reach + 1));
            sum += samples[k] / 32768.0 * window * (std::abs(x) < 1e-9 ? 1 : std::sin(x) / x);
        }
        out.push_back(static_cast<float>(sum));
    }
    return out;
}

} // namespace

Voice::Speech Voice::say(const std::string& text, Speaker speaker) {
    struct Release {
        void operator()(cst_utterance* utterance) const { delete_utterance(utterance); }
    };
    const std::unique_ptr<cst_utterance, Release> utterance(flite_synth_text(text.c_str(), voiceOf(speaker)));
    const cst_wave* wave = utt_wave(utterance.get());
    if (!wave || wave->sample_rate != 16000) throw std::runtime_error("the voice said nothing at 16 kHz");

    Speech speech;
    speech.samples = tripled(wave->samples, wave->num_samples);
    for (cst_item* word = relation_head(utt_relation(utterance.get(), "Word")); word;
         word = item_next(word)) {
        Word spoken{item_feat_string(word, "name"), -1, 0};
        // A word is made of syllables, those of sounds; a sound knows its end and the one before it.
        for (cst_item* syllable = item_daughter(item_as(word, "SylStructure")); syllable;
             syllable = item_next(syllable))
            for (cst_item* sound = item_daughter(syllable); sound; sound = item_next(sound)) {
                const cst_item* segment = item_as(sound, "Segment");
                const cst_item* before = item_prev(segment);
                if (spoken.start < 0)
                    spoken.start = before ? static_cast<double>(item_feat_float(before, "end")) : 0;
                spoken.end = static_cast<double>(item_feat_float(segment, "end"));
            }
        if (spoken.start >= 0) speech.words.push_back(std::move(spoken));
    }
    return speech;
}
