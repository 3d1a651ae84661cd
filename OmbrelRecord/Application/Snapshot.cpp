#include "OmbrelRecord/Application/Snapshot.h"

#include "OmbrelRecord/Application/OmbrelRecordApp.h"
#include "OmbrelRecord/Theme/Theme.h"

#include <QtCore/QElapsedTimer>
#include <QtCore/QFile>
#include <QtGui/QColor>
#include <QtGui/QGuiApplication>
#include <QtGui/QImage>
#include <QtQml/QQmlComponent>
#include <QtQml/QQmlEngine>
#include <QtQml/QQmlProperty>
#include <QtQuick/QQuickItem>
#include <QtQuick/QQuickWindow>
#include <algorithm>
#include <memory>
#include <system_error>

namespace OmbrelRecord {

namespace {

void turn(int milliseconds) {
    QElapsedTimer clock;
    clock.start();
    do
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
    while (clock.elapsed() < milliseconds);
}

/// What stands in the window, and how much of it is there: windows off screen have no alpha of their own, so
/// what is see-through is told from the difference between a black ground and a white one.
QImage grabbed(QQuickWindow& window) {
    const auto on = [&window](const QColor& ground) {
        window.setColor(ground);
        return window.grabWindow().convertToFormat(QImage::Format_RGB32);
    };
    QImage black = on(Qt::black);
    const QImage white = on(Qt::white);
    // A view that fills its window fills its corner.
    if (black.isNull() || white.size() != black.size() || white.pixel(0, 0) == black.pixel(0, 0))
        return black;
    QImage image(black.size(), QImage::Format_ARGB32_Premultiplied);
    for (int y = 0; y < image.height(); ++y) {
        const auto* dark = reinterpret_cast<const QRgb*>(black.constScanLine(y));
        const auto* light = reinterpret_cast<const QRgb*>(white.constScanLine(y));
        auto* to = reinterpret_cast<QRgb*>(image.scanLine(y));
        for (int x = 0; x < image.width(); ++x) {
            const int alpha = std::clamp(255 - qGreen(light[x]) + qGreen(dark[x]), 0, 255);
            const auto part = [alpha](int value) { return std::min(value, alpha); };
            to[x] = qRgba(part(qRed(dark[x])), part(qGreen(dark[x])), part(qBlue(dark[x])), alpha);
        }
    }
    return image;
}

std::string picture(QQmlEngine& engine, const Snapshot::View& view, const QString& file) {
    QQmlComponent component(&engine, OmbrelRecordApp::view(view.type));
    std::unique_ptr<QObject> object(component.createWithInitialProperties(view.properties));
    auto* item = qobject_cast<QQuickItem*>(object.get());
    if (!item) return view.name.toStdString() + ": " + component.errorString().toStdString();

    QQuickWindow window;
    window.resize(view.size);
    // As the main window mirrors itself where text runs from right to left (-reverse), what pops up in it,
    // too.
    if (QGuiApplication::isRightToLeft())
        for (const char* property : {"LayoutMirroring.enabled", "LayoutMirroring.childrenInherit"})
            QQmlProperty(&window, QLatin1String(property), qmlContext(item)).write(true);
    item->setParentItem(window.contentItem());
    item->setSize(view.size);
    window.show();
    turn(20);
    if (view.arrange) view.arrange(*item);
    QElapsedTimer clock;
    clock.start();
    bool ready = false;
    do {
        // Longer than anything in the interface moves.
        turn(300);
        ready = !view.ready || view.ready(*item);
    } while (!ready && clock.elapsed() < 60000);
    const QImage image = grabbed(window);
    item->setParentItem(nullptr);
    if (image.isNull() || !image.save(file, "PNG"))
        return view.name.toStdString() + ": cannot write " + file.toStdString();
    return ready ? std::string() : view.name.toStdString() + ": not complete after a minute";
}

} // namespace

std::vector<std::string> Snapshot::write(const std::vector<View>& views,
                                         const std::filesystem::path& folder) {
    std::vector<std::string> failures;
    std::error_code error;
    std::filesystem::create_directories(folder, error);
    if (error) return {folder.string() + ": " + error.message()};

    QQmlEngine engine;
    OmbrelRecordApp::prepare(engine);
    Theme* theme = OmbrelRecordApp::theme(engine);
    if (!theme) return {"the views cannot be loaded"};
    for (const View& view : views) {
        for (const bool dark : {true, false}) {
            theme->setScheme(dark ? Theme::Scheme::dark : Theme::Scheme::light);
            const QString name = (dark ? QString() : QStringLiteral("light-")) + view.name;
            const QString file = QFile::decodeName((folder / (name.toStdString() + ".png")).c_str());
            const std::string failure = picture(engine, view, file);
            if (!failure.empty()) failures.push_back(failure);
        }
    }
    return failures;
}

} // namespace OmbrelRecord
