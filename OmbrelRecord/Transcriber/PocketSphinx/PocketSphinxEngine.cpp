#include "OmbrelRecord/Transcriber/PocketSphinx/PocketSphinxEngine.h"

#include "OmbrelRecord/Transcriber/Language.h"
#include "OmbrelRecord/Transcriber/PocketSphinx/PocketSphinxDecoder.h"
#include "OmbrelRecord/Transcriber/SpeechSound.h"
#include "OmbrelRecord/Transcriber/Utterances.h"

#include <algorithm>
#include <cstdlib>
#include <optional>
#include <string_view>
#include <system_error>
#include <utility>

namespace OmbrelRecord {

namespace {

namespace fs = std::filesystem;

constexpr double wantedLevel = 0.1; ///< of loud speech, full scale 1
constexpr double mostGain = 100;    ///< what is quieter than that is noise

/// The entries of a folder in the order of their names; none when it cannot be read.
std::vector<fs::path> entries(const fs::path& folder) {
    std::error_code ignored;
    std::vector<fs::path> list;
    for (auto it = fs::directory_iterator(folder, ignored); !ignored && it != fs::directory_iterator();
         it.increment(ignored))
        list.push_back(it->path());
    std::sort(list.begin(), list.end());
    return list;
}

std::optional<PocketSphinxEngine::Model> modelIn(const fs::path& folder) {
    std::error_code ignored;
    PocketSphinxEngine::Model model;
    for (const fs::path& entry : entries(folder)) {
        const std::string name = entry.filename().string();
        const bool sounds = name.find("-phone") != std::string::npos; // a model of sounds, not of words
        if (model.acoustic.empty() && fs::exists(entry / "mdef", ignored))
            model.acoustic = entry;
        else if (model.dictionary.empty() && (name.ends_with(".dict") || name.ends_with(".dic")))
            model.dictionary = entry;
        else if (model.language.empty() && !sounds && (name.ends_with(".lm.bin") || name.ends_with(".lm")))
            model.language = entry;
    }
    const bool whole = !model.acoustic.empty() && !model.dictionary.empty() && !model.language.empty();
    return whole ? std::optional(model) : std::nullopt;
}

/// Adds noise of one unit, the same every time: digital silence has no logarithm.
void unsilence(std::vector<std::int16_t>& samples) {
    std::uint32_t state = 1;
    for (std::int16_t& sample : samples) {
        state = state * 1664525U + 1013904223U;
        const int step = static_cast<int>(state >> 30) - 1; // −1…2
        sample = static_cast<std::int16_t>(std::clamp(sample + step, -32768, 32767));
    }
}

class PocketSphinxRecognizer : public SpeechRecognizer {
public:
    PocketSphinxRecognizer(const RecordCore::MediaBackend& media, const PocketSphinxEngine::Model& model) :
        media(media), decoder(model) {}

    bool supportsOnDevice() const override { return true; }

    std::vector<SpeechSegment> recognize(const SpeechRequest& request,
                                         const std::atomic<bool>* cancel) override {
        const auto tracks = media.openSound(request.file);
        if (tracks.empty()) return {};
        const std::vector<float> sound = SpeechSound::read(*tracks.front());
        const double level = speechLevel(sound);
        if (!(level > wantedLevel / mostGain / 10)) return {};
        const auto gain = static_cast<float>(std::min(wantedLevel / level, mostGain));

        std::vector<SpeechSegment> all;
        for (const Utterance& utterance : findUtterances(sound)) {
            if (cancel && cancel->load()) break;
            std::vector<std::int16_t> samples = SpeechSound::quantized(
                std::span(sound).subspan(utterance.begin, utterance.end - utterance.begin), gain);
            unsilence(samples);
            const double offset = static_cast<double>(utterance.begin) / SpeechSound::rate;
            for (SpeechSegment& segment : decoder.decode(samples)) {
                segment.timestamp += offset;
                all.push_back(std::move(segment));
            }
        }
        return all;
    }

    std::vector<SpeechSegment> align(const fs::path& file, const std::vector<std::string>& words) override {
        const auto tracks = media.openSound(file);
        if (tracks.empty() || words.empty()) return {};
        const std::vector<float> sound = SpeechSound::read(*tracks.front());
        const double level = speechLevel(sound);
        if (!(level > wantedLevel / mostGain / 10)) return {};
        std::vector<std::int16_t> samples =
            SpeechSound::quantized(sound, static_cast<float>(std::min(wantedLevel / level, mostGain)));
        unsilence(samples);
        return decoder.align(samples, words);
    }

private:
    const RecordCore::MediaBackend& media;
    PocketSphinxDecoder decoder;
};

} // namespace

PocketSphinxEngine::PocketSphinxEngine(const RecordCore::MediaBackend& media, std::vector<fs::path> folders) :
    media(media), folders(std::move(folders)) {}

std::vector<fs::path> PocketSphinxEngine::standardFolders() {
    const auto variable = [](const char* name) {
        const char* value = std::getenv(name);
        return std::string(value ? value : "");
    };
    std::string data = variable("XDG_DATA_HOME");
    if (data.empty() && !variable("HOME").empty()) data = variable("HOME") + "/.local/share";
    std::string shared = variable("XDG_DATA_DIRS");
    if (shared.empty()) shared = "/usr/local/share:/usr/share";

    std::vector<fs::path> list;
    for (std::string_view rest = data + ":" + shared; !rest.empty();) {
        const std::size_t end = std::min(rest.find(':'), rest.size());
        // What is not absolute is to be ignored (XDG base directories).
        if (rest.starts_with('/')) list.push_back(fs::path(rest.substr(0, end)) / "pocketsphinx" / "model");
        rest.remove_prefix(std::min(end + 1, rest.size()));
    }
    return list;
}

std::map<std::string, PocketSphinxEngine::Model> PocketSphinxEngine::models() const {
    std::map<std::string, Model> found;
    for (const fs::path& folder : folders)
        for (const fs::path& entry : entries(folder))
            if (auto model = modelIn(entry))
                found.try_emplace(Language::normalized(entry.filename().string()), std::move(*model));
    return found;
}

std::vector<std::string> PocketSphinxEngine::languages() const {
    std::vector<std::string> list;
    for (const auto& [language, model] : models())
        list.push_back(language);
    return list;
}

std::unique_ptr<SpeechRecognizer> PocketSphinxEngine::recognizer(const std::string& language) const {
    const std::map<std::string, Model> available = models();
    const auto match = Language::match(language, languages());
    if (!match) return nullptr;
    return std::make_unique<PocketSphinxRecognizer>(media, available.at(*match));
}

} // namespace OmbrelRecord
