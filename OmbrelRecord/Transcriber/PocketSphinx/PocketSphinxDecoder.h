#pragma once

#include "OmbrelRecord/Transcriber/PocketSphinx/PocketSphinxEngine.h"
#include "OmbrelRecord/Transcriber/SpeechRecognizer.h"

#include <cstdint>
#include <memory>
#include <span>
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

private:
    struct Release {
        void operator()(ps_decoder_s* decoder) const;
    };
    std::unique_ptr<ps_decoder_s, Release> decoder;
};

} // namespace OmbrelRecord
