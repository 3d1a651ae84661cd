#include "OmbrelRecord/Transcriber/PocketSphinx/PocketSphinxEngine.h"
#include "OmbrelRecord/Transcriber/Transcriber.h"
#include "RecordCore/Model/RecordingError.h"
#include "Tests/Support/TemporaryFolder.h"
#include "Tests/Transcriber/Narration.h"
#include "Tests/Transcriber/TemporaryPlace.h"
#include "Tests/Transcriber/TestMedia.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <fstream>
#include <iostream>

using namespace OmbrelRecord;
using namespace RecordCore;

namespace {

std::string lowered(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; });
    return text;
}

struct Comparison {
    std::size_t errors = 0; ///< words replaced, missing and added
    /// Which words were recognised: (said, recognised).
    std::vector<std::pair<const Voice::Word*, const CaptionWord*>> right;
};

/// The alignment of two word lists with the fewest errors (Levenshtein's distance over words).
Comparison compare(const std::vector<Voice::Word>& said, const std::vector<CaptionWord>& found) {
    const std::size_t rows = said.size() + 1;
    const std::size_t columns = found.size() + 1;
    std::vector<std::size_t> cost(rows * columns);
    const auto at = [&](std::size_t i, std::size_t j) -> std::size_t& { return cost[i * columns + j]; };
    const auto same = [&](std::size_t i, std::size_t j) {
        return lowered(said[i].text) == lowered(found[j].text);
    };
    for (std::size_t i = 0; i < rows; ++i)
        for (std::size_t j = 0; j < columns; ++j)
            at(i, j) = i == 0   ? j
                       : j == 0 ? i
                                : std::min({at(i - 1, j) + 1, at(i, j - 1) + 1,
                                            at(i - 1, j - 1) + (same(i - 1, j - 1) ? 0U : 1U)});
    Comparison result;
    result.errors = at(said.size(), found.size());
    for (std::size_t i = said.size(), j = found.size(); i > 0 && j > 0;) {
        if (at(i, j) == at(i - 1, j - 1) + (same(i - 1, j - 1) ? 0U : 1U)) {
            --i, --j;
            if (same(i, j)) result.right.emplace_back(&said[i], &found[j]);
        } else if (at(i, j) == at(i - 1, j) + 1) {
            --i;
        } else {
            --j;
        }
    }
    return result;
}

} // namespace

TEST(Speech, becomesWordsWithTheirTimes) {
    // Two voices, one of them quiet, over the border between two pieces.
    Narration narration;
    narration.pause(1);
    narration.say("This is a short tour of the new version.", Voice::Speaker::slt);
    narration.pause(0.5);
    narration.say("First we open the settings and choose another language.", Voice::Speaker::slt);
    narration.pause(2);
    narration.say("Now I click on the button and wait until the list is loaded.", Voice::Speaker::rms);
    narration.pause(51 - narration.seconds());
    narration.say("You can see the result on the right side of the window.", Voice::Speaker::rms, 0.05F);
    narration.pause(0.7);
    narration.say("We have two problems here, and both have the same reason.", Voice::Speaker::kal, 0.05F);
    narration.pause(1);

    const TemporaryFolder folder;
    const TemporaryPlace temporary;
    const auto file = folder / "recording.mp4";
    makeRecording(file, narration.seconds(), narration.sound);
    const TestMedia media;
    const PocketSphinxEngine engine(media, PocketSphinxEngine::standardFolders());
    ASSERT_THAT(engine.languages(), testing::Contains("en-US"))
        << "the package pocketsphinx-en-us is missing";

    testing::internal::CaptureStderr();
    const auto words = Transcriber(engine, media).words(file, "en-US", {});
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "") << "the library's log belongs to nobody";
    EXPECT_TRUE(temporary.empty());

    const Comparison comparison = compare(narration.words, words);
    double worstStart = 0;
    double worstEnd = 0;
    double sum = 0;
    for (const auto& [said, found] : comparison.right) {
        worstStart = std::max(worstStart, std::abs(said->start - found->start));
        worstEnd = std::max(worstEnd, std::abs(said->end - found->end));
        sum += std::abs(said->start - found->start);
    }
    const double rate = static_cast<double>(comparison.errors) / static_cast<double>(narration.words.size());
    std::cout << "word error rate " << 100 * rate << " % of " << narration.words.size()
              << " words; starts off by " << 1000 * sum / static_cast<double>(comparison.right.size())
              << " ms on average, " << 1000 * worstStart << " ms at most, ends " << 1000 * worstEnd
              << " ms at most\n";
    EXPECT_LT(rate, 0.35);
    EXPECT_LT(worstStart, 0.3);
    EXPECT_LT(worstEnd, 0.3);
    EXPECT_TRUE(std::is_sorted(words.begin(), words.end(),
                               [](const auto& a, const auto& b) { return a.start < b.start; }));
    for (const CaptionWord& word : words)
        EXPECT_EQ(word.text.find_first_of("<[(+"), std::string::npos) << word.text;
}

TEST(Speech, correctedWordsGetTheTimesAtWhichTheyAreSaid) {
    Narration narration;
    narration.pause(1);
    narration.say("First we open the settings and choose another language.", Voice::Speaker::slt);
    narration.pause(1.5);
    narration.say("Now I click on the button and wait until the list is loaded.", Voice::Speaker::rms);
    narration.pause(1.5);
    narration.say("You can see the result on the right side of the window.", Voice::Speaker::awb);
    narration.pause(1);
    // What a person leaves behind who types into captions: the words are right, their times are not.
    std::vector<CaptionWord> words;
    for (std::size_t i = 0; i < narration.words.size(); ++i) {
        const Voice::Word& word = narration.words[i];
        const double off = i % 2 == 0 ? 0.15 : -0.1;
        words.push_back({word.text, word.start + off, word.end + off});
    }
    words.front().text = "First,";
    const CaptionWord unknown = words.back() = {"Xyzzyqw", words.back().start, words.back().end};

    const TemporaryFolder folder;
    const TemporaryPlace temporary;
    const auto file = folder / "recording.mp4";
    makeRecording(file, narration.seconds(), narration.sound);
    const TestMedia media;
    const PocketSphinxEngine engine(media, PocketSphinxEngine::standardFolders());
    const auto timed = Transcriber(engine, media).align(file, words, "en-US", {});
    EXPECT_TRUE(temporary.empty());
    ASSERT_EQ(timed.size(), words.size());
    double worst = 0, sum = 0;
    std::size_t count = 0;
    for (std::size_t i = 0; i < timed.size(); ++i) {
        EXPECT_EQ(timed[i].text, words[i].text);
        // The last sentence has a word that no dictionary knows: it keeps its times.
        if (words[i].start > narration.words.back().start - 2.5 && timed[i] == words[i]) continue;
        const double error = std::abs(timed[i].start - narration.words[i].start);
        worst = std::max(worst, error);
        sum += error;
        ++count;
    }
    std::cout << count << " words start off by " << 1000 * sum / static_cast<double>(count)
              << " ms on average, " << 1000 * worst << " ms at most\n";
    EXPECT_GE(count, 21U);
    EXPECT_LT(worst, 0.1);
    EXPECT_EQ(timed.back(), unknown);
}

TEST(Speech, isNotHeardInSilenceAndNoise) {
    const TemporaryFolder folder;
    const TestMedia media;
    const PocketSphinxEngine engine(media, PocketSphinxEngine::standardFolders());
    std::vector<float> clicks(static_cast<std::size_t>(6 * soundRate));
    for (std::size_t at = 24000; at < clicks.size(); at += 30000)
        for (std::size_t i = 0; i < 240; ++i)
            clicks[at + i] = i % 8 < 4 ? 0.3F : -0.3F;
    for (const auto& sound : {std::vector<float>{}, clicks}) {
        const auto file = folder / "recording.mp4";
        makeRecording(file, 6, sound);
        EXPECT_TRUE(Transcriber(engine, media).words(file, "en", {}).empty());
    }
}

TEST(PocketSphinx, findsTheModelsThatAreThere) {
    const TemporaryFolder folder;
    const auto add = [&](const std::string& name) {
        const auto file = folder.path() / name;
        std::filesystem::create_directories(file.parent_path());
        std::ofstream(file) << "nothing";
    };
    const auto whole = [&](const std::string& language) {
        add("mine/" + language + "/sounds/mdef");
        add("mine/" + language + "/words.dict");
        add("mine/" + language + "/words.lm.bin");
    };
    whole("de-de");
    whole("fr");
    std::filesystem::remove(folder.path() / "mine/fr/words.dict");
    whole("it");
    std::filesystem::rename(folder.path() / "mine/it/words.lm.bin",
                            folder.path() / "mine/it/it-phone.lm.bin");
    const TestMedia media;
    const PocketSphinxEngine engine(media, {folder / "missing", folder / "mine"});
    EXPECT_THAT(engine.languages(), testing::ElementsAre("de-DE"));
    EXPECT_FALSE(engine.recognizer("en-US"));
    // The files are there but hold no model: an error that names it, no recogniser.
    EXPECT_THROW(engine.recognizer("de"), RecordingError);
}
