// SPDX-License-Identifier: Apache-2.0
// What each action does, what is no action, and scripts of them: waiting, halting, the end of the program.
#include "app/Actions.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <functional>
#include <thread>

#include "site/Commands.h"
#include "support/Patience.h"
#include "support/TestSite.h"

namespace tavrin {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::IsEmpty;

// Waits for this file or for its kill file; where the test has failed and gone, for nothing.
constexpr const char* kUntilLetGo =
    "until [ -e \"$TAVRN_WORKDIR/go\" ] || [ -e \"$TAVRN_KILLFILE\" ] || [ ! -e \"$TAVRN_WORKDIR\" ]\n"
    "do sleep 0.005; done\n";

// Remembers what it is asked for.
class FakeTarget : public ActionTarget {
  public:
    explicit FakeTarget(PlainQueue& queue) : m_queue(queue) {}

    void Command(CommandId command) override {
        calls.push_back("command " + std::to_string(static_cast<int>(command)));
        if (onCommand) onCommand(command);
    }
    void Close() override { calls.emplace_back("close"); }
    void HideRenderOptions() override { calls.emplace_back("hide"); }
    void OpenDocument(const std::string& path) override { calls.push_back("open " + path); }
    void LoadFormDefaults() override { calls.emplace_back("defaults"); }
    bool PumpMessages(std::chrono::milliseconds wait) override {
        ++pumps;
        if (onPump) onPump();
        m_queue.RunPending(wait);
        return !quits;
    }

    std::vector<std::string> calls;
    std::function<void(CommandId)> onCommand;
    std::function<void()> onPump;
    int pumps = 0;
    bool quits = false;

  private:
    PlainQueue& m_queue;
};

class ActionsTest : public testing::Test {
  protected:
    ActionsTest() {
        test.directory.Write("bin/PerlExec", "#!/bin/sh\nexec sh \"$@\"\n");
        fs::permissions(test.directory / "bin/PerlExec", fs::perms::owner_all);
        test.site.environment.Set("PATH", test.directory / "bin" + ":/usr/bin:/bin");
    }
    // Lets a render, and an export if it is to be one, start a child that runs this shell text.
    void CommandsStart(const std::string& text) {
        const std::string path = test.directory.Write("child.sh", text);
        target.onCommand = [this, path](CommandId command) {
            if (command != CommandId::kStopRender) Runner().RunScript({path}, "");
        };
    }
    // Lets them start a child that ends, and says so, once somebody waits for it.
    void CommandsEndOnceWaitedFor() {
        CommandsStart(kUntilLetGo + std::string("echo > \"$TAVRN_WORKDIR/ended\"\n"));
        target.onPump = [this] {
            EXPECT_FALSE(InWork("ended"));
            LetGo();
            target.onPump = nullptr;
        };
    }
    bool Run(const std::string& text) {
        return actions.RunScriptFile(test.directory.Write("test.tvx", text));
    }
    bool IsKnown(const std::string& one, const std::string& two, const std::string& three) {
        return actions.DoAction(one, two, three);
    }
    Commands& Runner() { return test.site.commands; }
    bool InWork(const std::string& name) const { return fs::exists(test.site.WorkPath(name)); }
    void LetGo() const { test.directory.Write("work/go", ""); }

    test::TestSite test;
    FakeTarget target{test.queue};
    Actions actions{target, test.site.commands, test.report};
};

TEST_F(ActionsTest, CommandsAreThoseOfTheMenus) {
    EXPECT_TRUE(IsKnown("form", "render", "render"));
    EXPECT_TRUE(IsKnown("form", "render", "kill"));
    EXPECT_TRUE(IsKnown("form", "export", "all"));
    EXPECT_TRUE(IsKnown("form", "export", "compiledShader"));
    EXPECT_TRUE(IsKnown("form", "export", "shaderIFace"));
    EXPECT_THAT(target.calls, ElementsAre("command 32792", "command 32793", "command 32900", "command 32902",
                                          "command 32904"));
    EXPECT_EQ(test.sink.log, "");
}

TEST_F(ActionsTest, TheOtherActionsReachTheFrame) {
    EXPECT_TRUE(IsKnown("form", "exit", ""));
    EXPECT_TRUE(IsKnown("form", "roe", "hide"));
    EXPECT_TRUE(IsKnown("form", "loadtavrn", "/my documents/a b.tvn"));
    EXPECT_TRUE(IsKnown("roe", "use-defaults", ""));
    EXPECT_THAT(target.calls, ElementsAre("close", "hide", "open /my documents/a b.tvn", "defaults"));
}

TEST_F(ActionsTest, WhereTheArgumentDoesNotMatterAnyIsTaken) {
    EXPECT_TRUE(IsKnown("form", "exit", "now"));
    EXPECT_TRUE(IsKnown("roe", "use-defaults", "1"));
    EXPECT_THAT(target.calls, ElementsAre("close", "defaults"));
}

TEST_F(ActionsTest, BlanksAroundTheWordsAreTakenOff) {
    EXPECT_TRUE(IsKnown(" form ", "\trender", "kill \r\n"));
    EXPECT_TRUE(IsKnown("form", "loadtavrn", " /a b.tvn "));
    EXPECT_THAT(target.calls, ElementsAre("command 32793", "open /a b.tvn"));
}

TEST_F(ActionsTest, AnUnknownActionIsNamedInTheLogAndNotAlerted) {
    EXPECT_FALSE(IsKnown("form", "export", "shaderSource"));
    EXPECT_EQ(test.sink.log, "unknown action: form export shaderSource\r\n");
    EXPECT_THAT(test.sink.alerts, IsEmpty());
    EXPECT_THAT(target.calls, IsEmpty());
}

TEST_F(ActionsTest, TheLogHasTheTrimmedWordsAndNoneOfThemIsAFormat) {
    EXPECT_FALSE(IsKnown(" 100%s ", " %n", "%d "));
    EXPECT_EQ(test.sink.log, "unknown action: 100%s %n %d\r\n");
}

TEST_F(ActionsTest, WordsAreComparedExactly) {
    const std::vector<std::vector<std::string>> unknown = {
        {"FORM", "render", "render"},
        {"form", "Render", "render"},
        {"form", "render", "Render"},
        {"form", "render", ""},
        {"form", "render", "all"},
        {"form", "renders", "render"},
        {"form", "export", ""},
        {"form", "export", "ALL"},
        {"form", "export", "compiledshader"},
        {"form", "export", "renderIFace"},
        {"form", "roe", ""},
        {"form", "roe", "show"},
        {"form", "use-defaults", ""},
        {"roe", "hide", ""},
        {"roe", "render", "render"},
        {"roe", "", ""},
        {"form", "", ""},
        {"", "", ""},
        {"form render", "render", ""},
        {"", "exit", ""},
        {"forms", "exit", ""},
    };
    for (const auto& words : unknown) {
        EXPECT_FALSE(IsKnown(words[0], words[1], words[2])) << testing::PrintToString(words);
    }
    EXPECT_THAT(target.calls, IsEmpty());
    EXPECT_EQ(std::count(test.sink.log.begin(), test.sink.log.end(), '\n'),
              static_cast<long>(unknown.size()));
}

TEST_F(ActionsTest, ASystemCommandIsWaitedForWithoutPumping) {
    const std::string script =
        test.directory.Write("slow script", "echo > \"$TAVRN_WORKDIR/begun\"\n" + std::string(kUntilLetGo) +
                                                "echo \"$1\" > \"$TAVRN_WORKDIR/done\"\n");
    std::thread watcher([this] {
        const auto limit = std::chrono::steady_clock::now() + test::kPatience;
        while (!InWork("begun") && std::chrono::steady_clock::now() < limit)
            std::this_thread::sleep_for(std::chrono::milliseconds(2));
        LetGo();
    });
    EXPECT_TRUE(IsKnown("form", "system", "sh \"" + script + "\" \"a b\""));
    EXPECT_TRUE(InWork("done")) << "nobody waited for the command";
    watcher.join();
    EXPECT_EQ(test::ReadFile(test.site.WorkPath("done")), "a b\n");
    EXPECT_EQ(target.pumps, 0);
}

TEST_F(ActionsTest, ASystemCommandThatCannotStartIsAKnownActionAllTheSame) {
    EXPECT_TRUE(IsKnown("form", "system", "no-such-program x"));
    EXPECT_THAT(test.sink.alerts, ElementsAre("command failed: no-such-program x"));
    EXPECT_TRUE(IsKnown("form", "system", ""));
    EXPECT_THAT(test.sink.alerts, ElementsAre("command failed: no-such-program x", "command failed: "));
}

TEST_F(ActionsTest, ARenderIsWaitedForWhileTheInterfaceStaysAlive) {
    CommandsEndOnceWaitedFor();
    EXPECT_TRUE(IsKnown("form", "render", "render"));
    EXPECT_TRUE(InWork("ended"));
    EXPECT_FALSE(Runner().AnyChildRunning());
    EXPECT_GE(target.pumps, 1);
}

TEST_F(ActionsTest, ARenderThatStartsNothingReturnsAtOnce) {
    EXPECT_TRUE(IsKnown("form", "render", "render"));
    EXPECT_EQ(target.pumps, 0);
}

TEST_F(ActionsTest, AnExportIsNotWaitedForByItsAction) {
    CommandsStart(kUntilLetGo);
    EXPECT_TRUE(IsKnown("form", "export", "all"));
    EXPECT_TRUE(Runner().AnyChildRunning());
    EXPECT_EQ(target.pumps, 0);
    LetGo();
}

TEST_F(ActionsTest, ARenderThatIsStoppedWhileAnActionWaitsIsWaitedForNoLonger) {
    CommandsStart(kUntilLetGo);
    target.onPump = [this] {
        target.onPump = nullptr;
        target.onCommand = [this](CommandId) { Runner().KillChildren(); };
        EXPECT_TRUE(IsKnown("form", "render", "kill"));
    };
    EXPECT_TRUE(IsKnown("form", "render", "render"));
    EXPECT_THAT(target.calls, ElementsAre("command 32792", "command 32793"));
    EXPECT_EQ(target.pumps, 1);
    EXPECT_TRUE(InWork("kill.1"));
}

TEST_F(ActionsTest, TheEndOfTheProgramEndsTheWaitingForARender) {
    CommandsStart(kUntilLetGo);
    target.quits = true;
    EXPECT_TRUE(IsKnown("form", "render", "render"));
    EXPECT_EQ(target.pumps, 1);
    EXPECT_TRUE(Runner().AnyChildRunning());
    LetGo();
}

// Scripts.

TEST_F(ActionsTest, AScriptIsRunStatementByStatement) {
    EXPECT_TRUE(
        Run("# all\nform loadtavrn a.tvn  # first\nform export all; form roe hide\r\nroe use-defaults"));
    EXPECT_THAT(target.calls, ElementsAre("open a.tvn", "command 32900", "hide", "defaults"));
    EXPECT_FALSE(actions.ScriptRunning());
    EXPECT_EQ(actions.UnknownActions(), 0);
    EXPECT_EQ(target.pumps, 0);
}

TEST_F(ActionsTest, AScriptRunsWhileItsStatementsAreDone) {
    bool ran = false;
    target.onCommand = [&](CommandId) { ran = actions.ScriptRunning(); };
    EXPECT_FALSE(actions.ScriptRunning());
    EXPECT_TRUE(Run("form export all"));
    EXPECT_TRUE(ran);
}

TEST_F(ActionsTest, WhatFollowsARenderIsDoneAfterItsEnd) {
    CommandsEndOnceWaitedFor();
    const auto start = target.onCommand;
    std::vector<bool> ended;
    target.onCommand = [&](CommandId command) {
        ended.push_back(InWork("ended"));
        start(command);
    };
    EXPECT_TRUE(Run("form render render; form export all"));
    EXPECT_THAT(target.calls, ElementsAre("command 32792", "command 32900"));
    EXPECT_THAT(ended, ElementsAre(false, true));
}

TEST_F(ActionsTest, WhatFollowsAnyStatementIsDoneAfterTheEndOfItsChildren) {
    CommandsEndOnceWaitedFor();
    // A word of a script ends at a blank, so the command stands in a file.
    const std::string script = test.directory.Write(
        "move", "#!/bin/sh\nmv " + test.site.WorkPath("ended") + " " + test.site.WorkPath("moved") + "\n");
    fs::permissions(script, fs::perms::owner_all);
    EXPECT_TRUE(Run("form export all; form system " + script));
    EXPECT_TRUE(InWork("moved"));
}

TEST_F(ActionsTest, AScriptReturnsAfterTheEndOfItsLastChild) {
    CommandsEndOnceWaitedFor();
    EXPECT_TRUE(Run("form export all"));
    EXPECT_TRUE(InWork("ended"));
    EXPECT_FALSE(Runner().AnyChildRunning());
}

TEST_F(ActionsTest, UnknownActionsAreCountedAndPassedOver) {
    EXPECT_TRUE(Run("form sys#tem\nform exit\nfrom exit; form render\n"));
    EXPECT_EQ(test.sink.log,
              "unknown action: form sys \r\nunknown action: from exit \r\nunknown action: form render \r\n");
    EXPECT_THAT(target.calls, ElementsAre("close"));
    EXPECT_EQ(actions.UnknownActions(), 3);
    EXPECT_TRUE(Run("form exit"));
    EXPECT_EQ(actions.UnknownActions(), 0);
}

TEST_F(ActionsTest, AFourthWordOfAStatementDoesNotMatter) {
    EXPECT_TRUE(Run("form roe hide now; form loadtavrn my file.tvn"));
    EXPECT_THAT(target.calls, ElementsAre("hide", "open my"));
}

TEST_F(ActionsTest, AScriptThatCannotBeOpenedIsToldInThePlatformsWords) {
    const std::string path = test.directory / "none.tvx";
    EXPECT_FALSE(actions.RunScriptFile(path));
    EXPECT_FALSE(actions.RunScriptFile(test.directory.Path()));
    EXPECT_THAT(test.sink.alerts, ElementsAre(path + ": No such file or directory",
                                              test.directory.Path() + ": Is a directory"));
    EXPECT_FALSE(actions.ScriptRunning());
}

TEST_F(ActionsTest, AnEmptyScriptDoesNothing) {
    EXPECT_TRUE(Run(""));
    EXPECT_THAT(target.calls, IsEmpty());
}

TEST_F(ActionsTest, ASecondScriptIsRefusedAndTheFirstGoesOn) {
    const std::string second = test.directory.Write("second.tvx", "form exit");
    target.onCommand = [&](CommandId) { EXPECT_FALSE(actions.RunScriptFile(second)); };
    EXPECT_TRUE(Run("form export all; form roe hide"));
    EXPECT_THAT(test.sink.alerts, ElementsAre("script already running"));
    EXPECT_THAT(target.calls, ElementsAre("command 32900", "hide"));
    EXPECT_TRUE(actions.RunScriptFile(second));
}

TEST_F(ActionsTest, HaltingAsksTheRenderToEndAndTheNextStatementIsNotRun) {
    CommandsStart(kUntilLetGo);
    target.onPump = [this] {
        actions.HaltScript();
        EXPECT_FALSE(actions.ScriptRunning());
        target.onPump = nullptr;
    };
    EXPECT_TRUE(Run("form render render; form exit\nform exit"));
    EXPECT_THAT(target.calls, ElementsAre("command 32792"));
    EXPECT_TRUE(InWork("kill.1"));
    EXPECT_FALSE(actions.ScriptRunning());
}

TEST_F(ActionsTest, HaltingBetweenChildrenLeavesNoKillFile) {
    target.onCommand = [this](CommandId) { actions.HaltScript(); };
    EXPECT_TRUE(Run("form export all; form exit"));
    EXPECT_THAT(target.calls, ElementsAre("command 32900"));
    EXPECT_TRUE(fs::is_empty(test.site.directories.workDir));
}

TEST_F(ActionsTest, HaltingWithoutAScriptLeavesARenderAlone) {
    CommandsStart(kUntilLetGo);
    target.Command(CommandId::kRenderIt);
    actions.HaltScript();
    EXPECT_TRUE(Runner().AnyChildRunning());
    EXPECT_FALSE(InWork("kill.1"));
    LetGo();
}

TEST_F(ActionsTest, AfterHaltingAnotherScriptCanRun) {
    CommandsStart(kUntilLetGo);
    target.onPump = [this] {
        target.onPump = nullptr;
        actions.HaltScript();
    };
    EXPECT_TRUE(Run("form render render; form exit"));
    target.calls.clear();
    EXPECT_TRUE(Run("form roe hide"));
    EXPECT_THAT(target.calls, ElementsAre("hide"));
}

TEST_F(ActionsTest, TheEndOfTheProgramEndsTheScriptAndLeavesItsChildrenToTheProgram) {
    CommandsStart(kUntilLetGo);
    target.quits = true;
    EXPECT_TRUE(Run("form render render; form exit"));
    EXPECT_THAT(target.calls, ElementsAre("command 32792"));
    EXPECT_FALSE(actions.ScriptRunning());
    EXPECT_FALSE(InWork("kill.1"));
    EXPECT_TRUE(Runner().AnyChildRunning());
    LetGo();
}

TEST_F(ActionsTest, TheEndOfTheProgramAlsoEndsAScriptWhoseChildIsGoneByThen) {
    CommandsStart(kUntilLetGo);
    target.onPump = [this] {
        target.quits = true;
        Runner().KillChildren();
    };
    EXPECT_TRUE(Run("form render render; form roe hide"));
    EXPECT_THAT(target.calls, ElementsAre("command 32792"));
}

TEST_F(ActionsTest, ChildrenThatTheUserStopsLetTheScriptGoOn) {
    CommandsStart(kUntilLetGo);
    target.onPump = [this] { Runner().KillChildren(); };
    EXPECT_TRUE(Run("form render render; form roe hide"));
    EXPECT_THAT(target.calls, ElementsAre("command 32792", "hide"));
}

}  // namespace
}  // namespace tavrin
