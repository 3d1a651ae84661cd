#include "OmbrelRecord/AppModel/SessionRun.h"

#include "RecordCore/Capture/Microphones.h"

#include <exception>
#include <utility>

namespace OmbrelRecord {

using RecordCore::RecordingSession;

SessionRun::SessionRun(SerialQueue& queue, std::filesystem::path folder, const Setup& setup,
                       RecordingSession::Services services) :
    queue(queue) {
    RecordingSession::Setup session;
    session.screen.source = setup.source;
    session.screen.systemAudio = setup.systemAudio;
    session.screen.microphone = setup.microphone;
    session.screen.microphoneID = setup.microphoneID;
    session.screen.fps = setup.fps;
    session.screen.onMicrophoneLevel = [heard = level](double loudness) {
        *heard = RecordCore::Microphones::smoothed(*heard, loudness);
    };
    session.camera = setup.camera;
    session.cameraID = setup.cameraID;
    work->session =
        std::make_unique<RecordingSession>(std::move(folder), std::move(session), std::move(services));
    work->session->onStop = [this, to = mailbox.address()](const std::string& message) {
        to.post([this, message] {
            if (onEnd) onEnd(message);
        });
    };
}

SessionRun::~SessionRun() {
    queue.post([work = std::move(work)] {
        if (!work->running) return;
        try {
            work->session->stop();
        } catch (const std::exception&) {
            // Nobody is left to be told; what there is can be recovered.
        }
    });
}

void SessionRun::start(std::function<void(Started)> done) {
    queue.post([work = work, to = mailbox.address(), done = std::move(done)] {
        Started result;
        try {
            work->session->start();
            work->running = true;
            result.problem = work->session->problem();
        } catch (const std::exception& error) {
            result.failure = error.what();
        }
        to.post([done, result] { done(result); });
    });
}

void SessionRun::stop(std::function<void(Stopped)> done) {
    queue.post([work = work, to = mailbox.address(), done = std::move(done)] {
        Stopped result;
        work->running = false;
        const std::string before = work->session->problem();
        try {
            result.log = work->session->stop();
            // What was told at the start is not told again.
            if (work->session->problem() != before) result.problem = work->session->problem();
        } catch (const std::exception& error) {
            result.failure = error.what();
        }
        to.post([done, result = std::move(result)] { done(result); });
    });
}

} // namespace OmbrelRecord
