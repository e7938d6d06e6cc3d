// SPDX-License-Identifier: Apache-2.0
#include "ui/library/OperatorToolBar.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QAbstractItemView>
#include <QComboBox>
#include <QLocale>
#include <QMainWindow>
#include <QPushButton>

#include "ui/library/TestLibrary.h"
#include "ui/support/Windows.h"

namespace tavrin {
namespace {

using test::TestLibrary;
using testing::ElementsAre;
using testing::IsEmpty;

class OperatorToolBarTest : public testing::Test {
  protected:
    OperatorToolBarTest() {
        bar = new OperatorToolBar(
            &window, library.registry,
            {.shaderTypeChosen = [this](const std::string& t) { calls.push_back("type " + t); },
             .focusDesk = [this] { calls.emplace_back("focus"); },
             .render = [this] { calls.emplace_back("render"); },
             .customize = [this] { calls.emplace_back("customize"); },
             .addOperator = [this](uint32_t id) { Added(id); },
             .logLine = [this](const std::string& line) { log.push_back(line); },
             .showStatus = [this](const std::string& text) { status.push_back(text); }});
        window.addToolBar(bar);
        auto* desk = new QWidget(&window);
        desk->setFocusPolicy(Qt::StrongFocus);
        window.setCentralWidget(desk);
        desk->setFocus();
        window.resize(900, 120);
        test::ShowActive(window);
    }

    void Added(uint32_t id) {
        calls.push_back("add " + std::to_string(id));
        if (whenAdded) whenAdded();
    }
    QPushButton* Button(const char* role) { return bar->findChild<QPushButton*>(role); }
    QComboBox& TypeBox() { return *bar->findChild<QComboBox*>("shaderType"); }
    void TurnWheel() {
        const QPoint middle = TypeBox().rect().center();
        QWheelEvent turn(middle, TypeBox().mapToGlobal(middle), {}, {0, -120}, Qt::NoButton, Qt::NoModifier,
                         Qt::NoScrollPhase, false);
        QApplication::sendEvent(&TypeBox(), &turn);
    }
    QList<QPushButton*> Operators() { return bar->findChildren<QPushButton*>("operator"); }
    QStringList Captions() {
        QStringList captions;
        for (const QPushButton* button : Operators()) captions << button->text();
        return captions;
    }
    void Click(QWidget* control) { QTest::mouseClick(control, Qt::LeftButton); }
    std::string AddCall(const char* name) { return "add " + std::to_string(library.IdOf(name)); }

    TestLibrary library{"0100.Noise", "0200.Mix", "0300.Salt&Pepper", "0400.<b>Bold"};
    std::vector<std::string> calls;
    std::vector<std::string> log;
    std::vector<std::string> status;
    std::function<void()> whenAdded;
    QMainWindow window;
    OperatorToolBar* bar = nullptr;
};

TEST_F(OperatorToolBarTest, HasSixSlotsInOrderAndTheOperatorsBehind) {
    bar->RebuildButtons({"Mix", "Noise"});
    test::HandleEvents();
    ASSERT_EQ(bar->actions().size(), 8);
    const auto at = [&](int slot) { return bar->widgetForAction(bar->actions()[slot]); };
    EXPECT_EQ(at(0), &TypeBox());
    EXPECT_EQ(at(2), Button("render"));
    EXPECT_EQ(at(4), Button("customize"));
    EXPECT_EQ(Captions(), (QStringList{"Mix", "Noise"}));
    EXPECT_EQ(at(6), Operators()[0]);
    for (const int gap : {1, 3, 5}) EXPECT_EQ(at(gap)->width(), 6);
    for (int slot = 1; slot < 8; ++slot) EXPECT_GT(at(slot)->x(), at(slot - 1)->geometry().right());
    EXPECT_EQ(Button("render")->text(), "RENDER");
    EXPECT_EQ(Button("customize")->text(), "Customize...");
    EXPECT_GE(TypeBox().width(), 75);
    EXPECT_GE(Button("render")->width(), 100);
    EXPECT_GE(Button("customize")->width(), 100);
}

TEST_F(OperatorToolBarTest, AllControlsShareOneBoldFont) {
    bar->RebuildButtons({"Mix"});
    for (const QWidget* control :
         {static_cast<QWidget*>(&TypeBox()), static_cast<QWidget*>(Button("render")),
          static_cast<QWidget*>(Button("customize")), static_cast<QWidget*>(Operators()[0])}) {
        EXPECT_EQ(control->font().pixelSize(), 12);
        EXPECT_EQ(control->font().weight(), 700);
    }
    const QFont wide = OperatorToolBarFont(QLocale(QLocale::Japanese, QLocale::Japan));
    EXPECT_EQ(wide, QApplication::font());
}

TEST_F(OperatorToolBarTest, AWideTextMakesItsControlWider) {
    const QString longName(40, 'W');
    library.directory.Write("0500." + longName.toStdString(), "");
    library.Scan();
    bar->RebuildButtons({longName.toStdString()});
    bar->SetShaderTypes({longName.toStdString()});
    test::HandleEvents();
    const int width = QFontMetrics(TypeBox().font()).horizontalAdvance(longName);
    EXPECT_GT(Operators()[0]->minimumWidth(), width);
    EXPECT_GT(TypeBox().minimumWidth(), width);
}

TEST_F(OperatorToolBarTest, TheFixedButtonsCallAndLeaveTheFocus) {
    Click(Button("render"));
    Click(Button("customize"));
    EXPECT_THAT(calls, ElementsAre("render", "customize"));
    EXPECT_FALSE(Button("customize")->hasFocus());
}

// The shader type box

TEST_F(OperatorToolBarTest, TheShaderTypesAreSortedAndTheFirstIsSelectedWithoutACall) {
    bar->SetShaderTypes({"surface", "Light", "displacement", "light area"});
    QStringList rows;
    for (int row = 0; row < TypeBox().count(); ++row) rows << TypeBox().itemText(row);
    EXPECT_EQ(rows, (QStringList{"displacement", "Light", "light area", "surface"}));
    EXPECT_EQ(TypeBox().currentText(), "displacement");
    bar->SetShaderTypes({"volume"});
    EXPECT_EQ(TypeBox().count(), 4) << "it is filled once";
    EXPECT_THAT(calls, IsEmpty());
}

TEST_F(OperatorToolBarTest, ChoosingAShaderTypeIsTold) {
    bar->SetShaderTypes({"surface", "light"});
    Click(&TypeBox());
    QAbstractItemView& list = *TypeBox().view();
    ASSERT_TRUE(test::WaitUntil([&] { return list.isVisible(); }));
    QTest::keyClick(&list, Qt::Key_Down);
    QTest::keyClick(&list, Qt::Key_Return);
    EXPECT_THAT(calls, ElementsAre("type surface"));
    EXPECT_EQ(TypeBox().currentText(), "surface");
    QTest::keyClick(&TypeBox(), Qt::Key_Up);
    EXPECT_THAT(calls, ElementsAre("type surface", "type light"));
}

TEST_F(OperatorToolBarTest, TheWheelChangesTheShaderTypeOnlyWhereItHasTheFocus) {
    bar->SetShaderTypes({"light", "surface"});
    TurnWheel();
    EXPECT_EQ(TypeBox().currentText(), "light");
    Click(&TypeBox());
    ASSERT_TRUE(test::WaitUntil([&] { return TypeBox().view()->isVisible(); }));
    QTest::keyClick(TypeBox().view(), Qt::Key_Escape);
    ASSERT_TRUE(test::WaitUntil([&] { return !TypeBox().view()->isVisible(); }));
    TurnWheel();
    EXPECT_EQ(TypeBox().currentText(), "light") << "a click has given it the focus";
    EXPECT_THAT(calls, IsEmpty());
    TypeBox().setFocus();
    TurnWheel();
    EXPECT_EQ(TypeBox().currentText(), "surface");
    EXPECT_THAT(calls, ElementsAre("type surface")) << "who turns it there stays there";
}

TEST_F(OperatorToolBarTest, AChoiceWithTheMouseSendsTheFocusToTheDesk) {
    bar->SetShaderTypes({"light", "surface"});
    TypeBox().setFocus();
    Click(&TypeBox());
    QAbstractItemView& list = *TypeBox().view();
    ASSERT_TRUE(test::WaitUntil([&] { return list.isVisible(); }));
    const QPoint row = list.visualRect(list.model()->index(1, 0)).center();
    // A click that comes too soon after the first counts as its second half.
    QTest::mouseMove(list.viewport(), row);
    ASSERT_TRUE(test::WaitUntil([&] {
        if (list.isVisible()) QTest::mouseClick(list.viewport(), Qt::LeftButton, {}, row);
        return !calls.empty();
    }));
    EXPECT_THAT(calls, ElementsAre("type surface", "focus"));
    QTest::keyClick(&TypeBox(), Qt::Key_Up);
    EXPECT_THAT(calls, ElementsAre("type surface", "focus", "type light")) << "a key leaves it";
}

TEST_F(OperatorToolBarTest, OfTwoTypesThatDifferInCaseTheOneThatIsMeantStaysSelected) {
    bar->SetShaderTypes({"Metal", "metal"});
    TypeBox().setCurrentIndex(1);
    bar->ShowShaderType("metal");
    EXPECT_EQ(TypeBox().currentText(), "metal");
}

TEST_F(OperatorToolBarTest, ShowShaderTypeSelectsTheFirstRowThatBeginsSo) {
    bar->SetShaderTypes({"surface", "light area", "Light", "displacement"});
    bar->ShowShaderType("LIGHT");
    EXPECT_EQ(TypeBox().currentText(), "Light");
    bar->ShowShaderType("light a");
    EXPECT_EQ(TypeBox().currentText(), "light area");
    bar->ShowShaderType("l");
    EXPECT_EQ(TypeBox().currentText(), "Light") << "the whole list is searched";
    bar->ShowShaderType("volume");
    EXPECT_EQ(TypeBox().currentText(), "Light");
    bar->ShowShaderType("surfaces");
    EXPECT_EQ(TypeBox().currentText(), "Light");
    EXPECT_THAT(calls, IsEmpty());
}

// Operator buttons

TEST_F(OperatorToolBarTest, AnOperatorButtonAddsItsOperator) {
    bar->RebuildButtons({"NOISE", "Mix"});
    EXPECT_EQ(Captions(), (QStringList{"Noise", "Mix"})) << "the name is the library's";
    Click(Operators()[1]);
    Click(Operators()[0]);
    EXPECT_THAT(calls, ElementsAre(AddCall("Mix"), AddCall("Noise")));
}

TEST_F(OperatorToolBarTest, UnknownOperatorsAreLoggedAtEachRebuildAndSkipped) {
    bar->RebuildButtons({"Gone", "Mix", "%s"});
    bar->RebuildButtons({"Gone", "Mix"});
    EXPECT_EQ(Captions(), QStringList{"Mix"});
    EXPECT_THAT(log, ElementsAre("WARNING: operator Gone undefined", "WARNING: operator %s undefined",
                                 "WARNING: operator Gone undefined"));
}

TEST_F(OperatorToolBarTest, RebuildingReplacesTheOldButtons) {
    bar->RebuildButtons({"Mix", "Noise"});
    bar->RebuildButtons({"Noise"});
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_EQ(bar->actions().size(), 7);
    EXPECT_EQ(bar->findChildren<QPushButton*>().size(), 3);
    bar->RebuildButtons({});
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_EQ(bar->findChildren<QPushButton*>().size(), 2);
    EXPECT_EQ(bar->actions().size(), 6);
}

TEST_F(OperatorToolBarTest, AnOperatorMayRebuildTheButtonsWhileItsOwnIsPressed) {
    bar->RebuildButtons({"Mix"});
    whenAdded = [&] { bar->RebuildButtons({"Noise"}); };
    Click(Operators()[0]);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_EQ(Captions(), QStringList{"Noise"});
    test::HandleEvents();
    Click(Operators()[0]);
    EXPECT_THAT(calls, ElementsAre(AddCall("Mix"), AddCall("Noise")));
}

TEST_F(OperatorToolBarTest, ANameFromTheLibraryIsNeitherMnemonicNorMarkup) {
    bar->RebuildButtons({"Salt&Pepper", "<b>Bold"});
    EXPECT_EQ(Captions(), (QStringList{"Salt&&Pepper", "<b>Bold"}));
    EXPECT_EQ(Operators()[0]->toolTip(), "Add Salt&Pepper to the desk");
    EXPECT_EQ(Operators()[1]->toolTip(), "<qt>Add &lt;b&gt;Bold to the desk</qt>");
}

TEST_F(OperatorToolBarTest, ManyButtonsDoNotWidenTheMainWindow) {
    const int least = window.minimumSizeHint().width();
    window.resize(900, 600);
    test::HandleEvents();
    bar->RebuildButtons(std::vector<std::string>(60, "Mix"));
    test::HandleEvents();
    EXPECT_EQ(window.width(), 900);
    EXPECT_LE(window.minimumSizeHint().width(), std::max(least, 400));
    EXPECT_TRUE(Operators().front()->isVisible());
    EXPECT_FALSE(Operators().back()->isVisible());
    QWidget* extension = bar->findChild<QWidget*>("qt_toolbar_ext_button");
    ASSERT_NE(extension, nullptr);
    Click(extension);
    ASSERT_TRUE(test::WaitUntil([&] { return Operators().back()->isVisible(); }));
}

// The lock

TEST_F(OperatorToolBarTest, ALockedDeskDisablesTheBarAndSaysSo) {
    bar->RebuildButtons({"Mix"});
    bar->SetLocked(true);
    EXPECT_THAT(status, ElementsAre("The desk is locked.  Use Lock Desk under Options to unlock it."));
    EXPECT_FALSE(bar->isEnabled());
    for (QWidget* control : {static_cast<QWidget*>(&TypeBox()), static_cast<QWidget*>(Button("customize")),
                             static_cast<QWidget*>(Operators()[0])})
        EXPECT_FALSE(control->isEnabledTo(bar)) << control->objectName().toStdString();
    EXPECT_TRUE(Button("render")->isEnabledTo(bar)) << "its own state is not touched";
    Click(Operators()[0]);
    Click(Button("render"));
    EXPECT_THAT(calls, IsEmpty());
    bar->SetLocked(false);
    EXPECT_THAT(status, ElementsAre(testing::_, ""));
    for (const QWidget* control :
         {static_cast<QWidget*>(&TypeBox()), static_cast<QWidget*>(Button("customize")),
          static_cast<QWidget*>(Operators()[0]), static_cast<QWidget*>(bar)})
        EXPECT_TRUE(control->isEnabled());
    Click(Operators()[0]);
    EXPECT_THAT(calls, ElementsAre(AddCall("Mix")));
}

TEST_F(OperatorToolBarTest, TheSameLockAgainDoesNothing) {
    bar->SetLocked(false);
    EXPECT_THAT(status, IsEmpty());
    bar->SetLocked(true);
    bar->SetLocked(true);
    EXPECT_EQ(status.size(), 1U);
}

TEST_F(OperatorToolBarTest, ButtonsBuiltWhileLockedAreGreyUntilItIsUnlocked) {
    bar->SetLocked(true);
    bar->RebuildButtons({"Mix"});
    EXPECT_FALSE(Operators()[0]->isEnabledTo(bar));
    bar->SetLocked(false);
    EXPECT_TRUE(Operators()[0]->isEnabled());
}

TEST_F(OperatorToolBarTest, ADisabledRenderButtonStaysSoThroughTheLock) {
    bar->SetRenderEnabled(false);
    bar->SetLocked(true);
    bar->SetLocked(false);
    EXPECT_FALSE(Button("render")->isEnabled());
    bar->SetRenderEnabled(true);
    EXPECT_TRUE(Button("render")->isEnabled());
}

}  // namespace
}  // namespace tavrin
