#pragma once

#include "OmbrelRecord/AppModel/SerialQueue.h"
#include "OmbrelRecord/EditorModel/EditorParts.h"

#include <QtCore/QObject>
#include <QtCore/QString>
#include <atomic>
#include <filesystem>

namespace OmbrelRecord {

/// The making of one film, on a thread of its own. Main thread.
class ExportWork : public QObject {
    Q_OBJECT

public:
    enum class State { idle, working, done, failed };

    using QObject::QObject;
    /// Gives up what runs.
    ~ExportWork() override;

    State state() const { return now; }
    double progress() const { return share; } ///< 0…1
    QString failure() const { return problem; }
    /// The film made last; empty before the first.
    const std::filesystem::path& film() const { return made; }
    bool cancelling() const { return cancelled && now == State::working; }

    /// `write` is what EditorParts has for it. Ignored while a film is being made.
    void start(ExportJob job, decltype(EditorParts::exportFilm) write);
    /// Back to idle as soon as the work notices.
    void cancel();

Q_SIGNALS:
    void changed();
    /// There is a new film; before `changed`.
    void finished();

private:
    void end(const std::string& failure, const std::filesystem::path& destination);

    State now = State::idle;
    double share = 0;
    QString problem;
    std::filesystem::path made;
    std::atomic<bool> cancelled{false};
    SerialQueue queue; ///< last: ended before what its work uses
};

} // namespace OmbrelRecord
