#pragma once

#include <QtCore/QJsonArray>
#include <QtGui/QGuiApplication>

namespace OmbrelRecord {

/// An application that counts what it is told by hand, and notes what keeps its main thread from the next
/// event for more than 25 ms: work and waiting count, the time in which other programs had the processor does
/// not. For tests: each event costs a few microseconds more. Main thread.
class StallWatch : public QGuiApplication {
public:
    /// As a QGuiApplication's.
    StallWatch(int& argc, char** argv);
    ~StallWatch() override;

    bool notify(QObject* receiver, QEvent* event) override;

    /// The stalls since this was last asked: [{ms, cpuMs, receiver, object, event}], in order.
    QJsonArray take();
    /// How many keys and buttons have been let go over the windows so far.
    int keysHeard() const { return keys; }
    int buttonsHeard() const { return buttons; }
    /// The event that is being handled is the test's own doing and does not count.
    void disregard() { disregarded = true; }

private:
    struct Moment {
        double wall = 0, cpu = 0, waited = 0; ///< seconds; waited: ready to run, without a processor
    };
    Moment now() const;

    int schedule; ///< descriptor of this thread's scheduling figures; negative: there are none
    int depth = 0;
    bool disregarded = false;
    int keys = 0;
    int buttons = 0;
    QJsonArray stalls;
};

} // namespace OmbrelRecord
