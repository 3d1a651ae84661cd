#include "OmbrelRecord/Entry/SpeechBackends.h"

#include "OmbrelRecord/Entry/Module.h"
#include "OmbrelRecord/Entry/Modules/Modules.h"
#include "OmbrelRecord/Transcriber/SpeechEngines.h"
#include "OmbrelRecord/Transcriber/Whisper/WhisperEngine.h"

#include <mutex>
#include <utility>

namespace OmbrelRecord {

namespace {

/// Stands in for the engine of the speech module until it is asked something.
class LaterSpeech final : public SpeechEngine {
public:
    explicit LaterSpeech(const RecordCore::MediaBackend& media) : media(media) {}

    std::string name() const override { return engine().name(); }
    bool authorize() const override { return engine().authorize(); }
    std::vector<std::string> languages() const override { return engine().languages(); }
    std::unique_ptr<SpeechRecognizer> recognizer(const std::string& language) const override {
        return engine().recognizer(language);
    }

private:
    const SpeechEngine& engine() const {
        const std::lock_guard lock(mutex);
        if (!made) made = module<Modules::Speech>().speech(media);
        return *made;
    }

    const RecordCore::MediaBackend& media;
    mutable std::mutex mutex;
    mutable std::unique_ptr<SpeechEngine> made; ///< guarded by the mutex
};

} // namespace

std::unique_ptr<SpeechEngine> makeSpeechEngine(const RecordCore::MediaBackend& media) {
    std::vector<std::unique_ptr<SpeechEngine>> engines;
    engines.push_back(std::make_unique<WhisperEngine>(media, WhisperEngine::Settings::fromEnvironment()));
    engines.push_back(std::make_unique<LaterSpeech>(media));
    return std::make_unique<SpeechEngines>(std::move(engines));
}

} // namespace OmbrelRecord
