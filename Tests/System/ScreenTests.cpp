#include "RecordCore/Capture/CapturePicture.h"
#include "RecordCore/Capture/WindowList.h"
#include "RecordCore/Capture/X11/X11ScreenBackend.h"
#include "RecordCore/Model/RecordingError.h"
#include "Tests/System/XSession.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <mutex>
#include <thread>
#include <unistd.h>

using namespace RecordCore;

namespace {

constexpr std::uint32_t red = 0xD02010, green = 0x20C040, blue = 0x2030E0, white = 0xFFFFFF,
                        yellow = 0xE0D020;

/// Takes a stream's frames and remembers the newest picture.
class Watcher {
public:
    explicit Watcher(std::unique_ptr<ScreenStream> from) : stream(std::move(from)) {
        picture = CapturePicture(stream->width(), stream->height());
        stream->start({[this](const ScreenFrame& frame) {
                           const std::lock_guard lock(mutex);
                           picture.copyBlocks(frame.picture, frame.changedBlocks);
                           blocks.assign(frame.changedBlocks.begin(), frame.changedBlocks.end());
                           times.push_back(frame.time);
                       },
                       [this](const std::string& message) {
                           const std::lock_guard lock(mutex);
                           end = message;
                       }});
    }
    ~Watcher() { stream->stop(); }

    /// Waits until the picture shows the color there.
    bool shows(std::uint32_t color, int x, int y) {
        return eventually(10, [&] {
            const std::lock_guard lock(mutex);
            return !times.empty() && PlanarColor::of(color).at(picture.view(), x, y);
        });
    }
    bool showsNow(std::uint32_t color, int x, int y) {
        const std::lock_guard lock(mutex);
        return PlanarColor::of(color).at(picture.view(), x, y);
    }
    bool ends(const std::string& message) {
        return eventually(10, [&] {
            const std::lock_guard lock(mutex);
            return end == message;
        });
    }
    std::vector<double> frameTimes() {
        const std::lock_guard lock(mutex);
        return times;
    }
    std::vector<std::uint8_t> lastBlocks() {
        const std::lock_guard lock(mutex);
        return blocks;
    }
    ScreenStream& operator*() { return *stream; }

private:
    std::unique_ptr<ScreenStream> stream;
    std::mutex mutex;
    CapturePicture picture;
    std::vector<std::uint8_t> blocks;
    std::vector<double> times;
    std::string end;
};

class Screen : public testing::Test {
protected:
    void SetUp() override {
        if (!XSession::installed()) GTEST_SKIP() << "Xvfb, openbox and xrandr are not all installed";
        session = std::make_unique<XSession>(1024, 768);
    }
    std::unique_ptr<ScreenStream> display() const {
        return backend.openScreen(DisplaySource{backend.displays().front().id}, 60);
    }
    std::unique_ptr<ScreenStream> stream(const TestWindow& window) const {
        return backend.openScreen(WindowSource{window.id()}, 60);
    }
    ScreenRect frameOf(const TestWindow& window) const {
        for (const WindowInfo& info : backend.windows())
            if (info.id == window.id()) return info.frame;
        return {};
    }

    std::unique_ptr<XSession> session;
    X11ScreenBackend backend;
};

} // namespace

TEST_F(Screen, ADisplayGivesFramesOfWhatChangedAndNoneOfThePointer) {
    TestWindow window(*session, "still", 100, 100, 400, 300, red);
    const ScreenRect frame = frameOf(window);
    const int x = static_cast<int>(frame.x), y = static_cast<int>(frame.y);
    Watcher watcher(display());
    EXPECT_EQ((*watcher).width(), 1024);
    EXPECT_EQ((*watcher).height(), 768);
    ASSERT_TRUE(watcher.shows(red, x + 200, y + 200));
    const std::size_t before = watcher.frameTimes().size();

    // Over the window, where it would show, and drawn again in the same color.
    for (int i = 0; i < 20; ++i)
        session->movePointer(x + 100 + 10 * i, y + 100);
    window.fill(red);
    // Each change is awaited, so that none is joined with the next.
    window.fill(green, 32, 32, 32, 32);
    ASSERT_TRUE(watcher.shows(green, x + 40, y + 60));
    window.fill(blue, 64, 64, 4, 4);
    ASSERT_TRUE(watcher.shows(blue, x + 66, y + 86) || watcher.shows(blue, x + 67, y + 87));
    EXPECT_EQ(watcher.frameTimes().size(), before + 2) << "the pointer and equal pixels are no change";
    const auto blocks = watcher.lastBlocks();
    EXPECT_LE(std::count_if(blocks.begin(), blocks.end(), [](std::uint8_t mark) { return mark != 0; }), 4);
}

TEST_F(Screen, FramesComeNoFasterThanAskedForAndNoneIsLost) {
    TestWindow window(*session, "busy", 100, 100, 400, 300, red);
    for (const int fps : {60, 20}) {
        Watcher watcher(backend.openScreen(DisplaySource{backend.displays().front().id}, fps));
        const double began = monotonicSeconds();
        for (int i = 0; monotonicSeconds() < began + 1; ++i) {
            window.fill(0x010101U * static_cast<unsigned>(i % 250), 0, 0, 300, 200);
            std::this_thread::sleep_for(std::chrono::milliseconds(2));
        }
        window.fill(yellow);
        const ScreenRect frame = frameOf(window);
        ASSERT_TRUE(watcher.shows(yellow, static_cast<int>(frame.x) + 50, static_cast<int>(frame.y) + 50));
        const auto times = watcher.frameTimes();
        for (std::size_t i = 1; i < times.size(); ++i)
            EXPECT_GE(times[i] - times[i - 1], 0.9 / fps - 1e-6);
        EXPECT_LE(static_cast<double>(times.size()), (times.back() - times.front()) * fps + 3);
    }
}

TEST_F(Screen, ACoveredWindowIsRecordedWhole) {
    TestWindow window(*session, "below", 100, 100, 400, 300, red);
    TestWindow cover(*session, "above", 50, 50, 600, 500, blue);
    cover.raise();
    Watcher watcher(stream(window));
    ASSERT_TRUE(watcher.shows(red, 200, 200));
    window.fill(green);
    EXPECT_TRUE(watcher.shows(green, 200, 200));
    EXPECT_FALSE(watcher.showsNow(blue, 200, 200));
}

TEST_F(Screen, AMovedWindowKeepsItsPictureAndItsPlaceIsKnown) {
    TestWindow window(*session, "moves", 100, 100, 400, 300, red);
    const ScreenRect before = frameOf(window);
    Watcher watcher(stream(window));
    ASSERT_TRUE(watcher.shows(red, 200, 200));
    const auto bounds = backend.openBounds(window.id(), (*watcher).width(), (*watcher).height());
    EXPECT_EQ(bounds->current()->frame, before);
    window.move(700, 600); // partly off the screen
    ASSERT_TRUE(eventually(10, [&] { return bounds->current()->frame.x > 600; }));
    EXPECT_EQ(bounds->current()->frame.width, before.width);
    window.fill(green);
    EXPECT_TRUE(watcher.shows(green, 390, 290)); // a part that the screen does not show
}

TEST_F(Screen, AResizedWindowIsFittedIntoTheSizeAtTheStart) {
    TestWindow window(*session, "grows", 50, 50, 400, 300, red);
    Watcher watcher(stream(window));
    const int width = (*watcher).width(), height = (*watcher).height();
    ASSERT_TRUE(watcher.shows(red, 200, 200));
    const auto bounds = backend.openBounds(window.id(), width, height);

    window.resize(800, 300, green); // wider: bars above and below
    ASSERT_TRUE(watcher.shows(green, width / 2, height / 2));
    EXPECT_TRUE(watcher.shows(0, width / 2, 20));
    EXPECT_TRUE(watcher.shows(0, width / 2, height - 20));
    // Where the window's left edge is on the desktop is where the picture has it.
    const auto area = bounds->current();
    ASSERT_TRUE(area);
    EXPECT_NEAR(area->picture.x, area->frame.x, 2);
    EXPECT_LT(area->picture.y, area->frame.y - 50);

    window.resize(200, 100, blue); // smaller: at its own size in the middle
    ASSERT_TRUE(watcher.shows(blue, width / 2, height / 2));
    EXPECT_TRUE(watcher.shows(0, 50, height / 2));
    EXPECT_TRUE(watcher.shows(0, width / 2, 20));

    window.resize(400, 300, yellow); // as before
    EXPECT_TRUE(watcher.shows(yellow, 10, height - 20));
    EXPECT_TRUE(watcher.shows(yellow, width - 10, 60));
}

TEST_F(Screen, AMinimisedWindowKeepsItsPictureAndComesBack) {
    TestWindow window(*session, "hides", 100, 100, 400, 300, red);
    Watcher watcher(stream(window));
    ASSERT_TRUE(watcher.shows(red, 200, 200));
    const auto bounds = backend.openBounds(window.id(), (*watcher).width(), (*watcher).height());
    window.iconify();
    EXPECT_EQ(bounds->current(), std::nullopt);
    EXPECT_TRUE(watcher.showsNow(red, 200, 200));
    window.show();
    // A program draws when it is told to, once the window manager is done with its frame.
    EXPECT_TRUE(eventually(10, [&] {
        window.fill(green);
        return watcher.showsNow(green, 200, 200);
    }));
}

TEST_F(Screen, AWindowThatIsClosedEndsTheStream) {
    TestWindow window(*session, "closes", 100, 100, 400, 300, red);
    Watcher watcher(stream(window));
    ASSERT_TRUE(watcher.shows(red, 200, 200));
    window.close();
    EXPECT_TRUE(watcher.ends("the window was closed"));
    EXPECT_THROW(static_cast<void>(backend.openScreen(WindowSource{0x12345}, 60)), RecordingError);
}

TEST_F(Screen, EachOfTwoMonitorsIsRecordedAlone) {
    session->setMonitors({{"left", 600}, {"right", 423}}); // an odd width: the last column is left out
    const auto displays = backend.displays();
    ASSERT_EQ(displays.size(), 2U);
    const auto right = std::find_if(displays.begin(), displays.end(),
                                    [](const DisplayInfo& display) { return display.name == "right"; });
    ASSERT_NE(right, displays.end());
    EXPECT_EQ(right->frame, (ScreenRect{600, 0, 423, 768}));
    TestWindow one(*session, "on the left", 50, 50, 300, 300, red);
    TestWindow two(*session, "on the right", 650, 50, 300, 300, blue);
    Watcher watcher(backend.openScreen(DisplaySource{right->id}, 60));
    EXPECT_EQ((*watcher).width(), 422);
    ASSERT_TRUE(watcher.shows(blue, 200, 200));
    const std::size_t before = watcher.frameTimes().size();
    one.fill(green);
    two.fill(yellow);
    ASSERT_TRUE(watcher.shows(yellow, 200, 200));
    EXPECT_EQ(watcher.frameTimes().size(), before + 1)
        << "what happens on the other monitor is none of its business";
    EXPECT_THROW(static_cast<void>(backend.openScreen(DisplaySource{999}, 60)), RecordingError);
}

TEST_F(Screen, WindowsAreListedWithWhatTheyAre) {
    TestWindow large(*session, "Bäume · a title", 100, 100, 400, 300, red);
    TestWindow small(*session, "small", 100, 100, 100, 60, red);
    const auto windows = recordableWindows(backend.windows(), getpid());
    ASSERT_EQ(windows.size(), 1U);
    const WindowInfo& window = windows.front();
    EXPECT_EQ(window.id, large.id());
    EXPECT_EQ(window.application, "Test");
    EXPECT_EQ(window.title, "Bäume · a title");
    EXPECT_EQ(window.processId, 4242);
    EXPECT_TRUE(window.onScreen);
    EXPECT_GE(window.frame.width, 400); // with the window manager's frame
    EXPECT_TRUE(recordableWindows(backend.windows(), 4242).empty());
}

TEST_F(Screen, InputIsSeenWhoeverHasTheFocus) {
    TestWindow window(*session, "focused", 100, 100, 400, 300, red);
    const auto input = backend.openInput();
    EXPECT_TRUE(input->seesKeys());
    session->movePointer(300, 250);
    EXPECT_EQ(input->pointer(), (ScreenPoint{300, 250}));
    session->click(1);
    session->click(3);
    session->click(2); // the middle button is no click of ours
    session->click(5);
    session->typeKey('a');
    session->movePointer(310, 250); // motion is no signal
    const auto seen = [&] {
        std::vector<InputSignal> signals;
        EXPECT_TRUE(
            input->wait(monotonicSeconds() + 0.2, [&](InputSignal signal) { signals.push_back(signal); }));
        return signals;
    };
    // The window manager may hold up the buttons for a moment, but not the keys.
    EXPECT_THAT(seen(),
                testing::UnorderedElementsAre(InputSignal::primaryButton, InputSignal::secondaryButton,
                                              InputSignal::scroll, InputSignal::key));
    // What is meant for a window of this program itself is nobody else's to see.
    const X11Connection& line = session->connection();
    const auto own = static_cast<std::uint32_t>(getpid());
    xcb_change_property(line.get(), XCB_PROP_MODE_REPLACE, window.id(), line.atom("_NET_WM_PID"),
                        XCB_ATOM_CARDINAL, 32, 1, &own);
    session->sync();
    session->click(1);
    session->click(5);
    session->typeKey('a');
    EXPECT_THAT(seen(), testing::IsEmpty());
    session->movePointer(5, 5);
    session->click(1);
    EXPECT_THAT(seen(), testing::ElementsAre(InputSignal::primaryButton));
    // A wait far into the future ends when it is told to.
    std::jthread interrupter([&] { input->interrupt(); });
    EXPECT_FALSE(input->wait(monotonicSeconds() + 3600, [](InputSignal) {}));
}

TEST_F(Screen, AServerThatGoesAwayEndsTheStreamWithAMessage) {
    Watcher watcher(display());
    ASSERT_TRUE(eventually(10, [&] { return !watcher.frameTimes().empty(); }));
    session.reset();
    EXPECT_TRUE(watcher.ends("the connection to the X server was lost"));
}

TEST_F(Screen, NoServerIsSaidInWords) {
    setenv("DISPLAY", ":4711", 1);
    try {
        static_cast<void>(backend.displays());
        FAIL();
    } catch (const RecordingError& error) {
        EXPECT_STREQ(error.what(), "no display: the X server :4711 does not answer");
    }
}
