#pragma once

#include "OmbrelRecord/Transcriber/SpeechRecognizer.h"
#include "OmbrelRecord/Transcriber/VoiceFile.h"
#include "RecordCore/Media/MediaBackend.h"
#include "RecordCore/Model/Project.h"
#include "RecordCore/Model/RecordingError.h"
#include "RecordCore/Model/TimeRange.h"

#include <atomic>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace OmbrelRecord {

/// Turns the sound of a recording into timed words. Works on the calling thread until it is done, one piece
/// of the recording after the other; different objects may work at once. The engine and the media backend
/// must outlive it.
class Transcriber {
public:
    /// What the user is told. `what()` is a whole sentence to be shown as it is.
    class Failure : public RecordCore::RecordingError {
    public:
        explicit Failure(const std::string& message, std::string detail = {});
        /// The cause, for the log; empty when the message says it all.
        const std::string& detail() const { return cause; }

    private:
        std::string cause;
    };

    struct Hooks {
        std::function<void(double)> progress; ///< share of the recording done, 0…1; on the calling thread
        const std::atomic<bool>* cancel = nullptr; ///< when it turns true the work is given up
    };

    /// What to say when `words` found none.
    static const std::string noSpeech;

    Transcriber(const SpeechEngine& engine, const RecordCore::MediaBackend& media) :
        engine(engine), media(media) {}

    /// The words of a recording's first sound track in source seconds, in time order. `language` is an
    /// identifier as in `Language`; none: the user's own. Throws Failure, the recogniser's RecordingError, or
    /// RecordingError("cancelled").
    std::vector<RecordCore::CaptionWord> words(const std::filesystem::path& recording,
                                               const std::optional<std::string>& language,
                                               const Hooks& hooks) const;

    /// The same words, which somebody may have corrected, with the times at which the sound has them. Where
    /// that cannot be told, a word keeps its time. `words` are in time order; errors as in `words`.
    std::vector<RecordCore::CaptionWord> align(const std::filesystem::path& recording,
                                               std::vector<RecordCore::CaptionWord> words,
                                               const std::optional<std::string>& language,
                                               const Hooks& hooks) const;

    /// The stretches in which a recording of this many seconds is recognised: 50 s each, the last one
    /// shorter; 0.2 s or less at the end are left out.
    static std::vector<RecordCore::TimeRange> pieces(double duration);

private:
    /// What a recording is listened to with.
    struct Ear {
        std::unique_ptr<SpeechRecognizer> recognizer;
        double duration = 0;
        std::vector<std::unique_ptr<RecordCore::SoundReader>> tracks; ///< at least one
    };
    Ear open(const std::filesystem::path& recording, const std::optional<std::string>& language) const;

    VoiceFile exportAudio(RecordCore::SoundReader& track, RecordCore::TimeRange piece,
                          const Hooks& hooks) const;
    std::vector<RecordCore::CaptionWord> recognize(SpeechRecognizer& recognizer,
                                                   const std::filesystem::path& file, double pieceStart,
                                                   const Hooks& hooks) const;

    const SpeechEngine& engine;
    const RecordCore::MediaBackend& media;
};

} // namespace OmbrelRecord
