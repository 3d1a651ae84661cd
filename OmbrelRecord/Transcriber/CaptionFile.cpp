#include "OmbrelRecord/Transcriber/CaptionFile.h"

#include "RecordCore/Model/RecordingError.h"
#include "RecordCore/Model/Uuid.h"

#include <fmt/format.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstring>
#include <fstream>
#include <limits>
#include <string_view>
#include <system_error>

namespace OmbrelRecord::CaptionFile {

using namespace RecordCore;

namespace {

/// An invisible character that no line may be broken at (U+2060). SubRip has no way of escaping: what a
/// player would take for markup is taken apart by it.
constexpr std::string_view wordJoiner = "\xE2\x81\xA0";

void append(std::string& out, char c, Format format) {
    if (format == Format::srt) {
        // "<i>" and "{\an8}" are markup to players, "-->" is the sign between two times.
        if (c == '>' && out.ends_with("--")) out += wordJoiner;
        out += c;
        if (c == '<' || c == '{') out += wordJoiner;
        return;
    }
    switch (c) {
    case '&':
        out += "&amp;";
        break;
    case '<':
        out += "&lt;";
        break;
    case '>':
        out += "&gt;";
        break;
    default:
        out += c;
    }
}

/// The words with one space between them, on one line: an empty line would end the caption.
std::string shownText(const CaptionLayout::Line& line, Format format) {
    std::string out;
    bool gap = false;
    for (const CaptionLayout::Word& word : line.words) {
        gap = true;
        for (const char c : word.text) {
            const auto byte = static_cast<unsigned char>(c);
            if (byte <= ' ' || byte == 0x7f) {
                gap = true;
                continue;
            }
            if (gap && !out.empty()) out += ' ';
            gap = false;
            append(out, c, format);
        }
    }
    return out;
}

std::string timeText(std::int64_t milliseconds, Format format) {
    return fmt::format("{:02}:{:02}:{:02}{}{:03}", milliseconds / 3600'000, milliseconds / 60'000 % 60,
                       milliseconds / 1000 % 60, format == Format::srt ? ',' : '.', milliseconds % 1000);
}

/// Whole milliseconds from the start; far beyond any recording it stops counting.
std::int64_t milliseconds(double seconds) {
    constexpr double most = 1e9;
    return std::llround(std::clamp(std::isfinite(seconds) ? seconds : 0.0, 0.0, most) * 1000);
}

} // namespace

std::vector<CaptionLayout::Line> lines(const Project& project, const Plan* plan) {
    if (plan) {
        std::vector<CaptionLayout::Line> shown = CaptionLayout::lines(project, *plan);
        const double end = plan->outputDuration(); // a line lingers, but not past the film
        for (CaptionLayout::Line& line : shown)
            line.end = std::min(line.end, end);
        return shown;
    }
    Plan asRecorded;
    asRecorded.segments = {{0, std::numeric_limits<double>::max(), 1, SpeedSegment::Reason::normal}};
    return CaptionLayout::lines(project, asRecorded);
}

std::string text(const std::vector<CaptionLayout::Line>& lines, Format format) {
    std::string out = format == Format::vtt ? "WEBVTT\n\n" : "";
    std::int64_t ended = 0;
    int number = 0;
    for (const CaptionLayout::Line& line : lines) {
        const std::string words = shownText(line, format);
        if (words.empty()) continue;
        const std::int64_t start = std::max(milliseconds(line.start), ended);
        const std::int64_t end = std::max(milliseconds(line.end), start + 1);
        ended = end;
        if (format == Format::srt) out += fmt::format("{}\n", ++number);
        out += fmt::format("{} --> {}\n{}\n\n", timeText(start, format), timeText(end, format), words);
    }
    return out;
}

void write(const std::string& text, const std::filesystem::path& file) {
    const std::filesystem::path folder = file.has_parent_path() ? file.parent_path() : ".";
    const std::filesystem::path temporary =
        folder / fmt::format(".{}.{}", file.filename().string(), Uuid::fresh().text().substr(0, 8));
    std::error_code failed;
    errno = 0;
    std::ofstream out(temporary, std::ios::binary);
    out << text;
    out.close();
    if (!out)
        failed.assign(errno ? errno : EIO, std::generic_category());
    else
        std::filesystem::rename(temporary, file, failed);
    if (!failed) return;
    std::error_code ignored;
    std::filesystem::remove(temporary, ignored);
    throw RecordingError(fmt::format("{}: cannot be written: {}", file.string(), failed.message()));
}

} // namespace OmbrelRecord::CaptionFile
