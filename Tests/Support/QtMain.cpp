#include <QtGui/QGuiApplication>
#include <gtest/gtest.h>

// The models' tests run in an application without windows; the display, if there is one, is left alone.
int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    testing::InitGoogleTest(&argc, argv);
    // Settings of the tests are nobody's.
    qputenv("XDG_CONFIG_HOME", "/tmp/ombrel-record-tests-config");
    const QGuiApplication application(argc, argv);
    QCoreApplication::setOrganizationName(QStringLiteral("OmbrelRecordTests"));
    return RUN_ALL_TESTS();
}
