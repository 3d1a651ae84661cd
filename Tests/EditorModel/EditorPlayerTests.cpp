#include "OmbrelRecord/EditorModel/EditorModel.h"
#include "OmbrelRecord/EditorModel/EditorPlayer.h"
#include "RecordCore/Export/Exporter.h"
#include "RecordCore/Export/FrameRenderer.h"
#include "RecordCore/Planning/Planner.h"
#include "RecordCore/Rendering/RgbImage.h"
#include "Tests/Media/Clips.h"
#include "Tests/Support/RealMedia.h"
#include "Tests/Support/TemporaryFolder.h"

#include <QtCore/QCoreApplication>
#include <chrono>
#include <cmath>
#include <fstream>
#include <gtest/gtest.h>
#include <thread>

namespace {

using namespace OmbrelRecord;
using namespace RecordCore;
namespace fs = std::filesystem;

class QuietDesktop : public Desktop {
public:
    void reveal(const fs::path&) override {}
    void copyFile(const fs::path&) override {}
    void trash(const fs::path&) override {}
};

class EditorPlayerTest : public testing::Test {
protected:
    EditorPlayerTest() {
        recording.files.folder = folder.path();
        recording.video = recording.files.video();
        ffmpeg("-f lavfi -i testsrc2=s=320x180:r=30:d=4 -c:v libx264 -preset ultrafast -g 60 -bf 0 " +
               recording.video.string());
        recording.info = media->sourceInfo(recording.video);
        Project project;
        project.skipWaiting = false;
        project.followAction = false;
        project.save(recording.files.project());
        parts.now = [] { return 0.0; };
        parts.desktop = &desktop;
        parts.makePreview = EditorPlayer::factory(media, nullptr);
    }

    void open() {
        model = std::make_unique<EditorModel>(recording, parts);
        picture = model->preview()->picture();
        ASSERT_TRUE(picture);
        picture->setViewSize({400, 300});
        // At first it was made without a view, and then for this one.
        ASSERT_TRUE(until([this] { return picture->image().width() == 400; }));
    }
    template <typename Condition>
    static bool until(const Condition& holds) {
        const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(60);
        while (!holds() && std::chrono::steady_clock::now() < end) {
            QCoreApplication::processEvents();
            std::this_thread::sleep_for(std::chrono::milliseconds(1)); // other threads are at work
        }
        return holds();
    }
    bool shows(double seconds) {
        return until([&] { return picture->exact() && std::abs(picture->seconds() - seconds) < 1e-6; });
    }
    /// The film's frame as the export composes it, at the scale of the view.
    QImage composed(double seconds) {
        FrameCursor frames(media->openVideo(recording.video));
        const double scale = Preview::fittingScale(model->project().outputFormat(),
                                                   picture->viewSize().width(), picture->viewSize().height());
        Canvas canvas(std::make_shared<const Compositor>(Exporter::compositorSettings(
            model->plan(), model->project(), recording.info, scale, false, false, folder.path())));
        const Scene scene(model->plan(), model->project(), recording.log, 60);
        const Picture& film = composeFrame(scene, canvas, frames, nullptr, seconds);
        QImage image(film.width(), film.height(), QImage::Format_RGB32);
        toBgra(film.view(), image.bits(), image.bytesPerLine(), 0, film.height());
        return image;
    }

    TemporaryFolder folder;
    std::shared_ptr<const MediaBackend> media = std::make_shared<RealMedia>();
    QuietDesktop desktop;
    OpenedRecording recording;
    EditorParts parts;
    std::unique_ptr<EditorModel> model;
    PreviewPicture* picture = nullptr;
};

TEST_F(EditorPlayerTest, DoesWithoutACameraThatCannotBeRead) {
    std::ofstream(recording.files.camera()) << "no movie";
    recording = OpenedRecording::open(*media, recording.video, {}, folder.path());
    EXPECT_EQ(recording.camera(), std::nullopt);
    ASSERT_NO_FATAL_FAILURE(open());
}

TEST_F(EditorPlayerTest, ShowsTheFilmAndFollowsEdits) {
    open();
    model->seek(1.5);
    ASSERT_TRUE(shows(1.5));
    EXPECT_EQ(picture->image(), composed(1.5));
    // A new look, at the same place.
    ASSERT_TRUE(model->set(QStringLiteral("padding"), 0.2));
    ASSERT_TRUE(until([this] { return !model->rendering(); }));
    EXPECT_EQ(picture->image(), composed(1.5));
    // What lies before it is cut: the same moment stands half a second earlier in the film.
    model->cut(0.5, 1);
    ASSERT_TRUE(until([this] { return !model->rendering(); }));
    EXPECT_EQ(model->playhead(), 1.0);
    ASSERT_TRUE(shows(1));
    EXPECT_EQ(picture->image(), composed(1));
    // Another shape.
    ASSERT_TRUE(model->set(QStringLiteral("format"), QStringLiteral("1:1")));
    ASSERT_TRUE(until([this] { return picture->aspect() == 1; }));
    ASSERT_TRUE(
        until([this] { return picture->image().width() == 300 && picture->image().height() == 300; }));
    // The middle of the window is the middle of the recording.
    const QPointF middle = picture->recordingPoint(picture->placement().window.center());
    EXPECT_NEAR(middle.x(), 0.5, 1e-9);
    EXPECT_NEAR(middle.y(), 0.5, 1e-9);
}

TEST_F(EditorPlayerTest, PlaysAndStops) {
    open();
    model->seek(3.7);
    model->play();
    ASSERT_TRUE(until([this] { return model->playing(); }));
    ASSERT_TRUE(until([this] { return !model->playing(); }));
    EXPECT_EQ(model->playhead(), model->outputDuration());
    // Paused and moved: no time from before comes back.
    model->seek(1);
    model->play();
    ASSERT_TRUE(until([this] { return model->playhead() > 1.1; }));
    model->pause();
    model->seek(0.5);
    ASSERT_TRUE(shows(0.5));
    ASSERT_TRUE(until([this] { return !model->playing(); }));
    EXPECT_EQ(model->playhead(), 0.5);
}

TEST_F(EditorPlayerTest, ManyEditsAndAnEarlyEnd) {
    open();
    model->play();
    for (int i = 0; i < 40; ++i) {
        model->set(QStringLiteral("padding"), 0.001 * i);
        model->seek(0.05 * i);
        if (i % 8 == 0) model->cut(0.1 * i, 0.1 * i + 0.05);
        picture->setViewSize({300 + i, 200});
        QCoreApplication::processEvents();
    }
    model->pause();
    ASSERT_TRUE(until([this] { return !model->rendering() && !model->playing(); }));
    model->seek(1);
    ASSERT_TRUE(shows(1));
    ASSERT_TRUE(until([this] { return picture->image() == composed(1); }));
    model->set(QStringLiteral("padding"), 0.1);
    model->play();
    model.reset();
    // A recording whose video is gone by then.
    fs::remove(recording.video);
    model = std::make_unique<EditorModel>(recording, parts);
    model->set(QStringLiteral("padding"), 0.2);
    EXPECT_TRUE(until([this] { return !model->rendering(); })) << "told also when there is nothing to show";
}

} // namespace
