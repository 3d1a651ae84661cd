#pragma once

#include "OmbrelRecord/Transcriber/PocketSphinx/PocketSphinxEngine.h"
#include "OmbrelRecord/Transcriber/SpeechRecognizer.h"

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

struct ps_decoder_s;

namespace OmbrelRecord {

/// Owner of one PocketSphinx decoder with its model loaded. One thread at a time.
class PocketSphinxDecoder {
public:
    /// Throws RecordingError that tells what the library found wrong with the model.
    explicit PocketSphinxDecoder(const PocketSphinxEngine::Model& model);
    ~PocketSphinxDecoder();
    PocketSphinxDecoder(const PocketSphinxDecoder&) = delete;
    PocketSphinxDecoder& operator=(const PocketSphinxDecoder&) = delete;

    /// Recognises 16 kHz sound as one utterance; times from its first sample. Empty when nothing was
    /// understood.
    std::vector<SpeechSegment> decode(std::span<const std::int16_t> samples);

    /// Where these words of the dictionary, and nothing else, are said; empty when a word is not in it or the
    /// sound does not fit them.
    std::vector<SpeechSegment> align(std::span<const std::int16_t> samples,
                                     const std::vector<std::string>& words);

private:
    std::vector<SpeechSegment> segments(std::span<const std::int16_t> samples);

    struct Release {
        void operator()(ps_decoder_s* decoder) const;
    };
    std::unique_ptr<ps_decoder_s, Release> decoder;
    std::string usual; ///< the name of the search with the language model
};

} // namespace OmbrelRecord
