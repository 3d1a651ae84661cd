#include "OmbrelRecord/Transcriber/Language.h"
#include "OmbrelRecord/Transcriber/SpeechEngines.h"

#include <gtest/gtest.h>

using namespace OmbrelRecord;

namespace {

using Names = std::vector<std::string>;

/// An engine with these languages whose recognisers cannot be used, only told apart.
class NamedEngine : public SpeechEngine {
public:
    NamedEngine(std::string label, Names list) : label(std::move(label)), list(std::move(list)) {}
    std::string name() const override { return label; }
    Names languages() const override { return list; }
    std::unique_ptr<SpeechRecognizer> recognizer(const std::string& language) const override {
        struct Recognizer : SpeechRecognizer {
            bool supportsOnDevice() const override { return false; }
            std::vector<SpeechSegment> recognize(const SpeechRequest&, const std::atomic<bool>*) override {
                return {{answer, 0, 1}};
            }
            std::string answer;
        };
        const auto match = Language::match(language, list);
        if (!match) return nullptr;
        auto recognizer = std::make_unique<Recognizer>();
        recognizer->answer = label + " " + *match;
        return recognizer;
    }

private:
    std::string label;
    Names list;
};

} // namespace

TEST(Language, hasOneForm) {
    const std::vector<std::pair<const char*, const char*>> cases{
        {"en-us", "en-US"},
        {"en_GB.UTF-8", "en-GB"},
        {"de_DE@euro", "de-DE"},
        {"C", "en-US"},
        {"C.UTF-8", "en-US"},
        {"POSIX", "en-US"},
        {"PT", "pt"},
        {"", ""},
        {"zh_hant_tw", "zh-Hant-TW"},
        {"es-419", "es-419"},
        {"haw", "haw"},
        {"-", ""},
    };
    for (const auto& [text, expected] : cases)
        EXPECT_EQ(Language::normalized(text), expected) << text;
}

TEST(Language, isMatchedByTheNearest) {
    const Names available{"de", "en-GB", "en-US", "zh-Hans-CN"};
    const std::vector<std::pair<const char*, const char*>> cases{
        {"en-US", "en-US"},      {"en_us", "en-US"}, {"en", "en-GB"}, {"en-AU", "en-GB"}, {"de-AT", "de"},
        {"zh-TW", "zh-Hans-CN"}, {"fr", ""},         {"e", ""},       {"", ""},
    };
    for (const auto& [wanted, expected] : cases)
        EXPECT_EQ(Language::match(wanted, available).value_or(""), expected) << wanted;
}

TEST(SpeechEngines, takesTheFirstThatKnowsTheLanguage) {
    std::vector<std::unique_ptr<SpeechEngine>> list;
    list.push_back(std::make_unique<NamedEngine>("absent", Names{}));
    list.push_back(std::make_unique<NamedEngine>("good", Names{"en", "fr"}));
    list.push_back(std::make_unique<NamedEngine>("plain", Names{"en-US", "en-GB", "it-IT"}));
    const SpeechEngines engines(std::move(list));

    EXPECT_EQ(engines.languages(), (Names{"en", "fr", "it-IT"}));
    const std::vector<std::pair<const char*, const char*>> cases{
        {"en-US", "good en"}, {"it", "plain it-IT"}, {"fr-CA", "good fr"}};
    for (const auto& [wanted, expected] : cases) {
        const auto recognizer = engines.recognizer(wanted);
        ASSERT_TRUE(recognizer) << wanted;
        EXPECT_EQ(recognizer->recognize({}, nullptr)[0].text, expected);
    }
    EXPECT_FALSE(engines.recognizer("de"));
}
