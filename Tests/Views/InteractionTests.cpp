#include "OmbrelRecord/Application/OmbrelRecordApp.h"
#include "OmbrelRecord/Application/SingleInstance.h"
#include "OmbrelRecord/Application/StillLife.h"
#include "OmbrelRecord/Entry/Backends.h"

#include <QtCore/QTemporaryDir>
#include <QtCore/QThread>
#include <QtGui/QAccessible>
#include <QtQml/QQmlComponent>
#include <QtQuick/QQuickItem>
#include <QtQuick/QQuickWindow>
#include <QtTest/QSignalSpy>
#include <QtTest/QTest>
#include <cstdlib>
#include <fstream>
#include <gmock/gmock.h>
#include <memory>
#include <set>

namespace OmbrelRecord {
namespace {

/// A view in a window that has the keyboard.
class Shown {
public:
    explicit Shown(const QByteArray& qml, QSize size = {400, 200}) {
        OmbrelRecordApp::prepare(engine);
        QQmlComponent component(&engine);
        component.setData("import QtQuick\nimport OmbrelRecord\n" + qml,
                          QUrl(QStringLiteral("qrc:/qt/qml/test.qml")));
        show(component.create(), component.errorString(), size);
    }
    Shown(const QString& type, const QVariantMap& properties, QSize size) {
        OmbrelRecordApp::prepare(engine);
        QQmlComponent component(&engine, OmbrelRecordApp::view(type));
        show(component.createWithInitialProperties(properties), component.errorString(), size);
    }
    ~Shown() { item.reset(); }

    QQuickWindow window;
    std::unique_ptr<QQuickItem> item;

private:
    void show(QObject* object, const QString& errors, QSize size) {
        item.reset(qobject_cast<QQuickItem*>(object));
        ASSERT_TRUE(item) << errors.toStdString();
        window.resize(size);
        item->setParentItem(window.contentItem());
        item->setWidth(size.width());
        window.show();
        window.requestActivate();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
        item->forceActiveFocus(Qt::TabFocusReason);
    }
    QQmlEngine engine;
};

TEST(Controls, SliderTakesKeysAndGoesBackToItsDefault) {
    Shown shown("Slider { label: 'Padding'; value: 0.5; resetValue: 0.25; stepSize: 0.05 }");
    QSignalSpy edited(shown.item.get(), SIGNAL(edited(double)));
    QTest::keyClick(&shown.window, Qt::Key_Right);
    EXPECT_DOUBLE_EQ(shown.item->property("value").toDouble(), 0.55);
    QTest::keyClick(&shown.window, Qt::Key_Backspace);
    EXPECT_DOUBLE_EQ(shown.item->property("value").toDouble(), 0.25);
    EXPECT_EQ(edited.count(), 2);

    const QPoint track(360, static_cast<int>(shown.item->height()) - 10);
    QTest::mouseDClick(&shown.window, Qt::LeftButton, {}, track);
    EXPECT_TRUE(QTest::qWaitFor([&] { return shown.item->property("value").toDouble() == 0.25; }));
}

TEST(Controls, SegmentsGoWithTheArrowsAndTheReadingDirection) {
    Shown shown("SegmentedControl { value: 1; model: [{ value: 0, text: 'a' }, { value: 1, text: 'b' }, "
                "{ value: 2, text: 'c' }]; onChosen: choice => value = choice }");
    QTest::keyClick(&shown.window, Qt::Key_Right);
    EXPECT_EQ(shown.item->property("value").toInt(), 2);
    QTest::keyClick(&shown.window, Qt::Key_Right);
    EXPECT_EQ(shown.item->property("value").toInt(), 2) << "the last one";
    QTest::keyClick(&shown.window, Qt::Key_Left);
    QTest::keyClick(&shown.window, Qt::Key_Left);
    EXPECT_EQ(shown.item->property("value").toInt(), 0);
    QTest::mouseClick(&shown.window, Qt::LeftButton, {}, QPoint(340, 17));
    EXPECT_EQ(shown.item->property("value").toInt(), 2);

    Shown mirrored(
        "SegmentedControl { LayoutMirroring.enabled: true; value: 0; model: [{ value: 0, text: 'a' }, "
        "{ value: 1, text: 'b' }]; onChosen: choice => value = choice }");
    QTest::keyClick(&mirrored.window, Qt::Key_Left);
    EXPECT_EQ(mirrored.item->property("value").toInt(), 1);
}

const std::filesystem::path sample =
    std::filesystem::path(OMBREL_SOURCE_DIR) / "OmbrelRecord/Resources/sample/recording.mp4";

class Stage : public testing::Test {
protected:
    std::shared_ptr<const RecordCore::MediaBackend> media = makeMediaBackend();
    StillLife life{*media, sample, {}};
    QVariantMap properties{{QStringLiteral("app"), QVariant::fromValue<QObject*>(&life.model())}};
};

TEST_F(Stage, HomeIsUsedWithTheKeyboardAlone) {
    Shown shown(QStringLiteral("HomeView"), properties, {1320, 788});
    shown.item->setHeight(788);
    // Round once: everything that can be reached says what it is.
    std::set<QString> reached;
    for (int i = 0; i < 30; ++i) {
        QTest::keyClick(&shown.window, Qt::Key_Tab);
        if (QQuickItem* at = shown.window.activeFocusItem()) {
            QAccessibleInterface* face = QAccessible::queryAccessibleInterface(at);
            ASSERT_TRUE(face);
            reached.insert(face->text(QAccessible::Name));
            if (face->text(QAccessible::Name) == QStringLiteral("Computer's sound")) {
                const bool before = life.model().systemAudio();
                QTest::keyClick(&shown.window, Qt::Key_Space);
                EXPECT_NE(life.model().systemAudio(), before);
                QTest::keyClick(&shown.window, Qt::Key_Space);
            }
        }
    }
    for (const char* name : {"Record", "Camera", "Microphone", "Computer's sound", "Open the sample",
                             "Open a movie…", "Source: Built-in display. Choose another"})
        EXPECT_TRUE(reached.contains(QString::fromUtf8(name))) << name;

    // The second recording, with the arrows.
    const auto nameOfFocus = [&] {
        QQuickItem* at = shown.window.activeFocusItem();
        QAccessibleInterface* face = at ? QAccessible::queryAccessibleInterface(at) : nullptr;
        return face ? face->text(QAccessible::Name) : QString();
    };
    for (int i = 0; i < 40 && !nameOfFocus().startsWith(QLatin1String("Recording, ")); ++i)
        QTest::keyClick(&shown.window, Qt::Key_Tab);
    const QString first = nameOfFocus();
    ASSERT_TRUE(first.startsWith(QLatin1String("Recording, ")));
    QTest::keyClick(&shown.window, Qt::Key_Right);
    EXPECT_NE(nameOfFocus(), first);
    EXPECT_TRUE(nameOfFocus().startsWith(QLatin1String("Recording, "))) << nameOfFocus().toStdString();
    QTest::keyClick(&shown.window, Qt::Key_Return);
    EXPECT_EQ(life.model().flow(), AppModel::Flow::loading);
}

TEST_F(Stage, CountdownAndPanelComeAndGoWithTheRecording) {
    // The one screen of the test's platform is the display that is recorded: the panel must not be shown.
    OmbrelRecordApp::Views views;
    OmbrelRecordApp application(views, life.model(), nullptr);
    life.countdown();
    ASSERT_TRUE(application.countdownPanel());
    EXPECT_EQ(application.countdownPanel()->size(), QSize(240, 240));
    life.record();
    EXPECT_FALSE(application.countdownPanel());
    ASSERT_TRUE(life.model().isRecording());
    EXPECT_FALSE(application.recordingPanel());
    // Starting the application again ends it then.
    application.startedAgain();
    EXPECT_FALSE(life.model().isRecording());
}

TEST(SingleInstance, TheSecondTellsTheFirst) {
    const QTemporaryDir folder;
    const QString place = folder.filePath(QStringLiteral("socket"));
    SingleInstance first(place);
    ASSERT_TRUE(first.claim());
    QSignalSpy again(&first, &SingleInstance::startedAgain);
    // The second one waits for an answer that only this thread's loop can give: a process of its own would.
    bool alone = true;
    std::unique_ptr<QThread> other(QThread::create([&] {
        SingleInstance second(place);
        alone = second.claim(QStringLiteral("/a folder/käse.mp4"));
    }));
    other->start();
    EXPECT_TRUE(QTest::qWaitFor([&] { return other->isFinished(); }));
    EXPECT_FALSE(alone);
    EXPECT_TRUE(QTest::qWaitFor([&] { return again.count() > 0; }));
    ASSERT_EQ(again.count(), 1);
    EXPECT_EQ(again.front().front().toString(), QStringLiteral("/a folder/käse.mp4"));
}

TEST(SingleInstance, WhatACrashLeftBehindIsNobody) {
    const QTemporaryDir folder;
    const QString place = folder.filePath(QStringLiteral("socket"));
    std::ofstream(place.toStdString()) << "stale";
    SingleInstance first(place);
    EXPECT_TRUE(first.claim());
    SingleInstance unreachable(QStringLiteral("/nowhere/at/all/socket"));
    EXPECT_TRUE(unreachable.claim()) << "without a socket every start is the first";
}

TEST(MissingDisplay, IsToldInsteadOfCrashedOn) {
    const QByteArray platform = qgetenv("QT_QPA_PLATFORM"), display = qgetenv("DISPLAY"),
                     wayland = qgetenv("WAYLAND_DISPLAY");
    EXPECT_EQ(OmbrelRecordApp::missingDisplay(), "") << "a platform that was asked for is taken at its word";
    qunsetenv("QT_QPA_PLATFORM");
    qunsetenv("DISPLAY");
    qunsetenv("WAYLAND_DISPLAY");
    EXPECT_THAT(OmbrelRecordApp::missingDisplay(), testing::StartsWith("Ombrel Record needs a desktop"));
    qputenv("DISPLAY", ":47111");
    qputenv("WAYLAND_DISPLAY", "nothing-of-that-name");
    EXPECT_THAT(OmbrelRecordApp::missingDisplay(),
                testing::StartsWith("The display :47111 does not answer."));
    qputenv("DISPLAY", "elsewhere:1");
    EXPECT_EQ(OmbrelRecordApp::missingDisplay(), "") << "only what can be tried at once is";
    qputenv("QT_QPA_PLATFORM", platform);
    display.isNull() ? qunsetenv("DISPLAY") : qputenv("DISPLAY", display);
    wayland.isNull() ? qunsetenv("WAYLAND_DISPLAY") : qputenv("WAYLAND_DISPLAY", wayland);
}

} // namespace
} // namespace OmbrelRecord
