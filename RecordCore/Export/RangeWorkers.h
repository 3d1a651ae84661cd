#pragma once

#include "RecordCore/Export/FilmEncoders.h"
#include "RecordCore/Export/FrameRenderer.h"
#include "RecordCore/Export/PacketQueue.h"
#include "RecordCore/Export/RateLedger.h"
#include "RecordCore/Export/WorkForecast.h"
#include "RecordCore/Rendering/Compositor.h"

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <exception>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

namespace RecordCore {

/// Composes and encodes the ranges of a film on threads of its own, each with a decoder, a canvas and an
/// encoder of its own; scene and compositor are shared. What comes out is the same whatever the number of
/// workers.
class RangeWorkers {
public:
    /// What one worker reads from.
    struct Sources {
        FrameCursor screen;
        std::optional<CameraSource> camera;
    };
    /// What all share; it outlives the workers.
    struct Film {
        const Scene& scene;
        const WorkForecast& work;
        std::shared_ptr<const Compositor> compositor;
        FilmEncoders& encoders;
        PacketQueue& packets; ///< the encoders' packets arrive there
        double fps;
        int keyInterval;                 ///< frames
        std::function<Sources()> open;   ///< for the workers after the first, on their threads
        std::vector<double> keyTimes;    ///< of the recording, where they are known
        int canvasThreads;               ///< as of Canvas, for each worker
        const std::atomic<bool>* cancel; ///< may be null
    };

    /// `count` workers, the first of which takes the sources given. They begin at once.
    RangeWorkers(Film film, int count, Sources first);
    /// Stops them where they are.
    ~RangeWorkers();
    RangeWorkers(const RangeWorkers&) = delete;
    RangeWorkers& operator=(const RangeWorkers&) = delete;

    std::int64_t framesDone() const { return done; }
    /// The share of the work that is done, 0…1.
    double shareDone() const { return std::min(workDone / film.work.total(), 1.0); }
    /// Of these, frames that equalled the one before and cost (next to) nothing.
    std::int64_t framesRepeated() const { return repeated; }

    /// Throws what went wrong, if something did; RecordingError "cancelled" when asked to.
    void check();

private:
    void work(std::optional<Sources> sources);
    double make(std::size_t range, Sources& sources, double reached);
    void approach(double seconds, double reached, FrameCursor& screen);
    void throwWhenStopped() const;
    void stop();

    Film film;
    RateLedger ledger;
    std::atomic<std::size_t> nextRange{0};
    std::atomic<std::int64_t> done{0};
    std::atomic<double> workDone{0};
    std::atomic<std::int64_t> repeated{0};
    std::atomic<bool> stopped{false};

    std::mutex mutex; ///< guards what follows
    std::exception_ptr failure;

    std::vector<std::thread> threads;
};

} // namespace RecordCore
