#pragma once

#include "OmbrelRecord/AppModel/Disposal.h"
#include "OmbrelRecord/AppModel/Mailbox.h"
#include "OmbrelRecord/AppModel/SerialQueue.h"
#include "RecordCore/Model/Project.h"

#include <QtCore/QObject>
#include <QtCore/QString>
#include <atomic>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace OmbrelRecord {

/// Listening to a recording for its captions, on a thread of its own, one piece of work at a time. Main
/// thread.
class CaptionWork : public QObject {
    Q_OBJECT

public:
    using Words = std::vector<RecordCore::CaptionWord>;
    /// Runs on the work's thread; tells its progress (0…1) and gives up when `cancel` turns true. Throws with
    /// a message for the user.
    using Listen =
        std::function<Words(const std::function<void(double)>& progress, const std::atomic<bool>& cancel)>;

    explicit CaptionWork(Disposal* disposal = nullptr, QObject* parent = nullptr) :
        QObject(parent), disposal(disposal) {}
    /// Gives up what runs.
    ~CaptionWork() override;

    bool working() const { return isWorking; }
    double progress() const { return share; }
    /// Why the latest work brought nothing; empty when it did, or was given up.
    QString problem() const { return trouble; }

    /// `done` gets the words, at least one, on the main thread. Ignored while it works.
    void start(Listen listen, std::function<void(Words)> done);
    void cancel() { *cancelled = true; }

    /// The language chosen last ("en-US"); the user's own before there is one.
    static QString language();
    /// Remembers it; an empty one changes nothing.
    static void chooseLanguage(const QString& language);

Q_SIGNALS:
    void changed();

private:
    void finish(Words words, const QString& failure, const std::function<void(Words)>& done);

    bool isWorking = false;
    double share = 0;
    QString trouble;
    Mailbox mailbox;
    // Both may come to their end in the disposal.
    std::shared_ptr<std::atomic<bool>> cancelled = std::make_shared<std::atomic<bool>>(false);
    std::shared_ptr<SerialQueue> queue = std::make_shared<SerialQueue>();
    Disposal* disposal;
};

} // namespace OmbrelRecord
