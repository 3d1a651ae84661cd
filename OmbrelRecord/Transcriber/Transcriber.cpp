#include "OmbrelRecord/Transcriber/Transcriber.h"

#include "OmbrelRecord/AppModel/PlatformText.h"
#include "OmbrelRecord/Transcriber/Language.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

namespace OmbrelRecord {

using namespace RecordCore;

namespace {

constexpr double pieceLength = 50;         ///< seconds
constexpr double leastPiece = 0.2;         ///< seconds; a shorter end is not worth a request
constexpr double leastWord = 0.08;         ///< seconds
constexpr std::int64_t bitrate = 128'000;  ///< of the temporary files; ample for speech
constexpr std::int64_t blockFrames = 4800; ///< sound copied at a time

void stopIfCancelled(const Transcriber::Hooks& hooks) {
    if (hooks.cancel && hooks.cancel->load()) throw RecordingError("cancelled");
}

std::int64_t position(double seconds) {
    return std::llround(seconds * soundRate);
}

/// A row of words between two pauses, by their places in the list, and the stretch of sound that has them.
struct Sentence {
    std::size_t first;
    std::size_t last; ///< one after
    TimeRange range;
};

constexpr double sentencePause = 0.3; ///< seconds; a shorter silence may be part of a word
constexpr double sentenceMargin = 0.5;

std::vector<Sentence> sentences(const std::vector<CaptionWord>& words, double duration) {
    std::vector<Sentence> list;
    for (std::size_t i = 0; i < words.size(); ++i) {
        const double gap = list.empty() ? words[i].start : words[i].start - words[i - 1].end;
        if (list.empty() || gap > sentencePause) {
            const double margin = list.empty() ? sentenceMargin : std::min(sentenceMargin, gap / 2);
            if (!list.empty()) list.back().range.end += margin;
            list.push_back({i, i, {std::max(0.0, words[i].start - margin), 0}});
        }
        list.back().last = i + 1;
        list.back().range.end = words[i].end;
    }
    if (!list.empty()) list.back().range.end = std::min(duration, list.back().range.end + sentenceMargin);
    return list;
}

/// A word as dictionaries have it: in small letters, without punctuation; two where a hyphen joins them.
std::vector<std::string> spokenWords(std::string_view text) {
    std::vector<std::string> parts(1);
    for (const char c : text) {
        const bool letter = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '\'' || (c & 0x80) != 0;
        if (letter)
            parts.back() += c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
        else if ((c == '-' || c == ' ') && !parts.back().empty())
            parts.emplace_back();
    }
    if (parts.back().empty()) parts.pop_back();
    return parts;
}

} // namespace

const std::string Transcriber::noSpeech = "No speech found. Record with Mic on to get captions.";

Transcriber::Failure::Failure(const std::string& message, std::string detail) :
    RecordingError(message), cause(std::move(detail)) {}

std::vector<TimeRange> Transcriber::pieces(double duration) {
    std::vector<TimeRange> list;
    for (int i = 0; i * pieceLength < duration - leastPiece; ++i)
        list.push_back({i * pieceLength, std::min(duration, (i + 1) * pieceLength)});
    return list;
}

Transcriber::Ear Transcriber::open(const std::filesystem::path& recording,
                                   const std::optional<std::string>& language) const {
    if (!engine.authorize())
        throw Failure(fmt::format("Ombrel Record needs Speech Recognition. Allow it in {}.",
                                  PlatformText::speechSettings));

    const std::string wanted = language ? *language : Language::ofUser();
    const auto unavailable = [&](const std::string& detail) {
        return Failure(fmt::format("Speech recognition isn't available for this language on this {}.",
                                   PlatformText::computer),
                       detail);
    };
    Ear ear;
    try {
        ear.recognizer = engine.recognizer(wanted);
    } catch (const RecordingError& error) {
        throw unavailable(error.what());
    }
    if (!ear.recognizer)
        throw unavailable(fmt::format("{} is wanted; available: {}", Language::normalized(wanted),
                                      fmt::join(engine.languages(), ", ")));

    try {
        ear.duration = media.sourceInfo(recording).duration;
        ear.tracks = media.openSound(recording);
    } catch (const RecordingError& error) {
        throw Failure("Couldn't read the recording's sound.", error.what());
    }
    if (ear.tracks.empty())
        throw Failure("This recording has no sound. Turn on Mic before recording to get captions.");
    return ear;
}

std::vector<CaptionWord> Transcriber::words(const std::filesystem::path& recording,
                                            const std::optional<std::string>& language,
                                            const Hooks& hooks) const {
    const Ear ear = open(recording, language);
    std::vector<CaptionWord> all;
    for (const TimeRange& piece : pieces(ear.duration)) {
        stopIfCancelled(hooks);
        const VoiceFile file = exportAudio(*ear.tracks.front(), piece, hooks);
        for (CaptionWord& word : recognize(*ear.recognizer, file.path(), piece.start, hooks))
            all.push_back(std::move(word));
        if (hooks.progress) hooks.progress(piece.end / ear.duration);
    }
    return all;
}

std::vector<CaptionWord> Transcriber::align(const std::filesystem::path& recording,
                                            std::vector<CaptionWord> words,
                                            const std::optional<std::string>& language,
                                            const Hooks& hooks) const {
    const Ear ear = open(recording, language);
    for (const Sentence& sentence : sentences(words, ear.duration)) {
        stopIfCancelled(hooks);
        std::vector<std::string> spoken; // a caption's word may be none, one or several of the recogniser's
        std::vector<std::size_t> counts;
        for (std::size_t i = sentence.first; i < sentence.last; ++i) {
            const std::vector<std::string> parts = spokenWords(words[i].text);
            counts.push_back(parts.size());
            spoken.insert(spoken.end(), parts.begin(), parts.end());
        }
        const VoiceFile file = exportAudio(*ear.tracks.front(), sentence.range, hooks);
        const std::vector<SpeechSegment> found = ear.recognizer->align(file.path(), spoken);
        if (found.size() == spoken.size()) {
            std::size_t at = 0;
            for (std::size_t i = 0; i < counts.size(); at += counts[i++]) {
                if (counts[i] == 0) continue;
                CaptionWord& word = words[sentence.first + i];
                const SpeechSegment& lastPart = found[at + counts[i] - 1];
                word.start = sentence.range.start + found[at].timestamp;
                word.end = std::max(word.start + leastWord,
                                    sentence.range.start + lastPart.timestamp + lastPart.duration);
            }
        }
        if (hooks.progress) hooks.progress(sentence.range.end / ear.duration);
    }
    return words;
}

VoiceFile Transcriber::exportAudio(SoundReader& track, TimeRange piece, const Hooks& hooks) const {
    const std::int64_t begin = position(piece.start);
    const std::int64_t end = position(piece.end);
    bool cancelled = false;
    try {
        VoiceFile file(".m4a");
        const std::unique_ptr<MovieWriter> movie = media.createMovie(file.path(), MovieLayout::privateFilm);
        int number = 0;
        const std::unique_ptr<SoundEncoder> encoder =
            media.makeSoundEncoder(bitrate, [&](const Packet& packet) { movie->write(number, packet); });
        number = movie->addTrack(encoder->description());
        movie->begin();

        std::array<float, blockFrames * soundChannels> block{};
        for (std::int64_t at = begin; at < end && !cancelled; at += blockFrames) {
            const auto frames = static_cast<std::size_t>(std::min(blockFrames, end - at));
            const std::span<float> samples(block.data(), frames * soundChannels);
            track.read(at, samples);
            encoder->encode(samples);
            cancelled = hooks.cancel && hooks.cancel->load();
        }
        if (!cancelled) {
            encoder->finish();
            movie->finish();
            return file;
        }
    } catch (const std::exception& error) {
        throw Failure("Couldn't prepare the sound for captions.", error.what());
    }
    throw RecordingError("cancelled");
}

std::vector<CaptionWord> Transcriber::recognize(SpeechRecognizer& recognizer,
                                                const std::filesystem::path& file, double pieceStart,
                                                const Hooks& hooks) const {
    SpeechRequest request;
    request.file = file;
    request.partialResults = false;
    request.punctuation = true;
    request.onDevice = recognizer.supportsOnDevice();
    const std::vector<SpeechSegment> segments = recognizer.recognize(request, hooks.cancel);
    stopIfCancelled(hooks);

    std::vector<CaptionWord> list;
    for (const SpeechSegment& segment : segments) {
        if (segment.text.empty()) continue;
        CaptionWord word{segment.text, pieceStart + segment.timestamp, 0};
        word.end = word.start + (segment.duration < leastWord ? leastWord : segment.duration);
        list.push_back(std::move(word));
    }
    return list;
}

} // namespace OmbrelRecord
