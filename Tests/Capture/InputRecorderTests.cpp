#include "RecordCore/Capture/InputRecorder.h"
#include "RecordCore/Capture/RecordingJournal.h"
#include "RecordCore/Model/AtomicFile.h"
#include "RecordCore/Model/RecordingError.h"
#include "Tests/Support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <fstream>
#include <sys/stat.h>

using namespace RecordCore;
using Kind = InputLog::Event::Kind;

namespace {

class ScriptClock final : public HostClock {
public:
    double now() const override { return time; }
    std::atomic<double> time = 0;
};

struct Step {
    double time;
    InputSignal signal;
    ScreenPoint pointer; ///< where the pointer is from then on
};

/// Plays events at their times; between them the clock jumps, so that a second takes no time.
class ScriptedInput final : public InputSource {
public:
    ScriptedInput(ScriptClock& clock, std::vector<Step> steps, double end) :
        clock(clock), steps(std::move(steps)), end(end) {}

    std::optional<ScreenPoint> pointer() override { return place; }
    bool seesKeys() const override { return true; }
    void interrupt() override {} // the script is played to its end

    bool wait(double until, const std::function<void(InputSignal)>& handler) override {
        for (; next < steps.size() && steps[next].time <= until; ++next) {
            clock.time = steps[next].time;
            place = steps[next].pointer;
            handler(steps[next].signal);
        }
        clock.time = until;
        return until < end;
    }

private:
    ScriptClock& clock;
    std::vector<Step> steps;
    double end;
    std::size_t next = 0;
    ScreenPoint place;
};

class ScriptedBounds final : public WindowBounds {
public:
    explicit ScriptedBounds(std::vector<std::optional<CapturedArea>> answers) : answers(std::move(answers)) {}
    std::optional<CapturedArea> current() override {
        const auto answer = answers[std::min(asked, answers.size() - 1)];
        ++asked;
        return answer;
    }
    void interrupt() override {} // it never waits

private:
    std::vector<std::optional<CapturedArea>> answers;
    std::size_t asked = 0;
};

CapturedArea plain(const ScreenRect& rect) {
    return {rect, rect};
}

InputLog play(InputRecorder::Region region, std::vector<Step> steps, double end, double origin,
              double start = 0) {
    ScriptClock clock;
    clock.time = start;
    InputRecorder recorder(std::move(region), std::make_unique<ScriptedInput>(clock, std::move(steps), end),
                           clock);
    recorder.start();
    return recorder.stop(origin);
}

InputRecorder::Region display() {
    return InputRecorder::Region::display(plain({100, 200, 1000, 500}));
}

constexpr ScreenPoint inside{350, 325}; // 0.25, 0.25 of the display

} // namespace

TEST(InputRecorder, SamplesThePointerSixtyTimesASecondInAndOutsideTheRegion) {
    const InputLog log =
        play(display(), {{0.5, InputSignal::key, {0, 200}}, {1.5, InputSignal::key, inside}}, 3, 1);
    // From the origin on, in its time.
    ASSERT_NEAR(static_cast<double>(log.cursor.size()), 120, 1);
    EXPECT_GE(log.cursor.front().t, 0);
    EXPECT_LT(log.cursor.front().t, 1.0 / 60 + 1e-9);
    EXPECT_EQ(log.cursor.front().x, -0.1);
    EXPECT_EQ(log.cursor.front().y, 0);
    EXPECT_EQ(log.cursor.back().x, 0.25);
    EXPECT_EQ(log.cursor.back().y, 0.25);
    for (std::size_t i = 1; i < log.cursor.size(); ++i)
        EXPECT_NEAR(log.cursor[i].t - log.cursor[i - 1].t, 1.0 / 60, 1e-9);
    EXPECT_EQ(log.keysTracked, true);
    EXPECT_EQ(log.cursorInVideo, false);
    EXPECT_EQ(log.cameraOffset, std::nullopt);
}

TEST(InputRecorder, KeepsWhatTheUserDidToTheRegionAndNothingOfKeys) {
    const ScreenPoint corner{1100, 700}; // the far edge counts as inside
    const ScreenPoint outside{1100.5, 700};
    const InputLog log = play(display(),
                              {{0.1, InputSignal::primaryButton, inside},
                               {0.2, InputSignal::secondaryButton, corner},
                               {0.3, InputSignal::primaryButton, outside},
                               {0.4, InputSignal::scroll, outside},
                               {0.5, InputSignal::key, outside}},
                              1, 0);
    ASSERT_EQ(log.events.size(), 3U);
    EXPECT_EQ(log.events[0], (InputLog::Event{0.1, Kind::click, 0.25, 0.25}));
    EXPECT_EQ(log.events[1], (InputLog::Event{0.2, Kind::rightClick, 1.0, 1.0}));
    EXPECT_EQ(log.events[2], (InputLog::Event{0.5, Kind::key, std::nullopt, std::nullopt}));
}

TEST(InputRecorder, ThinsScrollsByTheLastOneKept) {
    std::vector<Step> steps;
    for (const double t : {1.00, 1.05, 1.11, 1.15, 1.30})
        steps.push_back({t, InputSignal::scroll, inside});
    // One outside is no scroll of ours and does not hold the next one up.
    steps.push_back({1.45, InputSignal::scroll, {0, 0}});
    steps.push_back({1.46, InputSignal::scroll, inside});
    const InputLog log = play(display(), steps, 2, 0);
    std::vector<double> times;
    for (const auto& event : log.events)
        times.push_back(event.t);
    EXPECT_THAT(times, testing::ElementsAre(1.00, 1.11, 1.30, 1.46));
}

TEST(InputRecorder, DropsWhatCameBeforeTheFirstFrame) {
    const InputLog log = play(display(),
                              {{10.25, InputSignal::primaryButton, inside},
                               {10.5, InputSignal::primaryButton, inside},
                               {11.75, InputSignal::key, inside}},
                              12, 10.5, 10);
    ASSERT_EQ(log.events.size(), 2U);
    EXPECT_EQ(log.events[0].t, 0);
    EXPECT_EQ(log.events[1].t, 1.25);
}

TEST(InputRecorder, FollowsTheWindowTenTimesASecondAndKeepsItsLastPlace) {
    std::vector<std::optional<CapturedArea>> answers(40);
    answers[0] = plain({0, 0, 100, 100});   // at the start
    answers[1] = plain({100, 0, 200, 100}); // from 0.1 s on
    answers[2] = plain({500, 500, 0, 0});   // no size: not taken over
    answers[3] = std::nullopt;              // minimised
    const InputLog log = play(InputRecorder::Region::window(std::make_unique<ScriptedBounds>(answers)),
                              {{0.05, InputSignal::primaryButton, {50, 50}},
                               {0.15, InputSignal::primaryButton, {50, 50}},
                               {0.45, InputSignal::primaryButton, {150, 50}}},
                              1, 0);
    ASSERT_EQ(log.events.size(), 2U);
    EXPECT_EQ(log.events[0], (InputLog::Event{0.05, Kind::click, 0.5, 0.5}));
    EXPECT_EQ(log.events[1], (InputLog::Event{0.45, Kind::click, 0.25, 0.5}));
    EXPECT_EQ(log.cursor.back().x, 0.25);
}

TEST(InputRecorder, AWindowOfUnknownSizeHasNoPlaces) {
    const InputLog log = play(InputRecorder::Region::window(std::make_unique<ScriptedBounds>(
                                  std::vector<std::optional<CapturedArea>>(1))),
                              {{0.05, InputSignal::primaryButton, {50, 50}}}, 0.5, 0);
    EXPECT_TRUE(log.events.empty());
    ASSERT_FALSE(log.cursor.empty());
    EXPECT_EQ(log.cursor[0].x, -1);
    EXPECT_EQ(log.cursor[0].y, -1);
}

TEST(InputRecorder, AResizedWindowIsPlacedAsItStandsInThePicture) {
    // 200 x 100 in the middle of a picture that shows 400 x 300 of the desktop.
    const CapturedArea area{{1000, 1000, 200, 100}, {900, 900, 400, 300}};
    const InputLog log = play(InputRecorder::Region::window(std::make_unique<ScriptedBounds>(
                                  std::vector<std::optional<CapturedArea>>{area})),
                              {{0.05, InputSignal::primaryButton, {1000, 1050}},
                               {0.06, InputSignal::primaryButton, {990, 1050}}}, // on the bar: another window
                              0.5, 0);
    ASSERT_EQ(log.events.size(), 1U);
    EXPECT_EQ(log.events[0], (InputLog::Event{0.05, Kind::click, 0.25, 0.5}));
}

TEST(RecordingJournal, BringsBackWhatWasWrittenUntilTheCut) {
    TemporaryFolder folder;
    ScriptClock clock;
    clock.time = 1000;
    LiveActivity::PackedMask mask{};
    mask[0] = 1;
    mask[39] = 0x8000000000000001U;
    const auto file = folder / "recording.journal";
    {
        RecordingJournal journal(file, clock);
        struct stat facts {};
        ASSERT_EQ(stat(file.c_str(), &facts), 0);
        EXPECT_EQ(facts.st_mode & 0777, 0600);
        journal.keysTracked(true);
        journal.cursor({1000.5, 0.1, 0.2});
        journal.origin(1001);
        journal.camera(1001.25);
        journal.cursor({1001.5, -0.25, 1.5});
        journal.event({1002, Kind::rightClick, 0.5, 0.75});
        journal.event({1003, Kind::key, std::nullopt, std::nullopt});
        journal.activity(0, {});
        journal.activity(0.5, mask);
        EXPECT_THROW(RecordingJournal(file, clock), RecordingError); // in use
        journal.flush();
        // As a kill would leave it: without closing, and with half a line.
        std::ofstream(file, std::ios::app) << "p 1004.0 0.5 0.";
        const JournalContents contents = JournalContents::read(file);
        const InputLog log = contents.inputLog();
        ASSERT_EQ(log.cursor.size(), 1U);
        EXPECT_EQ(log.cursor[0], (InputLog::CursorSample{0.5, -0.25, 1.5}));
        ASSERT_EQ(log.events.size(), 2U);
        EXPECT_EQ(log.events[0], (InputLog::Event{1, Kind::rightClick, 0.5, 0.75}));
        EXPECT_EQ(log.events[1], (InputLog::Event{2, Kind::key, std::nullopt, std::nullopt}));
        EXPECT_EQ(log.keysTracked, true);
        EXPECT_EQ(log.cameraOffset, 0.25);
        const auto samples = contents.activity.samples();
        ASSERT_EQ(samples.size(), 2U);
        EXPECT_EQ(samples[1].t, 0.5);
        EXPECT_EQ(contents.activity.lastMask(), mask);
    }
}

TEST(RecordingJournal, WritesByItselfTwiceASecond) {
    TemporaryFolder folder;
    ScriptClock clock;
    clock.time = 10;
    const auto file = folder / "recording.journal";
    RecordingJournal journal(file, clock);
    clock.time = 10.2;
    journal.cursor({10.2, 0, 0});
    clock.time = 10.6;
    journal.cursor({10.6, 0, 0});
    EXPECT_EQ(JournalContents::read(file).cursor.size(), 2U);
    clock.time = 10.7;
    journal.cursor({10.7, 0, 0});
    EXPECT_EQ(JournalContents::read(file).cursor.size(), 2U);
    journal.remove();
    EXPECT_FALSE(std::filesystem::exists(file));
}

TEST(RecordingJournal, PassesOverWhatMakesNoSense) {
    TemporaryFolder folder;
    const auto file = folder / "recording.journal";
    writeFileAtomically(file,
                        "recording 1\np 1 2\ne 1 dance 0 0\ne 1 click 5\np x y z\n\na 1 99 ff\na 1 2 zz\n"
                        "origin\nwhat 1\np 5 0.5 0.5\n");
    const JournalContents contents = JournalContents::read(file);
    EXPECT_EQ(contents.cursor.size(), 1U);
    EXPECT_TRUE(contents.events.empty());
    EXPECT_EQ(contents.origin, std::nullopt);
    EXPECT_TRUE(contents.activity.samples().empty());
}
