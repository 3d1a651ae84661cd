#pragma once

#include "OmbrelRecord/Transcriber/SpeechRecognizer.h"
#include "RecordCore/Media/MediaBackend.h"

#include <filesystem>
#include <map>
#include <string>
#include <vector>

namespace OmbrelRecord {

/// Recognition by PocketSphinx, which is always there and needs no network. Clear, close speech comes out
/// with one word in ten wrong or so; noisy or distant speech comes out poorly. No punctuation, no capitals.
///
/// A language is a folder in one of the model folders, named as the language ("en-us"), that holds a
/// dictionary (*.dict), a language model (*.lm.bin or *.lm) and a folder with the acoustic model.
class PocketSphinxEngine : public SpeechEngine {
public:
    /// The files of one language.
    struct Model {
        std::filesystem::path acoustic;
        std::filesystem::path dictionary;
        std::filesystem::path language;
    };

    /// `folders` in the order in which they are searched. The media backend must outlive the recognisers.
    PocketSphinxEngine(const RecordCore::MediaBackend& media, std::vector<std::filesystem::path> folders);

    /// The model folders of this user and this system.
    static std::vector<std::filesystem::path> standardFolders();

    std::string name() const override { return "PocketSphinx"; }
    std::vector<std::string> languages() const override;
    /// Cancelling is heeded between stretches of speech, of at most 12 s: within a few seconds.
    std::unique_ptr<SpeechRecognizer> recognizer(const std::string& language) const override;

private:
    std::map<std::string, Model> models() const;

    const RecordCore::MediaBackend& media;
    std::vector<std::filesystem::path> folders;
};

} // namespace OmbrelRecord
