#include "OmbrelRecord/EditorModel/ExportWork.h"

#include "OmbrelRecord/AppModel/Diag.h"

#include <algorithm>
#include <exception>
#include <utility>

namespace OmbrelRecord {

ExportWork::~ExportWork() {
    *cancelled = true;
    Disposal::drop(disposal, std::move(queue));
}

void ExportWork::start(ExportJob job, decltype(EditorParts::exportFilm) write) {
    if (now == State::working) return;
    now = State::working;
    share = 0;
    problem.clear();
    *cancelled = false;
    Q_EMIT changed();
    queue->post([this, to = mailbox.address(), cancelled = cancelled, job = std::move(job),
                 write = std::move(write)] {
        std::string failure;
        try {
            std::filesystem::create_directories(job.destination.parent_path());
            write(
                job,
                [this, &to](double done) {
                    to.post([this, done] {
                        if (now != State::working) return;
                        share = std::clamp(done, 0.0, 1.0);
                        Q_EMIT changed();
                    });
                },
                *cancelled);
        } catch (const std::exception& error) {
            failure = *error.what() ? error.what() : "unknown error";
        }
        to.post([this, failure, destination = job.destination] { end(failure, destination); });
    });
}

void ExportWork::end(const std::string& failure, const std::filesystem::path& destination) {
    if (failure.empty()) {
        now = State::done;
        share = 1;
        made = destination;
        Q_EMIT finished();
    } else if (*cancelled) {
        now = State::idle;
        share = 0;
    } else {
        now = State::failed;
        problem = QString::fromStdString(failure);
        Diag::log("editor: export failed " + failure);
    }
    Q_EMIT changed();
}

void ExportWork::cancel() {
    *cancelled = true;
    Q_EMIT changed();
}

} // namespace OmbrelRecord
