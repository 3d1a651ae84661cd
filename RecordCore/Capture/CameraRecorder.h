#pragma once

#include "RecordCore/Capture/CameraStream.h"
#include "RecordCore/Media/MediaBackend.h"

#include <condition_variable>
#include <cstdint>
#include <exception>
#include <filesystem>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

namespace RecordCore {

/// Records one camera into a file of its own while a recording runs: H.264, 3 Mbit/s, at the times at which
/// the camera saw its frames. The file stays readable up to the last second while it grows.
///
/// `start` and `stop` are called from one thread; frames arrive on the camera's own.
class CameraRecorder {
public:
    struct Report {
        std::int64_t frames = 0;  ///< written
        std::int64_t dropped = 0; ///< delivered but not written: of another size, or out of order
    };

    /// The backends must outlive the object. An empty id is the default camera.
    CameraRecorder(const CameraBackend& cameras, const MediaBackend& media, std::string id = {});
    /// Stops without a word when `stop` was not called.
    ~CameraRecorder();
    CameraRecorder(const CameraRecorder&) = delete;
    CameraRecorder& operator=(const CameraRecorder&) = delete;

    /// Whether cameras may be used. On Linux the device itself decides, without a question beforehand.
    static bool requestAccess() { return true; }

    /// Called once, on the camera's thread, when the camera goes away while it is recorded. What was recorded
    /// is kept; `stop` is still to be called. Set before `start`.
    std::function<void(const std::string& message)> onEnd;

    /// Deletes an old file and starts the camera. Throws RecordingError: "no camera", "camera busy",
    /// "camera output".
    void start(const std::filesystem::path& file);

    /// Stops the camera and finishes the file. When no frame came there is none. Throws RecordingError when
    /// the file could not be written.
    void stop();

    /// Host clock seconds of the first frame written.
    std::optional<double> firstFrameTime() const;
    Report report() const;

private:
    void add(const CameraFrame& frame);
    void open(const PlanarView& picture, double time);
    void tick();

    const CameraBackend& cameras;
    const MediaBackend& media;
    const std::string id;
    std::unique_ptr<CameraStream> stream;
    std::jthread ticker; ///< closes fragments when no frame comes

    mutable std::mutex mutex;
    // All below is guarded by the mutex.
    std::filesystem::path file;
    std::condition_variable_any stopped;
    std::unique_ptr<MovieWriter> movie; ///< made with the first frame
    std::unique_ptr<VideoEncoder> encoder;
    std::exception_ptr failure;
    std::optional<double> first;
    std::int64_t lastTick = 0; ///< of the last frame written, in the encoder's time base
    int width = 0;
    int height = 0;
    Report facts;
};

} // namespace RecordCore
