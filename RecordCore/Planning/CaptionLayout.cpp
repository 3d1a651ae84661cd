#include "RecordCore/Planning/CaptionLayout.h"

#include "RecordCore/Planning/TimeMap.h"

#include <algorithm>
#include <cstddef>

namespace RecordCore::CaptionLayout {

namespace {

constexpr std::size_t mostWords = 6;
constexpr std::size_t mostCharacters = 35; ///< a line stays below this
constexpr double longestGap = 0.7;         ///< seconds of film between words of one line
constexpr double shortestWord = 0.08;
constexpr double lineLead = 0.05;
constexpr double lineLinger = 0.35;

/// Characters of a UTF-8 text: every byte that does not continue one.
std::size_t characters(const std::string& text) {
    return static_cast<std::size_t>(std::count_if(
        text.begin(), text.end(), [](char c) { return (static_cast<unsigned char>(c) & 0xc0) != 0x80; }));
}

bool endsSentence(const std::string& text) {
    return !text.empty() && (text.back() == '.' || text.back() == '?' || text.back() == '!');
}

class Builder {
public:
    void add(Word word) {
        const std::size_t length = characters(word.text);
        if (!words.empty()) {
            const bool fits = words.size() < mostWords && word.start - words.back().end <= longestGap &&
                              count + length < mostCharacters;
            if (!fits) close();
        }
        const bool last = endsSentence(word.text);
        words.push_back(std::move(word));
        count += length + 1;
        if (last) close();
    }

    std::vector<Line> finish() {
        close();
        for (std::size_t i = 0; i + 1 < lines.size(); ++i)
            if (lines[i + 1].start < lines[i].end) lines[i].end = lines[i + 1].start;
        return std::move(lines);
    }

private:
    void close() {
        if (words.empty()) return;
        const double start = std::max(0.0, words.front().start - lineLead);
        const double end = words.back().end + lineLinger;
        lines.push_back({std::move(words), start, end});
        words.clear();
        count = 0;
    }

    std::vector<Word> words;
    std::size_t count = 0;
    std::vector<Line> lines;
};

} // namespace

std::vector<Line> lines(const Project& project, const Plan& plan) {
    if (!project.captions) return {};
    const TimeMap map(plan);
    Builder builder;
    for (const CaptionWord& word : *project.captions) {
        const SpeedSegment* segment = map.segmentHolding(word.start);
        if (!segment || segment->isCut()) continue;
        const double start = map.outputTime(word.start);
        double end = map.outputTime(std::min(word.end, segment->end));
        if (end < start + shortestWord) end = start + shortestWord;
        builder.add({word.text, start, end});
    }
    return builder.finish();
}

std::vector<Line> shownLines(const Project& project, const Plan& plan) {
    return project.showCaptions ? lines(project, plan) : std::vector<Line>{};
}

std::optional<CaptionLook> look(const Project& project, const Plan& plan) {
    const std::vector<Line> shown = shownLines(project, plan);
    if (shown.empty()) return std::nullopt;
    CaptionLook look;
    look.style = project.captionStyle;
    look.size = project.captionSize;
    look.bottom = project.captionBottom;
    for (const Line& line : shown) {
        std::vector<std::string>& words = look.lines.emplace_back();
        for (const Word& word : line.words)
            words.push_back(word.text);
    }
    return look;
}

} // namespace RecordCore::CaptionLayout
