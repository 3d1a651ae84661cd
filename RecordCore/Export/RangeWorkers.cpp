#include "RecordCore/Export/RangeWorkers.h"

#include "RecordCore/Model/RecordingError.h"

#include <algorithm>
#include <utility>

namespace RecordCore {

namespace {

std::vector<int> stepsOf(const std::vector<FilmRange>& ranges, int keyInterval) {
    std::vector<int> steps;
    for (const FilmRange& range : ranges)
        steps.push_back(static_cast<int>((range.end - range.begin + keyInterval - 1) / keyInterval));
    return steps;
}

} // namespace

RangeWorkers::RangeWorkers(Film everything, int count, Sources first) :
    film(std::move(everything)), ledger(stepsOf(film.encoders.ranges(), film.keyInterval)) {
    try {
        threads.emplace_back(
            [this, sources = std::make_shared<Sources>(std::move(first))] { work(std::move(*sources)); });
        for (int i = 1; i < count; ++i)
            threads.emplace_back([this] { work(std::nullopt); });
    } catch (...) { // no thread to be had
        stop();
        throw;
    }
}

RangeWorkers::~RangeWorkers() {
    stop();
}

void RangeWorkers::stop() {
    stopped = true;
    ledger.stop();
    film.packets.stop();
    for (std::thread& thread : threads)
        if (thread.joinable()) thread.join();
}

void RangeWorkers::check() {
    const std::lock_guard lock(mutex);
    if (failure) std::rethrow_exception(failure);
    if (film.cancel && *film.cancel) throw RecordingError("cancelled");
}

void RangeWorkers::work(std::optional<Sources> sources) {
    try {
        const std::size_t count = film.encoders.ranges().size();
        double reached = 0;
        for (std::size_t range = nextRange++; range < count; range = nextRange++) {
            if (!sources) sources.emplace(film.open());
            reached = make(range, *sources, reached);
        }
    } catch (...) {
        // The first failure counts; what it brings about in others is nobody's business.
        {
            const std::lock_guard lock(mutex);
            if (!failure && !stopped) failure = std::current_exception();
            stopped = true;
        }
        ledger.stop();
        film.packets.stop();
    }
}

void RangeWorkers::throwWhenStopped() const {
    if (stopped || (film.cancel && *film.cancel)) throw RecordingError("cancelled");
}

/// Decodes up to a time in small steps: a jump into the middle of what is between two key frames takes longer
/// than whoever cancels should wait. The screen has been read up to `reached`.
void RangeWorkers::approach(double seconds, double reached, FrameCursor& screen) {
    constexpr double step = 0.1;
    const auto after = std::upper_bound(film.keyTimes.begin(), film.keyTimes.end(), seconds);
    if (after == film.keyTimes.begin()) return;
    for (double time = std::max(*(after - 1), reached); time < seconds; time += step) {
        throwWhenStopped();
        screen.at(time);
    }
}

/// Returns up to where the screen has been read then, in seconds of the recording.
double RangeWorkers::make(std::size_t range, Sources& sources, double reached) {
    const FilmRange frames = film.encoders.ranges()[range];
    const auto sourceTime = [&](std::int64_t frame) {
        return film.scene.times().sourceTime(static_cast<double>(frame) / film.fps);
    };
    approach(sourceTime(frames.begin), reached, sources.screen);
    const std::unique_ptr<VideoEncoder> encoder = film.encoders.make(range);
    // A new one, also where the range before was made here: what is redrawn must not depend on that.
    Canvas canvas(film.compositor, film.canvasThreads);
    CameraSource* camera = sources.camera ? &*sources.camera : nullptr;
    FrameRenderer renderer({film.scene, canvas, sources.screen, camera, *encoder, film.fps}, frames.begin,
                           frames.end);
    for (bool more = true; more;) {
        throwWhenStopped();
        const std::int64_t passed = renderer.next() - frames.begin;
        if (passed % film.keyInterval == 0) {
            if (passed > 0) ledger.enter(range, encoder->tally());
            if (range > 0)
                encoder->setElsewhere(ledger.before(range, static_cast<int>(passed / film.keyInterval)));
        }
        const std::int64_t repeatedBefore = renderer.framesRepeated();
        more = renderer.appendNext();
        if (renderer.error()) throw *renderer.error();
        repeated += renderer.framesRepeated() - repeatedBefore;
        workDone += film.work.of(renderer.next() - 1);
        ++done;
    }
    encoder->finish(frames.end);
    ledger.enter(range, encoder->tally());
    film.packets.close(range);
    return sourceTime(frames.end - 1);
}

} // namespace RecordCore
