#include "OmbrelRecord/Application/OmbrelRecordApp.h"

#include "OmbrelRecord/AppModel/Diag.h"
#include "OmbrelRecord/EditorModel/EditorModel.h"
#include "OmbrelRecord/Icons/IconProvider.h"
#include "OmbrelRecord/Icons/IconSet.h"
#include "OmbrelRecord/Theme/Theme.h"

#include <QtCore/QDebug>
#include <QtCore/QFile>
#include <QtCore/QLocale>
#include <QtCore/QPointer>
#include <QtCore/QTimer>
#include <QtCore/QTranslator>
#include <QtCore/QtPlugin>
#include <QtGui/QFontMetricsF>
#include <QtGui/QGuiApplication>
#include <QtGui/QIcon>
#include <QtGui/QOffscreenSurface>
#include <QtGui/QOpenGLContext>
#include <QtGui/QOpenGLFunctions>
#include <QtGui/QPainterPath>
#include <QtGui/QRegion>
#include <QtGui/QScreen>
#include <QtQml/QQmlAbstractUrlInterceptor>
#include <QtQml/QQmlComponent>
#include <QtQml/QQmlExtensionPlugin>
#include <QtQuick/QSGRendererInterface>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>
#include <utility>

Q_IMPORT_QML_PLUGIN(OmbrelRecordPlugin)

namespace OmbrelRecord {

namespace {

/// Takes views from the source tree instead of those compiled in, so that a change is seen without a build.
class SourceViews : public QQmlAbstractUrlInterceptor {
public:
    explicit SourceViews(const QString& sources) : sources(sources) {}
    QUrl intercept(const QUrl& url, DataType) override {
        if (!url.path().startsWith(QLatin1String("/qt/qml/OmbrelRecord/"))) return url;
        for (const char* folder : {"Theme", "HomeView", "RecordingHUD", "EditorView", "Application"}) {
            const QString file =
                sources + QLatin1Char('/') + QLatin1String(folder) + QLatin1Char('/') + url.fileName();
            if (url.fileName().endsWith(QLatin1String(".qml")) && QFile::exists(file))
                return QUrl::fromLocalFile(file);
        }
        return url;
    }

private:
    QString sources;
};

bool answers(const sockaddr_un& address, std::size_t length) {
    const int connection = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (connection < 0) return false;
    const bool there =
        connect(connection, reinterpret_cast<const sockaddr*>(&address), static_cast<socklen_t>(length)) == 0;
    close(connection);
    return there;
}

/// Whether a server listens on the socket of that path; also on the abstract one of that name.
bool listening(const std::string& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.size() + 2 > sizeof(address.sun_path)) return false;
    std::memcpy(address.sun_path, path.c_str(), path.size() + 1);
    if (answers(address, sizeof(address))) return true;
    std::memset(address.sun_path, 0, sizeof(address.sun_path));
    std::memcpy(address.sun_path + 1, path.data(), path.size());
    return answers(address, offsetof(sockaddr_un, sun_path) + 1 + path.size());
}

/// Whether the computer has a graphics processor at all that programs may use. To ask OpenGL costs 30 MB and
/// a tenth of a second where there is none: what emulates one is a compiler.
bool hasRenderNode() {
    std::error_code ignored;
    for (const auto& entry : std::filesystem::directory_iterator("/dev/dri", ignored))
        if (entry.path().filename().string().starts_with("renderD") &&
            access(entry.path().c_str(), R_OK | W_OK) == 0)
            return true;
    return access("/dev/nvidiactl", R_OK | W_OK) == 0;
}

/// Whether windows can be drawn by a graphics processor; without one, drawing in software is quicker than
/// what emulates one.
bool hasGraphics() {
    if (!hasRenderNode()) return false;
    QOpenGLContext context;
    if (!context.create()) return false;
    QOffscreenSurface surface;
    surface.setFormat(context.format());
    surface.create();
    if (!context.makeCurrent(&surface)) return false;
    const auto* renderer = reinterpret_cast<const char*>(context.functions()->glGetString(GL_RENDERER));
    const QByteArray name = QByteArray(renderer ? renderer : "").toLower();
    context.doneCurrent();
    return !name.isEmpty() && !name.contains("llvmpipe") && !name.contains("softpipe") &&
           !name.contains("swrast");
}

std::vector<PanelPlacement::Display> displays() {
    std::vector<PanelPlacement::Display> found;
    for (const QScreen* screen : QGuiApplication::screens()) {
        const QRect points = screen->geometry();
        const qreal ratio = screen->devicePixelRatio();
        // Displays keep their place in pixels; what lies in them counts in points.
        const QRect pixels(points.topLeft(), (QSizeF(points.size()) * ratio).toSize());
        found.push_back({pixels, screen->availableGeometry(), points.topLeft(), ratio,
                         screen == QGuiApplication::primaryScreen()});
    }
    return found;
}

/// Cuts a panel's window to its outline, for desktops that show what is transparent as black. The window
/// keeps a little more than is drawn, so that the outline stays smooth on the others. To be called when the
/// panel has its place: one that is moved between being made and being shown may be told a wrong one.
void shape(QQuickWindow& panel, int inset, int radius) {
    QPainterPath outline;
    outline.addRoundedRect(QRectF(QPointF(), panel.size()).adjusted(inset, inset, -inset, -inset), radius,
                           radius);
    panel.create();
    panel.setMask(QRegion(outline.toFillPolygon().toPolygon()));
}

constexpr QSize panelSize(320, 82);
constexpr auto geometryKey = "window/geometry";
constexpr auto maximizedKey = "window/maximized";

} // namespace

std::string OmbrelRecordApp::missingDisplay() {
    const std::string none = "Ombrel Record needs a desktop to open its window. Log in to one and start it "
                             "there, or use its commands: ombrel-record --help lists them.";
    if (std::getenv("QT_QPA_PLATFORM")) return {};
    const char* wayland = std::getenv("WAYLAND_DISPLAY");
    if (wayland && *wayland) {
        const char* runtime = std::getenv("XDG_RUNTIME_DIR");
        const std::string path =
            *wayland == '/' ? wayland : std::string(runtime ? runtime : "/run/user") + "/" + wayland;
        if (listening(path)) return {};
    }
    const char* x11 = std::getenv("DISPLAY");
    if (!x11 || !*x11) return none;
    // Only a display of this computer can be tried without waiting for the network.
    const std::string display = x11;
    const std::size_t colon = display.find(':');
    if (colon == std::string::npos) return none;
    if (colon != 0) return {};
    const std::string number =
        display.substr(1, display.find('.') == std::string::npos ? std::string::npos : display.find('.') - 1);
    if (listening("/tmp/.X11-unix/X" + number)) return {};
    return "The display " + display + " does not answer. " + none;
}

void OmbrelRecordApp::prepare() {
    QCoreApplication::setOrganizationName(QStringLiteral("Ombrel Record"));
    QCoreApplication::setApplicationName(QStringLiteral("Ombrel Record"));
    QCoreApplication::setApplicationVersion(QStringLiteral(OMBREL_VERSION));
    QGuiApplication::setDesktopFileName(QStringLiteral("ombrel-record"));
    QGuiApplication::setHighDpiScaleFactorRoundingPolicy(Qt::HighDpiScaleFactorRoundingPolicy::PassThrough);
}

void OmbrelRecordApp::translate(const QLocale& locale) {
    static QPointer<QTranslator> translator;
    delete translator;
    translator = new QTranslator(QCoreApplication::instance());
    if (translator->load(locale, QStringLiteral("ombrel-record"), QStringLiteral("_"),
                         QStringLiteral(":/translations")))
        QCoreApplication::installTranslator(translator);
}

void OmbrelRecordApp::dress(Views* views) {
    const auto attend = [views] {
        if (views) views->attend();
    };
    translate(QLocale::system());
    attend();
    Theme::loadFonts();
    attend();
    QFont font(QStringLiteral("Plus Jakarta Sans"));
    font.setPixelSize(13);
    font.setWeight(QFont::Medium);
    QGuiApplication::setFont(font);
    // What fonts there are is read at the first look at one.
    (void)QFontMetricsF(font).height();
    attend();
    if (!qEnvironmentVariableIsSet("QT_QUICK_BACKEND") && !hasGraphics())
        QQuickWindow::setSceneGraphBackend(QStringLiteral("software"));
}

void OmbrelRecordApp::prepare(QQmlEngine& engine) {
    engine.addImportPath(QStringLiteral("qrc:/qt/qml"));
    engine.addImageProvider(QStringLiteral("icons"), new IconProvider);
    // For those who draw the views: the folder OmbrelRecord of a source tree.
    const QString sources = qEnvironmentVariable("OMBREL_VIEWS");
    if (!sources.isEmpty()) {
        static SourceViews views(sources);
        engine.addUrlInterceptor(&views);
    }
}

Theme* OmbrelRecordApp::theme(QQmlEngine& engine) {
    // The types of a module are known once something imports it.
    QQmlComponent component(&engine);
    component.setData("import QtQml\nimport OmbrelRecord\nQtObject {}", QUrl());
    if (component.isError()) qWarning() << component.errorString();
    return engine.singletonInstance<Theme*>(qmlTypeId("OmbrelRecord", 1, 0, "Theme"));
}

QUrl OmbrelRecordApp::view(const QString& type) {
    return QUrl(QStringLiteral("qrc:/qt/qml/OmbrelRecord/%1.qml").arg(type));
}

OmbrelRecordApp::Views::Views() {
    prepare(engine);
    for (const char* type : {"MainWindow", "HomeView"})
        ahead.push_back(
            std::make_unique<QQmlComponent>(&engine, view(QLatin1String(type)), QQmlComponent::Asynchronous));
}

void OmbrelRecordApp::Views::attend() {
    // The engine's way of waking the main thread is a posted event of this kind.
    QCoreApplication::sendPostedEvents(nullptr, QEvent::User);
}

OmbrelRecordApp::OmbrelRecordApp(Views& views, AppModel& model, QSettings* settings, QObject* parent) :
    QObject(parent), model(model), settings(settings), views(views), engine(views.engine) {
    // While a recording runs no window may be open at all.
    QGuiApplication::setQuitOnLastWindowClosed(false);
    connect(&model, &AppModel::countdownChanged, this, &OmbrelRecordApp::countdownChanged);
    connect(&model, &AppModel::flowChanged, this, &OmbrelRecordApp::flowChanged);
    connect(&model, &AppModel::questionChanged, this, &OmbrelRecordApp::questionChanged);
}

OmbrelRecordApp::~OmbrelRecordApp() {
    // What has been retired goes before the engine does.
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    delete question;
    delete panel;
    delete counter;
    delete window;
}

QQuickWindow* OmbrelRecordApp::make(const QString& type) {
    QQmlComponent component(&engine, view(type));
    if (!component.isReady()) {
        Diag::log("window: failed " + component.errorString().toStdString());
        return nullptr;
    }
    QObject* object = component.createWithInitialProperties(
        {{QStringLiteral("app"), QVariant::fromValue<QObject*>(&model)}});
    auto* made = qobject_cast<QQuickWindow*>(object);
    if (!made) {
        Diag::log("window: failed " + component.errorString().toStdString());
        delete object;
        return nullptr;
    }
    QQmlEngine::setObjectOwnership(made, QQmlEngine::CppOwnership);
    // Told here, a failure is no reason to end the process.
    connect(made, &QQuickWindow::sceneGraphError, this,
            [](QQuickWindow::SceneGraphError, const QString& message) {
                Diag::log("window: cannot draw: " + message.toStdString());
            });
    return made;
}

bool OmbrelRecordApp::openMainWindow() {
    if (!window) {
        window = make(QStringLiteral("MainWindow"));
        views.ahead.clear();
        if (!window) return false;
        // What loads asynchronously is made in the pauses between its frames; without this, in one go.
        engine.setIncubationController(window->incubationController());
        connect(window, SIGNAL(quitWanted()), this, SLOT(quit()));
        restore();
    }
    window->show();
    window->raise();
    window->requestActivate();
    return true;
}

void OmbrelRecordApp::whenShown(std::function<void()> work) {
    const auto once = [todo = std::make_shared<std::function<void()>>(std::move(work))] {
        if (const auto now = std::exchange(*todo, nullptr)) now();
    };
    // Queued: the frame may be another thread's.
    connect(window, &QQuickWindow::frameSwapped, this, once,
            static_cast<Qt::ConnectionType>(Qt::QueuedConnection | Qt::SingleShotConnection));
    QTimer::singleShot(500, this, once);
}

void OmbrelRecordApp::quit() {
    remember();
    // Leaving the editor writes what is not written yet.
    model.backHome();
    QCoreApplication::quit();
}

void OmbrelRecordApp::startedAgain(const QString& file) {
    if (model.isRecording()) {
        if (!panel && file.isEmpty()) model.stopRecording();
        return;
    }
    if (model.starting()) return;
    openMainWindow();
    // What is being exported is not given up for it.
    const EditorModel* editor = model.editor();
    const bool exports = editor && editor->exportState() == EditorModel::ExportState::working;
    if (!file.isEmpty() && !exports) model.openPath(file);
}

void OmbrelRecordApp::restore() {
    if (!settings) return;
    const QRect kept = settings->value(QLatin1String(geometryKey)).toRect();
    // A window that was on a display which is not there any more comes up in its usual place.
    for (const QScreen* screen : QGuiApplication::screens())
        if (kept.isValid() && screen->availableGeometry().intersects(kept.adjusted(40, 0, -40, -40)))
            window->setGeometry(kept);
    if (settings->value(QLatin1String(maximizedKey)).toBool()) window->setWindowStates(Qt::WindowMaximized);
}

void OmbrelRecordApp::remember() {
    if (!settings || !window) return;
    const bool maximized = window->windowStates().testFlag(Qt::WindowMaximized);
    settings->setValue(QLatin1String(maximizedKey), maximized);
    if (!maximized) settings->setValue(QLatin1String(geometryKey), window->geometry());
}

std::optional<QRect> OmbrelRecordApp::panelPlace(QSize size) const {
    QRect recorded = model.recordedFrame();
    if (model.windowID() != 0)
        for (const RecordCore::WindowInfo& candidate : model.windows())
            if (candidate.id == model.windowID())
                recorded = QRectF(candidate.frame.x, candidate.frame.y, candidate.frame.width,
                                  candidate.frame.height)
                               .toAlignedRect();
    return PanelPlacement::place(displays(), size, recorded);
}

/// Out of sight at once; it goes later, for it may be a button of its own that ended it.
void OmbrelRecordApp::retire(QPointer<QQuickWindow>& old) {
    if (!old) return;
    old->hide();
    old->deleteLater();
    old.clear();
}

void OmbrelRecordApp::countdownChanged() {
    if (model.countdown() == 0) return retire(counter);
    if (counter) return;
    counter = make(QStringLiteral("CountdownPanel"));
    if (!counter) return;
    if (!panelPlace(panelSize) && model.hotKeyProblem().isEmpty())
        counter->setProperty("keys", model.hotKeyName());
    const QRect recorded = model.recordedFrame();
    for (const PanelPlacement::Display& display : displays()) {
        if (!display.frame.contains(recorded.center())) continue;
        const QSize points = (QSizeF(display.frame.size()) / display.ratio).toSize();
        counter->setPosition(display.origin.x() + (points.width() - counter->width()) / 2,
                             display.origin.y() + (points.height() - counter->height()) / 2);
        break;
    }
    shape(*counter, 14, 106);
    counter->show();
}

void OmbrelRecordApp::flowChanged() {
    if (!model.isRecording()) {
        retire(panel);
        if (tray) tray.release()->deleteLater(); // its menu may be what ended the recording
        return;
    }
    if (panel || tray) return;
    if (const std::optional<QRect> place = panelPlace(panelSize)) {
        panel = make(QStringLiteral("RecordingPanel"));
        if (!panel) return;
        panel->setPosition(place->topLeft());
        shape(*panel, 0, 17);
        panel->show();
        return;
    }
    Diag::log("window: the recording panel would be in the film, so it is not shown");
    QQmlComponent component(&engine, view(QStringLiteral("Tray")));
    tray.reset(component.createWithInitialProperties(
        {{QStringLiteral("app"), QVariant::fromValue<QObject*>(&model)}}));
    if (!tray) Diag::log("window: no tray: " + component.errorString().toStdString());
}

void OmbrelRecordApp::questionChanged() {
    if (model.question().isEmpty()) {
        retire(question);
        return;
    }
    if (!question) question = make(QStringLiteral("QuestionPanel"));
    if (!question) return;
    // Next to the panel, where neither it nor the click that answers it is recorded.
    constexpr QMargins room(8, 40, 8, 8); // for the frame that the desktop puts around it
    constexpr int beside = panelSize.height() + PanelPlacement::margin;
    const QSize framed = question->size().grownBy(room);
    if (const auto place = panelPlace(framed.grownBy({0, 0, 0, beside}))) {
        const bool below = panel && panel->y() < place->center().y();
        question->setPosition(place->topLeft() + QPoint(room.left(), room.top() + (below ? beside : 0)));
    } else if (const QScreen* screen = panel ? panel->screen() : QGuiApplication::primaryScreen()) {
        const QRect visible = screen->availableGeometry();
        question->setPosition(visible.center() - QPoint(question->width() / 2, question->height() / 2));
    }
    question->show();
    question->raise();
    question->requestActivate();
}

} // namespace OmbrelRecord
