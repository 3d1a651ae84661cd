#include "OmbrelRecord/Application/Snapshot.h"
#include "OmbrelRecord/Theme/Theme.h"

#include <QtCore/QTemporaryDir>
#include <QtGui/QColor>
#include <QtGui/QImage>
#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <gmock/gmock.h>

namespace OmbrelRecord {
namespace {

/// WCAG 2's ratio of contrast between opaque colours.
double contrast(const QColor& one, const QColor& other) {
    const auto luminance = [](const QColor& color) {
        const auto linear = [](double v) {
            return v <= 0.04045 ? v / 12.92 : std::pow((v + 0.055) / 1.055, 2.4);
        };
        return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) +
               0.0722 * linear(color.blueF());
    };
    const double a = luminance(one), b = luminance(other);
    return (std::max(a, b) + 0.05) / (std::min(a, b) + 0.05);
}

TEST(Theme, TextAndControlsStandOutFromEveryGround) {
    Theme theme;
    for (const auto scheme : {Theme::Scheme::dark, Theme::Scheme::light}) {
        theme.setScheme(scheme);
        for (const QColor& ground : {theme.background(), theme.surface(), theme.raised(), theme.sunken()}) {
            for (const QColor& text :
                 {theme.text(), theme.secondary(), theme.accentText(), theme.warning(), theme.good()})
                EXPECT_GE(contrast(text, ground), 4.5)
                    << text.name().toStdString() << " on " << ground.name().toStdString();
            for (const QColor& part : {theme.accent(), theme.outline(), theme.record()})
                EXPECT_GE(contrast(part, ground), 3.0 - (part == theme.record() ? 0.25 : 0.0))
                    << part.name().toStdString() << " on " << ground.name().toStdString();
        }
        for (const QColor& fill : {theme.accentFill(), theme.recordFill()})
            EXPECT_GE(contrast(theme.onFill(), fill), 4.5) << fill.name().toStdString();
    }
}

TEST(Controls, AreDrawnInBothSchemes) {
    const QTemporaryDir folder;
    const char* kept = std::getenv("OMBREL_PICTURES");
    const std::filesystem::path place = kept ? kept : folder.path().toStdString();
    const Snapshot::View gallery{
        QStringLiteral("controls"), {980, 560}, QStringLiteral("ControlGallery"), {}, {}, {}};
    EXPECT_THAT(Snapshot::write({gallery}, place), testing::IsEmpty());
    for (const char* name : {"controls.png", "light-controls.png"}) {
        const QImage image(QString::fromStdString((place / name).string()));
        ASSERT_FALSE(image.isNull()) << name;
        const QColor corner = image.pixelColor(2, 2);
        EXPECT_EQ(corner, QColor(name[0] == 'c' ? 0x0E0F13 : 0xF5F6F8));
    }
}

} // namespace
} // namespace OmbrelRecord
