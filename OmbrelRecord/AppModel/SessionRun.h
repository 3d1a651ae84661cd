#pragma once

#include "OmbrelRecord/AppModel/AppParts.h"
#include "OmbrelRecord/AppModel/Mailbox.h"
#include "OmbrelRecord/AppModel/SerialQueue.h"
#include "RecordCore/Capture/RecordingSession.h"

#include <atomic>
#include <memory>

namespace OmbrelRecord {

/// A recording by the session's recorders, which work on a queue that may serve other users of the same
/// devices: what was posted to it before has let go of them. Main thread.
class SessionRun : public RecordingRun {
public:
    /// The queue and the services outlive the object.
    SessionRun(SerialQueue& queue, std::filesystem::path folder, const Setup& setup,
               RecordCore::RecordingSession::Services services);
    ~SessionRun() override;

    void start(std::function<void(Started)> done) override;
    void hold() override { work->session->screen().hold(); }
    void stop(std::function<void(Stopped)> done) override;
    double microphoneLevel() const override { return *level; }

private:
    /// The queue's own but for its existence.
    struct Work {
        std::unique_ptr<RecordCore::RecordingSession> session;
        bool running = false;
    };

    Mailbox mailbox;
    SerialQueue& queue;
    std::shared_ptr<Work> work = std::make_shared<Work>();
    std::shared_ptr<std::atomic<double>> level = std::make_shared<std::atomic<double>>(0); ///< any thread's
};

} // namespace OmbrelRecord
