#pragma once

#include "OmbrelRecord/Transcriber/SpeechRecognizer.h"

#include <memory>
#include <vector>

namespace OmbrelRecord {

/// Several engines as one: each language is recognised by the first engine that has it, so the best engine
/// comes first.
class SpeechEngines : public SpeechEngine {
public:
    explicit SpeechEngines(std::vector<std::unique_ptr<SpeechEngine>> engines);

    std::string name() const override;
    /// False when all of them are refused.
    bool authorize() const override;
    /// Without those for which an earlier engine would be taken anyway.
    std::vector<std::string> languages() const override;
    std::unique_ptr<SpeechRecognizer> recognizer(const std::string& language) const override;

private:
    std::vector<std::unique_ptr<SpeechEngine>> engines;
};

} // namespace OmbrelRecord
