#include "OmbrelRecord/Transcriber/SpeechEngines.h"

#include "OmbrelRecord/Transcriber/Language.h"

#include <algorithm>
#include <utility>

namespace OmbrelRecord {

SpeechEngines::SpeechEngines(std::vector<std::unique_ptr<SpeechEngine>> engines) :
    engines(std::move(engines)) {}

std::string SpeechEngines::name() const {
    std::string names;
    for (const auto& engine : engines)
        names += (names.empty() ? "" : ", ") + engine->name();
    return names;
}

bool SpeechEngines::authorize() const {
    return engines.empty() || std::any_of(engines.begin(), engines.end(),
                                          [](const auto& engine) { return engine->authorize(); });
}

std::vector<std::string> SpeechEngines::languages() const {
    std::vector<std::string> list;
    for (const auto& engine : engines) {
        const std::vector<std::string> earlier = list;
        for (std::string& language : engine->languages())
            if (!Language::match(language, earlier)) list.push_back(std::move(language));
    }
    return list;
}

std::unique_ptr<SpeechRecognizer> SpeechEngines::recognizer(const std::string& language) const {
    for (const auto& engine : engines)
        if (auto recognizer = engine->recognizer(language)) return recognizer;
    return nullptr;
}

} // namespace OmbrelRecord
