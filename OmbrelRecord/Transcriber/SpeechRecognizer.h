#pragma once

#include <atomic>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace OmbrelRecord {

/// One recognised word (or a few that belong together), in seconds from the start of the file.
struct SpeechSegment {
    std::string text;
    double timestamp = 0;
    double duration = 0;
    bool operator==(const SpeechSegment&) const = default;
};

/// What a recogniser is asked to do with one sound file. The language was settled when it was made.
struct SpeechRequest {
    std::filesystem::path file;  ///< readable by the media backend, at most about a minute
    bool partialResults = false; ///< also results that may still change; nobody here asks for them
    bool punctuation = true;     ///< where the recogniser can
    bool onDevice = false;       ///< the sound must not leave this computer
    bool operator==(const SpeechRequest&) const = default;
};

/// Recognises speech in one language. Holds the loaded model, so it is made once for many files. One thread
/// at a time; not necessarily the thread that made it.
class SpeechRecognizer {
public:
    virtual ~SpeechRecognizer() = default;

    /// Whether recognition can be done without sending the sound anywhere.
    virtual bool supportsOnDevice() const = 0;

    /// Recognises a file and returns the final result, in time order; empty when nothing was said. Blocks:
    /// a backend that is told of results on a thread of its own waits here for the first that is final, or
    /// for the first error. Once `cancel` (may be null) turns true it returns early with anything.
    /// Throws RecordingError.
    virtual std::vector<SpeechSegment> recognize(const SpeechRequest& request,
                                                 const std::atomic<bool>* cancel) = 0;

    /// When each of these words, and nothing else, is said in a file: one segment for each word, in order.
    /// Empty when that cannot be told: the recogniser has no way to, does not know a word, or hears something
    /// else. Blocks. Throws RecordingError.
    virtual std::vector<SpeechSegment> align(const std::filesystem::path& file,
                                             const std::vector<std::string>& words) {
        static_cast<void>(file), static_cast<void>(words);
        return {};
    }
};

/// A way of recognising speech that may or may not be installed here. Stateless; callable from any thread.
class SpeechEngine {
public:
    virtual ~SpeechEngine() = default;

    /// For the log and the user: "PocketSphinx".
    virtual std::string name() const = 0;

    /// Asks for permission to recognise speech where the platform demands it; may wait for the user.
    virtual bool authorize() const { return true; }

    /// The languages that can really be recognised now ("en-US", "de"), best first.
    virtual std::vector<std::string> languages() const = 0;

    /// A recogniser for one of `languages`, matched as in Language::match; none when it has none. Loads a
    /// model, which may take seconds. Throws RecordingError when the model is there but cannot be loaded.
    virtual std::unique_ptr<SpeechRecognizer> recognizer(const std::string& language) const = 0;
};

} // namespace OmbrelRecord
