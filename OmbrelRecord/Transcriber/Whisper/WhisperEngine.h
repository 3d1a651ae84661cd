#pragma once

#include "OmbrelRecord/Transcriber/SpeechRecognizer.h"
#include "RecordCore/Media/MediaBackend.h"

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace OmbrelRecord {

/// Recognition by a whisper.cpp program that the user has installed, with a model file that the user has
/// chosen: many languages, punctuation, far fewer errors than PocketSphinx. Everything stays on this
/// computer. Has no language while program or model is missing.
class WhisperEngine : public SpeechEngine {
public:
    struct Settings {
        std::filesystem::path program; ///< whisper.cpp's command line ("whisper-cli")
        std::filesystem::path model;   ///< a model in the ggml format ("ggml-base.en.bin")

        /// OMBREL_WHISPER_MODEL and OMBREL_WHISPER_PROGRAM; without the latter "whisper-cli" from PATH.
        static Settings fromEnvironment();
    };

    /// The media backend must outlive the recognisers.
    WhisperEngine(const RecordCore::MediaBackend& media, Settings settings);

    std::string name() const override { return "whisper.cpp"; }
    std::vector<std::string> languages() const override;
    /// Cancelling ends the program at once.
    std::unique_ptr<SpeechRecognizer> recognizer(const std::string& language) const override;

    /// The words in the JSON that the program writes, within 0…`length` seconds. What stands for sounds
    /// ("[BLANK_AUDIO]", "(music)") is left out; a segment of several words is shared among them by length.
    /// Throws RecordingError when it is not such JSON.
    static std::vector<SpeechSegment> words(std::string_view json, double length);

private:
    const RecordCore::MediaBackend& media;
    Settings settings;
};

} // namespace OmbrelRecord
