#pragma once

#include "OmbrelRecord/AppModel/AppParts.h"

#include <QtCore/QPointer>
#include <QtGui/QWindow>
#include <functional>
#include <vector>

namespace OmbrelRecord {

/// The system's time.
class SystemFlowClock : public FlowClock {
public:
    double now() override;
    void after(double seconds, QObject* context, std::function<void()> work) override;
};

/// On a Linux desktop the sound service and the camera's device decide, without a question beforehand.
class SessionPermissions : public Permissions {
public:
    void requestMicrophone(std::function<void(bool granted)> done) override;
    void requestCamera(std::function<void(bool granted)> done) override;
};

/// The windows of this application that are no panels: those with a title bar, and those whose object name
/// begins with "main".
class ApplicationWindows : public MainWindows {
public:
    void hide() override;
    void show() override;

    static std::vector<QWindow*> mainWindows();

    /// Opens the main window when there is none.
    std::function<void()> openMainWindow;

private:
    std::vector<QPointer<QWindow>> hiddenWindows;
};

} // namespace OmbrelRecord
