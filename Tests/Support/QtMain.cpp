#include <QtGui/QGuiApplication>
#include <gtest/gtest.h>

// The models' tests run in an application without windows; the display, if there is one, is left alone.
int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    testing::InitGoogleTest(&argc, argv);
    const QGuiApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
