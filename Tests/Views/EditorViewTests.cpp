#include "OmbrelRecord/Application/Snapshot.h"
#include "OmbrelRecord/EditorView/EditorSnapshots.h"
#include "Tests/Views/EditorFixture.h"

#include <QtCore/QTemporaryDir>
#include <QtGui/QImage>
#include <cstdlib>
#include <gmock/gmock.h>
#include <set>

namespace OmbrelRecord {
namespace {

/// With OMBREL_PICTURES set all pictures are made and stay there to be looked at; OMBREL_ONLY chooses some by
/// name.
TEST(EditorView, IsDrawnInEveryState) {
    EditorFixture fixture;
    const QTemporaryDir folder;
    const char* kept = std::getenv("OMBREL_PICTURES");
    const char* only = std::getenv("OMBREL_ONLY");
    const std::filesystem::path place = kept ? kept : folder.path().toStdString();
    std::vector<Snapshot::View> views;
    const std::set<QString> few{QStringLiteral("timeline-cuts"), QStringLiteral("panel-zoom"),
                                QStringLiteral("aim-crop"), QStringLiteral("export")};
    for (const Snapshot::View& view : EditorSnapshots::views(fixture.model()))
        if (only ? view.name.contains(QString::fromLocal8Bit(only)) : kept || few.count(view.name))
            views.push_back(view);
    ASSERT_FALSE(views.empty());
    for (const std::string& failure : Snapshot::write(views, place))
        // A slow machine may not have decoded every small picture.
        EXPECT_THAT(failure, testing::HasSubstr("not complete after"));
    for (const Snapshot::View& view : views) {
        const QImage image(QString::fromStdString((place / (view.name.toStdString() + ".png")).string()));
        ASSERT_EQ(image.size(), view.size) << view.name.toStdString();
        std::set<QRgb> colors;
        for (int y = 0; y < image.height(); y += 9)
            for (int x = 0; x < image.width(); x += 9)
                colors.insert(image.pixel(x, y));
        EXPECT_GT(colors.size(), 60u) << view.name.toStdString() << " shows nothing";
    }
}

} // namespace
} // namespace OmbrelRecord
