#pragma once

#include "OmbrelRecord/EditorModel/EditorModel.h"
#include "Tests/Support/TemporaryFolder.h"

#include <QtCore/QCoreApplication>
#include <chrono>
#include <filesystem>
#include <gtest/gtest.h>
#include <memory>
#include <thread>
#include <vector>

/// A recording without footage, open in an editor over scripted parts and a clock that the test turns.
class EditedRecording : public testing::Test {
protected:
    class ScriptedDesktop : public OmbrelRecord::Desktop {
    public:
        void reveal(const std::filesystem::path& file) override { revealed.push_back(file); }
        void copyFile(const std::filesystem::path& file) override { copied.push_back(file); }
        void trash(const std::filesystem::path&) override {}
        std::vector<std::filesystem::path> revealed;
        std::vector<std::filesystem::path> copied;
    };

    explicit EditedRecording(double seconds) {
        recording.files.folder = folder / "Recording 1";
        std::filesystem::create_directory(recording.files.folder);
        recording.video = recording.files.video();
        recording.info = {1920, 1080, seconds, 60, false};
        parts.now = [this] { return now; };
        parts.desktop = &desktop;
        parts.films = folder / "Films";
    }

    template <typename Condition>
    static bool until(const Condition& holds) {
        for (int i = 0; i < 5000 && !holds(); ++i) {
            QCoreApplication::processEvents();
            std::this_thread::sleep_for(std::chrono::milliseconds(1)); // other threads are at work
        }
        return holds();
    }

    TemporaryFolder folder;
    ScriptedDesktop desktop;
    OmbrelRecord::OpenedRecording recording;
    OmbrelRecord::EditorParts parts;
    double now = 0;
    std::unique_ptr<OmbrelRecord::EditorModel> model;
};
