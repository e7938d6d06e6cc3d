// SPDX-License-Identifier: Apache-2.0
// Keys in the whole program: F1 to F8 from every window, editing keys in fields and on the desk, and what a
// locked desk takes away.
#include <QAbstractItemView>
#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QDialog>
#include <QLineEdit>
#include <QMenuBar>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QShortcut>
#include <QSplitter>
#include <QStatusBar>
#include <QTest>
#include <QToolBar>

#include "sliders/ArgumentEdits.h"
#include "ui/base/Text.h"
#include "ui/desk/DeskPane.h"
#include "ui/frame/StatusBox.h"
#include "ui/library/OperatorToolBar.h"
#include "ui/support/Hands.h"
#include "ui/support/TestFrame.h"
#include "ui/windows/ToolWindow.h"

namespace tavrin {
namespace {

using Id = CommandId;
using test::FocusOn;
using test::FrameTest;
using test::PressKeys;
using test::WaitUntil;

class KeysTest : public FrameTest {
  protected:
    // By how its title begins.
    ToolWindow& Window(const QString& title) {
        for (ToolWindow* window : Frame().Windows().All()) {
            if (window->windowTitle().startsWith(title)) return *window;
        }
        throw std::invalid_argument("there is no window " + Bytes(title));
    }
    bool IsUp(const QString& title) { return Window(title).IsUp(); }
    bool LogComesTo(const std::string& text) {
        return WaitUntil([&] { return Log().find(text) != std::string::npos; });
    }
    int Selected() {
        int selected = 0;
        for (const auto& box : Document().m_boxes) selected += box->selected != 0 ? 1 : 0;
        return selected;
    }
};

struct Place {
    const char* window;  // how its title begins
    CommandId command;   // that brings it up
};

void PrintTo(const Place& place, std::ostream* out) { *out << place.window; }

// The field or list of a tool window that takes the keys.
QWidget* FieldOf(const QWidget& window) {
    for (QWidget* child : window.findChildren<QWidget*>()) {
        const bool isField = qobject_cast<QLineEdit*>(child) != nullptr ||
                             qobject_cast<QPlainTextEdit*>(child) != nullptr ||
                             qobject_cast<QAbstractItemView*>(child) != nullptr;
        if (isField && child->isVisible() && child->isEnabled() && child->focusPolicy() != Qt::NoFocus)
            return child;
    }
    return nullptr;
}

class HotKeys : public KeysTest, public testing::WithParamInterface<Place> {
  protected:
    // With a form that has a field.
    HotKeys() {
        const std::string siteFile = directory / "tavrin/tiny/tavrn.def";
        directory.Write("tavrin/tiny/tavrn.def",
                        test::ReadFile(siteFile) + "\nroe {\nxfield {\nenvname TINY_DEPTH\nvalue 2\n}\n}\n");
    }
    // The tool window under test has the focus, in its field.
    void FocusField() {
        ToolWindow& window = Window(GetParam().window);
        if (!window.IsUp()) Do(GetParam().command);
        QWidget* field = FieldOf(window);
        ASSERT_NE(field, nullptr) << "nothing in the window takes the focus";
        FocusOn(*field);
        Settle();
    }
    void Press(const char* key) {
        FocusField();
        ASSERT_TRUE(WaitUntil([this] { return QApplication::activeWindow() == &Window(GetParam().window); }));
        PressKeys(key);
        Settle();
    }
    void ExpectToggles(const char* key, const QString& title) {
        FocusField();
        const bool wasUp = IsUp(title);
        Press(key);
        EXPECT_TRUE(WaitUntil([&] { return IsUp(title) != wasUp; })) << key;
    }
};

TEST_P(HotKeys, ReachTheFrame) {
    Start();
    AddBoxes(1);
    SetArgument(Document(), *Document().m_boxes.front()->inputs.at(0), true);  // whose name can be typed
    Press("F3");
    EXPECT_TRUE(IsChecked(Id::kFreezeSliders));
    ExpectToggles("F2", "Render Options");
    ExpectToggles("F5", "Argument Editor");
    ExpectToggles("F6", "Render History");
    Press("F8");
    EXPECT_TRUE(WaitUntil([&] { return IsUp("Log"); }));
    Press("F8");
    EXPECT_TRUE(IsUp("Log")) << "it never hides";

    HoldScripts();
    Press("F1");
    EXPECT_TRUE(LogComesTo("renderit Untitled 1"));
    Press("F4");
    EXPECT_TRUE(LogComesTo("renderit killed"));
    EXPECT_TRUE(WaitUntil([&] { return !ChildRuns(); }));
    ReleaseScripts();
    Press("F7");
    EXPECT_TRUE(LogComesTo("exportall done"));
}

constexpr Place kPlaces[] = {
    {"Log", Id::kDisplayLog},          {"Render Options", Id::kRenderOptions},
    {"Argument", Id::kArgumentEditor}, {"Box Finder", Id::kBoxFinder},
    {"Menu Finder", Id::kMenuFinder},  {"Render History", Id::kRenderHistory},
    {"Export", Id::kExportOptions},    {"Help Editor", Id::kShaderHelp},
};
std::string NameOf(const testing::TestParamInfo<Place>& place) {
    return Bytes(QString(place.param.window).remove(' '));
}
INSTANTIATE_TEST_SUITE_P(Windows, HotKeys, testing::ValuesIn(kPlaces), NameOf);

class HotKeysOfTheFrame : public KeysTest {};

// The window system hands keys to the program that is active and to no other, unless a program grabs them.
TEST_F(HotKeysOfTheFrame, BelongToTheApplicationAndGrabNothing) {
    Start();
    // Windows of the frame have some of their own.
    const auto hotKeys = Frame().findChildren<QShortcut*>(Qt::FindDirectChildrenOnly);
    EXPECT_EQ(hotKeys.size(), 8);
    for (const QShortcut* hotKey : hotKeys) {
        EXPECT_EQ(hotKey->context(), Qt::ApplicationShortcut);
        EXPECT_TRUE(hotKey->isEnabled());
        EXPECT_FALSE(hotKey->autoRepeat()) << "a key held down is one press";
    }
    EXPECT_EQ(QWidget::keyboardGrabber(), nullptr);
}

TEST_F(HotKeysOfTheFrame, DoNothingBehindAModalDialog) {
    Start();
    test::WhenDialogComes([this](QDialog& dialog) {
        test::ShowActive(dialog);
        PressKeys("F3");
        PressKeys("F8");
        Settle();
        dialog.reject();
    });
    Do(Id::kOpen);
    EXPECT_FALSE(IsChecked(Id::kFreezeSliders));
    EXPECT_FALSE(IsUp("Log"));
}

TEST_F(HotKeysOfTheFrame, WorkWhileTheDeskIsLocked) {
    Start();
    AddBoxes(1);
    Do(Id::kLockDesk);
    Settle();
    PressKeys("F3");
    EXPECT_TRUE(IsChecked(Id::kFreezeSliders));
    PressKeys("F1");
    EXPECT_TRUE(LogComesTo("renderit done"));
}

// Editing keys

class EditingKeys : public KeysTest {
  protected:
    // A desk with two boxes, unselected, and a field in the frame that says "text".
    void StartWithField() {
        Start();
        AddBoxes(2);
        Desk().UnselectAllBoxes();
        m_field = new QLineEdit("text", &Frame());
        Frame().statusBar()->addWidget(m_field);
        m_field->show();
        FocusOn(*m_field);
    }
    QLineEdit* m_field = nullptr;
};

TEST_F(EditingKeys, ActOnTheTextOfAFieldThatHasTheFocus) {
    StartWithField();
    PressKeys("Ctrl+A");
    EXPECT_EQ(m_field->selectedText(), "text");
    EXPECT_EQ(Selected(), 0);
    PressKeys("Ctrl+C");
    PressKeys("Ctrl+V");
    PressKeys("Ctrl+V");
    EXPECT_EQ(m_field->text(), "texttext");
    PressKeys("Ctrl+A");
    PressKeys("Ctrl+X");
    EXPECT_EQ(m_field->text(), "");
    PressKeys("Shift+Insert");
    EXPECT_EQ(m_field->text(), "texttext");
    m_field->home(false);
    PressKeys("Delete");
    EXPECT_EQ(m_field->text(), "exttext");
    PressKeys("Ctrl+A");
    PressKeys("Shift+Delete");
    EXPECT_EQ(m_field->text(), "");
    for (const char* key : {"Up", "Down", "Escape"}) {
        PressKeys(key);
        Settle();
        EXPECT_EQ(Document().zoomFactor, 1) << key;
    }
    EXPECT_EQ(Document().m_boxes.size(), 2U);
    EXPECT_TRUE(Desk().m_clipboardBoxes.empty());
    EXPECT_TRUE(Desk().m_pendingBoxes.empty());
}

TEST_F(EditingKeys, ActOnTheDeskOtherwise) {
    StartWithField();
    FocusOn(Frame().Desk());
    PressKeys("Up");
    EXPECT_FLOAT_EQ(Document().zoomFactor, 1.1F);
    PressKeys("Escape");
    Settle();
    EXPECT_EQ(Document().zoomFactor, 1);
    PressKeys("Ctrl+A");
    Settle();
    EXPECT_EQ(Selected(), 2);
    PressKeys("Ctrl+C");
    Settle();
    PressKeys("Delete");
    Settle();
    EXPECT_TRUE(Document().m_boxes.empty());
    PressKeys("Ctrl+V");
    EXPECT_EQ(Desk().m_pendingBoxes.size(), 2U);
    EXPECT_EQ(m_field->text(), "text");
}

TEST_F(EditingKeys, ThoseOfTheFrameStillWorkWithTheFocusInAField) {
    StartWithField();
    PressKeys("Ctrl+L");
    Settle();
    EXPECT_EQ(Document().lock, 1);
    PressKeys("Ctrl+L");
    Settle();
    EXPECT_EQ(Document().lock, 0);
    PressKeys("Ctrl+B");
    Settle();
    EXPECT_TRUE(IsUp("Box Finder"));
}

TEST_F(EditingKeys, InTheShaderTypeBoxArrowsChooseAndDoNotZoom) {
    Start();
    AddBoxes(1);
    auto* types = Frame().OperatorBar().findChild<QComboBox*>("shaderType");
    types->addItems({"light", "surface"});
    types->setCurrentIndex(0);
    test::TabTo(*types);
    PressKeys("Down");
    EXPECT_EQ(types->currentText(), "surface");
    EXPECT_EQ(Document().zoomFactor, 1);
    PressKeys("Up");
    EXPECT_EQ(types->currentText(), "light");
    EXPECT_EQ(Document().zoomFactor, 1);
}

TEST_F(EditingKeys, ArrowsZoomWhereTheShaderTypeBoxOnlyCameToHaveTheFocus) {
    Start();
    AddBoxes(1);
    auto* types = Frame().OperatorBar().findChild<QComboBox*>("shaderType");
    types->addItems({"light", "surface"});
    types->setCurrentIndex(0);
    FocusOn(*types);
    PressKeys("Down");
    PressKeys("Down");
    EXPECT_EQ(types->currentText(), "light");
    EXPECT_FLOAT_EQ(Document().zoomFactor, 1 / 1.1F / 1.1F);
    PressKeys("Up");
    EXPECT_EQ(types->currentText(), "light");
    EXPECT_FLOAT_EQ(Document().zoomFactor, 1 / 1.1F);
}

TEST_F(EditingKeys, InTheLogLeaveTheDeskAlone) {
    Start();
    AddBoxes(2);
    Desk().SelectAllBoxes();
    Do(Id::kDisplayLog);
    ToolWindow& log = Window("Log");
    App().GetSite().report.LogLine("a line");
    EXPECT_NE(Log(), "");
    FocusOn(*FieldOf(log));
    for (const char* key : {"Ctrl+A", "Ctrl+C", "Ctrl+X", "Shift+Delete", "Delete", "Up", "Down"}) {
        PressKeys(key);
        Settle();
        EXPECT_EQ(Document().zoomFactor, 1) << key;
    }
    EXPECT_EQ(Document().m_boxes.size(), 2U);
    EXPECT_TRUE(Desk().m_clipboardBoxes.empty());
}

TEST_F(EditingKeys, InAFinderLeaveTheDeskAlone) {
    Start();
    AddBoxes(2);
    Desk().SelectAllBoxes();
    Do(Id::kBoxFinder);
    FocusOn(*Window("Box Finder").findChild<QAbstractItemView*>());
    for (const char* key : {"Delete", "Ctrl+X", "Ctrl+C", "Escape", "Up"}) {
        PressKeys(key);
        Settle();
    }
    EXPECT_EQ(Document().m_boxes.size(), 2U);
    EXPECT_TRUE(Desk().m_clipboardBoxes.empty());
    EXPECT_EQ(Document().zoomFactor, 1);
}

// A locked desk

class LockedDesk : public KeysTest {
  protected:
    // The menu bar: 'E' for an enabled title, '-' for a grey one.
    std::string MenuBar() {
        std::string bar;
        for (const QAction* title : Frame().menuBar()->actions()) bar += title->isEnabled() ? 'E' : '-';
        return bar;
    }
    bool SlidersEnabled() { return Frame().findChild<QSplitter*>()->widget(0)->isEnabled(); }
    void Lock() {
        PressKeys("Ctrl+L");
        Settle();
    }
    void ExpectAll(bool enabled) {
        EXPECT_EQ(Frame().Desk().isEnabled(), enabled);
        EXPECT_EQ(SlidersEnabled(), enabled);
        EXPECT_EQ(Frame().OperatorBar().isEnabled(), enabled);
        EXPECT_EQ(Window("Box Finder").isEnabled(), enabled);
        EXPECT_EQ(Window("Menu Finder").isEnabled(), enabled);
        for (const QWidget* control : Frame().OperatorBar().findChildren<QPushButton*>())
            EXPECT_EQ(control->isEnabled(), enabled) << Bytes(control->objectName());
        EXPECT_EQ(Frame().OperatorBar().findChild<QComboBox*>("shaderType")->isEnabled(), enabled);
        EXPECT_TRUE(Window("Log").isEnabled());
        EXPECT_TRUE(Window("Render Options").isEnabled());
        EXPECT_TRUE(Window("Argument Editor").isEnabled());
    }
    QString Status() { return Frame().StatusBox().Status(); }
};

// File, Edit, Find, View, Options, Render, Help, Constant, Paint, Patterns, Shapes.
TEST_F(LockedDesk, DisablesWhatChangesItAndEnablesItAgain) {
    Start();
    AddBoxes(1);
    Document().toolbar = {"Checks", "Disc"};
    Frame().OperatorBar().RebuildButtons(Document().toolbar);
    Settle();
    ExpectAll(true);
    EXPECT_EQ(MenuBar(), "EEEEEEEEEEE");
    Lock();
    ExpectAll(false);
    EXPECT_EQ(MenuBar(), "EEEEE-----E") << "from position 5 up to the last but one";
    EXPECT_EQ(Bytes(Status()), "The desk is locked.  Use Lock Desk under Options to unlock it.");
    Lock();
    ExpectAll(true);
    EXPECT_EQ(MenuBar(), "EEEEEEEEEEE");
    EXPECT_EQ(Bytes(Status()), "");
}

TEST_F(LockedDesk, IsUnlockedByTheMenuThatTheStatusBoxTells) {
    Start();
    Lock();
    test::ChooseInMenu(Frame(), "Options", Action(Id::kLockDesk));
    Settle();
    EXPECT_EQ(MenuBar(), "EEEEEEEEEEE");
}

TEST_F(LockedDesk, AGreyMenuDoesNotOpen) {
    Start();
    Lock();
    QMenuBar& bar = *Frame().menuBar();
    for (const char* title : {"Render", "Patterns"}) {
        QAction* item = Menu(title)->menuAction();
        QTest::mouseClick(&bar, Qt::LeftButton, {}, bar.actionGeometry(item).center());
        Settle();
        EXPECT_FALSE(Menu(title)->isVisible()) << title;
    }
}

TEST_F(LockedDesk, ComesWithADocumentThatIsLockedAndGoesWithOneThatIsNot) {
    Start();
    const std::string open = WriteDocument("open");
    Document().lock = 1;
    const std::string locked = directory.Write("locked.tvn", Document().Store());
    Document().lock = 0;
    ASSERT_TRUE(Frame().OpenDocumentFile(locked));
    Settle();
    ExpectAll(false);
    EXPECT_EQ(MenuBar(), "EEEEE-----E") << "the menus are those of the new document";
    ASSERT_TRUE(Frame().OpenDocumentFile(open));
    Settle();
    ExpectAll(true);
    EXPECT_EQ(MenuBar(), "EEEEEEEEEEE");
}

TEST_F(LockedDesk, OfASiteThatSaysSoIsThereFromTheStart) {
    directory.Write("tavrin/tiny/tavrn.def",
                    test::ReadFile(directory / "tavrin/tiny/tavrn.def") + "desk.lock 1\n");
    Start();
    ExpectAll(false);
    EXPECT_EQ(MenuBar(), "EEEEE-----E");
    EXPECT_FALSE(Document().IsModified());
}

TEST_F(LockedDesk, KeepsMergedBoxesUnderTheMouseUntilItIsUnlocked) {
    Start();
    Lock();
    const std::string path = WriteDocument("two", 2);
    test::ChooseFileWhenDialogComes(path);
    test::PressWhenBoxComes("OK");
    Do(Id::kMerge);
    Settle();
    DeskWidget& desk = Frame().Desk().Desk();
    QTest::mouseClick(Frame().windowHandle(), Qt::LeftButton, {}, desk.mapTo(&Frame(), desk.rect().center()));
    EXPECT_EQ(Desk().m_pendingBoxes.size(), 2U);
    EXPECT_TRUE(Document().m_boxes.empty());
    Lock();
    QTest::mouseMove(Frame().windowHandle(), desk.mapTo(&Frame(), desk.rect().center() + QPoint(5, 5)));
    QTest::mouseClick(Frame().windowHandle(), Qt::LeftButton, {}, desk.mapTo(&Frame(), desk.rect().center()));
    EXPECT_TRUE(Desk().m_pendingBoxes.empty());
    EXPECT_EQ(Document().m_boxes.size(), 2U);
}

}  // namespace
}  // namespace tavrin
