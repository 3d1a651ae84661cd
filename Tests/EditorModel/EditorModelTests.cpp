#include "OmbrelRecord/EditorModel/EditorModel.h"
#include "RecordCore/Model/RecordingError.h"
#include "Tests/EditorModel/EditedRecording.h"

#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <thread>

namespace {

using namespace OmbrelRecord;
using namespace RecordCore;
namespace fs = std::filesystem;
using State = EditorModel::ExportState;

/// A preview that takes as long as the test wants.
class ScriptedPreview : public EditorPreview {
public:
    void update(const Project&, const Plan& plan, std::function<void()> shown) override {
        plans.push_back(plan);
        waiting.push_back(std::move(shown));
    }
    void play() override { onPlaying(true); }
    void pause() override { onPlaying(false); }
    void seek(double seconds) override { sought.push_back(seconds); }
    std::vector<Plan> plans;
    std::vector<std::function<void()>> waiting;
    std::vector<double> sought;
};

class EditorModelTest : public EditedRecording {
protected:
    EditorModelTest() : EditedRecording(20) {}

    EditorModel& open() {
        model = std::make_unique<EditorModel>(recording, parts);
        return *model;
    }

    /// Nothing is sped up by itself.
    void keepEverything() {
        Project project;
        project.skipWaiting = false;
        project.save(recording.files.project());
    }
};

TEST_F(EditorModelTest, EditsUndoAndRedoThroughOnePath) {
    EditorModel& editor = open();
    const Project start = editor.project();
    EXPECT_TRUE(editor.set(QStringLiteral("padding"), 0.05));
    now = 0.5;
    EXPECT_TRUE(editor.set(QStringLiteral("padding"), 0.06));
    EXPECT_FALSE(editor.set(QStringLiteral("padding"), QStringLiteral("wide")));
    EXPECT_FALSE(editor.set(QStringLiteral("nothing"), 1.0));
    editor.cut(2, 4);
    EXPECT_TRUE(editor.set(QStringLiteral("solidColor"), QStringLiteral("#102030")));
    EXPECT_TRUE(editor.set(QStringLiteral("solidColor"), QVariant()));
    const Project end = editor.project();
    for (int steps = 0; steps < 3; ++steps)
        editor.undo();
    EXPECT_EQ(editor.project(), start) << "a drag is one step, and so are colour and cut";
    EXPECT_FALSE(editor.canUndo());
    editor.update(start);
    EXPECT_TRUE(editor.canRedo()) << "what changes nothing is no edit";
    while (editor.canRedo())
        editor.redo();
    EXPECT_EQ(editor.project(), end);
    model.reset();
    EXPECT_EQ(Project::load(recording.files.project())->cuts, end.cuts) << "saved at the latest when it goes";
}

TEST_F(EditorModelTest, ManyEditsDuringARebuildCauseExactlyOneMore) {
    ScriptedPreview* preview = nullptr;
    parts.makePreview = [&preview](const OpenedRecording&) {
        auto made = std::make_unique<ScriptedPreview>();
        preview = made.get();
        return made;
    };
    keepEverything();
    EditorModel& editor = open();
    ASSERT_EQ(preview->plans.size(), 1u);
    editor.cut(2, 4);
    EXPECT_TRUE(editor.rendering());
    ASSERT_TRUE(until([&] { return preview->plans.size() == 2; }));
    for (int i = 0; i < 5; ++i)
        editor.cut(5 + i, 5.5 + i);
    QCoreApplication::processEvents();
    EXPECT_EQ(preview->plans.size(), 2u) << "the first still goes on";
    preview->waiting.back()();
    ASSERT_TRUE(until([&] { return preview->plans.size() == 3; }));
    preview->waiting.back()();
    EXPECT_FALSE(editor.rendering());
    QCoreApplication::processEvents();
    EXPECT_EQ(preview->plans.size(), 3u);
    EXPECT_DOUBLE_EQ(editor.outputDuration(), 20 - 2 - 2.5);
    EXPECT_EQ(preview->plans.back(), editor.plan());
}

TEST_F(EditorModelTest, ThePlayheadStaysOnItsMoment) {
    keepEverything();
    EditorModel& editor = open();
    editor.seek(10);
    editor.cut(2, 4);
    ASSERT_TRUE(until([&] { return !editor.rendering(); }));
    EXPECT_DOUBLE_EQ(editor.playhead(), 8);
    EXPECT_DOUBLE_EQ(editor.sourceTime(), 10);
    editor.split();
    EXPECT_THAT(editor.project().splits, testing::ElementsAre(10.0));
    editor.markStart();
    EXPECT_EQ(editor.project().trimStart, 10);
    EXPECT_EQ(editor.project().trimEnd, 20.0);
    editor.seek(1e9);
    EXPECT_EQ(editor.playhead(), editor.outputDuration());
}

TEST_F(EditorModelTest, DeletesWhatIsSelected) {
    keepEverything();
    EditorModel& editor = open();
    editor.setSpeed(2, 6, 4);
    ASSERT_TRUE(std::holds_alternative<EditorModel::Selection::Speed>(editor.selection()));
    editor.deleteSelection();
    EXPECT_TRUE(editor.project().speedBlocks->empty());
    EXPECT_TRUE(std::holds_alternative<EditorModel::Selection::None>(editor.selection()));
    editor.addZoom(3, 5);
    ASSERT_TRUE(std::holds_alternative<EditorModel::Selection::Zoom>(editor.selection()));
    editor.deleteSelection();
    EXPECT_TRUE(editor.project().zoomBlocks->empty());
    editor.selectRange(7, 6);
    editor.deleteSelection();
    EXPECT_THAT(editor.project().cuts, testing::ElementsAre(TimeRange{6, 7}));
    editor.deleteSelection();
    EXPECT_EQ(editor.project().cuts.size(), 1u) << "nothing is selected";
}

TEST_F(EditorModelTest, BlocksInForceAreOwnElseAutomaticElseNone) {
    for (int i = 0; i < 300; ++i) // still from beginning to end
        recording.samples.push_back({i / 15.0, 0, std::nullopt});
    recording.log.emplace();
    recording.log->keysTracked = true;
    EditorModel& editor = open();
    ASSERT_FALSE(editor.speedBlocks().empty()) << "an idle recording is sped up";
    const Uuid id = editor.speedBlocks().front().id;
    editor.set(QStringLiteral("padding"), 0.05);
    EXPECT_EQ(editor.speedBlocks().front().id, id) << "the same blocks as long as nothing about them changes";
    editor.set(QStringLiteral("skipWaiting"), false);
    EXPECT_TRUE(editor.speedBlocks().empty());
    editor.undo();
    editor.deleteSpeed(id);
    ASSERT_TRUE(editor.project().speedBlocks.has_value());
    EXPECT_EQ(editor.speedBlocks(), *editor.project().speedBlocks);
}

TEST_F(EditorModelTest, NamesTheFilm) {
    EXPECT_EQ(EditorModel::exportFileName("N", OutputFormat::wide, 2), "N – YouTube 4K.mp4");
    EXPECT_EQ(EditorModel::exportFileName("N", OutputFormat::wide, 1), "N – YouTube.mp4");
    EXPECT_EQ(EditorModel::exportFileName("N", OutputFormat::portrait, 1), "N – X.mp4");
    EXPECT_EQ(EditorModel::exportFileName("N", OutputFormat::tall, 1), "N – Shorts.mp4");
    EXPECT_EQ(EditorModel::exportFileName("N", OutputFormat::square, 0.5), "N – Square.mp4");
    OpenedRecording movie = recording;
    movie.video = recording.files.folder / "talk.mov";
    EXPECT_EQ(movie.name(), "talk");
    EXPECT_EQ(recording.name(), "Recording 1");
}

TEST_F(EditorModelTest, ExportsInTheChosenFormat) {
    std::atomic<bool> go{false};
    ExportJob seen;
    parts.exportFilm = [&](const ExportJob& job, const auto& progress, const std::atomic<bool>& cancel) {
        seen = job;
        progress(0.5);
        while (!go && !cancel)
            std::this_thread::yield();
    };
    std::ofstream(recording.files.camera()) << "x";
    EditorModel& editor = open();
    EXPECT_EQ(editor.exportState(), State::idle);
    editor.exportFilm(QStringLiteral("9:16"), 2);
    EXPECT_EQ(editor.exportState(), State::working);
    ASSERT_TRUE(until([&] { return editor.exportProgress() == 0.5; }));
    editor.exportFilm(); // ignored
    go = true;
    ASSERT_TRUE(until([&] { return editor.exportState() == State::done; }));
    const fs::path film = folder.path() / "Films" / "Recording 1 – Shorts 4K.mp4";
    EXPECT_EQ(seen.destination, film);
    EXPECT_EQ(seen.options.format(), OutputFormat::tall);
    EXPECT_EQ(seen.options.scale, 2);
    EXPECT_EQ(seen.options.camera, recording.files.camera());
    EXPECT_EQ(editor.project().format, "16:9") << "the project keeps its own";
    EXPECT_THAT(desktop.revealed, testing::ElementsAre(film));
    editor.copyExported();
    EXPECT_THAT(desktop.copied, testing::ElementsAre(film));
}

TEST_F(EditorModelTest, AnExportFailsOrIsGivenUp) {
    parts.exportFilm = [](const ExportJob&, const auto&, const std::atomic<bool>& cancel) {
        while (!cancel)
            std::this_thread::yield();
        throw RecordingError("cancelled");
    };
    open().exportFilm();
    model->cancelExport();
    ASSERT_TRUE(until([&] { return model->exportState() == State::idle; }));
    EXPECT_TRUE(model->exportFailure().isEmpty());
    model->exportFilm();
    model.reset(); // gives the export up, or this would wait for ever

    parts.exportFilm = [](const ExportJob&, const auto&, const std::atomic<bool>&) {
        throw RecordingError("the disk is full");
    };
    open().exportFilm();
    ASSERT_TRUE(until([&] { return model->exportState() == State::failed; }));
    EXPECT_EQ(model->exportFailure(), QStringLiteral("the disk is full"));
    model->copyExported();
    EXPECT_TRUE(desktop.copied.empty() && desktop.revealed.empty());
}

TEST_F(EditorModelTest, RecognisesCaptions) {
    parts.recognizeWords = [](const fs::path&, const std::string& language, const auto&,
                              const std::atomic<bool>&) -> std::vector<CaptionWord> {
        if (language == "xx") throw RecordingError("Speech recognition isn't available");
        if (language == "yy") return {};
        return {{"hello", 1, 1.5}};
    };
    EditorModel& editor = open();
    for (const auto& [language, message] : {std::pair{"xx", "Speech recognition isn't available"},
                                            {"yy", "No speech found. Record with Mic on to get captions."}}) {
        editor.generateCaptions(QString::fromLatin1(language));
        ASSERT_TRUE(until([&] { return !editor.captioning(); }));
        EXPECT_EQ(editor.captionsMessage(), QString::fromLatin1(message));
        EXPECT_EQ(editor.project(), Project());
    }
    editor.generateCaptions(QStringLiteral("en-US"));
    ASSERT_TRUE(until([&] { return !editor.captioning(); }));
    EXPECT_TRUE(editor.captionsMessage().isEmpty());
    EXPECT_EQ(editor.project().captions, (std::vector<CaptionWord>{{"hello", 1, 1.5}}));
    EXPECT_TRUE(editor.project().showCaptions);
    editor.undo();
    EXPECT_EQ(editor.project(), Project());
}

TEST_F(EditorModelTest, CorrectedWordsAreTimedAnew) {
    Project given;
    given.captions = {{"helo", 1, 1.5}, {"world", 1.5, 2}};
    given.save(recording.files.project());
    std::atomic<bool> listen{false};
    parts.alignWords = [&](const fs::path&, std::vector<CaptionWord> words, const std::string& language,
                           const auto&, const std::atomic<bool>&) {
        while (!listen)
            std::this_thread::yield();
        if (language == "xx") throw RecordingError("Speech recognition isn't available");
        for (CaptionWord& word : words)
            word.start += 0.25;
        return words;
    };
    EditorModel& editor = open();
    const Project before = editor.project();
    editor.retimeCaptions(QStringLiteral("en-US"));
    EXPECT_TRUE(editor.captioning());
    editor.editCaption(0, QStringLiteral("Hello")); // while it listens
    listen = true;
    ASSERT_TRUE(until([&] { return !editor.captioning(); }));
    EXPECT_EQ(editor.project().captions,
              (std::vector<CaptionWord>{{"Hello", 1.25, 1.5}, {"world", 1.75, 2}}));
    editor.undo();
    EXPECT_EQ((*editor.project().captions)[1].start, 1.5);
    editor.undo();
    EXPECT_EQ(editor.project(), before);

    // A word that was taken out meanwhile leaves the times to nobody.
    listen = false;
    editor.retimeCaptions();
    editor.editCaption(0, {});
    listen = true;
    ASSERT_TRUE(until([&] { return !editor.captioning(); }));
    EXPECT_EQ(editor.project().captions, (std::vector<CaptionWord>{{"world", 1.5, 2}}));

    editor.retimeCaptions(QStringLiteral("xx"));
    ASSERT_TRUE(until([&] { return !editor.captioning(); }));
    EXPECT_EQ(editor.captionsMessage(), QStringLiteral("Speech recognition isn't available"));
}

} // namespace
