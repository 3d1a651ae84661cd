// The application as a program of its own on a real X server, used as people use it: with the pointer and the
// keyboard. What it made is looked at in the files it leaves.

#include "OmbrelRecord/EditorModel/TimelineScale.h"
#include "RecordCore/Media/FFmpeg/FFmpegMedia.h"
#include "RecordCore/Model/AtomicFile.h"
#include "RecordCore/Model/Project.h"
#include "RecordCore/Model/RecordingFiles.h"
#include "Tests/System/Program.h"

#include <QtCore/QJsonDocument>
#include <QtCore/QMargins>
#include <QtCore/QRect>
#include <QtGui/QImage>
#include <algorithm>
#include <array>
#include <cmath>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>

using namespace RecordCore;
namespace fs = std::filesystem;

namespace {

constexpr int screenWidth = 1600, screenHeight = 900;

/// How many times longer this computer takes than the one on which the limit below was set, where that is
/// longer: by the best of a few runs of the same piece of work.
double slowness() {
    constexpr double usual = 2.75; // milliseconds
    double best = 1e9;
    for (int run = 0; run < 5; ++run) {
        std::vector<unsigned> numbers(60'000);
        unsigned value = 1;
        for (unsigned& each : numbers)
            each = value = value * 1664525 + 1013904223;
        const std::clock_t before = std::clock();
        std::sort(numbers.begin(), numbers.end());
        best = std::min(best, 1000.0 * static_cast<double>(std::clock() - before) / CLOCKS_PER_SEC);
        EXPECT_LE(numbers.front(), numbers.back());
    }
    return std::max(1.0, best / usual);
}

/// Milliseconds of work on one event. Code that checks itself takes its time.
double longestWork() {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    return 2000;
#else
    return 50 * slowness();
#endif
}

class Windows : public testing::Test {
protected:
    void SetUp() override {
        if (!XSession::installed()) GTEST_SKIP() << "Xvfb, openbox and xrandr are not all installed";
        session = std::make_unique<XSession>(screenWidth, screenHeight);
    }

    /// No event keeps the main thread busy for long. Only its own work is judged: how long the X server and
    /// the disk let it wait is the shared machine's doing, and told.
    void TearDown() override {
        if (!program || !program->running()) return;
        program->shown();
        const double allowed = longestWork();
        for (const QJsonValue& stall : program->stalls()) {
            const QByteArray words = QJsonDocument(stall.toObject()).toJson(QJsonDocument::Compact);
            std::printf("held up: %s\n", words.constData());
            EXPECT_LE(stall.toObject()[QStringLiteral("cpuMs")].toDouble(), allowed) << words.constData();
        }
    }

    void start(std::map<std::string, std::string> environment = {}) {
        program = std::make_unique<Program>(*session, std::move(environment));
        ASSERT_TRUE(eventually(60, [this] { return program->windowShown(QStringLiteral("Ombrel Record")); }))
            << program->said();
        // It can record.
        ASSERT_TRUE(program->named(QStringLiteral("Record"), QStringLiteral("Button")))
            << program->complaint();
    }
    void openFlash(const std::string& x, const std::string& y, const std::string& width,
                   const std::string& height, const std::string& how) {
        flash.emplace(std::vector<std::string>{OMBREL_FLASH_PROGRAM, x, y, width, height, "managed", how},
                      ChildProcess::Options{});
    }
    static bool isFlash(const Program::Item& item) {
        return item.type == QLatin1String("SourceTile") && item.description == QLatin1String("Flash");
    }
    void chooseFlashWithTheMouse() {
        const auto source = program->find(QStringLiteral("the source"), [](const Program::Item& item) {
            return item.name.startsWith(QLatin1String("Source: "));
        });
        ASSERT_TRUE(program->click(source)) << program->complaint();
        ASSERT_TRUE(program->click(program->find(QStringLiteral("the window's tile"), isFlash)))
            << program->complaint();
        ASSERT_TRUE(program->gone([](const Program::Item& item) {
            return item.type == QLatin1String("SourceTile");
        })) << "the picker stays";
    }
    void waitForCapture() {
        ASSERT_TRUE(program->waitForLog("record: capturing")) << program->log() << program->said();
    }
    static void wait(double seconds) {
        const double until = monotonicSeconds() + seconds;
        eventually(seconds + 60, [until] { return monotonicSeconds() > until; });
    }
    void paintScreen(std::uint32_t color) {
        X11Connection& line = session->connection();
        xcb_change_window_attributes(line.get(), line.root(), XCB_CW_BACK_PIXEL, &color);
        xcb_clear_area(line.get(), 0, line.root(), 0, 0, 0, 0);
        session->sync();
    }
    /// The largest difference in any channel from a color in a part of the screen.
    int screenDifference(const QRectF& area, std::uint32_t color) {
        X11Connection& line = session->connection();
        const XcbReply<xcb_get_image_reply_t> image(xcb_get_image_reply(
            line.get(),
            xcb_get_image(line.get(), XCB_IMAGE_FORMAT_Z_PIXMAP, line.root(),
                          static_cast<std::int16_t>(area.x()), static_cast<std::int16_t>(area.y()),
                          static_cast<std::uint16_t>(area.width()), static_cast<std::uint16_t>(area.height()),
                          ~0U),
            nullptr));
        if (!image) return -1;
        int most = 0;
        const std::uint8_t* pixels = xcb_get_image_data(image.get());
        for (int i = 0; i < xcb_get_image_data_length(image.get()); ++i)
            if (i % 4 < 3)
                most = std::max(most, std::abs(pixels[i] - static_cast<int>(color >> 8 * (i % 4) & 255)));
        return most;
    }

    std::unique_ptr<XSession> session;
    std::optional<ChildProcess> flash;
    std::unique_ptr<Program> program;
};

/// How far any pixel of any frame is from a color, within the edges that a window manager draws.
struct Difference {
    int most = 0;
    int frames = 0;
    int width = 0, height = 0;
    // Where it was first more than coding makes of a color.
    int frame = -1;
    double time = 0;
    QRect area; ///< in the luma
    std::string picture;

    static constexpr int ofCoding = 4;
    std::string words() const {
        std::ostringstream stream;
        stream << "frame " << frame << " of " << frames << " at " << time << " s, " << area.width() << "x"
               << area.height() << "+" << area.x() << "+" << area.y() << ", see " << picture;
        return stream.str();
    }
};
Difference differenceFrom(const fs::path& movie, std::uint32_t rgb, const QMargins& edges) {
    Difference found;
    const PlanarColor color = PlanarColor::of(rgb);
    const std::array<int, 3> wanted{color.y, color.cb, color.cr};
    const auto reader = FFmpeg::openVideo(movie, 1);
    while (const auto frame = reader->next()) {
        const PlanarView& picture = frame->picture;
        QRect area;
        found.width = picture.width;
        found.height = picture.height;
        int most = 0;
        for (std::size_t plane = 0; plane < 3; ++plane) {
            const int half = plane == 0 ? 1 : 2;
            for (int y = edges.top() / half; y < (picture.height - edges.bottom()) / half; ++y)
                for (int x = edges.left() / half; x < (picture.width - edges.right()) / half; ++x) {
                    const int off =
                        std::abs(picture.planes[plane][y * picture.strides[plane] + x] - wanted[plane]);
                    most = std::max(most, off);
                    if (off > Difference::ofCoding && plane == 0) area |= QRect(x, y, 1, 1);
                }
        }
        if (most > Difference::ofCoding && found.frame < 0) {
            found.frame = found.frames;
            found.time = frame->time;
            found.area = area;
            found.picture = (fs::temp_directory_path() / "ombrel-record-in-the-film.png").string();
            QImage(picture.planes[0], picture.width, picture.height, static_cast<int>(picture.strides[0]),
                   QImage::Format_Grayscale8)
                .save(QString::fromStdString(found.picture));
        }
        found.most = std::max(found.most, most);
        ++found.frames;
    }
    return found;
}

struct PanelCase {
    const char* name;
    int displays;
    std::optional<QRect> window; ///< recorded alone
    bool hides;
};
void PrintTo(const PanelCase& each, std::ostream* stream) {
    *stream << each.name;
}
class Panel : public Windows, public testing::WithParamInterface<PanelCase> {};

TEST_P(Panel, IsInNoFilm) {
    constexpr std::uint32_t ground = 0x3060A0;
    const PanelCase& each = GetParam();
    if (each.displays == 2) session->setMonitors({{"Left", 800}, {"Right", 800}});
    paintScreen(ground);
    if (each.window)
        openFlash(std::to_string(each.window->x()), std::to_string(each.window->y()),
                  std::to_string(each.window->width()), std::to_string(each.window->height()), "");
    ASSERT_NO_FATAL_FAILURE(start());
    if (each.window) {
        ASSERT_NO_FATAL_FAILURE(chooseFlashWithTheMouse());
    }
    // Nobody hears it before it is grabbed, nor while the countdown runs.
    ASSERT_TRUE(eventually(60, [this] {
        program->key(Keys::hotKey);
        return program->waitForLog("record: start", 1);
    })) << program->log();
    ASSERT_NO_FATAL_FAILURE(waitForCapture());
    const auto panel = [this]() -> std::optional<QRectF> {
        for (const QJsonObject& window : program->shown().windows)
            if (window[QStringLiteral("title")].toString() == QLatin1String("Recording"))
                return QRectF(window[QStringLiteral("x")].toDouble(), window[QStringLiteral("y")].toDouble(),
                              window[QStringLiteral("width")].toDouble(),
                              window[QStringLiteral("height")].toDouble());
        return std::nullopt;
    };
    if (each.hides) {
        EXPECT_TRUE(program->waitForLog("the recording panel would be in the film"));
        EXPECT_FALSE(panel());
    } else {
        std::optional<QRectF> place;
        ASSERT_TRUE(eventually(30, [&] { return (place = panel()).has_value(); })) << program->log();
        // It is on the screen, and would be noticed.
        EXPECT_TRUE(eventually(30, [&] { return screenDifference(*place, ground) > 50; }));
    }
    wait(1);
    program->key(Keys::hotKey);
    ASSERT_TRUE(program->waitForLog("editor: open")) << program->log() << program->said();
    const std::vector<fs::path> made = program->recordings();
    ASSERT_EQ(made.size(), 1u);
    const Difference found = differenceFrom(RecordingFiles{made[0]}.video(), each.window ? 0x000000 : ground,
                                            each.window ? QMargins(8, 40, 8, 16) : QMargins());
    EXPECT_GE(found.frames, 1);
    const int width = each.window ? each.window->width() : screenWidth / each.displays;
    EXPECT_NEAR(found.width, width, 12) << "with the window's frame";
    EXPECT_LE(found.most, Difference::ofCoding) << found.words();
}

INSTANTIATE_TEST_SUITE_P(All, Panel,
                         testing::Values(PanelCase{"OneDisplay", 1, std::nullopt, true},
                                         PanelCase{"TwoDisplays", 2, std::nullopt, false},
                                         PanelCase{"Window", 1, QRect(100, 100, 640, 400), false},
                                         PanelCase{"WindowThatFillsTheDisplay", 1, QRect(0, 0, 1596, 870),
                                                   true}),
                         [](const auto& test) { return std::string(test.param.name); });

/// What a film or recording of the counting window shows at one moment.
struct Moment {
    double time = 0;
    int gray = 0;   ///< of the window
    int square = 0; ///< the white square's width, in pixels
    PlanarColor corner;
};
std::vector<Moment> moments(const fs::path& movie, double besides) {
    std::vector<Moment> found;
    const auto reader = FFmpeg::openVideo(movie, 1);
    while (const auto frame = reader->next()) {
        const PlanarView& picture = frame->picture;
        const std::uint8_t* row = picture.planes[0] + picture.height / 2 * picture.strides[0];
        Moment moment;
        moment.time = frame->time;
        moment.gray = row[static_cast<int>(picture.width * (0.5 + besides))];
        for (int x = 0; x < picture.width; ++x)
            moment.square += row[x] > 225 ? 1 : 0;
        const auto corner = [&](std::size_t plane, int at) {
            return static_cast<int>(picture.planes[plane][at * picture.strides[plane] + at]);
        };
        moment.corner = {corner(0, 12), corner(1, 6), corner(2, 6)};
        found.push_back(moment);
    }
    return found;
}
/// The last one that began by then.
const Moment& momentAt(const std::vector<Moment>& all, double time) {
    auto after = std::upper_bound(all.begin(), all.end(), time + 1e-6,
                                  [](double value, const Moment& moment) { return value < moment.time; });
    return after == all.begin() ? all.front() : *(after - 1);
}

/// The way from the home screen to the film.
class Walk : public Windows {
protected:
    void record(bool withTheMouse) {
        openFlash("100", "100", "640", "400", "count");
        ASSERT_NO_FATAL_FAILURE(start());
        if (withTheMouse) {
            ASSERT_NO_FATAL_FAILURE(chooseFlashWithTheMouse());
            ASSERT_TRUE(program->click(program->named(QStringLiteral("Record"), QStringLiteral("Button"))));
        } else {
            ASSERT_TRUE(program->tabTo(QStringLiteral("the source"), [](const Program::Item& item) {
                return item.name.startsWith(QLatin1String("Source: "));
            })) << program->complaint();
            program->key({Keys::enter});
            ASSERT_TRUE(program->find(QStringLiteral("the window's tile"), isFlash)) << program->complaint();
            ASSERT_TRUE(program->tabTo(QStringLiteral("the window's tile"), isFlash)) << program->complaint();
            program->key({Keys::enter});
            ASSERT_TRUE(program->gone([](const Program::Item& item) {
                return item.type == QLatin1String("SourceTile");
            })) << "the picker stays";
            ASSERT_TRUE(program->tabTo(QStringLiteral("Record"), [](const Program::Item& item) {
                return item.type == QLatin1String("RecordButton");
            })) << program->complaint();
            program->key({Keys::space});
        }
        ASSERT_NO_FATAL_FAILURE(waitForCapture());
        ::kill(flash->id(), SIGUSR1);
        wait(8);
        if (withTheMouse) {
            ASSERT_TRUE(program->click(program->named(QStringLiteral("Stop"), QStringLiteral("Button"))))
                << program->complaint();
        } else {
            program->key(Keys::hotKey);
        }
        ASSERT_TRUE(program->waitForLog("editor: open")) << program->log() << program->said();
        ASSERT_EQ(program->recordings().size(), 1u);
        files = RecordingFiles{program->recordings()[0]};
        source = FFmpeg::sourceInfo(files.video());
        ASSERT_GE(source.duration, 6);
        ASSERT_TRUE(program->object(QStringLiteral("speedLane"))) << program->complaint();
    }
    double length() const { return source.duration; }

    /// A place on the timeline, which shows the whole recording.
    QPointF at(double time, const char* lane) {
        const auto area = program->object(QStringLiteral("timelineArea"));
        const auto row = program->object(QString::fromLatin1(lane));
        if (!area || !row) {
            ADD_FAILURE() << program->complaint();
            return {};
        }
        return {area->area.x() + OmbrelRecord::TimelineScale::fitting(length(), area->area.width()).x(time),
                row->middle().y()};
    }
    /// What the project's file says once it says so.
    ::testing::AssertionResult saved(const std::function<bool(const Project&)>& holds) {
        if (eventually(60, [&] {
                if (const auto read = Project::load(files.project())) project = *read;
                return holds(project);
            }))
            return ::testing::AssertionSuccess();
        return ::testing::AssertionFailure()
               << (fs::exists(files.project()) ? readFile(files.project()) : "no project is saved") << "\n"
               << program->log();
    }
    void checkTheFilm(std::uint32_t background);

    RecordingFiles files;
    SourceInfo source;
    Project project;
};

/// The film in the folder of films has what the project says: it is as long, each frame shows the moment of
/// the recording that belongs there, and it is zoomed in where the project says so.
void Walk::checkTheFilm(std::uint32_t background) {
    ASSERT_TRUE(eventually(200, [this] { return program->films().size() == 1; })) << program->log();
    ASSERT_TRUE(program->waitForLog("export: ", 200));
    ASSERT_EQ(project.speedBlocks->size(), 1u);
    ASSERT_EQ(project.cuts.size(), 1u);
    ASSERT_EQ(project.zoomBlocks->size(), 1u);
    const SpeedBlock fast = project.speedBlocks->front();
    const TimeRange cut = project.cuts.front();
    const ZoomBlock zoom = project.zoomBlocks->front();
    ASSERT_GE(cut.start, fast.end);
    const auto outputTime = [&](double time) { // of the recording, after the cut
        return time - (cut.end - cut.start) - (fast.end - fast.start) * (1 - 1 / fast.speed);
    };
    const auto sourceTime = [&](double time) { // of the film
        if (time < fast.start) return time;
        const double atOnce = fast.start + (fast.end - fast.start) / fast.speed;
        if (time < atOnce) return fast.start + (time - fast.start) * fast.speed;
        const double later = fast.end + (time - atOnce);
        return later < cut.start ? later : later + (cut.end - cut.start);
    };
    constexpr double fps = 24;
    const std::vector<Moment> film = moments(program->films()[0], 0.18);
    const std::vector<Moment> recording = moments(files.video(), 0.3);
    const double seconds = outputTime(length());
    EXPECT_NEAR(static_cast<double>(film.size()), std::ceil(seconds * fps - 1e-6), 1);
    int wrong = 0, zoomed = 0, zoomedWrong = 0, cornerWrong = 0, whole = 0;
    for (const Moment& moment : film) {
        const double from = sourceTime(moment.time);
        wrong += std::abs(moment.gray - momentAt(recording, from).gray) > 5 ? 1 : 0;
        // The view moves into the block and out of it: its middle is judged, and what is far from it.
        if (from > (zoom.start + zoom.end) / 2 - 0.2 && from < (zoom.start + zoom.end) / 2 + 0.2) {
            ++zoomed;
            zoomedWrong += moment.square > film.front().square * (1 + (zoom.zoom - 1) * 0.6) ? 0 : 1;
        }
        if (from < zoom.start - 1.5) {
            ++whole;
            cornerWrong += std::abs(moment.corner.y - PlanarColor::of(background).y) > 3 ||
                                   std::abs(moment.corner.cb - PlanarColor::of(background).cb) > 3 ||
                                   std::abs(moment.corner.cr - PlanarColor::of(background).cr) > 3
                               ? 1
                               : 0;
        }
    }
    // The camera of a film may begin a frame sooner or later; what was not cut would be wrong for a second.
    EXPECT_LE(wrong, 4) << "of " << film.size();
    EXPECT_GT(zoom.zoom, 1.2);
    EXPECT_GE(zoomed, 5);
    EXPECT_EQ(zoomedWrong, 0) << "of " << zoomed;
    EXPECT_GE(whole, 5);
    EXPECT_EQ(cornerWrong, 0) << "of " << whole;
}

TEST_F(Walk, WhatTheMouseDidIsInTheFilm) {
    ASSERT_NO_FATAL_FAILURE(record(true));
    // Only what the hand does.
    const auto switchOff = [this](const char* panel, const char* name) {
        ASSERT_TRUE(program->click(program->object(QString::fromLatin1(panel)))) << program->complaint();
        ASSERT_TRUE(program->click(program->named(QString::fromLatin1(name), QStringLiteral("CheckBox"))))
            << program->complaint();
    };
    ASSERT_NO_FATAL_FAILURE(switchOff("panel-speed", "Skip waiting"));
    ASSERT_NO_FATAL_FAILURE(switchOff("panel-zoom", "Follow the action"));
    ASSERT_TRUE(saved([](const Project& now) { return !now.skipWaiting && !now.followAction; }));

    // A speed block, and its edge.
    program->drag(at(0.1 * length(), "speedLane"), at(0.3 * length(), "speedLane"));
    ASSERT_TRUE(saved([](const Project& now) { return now.speedBlocks && now.speedBlocks->size() == 1; }));
    const double pixel = length() / 1000; // of the timeline, about
    EXPECT_NEAR(project.speedBlocks->front().start, 0.1 * length(), 3 * pixel);
    EXPECT_NEAR(project.speedBlocks->front().end, 0.3 * length(), 3 * pixel);
    program->drag(at(project.speedBlocks->front().end, "speedLane"), at(0.4 * length(), "speedLane"));
    ASSERT_TRUE(saved([&](const Project& now) {
        return std::abs(now.speedBlocks->front().end - 0.4 * length()) < 3 * pixel;
    }));
    EXPECT_EQ(project.speedBlocks->size(), 1u);

    program->drag(at(0.7 * length(), "zoomLane"), at(0.95 * length(), "zoomLane"));
    ASSERT_TRUE(saved([](const Project& now) { return now.zoomBlocks && now.zoomBlocks->size() == 1; }));
    EXPECT_NEAR(project.zoomBlocks->front().start, 0.7 * length(), 3 * pixel);

    program->drag(at(0.45 * length(), "filmLane"), at(0.6 * length(), "filmLane"));
    ASSERT_TRUE(program->click(program->named(QStringLiteral("Cut"), QStringLiteral("Button"))))
        << program->complaint();
    ASSERT_TRUE(saved([](const Project& now) { return now.cuts.size() == 1; }));
    EXPECT_NEAR(project.cuts[0].start, 0.45 * length(), 3 * pixel);
    EXPECT_NEAR(project.cuts[0].end, 0.6 * length(), 3 * pixel);
    ASSERT_TRUE(program->click(program->object(QStringLiteral("undo"))));
    ASSERT_TRUE(saved([](const Project& now) { return now.cuts.empty(); }));
    ASSERT_TRUE(program->click(program->object(QStringLiteral("redo"))));
    ASSERT_TRUE(saved([](const Project& now) { return now.cuts.size() == 1; }));

    ASSERT_TRUE(program->click(program->object(QStringLiteral("panel-background")))) << program->complaint();
    ASSERT_TRUE(program->click(program->named(QStringLiteral("One colour")))) << program->complaint();
    ASSERT_TRUE(program->click(program->named(QStringLiteral("#f97316")))) << program->complaint();
    ASSERT_TRUE(saved([](const Project& now) { return now.solidColor == "#f97316"; }));

    ASSERT_TRUE(program->click(program->object(QStringLiteral("export")))) << program->complaint();
    ASSERT_TRUE(program->click(program->named(QStringLiteral("24")))) << program->complaint();
    ASSERT_TRUE(program->click(program->object(QStringLiteral("exportNow")))) << program->complaint();
    checkTheFilm(0xF97316);

    // Back, and in again.
    program->key({Keys::escape});
    ASSERT_TRUE(program->gone([](const Program::Item& item) { return item.role == QLatin1String("Dialog"); }))
        << "the sheet stays";
    ASSERT_TRUE(program->click(program->object(QStringLiteral("back")))) << program->complaint();
    const auto isCard = [](const Program::Item& item) { return item.type == QLatin1String("RecordingCard"); };
    ASSERT_TRUE(program->click(program->find(QStringLiteral("the recording"), isCard)))
        << program->complaint();
    EXPECT_TRUE(program->object(QStringLiteral("zoomLane"))) << program->complaint();
}

TEST_F(Walk, TheKeyboardAloneMakesAFilm) {
    ASSERT_NO_FATAL_FAILURE(record(false));
    const auto tabTo = [this](const char* object) {
        return program->tabTo(QString::fromLatin1(object), [&](const Program::Item& item) {
            return item.object == QLatin1String(object);
        });
    };
    const auto tabToName = [this](const char* name) {
        return program->tabTo(QString::fromLatin1(name),
                              [&](const Program::Item& item) { return item.name == QLatin1String(name); });
    };
    for (const auto& [panel, name] :
         {std::pair("panel-speed", "Skip waiting"), std::pair("panel-zoom", "Follow the action")}) {
        ASSERT_TRUE(tabTo(panel)) << program->complaint();
        program->key({Keys::space});
        ASSERT_TRUE(tabToName(name)) << program->complaint();
        program->key({Keys::space});
    }
    ASSERT_TRUE(saved([](const Project& now) { return !now.skipWaiting && !now.followAction; }));
    program->key({Keys::escape});

    // A speed block of four seconds a second from the start, made a second and a half shorter.
    program->key({Keys::home});
    program->key({Keys::shift, Keys::right});
    ASSERT_TRUE(tabTo("speedLane")) << program->complaint();
    program->key({Keys::enter});
    ASSERT_TRUE(saved([](const Project& now) { return now.speedBlocks && now.speedBlocks->size() == 1; }));
    EXPECT_NEAR(project.speedBlocks->front().start, 1, 0.05);
    for (int i = 0; i < 15; ++i)
        program->key({Keys::control, Keys::left});
    const double end = project.speedBlocks->front().end - 1.5;
    ASSERT_TRUE(
        saved([&](const Project& now) { return std::abs(now.speedBlocks->front().end - end) < 0.01; }));
    program->key({Keys::escape});
    program->key({Keys::escape});

    // A second of the rest is cut.
    program->key({Keys::home});
    for (int i = 0; i < 2; ++i)
        program->key({Keys::shift, Keys::right});
    program->key({'['});
    program->key({Keys::shift, Keys::right});
    program->key({']'});
    program->key({Keys::erase});
    ASSERT_TRUE(saved([](const Project& now) { return now.cuts.size() == 1; }));
    EXPECT_NEAR(project.cuts[0].end - project.cuts[0].start, 1, 0.05);
    program->key({Keys::control, 'z'});
    ASSERT_TRUE(saved([](const Project& now) { return now.cuts.empty(); }));
    program->key({Keys::control, Keys::shift, 'z'});
    ASSERT_TRUE(saved([](const Project& now) { return now.cuts.size() == 1; }));

    program->key({Keys::end});
    for (int i = 0; i < 2; ++i)
        program->key({Keys::shift, Keys::left});
    ASSERT_TRUE(tabTo("zoomLane")) << program->complaint();
    program->key({Keys::enter});
    ASSERT_TRUE(saved([](const Project& now) { return now.zoomBlocks && now.zoomBlocks->size() == 1; }));
    program->key({Keys::escape});
    program->key({Keys::escape});

    ASSERT_TRUE(tabTo("panel-background")) << program->complaint();
    program->key({Keys::space});
    ASSERT_TRUE(tabToName("Kind of background")) << program->complaint();
    program->key({Keys::right});
    program->key({Keys::right});
    ASSERT_TRUE(saved([](const Project& now) { return now.solidColor == "#1e2129"; }));

    program->key({Keys::control, 'e'});
    // The sheet takes the focus when it has come in; who goes on before loses it again.
    ASSERT_TRUE(program->find(QStringLiteral("the sheet's button in focus"), [](const Program::Item& item) {
        return item.object == QLatin1String("exportNow") && item.focused;
    })) << program->complaint();
    ASSERT_TRUE(tabToName("Frames a second")) << program->complaint();
    ASSERT_TRUE(eventually(60, [this] {
        const auto rate = program->named(QStringLiteral("24"));
        if (rate && rate->checked) return true;
        program->key({Keys::left});
        return false;
    })) << program->complaint();
    ASSERT_TRUE(tabTo("exportNow")) << program->complaint();
    program->key({Keys::enter});
    checkTheFilm(0x1E2129);
}

/// What is missing is told, and the rest works.
class Lacking : public Windows {
protected:
    /// Something is told that begins like that.
    testing::AssertionResult told(const char* words) {
        if (program->find(QString::fromUtf8(words), [&](const Program::Item& item) {
                return item.name.startsWith(QString::fromUtf8(words));
            }))
            return testing::AssertionSuccess();
        return testing::AssertionFailure() << program->complaint();
    }
    /// A window that has only just come back may not hear the first click.
    bool toggle(const char* name) {
        const QString wanted = QString::fromLatin1(name), role = QStringLiteral("CheckBox");
        const auto before = program->named(wanted, role);
        return before && eventually(60, [&] {
                   const auto now = program->named(wanted, role);
                   if (!now || now->checked != before->checked) return now.has_value();
                   program->click(now);
                   return eventually(2, [&] {
                       const auto after = program->named(wanted, role);
                       return after && after->checked != before->checked;
                   });
               });
    }
};

TEST_F(Lacking, NoSoundNoCameraNoBus) {
    ASSERT_NO_FATAL_FAILURE(start({{"DBUS_SESSION_BUS_ADDRESS", "unix:path=/nowhere/bus"},
                                   {"PULSE_SERVER", "unix:/nowhere/pulse"},
                                   {"PIPEWIRE_REMOTE", "/nowhere/pipewire"}}));
    ASSERT_TRUE(toggle("Microphone")) << program->complaint();
    EXPECT_TRUE(told("No microphone is connected"));
    ASSERT_TRUE(toggle("Camera")) << program->complaint();
    ASSERT_TRUE(toggle("Computer's sound")) << program->complaint();
    // A recording with the computer's sound cannot be had, and says so.
    ASSERT_TRUE(program->click(program->named(QStringLiteral("Record"), QStringLiteral("Button"))));
    EXPECT_TRUE(told("Couldn't start recording: "));
    // Without it, it can.
    ASSERT_TRUE(toggle("Computer's sound")) << program->complaint();
    ASSERT_TRUE(program->click(program->named(QStringLiteral("Record"), QStringLiteral("Button"))));
    ASSERT_NO_FATAL_FAILURE(waitForCapture());
    program->key(Keys::hotKey);
    EXPECT_TRUE(program->waitForLog("editor: open")) << program->log() << program->said();
}

TEST_F(Lacking, NowhereToWrite) {
    // No user, not even root, makes a folder there.
    std::map<std::string, std::string> nowhere;
    for (const char* name : {"HOME", "XDG_CONFIG_HOME", "XDG_CACHE_HOME", "XDG_DATA_HOME", "XDG_STATE_HOME"})
        nowhere[name] = "/proc/nowhere";
    ASSERT_NO_FATAL_FAILURE(start(nowhere));
    ASSERT_TRUE(program->click(program->named(QStringLiteral("Record"), QStringLiteral("Button"))));
    EXPECT_TRUE(told("Couldn't start recording: /proc/nowhere"));
    EXPECT_TRUE(program->running());
}

TEST_F(Lacking, ALargeLibraryWithABrokenRecording) {
    const TemporaryFolder own;
    const fs::path library = own / "Videos/Ombrel Record";
    for (int i = 0; i < 2000; ++i) {
        const fs::path place = library / ("Recording " + std::to_string(10000 + i));
        fs::create_directories(place);
        std::ofstream(place / "recording.mp4") << "this is no movie";
    }
    ASSERT_NO_FATAL_FAILURE(start({{"HOME", own.path().string()}}));
    EXPECT_TRUE(told("Recent recordings"));
    const auto isCard = [](const Program::Item& item) { return item.type == QLatin1String("RecordingCard"); };
    const auto card = program->find(QStringLiteral("a recording"), isCard);
    ASSERT_TRUE(card) << program->complaint();
    const auto cards = [&] {
        const Program::Shown all = program->shown();
        return std::count_if(all.items.begin(), all.items.end(), isCard);
    };
    EXPECT_LE(cards(), 20) << "only those in sight are made";
    ASSERT_TRUE(program->click(card));
    EXPECT_TRUE(told("Couldn't open that video: "));
    EXPECT_TRUE(program->running());
}

} // namespace
