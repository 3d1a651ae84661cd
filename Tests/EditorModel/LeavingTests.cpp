#include "OmbrelRecord/EditorModel/EditorPlayer.h"
#include "OmbrelRecord/EditorModel/LookPictures.h"
#include "RecordCore/Model/RecordingError.h"
#include "Tests/EditorModel/EditedRecording.h"
#include "Tests/Support/RealMedia.h"

#include <atomic>
#include <future>

namespace {

using namespace OmbrelRecord;
using namespace RecordCore;

/// Files that cannot be opened before the test says so, as on a disk that is slow to wake up.
class HeldMedia : public RealMedia {
public:
    SourceInfo sourceInfo(const std::filesystem::path&) const override {
        hold();
        return {};
    }
    std::unique_ptr<VideoReader> openVideo(const std::filesystem::path&, int) const override {
        return hold();
    }
    std::vector<std::unique_ptr<SoundReader>> openSound(const std::filesystem::path&) const override {
        hold();
        return {};
    }

    void letGo() { gate.set_value(); }

    mutable std::atomic<int> waiting{0}; ///< threads
    mutable std::atomic<bool> inVain{false};

private:
    std::nullptr_t hold() const {
        ++waiting;
        if (opened.wait_for(std::chrono::seconds(60)) != std::future_status::ready) inVain = true;
        throw RecordingError("it is not there");
    }

    std::promise<void> gate;
    std::shared_future<void> opened = gate.get_future().share();
};

class Leaving : public EditedRecording {
protected:
    Leaving() : EditedRecording(10) { recording.info.hasAudio = true; }
};

TEST_F(Leaving, AnEditorDoesNotWaitForWhatItsThreadsAreReading) {
    const auto media = std::make_shared<HeldMedia>();
    std::atomic<bool> exportStopped{false}, listeningStopped{false};
    const auto workUntil = [](const std::atomic<bool>& cancel, std::atomic<bool>& stopped) {
        while (!cancel)
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        stopped = true;
        throw RecordingError("given up");
    };
    {
        Disposal disposal;
        parts.media = media.get();
        parts.disposal = &disposal;
        parts.makePreview = EditorPlayer::factory(media, nullptr, &disposal);
        parts.exportFilm = [&](const ExportJob&, const auto&, const auto& cancel) {
            workUntil(cancel, exportStopped);
        };
        parts.recognizeWords = [&](const auto&, const auto&, const auto&,
                                   const auto& cancel) -> std::vector<CaptionWord> {
            workUntil(cancel, listeningStopped);
            return {};
        };
        model = std::make_unique<EditorModel>(recording, parts);
        model->filmstrip(40)->show(0, 0, 3);
        ASSERT_TRUE(model->waveform());
        model->exportFilm();
        model->generateCaptions();
        LookPresets looks;
        auto pictures = std::make_unique<LookPictures>();
        pictures->setLooks(&looks);
        pictures->setRoom({160, 90});
        pictures->setEditor(model.get());
        // The preview, the filmstrip, the waveform and the pictures of the looks.
        ASSERT_TRUE(until([&] { return media->waiting >= 4; })) << media->waiting;
        pictures.reset();
        model.reset();
        // It has gone while all of them still wait.
        EXPECT_FALSE(media->inVain);
        media->letGo();
    }
    EXPECT_TRUE(exportStopped && listeningStopped) << "the disposal waits for what it was given";
    EXPECT_FALSE(media->inVain);
}

} // namespace
