// SPDX-License-Identifier: Apache-2.0
// The ways to operators and boxes in a frame: the operators' menus, the toolbar with its dialog, the finders.
#include <QAbstractItemView>
#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QLineEdit>
#include <QListView>
#include <QListWidget>
#include <QMenu>
#include <QMenuBar>
#include <QPushButton>
#include <QTest>
#include <filesystem>

#include "ui/base/Text.h"
#include "ui/desk/DeskPane.h"
#include "ui/library/BoxFinder.h"
#include "ui/library/CustomizeDialog.h"
#include "ui/library/MenuFinder.h"
#include "ui/library/OperatorToolBar.h"
#include "ui/library/TestLibrary.h"
#include "ui/support/Hands.h"
#include "ui/support/TestFrame.h"

namespace tavrin {
namespace {

namespace fs = std::filesystem;
using Id = CommandId;
using test::BoxesShown;
using test::ClickRow;
using test::DoubleClickRow;
using test::FrameTest;
using test::PressWhenBoxComes;
using test::RowsOf;
using test::WaitUntil;
using testing::ElementsAre;
using testing::HasSubstr;

constexpr const char* kForm =
    "roe {\nchooser {\nenvname TAVRN_SHADER_TYPE\nvalue surface\n"
    "choosercontents {\nvolume\nsurface\nlight\n}\n}\n}\next.shaderiface light .lif\n";

class OperatorWays : public FrameTest {
  protected:
    void AddToSite(const std::string& lines) {
        const std::string site = "tavrin/tiny/tavrn.def";
        directory.Write(site, test::ReadFile(directory / site) + lines);
    }
    OperatorToolBar& Bar() { return Frame().OperatorBar(); }
    QComboBox& TypeBox() { return *Bar().findChild<QComboBox*>("shaderType"); }
    QPushButton* BarButton(const QString& caption) {
        for (auto* button : Bar().findChildren<QPushButton*>()) {
            if (button->text() == caption && !button->objectName().isEmpty()) return button;
        }
        return nullptr;
    }
    void Click(QWidget* button) {
        ASSERT_NE(button, nullptr);
        QWidget* window = button->window();
        QTest::mouseClick(window->windowHandle(), Qt::LeftButton, {},
                          button->mapTo(window, button->rect().center()));
    }
    // The captions of the operators' buttons, from left to right.
    std::string OperatorButtons() {
        std::map<int, QString> captions;
        for (const auto* button : Bar().findChildren<QPushButton*>("operator"))
            captions[button->x()] = button->text();
        QStringList row;
        for (const auto& [x, caption] : captions) row << caption;
        return Bytes(row.join(' '));
    }
    // What waits under the mouse.
    std::vector<std::string> Pending() {
        std::vector<std::string> titles;
        for (const auto& box : Desk().m_pendingBoxes) titles.push_back(box->filename);
        return titles;
    }
    bool BoxesAre(int count) {
        return WaitUntil(
            [&] { return int(Document().m_boxes.size() + Desk().m_pendingBoxes.size()) == count; });
    }
    BoxFinder& Boxes() { return Frame().Windows().Get<BoxFinder>(); }
    MenuFinder& Operators() { return Frame().Windows().Get<MenuFinder>(); }
    QStringList FinderRows(const QWidget& finder) {
        Settle();
        return RowsOf(finder);
    }
    // A file of the library goes, and the registry is scanned anew behind the frame's back.
    void RemoveFromLibrary(const std::string& file) {
        fs::remove(directory / ("tavrin/tiny/menu/" + file));
        App().ReloadOperators();
    }
    void ExpectUnknown(uint32_t id) {
        EXPECT_TRUE(WaitUntil([] { return !BoxesShown().isEmpty(); }));
        EXPECT_EQ(Bytes(BoxesShown().join('|')),
                  "Alert: WARNING: no operator found for ID " + std::to_string(id));
        EXPECT_TRUE(Desk().m_pendingBoxes.empty());
    }
};

// The toolbar

TEST_F(OperatorWays, TheRenderButtonRenders) {
    Start();
    AddBoxes(1);
    Click(BarButton("RENDER"));
    EXPECT_TRUE(WaitUntil([&] { return Log().find("renderit done") != std::string::npos; }));
    EXPECT_EQ(Frame().Work().session.m_nextRender, 2);
}

TEST_F(OperatorWays, TheShaderTypeBoxHoldsTheTypesOfTheFormSorted) {
    AddToSite(kForm);
    Start();
    QStringList types;
    for (int row = 0; row < TypeBox().count(); ++row) types << TypeBox().itemText(row);
    EXPECT_EQ(types.join(' '), "light surface volume");
}

TEST_F(OperatorWays, AnOpenedDocumentShowsItsShaderType) {
    AddToSite(kForm);
    Start();
    Document().m_renderOptions["TAVRN_SHADER_TYPE"] = "volume";
    const std::string path = directory.Write("v.tvn", Document().Store());
    Do(Id::kNew);
    EXPECT_EQ(TypeBox().currentText(), "surface");
    ASSERT_TRUE(Frame().OpenDocumentFile(path));
    EXPECT_EQ(TypeBox().currentText(), "volume");
    EXPECT_THAT(Bytes(Frame().windowTitle()), HasSubstr("v.tvn [volume]"));
}

TEST_F(OperatorWays, AChosenShaderTypeIsTheVariableAndStandsInTheTitle) {
    AddToSite(kForm);
    Start();
    test::TabTo(TypeBox());
    while (TypeBox().currentIndex() > 0) test::PressKeys("Up");
    Settle();
    EXPECT_EQ(Document().m_renderOptions["TAVRN_SHADER_TYPE"], "light");
    EXPECT_THAT(Bytes(Frame().windowTitle()), HasSubstr("Untitled.tvn [light]"));
    EXPECT_EQ(App().GetSite().extShaderIface, ".lif");
    test::PressKeys("Down");
    EXPECT_EQ(Document().m_renderOptions["TAVRN_SHADER_TYPE"], "surface");
    EXPECT_THAT(Bytes(Frame().windowTitle()), HasSubstr("Untitled.tvn [surface]"));
}

TEST_F(OperatorWays, TheShaderTypeBoxFollowsEveryChangeOfTheType) {
    AddToSite(kForm);
    Start();
    const auto expect = [this](const char* type, const std::string& path) {
        EXPECT_EQ(Bytes(TypeBox().currentText()), type);
        EXPECT_THAT(Bytes(Frame().windowTitle()), HasSubstr(std::string("[") + type + "]"));
        EXPECT_EQ(Document().exportOptions.shaderIfacePath, path);
    };
    App().SetVariable("TAVRN_SHADER_TYPE", "light", true);
    expect("light", "./Untitled.lif");
    Frame().ActionDispatch().DoAction("roe", "use-defaults", "");
    expect("surface", "./Untitled.cus");
    App().SetVariable("TAVRN_SHADER_TYPE", "light", false);  // as a control of the form does
    expect("light", "./Untitled.lif");
    const std::string script = directory.Write("it.tvx", "roe use-defaults\n");
    EXPECT_TRUE(Frame().ActionDispatch().RunScriptFile(script));
    expect("surface", "./Untitled.cus");
    EXPECT_TRUE(Frame().isWindowModified());
}

TEST_F(OperatorWays, AShaderTypeChosenWithTheMouseLeavesTheFocusOnTheDesk) {
    AddToSite(kForm);
    Start();
    test::FocusOn(TypeBox());
    Click(&TypeBox());
    QAbstractItemView& list = *TypeBox().view();
    ASSERT_TRUE(WaitUntil([&] { return list.isVisible(); }));
    const QPoint row = list.visualRect(list.model()->index(0, 0)).center();
    QTest::mouseMove(list.viewport(), row);
    // A click that follows the first too soon counts as its second half.
    ASSERT_TRUE(WaitUntil([&] {
        if (list.isVisible()) QTest::mouseClick(list.viewport(), Qt::LeftButton, {}, row);
        return TypeBox().currentText() == "light";
    }));
    ASSERT_TRUE(WaitUntil([&] { return !list.isVisible(); }));
    EXPECT_TRUE(WaitUntil([&] { return QApplication::focusWidget() == &Frame().Desk(); }));
    AddBoxes(1);
    test::PressKeys("Down");
    EXPECT_EQ(TypeBox().currentText(), "light");
    EXPECT_LT(Document().zoomFactor, 1) << "the key is the desk's again";
}

TEST_F(OperatorWays, AButtonOfTheToolbarAddsItsOperator) {
    AddToSite("toolbutton 1=Checks\ntoolbutton 2=Disc\n");
    Start();
    EXPECT_EQ(OperatorButtons(), "Checks Disc");
    Click(BarButton("Disc"));
    EXPECT_THAT(Pending(), ElementsAre("Disc"));
    Click(BarButton("Checks"));
    EXPECT_THAT(Pending(), ElementsAre("Checks")) << "what waited is destroyed";
}

TEST_F(OperatorWays, AnOperatorThatTheLibraryLacksIsLoggedAtEachRebuild) {
    AddToSite("toolbutton 1=Checks\ntoolbutton 2=Gone\n");
    Start();
    EXPECT_EQ(OperatorButtons(), "Checks");
    EXPECT_THAT(Log(), HasSubstr("WARNING: operator Gone undefined"));
    Do(Id::kClearLog);
    Do(Id::kNew);
    EXPECT_THAT(Log(), HasSubstr("WARNING: operator Gone undefined"));
}

// Customize

TEST_F(OperatorWays, CustomizeChangesTheToolbarOfTheDocument) {
    AddToSite("toolbutton 1=Checks\ntoolbutton 2=Gone\ntoolbutton 3=Disc\n");
    Start();
    ASSERT_FALSE(Document().IsModified());
    test::WhenDialogComes([this](QDialog& dialog) {
        EXPECT_EQ(dialog.windowTitle(), "Customize Operator Toolbar");
        EXPECT_EQ(RowsOf(dialog), (QStringList{"Checks", "Disc", ""}));
        ClickRow(dialog, "Disc");
        Click(dialog.findChild<QPushButton*>("raise"));
        EXPECT_EQ(RowsOf(dialog), (QStringList{"Disc", "Checks", ""}));
        Click(dialog.findChild<QPushButton*>("add"));
        QMenu& menu = *dialog.findChild<QMenu*>("operators");
        EXPECT_TRUE(WaitUntil([&] { return menu.isVisible(); }));
        // The library's top: Constant, Paint, Patterns, Shapes.
        QTest::mouseClick(&menu, Qt::LeftButton, {}, menu.actionGeometry(menu.actions()[1]).center());
        EXPECT_EQ(RowsOf(dialog), (QStringList{"Paint", "Disc", "Checks", ""}));
        Click(dialog.findChild<QPushButton*>("ok"));
    });
    Click(BarButton("Customize..."));
    Settle();
    EXPECT_THAT(Document().toolbar, ElementsAre("Paint", "Disc", "Checks"));
    EXPECT_EQ(OperatorButtons(), "Paint Disc Checks");
    EXPECT_TRUE(Document().IsModified());
    EXPECT_TRUE(Frame().isWindowModified());
    EXPECT_TRUE(Action(Id::kSave).isEnabled());
    Click(BarButton("Paint"));
    EXPECT_THAT(Pending(), ElementsAre("Paint"));
}

TEST_F(OperatorWays, ACancelledCustomizeLeavesTheDocumentAlone) {
    AddToSite("toolbutton 1=Checks\ntoolbutton 2=Gone\n");
    Start();
    test::WhenDialogComes([this](QDialog& dialog) {
        ClickRow(dialog, "Checks");
        Click(dialog.findChild<QPushButton*>("delete"));
        Click(dialog.findChild<QPushButton*>("cancel"));
    });
    Click(BarButton("Customize..."));
    Settle();
    EXPECT_THAT(Document().toolbar, ElementsAre("Checks", "Gone"));
    EXPECT_EQ(OperatorButtons(), "Checks");
    EXPECT_FALSE(Document().IsModified());
}

// Menus

TEST_F(OperatorWays, AnItemOfAnOperatorMenuAddsItsOperator) {
    Start();
    QMenuBar& bar = *Frame().menuBar();
    QMenu& menu = *Menu("Patterns");
    QTest::mouseClick(&bar, Qt::LeftButton, {}, bar.actionGeometry(menu.menuAction()).center());
    ASSERT_TRUE(WaitUntil([&] { return menu.isVisible(); }));
    ASSERT_EQ(MenuTexts(&menu).join('|'), "Checks");
    QTest::mouseClick(&menu, Qt::LeftButton, {}, menu.actionGeometry(menu.actions()[0]).center());
    EXPECT_THAT(Pending(), ElementsAre("Checks"));
}

TEST_F(OperatorWays, WhatWasAddedFollowsTheMouseAndIsDroppedByAPress) {
    AddToSite("toolbutton 1=Disc\n");
    Start();
    Click(BarButton("Disc"));
    DeskWidget& desk = Frame().Desk().Desk();
    const QPoint place = desk.mapTo(&Frame(), desk.rect().center());
    QTest::mouseMove(Frame().windowHandle(), place - QPoint(9, 9));
    QTest::mouseMove(Frame().windowHandle(), place);
    QTest::mouseClick(Frame().windowHandle(), Qt::LeftButton, {}, place);
    EXPECT_TRUE(Desk().m_pendingBoxes.empty());
    ASSERT_EQ(Document().m_boxes.size(), 1U);
    Settle();
    EXPECT_EQ(FinderRows(Boxes()), QStringList{Shown(Document().m_boxes.front()->BoxTitleWid())});
    EXPECT_TRUE(Document().IsModified());
}

// Finders

TEST_F(OperatorWays, TheMenuFinderListsTheLibraryUnderHeadings) {
    Start();
    EXPECT_EQ(FinderRows(Operators()),
              (QStringList{"------------ C -------------------------------", "Checks", "Constant",
                           "------------ D -------------------------------", "Disc",
                           "------------ P -------------------------------", "Paint"}));
}

TEST_F(OperatorWays, ADoubleClickInTheMenuFinderAddsTheOperator) {
    Start();
    Do(Id::kMenuFinder);
    test::ShowUp(Operators());
    DoubleClickRow(Operators(), "Disc");
    EXPECT_TRUE(BoxesAre(1));
    EXPECT_THAT(Pending(), ElementsAre("Disc"));
    DoubleClickRow(Operators(), "------------ P -------------------------------");
    Settle();
    EXPECT_THAT(Pending(), ElementsAre("Disc")) << "a heading is no operator";
}

TEST_F(OperatorWays, EnterInTheMenuFinderAddsTheOperator) {
    Start();
    Do(Id::kMenuFinder);
    test::FocusOn(test::ListOf(Operators()));
    ClickRow(Operators(), "Paint");
    test::PressKeys("Return");
    EXPECT_TRUE(BoxesAre(1));
    EXPECT_THAT(Pending(), ElementsAre("Paint"));
}

// Where the library wants it.
TEST_F(OperatorWays, TheMenuFinderHasTheKeysAsSoonAsItsKeyBringsItUp) {
    AddToSite("finders.takekeys 1\n");
    Start();
    test::GiveFocus(Frame().Desk());
    test::PressKeys("Ctrl+M");
    ASSERT_TRUE(WaitUntil([&] { return test::HasFocus(test::ListOf(Operators())); }));
    test::PressKeys("D");
    EXPECT_EQ(test::SelectedIn(Operators()), "Disc");
    test::PressKeys("Down");
    test::PressKeys("Down");
    EXPECT_EQ(test::SelectedIn(Operators()), "Paint") << "the arrows belong to the list";
    test::PressKeys("Return");
    EXPECT_TRUE(BoxesAre(1));
    EXPECT_THAT(Pending(), ElementsAre("Paint"));
}

TEST_F(OperatorWays, TheBoxFinderHasTheKeysAsSoonAsItsKeyBringsItUp) {
    AddToSite("finders.takekeys 1\n");
    Start();
    AddBoxes(2);
    test::GiveFocus(Frame().Desk());
    test::PressKeys("Ctrl+B");
    ASSERT_TRUE(WaitUntil([&] { return test::HasFocus(test::ListOf(Boxes())); }));
    test::PressKeys("C");
    test::PressKeys("Down");
    test::PressKeys("Return");
    EXPECT_EQ(Boxes().CurrentName(), "Constant_2");
}

TEST_F(OperatorWays, ALibraryThatSaysNothingLeavesTheKeysWithTheDesk) {
    Start();
    test::GiveFocus(Frame().Desk());
    test::PressKeys("Ctrl+M");
    test::ShowUp(Operators());
    Settle();
    EXPECT_TRUE(test::HasFocus(Frame().Desk()));
}

TEST_F(OperatorWays, TheBoxFinderFollowsTheBoxesOnTheDesk) {
    Start();
    AddBoxes(2, "Paint");
    AddBoxes(1, "Checks");
    EXPECT_EQ(FinderRows(Boxes()).join(' '), "Checks_3 Paint_1 Paint_2");
    Desk().UnselectAllBoxes();
    Document().m_boxes.front()->selected = 1;
    Do(Id::kDelete);
    EXPECT_EQ(FinderRows(Boxes()).size(), 2);
    Document().SetModified(false);
    Do(Id::kNew);
    EXPECT_EQ(FinderRows(Boxes()).size(), 0);
}

TEST_F(OperatorWays, ADoubleClickInTheBoxFinderCentresOnTheBoxAndHighlightsIt) {
    Start();
    AddBoxes(2);
    Desk().UnselectAllBoxes();
    COpBox& box = *Document().m_boxes.front();
    Desk().MoveBox(box, 3000, 2000);
    Do(Id::kBoxFinder);
    test::ShowUp(Boxes());
    Settle();
    DoubleClickRow(Boxes(), Shown(box.BoxTitleWid()));
    Settle();
    EXPECT_EQ(Boxes().CurrentName(), box.BoxTitleWid());
    const DeskPane& pane = Frame().Desk();
    const WindowPoint middle = pane.View().ToWindow(BoxRect(box).Middle());
    const QSize size = Frame().Desk().Desk().size();
    EXPECT_NEAR(middle.x, float(size.width()) / 2, 1);
    EXPECT_NEAR(middle.y, float(size.height()) / 2, 1);

    // Closed, the finder lets go of the box: it paints as it did before.
    const QImage highlighted = Frame().Desk().Desk().grabFramebuffer();
    Boxes().close();
    EXPECT_EQ(Boxes().CurrentName(), "");
    Settle();
    const QImage plain = Frame().Desk().Desk().grabFramebuffer();
    EXPECT_NE(highlighted, plain);
    const QRgb inHighlighted = highlighted.pixel(int(middle.x), int(middle.y) + 12);
    EXPECT_EQ(inHighlighted & RGB_MASK, qRgb(255, 255, 255) & RGB_MASK) << "the panel of the box is white";
}

// Commands of operators that are gone

TEST_F(OperatorWays, AButtonOfAnOperatorThatIsGoneAlerts) {
    AddToSite("toolbutton 1=Disc\n");
    Start();
    const uint32_t id = App().Registry().FindByName("Disc")->id;
    QPushButton* button = BarButton("Disc");
    RemoveFromLibrary("0400.Shapes/0010.Disc");
    PressWhenBoxComes("OK");
    Click(button);
    ExpectUnknown(id);
    Do(Id::kNew);  // the menus follow the registry
}

TEST_F(OperatorWays, AnOperatorThatGoesBetweenTheDoubleClickAndItsCommandAlerts) {
    Start();
    Do(Id::kMenuFinder);
    test::ShowUp(Operators());
    const uint32_t id = App().Registry().FindByName("Disc")->id;
    PressWhenBoxComes("OK");
    ClickRow(Operators(), "Disc");
    // The list posts the command; the library changes before that is done.
    QTest::keyPress(&test::ListOf(Operators()), Qt::Key_Return);
    RemoveFromLibrary("0400.Shapes/0010.Disc");
    ExpectUnknown(id);
    Do(Id::kNew);
}

TEST_F(OperatorWays, ADocumentOfAnotherLibraryBringsItsMenus) {
    Start();
    directory.Write("tavrin/tiny/menu/0500.More/0010.Extra",
                    test::ReadFile(directory / "tavrin/tiny/menu/0100.Constant"));
    App().ReloadOperators();
    Do(Id::kNew);
    Settle();
    QStringList titles;
    for (const QAction* item : Frame().menuBar()->actions().mid(7)) titles << item->text();
    EXPECT_EQ(titles.join(' '), "Constant Paint Patterns Shapes More");
    EXPECT_TRUE(FinderRows(Operators()).contains("Extra"));
}

}  // namespace
}  // namespace tavrin
