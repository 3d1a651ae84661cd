#include "OmbrelRecord/Entry/SpeechBackends.h"

#include "OmbrelRecord/Transcriber/PocketSphinx/PocketSphinxEngine.h"
#include "OmbrelRecord/Transcriber/SpeechEngines.h"
#include "OmbrelRecord/Transcriber/Whisper/WhisperEngine.h"

#include <utility>

namespace OmbrelRecord {

std::unique_ptr<SpeechEngine> makeSpeechEngine(const RecordCore::MediaBackend& media) {
    std::vector<std::unique_ptr<SpeechEngine>> engines;
    engines.push_back(std::make_unique<WhisperEngine>(media, WhisperEngine::Settings::fromEnvironment()));
    engines.push_back(std::make_unique<PocketSphinxEngine>(media, PocketSphinxEngine::standardFolders()));
    return std::make_unique<SpeechEngines>(std::move(engines));
}

} // namespace OmbrelRecord
