#include "OmbrelRecord/EditorModel/ExportQueue.h"
#include "OmbrelRecord/EditorModel/TimelineController.h"
#include "RecordCore/Model/RecordingError.h"
#include "Tests/EditorModel/EditedRecording.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using namespace OmbrelRecord;
using namespace RecordCore;
using Zone = TimelineController::Zone;
namespace fs = std::filesystem;

/// A recording of 100 s on a timeline where one second is ten pixels, nothing planned by itself.
class TimelineControllerTest : public EditedRecording {
protected:
    TimelineControllerTest() : EditedRecording(100) {
        recording.log.emplace();
        recording.log->events.push_back({50, InputLog::Event::Kind::click, 0.5, 0.5});
        Project project;
        project.skipWaiting = false;
        project.followAction = false;
        project.speedBlocks = {SpeedBlock::make(10, 20, 4, SpeedSegment::Reason::idle),
                               SpeedBlock::make(30, 40, 8, SpeedSegment::Reason::idle)};
        project.save(recording.files.project());
        open();
    }

    void open() {
        timeline.setEditor(nullptr);
        model = std::make_unique<EditorModel>(recording, parts);
        timeline.setEditor(model.get());
        timeline.setWidth(1028);
        model->seek(model->outputTime(70));
    }

    double x(double time) const { return timeline.scale().x(time); }
    double y(Zone zone) const { return timeline.row(zone).middle(); }
    void drag(double from, double to, Zone zone) {
        timeline.press(x(from), y(zone));
        for (int i = 1; i <= 5; ++i) {
            now += 1; // a slow hand
            timeline.move(x(from + (to - from) * i / 5), y(zone));
        }
        timeline.release();
    }
    void settle() {
        for (int i = 0; i < 5000 && model->rendering(); ++i)
            QCoreApplication::processEvents();
    }

    TimelineController timeline;
};

TEST_F(TimelineControllerTest, ADragIsOneStepHoweverSlow) {
    const Project before = model->project();
    drag(15, 19, Zone::Speed);
    EXPECT_NEAR(model->speedBlocks()[0].start, 14, 1e-9);
    EXPECT_NEAR(model->speedBlocks()[0].end, 24, 1e-9);
    EXPECT_EQ(timeline.selectionKind(), QStringLiteral("speed"));
    drag(14.2, 12, Zone::Speed); // its handle
    EXPECT_NEAR(model->speedBlocks()[0].start, 11.8, 1e-9);
    EXPECT_NEAR(model->speedBlocks()[0].end, 24, 1e-9);
    model->undo();
    EXPECT_NEAR(model->speedBlocks()[0].start, 14, 1e-9);
    model->undo();
    EXPECT_EQ(model->project(), before);
    EXPECT_FALSE(model->canUndo());
    drag(15, 60, Zone::Speed);
    EXPECT_EQ(model->speedBlocks()[0].end, 30) << "a block stops at its neighbour";
}

TEST_F(TimelineControllerTest, AGestureThatIsGivenUpLeavesNoTrace) {
    model->cut(90, 95);
    const Project before = model->project();
    timeline.press(x(15), y(Zone::Speed));
    timeline.move(x(18), y(Zone::Speed));
    EXPECT_NE(model->project(), before);
    EXPECT_TRUE(timeline.cancel());
    EXPECT_EQ(model->project(), before);
    EXPECT_FALSE(model->canRedo());
    EXPECT_FALSE(timeline.cancel());
    model->undo();
    EXPECT_TRUE(model->project().cuts.empty()) << "the step before is still there";
}

TEST_F(TimelineControllerTest, BlocksAreDrawnOnEmptyStretches) {
    drag(60, 65, Zone::Zoom);
    ASSERT_EQ(model->zoomBlocks().size(), 1u);
    EXPECT_NEAR(model->zoomBlocks()[0].start, 60, 1e-9);
    EXPECT_NEAR(model->zoomBlocks()[0].end, 65, 1e-9);
    EXPECT_EQ(timeline.selectionKind(), QStringLiteral("zoom"));
    drag(25, 35, Zone::Speed);
    ASSERT_EQ(model->speedBlocks().size(), 3u);
    EXPECT_EQ(model->speedBlocks()[1].end, 30) << "up to the next block, not into it";
    drag(80, 80.1, Zone::Zoom);
    EXPECT_EQ(model->zoomBlocks().size(), 1u) << "a click is no block";
    timeline.doubleClick(x(80), y(Zone::Zoom));
    ASSERT_EQ(model->zoomBlocks().size(), 2u);
    EXPECT_NEAR(model->zoomBlocks()[1].start, 78.5, 1e-9);
    timeline.doubleClick(x(80), y(Zone::Zoom));
    EXPECT_EQ(model->zoomBlocks().size(), 2u);
}

TEST_F(TimelineControllerTest, SnapsToClicksPlayheadAndEdgesAndShowsIt) {
    const double click = 50;
    timeline.press(x(35), y(Zone::Speed));
    timeline.move(x(35 + 19.6), y(Zone::Speed)); // its start, at 49.6, comes near the click
    EXPECT_EQ(model->speedBlocks()[1].start, click);
    EXPECT_DOUBLE_EQ(timeline.snapX(), x(click));
    timeline.move(x(35 + 19.6), y(Zone::Speed), true);
    EXPECT_NEAR(model->speedBlocks()[1].start, 49.6, 1e-9) << "freely";
    EXPECT_EQ(timeline.snapX(), -1);
    timeline.move(x(35 + 29.7), y(Zone::Speed)); // its end comes near the playhead
    EXPECT_NEAR(model->speedBlocks()[1].end, 70, 1e-9);
    timeline.release();
    EXPECT_EQ(timeline.snapX(), -1);
}

TEST_F(TimelineControllerTest, RangesAreSelectedCutAndRestored) {
    drag(60, 65, Zone::Film);
    ASSERT_EQ(timeline.selectionKind(), QStringLiteral("range"));
    EXPECT_FALSE(timeline.selectionRestorable());
    EXPECT_FALSE(model->canUndo()) << "selecting is no edit";
    timeline.cutSelection();
    EXPECT_THAT(model->project().cuts, testing::ElementsAre(TimeRange{60, 65}));
    settle();
    timeline.press(x(62), y(Zone::Film));
    timeline.release();
    EXPECT_TRUE(timeline.selectionRestorable()) << "a click into a cut selects it";
    EXPECT_FALSE(timeline.selectionInFilm()) << "nothing of it can be cut, sped up or zoomed into";
    timeline.restoreSelection();
    EXPECT_TRUE(model->project().cuts.empty());
    drag(72, 76, Zone::Film);
    drag(76, 78, Zone::Film); // the end of what is selected
    EXPECT_EQ(std::get<TimeRange>(model->selection()), (TimeRange{72, 78}));
    timeline.speedUpSelection();
    EXPECT_EQ(timeline.selectionKind(), QStringLiteral("speed"));
    EXPECT_EQ(model->speedBlocks().back().speed, TimelineController::newSpeed);
}

TEST_F(TimelineControllerTest, TheEndsOfTheFilmAreTrimmed) {
    timeline.press(x(0) - 4, y(Zone::Film));
    timeline.move(x(5) - 4, y(Zone::Film));
    timeline.release();
    EXPECT_NEAR(model->project().trimStart, 5, 1e-9);
    timeline.press(x(100) + 4, y(Zone::Film));
    timeline.move(x(90) + 4, y(Zone::Film));
    EXPECT_NEAR(*model->project().trimEnd, 90, 1e-9);
    timeline.move(x(120), y(Zone::Film));
    timeline.release();
    EXPECT_FALSE(model->project().trimEnd.has_value()) << "at the end it is no trim";
    model->undo();
    EXPECT_EQ(model->project().trimStart, 0) << "the drag that came to nothing is no step";
    EXPECT_FALSE(model->canUndo());
}

TEST_F(TimelineControllerTest, KeysReachEveryBlock) {
    EXPECT_TRUE(timeline.selectNeighbour(Zone::Speed, -1));
    EXPECT_EQ(timeline.selectionText(), QStringLiteral("Speed block, 8×, 0:30.0 to 0:40.0"));
    EXPECT_TRUE(timeline.selectNeighbour(Zone::Speed, -1));
    EXPECT_FALSE(timeline.selectNeighbour(Zone::Speed, -1)) << "there is none before it";
    timeline.nudge(0.5);
    EXPECT_EQ(model->speedBlocks()[0].start, 10.5);
    timeline.nudge(-1, 1);
    EXPECT_EQ(model->speedBlocks()[0].end, 19.5);
    timeline.step(1);
    EXPECT_EQ(model->speedBlocks()[0].speed, 6);
    timeline.step(-1);
    timeline.step(-1);
    EXPECT_EQ(model->speedBlocks()[0].speed, 3);
    timeline.addAtPlayhead(Zone::Zoom);
    ASSERT_EQ(model->zoomBlocks().size(), 1u);
    EXPECT_NEAR(model->zoomBlocks()[0].start, 70, 1e-9);
    const double level = model->zoomBlocks()[0].zoom;
    timeline.step(1);
    EXPECT_NEAR(model->zoomBlocks()[0].zoom, level + 0.1, 0.051);
    timeline.selectToPlayhead();
    EXPECT_NEAR(std::get<TimeRange>(model->selection()).end, 70, 1e-9);
}

TEST_F(TimelineControllerTest, FilmsAreExportedOneAfterTheOther) {
    std::vector<std::string> made;
    std::atomic<int> running{0};
    parts.exportFilm = [&](const ExportJob& job, const auto& progress, const std::atomic<bool>& cancel) {
        EXPECT_EQ(++running, 1);
        progress(0.5);
        made.push_back(job.destination.filename().string());
        if (job.options.fps == 24)
            while (!cancel)
                std::this_thread::yield();
        --running;
        if (cancel) throw RecordingError("cancelled");
        if (job.options.scale == 2) throw RecordingError("film.mp4: No space left on device");
    };
    open();
    ExportQueue queue;
    queue.setEditor(model.get());
    queue.start({QStringLiteral("16:9"), QStringLiteral("9:16")}, 1, 30);
    ASSERT_TRUE(until([&] { return queue.state() == ExportQueue::State::Done; }));
    EXPECT_THAT(made, testing::ElementsAre("Recording 1 – YouTube.mp4", "Recording 1 – Shorts.mp4"));
    ASSERT_EQ(desktop.revealed.size(), 1u) << "several films do not open a window each";
    EXPECT_EQ(desktop.revealed.front().filename(), "Recording 1 – Shorts.mp4");
    EXPECT_EQ(queue.progress(), 1);
    EXPECT_EQ(queue.url(1).fileName(), QStringLiteral("Recording 1 – Shorts.mp4"));

    queue.start({QStringLiteral("16:9"), QStringLiteral("1:1")}, 2, 60);
    ASSERT_TRUE(until([&] { return queue.state() == ExportQueue::State::Failed; }));
    EXPECT_EQ(made.size(), 3u) << "the rest is not tried";
    EXPECT_TRUE(queue.advice().contains(QStringLiteral("Free some space")));

    queue.start({QStringLiteral("16:9")}, 1, 24);
    ASSERT_TRUE(until([&] { return made.size() == 4; }));
    queue.cancel();
    EXPECT_TRUE(queue.cancelling());
    ASSERT_TRUE(until([&] { return queue.state() == ExportQueue::State::Idle; }));
    EXPECT_TRUE(queue.films().isEmpty());

    settle();
    const double one = queue.expectedBytes({QStringLiteral("16:9")}, 1, 60);
    EXPECT_NEAR(one, 1920 * 1080 * 60 * 0.06 / 8 * model->outputDuration(), one * 1e-6);
    EXPECT_NEAR(queue.expectedBytes({QStringLiteral("16:9")}, 2, 60), one * 4, one * 1e-3);
}

} // namespace
