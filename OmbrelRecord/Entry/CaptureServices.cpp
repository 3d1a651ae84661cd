#include "OmbrelRecord/Entry/CaptureServices.h"

#include "OmbrelRecord/Entry/Backends.h"
#include "OmbrelRecord/Entry/Module.h"
#include "OmbrelRecord/Entry/Modules/Modules.h"
#include "RecordCore/Model/RecordingError.h"

#include <utility>

namespace OmbrelRecord {

using namespace RecordCore;

namespace {

// Each stands in for the module of its name until it is asked something.

class LaterScreen final : public ScreenBackend {
public:
    bool accessGranted() const override { return screen().accessGranted(); }
    std::vector<DisplayInfo> displays() const override { return screen().displays(); }
    std::vector<WindowInfo> windows() const override { return screen().windows(); }
    std::unique_ptr<ScreenStream> openScreen(const ScreenSource& source, int fps) const override {
        loadKernels();
        return screen().openScreen(source, fps);
    }
    std::unique_ptr<InputSource> openInput() const override { return screen().openInput(); }
    std::unique_ptr<WindowBounds> openBounds(std::uint32_t window, int width, int height) const override {
        return screen().openBounds(window, width, height);
    }
    void activate(std::uint32_t window) const override { screen().activate(window); }

private:
    static const ScreenBackend& screen() {
        static const std::unique_ptr<ScreenBackend> backend = module<Modules::Screen>().screen();
        return *backend;
    }
};

class LaterSound final : public SoundBackend {
public:
    std::vector<SoundDevice> microphones() const override { return sound().microphones(); }
    std::string defaultMicrophone() const override { return sound().defaultMicrophone(); }
    std::unique_ptr<SoundStream> openSystemSound() const override { return sound().openSystemSound(); }
    std::unique_ptr<SoundStream> openMicrophone(const std::string& id) const override {
        return sound().openMicrophone(id);
    }

private:
    static const SoundBackend& sound() {
        static const std::unique_ptr<SoundBackend> backend = module<Modules::Sound>().sound();
        return *backend;
    }
};

class LaterCameras final : public CameraBackend {
public:
    std::vector<CameraDevice> cameras() const override { return backend().cameras(); }
    std::unique_ptr<CameraStream> openCamera(const std::string& id) const override {
        loadKernels();
        return backend().openCamera(id);
    }

private:
    static const CameraBackend& backend() {
        static const std::unique_ptr<CameraBackend> made =
            module<Modules::Camera>().cameras([] { return module<Modules::Media>().pictureDecoder(); });
        return *made;
    }
};

/// What is heard where the module cannot be had.
class Silence final : public SoundOutput {
public:
    void start(Source) override {}
    void stop() override {}
    std::optional<double> heard() const override { return {}; }
};

} // namespace

RecordingSession::Services CaptureServices::session(const MediaBackend& media,
                                                    std::function<void(const std::string&)> log) const {
    return {{*screen, sound.get(), media, HostClock::system(), std::move(log)}, cameras.get()};
}

CaptureServices makeCaptureServices() {
    CaptureServices services;
    services.screen = std::make_unique<LaterScreen>();
    services.sound = std::make_unique<LaterSound>();
    services.cameras = std::make_unique<LaterCameras>();
    return services;
}

std::unique_ptr<SoundOutput> makeSoundOutput(const std::function<void(const std::string&)>& log) {
    try {
        return module<Modules::Sound>().output();
    } catch (const RecordingError& error) {
        log(error.what());
        return std::make_unique<Silence>();
    }
}

} // namespace OmbrelRecord
