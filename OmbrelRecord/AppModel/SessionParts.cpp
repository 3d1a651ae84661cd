#include "OmbrelRecord/AppModel/SessionParts.h"

#include "RecordCore/Capture/CameraRecorder.h"
#include "RecordCore/Capture/HostClock.h"
#include "RecordCore/Capture/Microphones.h"

#include <QtCore/QTimer>
#include <QtGui/QGuiApplication>
#include <chrono>
#include <utility>

namespace OmbrelRecord {

double SystemFlowClock::now() {
    return RecordCore::HostClock::system().now();
}

void SystemFlowClock::after(double seconds, QObject* context, std::function<void()> work) {
    using namespace std::chrono;
    QTimer::singleShot(duration_cast<milliseconds>(duration<double>(seconds)), Qt::PreciseTimer, context,
                       std::move(work));
}

void SessionPermissions::requestMicrophone(std::function<void(bool)> done) {
    done(RecordCore::Microphones::requestAccess());
}

void SessionPermissions::requestCamera(std::function<void(bool)> done) {
    done(RecordCore::CameraRecorder::requestAccess());
}

std::vector<QWindow*> ApplicationWindows::mainWindows() {
    std::vector<QWindow*> found;
    for (QWindow* window : QGuiApplication::topLevelWindows()) {
        if (window->type() != Qt::Window) continue; // panels, pop-ups, tool tips
        const bool titled = !window->flags().testFlag(Qt::FramelessWindowHint);
        if (titled || window->objectName().startsWith(QLatin1String("main"))) found.push_back(window);
    }
    return found;
}

void ApplicationWindows::hide() {
    hiddenWindows.clear();
    for (QWindow* window : mainWindows()) {
        if (!window->isVisible()) continue;
        // It comes back where the user had it: a place asked for is kept, others are the window manager's.
        if (window->windowState() == Qt::WindowNoState) window->setGeometry(window->geometry());
        window->hide();
        hiddenWindows.emplace_back(window);
    }
}

void ApplicationWindows::show() {
    for (const QPointer<QWindow>& window : std::exchange(hiddenWindows, {}))
        if (window) window->show();
    std::vector<QWindow*> windows = mainWindows();
    if (windows.empty() && openMainWindow) {
        openMainWindow();
        windows = mainWindows();
    }
    for (QWindow* window : windows) {
        if (!window->isVisible()) window->show();
        window->raise();
        window->requestActivate();
    }
}

} // namespace OmbrelRecord
