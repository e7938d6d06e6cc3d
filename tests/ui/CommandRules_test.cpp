// SPDX-License-Identifier: Apache-2.0
// When each command is enabled and checked, on a frame in the states that a user brings it to.
#include <QDialog>
#include <QTest>
#include <QTimer>
#include <QToolBar>
#include <QToolButton>
#include <filesystem>
#include <set>

#include "ui/base/Text.h"
#include "ui/desk/DeskPane.h"
#include "ui/support/Hands.h"
#include "ui/support/TestFrame.h"
#include "ui/windows/ToolWindow.h"

namespace tavrin {
namespace {

namespace fs = std::filesystem;
using Id = CommandId;
using test::BoxesShown;
using test::FrameTest;
using test::PressKeys;
using test::PressWhenBoxComes;
using test::WaitUntil;

// The states: columns of the table below.
enum Column {
    kFresh,      // an empty desk
    kBoxes,      // a document with boxes, as it was opened
    kSelection,  // with all boxes selected
    kButton,     // with a button selected, and no box
    kModified,   // changed since it was opened
    kClipboard,  // an empty desk, and boxes in the clipboard
    kZoomed,     // enlarged by a step, which modifies
    kLocked,     // locked, with a selection, enlarged, boxes in the clipboard
    kChild,      // with boxes, while a render runs
    kLastChild,  // the same, without multiple renders
    kScript,     // a script runs, which waits for an answer of the user
    kBusy,       // a script and its render run
};

struct Rule {
    int id;
    const char* name;
    const char* enabled;  // a letter a column: E for enabled, '-' for not, '.' for what is not told here
};

//   Fresh Boxes Selection Button Modified Clipboard Zoomed Locked Child LastChild Script Busy
constexpr Rule kRules[] = {
    {57600, "New", "EEEEEEEEEEEE"},
    {57601, "Open", "EEEEEEEEEEEE"},
    {32771, "Merge", "EEEEEEEEEEEE"},
    {32964, "Examples", "------------"},  // tiny has none; Examples_test.cpp has a library that does
    {57603, "Save", "----E-EE--E-"},
    {57604, "Save As", "EEEEEEEEEEEE"},
    {32898, "Export Options", "EEEEEEEEEEEE"},
    {32901, "Shader Source", "EEEEEEEE--E-"},
    {32902, "Compiled Shader", "EEEEEEEE--E-"},
    {32903, "Render Interface", "EEEEEEEE--E-"},
    {32904, "Shader Interface", "EEEEEEEE--E-"},
    {32900, "Export All", "EEEEEEEE--E-"},
    {32915, "Run Script", "EEEEEEEE----"},
    {32917, "Halt Script", "----------EE"},
    {57665, "Exit", "EEEEEEEE----"},
    {57643, "Undo", "----E.--...."},
    {57644, "Redo", "-----.------"},
    {32941, "Undo History", "EEEEEEEEEEEE"},
    {32906, "Render History", "EEEEEEEEEEEE"},
    {57635, "Cut", "--E---------"},
    {57634, "Copy", "--E---------"},
    {57637, "Paste", "-----E------"},
    {32774, "Delete", "--EE--------"},
    {32947, "Delete and Join", "--E---------"},
    {32948, "Mute Boxes", "--E---------"},
    {32949, "Tidy", "-EEEE-E-EEEE"},
    {32950, "Align Left", "--E---------"},
    {32951, "Align Centre", "--E---------"},
    {32952, "Align Right", "--E---------"},
    {32953, "Align Top", "--E---------"},
    {32954, "Align Middle", "--E---------"},
    {32955, "Align Bottom", "--E---------"},
    {32956, "Distribute Across", "------------"},  // for three boxes or more: FlowCommands_test
    {32957, "Distribute Down", "------------"},
    {32961, "Frame Selected Boxes", "EEEEEEE-EEEE"},
    {32962, "Add Note", "EEEEEEE-EEEE"},
    {32844, "Stow All Sliders", "-....-......"},
    {32845, "Unstow All Sliders", "-....-......"},
    {32846, "Pin All Sliders", "-....-......"},
    {32847, "Unpin All Sliders", "-....-......"},
    {32848, "Lock All Sliders", "-....-......"},
    {32849, "Unlock All Sliders", "-....-......"},
    {32775, "Select All Boxes", "-EEEE-E-EEEE"},
    {32776, "Unselect All Boxes", "-EEEE-E-EEEE"},
    {32907, "Box Finder", "EEEEEEEEEEEE"},
    {32908, "Menu Finder", "EEEEEEEEEEEE"},
    {32946, "Search", "EEEEEEE-EEEE"},
    {32777, "Fit to Window", "-EEEE-E-EEEE"},
    {32778, "Zoom Reset", "------E-----"},
    {32779, "Zoom In", "-EEEE-E-EEEE"},
    {32780, "Zoom Out", "-EEEE-E-EEEE"},
    {32864, "Freeze Sliders", "EEEEEEEEEEEE"},
    {32787, "Display Icons", "EEEEEEE-EEEE"},
    {32788, "Straight Trace Lines", "EEEEEEE-EEEE"},
    {32789, "Lines Draw Over Boxes", "EEEEEEE-EEEE"},
    {32790, "Show Varnames", "EEEEEEE-EEEE"},
    {32800, "Lock Desk", "EEEEEEEEEEEE"},
    {32795, "Status Bar", "EEEEEEEEEEEE"},
    {32861, "Scroll Bars", "EEEEEEEEEEEE"},
    {32960, "Minimap", "EEEEEEEEEEEE"},
    {32850, "Slider Desk", "EEEEEEEEEEEE"},
    {32910, "Render History (kept)", "EEEEEEEEEEEE"},
    {32909, "Sound Effects", "EEEEEEEEEEEE"},
    {32860, "Debug Mode", "EEEEEEEEEEEE"},
    {32781, "Render Options", "EEEEEEEEEEEE"},
    {32782, "Argument Editor", "EEEEEEEEEEEE"},
    {32878, "Show Wallpaper", "EEEEEEEEEEEE"},
    {32877, "Tile Wallpaper", "EEEEEEEEEEEE"},
    {32879, "Set Wallpaper", "EEEEEEEEEEEE"},
    {32940, "Reload Operators", "EEEEEEEEEEEE"},
    {32792, "Render It", "-EEEE-EEE-EE"},
    {32793, "Stop Render", "--------EE-E"},
    {32943, "Picture Window", "------------"},  // where there is a program for it: PictureWindow_test
    {32944, "Keep Render", "-.----------"},
    {32942, "Live", "EEEEEEEEEEEE"},
    {32945, "Compare Renders", "EEEEEEEEEEEE"},
    {32958, "Check", "EEEEEEEEEEEE"},
    {32959, "Source", "EEEEEEEEEEEE"},
    {32889, "Display Log", "EEEEEEEEEEEE"},
    {32892, "Clear Log", "EEEEEEEEEEEE"},
    {32794, "View Shader Source", "-EEEE-EE--E-"},
    {32896, "View Render Interface", "-EEEE-EE--E-"},
    {32897, "View Shader Interface", "-EEEE-EE--E-"},
    {32938, "Multiple Renders", "EEEEEEEEEEEE"},
    {32797, "Shader Help", "EEEEEEEEEEEE"},
    {32918, "Online Documentation", "EEEEEEEEEEEE"},
    {57664, "About", "EEEEEEEEEEEE"},
    {36864, "Customize", "EEEEEEEEEEEE"},
};

// Those with a check mark, and whether a fresh frame shows it.
struct Check {
    int id;
    const char* name;
    bool atFirst;
};
constexpr Check kChecks[] = {
    {32898, "Export Options", false},
    {32941, "Undo History", false},
    {32945, "Compare Renders", false},
    {32958, "Check", false},
    {32959, "Source", false},
    {32906, "Render History", false},
    {32943, "Picture Window", false},
    {32907, "Box Finder", false},
    {32908, "Menu Finder", false},
    {32864, "Freeze Sliders", false},
    {32787, "Display Icons", false},
    {32788, "Straight Trace Lines", false},
    {32789, "Lines Draw Over Boxes", false},
    {32790, "Show Varnames", false},
    {32800, "Lock Desk", false},
    {32795, "Status Bar", true},
    {32861, "Scroll Bars", true},
    {32960, "Minimap", false},
    {32850, "Slider Desk", true},
    {32910, "Render History (kept)", true},
    {32909, "Sound Effects", true},
    {32860, "Debug Mode", false},
    {32781, "Render Options", false},
    {32782, "Argument Editor", false},
    {32942, "Live", false},
    {32878, "Show Wallpaper", true},
    {32877, "Tile Wallpaper", false},
    {32938, "Multiple Renders", true},
    {32797, "Shader Help", false},
};

class CommandRulesTest : public FrameTest {
  protected:
    // So that a document that has not changed reads the same at any time.
    CommandRulesTest() { environment.Set("SOURCE_DATE_EPOCH", "1000000000"); }

    QAction& ActionOf(int id) { return Action(static_cast<CommandId>(id)); }
    QToolBar& ToolBar() { return *Frame().findChild<QToolBar*>("MainToolBar"); }

    void OpenBoxes() {
        const std::string path = WriteDocument("boxes", 2);
        ASSERT_TRUE(Frame().OpenDocumentFile(path));
        Settle();
        ASSERT_FALSE(Document().IsModified());
    }
    void FillClipboard() {
        Desk().SelectAllBoxes();
        Do(Id::kCopy);
        Desk().UnselectAllBoxes();
    }
    void StartHeldRender() {
        HoldScripts();
        Do(Id::kRenderIt);
        ASSERT_TRUE(WaitUntil([&] { return Log().find("renderit ") != std::string::npos; }));
    }
    // Until the script's end; `expect` prepares for what it asks.
    void RunScript(
        const std::string& text, const std::function<void()>& expect = [] {}) {
        test::ChooseFileWhenDialogComes(directory.Write("script.tvx", text));
        expect();
        Do(Id::kRunScript);
    }
    // What the actions and the buttons show when all events are done, with no menu opened.
    void ExpectColumn(Column column) {
        Settle();
        for (const Rule& rule : kRules) {
            if (rule.enabled[column] == '.') continue;
            EXPECT_EQ(ActionOf(rule.id).isEnabled() ? 'E' : '-', rule.enabled[column])
                << rule.name << " in column " << column;
        }
        for (QAction* action : ToolBar().actions()) {
            const auto* button = qobject_cast<QToolButton*>(ToolBar().widgetForAction(action));
            if (button == nullptr) continue;
            EXPECT_EQ(button->isEnabled(), action->isEnabled()) << Bytes(action->text());
            EXPECT_EQ(button->isChecked(), action->isChecked()) << Bytes(action->text());
        }
    }
    // Calls `work` when the condition comes true inside of what the test does next.
    void When(std::function<bool()> condition, std::function<void()> work) {
        m_look.callOnTimeout([this, condition = std::move(condition), work = std::move(work)] {
            if (!condition()) return;
            m_look.stop();
            work();
        });
        m_look.start(5);
    }

    // All that a command that must do nothing could have touched.
    std::string Everything() {
        std::string all = Document().Store();
        for (const auto& box : Document().m_boxes) all += box->selected != 0 ? "selected " : "- ";
        all += std::to_string(Desk().m_clipboardBoxes.size()) + " copied, ";
        all += std::to_string(Desk().m_pendingBoxes.size()) + " pending, ";
        all += std::to_string(EditedFiles().size()) + " edited, ";
        all += Document().IsModified() ? "modified, " : "unmodified, ";
        all += Frame().IsClosed() ? "closed\n" : "open\n";
        for (const auto& file : fs::recursive_directory_iterator(WorkDir()))
            all += file.path().string() + "\n";
        return all + Log();
    }
    void ExpectNothingBy(std::initializer_list<const char*> keys) {
        test::ShowActive(Frame());
        Settle();
        for (const char* key : keys) {
            const std::string before = Everything();
            PressKeys(key);
            Settle();
            EXPECT_EQ(Everything(), before) << key;
        }
    }

  private:
    QTimer m_look;
};

TEST_F(CommandRulesTest, NoCommandIsMissingInThisTest) {
    Start();
    std::set<int> ids;
    std::set<int> checks;
    for (const CommandSpec& spec : CommandTable()) {
        ids.insert(static_cast<int>(spec.id));
        if (Action(spec.id).isCheckable()) checks.insert(static_cast<int>(spec.id));
    }
    for (const Rule& rule : kRules) EXPECT_EQ(ids.erase(rule.id), 1U) << rule.name;
    EXPECT_TRUE(ids.empty());
    for (const Check& check : kChecks) EXPECT_EQ(checks.erase(check.id), 1U) << check.name;
    EXPECT_TRUE(checks.empty());
}

// Enable rules, state by state

TEST_F(CommandRulesTest, OnAFreshFrame) {
    Start();
    ExpectColumn(kFresh);
}

TEST_F(CommandRulesTest, OnAnOpenedDocument) {
    Start();
    OpenBoxes();
    ExpectColumn(kBoxes);
}

TEST_F(CommandRulesTest, WithASelection) {
    Start();
    OpenBoxes();
    Do(Id::kSelectAllBoxes);
    ExpectColumn(kSelection);
}

TEST_F(CommandRulesTest, WithAButtonSelected) {
    Start();
    OpenBoxes();
    Desk().UnselectAllBoxes();
    Desk().m_selectedButton = Document().m_boxes.front()->outputs.at(0).get();
    Do(Id::kClearLog);  // any event
    ExpectColumn(kButton);
}

TEST_F(CommandRulesTest, OnAModifiedDocument) {
    Start();
    OpenBoxes();
    Do(Id::kShowVarnames);
    ExpectColumn(kModified);
}

TEST_F(CommandRulesTest, WithBoxesInTheClipboardOfAnEmptyDesk) {
    Start();
    OpenBoxes();
    FillClipboard();
    Do(Id::kNew);
    ExpectColumn(kClipboard);
}

TEST_F(CommandRulesTest, OnADeskThatIsEnlarged) {
    Start();
    OpenBoxes();
    Do(Id::kZoomIn);
    ExpectColumn(kZoomed);
}

TEST_F(CommandRulesTest, OnALockedDesk) {
    Start();
    OpenBoxes();
    FillClipboard();
    Do(Id::kZoomIn);
    Do(Id::kSelectAllBoxes);
    Do(Id::kLockDesk);
    ExpectColumn(kLocked);
}

TEST_F(CommandRulesTest, WhileARenderRuns) {
    Start();
    OpenBoxes();
    StartHeldRender();
    ExpectColumn(kChild);
    Do(Id::kMultipleRenders);
    ExpectColumn(kLastChild);
}

TEST_F(CommandRulesTest, WhileAScriptWaitsForAnAnswer) {
    Start();
    OpenBoxes();
    Do(Id::kShowVarnames);
    const std::string other = WriteDocument("other");
    bool looked = false;
    RunScript("form loadtavrn " + other + "\n", [&] {
        test::WhenDialogComes([&](QDialog& dialog) {
            looked = true;
            ExpectColumn(kScript);
            dialog.reject();
        });
    });
    EXPECT_TRUE(looked);
}

TEST_F(CommandRulesTest, WhileAScriptRenders) {
    Start();
    OpenBoxes();
    HoldScripts();
    bool looked = false;
    When([&] { return Log().find("renderit ") != std::string::npos; },
         [&] {
             looked = true;
             ExpectColumn(kBusy);
             ReleaseScripts();
         });
    RunScript("form render render\n");
    EXPECT_TRUE(looked);
    ExpectColumn(kBoxes);
}

// What comes of itself

TEST_F(CommandRulesTest, TheEndOfARenderIsShownWithoutAnyAction) {
    Start();
    OpenBoxes();
    StartHeldRender();
    ExpectColumn(kChild);
    ReleaseScripts();
    EXPECT_TRUE(WaitUntil([&] { return !ChildRuns() && ActionOf(32900).isEnabled(); }));
    ExpectColumn(kBoxes);
}

TEST_F(CommandRulesTest, TheSaveButtonFollowsChangesAndSaves) {
    Start();
    OpenBoxes();
    Do(Id::kShowVarnames);
    Settle();
    EXPECT_TRUE(ToolBar().widgetForAction(&ActionOf(57603))->isEnabled());
    PressKeys("Ctrl+S");
    Settle();
    EXPECT_FALSE(ToolBar().widgetForAction(&ActionOf(57603))->isEnabled());
}

TEST_F(CommandRulesTest, TheCloseBoxWorksWhileARenderDisablesExit) {
    Start();
    OpenBoxes();
    StartHeldRender();
    Settle();
    EXPECT_FALSE(ActionOf(57665).isEnabled());
    PressWhenBoxComes("Yes");
    When([] { return !BoxesShown().isEmpty(); }, [&] { ReleaseScripts(); });
    Frame().close();
    EXPECT_THAT(Bytes(BoxesShown().join('|')), testing::HasSubstr("in-progress render prevent removal of"));
    EXPECT_TRUE(Frame().IsClosed());
}

// Check marks

TEST_F(CommandRulesTest, TheMarksOfAFreshFrame) {
    Start();
    std::set<int> checkable;
    for (const Check& check : kChecks) {
        EXPECT_EQ(ActionOf(check.id).isChecked(), check.atFirst) << check.name;
        checkable.insert(check.id);
    }
    for (const Rule& rule : kRules) {
        EXPECT_EQ(ActionOf(rule.id).isCheckable(), checkable.count(rule.id) == 1) << rule.name;
    }
}

TEST_F(CommandRulesTest, EachMarkFollowsItsCommandThereAndBack) {
    fs::create_directory(directory / "runtime");
    environment.Set("XDG_RUNTIME_DIR", directory / "runtime");
    environment.Set("TAVRN_VIEW", test::BuildPath("bin/tavrin-view"));
    Start();
    for (const Check& check : kChecks) {
        Do(static_cast<CommandId>(check.id));
        EXPECT_TRUE(WaitUntil([&] { return ActionOf(check.id).isChecked() != check.atFirst; })) << check.name;
        for (const Check& other : kChecks) {
            if (other.id == check.id) continue;
            EXPECT_EQ(ActionOf(other.id).isChecked(), other.atFirst) << other.name << " by " << check.name;
        }
        Do(static_cast<CommandId>(check.id));
        EXPECT_TRUE(WaitUntil([&] { return ActionOf(check.id).isChecked() == check.atFirst; })) << check.name;
    }
}

TEST_F(CommandRulesTest, TheMarkOfAToolWindowGoesWhenItIsClosedOrMinimized) {
    Start();
    for (const int id : {32898, 32906, 32907, 32908, 32781, 32782, 32797}) {
        Do(static_cast<CommandId>(id));
        ToolWindow* window = nullptr;
        for (ToolWindow* each : Frame().Windows().All()) window = each->isVisible() ? each : window;
        ASSERT_NE(window, nullptr) << id;
        const std::string title = Bytes(window->windowTitle());
        ASSERT_TRUE(test::WaitUntilSeen(*window));
        EXPECT_TRUE(WaitUntil([&] { return ActionOf(id).isChecked(); })) << title;
        window->showMinimized();
        EXPECT_TRUE(WaitUntil([&] { return window->isMinimized() && !ActionOf(id).isChecked(); })) << title;
        window->showNormal();
        EXPECT_TRUE(WaitUntil([&] { return ActionOf(id).isChecked(); })) << title;
        window->close();
        EXPECT_TRUE(WaitUntil([&] { return !ActionOf(id).isChecked(); })) << title;
        EXPECT_FALSE(window->isVisible()) << title;
    }
}

TEST_F(CommandRulesTest, AMarkStaysWhenACommandCannotBeDone) {
    Start();
    OpenBoxes();
    Do(Id::kLockDesk);
    Settle();
    const bool before = ActionOf(32788).isChecked();
    PressKeys("Ctrl+T");
    Settle();
    EXPECT_EQ(ActionOf(32788).isChecked(), before);
    EXPECT_EQ(Document().linetype != 0, before);
}

// Keys of disabled commands

TEST_F(CommandRulesTest, OnAnEmptyDeskTheKeysOfDisabledCommandsDoNothing) {
    Start();
    ExpectNothingBy({"Ctrl+S", "Ctrl+X", "Shift+Delete", "Ctrl+C", "Ctrl+V", "Shift+Insert", "Delete",
                     "Ctrl+A", "Ctrl+F", "Up", "Down", "Escape", "F9", "F10", "F11"});
}

TEST_F(CommandRulesTest, OnALockedDeskTheKeysOfDisabledCommandsDoNothing) {
    Start();
    OpenBoxes();
    FillClipboard();
    Do(Id::kZoomIn);
    Desk().SelectAllBoxes();
    Do(Id::kLockDesk);
    ExpectNothingBy({"Ctrl+X", "Shift+Delete", "Ctrl+C", "Ctrl+V", "Shift+Insert", "Delete", "Ctrl+F", "Up",
                     "Down", "Escape", "Ctrl+T"});
    Desk().UnselectAllBoxes();
    ExpectNothingBy({"Ctrl+A"});
}

TEST_F(CommandRulesTest, WhileARenderRunsTheKeysOfDisabledCommandsDoNothing) {
    Start();
    OpenBoxes();
    StartHeldRender();
    ExpectNothingBy({"F9", "F10", "F11", "Ctrl+Q"});
}

TEST_F(CommandRulesTest, AnUnchangedDocumentIsNotSavedByItsKey) {
    Start();
    OpenBoxes();
    fs::remove(Document().Path());
    PressKeys("Ctrl+S");
    Settle();
    EXPECT_FALSE(fs::exists(Document().Path()));
}

// Hot keys ask their command, whatever its rule is

TEST_F(CommandRulesTest, HotKeysOfDisabledCommandsTellWhyTheyCannotBeDone) {
    Start();
    for (const char* key : {"F1", "F7"}) {
        const qsizetype before = BoxesShown().size();
        PressWhenBoxComes("OK");
        PressKeys(key);
        ASSERT_TRUE(WaitUntil([&] { return BoxesShown().size() > before; })) << key;
        EXPECT_EQ(BoxesShown().last(), "Alert: desk is empty") << key;
        test::ShowActive(Frame());
    }
    AddBoxes(1);
    Do(Id::kMultipleRenders);
    StartHeldRender();
    PressWhenBoxComes("OK");
    PressKeys("F1");
    ASSERT_TRUE(WaitUntil([] { return BoxesShown().size() == 3; }));
    EXPECT_EQ(BoxesShown().last(), "Alert: script is running");
    EXPECT_EQ(Frame().Work().session.m_nextRender, 2);
}

TEST_F(CommandRulesTest, StopRenderByItsHotKeyWithoutAChildCreatesNoFile) {
    Start();
    OpenBoxes();
    Do(Id::kRenderIt);
    ASSERT_TRUE(WaitUntil([&] { return !ChildRuns(); }));
    Settle();
    const std::string before = Everything();
    PressKeys("F4");
    Settle();
    EXPECT_EQ(Everything(), before);
}

}  // namespace
}  // namespace tavrin
