#include "RecordCore/Capture/V4L2/V4L2Cameras.h"

#include "RecordCore/Capture/HostClock.h"
#include "RecordCore/Capture/V4L2/V4L2Device.h"
#include "RecordCore/Model/RecordingError.h"

#include <chrono>
#include <condition_variable>
#include <fmt/format.h>
#include <mutex>
#include <poll.h>
#include <sys/eventfd.h>
#include <thread>
#include <unistd.h>
#include <utility>

namespace RecordCore {

namespace {

constexpr int deviceNumbers = 64;
constexpr int mostFailures = 50;                   // in a row
constexpr std::chrono::seconds firstPicture{4};    // cameras take one or two seconds to wake up
constexpr std::chrono::milliseconds patience{800}; // for the thread to end
constexpr double oldest = 2;                       // a time stamp further back is not of the host clock

std::string devicePath(int number) {
    return fmt::format("/dev/video{}", number);
}

/// Everything the thread needs. It outlives the stream when a driver hangs and the thread is abandoned.
struct Flow {
    Flow(V4L2Device opened, std::unique_ptr<PictureDecoder> pictures) :
        device(std::move(opened)), decoder(std::move(pictures)), wake(eventfd(0, EFD_CLOEXEC)) {
        if (wake < 0) throw RecordingError("camera output");
    }
    ~Flow() { close(wake); }
    Flow(const Flow&) = delete;
    Flow& operator=(const Flow&) = delete;

    std::optional<V4L2Device> device; ///< the thread's
    std::unique_ptr<PictureDecoder> decoder;
    CameraStream::Handlers handlers;
    const int wake; ///< readable when the thread is to end

    std::mutex mutex;
    std::condition_variable changed;
    // Below: guarded by the mutex.
    bool quit = false; ///< no handler may be called any more
    bool over = false; ///< the thread has ended
    bool busy = false; ///< a handler runs
};

/// Calls a handler unless the stream was stopped.
template <class Call>
void tell(Flow& flow, Call call) {
    {
        const std::scoped_lock lock(flow.mutex);
        if (flow.quit) return;
        flow.busy = true;
    }
    call();
    {
        const std::scoped_lock lock(flow.mutex);
        flow.busy = false;
    }
    flow.changed.notify_all();
}

void showNewest(Flow& flow) {
    // Late pictures are discarded: of those that wait only the newest is shown.
    std::optional<V4L2Device::Buffer> newest;
    while (auto next = flow.device->take()) {
        if (newest) flow.device->giveBack(*newest);
        newest = next;
    }
    if (!newest) return;
    const double now = HostClock::system().now();
    const double time =
        newest->time && *newest->time > now - oldest && *newest->time <= now ? *newest->time : now;
    if (!newest->damaged) {
        const PlanarView view = flow.decoder->decode(flow.device->picture(*newest));
        if (!view.empty()) {
            tell(flow, [&] {
                if (flow.handlers.onFrame) flow.handlers.onFrame({view, time});
            });
        }
    }
    flow.device->giveBack(*newest);
}

void run(const std::shared_ptr<Flow>& flow) {
    int failures = 0;
    try {
        for (;;) {
            pollfd waits[2] = {{flow->device->descriptor(), POLLIN, 0}, {flow->wake, POLLIN, 0}};
            if (poll(waits, 2, -1) < 0 && errno != EINTR) break;
            if (waits[1].revents) break;
            if (waits[0].revents & POLLIN) {
                showNewest(*flow);
                failures = 0;
            } else if (waits[0].revents) {
                // An error state without a picture may pass; it must not keep a core busy meanwhile.
                if (++failures > mostFailures) throw RecordingError("the camera is gone");
                showNewest(*flow);
                poll(waits + 1, 1, 20);
            }
        }
    } catch (const std::exception& error) {
        const std::string message = error.what();
        tell(*flow, [&] {
            if (flow->handlers.onEnd) flow->handlers.onEnd(message);
        });
    }
    flow->device.reset(); // the driver may hang here as well
    {
        const std::scoped_lock lock(flow->mutex);
        flow->over = true;
    }
    flow->changed.notify_all();
}

class V4L2Camera : public CameraStream {
public:
    V4L2Camera(std::string camera, std::unique_ptr<PictureDecoder> pictures) :
        id(std::move(camera)), decoder(std::move(pictures)) {}
    ~V4L2Camera() override { stop(); }

    void start(Handlers handlers) override {
        std::optional<V4L2Device> device = find();
        if (!device) throw RecordingError("no camera");
        const std::vector<CameraMode> modes = device->modes();
        const auto best = chooseCameraMode(modes);
        if (!best) throw RecordingError("camera output");
        device->start(modes[*best]);
        flow = std::make_shared<Flow>(std::move(*device), std::move(decoder));
        flow->handlers = std::move(handlers);
        thread = std::thread(run, flow);
    }

    void stop() override {
        if (!flow) return;
        const std::uint64_t one = 1;
        static_cast<void>(!write(flow->wake, &one, sizeof one));
        bool over;
        {
            std::unique_lock lock(flow->mutex);
            flow->quit = true;
            over = flow->changed.wait_for(lock, patience, [this] { return flow->over; });
            // A handler that runs is always waited for; only the driver is not.
            flow->changed.wait(lock, [this] { return !flow->busy; });
        }
        if (over)
            thread.join();
        else
            thread.detach();
        flow.reset();
    }

private:
    std::optional<V4L2Device> find() const {
        if (!id.empty()) return V4L2Device::open(id);
        bool refused = false;
        for (int number = 0; number < deviceNumbers; ++number) {
            try {
                auto device = V4L2Device::open(devicePath(number));
                // A camera often has a second device that delivers no pictures, only data about them.
                if (device && !device->modes().empty()) return device;
            } catch (const RecordingError&) {
                refused = true;
            }
        }
        if (refused) throw RecordingError("camera busy");
        return {};
    }

    const std::string id;
    std::unique_ptr<PictureDecoder> decoder;
    std::shared_ptr<Flow> flow;
    std::thread thread;
};

} // namespace

std::vector<CameraDevice> V4L2Cameras::cameras() const {
    std::vector<CameraDevice> found;
    for (int number = 0; number < deviceNumbers; ++number) {
        try {
            const auto device = V4L2Device::open(devicePath(number));
            if (device && !device->modes().empty()) found.push_back({device->path(), device->name()});
        } catch (const RecordingError&) {
            found.push_back({devicePath(number), devicePath(number)}); // there, but somebody else has it
        }
    }
    return found;
}

std::unique_ptr<CameraStream> V4L2Cameras::openCamera(const std::string& id) const {
    return std::make_unique<V4L2Camera>(id, makeDecoder());
}

} // namespace RecordCore
