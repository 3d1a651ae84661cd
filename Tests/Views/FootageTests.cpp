#include "OmbrelRecord/EditorModel/LookPictures.h"
#include "OmbrelRecord/EditorModel/Waveform.h"
#include "Tests/Media/Clips.h"
#include "Tests/Views/EditorFixture.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QElapsedTimer>
#include <cmath>
#include <fstream>
#include <gtest/gtest.h>

namespace OmbrelRecord {
namespace {

using namespace RecordCore;
namespace fs = std::filesystem;

template <typename Condition>
bool until(const Condition& holds) {
    QElapsedTimer clock;
    clock.start();
    while (!holds() && clock.elapsed() < 120000)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 20);
    return holds();
}

TEST(LookPictures, ShowTheFilmInEachLook) {
    EditorFixture fixture;
    EditorModel& model = fixture.model();
    model.seek(model.outputDuration() / 2);
    LookPresets presets(fixture.folder() / "looks.json");
    LookPictures pictures;
    pictures.setRoom({160, 90});
    pictures.setLooks(&presets);
    pictures.setEditor(&model);
    ASSERT_TRUE(until([&] { return pictures.settled(); }));
    const auto row = [&](const char* name) {
        for (int i = 0; i < presets.count(); ++i)
            if (presets.at(i).name == name) return i;
        return -1;
    };
    std::vector<QImage> first;
    for (int i = 0; i < presets.count(); ++i) {
        first.push_back(pictures.picture(i));
        ASSERT_EQ(first.back().size(), QSize(160, 90)) << presets.at(i).name;
        for (int other = 0; other < i; ++other)
            EXPECT_NE(first[static_cast<std::size_t>(other)], first.back()) << presets.at(i).name;
    }
    // Its own ground round the recording: the colour of the look "Ink".
    const QColor corner = first[static_cast<std::size_t>(row("Ink"))].pixelColor(0, 0);
    EXPECT_NEAR(corner.red(), 0x0e, 3);
    EXPECT_NEAR(corner.blue(), 0x13, 3);

    // The film's look is in none of the pictures, what the film shows is in all.
    int made = 0;
    QObject::connect(&pictures, &LookPictures::pictureChanged, [&](int) { ++made; });
    model.set(QStringLiteral("padding"), 0.1);
    ASSERT_TRUE(until([&] { return pictures.settled() && !model.rendering(); }));
    for (int i = 0; i < presets.count(); ++i)
        EXPECT_EQ(pictures.picture(i), first[static_cast<std::size_t>(i)]) << presets.at(i).name;
    model.set(QStringLiteral("format"), QStringLiteral("9:16"));
    ASSERT_TRUE(until([&] { return pictures.settled() && pictures.picture(0).width() < 90; }));
    EXPECT_EQ(pictures.picture(row("Paper")).height(), 90);
}

TEST(Waveform, IsReadFromTheSoundOnceAndThenFromItsFile) {
    EditorFixture fixture;
    const fs::path cache = fixture.folder() / "cache";
    const fs::path video = fixture.folder() / "tone.mp4";
    ffmpeg("-f lavfi -i color=c=gray:s=64x64:r=5 -f lavfi -i sine=frequency=440:sample_rate=48000 -t 2 -c:v "
           "libx264 "
           "-c:a aac " +
           video.string());
    const auto read = [&] {
        Waveform sound(fixture.backend(), video, 2, cache);
        EXPECT_TRUE(until([&] { return sound.complete(); }));
        return sound.peak(0.5, 1.5);
    };
    const double heard = read();
    EXPECT_GT(heard, 0.1);
    ASSERT_EQ(std::distance(fs::directory_iterator(cache), fs::directory_iterator()), 1);
    const fs::path kept = fs::directory_iterator(cache)->path();
    const auto size = fs::file_size(kept);
    {
        std::fstream file(kept, std::ios::in | std::ios::out | std::ios::binary);
        file.seekp(static_cast<std::streamoff>(size) - 100);
        file << std::string(1, '\xff'); // at one second
    }
    EXPECT_EQ(read(), 1.0) << "it was not taken from the file";
    fs::resize_file(kept, size / 2);
    EXPECT_DOUBLE_EQ(read(), heard) << "a file that was cut off counts for nothing";
    EXPECT_EQ(fs::file_size(kept), size) << "and is made anew";
}

} // namespace
} // namespace OmbrelRecord
