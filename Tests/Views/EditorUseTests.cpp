#include "OmbrelRecord/Application/OmbrelRecordApp.h"
#include "OmbrelRecord/EditorModel/ExportQueue.h"
#include "OmbrelRecord/EditorModel/TimelineController.h"
#include "RecordCore/Export/Exporter.h"
#include "RecordCore/Model/RecordingError.h"
#include "Tests/Views/EditorFixture.h"

#include <QtCore/QElapsedTimer>
#include <QtCore/QTemporaryDir>
#include <QtGui/QAccessible>
#include <QtGui/QGuiApplication>
#include <QtGui/QMouseEvent>
#include <QtQml/QQmlComponent>
#include <QtQml/QQmlEngine>
#include <QtQuick/QQuickItem>
#include <QtQuick/QQuickWindow>
#include <functional>
#include <future>
#include <gmock/gmock.h>

namespace OmbrelRecord {
namespace {

using namespace RecordCore;
using Zone = TimelineController::Zone;

/// The editor in a window, and hands that use it through the window alone.
class EditorUse : public testing::Test {
protected:
    void SetUp() override {
        Project plain;
        plain.skipWaiting = false;
        plain.followAction = false;
        plain.save(RecordingFiles{fixture.folder()}.project());
        fixture.parts().exportFilm = [this](const ExportJob& job, const auto& progress,
                                            const std::atomic<bool>& cancel) {
            if (beforeExport) beforeExport();
            Exporter::Hooks hooks;
            hooks.progress = progress;
            hooks.cancel = &cancel;
            Exporter::run(fixture.backend(), job.source, job.plan, job.options, job.destination, hooks);
        };
        fixture.reopen();
        OmbrelRecordApp::prepare(engine);
        QQmlComponent component(&engine, OmbrelRecordApp::view(QStringLiteral("EditorView")));
        object.reset(component.createWithInitialProperties(
            {{QStringLiteral("editor"), QVariant::fromValue(&fixture.model())}}));
        view = qobject_cast<QQuickItem*>(object.get());
        ASSERT_TRUE(view) << component.errorString().toStdString();
        window.resize(1320, 788);
        view->setParentItem(window.contentItem());
        view->setSize({1320, 788});
        window.show();
        window.requestActivate();
        view->forceActiveFocus();
        turn();
        timeline = view->property("timeline").value<QQuickItem*>();
        hand = timeline->property("hand").value<TimelineController*>();
        ASSERT_TRUE(hand);
    }
    void TearDown() override {
        if (view) view->setParentItem(nullptr);
    }

    EditorModel& model() { return fixture.model(); }
    static void turn(int rounds = 20) {
        for (int i = 0; i < rounds; ++i)
            QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
    }
    bool until(const std::function<bool()>& holds, int seconds = 60) {
        QElapsedTimer clock;
        clock.start();
        while (!holds() && clock.elapsed() < seconds * 1000)
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 20);
        return holds();
    }
    void settle() {
        until([this] { return !model().rendering(); });
        turn();
    }

    QPointF at(double time, Zone zone) const {
        const double gutter = timeline->property("gutter").toDouble();
        return timeline->mapToScene({gutter + hand->scale().x(time), hand->row(zone).middle()});
    }
    void mouse(QEvent::Type type, const QPointF& at) {
        const bool up = type == QEvent::MouseButtonRelease;
        QMouseEvent event(type, at, at, at, type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton,
                          up ? Qt::NoButton : Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(&window, &event);
        turn(2);
    }
    void drag(const QPointF& from, const QPointF& to) {
        mouse(QEvent::MouseButtonPress, from);
        for (int i = 1; i <= 6; ++i)
            mouse(QEvent::MouseMove, from + (to - from) * i / 6);
        mouse(QEvent::MouseButtonRelease, to);
        settle();
    }
    void click(QQuickItem* item) {
        ASSERT_TRUE(item);
        const QPointF middle = item->mapToScene({item->width() / 2, item->height() / 2});
        mouse(QEvent::MouseButtonPress, middle);
        mouse(QEvent::MouseButtonRelease, middle);
        settle();
    }
    void key(int code, Qt::KeyboardModifiers modifiers = {}, const QString& text = {}) {
        for (const auto type : {QEvent::KeyPress, QEvent::KeyRelease}) {
            QKeyEvent event(type, code, modifiers, text);
            QCoreApplication::sendEvent(&window, &event);
        }
        settle();
    }
    /// Goes from control to control with Tab alone until the one of that name has the focus.
    bool tabTo(const char* name) {
        for (int i = 0; i < 150; ++i) {
            QQuickItem* focus = window.activeFocusItem();
            if (focus && focus->objectName() == QLatin1String(name)) return true;
            key(Qt::Key_Tab);
        }
        return false;
    }

    static void walk(QQuickItem* item, const std::function<void(QQuickItem*)>& visit) {
        if (!item->isVisible()) return;
        visit(item);
        for (QQuickItem* child : item->childItems())
            walk(child, visit);
    }
    /// What is shown under that name or text.
    QQuickItem* shown(const QString& name) {
        QQuickItem* found = nullptr;
        walk(window.contentItem(), [&](QQuickItem* item) {
            if (item->objectName() == name || item->property("text").toString() == name) {
                // A button rather than the text on it.
                if (!found || item->inherits("QQuickAbstractButton")) found = item;
            }
        });
        return found;
    }

    /// The look of that name in the panel of looks.
    QQuickItem* tile(const char* name) {
        QQuickItem* found = nullptr;
        walk(window.contentItem(), [&](QQuickItem* item) {
            if (item->property("pictures").isValid() &&
                item->property("name").toString() == QLatin1String(name))
                found = item;
        });
        return found;
    }
    static bool hasTip(const QQuickItem* item) {
        if (!item->property("tip").toString().isEmpty()) return true;
        for (const QQuickItem* child : item->childItems())
            if (QByteArray(child->metaObject()->className()).startsWith("Tooltip") &&
                !child->property("text").toString().isEmpty())
                return true;
        return false;
    }

    std::function<void()> beforeExport; ///< called on the export's thread
    EditorFixture fixture;
    QQmlEngine engine;
    std::unique_ptr<QObject> object;
    QQuickWindow window;
    QQuickItem* view = nullptr;
    QQuickItem* timeline = nullptr;
    TimelineController* hand = nullptr;
};

TEST_F(EditorUse, TheKeyboardAloneReachesEverything) {
    const double length = model().duration();
    ASSERT_TRUE(tabTo("speedLane"));
    key(Qt::Key_Return);
    ASSERT_EQ(model().speedBlocks().size(), 1u);
    const double before = model().speedBlocks()[0].start;
    key(Qt::Key_Right, Qt::ShiftModifier);
    EXPECT_NEAR(model().speedBlocks()[0].start, before + 0.1, 1e-9);
    key(Qt::Key_Up);
    EXPECT_EQ(model().speedBlocks()[0].speed, 6);
    ASSERT_TRUE(tabTo("zoomLane"));
    key(Qt::Key_Return);
    EXPECT_EQ(model().zoomBlocks().size(), 1u);
    key(Qt::Key_Delete);
    EXPECT_TRUE(model().zoomBlocks().empty());

    key(Qt::Key_End);
    EXPECT_NEAR(model().playhead(), model().outputDuration(), 1e-6);
    key(Qt::Key_Home);
    key(Qt::Key_Escape);
    key(Qt::Key_Home);
    const double second = model().playhead();
    key(Qt::Key_Right, Qt::ShiftModifier);
    EXPECT_NEAR(model().playhead(), second + 1, 0.02);
    key(Qt::Key_BracketLeft, {}, QStringLiteral("["));
    EXPECT_EQ(hand->selectionKind(), QStringLiteral("range"));
    key(Qt::Key_Delete);
    EXPECT_EQ(model().project().cuts.size(), 1u);
    key(Qt::Key_I, {}, QStringLiteral("i"));
    EXPECT_GT(model().project().trimStart, 0);
    EXPECT_LT(model().project().trimStart, length);

    ASSERT_TRUE(tabTo("panel-crop"));
    key(Qt::Key_Space, {}, QStringLiteral(" "));
    ASSERT_TRUE(tabTo("crop"));
    key(Qt::Key_Space, {}, QStringLiteral(" "));
    EXPECT_EQ(view->property("aim").toString(), QStringLiteral("crop"));
    key(Qt::Key_Right, Qt::ShiftModifier);
    key(Qt::Key_Left, Qt::ShiftModifier);
    EXPECT_TRUE(model().project().crop.has_value());
    key(Qt::Key_Escape);
    EXPECT_TRUE(view->property("aim").toString().isEmpty());
}

TEST_F(EditorUse, TheCropIsDrawnMovedAndResizedByHand) {
    view->setProperty("panel", QStringLiteral("crop"));
    view->setProperty("aim", QStringLiteral("crop"));
    settle();
    QQuickItem* still = nullptr;
    walk(window.contentItem(), [&](QQuickItem* item) {
        if (QByteArray(item->metaObject()->className()).contains("SourceStill")) still = item;
    });
    ASSERT_TRUE(still);
    const auto point = [&](double x, double y) {
        return still->mapToScene({x * still->width(), y * still->height()});
    };
    const auto expect = [&](const QRectF& frame, const char* what) {
        ASSERT_TRUE(model().project().crop.has_value()) << what;
        const RecordCore::NRect crop = *model().project().crop;
        EXPECT_NEAR(crop.x, frame.x(), 0.01) << what;
        EXPECT_NEAR(crop.y, frame.y(), 0.01) << what;
        EXPECT_NEAR(crop.w, frame.width(), 0.01) << what;
        EXPECT_NEAR(crop.h, frame.height(), 0.01) << what;
    };
    drag(point(0.5, 0.5), point(0.51, 0.505));
    EXPECT_FALSE(model().project().crop.has_value()) << "a click that slips is no frame";
    drag(point(0.6, 0.7), point(0.2, 0.3));
    expect({0.2, 0.3, 0.4, 0.4}, "drawn, upwards");
    drag(point(0.3, 0.4), point(0.4, 0.3));
    expect({0.3, 0.2, 0.4, 0.4}, "moved");
    drag(point(0.7, 0.6), point(0.9, 0.8));
    expect({0.3, 0.2, 0.6, 0.6}, "by its corner");
    key(Qt::Key_Z, Qt::ControlModifier);
    key(Qt::Key_Z, Qt::ControlModifier);
    expect({0.2, 0.3, 0.4, 0.4}, "a drag is one step");
}

TEST_F(EditorUse, LooksAreChosenKeptRenamedAndDeleted) {
    const QTemporaryDir settings;
    const QByteArray before = qgetenv("XDG_CONFIG_HOME");
    qputenv("XDG_CONFIG_HOME", settings.path().toUtf8());
    // Made anew, over the settings of this test.
    view->setProperty("panel", QStringLiteral("frame"));
    click(shown(QStringLiteral("panel-looks")));
    const Project plain = model().project();
    click(tile("Paper"));
    const Project paper = model().project();
    EXPECT_EQ(paper.wallpaperPreset, "terrace-paper");
    EXPECT_TRUE(tile("Paper")->property("checked").toBool());
    key(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(model().project(), plain) << "a look is one step";

    EXPECT_FALSE(shown(QStringLiteral("keepLook"))) << "it has a name already";
    model().set(QStringLiteral("padding"), 0.11);
    settle();
    ASSERT_TRUE(tabTo("lookName"));
    for (const char letter : {'R', 'o', 'o', 'm'})
        key(0, {}, QString(QLatin1Char(letter)));
    key(Qt::Key_Return);
    ASSERT_TRUE(tile("Room"));
    EXPECT_TRUE(tile("Room")->property("checked").toBool());
    click(tile("Ink"));
    click(tile("Room"));
    EXPECT_DOUBLE_EQ(model().project().padding, 0.11);

    tile("Room")->forceActiveFocus(Qt::TabFocusReason);
    key(Qt::Key_F2);
    for (const char letter : {'W', 'i', 'd', 'e'})
        key(0, {}, QString(QLatin1Char(letter)));
    key(Qt::Key_Return);
    ASSERT_TRUE(tile("Wide"));
    EXPECT_FALSE(tile("Room"));
    tile("Wide")->forceActiveFocus(Qt::TabFocusReason);
    key(Qt::Key_Delete);
    EXPECT_FALSE(tile("Wide"));
    EXPECT_DOUBLE_EQ(model().project().padding, 0.11) << "the film keeps what it has";
    click(shown(QStringLiteral("putBack")));
    EXPECT_TRUE(tile("Wide"));
    tile("Paper")->forceActiveFocus(Qt::TabFocusReason);
    key(Qt::Key_Delete);
    EXPECT_TRUE(tile("Paper")) << "the program's own stay";
    qputenv("XDG_CONFIG_HOME", before);
}

TEST_F(EditorUse, EveryInteractiveItemHasANameAndATip) {
    Project captioned = model().project();
    captioned.captions = {{"one", 1, 1.5}, {"two", 1.5, 2}};
    model().update(captioned);
    int seen = 0, told = 0;
    const auto check = [&](const char* where) {
        walk(window.contentItem(), [&](QQuickItem* item) {
            QAccessibleInterface* face = QAccessible::queryAccessibleInterface(item);
            const QAccessible::Role role = face ? face->role() : QAccessible::NoRole;
            const bool operated = role == QAccessible::Button || role == QAccessible::CheckBox ||
                                  role == QAccessible::RadioButton || role == QAccessible::Slider ||
                                  role == QAccessible::EditableText || role == QAccessible::ComboBox ||
                                  role == QAccessible::PageTab;
            // What only holds others is no stop of its own.
            if (!(operated || item->activeFocusOnTab()) || item->inherits("QQuickFocusScope")) return;
            const auto about = [&] {
                return std::string(where) + ": " + item->metaObject()->className() + " " +
                       item->objectName().toStdString() + " \"" +
                       (face ? face->text(QAccessible::Name).toStdString() : "") + "\"";
            };
            ++seen;
            EXPECT_TRUE(face && !face->text(QAccessible::Name).isEmpty()) << "without a name, " << about();
            if (!operated) return;
            ++told;
            // A tip of its own, or a line of explanation in sight.
            EXPECT_TRUE(hasTip(item) || !item->property("detail").toString().isEmpty())
                << "without a tip, " << about();
        });
    };
    for (const char* panel : {"looks", "format", "background", "frame", "pointer", "zoom", "speed", "camera",
                              "captions", "cards", "crop"}) {
        view->setProperty("panel", QString::fromLatin1(panel));
        turn();
        check(panel);
    }
    model().setSpeed(1, 3, 4);
    view->setProperty("panel", QStringLiteral("speed"));
    settle();
    check("a speed block");
    model().addZoom(4, 6);
    view->setProperty("panel", QStringLiteral("zoom"));
    settle();
    check("a zoom block");
    model().selectRange(1, 2);
    settle();
    check("a range");
    QMetaObject::invokeMethod(view->property("exportSheet").value<QObject*>(), "open");
    until([&] { return shown(QStringLiteral("exportNow")) != nullptr; });
    check("export");

    using State = EditorModel::ExportState;
    const auto press = [&](const QString& name) {
        ASSERT_TRUE(until([&] { return shown(name) != nullptr; })) << name.toStdString();
        QMetaObject::invokeMethod(shown(name), "clicked");
    };
    std::promise<void> gate;
    beforeExport = [waits = gate.get_future().share()] { waits.wait(); };
    ASSERT_NO_FATAL_FAILURE(press(QStringLiteral("exportNow")));
    EXPECT_TRUE(until([&] { return model().exportState() == State::working; }));
    turn();
    check("exporting");
    // Put away, the sheet keeps what became of it until it is looked at.
    auto* sheet = view->property("exportSheet").value<QObject*>();
    QMetaObject::invokeMethod(sheet, "close");
    EXPECT_TRUE(until([&] { return !sheet->property("visible").toBool(); }));
    gate.set_value();
    EXPECT_TRUE(until([&] { return model().exportState() == State::done; }));
    turn();
    EXPECT_EQ(shown(QStringLiteral("export"))->property("text"), QStringLiteral("Your film is ready"));
    QMetaObject::invokeMethod(sheet, "open");
    EXPECT_TRUE(until([&] { return sheet->property("opened").toBool(); }));
    EXPECT_EQ(shown(QStringLiteral("export"))->property("text"), QStringLiteral("Export"));
    check("exported");
    beforeExport = [] { throw RecordingError("film.mp4: no space left on device"); };
    ASSERT_NO_FATAL_FAILURE(press(QStringLiteral("Export more")));
    ASSERT_NO_FATAL_FAILURE(press(QStringLiteral("exportNow")));
    EXPECT_TRUE(until([&] { return model().exportState() == State::failed; }));
    turn();
    check("a failed export");
    QMetaObject::invokeMethod(sheet, "close");
    QMetaObject::invokeMethod(view->property("shortcutsSheet").value<QObject*>(), "open");
    turn();
    check("the sheet of keys");
    EXPECT_GT(seen, 300);
    EXPECT_GT(told, 250);
}

} // namespace
} // namespace OmbrelRecord
