// SPDX-License-Identifier: Apache-2.0
// Scripts and their actions in the running program.
#include <QAbstractEventDispatcher>
#include <QAction>
#include <QFileDialog>
#include <QMenu>
#include <QTest>
#include <QTimer>
#include <filesystem>

#include "ui/base/Text.h"
#include "ui/desk/DeskPane.h"
#include "ui/frame/StatusBox.h"
#include "ui/library/BoxFinder.h"
#include "ui/support/TestFrame.h"

namespace tavrin {
namespace {

namespace fs = std::filesystem;
using test::BoxesShown;
using test::FrameTest;
using test::PressWhenBoxComes;
using test::WaitUntil;
using test::WhenDialogComes;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

class ScriptsTest : public FrameTest {
  protected:
    Actions& Dispatch() { return Frame().ActionDispatch(); }
    bool Act(const char* to, const char* message, const std::string& argument = {}) {
        return Dispatch().DoAction(to, message, argument);
    }
    std::string WriteScript(const std::string& text, const std::string& name = "s.tvx") {
        return directory.Write(name, text);
    }
    bool Run(const std::string& text) { return Dispatch().RunScriptFile(WriteScript(text)); }
    // Runs a script that comes to wait for its held render, and does something meanwhile, which lasts until
    // the render is let go.
    void RunHeld(const std::string& text, const std::function<void()>& meanwhile) {
        if (Document().m_boxes.empty()) AddBoxes(1);
        HoldScripts();
        bool done = false;
        QTimer::singleShot(0, &Frame(), [&] {
            EXPECT_TRUE(WaitUntil([&] { return Says("renderit "); })) << Log();
            meanwhile();
            done = true;
            ReleaseScripts();
        });
        EXPECT_TRUE(Run(text));
        EXPECT_TRUE(done);
        Settle();
    }
    bool Says(const std::string& text) { return Log().find(text) != std::string::npos; }
    size_t PlaceInLog(const std::string& text) {
        const size_t place = Log().find(text);
        EXPECT_NE(place, std::string::npos) << text << " is not in\n" << Log();
        return place;
    }
    void SetDefinitions(const std::string& more) {
        const std::string path = directory / "tavrin/tiny/tavrn.def";
        directory.Write("tavrin/tiny/tavrn.def", test::ReadFile(path) + more);
    }
    std::string Title() { return Bytes(Frame().windowTitle()); }
    std::string Boxes() { return Bytes(BoxesShown().join('|')); }
    QWidget& RenderOptions() { return Frame().Windows().Of(CommandId::kRenderOptions); }
};

// What the dialog of Run Script shows when it comes; it is then left by the file, or cancelled.
struct DialogSeen {
    std::string title, directory;
    QStringList filters;
    int mode = -1;
};

void SeeDialog(DialogSeen& seen, const std::string& choice) {
    WhenDialogComes([&seen, choice](QDialog& dialog) {
        auto* files = qobject_cast<QFileDialog*>(&dialog);
        ASSERT_NE(files, nullptr);
        seen = {Bytes(files->windowTitle()), Bytes(files->directory().path()), files->nameFilters(),
                files->fileMode()};
        if (choice.empty()) {
            dialog.reject();
        } else {
            files->selectFile(Shown(choice));
            dialog.accept();
        }
    });
}

TEST_F(ScriptsTest, RunScriptAsksForAFileAndStartsThereTheNextTime) {
    const std::string path = WriteScript("form nonsense one\n", "scripts/deep/a.tvx");
    SetDefinitions("scriptbrowser_dir " + directory / "state" + "\n");
    fs::create_directories(directory / "state");
    Start();
    DialogSeen seen;
    SeeDialog(seen, {});
    Action(CommandId::kRunScript).trigger();
    EXPECT_EQ(seen.title, "Select");
    EXPECT_EQ(seen.directory, directory / "state");
    EXPECT_EQ(seen.filters, QStringList("Tavrin Script (*.tvx)"));
    EXPECT_EQ(seen.mode, QFileDialog::ExistingFile);
    EXPECT_FALSE(Says("unknown action"));

    test::ChooseFileWhenDialogComes(path);
    Action(CommandId::kRunScript).trigger();
    EXPECT_TRUE(Says("unknown action: form nonsense one"));
    SeeDialog(seen, {});
    Action(CommandId::kRunScript).trigger();
    EXPECT_EQ(seen.directory, directory / "scripts/deep");
}

TEST_F(ScriptsTest, RunScriptIsDisabledAndHaltScriptEnabledWhileAScriptRuns) {
    Start();
    EXPECT_TRUE(IsEnabled(CommandId::kRunScript));
    EXPECT_FALSE(IsEnabled(CommandId::kHaltScript));
    RunHeld("form render render", [&] {
        EXPECT_TRUE(WaitUntil([&] { return Action(CommandId::kHaltScript).isEnabled(); }));
        EXPECT_FALSE(Action(CommandId::kRunScript).isEnabled());
    });
    EXPECT_TRUE(IsEnabled(CommandId::kRunScript));
    EXPECT_FALSE(IsEnabled(CommandId::kHaltScript));
}

TEST_F(ScriptsTest, RunScriptIsDisabledWhileAChildRuns) {
    Start();
    AddBoxes(1);
    HoldScripts();
    Do(CommandId::kRenderIt);
    EXPECT_FALSE(IsEnabled(CommandId::kRunScript));
    ReleaseScripts();
    EXPECT_TRUE(WaitUntil([&] { return Action(CommandId::kRunScript).isEnabled(); }));
}

TEST_F(ScriptsTest, HaltScriptStopsTheRenderAndNoStatementFollows) {
    Start();
    bool halted = false;
    RunHeld("form render render\nform nonsense\n", [&] {
        Frame().Commands().Update();
        Action(CommandId::kHaltScript).trigger();
        EXPECT_FALSE(Dispatch().ScriptRunning());
        EXPECT_FALSE(ChildRuns());
        halted = WaitUntil([&] { return Says("renderit killed"); });
        // Its status is no failure: the user has asked for the end.
        Settle();
        EXPECT_TRUE(Frame().StatusBox().Activity().startsWith("Stopped after"))
            << Bytes(Frame().StatusBox().Activity());
    });
    EXPECT_TRUE(halted);
    EXPECT_FALSE(Says("nonsense"));
}

TEST_F(ScriptsTest, StopRenderEndsTheStatementAndTheScriptGoesOn) {
    Start();
    RunHeld("form render render\nform nonsense\n", [&] {
        QTest::keyClick(&Frame(), Qt::Key_F4);
        EXPECT_FALSE(ChildRuns());
        EXPECT_TRUE(Dispatch().ScriptRunning());
    });
    EXPECT_TRUE(Says("unknown action: form nonsense"));
}

TEST_F(ScriptsTest, HaltScriptWithoutAScriptDoesNothing) {
    Start();
    AddBoxes(1);
    HoldScripts();
    Do(CommandId::kRenderIt);
    Do(CommandId::kHaltScript);
    EXPECT_TRUE(ChildRuns());
    EXPECT_FALSE(fs::exists(WorkDir() + "/kill.1"));
}

TEST_F(ScriptsTest, AnExportFollowsOnceTheOutputOfTheRenderHasEnded) {
    Start();
    RunHeld("form render render; form export all", [&] {
        Settle();
        EXPECT_FALSE(Says("exportall"));
    });
    EXPECT_LT(PlaceInLog("renderit done"), PlaceInLog("exportall "));
    PlaceInLog("exportall done");
    EXPECT_FALSE(ChildRuns());
}

TEST_F(ScriptsTest, UnknownActionsAreLoggedAndTheScriptGoesOnWithoutABox) {
    Start();
    EXPECT_TRUE(
        Run("FORM render render\n"
            "form render ; form export shaderSource four # five\n"
            "form sys#tem\n"
            "roe defaults %s%n\n"
            "form"));
    Settle();
    EXPECT_EQ(Log(),
              "unknown action: FORM render render\n"
              "unknown action: form render \n"
              "unknown action: form export shaderSource\n"
              "unknown action: form sys \n"
              "unknown action: roe defaults %s%n\n"
              "unknown action: form  \n");
    EXPECT_EQ(Boxes(), "");
    EXPECT_FALSE(ChildRuns());
}

TEST_F(ScriptsTest, ASecondScriptIsRefusedAndTheFirstGoesOn) {
    Start();
    const std::string second = WriteScript("form second", "second.tvx");
    PressWhenBoxComes("OK");
    RunHeld("form render render\nform first\n", [&] {
        EXPECT_FALSE(Dispatch().RunScriptFile(second));
        EXPECT_TRUE(WaitUntil([&] { return Boxes() == "Alert: script already running"; }));
    });
    EXPECT_TRUE(Says("unknown action: form first"));
    EXPECT_FALSE(Says("form second"));
}

TEST_F(ScriptsTest, ASecondScriptByTheCommandIsRefusedBeforeAnyDialog) {
    Start();
    PressWhenBoxComes("OK");
    RunHeld("form render render\n", [&] {
        Do(CommandId::kRunScript);
        EXPECT_TRUE(WaitUntil([&] { return Boxes() == "Alert: script already running"; }));
    });
}

TEST_F(ScriptsTest, AScriptThatIsMissingOrADirectoryIsAlerted) {
    Start();
    fs::create_directories(directory / "dir.tvx");
    for (const char* name : {"missing.tvx", "dir.tvx"}) {
        PressWhenBoxComes("OK");
        const auto before = BoxesShown().size();
        EXPECT_FALSE(Dispatch().RunScriptFile(directory / name));
        ASSERT_TRUE(WaitUntil([&] { return BoxesShown().size() == before + 1; }));
        EXPECT_THAT(Bytes(BoxesShown().last()), HasSubstr("Alert: " + directory / name + ": "));
        EXPECT_FALSE(Dispatch().ScriptRunning());
    }
    EXPECT_THAT(Boxes(), testing::AllOf(HasSubstr("No such file"), HasSubstr("s a directory")));
}

TEST_F(ScriptsTest, TheInterfaceLivesWhileAScriptWaits) {
    Start();
    Frame().Desk().setFocus();
    RunHeld("form render render", [&] {
        int ticks = 0;
        QTimer timer;
        timer.callOnTimeout([&] { ++ticks; });
        timer.start(1);
        EXPECT_TRUE(WaitUntil([&] { return ticks >= 5; }));
        QTest::keyClick(&Frame(), Qt::Key_B, Qt::ControlModifier);
        EXPECT_TRUE(Frame().Windows().Get<BoxFinder>().isVisible());
        EXPECT_TRUE(WaitUntil([&] { return Action(CommandId::kBoxFinder).isChecked(); }));
        // What a child says is read as it comes, and alerts come up.
        PressWhenBoxComes("OK");
        App().GetSite().report.Alert("meanwhile");
        EXPECT_TRUE(WaitUntil([&] { return Boxes() == "Alert: meanwhile"; }));
        EXPECT_TRUE(ChildRuns());
    });
}

// Counts how often the loop of events goes round.
class LoopWatcher : public QObject {
  public:
    LoopWatcher() {
        connect(QAbstractEventDispatcher::instance(), &QAbstractEventDispatcher::awake, this,
                [this] { ++rounds; });
    }
    int rounds = 0;
};

TEST_F(ScriptsTest, WaitingForAChildBurnsNoCore) {
    constexpr auto kTick = std::chrono::milliseconds(20);
    constexpr int kTicks = 50;
    // The waiting, this test's timer and the status bar's clock wake the program; a loop that does not sleep
    // goes round some hundred times a tick.
    constexpr int kRoundsEach = 8;
    Start();
    AddBoxes(1);
    HoldScripts();
    LoopWatcher loop;
    int ticks = 0;
    int before = 0;
    int after = 0;
    QTimer timer;
    timer.callOnTimeout([&] {
        if (!Says("renderit ")) return;
        ++ticks;
        if (ticks == kTicks) before = loop.rounds;  // what the start has brought is painted by then
        if (ticks != 2 * kTicks) return;
        after = loop.rounds;
        timer.stop();
        ReleaseScripts();
    });
    timer.start(kTick);
    EXPECT_TRUE(Run("form render render"));
    EXPECT_EQ(ticks, 2 * kTicks);
    EXPECT_GE(after - before, kTicks) << "each tick goes round once";
    EXPECT_LE(after - before, kTicks * kRoundsEach);
}

TEST_F(ScriptsTest, ASystemCommandBlocksTheInterfaceUntilItHasEnded) {
    Start();
    fs::permissions(
        directory.Write("slow", "#!/bin/sh\nsleep 0.2\necho done >\"" + directory / "ran" + "\"\n"),
        fs::perms::owner_all);
    int ticks = 0;
    QTimer timer;
    timer.callOnTimeout([&] { ++ticks; });
    timer.start(1);
    ASSERT_TRUE(WaitUntil([&] { return ticks > 0; }));
    const int before = ticks;
    EXPECT_TRUE(Act("form", "system", directory / "slow"));
    EXPECT_TRUE(fs::exists(directory / "ran"));
    EXPECT_EQ(ticks, before);

    fs::remove(directory / "ran");
    EXPECT_TRUE(Run("form system " + directory / "slow" + "; form behind"));
    EXPECT_TRUE(fs::exists(directory / "ran"));
    EXPECT_TRUE(Says("unknown action: form behind"));
}

TEST_F(ScriptsTest, ASystemCommandThatCannotStartIsAlerted) {
    Start();
    PressWhenBoxComes("OK");
    EXPECT_TRUE(Act("form", "system", directory / "absent"));
    EXPECT_TRUE(WaitUntil([&] { return Boxes() == "Alert: command failed: " + directory / "absent"; }))
        << Boxes();
}

TEST_F(ScriptsTest, HidingTheRenderOptionsHidesTheirWindowAlone) {
    Start();
    Do(CommandId::kRenderOptions);
    Do(CommandId::kBoxFinder);
    ASSERT_TRUE(RenderOptions().isVisible());
    EXPECT_TRUE(Run("form roe hide"));
    EXPECT_FALSE(RenderOptions().isVisible());
    EXPECT_TRUE(Frame().Windows().Get<BoxFinder>().isVisible());
    EXPECT_TRUE(WaitUntil([&] { return !Action(CommandId::kRenderOptions).isChecked(); }));
    EXPECT_TRUE(Act("form", "roe", "hide"));
    EXPECT_FALSE(RenderOptions().isVisible());
}

TEST_F(ScriptsTest, LoadtavrnOpensADocumentAsTheOpenCommandDoes) {
    Start();
    const std::string path = WriteDocument("loaded", 2);
    EXPECT_TRUE(Run("form loadtavrn " + path));
    EXPECT_EQ(Document().m_boxes.size(), 2U);
    EXPECT_EQ(Document().Path(), path);
    EXPECT_EQ(Title(), "loaded.tvn[*]");
    EXPECT_TRUE(Says("opened " + path + " at "));
    Menu("File")->popup(QPoint(0, 0));
    EXPECT_TRUE(MenuTexts(Menu("File")).contains("1 " + Shown(path)));
    Menu("File")->close();

    // Changes are asked about first.
    Do(CommandId::kDisplayIcons);
    PressWhenBoxComes("Cancel");
    EXPECT_TRUE(Run("form loadtavrn " + WriteDocument("other") + "\nform behind"));
    EXPECT_EQ(Boxes(), "Tavrin: Save changes to loaded.tvn?");
    EXPECT_EQ(Document().Path(), path);
    EXPECT_TRUE(Says("unknown action: form behind"));
}

TEST_F(ScriptsTest, LoadtavrnOfAMissingFileIsAlertedAndTheDocumentStays) {
    Start();
    ASSERT_TRUE(Frame().OpenDocumentFile(WriteDocument("here")));
    PressWhenBoxComes("OK");
    EXPECT_TRUE(Run("form loadtavrn " + directory / "gone.tvn"));
    ASSERT_TRUE(WaitUntil([&] { return !BoxesShown().isEmpty(); }));
    EXPECT_THAT(Boxes(), HasSubstr(directory / "gone.tvn"));
    EXPECT_EQ(Title(), "here.tvn[*]");
}

TEST_F(ScriptsTest, UseDefaultsSetsTheOptionsOfTheFormAndTheTitle) {
    SetDefinitions(
        "roe {\nxfield {\nenvname DEPTH\nvalue 2\n}\n"
        "xfield {\nenvname TAVRN_SHADER_TYPE\nvalue light\n}\n}\n"
        "ext.shaderiface light .lus\n");
    Start();
    App().SetVariable("DEPTH", "7", true);
    EXPECT_TRUE(Run("roe use-defaults"));
    EXPECT_EQ(Document().m_renderOptions.at("DEPTH"), "2");
    EXPECT_EQ(Document().m_renderOptions.at("TAVRN_SHADER_TYPE"), "light");
    EXPECT_EQ(Title(), "Untitled.tvn [light][*]");
}

TEST_F(ScriptsTest, ARenderOfAnEmptyDeskIsAlertedAtTheNextIdlePassAndNothingIsWaitedFor) {
    Start();
    EXPECT_TRUE(Act("form", "render", "render"));
    EXPECT_EQ(Boxes(), "");
    EXPECT_FALSE(ChildRuns());
    PressWhenBoxComes("OK");
    EXPECT_TRUE(WaitUntil([&] { return !BoxesShown().isEmpty(); }));
    EXPECT_THAT(Boxes(), testing::StartsWith("Alert: "));
}

TEST_F(ScriptsTest, ARenderActionReturnsWhenTheRenderHasEnded) {
    Start();
    AddBoxes(1);
    EXPECT_TRUE(Act(" form\t", " render ", "render\n"));
    EXPECT_FALSE(ChildRuns());
    Settle();
    EXPECT_TRUE(Says("renderit done"));
}

TEST_F(ScriptsTest, TheKillActionStopsARender) {
    Start();
    AddBoxes(1);
    HoldScripts();
    Do(CommandId::kRenderIt);
    ASSERT_TRUE(WaitUntil([&] { return Says("renderit "); }));
    EXPECT_TRUE(Act("form", "render", "kill"));
    EXPECT_TRUE(WaitUntil([&] { return Says("renderit killed"); }));
}

TEST_F(ScriptsTest, TheKillActionWithoutARenderLeavesNoFile) {
    Start();
    EXPECT_TRUE(Act("form", "render", "kill"));
    for (const auto& entry : fs::directory_iterator(WorkDir())) {
        EXPECT_THAT(entry.path().filename().string(), Not(HasSubstr("kill")));
    }
}

TEST_F(ScriptsTest, AnActionWhileAnotherWaitsIsDoneAtOnce) {
    Start();
    RunHeld("form render render", [&] {
        EXPECT_TRUE(Act("form", "roe", "hide"));
        const std::string path = WriteDocument("inner");
        PressWhenBoxComes("Discard");
        EXPECT_TRUE(Act("form", "loadtavrn", path));
        EXPECT_EQ(Document().Path(), path);
        EXPECT_TRUE(ChildRuns());
    });
    EXPECT_TRUE(Says("renderit done"));
}

TEST_F(ScriptsTest, ExportsOfOneFileAskWhereTo) {
    Start();
    AddBoxes(1);
    test::CancelWhenDialogComes();
    EXPECT_TRUE(Act("form", "export", "compiledShader"));
    test::CancelWhenDialogComes();
    EXPECT_TRUE(Act("form", "export", "shaderIFace"));
    EXPECT_FALSE(Act("form", "export", "shaderSource"));
    EXPECT_FALSE(Act("form", "export", "renderInterface"));
    EXPECT_FALSE(ChildRuns());
}

}  // namespace
}  // namespace tavrin
