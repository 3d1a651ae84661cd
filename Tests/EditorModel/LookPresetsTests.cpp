#include "OmbrelRecord/EditorModel/LookPresets.h"

#include "OmbrelRecord/EditorModel/EditorModel.h"
#include "RecordCore/Model/AtomicFile.h"
#include "RecordCore/Rendering/Wallpapers.h"
#include "Tests/Support/TemporaryFolder.h"

#include <fstream>
#include <gtest/gtest.h>
#include <set>

namespace {

using namespace OmbrelRecord;
using namespace RecordCore;
namespace fs = std::filesystem;

class LookPresetsTest : public testing::Test {
protected:
    LookPresetsTest() {
        recording.files.folder = folder / "Recording 1";
        fs::create_directory(recording.files.folder);
        recording.video = recording.files.video();
        recording.info = {1920, 1080, 20, 60, false};
        parts.now = [] { return 0.0; };
        parts.films = folder / "Films";
        editor = std::make_unique<EditorModel>(recording, parts);
    }

    QString name(const LookPresets& looks, int row) const {
        return looks.data(looks.index(row), LookPresets::nameRole).toString();
    }

    TemporaryFolder folder;
    fs::path file = folder / "config" / "ombrel-record" / "looks.json";
    OpenedRecording recording;
    EditorParts parts;
    std::unique_ptr<EditorModel> editor;
};

} // namespace

TEST_F(LookPresetsTest, thoseOfTheProgramAreWhatProjectsCanHave) {
    const auto& builtIn = LookPreset::builtIn();
    EXPECT_GE(builtIn.size(), 8U);
    std::set<std::string> names;
    std::set<std::string> looks;
    for (const LookPreset& look : builtIn) {
        SCOPED_TRACE(look.name);
        EXPECT_TRUE(names.insert(look.name).second);
        EXPECT_TRUE(look.solidColor || Wallpapers::exists(look.wallpaperPreset.value_or("")));
        Project project;
        project.title = "kept";
        project.cuts = {{1, 2}};
        look.applyTo(project);
        EXPECT_EQ(project.title, "kept");
        EXPECT_EQ(project.cuts.size(), 1U);
        EXPECT_EQ(LookPreset::of(project, look.name, {}), look);
        project.save(folder / "one.json");
        looks.insert(readFile(folder / "one.json"));
    }
    EXPECT_EQ(looks.size(), builtIn.size()) << "two of them are one look";
    Project first;
    builtIn.front().applyTo(first);
    EXPECT_EQ(first, Project()) << "the first is what a new project has";
}

TEST_F(LookPresetsTest, applyingIsOneStepToUndo) {
    const LookPresets looks(file);
    EXPECT_EQ(looks.current(editor.get()), 0);
    const Project before = editor->project();
    ASSERT_TRUE(looks.apply(3, editor.get()));
    EXPECT_EQ(looks.current(editor.get()), 3);
    ASSERT_TRUE(looks.apply(5, editor.get()));
    EXPECT_EQ(editor->project().wallpaperPreset, looks.at(5).wallpaperPreset);
    editor->undo();
    EXPECT_EQ(looks.current(editor.get()), 3);
    editor->undo();
    EXPECT_EQ(editor->project(), before);
    EXPECT_FALSE(looks.apply(-1, editor.get()));
    EXPECT_FALSE(looks.apply(looks.count(), editor.get()));
    EXPECT_FALSE(editor->canUndo());
}

TEST_F(LookPresetsTest, ownLooksAreKept) {
    const int builtin = static_cast<int>(LookPreset::builtIn().size());
    {
        LookPresets looks(file);
        EXPECT_EQ(looks.freshName(), QStringLiteral("My look"));
        Project project;
        project.wallpaper = "hills.png";
        project.captionSize = 0.1 + 0.2;
        project.cameraBorder = true;
        editor->update(project);
        EXPECT_EQ(looks.save(QStringLiteral("  My \n look "), editor.get()), builtin);
        EXPECT_EQ(looks.freshName(), QStringLiteral("My look 2"));
        project.padding = 0.1;
        editor->update(project);
        EXPECT_EQ(looks.current(editor.get()), -1);
        EXPECT_EQ(looks.save(QStringLiteral("Größer"), editor.get()), builtin + 1);
        // The same name replaces, the program's own names and empty ones are refused.
        EXPECT_EQ(looks.save(QStringLiteral("my LOOK"), editor.get()), builtin);
        EXPECT_EQ(looks.save(QStringLiteral("orbit"), editor.get()), -1);
        EXPECT_EQ(looks.save(QStringLiteral("  "), editor.get()), -1);
        EXPECT_EQ(looks.count(), builtin + 2);
        EXPECT_FALSE(looks.rename(builtin + 1, QStringLiteral("MY look")));
        EXPECT_FALSE(looks.rename(builtin - 1, QStringLiteral("Mine")));
        EXPECT_TRUE(looks.rename(builtin, QStringLiteral("Wide")));
        EXPECT_FALSE(looks.remove(0));
        EXPECT_EQ(looks.failure(), QString());
    }
    LookPresets again(file);
    ASSERT_EQ(again.count(), builtin + 2);
    EXPECT_EQ(name(again, builtin), QStringLiteral("Wide"));
    EXPECT_EQ(name(again, builtin + 1), QStringLiteral("Größer"));
    EXPECT_FALSE(again.data(again.index(builtin), LookPresets::builtinRole).toBool());
    const LookPreset& wide = again.at(builtin);
    EXPECT_EQ(wide.wallpaper, (recording.files.folder / "hills.png").string()) << "found from any recording";
    EXPECT_EQ(wide.padding, 0.1);
    EXPECT_EQ(wide.captionSize, 0.1 + 0.2);
    EXPECT_TRUE(wide.cameraBorder);
    EXPECT_FALSE(again.putBack()) << "nothing was deleted";
    EXPECT_TRUE(again.remove(builtin));
    EXPECT_EQ(LookPresets(file).count(), builtin + 1);
    EXPECT_EQ(again.deletedName(), QStringLiteral("Wide"));
    EXPECT_TRUE(again.rename(builtin, QStringLiteral("wide"))) << "the name is free again";
    EXPECT_TRUE(again.putBack());
    EXPECT_EQ(name(again, builtin), QStringLiteral("My look")) << "and taken when the other comes back";
    EXPECT_EQ(again.at(builtin).padding, 0.1);
    EXPECT_EQ(again.deletedName(), QString());
    EXPECT_EQ(LookPresets(file).count(), builtin + 2);
}

TEST_F(LookPresetsTest, whatCannotBeReadIsKeptBeside) {
    const int builtin = static_cast<int>(LookPreset::builtIn().size());
    struct Case {
        const char* text;
        int readable;
    };
    for (
        const Case& c :
        {Case{"not JSON", 0}, Case{"[]", 0}, Case{R"({"looks": 3})", 0},
         Case{
             R"({"looks": [{"name": "A"}, {"name": 5}, {"name": "B", "padding": "wide"}, {"name": "C", "new": 1}]})",
             2}}) {
        SCOPED_TRACE(c.text);
        fs::remove_all(file.parent_path());
        fs::create_directories(file.parent_path());
        std::ofstream(file) << c.text;
        LookPresets looks(file);
        EXPECT_EQ(looks.count(), builtin + c.readable);
        EXPECT_NE(looks.failure(), QString());
        EXPECT_EQ(readFile(file), c.text) << "nothing happens to it before the first change";
        EXPECT_GE(looks.save(QStringLiteral("New"), editor.get()), 0);
        EXPECT_EQ(looks.failure(), QString());
        EXPECT_EQ(readFile(file.parent_path() / "looks (unreadable).json"), c.text);
        EXPECT_EQ(LookPresets(file).count(), builtin + c.readable + 1);
    }
}

TEST_F(LookPresetsTest, aFileThatCannotBeWrittenIsTold) {
    fs::create_directories(file.parent_path().parent_path());
    std::ofstream(file.parent_path()) << "a file where the folder should be";
    LookPresets looks(file);
    EXPECT_GE(looks.save(QStringLiteral("New"), editor.get()), 0);
    EXPECT_TRUE(looks.failure().contains(QStringLiteral("ombrel-record")));
}
