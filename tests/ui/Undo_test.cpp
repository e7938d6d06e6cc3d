// SPDX-License-Identifier: Apache-2.0
// Undo and redo in the whole program: keys, names, fields, windows in step, and the list of steps.
#include <QListView>
#include <QPushButton>
#include <QTest>

#include "document/EditHistory.h"
#include "ui/base/Text.h"
#include "ui/desk/UndoHistory.h"
#include "ui/forms/FormHands.h"
#include "ui/sliders/ColorPicker.h"
#include "ui/sliders/NumberField.h"
#include "ui/sliders/SliderFrame.h"
#include "ui/sliders/SliderPane.h"
#include "ui/sliders/ValueSlider.h"
#include "ui/support/DocumentsTest.h"
#include "ui/support/Hands.h"

namespace tavrin {
namespace {

using test::PressKeys;
using test::WaitUntil;
using testing::ElementsAre;
using testing::HasSubstr;

constexpr const char* kForm =
    "roe {\nxfield {\nenvname DEPTH\noptionlabel Depth\nvalue 2\n}\nchooser {\nenvname "
    "TAVRN_SHADER_TYPE\nvalue "
    "surface\nchoosercontents {\nsurface\nmetal\n}\n}\n}\n";

class Undo : public test::DocumentsTest, public test::FormHands {
  protected:
    QWidget& FormWindow() override { return Frame().Windows().Of(CommandId::kRenderOptions); }
    EditHistory& History() { return *Document().History(); }
    void StartWithBoxes(int boxes) {
        StartWithDocs();
        Open(WriteDocument("docs/a", boxes));
        Frame().activateWindow();
        test::FocusOn(Frame().Desk());
    }
    // The number that the first input of the box shows, selected alone.
    NumberField& ValueField(int place = 0) {
        COpBox& box = BoxAt(place);
        Desk().ClearBoxSelection();
        box.selected = 1;
        Document().edits.SelectionChanged();
        CSliderFrame& frame = *Frame().Sliders().BringIntoView(*box.inputs.front());
        for (QWidget* widget : frame.findChildren<QWidget*>()) {
            auto* field = dynamic_cast<NumberField*>(widget);
            if (field != nullptr && field->accessibleName() == "Value") return *field;
        }
        throw std::logic_error("no field");
    }
    static CColorPicker* Picker() {
        for (QWidget* window : QApplication::topLevelWidgets()) {
            if (auto* picker = dynamic_cast<CColorPicker*>(window)) return picker;
        }
        return nullptr;
    }
    COpBox& BoxAt(int place) { return **std::next(Document().m_boxes.begin(), place); }
    float ValueAt(int place = 0) {
        return dynamic_cast<COpValueFloat&>(*BoxAt(place).inputs.front()->values.front()).value;
    }
    QString MenuText(CommandId id) {
        Frame().Commands().Update();
        return Action(id).text().remove('&');
    }
    QListView& List() { return *Frame().Windows().Get<CUndoHistory>().findChild<QListView*>(); }
    std::vector<std::string> Rows() {
        std::vector<std::string> rows;
        for (int row = 0; row < List().model()->rowCount(); ++row)
            rows.push_back(Bytes(List().model()->index(row, 0).data().toString()));
        return rows;
    }
};

// Keys and names

TEST_F(Undo, TheKeysTakeBackAndDoAgainAndTheMenuNamesTheAct) {
    StartWithBoxes(3);
    EXPECT_EQ(MenuText(CommandId::kUndo), "Undo");
    Desk().SelectAllBoxes();
    Settle();
    PressKeys("Delete");
    ASSERT_EQ(Boxes(), 0U);
    EXPECT_EQ(MenuText(CommandId::kUndo), "Undo Delete");
    PressKeys("Ctrl+Z");
    EXPECT_EQ(Boxes(), 3U);
    EXPECT_EQ(MenuText(CommandId::kUndo), "Undo");
    EXPECT_EQ(MenuText(CommandId::kRedo), "Redo Delete");
    PressKeys("Ctrl+Shift+Z");
    EXPECT_EQ(Boxes(), 0U);
    PressKeys("Ctrl+Z");
    PressKeys("Ctrl+Y");
    EXPECT_EQ(Boxes(), 0U);
}

TEST_F(Undo, TheTitleTellsWhetherTheDocumentIsAsItWasSaved) {
    StartWithBoxes(2);
    Desk().DeleteBox(BoxAt(0));
    ASSERT_TRUE(WaitUntil([this] { return Frame().isWindowModified(); }));
    PressKeys("Ctrl+Z");
    EXPECT_TRUE(WaitUntil([this] { return !Frame().isWindowModified(); }));
    PressKeys("Ctrl+Y");
    Do(CommandId::kSave);
    Settle();
    PressKeys("Ctrl+Z");
    EXPECT_TRUE(WaitUntil([this] { return Frame().isWindowModified(); }));
}

TEST_F(Undo, NothingIsTakenBackOnALockedDesk) {
    StartWithBoxes(2);
    Desk().DeleteBox(BoxAt(0));
    Do(CommandId::kLockDesk);
    EXPECT_FALSE(IsEnabled(CommandId::kUndo));
    PressKeys("Ctrl+Z");
    EXPECT_EQ(Boxes(), 1U);
    Do(CommandId::kLockDesk);
    EXPECT_TRUE(IsEnabled(CommandId::kUndo));
}

TEST_F(Undo, AnotherDocumentBeginsAnew) {
    StartWithBoxes(2);
    Desk().DeleteBox(BoxAt(0));
    test::PressWhenBoxComes("Discard");
    Do(CommandId::kNew);
    Settle();
    EXPECT_FALSE(IsEnabled(CommandId::kUndo));
    Open(WriteDocument("docs/b", 1));
    EXPECT_FALSE(IsEnabled(CommandId::kUndo));
}

// Sliders and fields

TEST_F(Undo, AFieldTakesBackItsOwnTypingAndTheDeskTheWholeRun) {
    StartWithBoxes(1);
    const float before = ValueAt();
    NumberField& field = ValueField();
    test::GiveFocus(field);
    field.selectAll();
    QTest::keyClicks(&field, "0.75");
    EXPECT_EQ(ValueAt(), 0.75F);
    EXPECT_EQ(History().Count(), 1U);
    PressKeys("Ctrl+Z");
    EXPECT_NE(field.text(), "0.75");
    EXPECT_EQ(History().Place(), History().Count()) << "the field's own";
    test::FocusOn(Frame().Desk());
    PressKeys("Ctrl+Z");
    EXPECT_EQ(ValueAt(), before);
}

TEST_F(Undo, ARunEndsWhereTheFocusLeavesTheField) {
    StartWithBoxes(1);
    NumberField& field = ValueField();
    for (const char* text : {"0.125", "0.5"}) {
        test::GiveFocus(field);
        field.selectAll();
        QTest::keyClicks(&field, text);
        test::FocusOn(Frame().Desk());
    }
    EXPECT_EQ(History().Count(), 2U);
    PressKeys("Ctrl+Z");
    EXPECT_EQ(ValueAt(), 0.125F);
    EXPECT_EQ(ValueField().text().toFloat(), 0.125F) << "the field shows it";
}

TEST_F(Undo, ADeletedBoxComesBackWithItsFrames) {
    StartWithBoxes(1);
    ValueField();
    ASSERT_EQ(Frame().SliderDesk().Frames().size(), BoxAt(0).inputs.size());
    test::FocusOn(Frame().Desk());
    Settle();
    PressKeys("Delete");
    EXPECT_EQ(Boxes(), 0U);
    EXPECT_TRUE(Frame().SliderDesk().Frames().empty());
    PressKeys("Ctrl+Z");
    EXPECT_EQ(Frame().SliderDesk().Frames().size(), BoxAt(0).inputs.size());
}

// Options

TEST_F(Undo, AnOptionComesBackInTheFormAndOnTheToolbar) {
    AddToSite(kForm);
    StartWithBoxes(1);
    Do(CommandId::kRenderOptions);
    ASSERT_TRUE(WaitUntil([this] { return FormWindow().isVisible(); }));
    TypeOver(Named<FormEdit>("Depth"), "37");
    EXPECT_EQ(History().Count(), 1U) << "one run";
    Choose(Named<FormList>("TAVRN_SHADER_TYPE"), 1);
    EXPECT_THAT(Bytes(Frame().windowTitle()), HasSubstr("[metal]"));
    Do(CommandId::kUndo);
    EXPECT_THAT(Bytes(Frame().windowTitle()), HasSubstr("[surface]"));
    EXPECT_EQ(Named<FormList>("TAVRN_SHADER_TYPE").currentText(), "surface");
    EXPECT_EQ(Frame().OperatorBar().findChild<QComboBox*>("shaderType")->currentText(), "surface");
    EXPECT_EQ(Document().m_renderOptions["DEPTH"], "37");
    Do(CommandId::kUndo);
    EXPECT_EQ(Named<FormEdit>("Depth").text(), "2");
    EXPECT_FALSE(Document().IsModified());
    EXPECT_FALSE(IsEnabled(CommandId::kUndo)) << "what the form shows again is no edit";
}

TEST_F(Undo, SwitchesOfTheDeskAndTheToolbarComeBack) {
    StartWithBoxes(1);
    Do(CommandId::kShowVarnames);
    Do(CommandId::kStraightTraceLines);
    EXPECT_TRUE(IsChecked(CommandId::kShowVarnames));
    Do(CommandId::kUndo);
    Do(CommandId::kUndo);
    EXPECT_FALSE(IsChecked(CommandId::kShowVarnames));
    EXPECT_FALSE(IsChecked(CommandId::kStraightTraceLines));
}

// While something else goes on

TEST_F(Undo, WhatWasDoneIsTakenBackWhileARenderRuns) {
    StartWithBoxes(2);
    Desk().DeleteBox(BoxAt(0));
    HoldScripts();
    Do(CommandId::kRenderIt);
    ASSERT_TRUE(WaitUntil([this] { return Log().find("renderit a 1") != std::string::npos; }));
    PressKeys("Ctrl+Z");
    EXPECT_EQ(Boxes(), 2U);
    ReleaseScripts();
    EXPECT_TRUE(WaitUntil([this] { return !ChildRuns(); }));
}

TEST_F(Undo, ABoxOnTheMouseIsThrownAwayFirst) {
    StartWithBoxes(1);
    Desk().DeleteBox(BoxAt(0));
    Desk().AddOperator("Constant");
    Settle();
    PressKeys("Ctrl+Z");
    EXPECT_TRUE(Desk().m_pendingBoxes.empty());
    EXPECT_EQ(Boxes(), 1U);
}

TEST_F(Undo, AnOpenColorPickerFollowsItsValueAndGoesWithItsBox) {
    directory.Write("tavrin/tiny/menu/0500.Tint",
                    "input tint { rgb { 1 0 0 \"%g %g %g\" } }\noutput result { rgb out }\n");
    StartWithDocs();
    AddBoxes(1, "Tint");
    const auto text = [this] { return BoxAt(0).inputs.front()->ValueText(); };
    CSliderFrame* frame = Frame().Sliders().BringIntoView(*BoxAt(0).inputs.front());
    for (auto* button : frame->findChildren<QPushButton*>()) {
        if (button->text() == "HSV") QTest::mouseClick(button, Qt::LeftButton);
    }
    ASSERT_TRUE(WaitUntil([] { return Picker() != nullptr && Picker()->IsOpen(); }));
    Picker()->SetColor(0, 0.5F, 0.25F, true);
    ASSERT_EQ(text(), "0 0.5 0.25");
    Do(CommandId::kUndo);
    EXPECT_EQ(text(), "1 0 0");
    Do(CommandId::kUndo);
    EXPECT_EQ(Boxes(), 0U);
    EXPECT_TRUE(WaitUntil([] { return Picker() == nullptr; }));
    Do(CommandId::kRedo);
    Do(CommandId::kRedo);
    EXPECT_EQ(text(), "0 0.5 0.25");
}

TEST_F(Undo, AScriptsEditsAreSteps) {
    AddToSite(kForm);
    StartWithBoxes(1);
    App().SetVariable("DEPTH", "9", true);
    ASSERT_TRUE(Frame().ActionDispatch().RunScriptFile(directory.Write("it.tvx", "roe use-defaults x\n")));
    EXPECT_EQ(Document().m_renderOptions["DEPTH"], "2");
    EXPECT_EQ(MenuText(CommandId::kUndo), "Undo Default Options");
    Do(CommandId::kUndo);
    EXPECT_EQ(Document().m_renderOptions["DEPTH"], "9");
}

// The window

TEST_F(Undo, TheListShowsTheStepsAndAClickGoesToOne) {
    StartWithBoxes(3);
    Do(CommandId::kUndoHistory);
    ASSERT_TRUE(WaitUntil([this] { return List().isVisible(); }));
    EXPECT_THAT(Rows(), ElementsAre("Beginning"));
    Desk().DeleteBox(BoxAt(0));
    Desk().DuplicateBox(BoxAt(0));
    Do(CommandId::kShowVarnames);
    EXPECT_THAT(Rows(), ElementsAre("Beginning", "Delete Box", "Copy Box", "Show Varnames"));
    EXPECT_EQ(List().currentIndex().row(), 3);
    const auto click = [this](int row) {
        QTest::mouseClick(List().viewport(), Qt::LeftButton, {},
                          List().visualRect(List().model()->index(row, 0)).center());
    };
    click(1);
    EXPECT_EQ(Boxes(), 2U);
    EXPECT_EQ(History().Place(), 1U);
    EXPECT_EQ(List().currentIndex().row(), 1);
    EXPECT_EQ(Rows().size(), 4U) << "what is undone is still there";
    click(3);
    EXPECT_EQ(Boxes(), 3U);
    EXPECT_EQ(Document().showvarnames, 1);
    click(0);
    EXPECT_EQ(Boxes(), 3U);
    EXPECT_FALSE(Document().IsModified());
}

TEST_F(Undo, TheListIsGreyOnALockedDesk) {
    StartWithBoxes(1);
    Do(CommandId::kUndoHistory);
    Do(CommandId::kLockDesk);
    EXPECT_FALSE(List().isEnabled());
    Do(CommandId::kLockDesk);
    EXPECT_TRUE(List().isEnabled());
}

}  // namespace
}  // namespace tavrin
