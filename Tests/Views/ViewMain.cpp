#include "OmbrelRecord/Application/OmbrelRecordApp.h"

#include <QtCore/QString>
#include <QtGui/QGuiApplication>
#include <gtest/gtest.h>

// Views are tried off screen and without a GPU, whatever the machine has.
int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("QT_QUICK_BACKEND", "software");
    qputenv("LC_ALL", "C"); // texts are looked for in English
    qunsetenv("LANGUAGE");
    qputenv("XDG_CONFIG_HOME", "/tmp/ombrel-record-tests-config");
    testing::InitGoogleTest(&argc, argv);
    OmbrelRecord::OmbrelRecordApp::prepare();
    const QGuiApplication application(argc, argv);
    OmbrelRecord::OmbrelRecordApp::dress();
    return RUN_ALL_TESTS();
}
