#include "OmbrelRecord/AppModel/Diag.h"
#include "OmbrelRecord/Application/Inspection.h"
#include "OmbrelRecord/Application/OmbrelRecordApp.h"
#include "OmbrelRecord/Application/SingleInstance.h"
#include "OmbrelRecord/Application/StallWatch.h"
#include "OmbrelRecord/Entry/AppSession.h"
#include "OmbrelRecord/Entry/Entry.h"
#include "OmbrelRecord/Entry/Jobs.h"
#include "OmbrelRecord/Entry/Tell.h"
#include "OmbrelRecord/Icons/IconSet.h"

#include <QtCore/QFile>
#include <QtCore/QSysInfo>
#include <QtCore/QTimer>
#include <QtGui/QGuiApplication>
#include <csignal>
#include <malloc.h>
#include <memory>
#include <optional>

namespace OmbrelRecord {

namespace {

/// Whether large pieces of memory are kept for the next use when they are freed, as suits whoever shows film
/// after film, or given back to the system, as suits a window that waits.
void keepFreedMemory(bool keep) {
    // The bounds of mallopt(3): the allocator's own choice is to keep what it has once seen freed.
    mallopt(M_MMAP_THRESHOLD, keep ? 32 << 20 : 256 << 10);
    mallopt(M_TRIM_THRESHOLD, keep ? 64 << 20 : 128 << 10);
    if (!keep) malloc_trim(0);
}

} // namespace

int Entry::headless(int argc, char** argv, const std::function<void()>& job) {
    std::signal(SIGPIPE, SIG_IGN); // a connection that is cut is an error, not the end
    // No windows, and no display needed; what captures the screen has connections of its own.
    qputenv("QT_QPA_PLATFORM", "offscreen");
    OmbrelRecordApp::prepare();
    QGuiApplication application(argc, argv);
    OmbrelRecordApp::dress();
    QTimer::singleShot(0, [&job] {
        job();
        QCoreApplication::exit(0);
    });
    return QCoreApplication::exec();
}

int Jobs::application(int argc, char** argv, const std::filesystem::path& file) {
    if (const std::string missing = OmbrelRecordApp::missingDisplay(); !missing.empty()) {
        tell("{}", missing);
        return 1;
    }
    std::signal(SIGPIPE, SIG_IGN); // a connection that is cut is an error, not the end
    keepFreedMemory(false);
    OmbrelRecordApp::prepare();
    const QString inspected = Inspection::wanted();
    const std::unique_ptr<QGuiApplication> application = inspected.isEmpty()
                                                             ? std::make_unique<QGuiApplication>(argc, argv)
                                                             : std::make_unique<StallWatch>(argc, argv);
    SingleInstance instance;
    // The one that runs already may stand in another folder.
    const QString wanted =
        file.empty() ? QString() : QFile::decodeName(std::filesystem::absolute(file).string().c_str());
    if (!instance.claim(wanted)) return 0; // the one that runs already has come to the front
    OmbrelRecordApp::Views views;
    OmbrelRecordApp::dress(&views);
    Diag::install(OMBREL_VERSION, QSysInfo::prettyProductName().toStdString());
    AppSession session;
    views.attend();
    OmbrelRecordApp windows(views, session.model(), &session.preferences());
    session.windows().openMainWindow = [&windows] { windows.openMainWindow(); };
    QObject::connect(&instance, &SingleInstance::startedAgain, &windows, &OmbrelRecordApp::startedAgain);
    if (!windows.openMainWindow()) {
        tell("the window could not be opened; {} tells why", Diag::file().string());
        Diag::flush();
        return 1;
    }
    std::optional<Inspection> inspection;
    if (!inspected.isEmpty()) inspection.emplace(inspected);
    // What the first frame can do without comes after it.
    windows.whenShown([&session, &wanted] {
        session.model().begin();
        if (!wanted.isEmpty()) session.model().openPath(wanted);
        QGuiApplication::setWindowIcon(IconSet::application());
    });
    QObject::connect(&session.model(), &AppModel::screenChanged, &windows,
                     [&session] { keepFreedMemory(session.model().screen() != AppModel::Screen::home); });
    const int status = QCoreApplication::exec();
    Diag::flush();
    return status;
}

} // namespace OmbrelRecord
