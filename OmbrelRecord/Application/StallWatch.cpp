#include "OmbrelRecord/Application/StallWatch.h"

#include <QtCore/QEvent>
#include <QtCore/QJsonObject>
#include <QtCore/QMetaEnum>
#include <QtCore/QPointer>
#include <QtCore/QThread>
#include <QtGui/QKeyEvent>
#include <cstdio>
#include <ctime>
#include <fcntl.h>
#include <unistd.h>
#include <utility>

namespace OmbrelRecord {

namespace {

constexpr double noted = 0.025; ///< seconds

double read(clockid_t clock) {
    timespec time{};
    clock_gettime(clock, &time);
    return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
}

} // namespace

StallWatch::StallWatch(int& argc, char** argv) :
    QGuiApplication(argc, argv), schedule(open("/proc/thread-self/schedstat", O_RDONLY | O_CLOEXEC)) {}

StallWatch::~StallWatch() {
    if (schedule >= 0) close(schedule);
}

StallWatch::Moment StallWatch::now() const {
    Moment moment{read(CLOCK_MONOTONIC), read(CLOCK_THREAD_CPUTIME_ID), 0};
    char text[96] = {};
    unsigned long long ran = 0, waited = 0; // nanoseconds
    if (schedule >= 0 && pread(schedule, text, sizeof text - 1, 0) > 0 &&
        std::sscanf(text, "%llu %llu", &ran, &waited) == 2)
        moment.waited = 1e-9 * static_cast<double>(waited);
    return moment;
}

bool StallWatch::notify(QObject* receiver, QEvent* event) {
    // Other threads have their own events; what is sent from within the handling of one belongs to that.
    if (QThread::currentThread() != thread() || depth > 0) return QGuiApplication::notify(receiver, event);
    const QPointer<QObject> watched(receiver);
    const char* type = receiver ? receiver->metaObject()->className() : "";
    const QEvent::Type kind = event->type();
    if (receiver && receiver->isWindowType()) {
        if (kind == QEvent::KeyRelease && !static_cast<QKeyEvent*>(event)->isAutoRepeat()) ++keys;
        if (kind == QEvent::MouseButtonRelease) ++buttons;
    }
    const Moment before = now();
    disregarded = false;
    ++depth;
    const bool taken = QGuiApplication::notify(receiver, event);
    --depth;
    const Moment after = now();
    const double held = (after.wall - before.wall) - (after.waited - before.waited);
    if (held > noted && !disregarded)
        stalls.append(
            QJsonObject{{QStringLiteral("ms"), held * 1000},
                        {QStringLiteral("cpuMs"), (after.cpu - before.cpu) * 1000},
                        {QStringLiteral("receiver"), QString::fromLatin1(type)},
                        {QStringLiteral("object"), watched ? watched->objectName() : QString()},
                        {QStringLiteral("event"),
                         QString::fromLatin1(QMetaEnum::fromType<QEvent::Type>().valueToKey(kind))}});
    return taken;
}

QJsonArray StallWatch::take() {
    return std::exchange(stalls, {});
}

} // namespace OmbrelRecord
