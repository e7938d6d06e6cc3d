// SPDX-License-Identifier: Apache-2.0
// Renders, their history and the views of what is generated, as the frame does them.
#include <QApplication>
#include <QLabel>
#include <QListView>
#include <QMenu>
#include <QTest>
#include <filesystem>
#include <set>
#include <thread>

#include "base/Paths.h"
#include "ui/base/Text.h"
#include "ui/commands/RenderWork.h"
#include "ui/frame/StatusBox.h"
#include "ui/log/LogWindow.h"
#include "ui/render/RenderHistoryDlg.h"
#include "ui/support/PaintWatcher.h"
#include "ui/support/TestFrame.h"

namespace tavrin {
namespace {

namespace fs = std::filesystem;

using test::BoxesShown;
using test::PaintWatcher;
using test::PressWhenBoxComes;
using test::ReadFile;
using test::WaitUntil;
using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::MatchesRegex;
using testing::Not;

constexpr const char* kSeconds = "[0-9]+\\.[0-9] s";

// A library script that ends with this status, after some words on its standard error.
constexpr const char* kFailing = "#!/usr/bin/perl\nprint STDERR \"cannot do that\\n\";\nexit 3;\n";

// Waits until the file "go" is there, or for so long that the test has failed, then does what the script of
// the library does.
constexpr const char* kWaitingFilter = R"(#!/usr/bin/perl
my ($name, $base) = @ARGV;
for (1 .. 1000) { last if -e "$ENV{TAVRN_DIR}/../go"; select undef, undef, undef, 0.01; }
open my $shader, '>', $base or die;
close $shader;
)";

class RendersTest : public test::FrameTest {
  protected:
    void AddToSite(const std::string& lines) {
        const std::string path = "tavrin/tiny/tavrn.def";
        directory.Write(path, ReadFile(directory / path) + lines);
    }
    void ReplaceScript(const std::string& name, const std::string& text) {
        fs::permissions(directory.Write("tavrin/tiny/bin/" + name, text), fs::perms::owner_all);
    }
    // A document "marble.tvn" with a box is open.
    void StartWithMarble() {
        Start();
        ASSERT_TRUE(Frame().OpenDocumentFile(WriteDocument("marble", 1)));
        Settle();
    }
    // Renders to the end, as the key does.
    void Render() {
        QTest::keyClick(&Frame(), Qt::Key_F1);
        ASSERT_TRUE(WaitUntil([this] { return !ChildRuns(); }));
        Settle();
    }
    // Renders until the script has spoken and waits.
    void StartRender(int number) {
        HoldScripts();
        QTest::keyClick(&Frame(), Qt::Key_F1);
        ASSERT_TRUE(WaitUntil([&] { return Has("renderit marble " + std::to_string(number)); }));
    }
    bool Has(const std::string& words) { return Log().find(words) != std::string::npos; }
    std::string Activity() { return Bytes(Frame().StatusBox().Activity()); }
    bool ActivityIs(const std::string& pattern) { return testing::Value(Activity(), MatchesRegex(pattern)); }

    QListView& HistoryList() {
        return *Frame().Windows().Of(CommandId::kRenderHistory).findChild<QListView*>();
    }
    QModelIndex HistoryRow(int row) { return HistoryList().model()->index(row, 0); }
    std::vector<std::string> History() {
        std::vector<std::string> lines;
        for (int row = 0; row < HistoryList().model()->rowCount(); ++row)
            lines.push_back(Bytes(HistoryRow(row).data().toString()));
        return lines;
    }
    void DoubleClickEntry(int row) {
        if (!Frame().Windows().Of(CommandId::kRenderHistory).isVisible())
            QTest::keyClick(&Frame(), Qt::Key_F6);
        Settle();
        const QPoint at = HistoryList().visualRect(HistoryRow(row)).center();
        QTest::mouseClick(HistoryList().viewport(), Qt::LeftButton, {}, at);
        QTest::mouseDClick(HistoryList().viewport(), Qt::LeftButton, {}, at);
        Settle();
    }
    std::string LastBox() { return BoxesShown().isEmpty() ? "" : Bytes(BoxesShown().last()); }
    void WaitForEdited(const std::string& path) {
        EXPECT_TRUE(WaitUntil([&] { return !EditedFiles().empty() && EditedFiles().back() == path; }))
            << path << " did not come into the editor";
    }
};

// Renders

TEST_F(RendersTest, F1RendersAndTheLogShowsWhatTheScriptSays) {
    StartWithMarble();
    Render();
    EXPECT_THAT(Log(), HasSubstr("renderit marble 1\nrenderit done\n"));
    EXPECT_THAT(History(), ElementsAre("01 marble"));
    EXPECT_TRUE(fs::exists(WorkDir() + "/1/marble.tvn"));
    EXPECT_THAT(ReadFile(WorkDir() + "/marble"), HasSubstr("surface marble"));
    EXPECT_EQ(Document().Path(), directory / "marble.tvn");
    EXPECT_FALSE(Document().IsModified());
    Render();
    EXPECT_THAT(History(), ElementsAre("02 marble", "01 marble"));
}

TEST_F(RendersTest, AnEmptyDeskIsNotRendered) {
    Start();
    PressWhenBoxComes("OK");
    QTest::keyClick(&Frame(), Qt::Key_F1);
    Settle();
    EXPECT_EQ(LastBox(), "Alert: desk is empty");
    EXPECT_FALSE(ChildRuns());
    EXPECT_THAT(History(), IsEmpty());
}

TEST_F(RendersTest, SeveralRendersRunAtOnceWhereThatIsAllowed) {
    StartWithMarble();
    StartRender(1);
    StartRender(2);
    EXPECT_THAT(History(), ElementsAre("02 marble", "01 marble"));
    ReleaseScripts();
    EXPECT_TRUE(WaitUntil([this] { return !App().GetSite().commands.AnyProcessLeft(); }));
    Settle();
    EXPECT_THAT(ReadFile(WorkDir() + "/2/marble.tvn"), Not(IsEmpty()));
    EXPECT_THAT(Log(),
                AllOf(HasSubstr("renderit marble 1\n[render 2] renderit marble 2\n"),
                      HasSubstr("\n[render 1] renderit done\n"), HasSubstr("\n[render 2] renderit done\n")));
    Render();
    EXPECT_THAT(Log(), HasSubstr("\nrenderit marble 3\nrenderit done\n"));
}

TEST_F(RendersTest, OneRenderAtATimeIsTheSitesChoice) {
    AddToSite("multiplerenders 0\n");
    StartWithMarble();
    EXPECT_FALSE(IsChecked(CommandId::kMultipleRenders));
    StartRender(1);
    EXPECT_FALSE(IsEnabled(CommandId::kRenderIt));
    PressWhenBoxComes("OK");
    QTest::keyClick(&Frame(), Qt::Key_F1);
    Settle();
    EXPECT_EQ(LastBox(), "Alert: script is running");
    EXPECT_THAT(History(), ElementsAre("01 marble"));
    ReleaseScripts();
    ASSERT_TRUE(WaitUntil([this] { return !ChildRuns(); }));
    Render();
    EXPECT_THAT(History(), ElementsAre("02 marble", "01 marble"));
}

TEST_F(RendersTest, AFilterThatFailsStopsTheRenderAndLeavesNoEntry) {
    ReplaceScript("codefilter", kFailing);
    StartWithMarble();
    Render();
    EXPECT_THAT(Log(), AllOf(HasSubstr("cannot do that"), HasSubstr("save shader command returned 3")));
    EXPECT_THAT(Log(), Not(HasSubstr("renderit")));
    EXPECT_THAT(History(), IsEmpty());
    EXPECT_FALSE(fs::exists(WorkDir() + "/1"));
    EXPECT_EQ(Activity(), "");
    EXPECT_EQ(QGuiApplication::overrideCursor(), nullptr);
}

// What the status box tells

TEST_F(RendersTest, TheStatusBoxTellsOfTheRenderAndOfItsEnd) {
    StartWithMarble();
    StartRender(1);
    EXPECT_TRUE(ActivityIs(std::string("Rendering marble \\(1\\): ") + kSeconds)) << Activity();
    const std::string before = Activity();
    EXPECT_TRUE(WaitUntil([&] { return Activity() != before; })) << "the time does not go on";
    EXPECT_EQ(QGuiApplication::overrideCursor(), nullptr);
    ReleaseScripts();
    EXPECT_TRUE(WaitUntil([&] { return ActivityIs(std::string("Rendered marble in ") + kSeconds); }))
        << Activity();
}

// The script may have ended before anybody looks whether it runs.
TEST_F(RendersTest, ARenderThatEndsAtOnceIsToldOfAllTheSame) {
    StartWithMarble();
    const auto waitWithoutEvents = [this] {
        while (ChildRuns()) std::this_thread::yield();
    };
    RenderWork renders({Frame(), Frame().Work(), Frame().StatusBox(), waitWithoutEvents});
    renders.RenderIt();
    EXPECT_TRUE(ActivityIs(std::string("Rendered marble in ") + kSeconds)) << Activity();
    Settle();
    EXPECT_TRUE(ActivityIs(std::string("Rendered marble in ") + kSeconds)) << Activity();
}

TEST_F(RendersTest, TheStatusBoxTellsOfARenderThatFailed) {
    ReplaceScript("renderit", kFailing);
    StartWithMarble();
    Render();
    EXPECT_TRUE(WaitUntil([&] {
        return Activity() == "Rendering marble (1) failed (status 3); see the log [F8]";
    })) << Activity();
    EXPECT_THAT(Log(), HasSubstr("cannot do that"));
}

TEST_F(RendersTest, F4StopsTheRenderAndTheStatusBoxSaysSo) {
    StartWithMarble();
    EXPECT_FALSE(IsEnabled(CommandId::kStopRender));
    StartRender(1);
    EXPECT_TRUE(IsEnabled(CommandId::kStopRender));
    QTest::keyClick(&Frame(), Qt::Key_F4);
    EXPECT_TRUE(ActivityIs(std::string("Stopped after ") + kSeconds)) << Activity();
    EXPECT_FALSE(ChildRuns());
    EXPECT_TRUE(WaitUntil([&] { return Has("renderit killed"); }));
    // That the script ended with a status of its own is no failure then.
    EXPECT_TRUE(WaitUntil([&] { return !App().GetSite().commands.AnyProcessLeft(); }));
    Settle();
    EXPECT_TRUE(ActivityIs(std::string("Stopped after ") + kSeconds)) << Activity();
}

TEST_F(RendersTest, WhileAScriptIsWaitedForTheStepTheTimeAndTheCursorTell) {
    ReplaceScript("codefilter", kWaitingFilter);
    StartWithMarble();
    PaintWatcher watcher(Frame().StatusBox());
    // The filter may end when the second of its times has been seen.
    watcher.onPaint = [&] {
        if (watcher.waiting.size() >= 2) directory.Write("go", "");
    };
    Render();
    EXPECT_GE(watcher.waiting.size(), 2U);
    EXPECT_THAT(watcher.waiting,
                testing::Each(MatchesRegex(std::string("Saving shader marble: ") + kSeconds)));
    EXPECT_EQ(QGuiApplication::overrideCursor(), nullptr);
    EXPECT_THAT(Log(), HasSubstr("renderit marble 1"));
}

TEST_F(RendersTest, AViewThatComesAfterARenderLeavesNoStepBehindInTheStatusBox) {
    StartWithMarble();
    Render();
    ASSERT_TRUE(WaitUntil([&] { return ActivityIs("Rendered marble in .*"); }));
    QTest::keyClick(&Frame(), Qt::Key_F9);
    Settle();
    EXPECT_EQ(Activity(), "");
}

// History

TEST_F(RendersTest, WithAMaximumOfTwoTheThirdRenderRemovesTheFirst) {
    AddToSite("maxhistory 2\n");
    StartWithMarble();
    for (int round = 0; round < 3; ++round) Render();
    EXPECT_THAT(History(), ElementsAre("03 marble", "02 marble"));
    EXPECT_FALSE(fs::exists(WorkDir() + "/1"));
    EXPECT_TRUE(fs::exists(WorkDir() + "/2/marble.tvn"));
    Render();
    EXPECT_THAT(History(), ElementsAre("04 marble", "03 marble"));
}

TEST_F(RendersTest, WithTheHistoryOffNumbersGoOnAndNothingIsKept) {
    StartWithMarble();
    Do(CommandId::kKeepHistory);
    EXPECT_FALSE(IsChecked(CommandId::kKeepHistory));
    Render();
    EXPECT_THAT(Log(), HasSubstr("renderit marble 1"));
    EXPECT_THAT(History(), IsEmpty());
    EXPECT_FALSE(fs::exists(WorkDir() + "/1"));
    Do(CommandId::kKeepHistory);
    Render();
    EXPECT_THAT(History(), ElementsAre("02 marble"));
}

TEST_F(RendersTest, AnEntryThatIsDoubleClickedComesBackUnderItsOwnName) {
    StartWithMarble();
    AddBoxes(1);
    Render();  // two boxes
    AddBoxes(2);
    PressWhenBoxComes("Discard");
    DoubleClickEntry(0);
    EXPECT_EQ(LastBox(), "Tavrin: Save changes to marble.tvn?");
    EXPECT_EQ(Document().m_boxes.size(), 2U);
    EXPECT_EQ(FullPath(Document().Path()), directory / "marble.tvn");
    EXPECT_EQ(Bytes(Frame().windowTitle()), "marble.tvn[*]");
    AddBoxes(3);
    const std::string entry = ReadFile(WorkDir() + "/1/marble.tvn");
    Do(CommandId::kSave);
    EXPECT_EQ(ReadFile(WorkDir() + "/1/marble.tvn"), entry);
    EXPECT_GT(ReadFile(directory / "marble.tvn").size(), entry.size());
}

TEST_F(RendersTest, AnEntryWhoseFileIsGoneSaysSoAndLeavesTheDocumentAlone) {
    StartWithMarble();
    Render();
    fs::remove(WorkDir() + "/1/marble.tvn");
    PressWhenBoxComes("OK");
    DoubleClickEntry(0);
    EXPECT_EQ(LastBox(),
              "Alert: unable to open " + WorkDir() + "/1/marble.tvn for reading: No such file or directory");
    EXPECT_EQ(Document().m_boxes.size(), 1U);
    EXPECT_EQ(Document().Path(), directory / "marble.tvn");
}

TEST_F(RendersTest, AHistoryFileThatCannotBeMadeStopsTheRenderAndKeepsItsNumber) {
    StartWithMarble();
    directory.Write("tmp/" + fs::path(WorkDir()).filename().string() + "/1", "in the way");
    PressWhenBoxComes("OK");
    Render();
    EXPECT_EQ(LastBox(), "Alert: unable to create history file " + WorkDir() + "/1/marble.tvn");
    EXPECT_THAT(Log(), Not(HasSubstr("renderit")));
    EXPECT_THAT(History(), IsEmpty());
    fs::remove(WorkDir() + "/1");
    Render();
    EXPECT_THAT(Log(), HasSubstr("renderit marble 1"));
}

// Views

TEST_F(RendersTest, F9ShowsTheShaderInTheEditor) {
    StartWithMarble();
    QTest::keyClick(&Frame(), Qt::Key_F9);
    WaitForEdited(WorkDir() + "/marble");
    EXPECT_THAT(ReadFile(WorkDir() + "/marble"), HasSubstr("surface marble"));
}

TEST_F(RendersTest, F10ShowsTheRenderInterfaceInTheEditor) {
    StartWithMarble();
    QTest::keyClick(&Frame(), Qt::Key_F10);
    WaitForEdited(WorkDir() + "/marble.tmp");
    EXPECT_EQ(ReadFile(WorkDir() + "/marble.tmp"),
              "made by " + (directory / "tavrin/tiny/bin/renderiface") + "\n");
}

TEST_F(RendersTest, F11ShowsTheShaderInterfaceInTheEditor) {
    StartWithMarble();
    QTest::keyClick(&Frame(), Qt::Key_F11);
    WaitForEdited(WorkDir() + "/marble.tmp");
    EXPECT_THAT(ReadFile(WorkDir() + "/marble.tmp"),
                AllOf(HasSubstr("bin/guiprefilter"), HasSubstr("\nHelp\n"), HasSubstr("\nEndArginfo\n")));
}

TEST_F(RendersTest, AToolThatFailsOpensNoEditorAndSaysWhy) {
    ReplaceScript("renderiface", kFailing);
    ReplaceScript("guiprefilter", kFailing);
    StartWithMarble();
    PressWhenBoxComes("OK");
    QTest::keyClick(&Frame(), Qt::Key_F10);
    Settle();
    EXPECT_EQ(LastBox(), "Alert: renderiface command returned 3");
    PressWhenBoxComes("OK");
    QTest::keyClick(&Frame(), Qt::Key_F11);
    Settle();
    EXPECT_EQ(LastBox(), "Alert: " + (directory / "tavrin/tiny/bin/guiprefilter") + " returned 3");
    EXPECT_THAT(Log(), HasSubstr("cannot do that"));
    // The editor works: what it gets now is the first that it got.
    QTest::keyClick(&Frame(), Qt::Key_F9);
    WaitForEdited(WorkDir() + "/marble");
    EXPECT_THAT(EditedFiles(), ElementsAre(WorkDir() + "/marble"));
}

TEST_F(RendersTest, ViewsAreNotOfferedWhileAScriptRuns) {
    StartWithMarble();
    StartRender(1);
    for (const auto id :
         {CommandId::kViewShaderSource, CommandId::kViewRenderInterface, CommandId::kViewShaderInterface}) {
        EXPECT_FALSE(IsEnabled(id));
    }
    ReleaseScripts();
    ASSERT_TRUE(WaitUntil([this] { return !ChildRuns(); }));
    EXPECT_TRUE(WaitUntil([this] { return Action(CommandId::kViewShaderSource).isEnabled(); }));
}

TEST_F(RendersTest, MenuItemsCarryTheExtensionsOfTheLibrary) {
    AddToSite("ext.shadersource .mi\next.compiledshader .so\next.renderiface .ri\n");
    Start();
    const QStringList render = MenuTexts(Menu("Render"));
    EXPECT_TRUE(render.contains("View Shader Source (.mi)"));
    EXPECT_TRUE(render.contains("View Render Interface (.ri)"));
    EXPECT_TRUE(render.contains("View Shader Interface (.cus)"));
    QStringList exports;
    for (const QAction* item : Menu("File")->actions()) {
        if (item->menu() != nullptr && item->text() == "&Export") exports = MenuTexts(item->menu());
    }
    EXPECT_EQ(exports, QStringList({"Shader Source (.mi)", "Compiled Shader (.so)", "Render Interface (.ri)",
                                    "Shader Interface (.cus)"}));
}

}  // namespace
}  // namespace tavrin
