#include "RecordCore/Capture/InputRecorder.h"

#include <pthread.h>

#include <algorithm>
#include <cmath>

namespace RecordCore {

namespace {
constexpr double sampleRate = 60;   // pointer samples per second
constexpr int boundsEvery = 6;      // ticks between two looks at the window
constexpr double scrollPause = 0.1; // seconds within which scrolls are one
} // namespace

InputRecorder::Region InputRecorder::Region::of(const ScreenBackend& screen, const ScreenSource& source,
                                                int pictureWidth, int pictureHeight) {
    if (const auto* chosen = std::get_if<WindowSource>(&source))
        return window(screen.openBounds(chosen->id, pictureWidth, pictureHeight));
    const std::uint32_t id = std::get<DisplaySource>(source).id;
    CapturedArea area;
    for (const DisplayInfo& each : screen.displays())
        if (each.id == id || (area.frame.empty() && each.main)) area.frame = each.frame;
    area.picture = {area.frame.x, area.frame.y, static_cast<double>(pictureWidth),
                    static_cast<double>(pictureHeight)};
    return display(area);
}

InputRecorder::InputRecorder(Region area, std::unique_ptr<InputSource> from, const HostClock& clock,
                             RecordingJournal* journal) :
    clock(clock),
    journal(journal), source(std::move(from)), region(std::move(area)) {}

InputRecorder::~InputRecorder() {
    join();
}

void InputRecorder::join() {
    if (!thread.joinable()) return;
    source->interrupt();
    if (region.bounds) region.bounds->interrupt();
    thread.join();
}

void InputRecorder::start() {
    if (journal != nullptr) journal->keysTracked(source->seesKeys());
    thread = std::thread([this] { run(); });
}

InputLog InputRecorder::stop(double origin) {
    join();
    InputLog log = retimed(cursor, events, origin);
    log.keysTracked = source->seesKeys();
    return log;
}

void InputRecorder::run() {
    pthread_setname_np(pthread_self(), "input");
    if (region.bounds) refreshBounds();
    const double began = clock.now();
    double count = 1;
    while (source->wait(began + count / sampleRate, [this](InputSignal signal) { handle(signal); })) {
        tick();
        // The grid is kept; ticks that a busy machine missed are not made up for.
        count = std::max(count + 1, std::floor((clock.now() - began) * sampleRate) + 1);
    }
}

void InputRecorder::tick() {
    ++tickCount;
    if (region.bounds && tickCount % boundsEvery == 0) refreshBounds();
    const auto point = source->pointer();
    if (!point) return;
    const ScreenPoint place = normalized(*point, region.area.picture);
    const InputLog::CursorSample sample{clock.now(), place.x, place.y};
    cursor.push_back(sample);
    if (journal != nullptr) journal->cursor(sample);
}

void InputRecorder::handle(InputSignal signal) {
    InputLog::Event event;
    event.t = clock.now();
    if (signal == InputSignal::key) {
        event.kind = InputLog::Event::Kind::key;
        append(event);
        return;
    }
    const auto point = source->pointer();
    if (!point) return;
    // Whether it meant the captured thing is a question to the thing itself, where it shows one to the
    // picture: the two differ while a resized window stands between bars.
    const ScreenPoint inside = normalized(*point, region.area.frame);
    if (!(inside.x >= 0 && inside.x <= 1 && inside.y >= 0 && inside.y <= 1)) return;
    const ScreenPoint place = normalized(*point, region.area.picture);
    event.x = place.x;
    event.y = place.y;
    switch (signal) {
    case InputSignal::primaryButton:
        event.kind = InputLog::Event::Kind::click;
        break;
    case InputSignal::secondaryButton:
        event.kind = InputLog::Event::Kind::rightClick;
        break;
    default:
        if (!(event.t - lastScrollTime > scrollPause)) return;
        lastScrollTime = event.t;
        event.kind = InputLog::Event::Kind::scroll;
    }
    append(event);
}

void InputRecorder::append(InputLog::Event event) {
    events.push_back(event);
    if (journal != nullptr) journal->event(event);
}

void InputRecorder::refreshBounds() {
    const auto now = region.bounds->current();
    // A window that is closed or minimised keeps its last place.
    if (now && !now->frame.empty() && !now->picture.empty()) region.area = *now;
}

ScreenPoint InputRecorder::normalized(const ScreenPoint& point, const ScreenRect& area) const {
    if (area.empty()) return region.bounds ? ScreenPoint{-1, -1} : ScreenPoint{0, 0};
    return {(point.x - area.x) / area.width, (point.y - area.y) / area.height};
}

} // namespace RecordCore
