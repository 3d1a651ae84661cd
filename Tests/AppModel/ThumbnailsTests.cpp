#include "OmbrelRecord/AppModel/Images.h"
#include "OmbrelRecord/AppModel/Thumbnails.h"
#include "Tests/Support/RealMedia.h"
#include "Tests/Support/TemporaryFolder.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QElapsedTimer>
#include <QtGui/QColor>
#include <array>
#include <atomic>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <vector>

namespace {

using namespace OmbrelRecord;
namespace fs = std::filesystem;

/// Counts what is read, for what is kept need not be read again.
class CountingMedia : public RealMedia {
public:
    std::unique_ptr<RecordCore::VideoReader> openVideo(const fs::path& file, int threads) const override {
        ++opened;
        return RealMedia::openVideo(file, threads);
    }
    mutable std::atomic<int> opened{0};
};

const Thumbnails::Facts* waitFor(Thumbnails& thumbnails, const fs::path& video) {
    QElapsedTimer clock;
    clock.start();
    const Thumbnails::Facts* facts = thumbnails.facts(video);
    for (; !facts && clock.elapsed() < 60000; facts = thumbnails.facts(video))
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
    return facts;
}

TEST(Thumbnails, AreMadeOnceKeptAndMadeAnewForAnotherFile) {
    const TemporaryFolder folder;
    const fs::path video = folder / "recording.mp4";
    fs::copy_file(fs::path(OMBREL_SOURCE_DIR) / "OmbrelRecord/Resources/sample/recording.mp4", video);
    const CountingMedia media;
    double duration = 0;
    {
        Thumbnails thumbnails(media, folder / "kept");
        EXPECT_EQ(thumbnails.facts(video), nullptr) << "the main thread does not wait";
        const Thumbnails::Facts* facts = waitFor(thumbnails, video);
        ASSERT_TRUE(facts);
        duration = facts->duration;
        EXPECT_NEAR(duration, media.sourceInfo(video).duration, 1e-9);
        EXPECT_TRUE(facts->still.width() == 320 || facts->still.height() == 200);
        EXPECT_LE(facts->still.width(), 320);
        EXPECT_LE(facts->still.height(), 200);
        EXPECT_EQ(media.opened, 1);
    }
    Thumbnails later(media, folder / "kept");
    const Thumbnails::Facts* kept = waitFor(later, video);
    ASSERT_TRUE(kept);
    EXPECT_EQ(kept->duration, duration);
    EXPECT_FALSE(kept->still.isNull());
    EXPECT_EQ(media.opened, 1) << "it was on the disk";

    // Another recording of the same name, which is none.
    std::ofstream(video) << "not a movie";
    const Thumbnails::Facts* broken = waitFor(later, video);
    ASSERT_TRUE(broken);
    EXPECT_TRUE(broken->still.isNull());
    EXPECT_EQ(broken->duration, 0);
    EXPECT_EQ(std::distance(fs::directory_iterator(folder / "kept"), fs::directory_iterator()), 1);
}

TEST(Images, ColoursOfTheEngineAreThoseOfTheInterface) {
    struct Row {
        std::array<std::uint8_t, 3> planar;
        QColor color;
    };
    // BT.709 in video range.
    for (const auto& [planar, color] :
         {Row{{16, 128, 128}, Qt::black}, Row{{235, 128, 128}, Qt::white},
          Row{{126, 128, 128}, QColor(128, 128, 128)}, Row{{63, 102, 240}, Qt::red},
          Row{{173, 42, 26}, Qt::green}, Row{{32, 240, 118}, Qt::blue}}) {
        std::array<std::vector<std::uint8_t>, 3> planes{std::vector<std::uint8_t>(6 * 4, planar[0]),
                                                        std::vector<std::uint8_t>(3 * 2, planar[1]),
                                                        std::vector<std::uint8_t>(3 * 2, planar[2])};
        RecordCore::PlanarView view;
        view.width = 6;
        view.height = 4;
        for (std::size_t i = 0; i < 3; ++i) {
            view.planes[i] = planes[i].data();
            view.strides[i] = i == 0 ? 6 : 3;
        }
        const QImage image = imageOf(view);
        ASSERT_EQ(image.size(), QSize(6, 4));
        const QColor seen = image.pixelColor(5, 3);
        EXPECT_NEAR(seen.red(), color.red(), 3) << color.name().toStdString();
        EXPECT_NEAR(seen.green(), color.green(), 3) << color.name().toStdString();
        EXPECT_NEAR(seen.blue(), color.blue(), 3) << color.name().toStdString();
    }
}

} // namespace
