#pragma once

#include "OmbrelRecord/AppModel/Disposal.h"
#include "OmbrelRecord/AppModel/Mailbox.h"
#include "OmbrelRecord/AppModel/SerialQueue.h"
#include "OmbrelRecord/EditorModel/EditorParts.h"

#include <QtCore/QObject>
#include <QtCore/QString>
#include <atomic>
#include <filesystem>
#include <memory>

namespace OmbrelRecord {

/// The making of one film, on a thread of its own. Main thread.
class ExportWork : public QObject {
    Q_OBJECT

public:
    enum class State { idle, working, done, failed };

    explicit ExportWork(Disposal* disposal = nullptr, QObject* parent = nullptr) :
        QObject(parent), disposal(disposal) {}
    /// Gives up what runs.
    ~ExportWork() override;

    State state() const { return now; }
    double progress() const { return share; } ///< 0…1
    QString failure() const { return problem; }
    /// The film made last; empty before the first.
    const std::filesystem::path& film() const { return made; }
    bool cancelling() const { return *cancelled && now == State::working; }

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
    Mailbox mailbox;
    // Both may come to their end in the disposal.
    std::shared_ptr<std::atomic<bool>> cancelled = std::make_shared<std::atomic<bool>>(false);
    std::shared_ptr<SerialQueue> queue = std::make_shared<SerialQueue>();
    Disposal* disposal;
};

} // namespace OmbrelRecord
