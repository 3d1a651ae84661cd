#include "OmbrelRecord/Transcriber/PocketSphinx/PocketSphinxDecoder.h"

#include "RecordCore/Model/RecordingError.h"

#include <fmt/format.h>
#include <pocketsphinx/pocketsphinx.h>
#include <sphinxbase/ckd_alloc.h>
#include <sphinxbase/err.h>

#include <algorithm>
#include <array>
#include <csetjmp>
#include <cstdarg>
#include <cstdio>
#include <memory>
#include <string>
#include <string_view>
#include <type_traits>

namespace OmbrelRecord {

namespace {

constexpr double frameSeconds = 0.01; ///< the library's -frate of 100

/// The last error of the library on this thread; it gives no other account of what went wrong.
thread_local std::string lastError;

/// Where to go on after a fatal error on this thread; see `survives`.
thread_local std::jmp_buf* escape = nullptr;

/// Receives the library's log, which would otherwise fill standard error.
void keepError(void*, err_lvl_t level, const char* format, ...) {
    if (level < ERR_ERROR) return;
    std::array<char, 400> text{};
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(text.data(), text.size(), format, arguments);
    va_end(arguments);
    lastError = text.data();
    // "ERROR: "file.c", line 12: message\n" becomes the message.
    if (const std::size_t line = lastError.find("line "); line != std::string::npos)
        if (const std::size_t colon = lastError.find(": ", line); colon != std::string::npos)
            lastError.erase(0, colon + 2);
    while (!lastError.empty() && lastError.back() == '\n')
        lastError.pop_back();
    if (level == ERR_FATAL && escape) std::longjmp(*escape, 1);
}

/// Calls into the library and tells whether it came back. What it calls fatal, such as a damaged model, would
/// end the whole program as soon as the message has been delivered, so we never return from that delivery.
/// Only frames of the library are left behind, which have nothing to destroy; what it had allocated is lost.
template <typename Call>
bool survives(const Call& call) {
    static_assert(std::is_trivially_destructible_v<Call>);
    std::jmp_buf here;
    escape = &here;
    const bool returned = setjmp(here) == 0;
    if (returned) call();
    escape = nullptr;
    return returned;
}

/// "read" of "read(2)", a second way of saying it.
std::string_view withoutVariant(std::string_view word) {
    return word.substr(0, word.find('('));
}

/// The name of the search for one sentence.
constexpr const char* sentence = "sentence";

/// What the dictionary's entry is called on screen; empty for silences and noises.
std::string shownText(std::string_view word) {
    if (word.empty() || word[0] == '<' || word[0] == '[' || word.starts_with("++")) return {};
    std::string text(withoutVariant(word));
    // English dictionaries are all in lower case.
    if (text == "i" || text.starts_with("i'")) text[0] = 'I';
    return text;
}

} // namespace

void PocketSphinxDecoder::Release::operator()(ps_decoder_s* decoder) const {
    ps_free(decoder);
}

PocketSphinxDecoder::PocketSphinxDecoder(const PocketSphinxEngine::Model& model) {
    err_set_callback(keepError, nullptr);
    err_set_logfp(nullptr); // the settings are printed past the callback
    lastError.clear();
    // The clock must not lose what the library takes for silence; what is silent is left out beforehand. A
    // language weight of 5 instead of 6.5 made fewer errors on sentences about programs and files.
    cmd_ln_t* settings =
        cmd_ln_init(nullptr, ps_args(), TRUE, "-hmm", model.acoustic.c_str(), "-lm", model.language.c_str(),
                    "-dict", model.dictionary.c_str(), "-lw", "5", "-remove_silence", "no", nullptr);
    ps_decoder_t* made = nullptr;
    if (settings && survives([&made, settings] { made = ps_init(settings); })) decoder.reset(made);
    if (settings) cmd_ln_free_r(settings);
    if (decoder) usual = ps_get_search(decoder.get());
    if (!decoder)
        throw RecordCore::RecordingError(fmt::format("{}: the speech model cannot be loaded{}{}",
                                                     model.acoustic.string(), lastError.empty() ? "" : ": ",
                                                     lastError));
}

PocketSphinxDecoder::~PocketSphinxDecoder() = default;

std::vector<SpeechSegment> PocketSphinxDecoder::decode(std::span<const std::int16_t> samples) {
    std::vector<SpeechSegment> list = segments(samples);
    for (SpeechSegment& segment : list)
        segment.text = shownText(segment.text);
    return list;
}

std::vector<SpeechSegment> PocketSphinxDecoder::align(std::span<const std::int16_t> samples,
                                                      const std::vector<std::string>& words) {
    ps_decoder_t* const one = decoder.get();
    // A grammar of one sentence; between its words the library allows for silence by itself.
    std::string grammar = "#JSGF V1.0;\ngrammar said;\npublic <said> =";
    for (const std::string& word : words) {
        const std::unique_ptr<char, decltype(&ckd_free)> known(ps_lookup_word(one, word.c_str()), ckd_free);
        if (!known) return {};
        grammar += " " + word;
    }
    grammar += ";\n";
    bool done = false;
    const char* const text = grammar.c_str();
    if (!survives([&done, one, text] {
            done = ps_set_jsgf_string(one, sentence, text) >= 0 && ps_set_search(one, sentence) >= 0;
        }) ||
        !done)
        return {};
    std::vector<SpeechSegment> list;
    try {
        list = segments(samples);
    } catch (const RecordCore::RecordingError&) {
        // It does not fit: nothing was found.
    }
    ps_set_search(one, usual.c_str());
    ps_unset_search(one, sentence);
    const auto said = [](const SpeechSegment& segment) { return withoutVariant(segment.text); };
    if (!std::equal(
            list.begin(), list.end(), words.begin(), words.end(),
            [&](const SpeechSegment& segment, const std::string& word) { return said(segment) == word; }))
        return {};
    return list;
}

/// With the dictionary's own spelling of the words.
std::vector<SpeechSegment> PocketSphinxDecoder::segments(std::span<const std::int16_t> samples) {
    lastError.clear();
    bool done = false;
    ps_decoder_t* const one = decoder.get();
    const bool returned = survives([&done, one, samples] {
        // A stream of its own for each utterance: times count from its start. All samples at once, so that
        // levels are normalised over the whole of it.
        done = ps_start_stream(one) >= 0 && ps_start_utt(one) >= 0 &&
               ps_process_raw(one, samples.data(), samples.size(), FALSE, TRUE) >= 0 && ps_end_utt(one) >= 0;
    });
    if (!returned || !done)
        throw RecordCore::RecordingError("speech recognition failed" +
                                         (lastError.empty() ? "" : ": " + lastError));

    std::vector<SpeechSegment> list;
    for (ps_seg_t* segment = ps_seg_iter(decoder.get()); segment; segment = ps_seg_next(segment)) {
        std::string text = ps_seg_word(segment);
        if (shownText(text).empty()) continue;
        int first = 0;
        int last = 0;
        ps_seg_frames(segment, &first, &last);
        list.push_back({std::move(text), first * frameSeconds, (last - first + 1) * frameSeconds});
    }
    return list;
}

} // namespace OmbrelRecord
