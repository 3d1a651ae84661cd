#include "OmbrelRecord/Transcriber/Whisper/WhisperEngine.h"

#include "OmbrelRecord/Transcriber/Language.h"
#include "OmbrelRecord/Transcriber/SpeechSound.h"
#include "OmbrelRecord/Transcriber/VoiceFile.h"
#include "OmbrelRecord/Transcriber/Whisper/ChildProcess.h"
#include "RecordCore/Model/AtomicFile.h"
#include "RecordCore/Model/Json.h"
#include "RecordCore/Model/RecordingError.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <fstream>
#include <optional>
#include <thread>
#include <utility>

namespace OmbrelRecord {

using RecordCore::RecordingError;

namespace {

/// The languages that whisper's multilingual models were trained on.
constexpr std::array<std::string_view, 99> trained{
    "en", "zh", "de", "es", "ru", "ko", "fr", "ja", "pt",  "tr", "pl", "ca", "nl", "ar", "sv", "it", "id",
    "hi", "fi", "vi", "he", "uk", "el", "ms", "cs", "ro",  "da", "hu", "ta", "no", "th", "ur", "hr", "bg",
    "lt", "la", "mi", "ml", "cy", "sk", "te", "fa", "lv",  "bn", "sr", "az", "sl", "kn", "et", "mk", "br",
    "eu", "is", "hy", "ne", "mn", "bs", "kk", "sq", "sw",  "gl", "mr", "pa", "si", "km", "sn", "yo", "so",
    "af", "oc", "ka", "be", "tg", "sd", "gu", "am", "yi",  "lo", "uz", "fo", "ht", "ps", "tk", "nn", "mt",
    "sa", "lb", "my", "bo", "tl", "mg", "as", "tt", "haw", "ln", "ha", "ba", "jw", "su"};

/// Models for English alone have a smaller vocabulary than those for all languages (51865 or more).
constexpr std::uint32_t multilingualVocabulary = 51865;

/// The vocabulary of a model file: the number after the format's mark "ggml". None for other files.
std::optional<std::uint32_t> vocabulary(const std::filesystem::path& model) {
    std::error_code failed;
    if (!std::filesystem::is_regular_file(model, failed)) return std::nullopt;
    std::ifstream file(model, std::ios::binary);
    std::array<unsigned char, 8> head{};
    file.read(reinterpret_cast<char*>(head.data()), head.size());
    const auto number = [&head](std::size_t at) {
        return static_cast<std::uint32_t>(head[at]) | static_cast<std::uint32_t>(head[at + 1]) << 8 |
               static_cast<std::uint32_t>(head[at + 2]) << 16 |
               static_cast<std::uint32_t>(head[at + 3]) << 24;
    };
    if (!file || number(0) != 0x67676d6c) return std::nullopt;
    return number(4);
}

/// A WAV file of 16 kHz, one channel, 16 bits (the form that every version of the program reads).
std::string waveFile(const std::vector<std::int16_t>& samples) {
    std::string out;
    const auto put = [&out](std::uint32_t value, int bytes) {
        for (int i = 0; i < bytes; ++i)
            out += static_cast<char>(value >> (8 * i) & 0xff);
    };
    const auto size = static_cast<std::uint32_t>(samples.size() * 2);
    out += "RIFF";
    put(36 + size, 4);
    out += "WAVEfmt ";
    put(16, 4);
    put(1, 2); // plain samples
    put(1, 2); // one channel
    put(SpeechSound::rate, 4);
    put(SpeechSound::rate * 2, 4);
    put(2, 2);
    put(16, 2);
    out += "data";
    put(size, 4);
    for (const std::int16_t sample : samples)
        put(static_cast<std::uint16_t>(sample), 2);
    return out;
}

/// Bytes that are not UTF-8 replaced by '?': a character may be cut in two where a token ends.
std::string validText(std::string_view text) {
    std::string out;
    for (std::size_t i = 0; i < text.size();) {
        const auto lead = static_cast<unsigned char>(text[i]);
        const std::size_t length = lead < 0x80       ? 1
                                   : lead >> 5 == 6  ? 2
                                   : lead >> 4 == 14 ? 3
                                   : lead >> 3 == 30 ? 4
                                                     : 0;
        bool whole = length > 0 && i + length <= text.size();
        for (std::size_t k = 1; whole && k < length; ++k)
            whole = (static_cast<unsigned char>(text[i + k]) & 0xc0) == 0x80;
        out += whole ? text.substr(i, length) : "?";
        i += whole ? length : 1;
    }
    return out;
}

std::size_t characters(std::string_view text) {
    return static_cast<std::size_t>(std::count_if(
        text.begin(), text.end(), [](char c) { return (static_cast<unsigned char>(c) & 0xc0) != 0x80; }));
}

std::vector<std::string> splitWords(const std::string& text) {
    std::vector<std::string> list;
    bool inside = false;
    for (const char c : text) {
        const bool space = c == ' ' || c == '\t' || c == '\n' || c == '\r';
        if (!space && !inside) list.emplace_back();
        if (!space) list.back() += c;
        inside = !space;
    }
    return list;
}

/// Without what describes sounds: "[BLANK_AUDIO]", "(soft music)", notes.
std::vector<SpeechSegment> withoutRemarks(const std::vector<SpeechSegment>& words) {
    constexpr std::size_t longest = 6; // words; a bracket that closes later than that is part of the speech
    std::vector<SpeechSegment> list;
    for (std::size_t i = 0; i < words.size(); ++i) {
        const std::string& text = words[i].text;
        if (text.starts_with("♪")) continue;
        if (text[0] == '[' || text[0] == '(') {
            const char closing = text[0] == '[' ? ']' : ')';
            std::size_t last = i;
            while (last < words.size() && last < i + longest &&
                   words[last].text.find(closing) == std::string::npos)
                ++last;
            if (last < words.size() && last < i + longest) {
                i = last;
                continue;
            }
        }
        list.push_back(words[i]);
    }
    return list;
}

class WhisperRecognizer : public SpeechRecognizer {
public:
    WhisperRecognizer(const RecordCore::MediaBackend& media, WhisperEngine::Settings settings,
                      std::string language) :
        media(media),
        settings(std::move(settings)), language(std::move(language)) {}

    bool supportsOnDevice() const override { return true; }

    std::vector<SpeechSegment> recognize(const SpeechRequest& request,
                                         const std::atomic<bool>* cancel) override {
        const auto tracks = media.openSound(request.file);
        if (tracks.empty()) return {};
        const std::vector<float> sound = SpeechSound::read(*tracks.front());

        const VoiceFile wave(".wav");
        const VoiceFile result(".json");
        RecordCore::writeFileAtomically(wave.path(), waveFile(SpeechSound::quantized(sound, 1)));
        // Segments of one word each; only switches that versions of years ago know as well.
        const unsigned cores = std::max(2U, std::thread::hardware_concurrency());
        const std::filesystem::path base = result.path().parent_path() / result.path().stem();
        const ChildProcess::Result ended = ChildProcess::run(
            settings.program,
            {"-m", settings.model.string(), "-f", wave.path().string(), "-l", language, "-t",
             std::to_string(cores - 1), "-ml", "1", "-sow", "-oj", "-of", base.string()},
            cancel);
        if (cancel && cancel->load()) return {};
        std::error_code ignored;
        if (ended.status != 0 || !std::filesystem::exists(result.path(), ignored))
            throw RecordingError(fmt::format("{}: recognised nothing, status {}: {}",
                                             settings.program.string(), ended.status,
                                             lastLine(ended.messages)));
        return WhisperEngine::words(RecordCore::readFile(result.path()),
                                    static_cast<double>(sound.size()) / SpeechSound::rate);
    }

private:
    static std::string lastLine(const std::string& text) {
        const std::size_t end = text.find_last_not_of("\r\n\t ");
        if (end == std::string::npos) return "no message";
        const std::size_t before = text.find_last_of("\r\n", end);
        const std::size_t begin = before == std::string::npos ? 0 : before + 1;
        return validText(std::string_view(text).substr(begin, end + 1 - begin));
    }

    const RecordCore::MediaBackend& media;
    WhisperEngine::Settings settings;
    std::string language;
};

} // namespace

WhisperEngine::Settings WhisperEngine::Settings::fromEnvironment() {
    const auto variable = [](const char* name) {
        const char* value = std::getenv(name);
        return std::filesystem::path(value ? value : "");
    };
    Settings settings{variable("OMBREL_WHISPER_PROGRAM"), variable("OMBREL_WHISPER_MODEL")};
    if (settings.program.empty()) settings.program = ChildProcess::find("whisper-cli");
    return settings;
}

WhisperEngine::WhisperEngine(const RecordCore::MediaBackend& media, Settings settings) :
    media(media), settings(std::move(settings)) {}

std::vector<std::string> WhisperEngine::languages() const {
    std::error_code ignored;
    if (!std::filesystem::is_regular_file(settings.program, ignored)) return {};
    const auto words = vocabulary(settings.model);
    if (!words) return {};
    if (*words < multilingualVocabulary) return {"en"};
    return {trained.begin(), trained.end()};
}

std::unique_ptr<SpeechRecognizer> WhisperEngine::recognizer(const std::string& language) const {
    const auto match = Language::match(language, languages());
    if (!match) return nullptr;
    return std::make_unique<WhisperRecognizer>(media, settings, *match);
}

std::vector<SpeechSegment> WhisperEngine::words(std::string_view json, double length) {
    const RecordCore::Json root = RecordCore::parseJson(validText(json));
    const auto segments = root.is_object() ? root.find("transcription") : root.end();
    if (segments == root.end() || !segments->is_array())
        throw RecordingError("what the speech recogniser wrote has no \"transcription\"");

    std::vector<SpeechSegment> list;
    double earliest = 0;
    for (const RecordCore::Json& segment : *segments) {
        std::string text;
        double from = 0;
        double to = 0;
        RecordCore::JsonReading::required(segment, "text", text);
        RecordCore::JsonReading::required(segment.value("offsets", RecordCore::Json()), "from", from);
        RecordCore::JsonReading::required(segment.value("offsets", RecordCore::Json()), "to", to);
        from = std::clamp(from / 1000, earliest, std::max(earliest, length));
        to = std::clamp(to / 1000, from, std::max(from, length));

        const std::vector<std::string> words = splitWords(text);
        std::size_t total = 0;
        for (const std::string& word : words)
            total += characters(word);
        std::size_t before = 0;
        for (const std::string& word : words) {
            const double start =
                from + (to - from) * static_cast<double>(before) / static_cast<double>(total);
            before += characters(word);
            const double end = from + (to - from) * static_cast<double>(before) / static_cast<double>(total);
            list.push_back({word, start, end - start});
        }
        earliest = from;
    }
    return withoutRemarks(list);
}

} // namespace OmbrelRecord
