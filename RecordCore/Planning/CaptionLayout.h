#pragma once

#include "RecordCore/Model/Project.h"
#include "RecordCore/Model/Styles.h"
#include "RecordCore/Planning/Plan.h"

#include <optional>
#include <string>
#include <vector>

namespace RecordCore {

/// Groups recognised words into short caption lines, timed in output seconds.
namespace CaptionLayout {

struct Word {
    std::string text;
    double start = 0;
    double end = 0;
    bool operator==(const Word&) const = default;
};

struct Line {
    std::vector<Word> words;
    double start = 0;
    double end = 0;
    bool operator==(const Line&) const = default;
};

/// The lines of a project's words; none when there are no words. Words in cuts are dropped, lines never
/// overlap.
std::vector<Line> lines(const Project& project, const Plan& plan);

/// The lines that the film shows: those of `lines` while captions are on.
std::vector<Line> shownLines(const Project& project, const Plan& plan);

/// What the compositor needs of the captions; none when they are off or there are no words.
std::optional<CaptionLook> look(const Project& project, const Plan& plan);

} // namespace CaptionLayout
} // namespace RecordCore
