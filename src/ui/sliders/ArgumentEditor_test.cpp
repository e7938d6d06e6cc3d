// SPDX-License-Identifier: Apache-2.0
#include "ui/sliders/ArgumentEditor.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QApplication>
#include <QLabel>
#include <QPointer>

#include "ui/sliders/ArgumentTest.h"
#include "ui/support/Hands.h"

namespace tavrin {
namespace {

using test::BoxAt;
using testing::ElementsAre;

class ArgumentEditor : public test::ArgumentTest {
  protected:
    const QLabel& Nothing() { return *editor.findChild<QLabel*>(); }
    // All row windows that there are, those that wait for another row among them.
    qsizetype MadeWindows() { return editor.findChildren<QCheckBox*>().size(); }
};

TEST_F(ArgumentEditor, ListsTheFreeInputsOfAllBoxesByTheirNames) {
    COpBox& second = AddBox("B", 2, 2);
    COpBox& first = AddBox("a", 1, 2);
    Connect(first, *second.inputs[0]);
    second.inputs[1]->fixedtext = "P";
    first.selected = 0;
    second.selected = 1;
    ShowRows(8);
    EXPECT_EQ(editor.windowTitle(), "Argument Editor [F5]");
    EXPECT_EQ(Captions(), (QStringList{"a_1_i0", "a_1_i1", "B_2_i1"}));
    ExpectInStep();
    EXPECT_FALSE(Nothing().isVisible());
}

TEST_F(ArgumentEditor, InstancesOfAVinputHaveRowsOfTheirOwn) {
    {
        const EditScope edit(document, "Add");
        document.edits.BoxDropped(Add(test::MakeBox(
            "L", "vinput layer { vinstances 2 float { 0 0 1 0 %g } } output o { float out }", 7)));
    }
    ShowRows(8);
    EXPECT_EQ(Captions(), (QStringList{"L_7_layer1", "L_7_layer2"}));
}

TEST_F(ArgumentEditor, WithoutRowsItSaysSoAndItsScrollBarIsEmptyAndInert) {
    test::ShowActive(editor);
    EXPECT_TRUE(editor.RowWindows().empty());
    EXPECT_TRUE(Nothing().isVisible());
    EXPECT_EQ(Nothing().text(), "No free inputs");
    EXPECT_TRUE(Bar().isVisible());
    EXPECT_EQ(Bar().minimum(), 0);
    EXPECT_EQ(Bar().maximum(), 0);
    TurnWheel(editor, 3);
    editor.SetScrollTop(100);
    QTest::keyClick(&editor, Qt::Key_Tab);
    EXPECT_EQ(editor.Rows().ScrollTop(), 0);
    COpBox& box = AddBox("a", 1, 1);
    EXPECT_FALSE(Nothing().isVisible());
    RemoveBox(box);
    EXPECT_TRUE(Nothing().isVisible());
    EXPECT_TRUE(editor.RowWindows().empty());
}

TEST_F(ArgumentEditor, AWireTakesTheRowAndItComesBackWithWhatItHad) {
    COpBox& from = AddBox("a", 1, 0);
    COpBox& to = AddBox("b", 2, 3);
    COpButton& middle = *to.inputs[1];
    SetArg(middle, 1);
    Tune(middle, [](COpButton& button) {
        button.argname = "Ka";
        button.comments = "how much";
    });
    ShowRows(8);
    Connect(from, middle);
    EXPECT_EQ(Captions(), (QStringList{"b_2_i0", "b_2_i2"}));
    ExpectInStep();
    Cut(middle);
    EXPECT_EQ(Captions(), (QStringList{"b_2_i0", "b_2_i1", "b_2_i2"}));
    EXPECT_TRUE(Flag(1).isChecked());
    EXPECT_EQ(Name(1).text(), "Ka");
    EXPECT_EQ(Comment(1).text(), "how much");
    ExpectInStep();
}

TEST_F(ArgumentEditor, ABoxThatGoesTakesExactlyItsRows) {
    AddBox("a", 1, 2);
    COpBox& middle = AddBox("b", 2, 2);
    AddBox("c", 3, 2);
    ShowRows(8);
    const QPointer<CArgumentRow> first = &RowAt(1);
    const QPointer<CArgumentRow> last = &RowAt(4);
    RemoveBox(middle);
    EXPECT_EQ(Captions(), (QStringList{"a_1_i0", "a_1_i1", "c_3_i0", "c_3_i1"}));
    EXPECT_EQ(&RowAt(1), first) << "rows that stay keep their windows";
    EXPECT_EQ(&RowAt(2), last);
    ExpectInStep();
}

TEST_F(ArgumentEditor, ABoxOfAnotherNumberHasRowsOfAnotherName) {
    COpBox& box = AddBox("a", 1, 1);
    SetArg(*box.inputs[0], 1);
    ShowRows(4);
    {
        const EditScope edit(document, "Number");
        document.edits.BoxTouched(box);
        box.wid = 12;
    }
    EXPECT_EQ(Captions(), QStringList{"a_12_i0"});
    EXPECT_EQ(Name(0).placeholderText(), "a_12_i0") << "what an argument without a name is called";
}

TEST_F(ArgumentEditor, AChangeOfOneButtonElsewhereRefreshesItsRowAndNothingElse) {
    COpBox& box = AddBox("a", 1, 6);
    ShowRows(8);
    const int before = editor.Refreshes();
    SetArg(*box.inputs[2], 1);
    EXPECT_EQ(editor.Refreshes(), before + 1);
    Tune(*box.inputs[2], [](COpButton& button) { button.comments = "much"; });
    EXPECT_EQ(editor.Refreshes(), before + 2);
    EXPECT_EQ(Comment(2).text(), "much");
    ExpectInStep();
}

TEST_F(ArgumentEditor, SelectionsAndSwitchesOfTheDeskCostNothing) {
    COpBox& box = AddBox("a", 1, 6);
    ShowRows(8);
    const int before = editor.Refreshes();
    box.selected = 1;
    document.edits.SelectionChanged();
    {
        const EditScope edit(document, "Show Varnames");
        document.edits.SettingsChanged();
        document.showvarnames = 1;
    }
    EXPECT_EQ(editor.Refreshes(), before);
    ExpectInStep();
}

TEST_F(ArgumentEditor, HiddenItDoesNothingAndComingUpItShowsWhatIs) {
    COpBox& box = AddBox("a", 1, 4);
    EXPECT_EQ(MadeWindows(), 0);
    ShowRows(8);
    EXPECT_GT(MadeWindows(), 0);
    editor.hide();
    const int before = editor.Refreshes();
    SetArg(*box.inputs[1], 1);
    AddBox("b", 2, 1);
    EXPECT_EQ(editor.Refreshes(), before);
    EXPECT_EQ(editor.Rows().Count(), 4U);
    RemoveBox(box);
    test::ShowActive(editor);
    EXPECT_EQ(Captions(), QStringList{"b_2_i0"});
    ExpectInStep();
}

TEST_F(ArgumentEditor, OnlyRowsInViewHaveWindows) {
    for (int wid = 1; wid <= 50; ++wid) AddBox("a", wid, 10);
    ShowRows(6);
    EXPECT_EQ(editor.Rows().Count(), 500U);
    EXPECT_EQ(editor.RowWindows().size(), 7U);
    for (int top = 0; top < Bar().maximum(); top += 37) {
        Bar().setValue(top);
        ASSERT_LE(editor.RowWindows().size(), 10U)
            << "a row at either end, one beside each, the one with the focus";
    }
    ExpectInStep();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_LE(MadeWindows(), 10 + 4) << "a few wait for the next rows";
}

TEST_F(ArgumentEditor, ALineOfTheBarIsARowAndAPageWhatIsSeen) {
    AddBox("a", 1, 30);
    ShowRows(6);
    const int row = editor.Rows().RowHeight();
    EXPECT_EQ(Bar().singleStep(), row);
    EXPECT_EQ(Bar().pageStep(), 6 * row);
    Bar().triggerAction(QAbstractSlider::SliderSingleStepAdd);
    EXPECT_EQ(editor.Rows().ScrollTop(), row);
    Bar().triggerAction(QAbstractSlider::SliderPageStepAdd);
    EXPECT_EQ(editor.Rows().ScrollTop(), 7 * row);
    Bar().triggerAction(QAbstractSlider::SliderPageStepSub);
    EXPECT_EQ(editor.Rows().ScrollTop(), row);
    Bar().triggerAction(QAbstractSlider::SliderToMaximum);
    EXPECT_EQ(RowAt(29).geometry().bottom(), Client().rect().bottom());
    Bar().setSliderPosition(row / 2);
    EXPECT_EQ(RowAt(0).y(), -(row / 2));
    ExpectInStep();
}

TEST_F(ArgumentEditor, TheWheelScrollsOverEveryControl) {
    AddBox("a", 1, 30);
    ShowRows(6);
    SetArg(*RowAt(1).Button(), 1);
    for (QWidget* over :
         std::initializer_list<QWidget*>{&Flag(1), &Name(1), &Comment(1), &RowAt(1), &editor}) {
        const int before = editor.Rows().ScrollTop();
        TurnWheel(*over, 1);
        EXPECT_GT(editor.Rows().ScrollTop(), before);
        TurnWheel(*over, -1);
        EXPECT_EQ(editor.Rows().ScrollTop(), before);
    }
    EXPECT_TRUE(RowAt(1).Button()->argname.empty());
}

TEST_F(ArgumentEditor, AWindowThatGrowsTakesTheOffsetBackAndALowOneReachesTheBottomRow) {
    AddBox("a", 1, 12);
    ShowRows(4);
    Bar().setValue(Bar().maximum());
    const int row = editor.Rows().RowHeight();
    EXPECT_EQ(editor.Rows().ScrollTop(), 8 * row);
    ShowRows(9);
    EXPECT_EQ(editor.Rows().ScrollTop(), 3 * row);
    ExpectInStep();
    ShowRows(1);
    Bar().setValue(Bar().maximum());
    EXPECT_EQ(RowAt(11).y(), 0);
    ShowRows(15);
    EXPECT_EQ(editor.Rows().ScrollTop(), 0);
    EXPECT_EQ(Bar().maximum(), 0);
    EXPECT_TRUE(Bar().isVisible());
    ExpectInStep();
}

TEST_F(ArgumentEditor, ColumnsAreAlignedAndTheCommentTakesTheRest) {
    AddBox("a", 1, 6);
    ShowRows(4);
    for (const int width : {300, 480, 700, 1800}) {
        editor.resize(width, editor.height());
        ASSERT_TRUE(test::WaitUntil([&] { return editor.width() == width; }));
        for (const auto& [row, window] : editor.RowWindows()) {
            EXPECT_EQ(window->width(), Client().width());
            EXPECT_EQ(Comment(row).geometry().right(), window->rect().right()) << "at width " << width;
            EXPECT_EQ(Comment(row).x(), Comment(0).x());
            EXPECT_EQ(Name(row).geometry(), Name(0).geometry());
            EXPECT_LT(Flag(row).geometry().right(), Name(row).x());
            EXPECT_LT(Name(row).geometry().right(), Comment(row).x());
            EXPECT_GT(Flag(row).width(), 60);
            EXPECT_GT(Name(row).width(), 50);
            EXPECT_GT(Comment(row).width(), 50);
        }
    }
    const int name = Name(0).width();
    const int comment = Comment(0).width();
    editor.resize(1850, editor.height());
    ASSERT_TRUE(test::WaitUntil([&] { return editor.width() == 1850; }));
    EXPECT_EQ(Name(0).width(), name);
    EXPECT_EQ(Comment(0).width(), comment + 50);
}

TEST_F(ArgumentEditor, AnotherFontMakesRowsOfAnotherHeight) {
    AddBox("a", 1, 6);
    ShowRows(4);
    const int before = editor.Rows().RowHeight();
    QFont font = editor.font();
    font.setPointSize(3 * font.pointSize());
    editor.setFont(font);
    EXPECT_GT(editor.Rows().RowHeight(), before);
    EXPECT_GE(Name(0).height(), Name(0).sizeHint().height());
    ExpectInStep();
}

TEST_F(ArgumentEditor, ALockedDeskLeavesItToTheUser) {
    COpBox& box = AddBox("a", 1, 1);
    ShowRows(4);
    editor.SetLocked(true);
    ClickFlag(0);
    EXPECT_EQ(box.inputs[0]->arg, 1);
}

// The keys

TEST_F(ArgumentEditor, TabGoesThroughFlagNameAndCommentToTheNextRow) {
    COpBox& box = AddBox("a", 1, 3);
    SetArg(*box.inputs[1], 1);
    ShowRows(4);
    test::GiveFocus(Flag(0));
    std::vector<QWidget*> way;
    for (int press = 0; press < 5; ++press) {
        test::PressKeys("Tab");
        way.push_back(&test::FocusWidget());
    }
    EXPECT_THAT(way, ElementsAre(&Flag(1), &Name(1), &Comment(1), &Flag(2), &Flag(0)));
    test::PressKeys("Shift+Tab");
    EXPECT_TRUE(test::HasFocus(Flag(2)));
    test::PressKeys("Shift+Tab");
    EXPECT_TRUE(test::HasFocus(Comment(1)));
}

TEST_F(ArgumentEditor, TabPastTheLastRowInViewScrolls) {
    COpBox& box = AddBox("a", 1, 20);
    ShowRows(4);
    test::GiveFocus(Flag(0));
    for (size_t row = 1; row < 20; ++row) {
        test::PressKeys("Tab");
        ASSERT_TRUE(test::HasFocus(Flag(row)));
        ASSERT_GE(RowAt(row).y(), 0);
        ASSERT_LE(RowAt(row).geometry().bottom(), Client().rect().bottom());
    }
    test::PressKeys("Tab");
    EXPECT_TRUE(test::HasFocus(Flag(0)));
    EXPECT_EQ(editor.Rows().ScrollTop(), 0);
    test::PressKeys("Shift+Tab");
    EXPECT_TRUE(test::HasFocus(Flag(19)));
    EXPECT_EQ(RowAt(19).Button(), box.inputs[19].get());
    ExpectInStep();
}

TEST_F(ArgumentEditor, WhatIsTypedIntoARowOutOfViewBringsItBack) {
    COpBox& box = AddBox("a", 1, 40);
    SetArg(*box.inputs[2], 1);
    ShowRows(4);
    test::GiveFocus(Name(2));
    test::PressKeys("k");
    Bar().setValue(Bar().maximum());
    EXPECT_TRUE(test::HasFocus(Name(2))) << "scrolling takes the focus from nobody";
    EXPECT_LT(RowAt(2).geometry().bottom(), 0);
    ExpectInStep();
    test::PressKeys("a");
    EXPECT_EQ(box.inputs[2]->argname, "ka");
    EXPECT_EQ(RowAt(2).y(), 0);
    ExpectInStep();
}

TEST_F(ArgumentEditor, ArrowsGoDownAndUpTheColumnAndPageKeysScroll) {
    COpBox& box = AddBox("a", 1, 20);
    SetArg(*box.inputs[1], 1);
    SetArg(*box.inputs[9], 1);
    ShowRows(4);
    test::GiveFocus(Name(1));
    test::PressKeys("Down");
    EXPECT_TRUE(test::HasFocus(Name(9)));
    EXPECT_EQ(RowAt(9).geometry().bottom(), Client().rect().bottom());
    test::PressKeys("Down");
    EXPECT_TRUE(test::HasFocus(Name(9)));
    test::PressKeys("Up");
    EXPECT_TRUE(test::HasFocus(Name(1)));
    const int before = editor.Rows().ScrollTop();
    test::PressKeys("PgDown");
    EXPECT_EQ(editor.Rows().ScrollTop(), before + 4 * editor.Rows().RowHeight());
    test::PressKeys("PgUp");
    EXPECT_EQ(editor.Rows().ScrollTop(), before);
    EXPECT_TRUE(test::HasFocus(Name(1)));
    ExpectInStep();
}

// What happens around a row that is typed in

class ArgumentTyping : public ArgumentEditor {
  protected:
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(ArgumentEditor::SetUp());
        AddBox("a", 1, 2);
        typed = &AddBox("m", 2, 2);
        AddBox("z", 3, 2);
        SetArg(Input(), 1);
        ShowRows(8);
        test::GiveFocus(Name(2));
        for (const char* key : {"o", "n", "e"}) test::PressKeys(key);
        test::PressKeys("Left");
    }
    COpButton& Input() { return *typed->inputs[0]; }
    void ExpectTypingGoesOn() {
        CArgumentRow* row = RowOf(Input());
        ASSERT_NE(row, nullptr);
        auto& name = static_cast<OneLineField&>(row->Control(Field::kName));
        EXPECT_TRUE(test::HasFocus(name));
        EXPECT_EQ(name.cursorPosition(), 2);
        test::PressKeys("x");
        EXPECT_EQ(Input().argname, "onxe");
        ExpectInStep();
    }
    COpBox* typed = nullptr;
};

TEST_F(ArgumentTyping, AWireMadeElsewhereLeavesCaretAndText) {
    Connect(BoxAt(document, 2), *BoxAt(document, 0).inputs[1]);
    EXPECT_EQ(RowOf(Input()), &RowAt(1)) << "one row less above it";
    ExpectTypingGoesOn();
}

TEST_F(ArgumentTyping, BoxesThatComeAndGoLeaveCaretAndText) {
    for (int wid = 10; wid < 40; ++wid) AddBox("b", wid, 3);
    EXPECT_EQ(RowOf(Input()), &RowAt(92)) << "far out of view";
    RemoveBox(BoxAt(document, 0));
    ExpectTypingGoesOn();
}

TEST_F(ArgumentTyping, ChangesOfOtherRowsAndOfItsOwnCommentLeaveCaretAndText) {
    SetArg(*BoxAt(document, 0).inputs[0], 1);
    Tune(Input(), [](COpButton& button) { button.comments = "said elsewhere"; });
    EXPECT_EQ(Comment(2).text(), "said elsewhere");
    ExpectTypingGoesOn();
}

TEST_F(ArgumentTyping, EachKeyIsAnEditThatCanBeUndoneInTheField) {
    EXPECT_EQ(Input().argname, "one");
    test::PressKeys("Ctrl+Z");
    EXPECT_NE(Input().argname, "one");
    EXPECT_EQ(Bytes(Name(2).text()), Input().argname);
}

TEST_F(ArgumentTyping, AnInputThatIsNoArgumentAnyMoreGivesTheFocusToItsFlag) {
    SetArg(Input(), 0);
    EXPECT_TRUE(test::HasFocus(Flag(2)));
    EXPECT_EQ(Input().argname, "one");
    ExpectInStep();
}

TEST_F(ArgumentTyping, ABoxThatGoesIsWrittenToNoMore) {
    const QPointer<QWidget> field = &Name(2);
    document.SetModified(false);
    int changes = 0;
    const auto counter = document.edits.Observe([&](const Change&) { ++changes; });
    RemoveBox(*typed);
    EXPECT_EQ(changes, 1) << "nothing but its removal";
    ASSERT_NE(field, nullptr);
    EXPECT_FALSE(field->hasFocus());
    EXPECT_FALSE(field->isVisible());
    for (const auto& [row, window] : editor.RowWindows()) {
        EXPECT_EQ(window->Button()->argname, "") << "the focus leaves no text anywhere";
    }
    ExpectInStep();
    test::PressKeys("Tab");
    EXPECT_TRUE(test::HasFocus(Flag(0)));
}

TEST_F(ArgumentTyping, AWireIntoItsOwnInputEndsIt) {
    COpButton& input = Input();
    Connect(BoxAt(document, 0), input);
    EXPECT_EQ(RowOf(input), nullptr);
    EXPECT_EQ(input.argname, "one");
    ExpectInStep();
    Cut(input);
    EXPECT_EQ(Name(2).text(), "one");
    ExpectInStep();
}

TEST_F(ArgumentTyping, AButtonThatHasGoneBeforeAnybodyIsToldIsNotWritten) {
    const EditScope edit(document, "Remove");
    document.edits.BoxWent(*typed, Edits::Stood::kInNetwork);
    document.m_boxes.remove_if([this](const auto& known) { return known.get() == typed; });
    test::PressKeys("X");  // the act goes on
    ClickFlag(2);
    EXPECT_EQ(editor.RowWindows().at(2)->Button(), nullptr);
}

TEST_F(ArgumentTyping, ADocumentThatComesMeanwhileStartsAtTheTopWithItsOwnRows) {
    for (int wid = 10; wid < 40; ++wid) AddBox("b", wid, 3);
    Bar().setValue(Bar().maximum());
    const auto atEmptying = document.beforeDelete.Add([this] {
        EXPECT_EQ(editor.Rows().Count(), 0U);
        EXPECT_TRUE(editor.RowWindows().empty()) << "all buttons are let go before they are destroyed";
    });
    document.DeleteContents();
    test::PressKeys("X");
    EXPECT_FALSE(document.IsModified());
    for (int wid = 1; wid <= 20; ++wid) Add(test::MakeLink("n", wid));
    document.edits.Replaced();
    EXPECT_EQ(editor.Rows().ScrollTop(), 0);
    EXPECT_EQ(Captions().value(0), "n_1_in");
    test::PressKeys("X");
    EXPECT_FALSE(document.IsModified());
    ExpectInStep();
}

TEST_F(ArgumentTyping, AHiddenEditorForgetsADocumentTooAndStartsTheNextAtTheTop) {
    for (int wid = 10; wid < 40; ++wid) AddBox("b", wid, 3);
    Bar().setValue(Bar().maximum());
    editor.hide();
    document.DeleteContents();
    for (int wid = 10; wid < 40; ++wid) Add(test::MakeLink("n", wid));
    document.edits.Replaced();
    test::ShowActive(editor);
    EXPECT_EQ(editor.Rows().ScrollTop(), 0);
    ExpectInStep();
}

}  // namespace
}  // namespace tavrin
