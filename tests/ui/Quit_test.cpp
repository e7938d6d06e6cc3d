// SPDX-License-Identifier: Apache-2.0
// The questions before the end of the program: which come, in which order, and what stands after each answer.
#include <signal.h>

#include <QAction>
#include <QMenu>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>
#include <QTimer>
#include <QWindow>
#include <filesystem>

#include "ui/base/Text.h"
#include "ui/desk/DeskPane.h"
#include "ui/support/TestFrame.h"

namespace tavrin {
namespace {

namespace fs = std::filesystem;
using test::FrameTest;
using test::WaitUntil;
using test::WhenDialogComes;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

// Writes down its process, waits while it is held, and after its kill file has come lingers as long as told.
constexpr const char* kRenderIt = R"(#!/usr/bin/perl
use strict;
use warnings;
$| = 1;
my $base = "$ENV{TAVRN_DIR}/..";
open my $list, '>>', "$base/processes" or die;
print $list "$$\n";
close $list;
print "render begins\n";
while (-e "$base/hold") {
    if (-e $ENV{TAVRN_KILLFILE}) {
        print "render killed\n";
        select undef, undef, undef, 0.01 while -e "$base/linger";
        exit 9;
    }
    select undef, undef, undef, 0.01;
}
print "render done\n";
)";

// What is there when the program is asked to end.
struct Situation {
    bool script = false;
    bool child = false;
    bool modified = false;
    bool stuck = false;  // a directory in the work directory cannot be removed

    bool AsksForWork() const { return child || stuck; }
    std::string Name() const {
        return std::string(script ? "script " : "") + (child ? "child " : "") +
               (modified ? "modified " : "") + (stuck ? "stuck " : "");
    }
};

enum class Way { kWindow, kExitCommand, kKey, kScript };

using Answers = std::vector<std::string>;

// Every way through the questions, the last answer of each being the one that settles the matter.
std::vector<Answers> WaysThrough(const Situation& situation) {
    std::vector<Answers> ways;
    Answers yes;
    const auto ask = [&](bool asked) {
        if (!asked) return;
        ways.push_back(yes);
        ways.back().push_back("No");
        yes.push_back("Yes");
    };
    ask(situation.script);
    ask(situation.AsksForWork());
    if (!situation.modified) {
        ways.push_back(yes);
        return ways;
    }
    for (const char* last : {"Cancel", "Discard", "Save"}) {
        ways.push_back(yes);
        ways.back().emplace_back(last);
    }
    return ways;
}

class QuitTest : public FrameTest {
  protected:
    QuitTest() {
        fs::permissions(directory.Write("tavrin/tiny/bin/renderit", kRenderIt), fs::perms::owner_all);
    }

    // A frame in that situation, but for the script; the document has a file.
    void StartIn(const Situation& situation) {
        profile = MemoryProfile();
        ReleaseScripts();
        fs::remove(directory / "processes");
        m_asked.clear();
        Start();
        for (int toggle = 0; toggle < 2; ++toggle) Do(CommandId::kMenuFinder);  // it has a place now
        document = WriteDocument("work");
        Frame().OpenDocumentFile(document);
        written = test::ReadFile(document);
        Settle();
        if (situation.modified) Do(CommandId::kDisplayIcons);
        directory.Write("tmp/" + fs::path(WorkDir()).filename().string() + "/file", "x");
        if (situation.stuck) fs::create_directory(WorkDir() + "/.kept");
        if (situation.child || situation.script) HoldScripts();
        if (situation.child && !situation.script) {
            Do(CommandId::kRenderIt);
            WaitForChild();
        }
        Settle();
    }
    void WaitForChild() {
        ASSERT_TRUE(WaitUntil([&] { return Log().find("render begins") != std::string::npos; })) << Log();
    }

    void Answer(const std::string& button) {
        WhenDialogComes([this, button](QDialog& dialog) {
            auto* box = qobject_cast<QMessageBox*>(&dialog);
            ASSERT_NE(box, nullptr);
            m_asked.push_back(Bytes(box->text()));
            EXPECT_EQ(box->icon(), QMessageBox::Warning);
            const bool isWarning = box->standardButtons() == (QMessageBox::Yes | QMessageBox::No);
            EXPECT_EQ(Bytes(box->windowTitle()), isWarning ? "Warning" : "Tavrin");
            EXPECT_EQ(box->defaultButton(), box->button(isWarning ? QMessageBox::No : QMessageBox::Save));
            if (Bytes(box->text()) == WorkQuestion()) fs::remove(directory / "linger");
            for (QAbstractButton* candidate : box->buttons()) {
                if (Bytes(candidate->text().remove('&')) != button) continue;
                candidate->click();
                return;
            }
            ADD_FAILURE() << "no button " << button << " at " << m_asked.back();
            box->reject();
        });
    }
    std::string WorkQuestion() {
        return "An open editor or image window or an in-progress render prevent removal of work directory " +
               WorkDir() + ".  Quit anyway?";
    }
    // The questions to be expected up to the last answer.
    std::vector<std::string> QuestionsOf(const Situation& situation, size_t count) {
        std::vector<std::string> questions;
        if (situation.script) questions.emplace_back("Running script.  Quit anyway?");
        if (situation.AsksForWork()) questions.push_back(WorkQuestion());
        if (situation.modified) questions.emplace_back("Save changes to work.tvn?");
        questions.resize(count);
        return questions;
    }

    void AskToEnd(Way way) {
        switch (way) {
            case Way::kWindow:
                Frame().windowHandle()->close();
                break;
            case Way::kExitCommand:
                Frame().Commands().Update();
                Action(CommandId::kExit).trigger();
                break;
            case Way::kKey:
                QTest::keyClick(&Frame(), Qt::Key_Q, Qt::ControlModifier);
                break;
            case Way::kScript:
                Frame().ActionDispatch().DoAction("form", "exit", "");
                break;
        }
    }
    // Runs a script with a statement behind that it is still at when `meanwhile` is called.
    void RunScript(const std::string& statement, const std::function<void()>& meanwhile) {
        const std::string path = directory.Write("s.tvx", statement + "; form nonsense\n");
        QTimer::singleShot(0, &Frame(), meanwhile);
        EXPECT_TRUE(Frame().ActionDispatch().RunScriptFile(path));
    }
    bool ScriptWentOn() { return Log().find("unknown action: form nonsense") != std::string::npos; }
    bool ScriptRuns() { return Frame().ActionDispatch().ScriptRunning(); }

    // Asks the program to end in that situation and gives the answers.
    void Ask(const Situation& situation, Way way, const Answers& answers) {
        for (const std::string& answer : answers) Answer(answer);
        if (!situation.script) {
            AskToEnd(way);
        } else if (way == Way::kScript) {
            RunScript("form exit", [] {});
        } else {
            directory.Write("linger", "");
            RunScript("form render render", [&] {
                WaitForChild();
                AskToEnd(way);
                if (answers == Answers{"No"}) {
                    EXPECT_TRUE(ScriptRuns());
                    EXPECT_TRUE(ChildRuns());
                    ReleaseScripts();
                }
            });
        }
        Settle();
        EXPECT_EQ(m_asked, QuestionsOf(situation, answers.size()));
    }

    void ExpectAfter(const Situation& situation, const Answers& answers) {
        const std::string last = answers.empty() ? "" : answers.back();
        const bool alive = last == "No" || last == "Cancel";
        EXPECT_EQ(Frame().IsClosed(), !alive);
        EXPECT_EQ(Frame().isVisible(), alive);
        EXPECT_EQ(ScriptWentOn(), situation.script && answers == Answers{"No"});
        EXPECT_FALSE(ScriptRuns());

        // Up to the question of the work directory nothing has been stored, beyond it all has.
        EXPECT_EQ(profile.numbers.contains("MainWindow.x"), last != "No");
        EXPECT_EQ(profile.numbers.contains("MenuFinder.visible"), last != "No");
        EXPECT_EQ(profile.numbers.contains("OpDesk.scrollbars"), last != "No");

        // As long as the program may go on it keeps what it works with.
        EXPECT_EQ(fs::exists(WorkDir() + "/file"), alive);
        EXPECT_EQ(fs::exists(WorkDir() + "/.kept"), situation.stuck);
        EXPECT_EQ(fs::exists(WorkDir()), alive || situation.stuck);

        EXPECT_EQ(test::ReadFile(document) != written, last == "Save");
        EXPECT_EQ(Document().IsModified(), situation.modified && last != "Save");
        if (!alive) ExpectNoChildLeft();
        if (alive) ExpectToLiveOn(situation);
    }
    void ExpectNoChildLeft() {
        EXPECT_FALSE(App().GetSite().commands.AnyProcessLeft());
        for (const int process : Processes()) EXPECT_NE(::kill(process, 0), 0) << process;
    }
    std::vector<int> Processes() {
        std::vector<int> numbers;
        if (!fs::exists(directory / "processes")) return numbers;
        std::istringstream list(test::ReadFile(directory / "processes"));
        for (int number = 0; list >> number;) numbers.push_back(number);
        return numbers;
    }
    void ExpectToLiveOn(const Situation& situation) {
        if (situation.child && !situation.script) {
            EXPECT_TRUE(ChildRuns());
        }
        ReleaseScripts();
        EXPECT_TRUE(WaitUntil([&] { return !App().GetSite().commands.AnyProcessLeft(); }));
        Do(CommandId::kClearLog);
        Do(CommandId::kRenderIt);
        EXPECT_TRUE(WaitUntil([&] { return Log().find("render done") != std::string::npos; })) << Log();
        EXPECT_TRUE(fs::exists(WorkDir() + "/render_options"));
    }

    void TryAll(const Situation& situation, Way way) {
        for (const Answers& answers : WaysThrough(situation)) {
            std::string trace = situation.Name() + ":";
            for (const std::string& answer : answers) trace += " " + answer;
            SCOPED_TRACE(trace);
            StartIn(situation);
            Ask(situation, way, answers);
            ExpectAfter(situation, answers);
            End();
            if (HasFailure()) return;
        }
    }

    std::vector<std::string> m_asked;
    std::string document;
    std::string written;  // what its file held
};

class QuitByWindowTest : public QuitTest, public testing::WithParamInterface<int> {};

TEST_P(QuitByWindowTest, AsksInOrderAndKeepsWhatEachAnswerLeaves) {
    const int bits = GetParam();
    Situation situation{(bits & 8) != 0, (bits & 4) != 0, (bits & 2) != 0, (bits & 1) != 0};
    situation.child = situation.child || situation.script;
    TryAll(situation, Way::kWindow);
}

// Nothing, a child, a script with its child; each with a modified document, a stuck directory, both.
INSTANTIATE_TEST_SUITE_P(Situations, QuitByWindowTest, testing::Values(0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11));

class QuitByScriptTest : public QuitTest, public testing::WithParamInterface<int> {};

TEST_P(QuitByScriptTest, AsksInOrderAndKeepsWhatEachAnswerLeaves) {
    TryAll({.script = true, .modified = (GetParam() & 2) != 0, .stuck = (GetParam() & 1) != 0}, Way::kScript);
}

INSTANTIATE_TEST_SUITE_P(Situations, QuitByScriptTest, testing::Values(0, 1, 2, 3));

TEST_F(QuitTest, TheExitCommandAndItsKeyAskAsTheWindowDoes) {
    for (const Way way : {Way::kExitCommand, Way::kKey}) TryAll({.modified = true, .stuck = true}, way);
}

TEST_F(QuitTest, ExitIsDisabledWhileAChildRuns) {
    StartIn({.child = true});
    EXPECT_TRUE(WaitUntil([&] { return !Action(CommandId::kExit).isEnabled(); }));
    AskToEnd(Way::kKey);
    AskToEnd(Way::kExitCommand);
    EXPECT_FALSE(Frame().IsClosed());
    EXPECT_THAT(m_asked, IsEmpty());
    ReleaseScripts();
    EXPECT_TRUE(WaitUntil([&] { return Action(CommandId::kExit).isEnabled(); }));
}

TEST_F(QuitTest, ExitIsDisabledWhileAScriptRuns) {
    StartIn({.script = true});
    RunScript("form render render", [&] {
        WaitForChild();
        EXPECT_TRUE(WaitUntil([&] { return !Action(CommandId::kExit).isEnabled(); }));
        AskToEnd(Way::kKey);
        EXPECT_FALSE(Frame().IsClosed());
        EXPECT_THAT(m_asked, IsEmpty());
        ReleaseScripts();
    });
    EXPECT_TRUE(IsEnabled(CommandId::kExit));
}

TEST_F(QuitTest, AnUntitledDocumentWhosePlaceIsNotChosenKeepsTheProgram) {
    Start();
    AddBoxes(1);
    Answer("Save");
    test::CancelWhenDialogComes();
    AskToEnd(Way::kWindow);
    EXPECT_THAT(m_asked, ElementsAre("Save changes to Untitled.tvn?"));
    EXPECT_FALSE(Frame().IsClosed());
    EXPECT_TRUE(Document().IsModified());

    const std::string path = directory / "chosen.tvn";
    Answer("Save");
    test::ChooseFileWhenDialogComes(path);
    AskToEnd(Way::kWindow);
    EXPECT_TRUE(Frame().IsClosed());
    EXPECT_TRUE(fs::exists(path));
}

TEST_F(QuitTest, ADocumentThatCannotBeSavedKeepsTheProgram) {
    StartIn({.modified = true});
    fs::remove(document);
    fs::create_directory(document);
    Answer("Save");
    test::PressWhenBoxComes("OK");
    AskToEnd(Way::kWindow);
    EXPECT_TRUE(WaitUntil([&] { return Log().find("ALERT: ") != std::string::npos; }));
    EXPECT_FALSE(Frame().IsClosed());
    EXPECT_TRUE(Document().IsModified());
}

TEST_F(QuitTest, AChildThatHeedsNothingDoesNotOutliveTheProgram) {
    fs::permissions(directory.Write("tavrin/tiny/bin/renderit",
                                    "#!/usr/bin/perl\n$| = 1; $SIG{TERM} = 'IGNORE';\n"
                                    "open my $list, '>>', \"$ENV{TAVRN_DIR}/../processes\" or die;\n"
                                    "print $list \"$$\\n\"; close $list; print \"render begins\\n\";\n"
                                    "sleep 1 while 1;\n"),
                    fs::perms::owner_all);
    StartIn({.child = true});
    ASSERT_EQ(Processes().size(), 1U);
    Answer("Yes");
    AskToEnd(Way::kWindow);
    EXPECT_TRUE(Frame().IsClosed());
    ExpectNoChildLeft();
    EXPECT_FALSE(fs::exists(WorkDir()));
}

// Looks at what is left of a session when its window goes.
class WindowWatcher : public QObject {
  public:
    WindowWatcher(QWidget& window, std::function<void()> look) : m_look(std::move(look)) {
        window.installEventFilter(this);
    }
    bool eventFilter(QObject*, QEvent* event) override {
        if (event->type() == QEvent::Hide) m_look();
        return false;
    }

  private:
    std::function<void()> m_look;
};

TEST_F(QuitTest, NothingIsLeftToBeDoneWhenTheWindowGoes) {
    StartIn({.child = true});
    int looks = 0;
    const WindowWatcher watcher(Frame(), [&] {
        ++looks;
        ExpectNoChildLeft();
        EXPECT_FALSE(fs::exists(WorkDir()));
    });
    Answer("Yes");
    AskToEnd(Way::kWindow);
    Settle();
    EXPECT_EQ(looks, 1);
}

TEST_F(QuitTest, ACancelledEndLosesNothingOfTheHistory) {
    StartIn({});
    const std::string other = WriteDocument("other", 2);
    Do(CommandId::kRenderIt);
    EXPECT_TRUE(WaitUntil([&] { return !App().GetSite().commands.AnyProcessLeft(); }));
    AddBoxes(2);
    Answer("Cancel");
    AskToEnd(Way::kWindow);
    ASSERT_FALSE(Frame().IsClosed());
    AddBoxes(1);
    EXPECT_EQ(Document().m_boxes.size(), 4U);
    Answer("Discard");
    EXPECT_TRUE(Frame().OpenDocumentFile(other));
    EXPECT_TRUE(Frame().OpenDocumentFile(WorkDir() + "/1/work.tvn"));
    EXPECT_EQ(Document().m_boxes.size(), 1U);
    EXPECT_EQ(Document().Path(), document);
    test::ChooseFileWhenDialogComes(other);
    test::PressWhenBoxComes("OK");
    Do(CommandId::kMerge);
    EXPECT_EQ(Desk().m_pendingBoxes.size(), 2U);
    EXPECT_THAT(Log(), Not(HasSubstr("ALERT")));
}

TEST_F(QuitTest, AWorkDirectoryThatWasClearedAwayIsThereAgainWhenItIsNeeded) {
    StartIn({});
    const std::string other = WriteDocument("other", 2);
    fs::remove_all(WorkDir());
    EXPECT_TRUE(Frame().OpenDocumentFile(other));
    EXPECT_EQ(Document().m_boxes.size(), 2U);
    EXPECT_TRUE(fs::exists(WorkDir()));
    fs::remove_all(WorkDir());
    test::ChooseFileWhenDialogComes(document);
    test::PressWhenBoxComes("OK");
    Do(CommandId::kMerge);
    EXPECT_EQ(Desk().m_pendingBoxes.size(), 1U);
    Do(CommandId::kDelete);
    fs::remove_all(WorkDir());
    QMenu& patterns = *Menu("Patterns");
    patterns.popup(Frame().mapToGlobal(QPoint(0, 0)));  // which fills it
    ASSERT_FALSE(patterns.actions().isEmpty());
    patterns.actions().constFirst()->trigger();
    patterns.hide();
    EXPECT_EQ(Desk().m_pendingBoxes.size(), 1U);
    EXPECT_THAT(Log(), Not(HasSubstr("ALERT")));
}

TEST_F(QuitTest, TheScrollBarsAreStoredAsTheyStand) {
    Start();
    Do(CommandId::kScrollBars);
    const bool shown = Frame().Desk().ScrollBarsShown();
    AskToEnd(Way::kWindow);
    EXPECT_EQ(profile.GetInt("OpDesk.scrollbars", -1), shown ? 1 : 0);
    Start();
    EXPECT_EQ(Frame().Desk().ScrollBarsShown(), shown);
    EXPECT_EQ(IsChecked(CommandId::kScrollBars), shown);
}

TEST_F(QuitTest, AMinimizedMainWindowKeepsItsStoredPlace) {
    profile.numbers = {{"MainWindow.x", 71},
                       {"MainWindow.y", 72},
                       {"MainWindow.width", 930},
                       {"MainWindow.height", 640},
                       {"MainWindow.visible", 1}};
    const auto stored = profile.numbers;
    Start();
    for (int toggle = 0; toggle < 2; ++toggle) Do(CommandId::kMenuFinder);  // hidden, it is not minimized
    Frame().move(200, 210);
    Frame().resize(1000, 700);
    Frame().showMinimized();
    ASSERT_TRUE(WaitUntil([&] { return Frame().isMinimized(); }));
    AskToEnd(Way::kWindow);
    EXPECT_TRUE(Frame().IsClosed());
    for (const auto& [key, value] : stored) EXPECT_EQ(profile.GetInt(key, -1), value) << key;
    EXPECT_TRUE(profile.numbers.contains("MenuFinder.x"));
}

}  // namespace
}  // namespace tavrin
