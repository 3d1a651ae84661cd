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

std::vector<CaptionWord> Transcriber::words(const std::filesystem::path& recording,
                                            const std::optional<std::string>& language,
                                            const Hooks& hooks) const {
    if (!engine.authorize())
        throw Failure(fmt::format("Ombrel Record needs Speech Recognition. Allow it in {}.",
                                  PlatformText::speechSettings));

    const std::string wanted = language ? *language : Language::ofUser();
    const auto unavailable = [&](const std::string& detail) {
        return Failure(fmt::format("Speech recognition isn't available for this language on this {}.",
                                   PlatformText::computer),
                       detail);
    };
    std::unique_ptr<SpeechRecognizer> recognizer;
    try {
        recognizer = engine.recognizer(wanted);
    } catch (const RecordingError& error) {
        throw unavailable(error.what());
    }
    if (!recognizer)
        throw unavailable(fmt::format("{} is wanted; available: {}", Language::normalized(wanted),
                                      fmt::join(engine.languages(), ", ")));

    double duration = 0;
    std::vector<std::unique_ptr<SoundReader>> tracks;
    try {
        duration = media.sourceInfo(recording).duration;
        tracks = media.openSound(recording);
    } catch (const RecordingError& error) {
        throw Failure("Couldn't read the recording's sound.", error.what());
    }
    if (tracks.empty())
        throw Failure("This recording has no sound. Turn on Mic before recording to get captions.");

    std::vector<CaptionWord> all;
    for (const TimeRange& piece : pieces(duration)) {
        stopIfCancelled(hooks);
        const VoiceFile file = exportAudio(*tracks.front(), piece, hooks);
        for (CaptionWord& word : recognize(*recognizer, file.path(), piece.start, hooks))
            all.push_back(std::move(word));
        if (hooks.progress) hooks.progress(piece.end / duration);
    }
    return all;
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
