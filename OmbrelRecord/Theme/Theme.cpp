#include "OmbrelRecord/Theme/Theme.h"

#include <QtCore/QDebug>
#include <QtCore/QResource>
#include <QtGui/QFontDatabase>

namespace OmbrelRecord {

Theme::Theme(QObject* parent) : QObject(parent) {
    connect(&desktop, &ColorScheme::changed, this, &Theme::changed);
}

void Theme::setScheme(Scheme scheme) {
    if (scheme == asked) return;
    asked = scheme;
    Q_EMIT changed();
}

bool Theme::dark() const {
    return asked == Scheme::desktop ? desktop.dark() : asked == Scheme::dark;
}

QString Theme::family() const {
    return QStringLiteral("Plus Jakarta Sans");
}

QFont Theme::font(int pixels, QFont::Weight weight) const {
    QFont font(family());
    font.setPixelSize(pixels);
    font.setWeight(weight);
    // Small sizes leave the typeface's narrow space two pixels, too few to part words.
    if (pixels <= 15) font.setWordSpacing(1);
    return font;
}

void Theme::loadFonts() {
    for (const char* weight : {"400Regular", "500Medium", "600SemiBold", "700Bold"}) {
        const QResource file(QStringLiteral(":/fonts/PlusJakartaSans_%1.ttf").arg(QLatin1String(weight)));
        const QByteArray data =
            QByteArray::fromRawData(reinterpret_cast<const char*>(file.data()), file.size());
        if (QFontDatabase::addApplicationFontFromData(data) < 0)
            qWarning() << "cannot load" << file.fileName();
    }
}

} // namespace OmbrelRecord
