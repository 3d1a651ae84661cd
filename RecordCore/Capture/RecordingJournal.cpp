#include "RecordCore/Capture/RecordingJournal.h"

#include "RecordCore/Model/RecordingError.h"

#include <fmt/format.h>
#include <sys/file.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <charconv>
#include <cstring>
#include <fstream>
#include <string_view>

namespace RecordCore {

namespace {

constexpr double flushInterval = 0.5; // seconds
constexpr std::string_view header = "recording 1\n";
constexpr std::array<std::string_view, 4> kinds{"click", "rightClick", "key", "scroll"};

/// Takes words off the front of a line.
class Words {
public:
    explicit Words(std::string_view line) : rest(line) {}

    std::string_view next() {
        const std::size_t end = rest.find(' ');
        const std::string_view word = rest.substr(0, end);
        rest = end == std::string_view::npos ? std::string_view() : rest.substr(end + 1);
        return word;
    }

    template <typename Number>
    bool number(Number& value, int base = 10) {
        const std::string_view word = next();
        const char* end = word.data() + word.size();
        std::from_chars_result result{};
        if constexpr (std::is_floating_point_v<Number>)
            result = std::from_chars(word.data(), end, value);
        else
            result = std::from_chars(word.data(), end, value, base);
        return result.ec == std::errc() && result.ptr == end && !word.empty();
    }

    bool done() const { return rest.empty(); }

private:
    std::string_view rest;
};

void readLine(std::string_view line, JournalContents& contents) {
    Words words(line);
    const std::string_view kind = words.next();
    double t = 0;
    if (kind == "origin") {
        if (words.number(t)) contents.origin = t;
    } else if (kind == "camera") {
        if (words.number(t)) contents.camera = t;
    } else if (kind == "keys") {
        int tracked = 0;
        if (words.number(tracked)) contents.keysTracked = tracked != 0;
    } else if (kind == "p") {
        InputLog::CursorSample sample;
        if (words.number(sample.t) && words.number(sample.x) && words.number(sample.y))
            contents.cursor.push_back(sample);
    } else if (kind == "e") {
        InputLog::Event event;
        if (!words.number(event.t)) return;
        const std::string_view name = words.next();
        std::size_t index = 0;
        while (index < kinds.size() && kinds[index] != name)
            ++index;
        if (index == kinds.size()) return;
        event.kind = static_cast<InputLog::Event::Kind>(index);
        if (!words.done()) {
            double x = 0, y = 0;
            if (!words.number(x) || !words.number(y)) return;
            event.x = x;
            event.y = y;
        }
        contents.events.push_back(event);
    } else if (kind == "a") {
        LiveActivity::PackedMask mask{};
        if (!words.number(t)) return;
        while (!words.done()) {
            std::size_t row = 0;
            std::uint64_t bits = 0;
            if (!words.number(row) || row >= mask.size() || !words.number(bits, 16)) return;
            mask[row] = bits;
        }
        contents.activity.restore(t, mask);
    }
}

} // namespace

RecordingJournal::RecordingJournal(const std::filesystem::path& path, const HostClock& clock) :
    clock(clock), path(path) {
    file = open(path.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
    if (file < 0) throw RecordingError(fmt::format("{}: {}", path.string(), std::strerror(errno)));
    if (flock(file, LOCK_EX | LOCK_NB) != 0) {
        close(file);
        throw RecordingError(fmt::format("{}: another recording is running there", path.string()));
    }
    if (ftruncate(file, 0) == 0) append(header);
    flush();
}

RecordingJournal::~RecordingJournal() {
    if (file < 0) return;
    write();
    close(file);
}

void RecordingJournal::append(std::string_view line) {
    buffer += line;
    if (clock.now() - written >= flushInterval) write();
}

void RecordingJournal::write() {
    written = clock.now();
    std::string_view rest = buffer;
    while (!rest.empty() && file >= 0) {
        const ssize_t count = ::write(file, rest.data(), rest.size());
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) break;
        rest.remove_prefix(static_cast<std::size_t>(count));
    }
    buffer.clear();
}

void RecordingJournal::origin(double time) {
    const std::lock_guard lock(mutex);
    append(fmt::format("origin {:.6f}\n", time));
}

void RecordingJournal::camera(double time) {
    const std::lock_guard lock(mutex);
    append(fmt::format("camera {:.6f}\n", time));
}

void RecordingJournal::keysTracked(bool tracked) {
    const std::lock_guard lock(mutex);
    append(fmt::format("keys {}\n", tracked ? 1 : 0));
}

void RecordingJournal::cursor(const InputLog::CursorSample& sample) {
    const std::lock_guard lock(mutex);
    append(fmt::format("p {:.6f} {:.6g} {:.6g}\n", sample.t, sample.x, sample.y));
}

void RecordingJournal::event(const InputLog::Event& event) {
    const std::lock_guard lock(mutex);
    const std::string_view kind = kinds[static_cast<std::size_t>(event.kind)];
    if (event.x && event.y)
        append(fmt::format("e {:.6f} {} {:.6g} {:.6g}\n", event.t, kind, *event.x, *event.y));
    else
        append(fmt::format("e {:.6f} {}\n", event.t, kind));
}

void RecordingJournal::activity(double t, const LiveActivity::PackedMask& mask) {
    const std::lock_guard lock(mutex);
    std::string line = fmt::format("a {:.6f}", t);
    for (std::size_t row = 0; row < mask.size(); ++row)
        if (mask[row] != 0) fmt::format_to(std::back_inserter(line), " {} {:x}", row, mask[row]);
    line += '\n';
    append(line);
}

void RecordingJournal::flush() {
    const std::lock_guard lock(mutex);
    write();
}

void RecordingJournal::remove() {
    const std::lock_guard lock(mutex);
    if (file < 0) return;
    buffer.clear();
    std::error_code ignored;
    std::filesystem::remove(path, ignored);
    close(file);
    file = -1;
}

JournalContents JournalContents::read(const std::filesystem::path& file) {
    // Line by line: after hours of a busy screen it is larger than anything else that is read as a whole.
    std::error_code error;
    if (!std::filesystem::is_regular_file(file, error))
        throw RecordingError(fmt::format("{}: cannot be read: {}", file.string(),
                                         error ? error.message() : "not a plain file"));
    errno = 0;
    std::ifstream stream(file, std::ios::binary);
    JournalContents contents;
    std::string line;
    while (std::getline(stream, line) && !stream.eof()) // the last line may be unfinished
        readLine(line, contents);
    if (!stream.eof())
        throw RecordingError(
            fmt::format("{}: cannot be read: {}", file.string(), std::strerror(errno != 0 ? errno : EIO)));
    return contents;
}

InputLog retimed(const std::vector<InputLog::CursorSample>& cursor,
                 const std::vector<InputLog::Event>& events, double origin) {
    InputLog log;
    log.cursor.reserve(cursor.size());
    for (InputLog::CursorSample sample : cursor) {
        if (!(sample.t >= origin)) continue;
        sample.t -= origin;
        log.cursor.push_back(sample);
    }
    for (InputLog::Event event : events) {
        if (!(event.t >= origin)) continue;
        event.t -= origin;
        log.events.push_back(event);
    }
    log.cursorInVideo = false;
    return log;
}

InputLog JournalContents::inputLog() const {
    InputLog log = retimed(cursor, events, origin.value_or(0));
    log.keysTracked = keysTracked;
    if (camera && origin) log.cameraOffset = *camera - *origin;
    return log;
}

} // namespace RecordCore
