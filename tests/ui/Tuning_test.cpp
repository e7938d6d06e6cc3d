// SPDX-License-Identifier: Apache-2.0
// Values, arguments and comments in the whole program: column, Argument Editor, desk and document in step,
// and what is tuned in what is generated.
#include <QScrollBar>
#include <QSplitter>
#include <QTest>
#include <random>

#include "sliders/SliderDesk.h"
#include "support/ChangeAuditor.h"
#include "ui/base/Text.h"
#include "ui/desk/DeskPane.h"
#include "ui/frame/StatusBox.h"
#include "ui/sliders/ArgumentEditor.h"
#include "ui/sliders/ArgumentRow.h"
#include "ui/sliders/NumberField.h"
#include "ui/sliders/SliderPane.h"
#include "ui/support/DocumentsTest.h"
#include "ui/support/Hands.h"
#include "ui/support/TestFrame.h"
#include "ui/windows/OneLineField.h"

namespace tavrin {
namespace {

using test::WaitUntil;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

constexpr const char* kKnobs = R"text(size 64 48
input amount { help {
How much of it.
}
float { 0.5 0 1 0 "%g" } rgb { 1 0 0 "vec3(%g, %g, %g)" } }
input place { xyz { 1 2 3 0 10 0 "vec3(%g, %g, %g)" } }
input label { string { value "a b" format "%s" quoteflag 1 } }
output result { float out }
codegen.main-body append
result = amount + place + label;
<<EOT>>
)text";

class PaintCount : public QObject {
  public:
    explicit PaintCount(QWidget& widget) { widget.installEventFilter(this); }
    bool eventFilter(QObject*, QEvent* event) override {
        if (event->type() == QEvent::Paint) ++count;
        return false;
    }
    int count = 0;
};

class Tuning : public test::FrameTest {
  protected:
    Tuning() { directory.Write("tavrin/tiny/menu/0500.Knobs", kKnobs); }
    void StartWithKnobs(int boxes = 1) {
        Start();
        AddBoxes(boxes, "Knobs");
    }
    COpBox& Knobs() { return *Document().m_boxes.front(); }
    COpButton& Input(const std::string& name) { return *Knobs().FindButton(name); }
    CSliderFrame& FrameOf(const COpButton& button) {
        CSliderFrame* frame = Frame().Sliders().BringIntoView(button);
        if (frame == nullptr) throw std::logic_error("no frame");
        return *frame;
    }
    template <typename Control>
    Control& Find(QWidget& parent, const QString& name) {
        for (QWidget* widget : parent.findChildren<QWidget*>()) {
            auto* control = dynamic_cast<Control*>(widget);
            if (control != nullptr && control->accessibleName() == name && control->isVisible())
                return *control;
        }
        throw std::logic_error("no control " + Bytes(name));
    }
    void TypeOver(QLineEdit& field, const QString& text) {
        test::GiveFocus(field);
        field.selectAll();
        QTest::keyClicks(&field, text);
    }
    std::string Generated() {
        Do(CommandId::kRenderIt);
        EXPECT_TRUE(WaitUntil([this] { return !ChildRuns(); }));
        return test::ReadFile(WorkDir() + "/codegenfile");
    }
};

TEST_F(Tuning, WhatIsTunedStandsInWhatIsGeneratedNext) {
    StartWithKnobs();
    TypeOver(Find<NumberField>(FrameOf(Input("amount")), "Value"), "0.25");
    TypeOver(Find<NumberField>(FrameOf(Input("place")), "Y"), "7.5");
    TypeOver(Find<OneLineField>(FrameOf(Input("label")), "Value"), "sky");
    EXPECT_THAT(Generated(), HasSubstr("= 0.25 + vec3(1, 7.5, 3) + \"sky\";"));
    TypeOver(Find<NumberField>(FrameOf(Input("amount")), "Value"), "0.75");
    EXPECT_THAT(Generated(), HasSubstr("= 0.75 + vec3(1, 7.5, 3) + \"sky\";"));
}

TEST_F(Tuning, AnArgumentOfTheEditorHasItsNameCommentAndTunedValueInTheArginfoSection) {
    StartWithKnobs();
    Do(CommandId::kArgumentEditor);
    auto& editor = Frame().Windows().Get<CArgumentEditor>();
    test::ShowActive(editor);
    CArgumentRow& row = *editor.RowWindows().begin()->second;
    ASSERT_EQ(row.Button(), &Input("amount"));
    row.Control(ArgumentField::kFlag).setFocus();
    QTest::keyClick(&row.Control(ArgumentField::kFlag), Qt::Key_Space);
    EXPECT_EQ(Input("amount").arg, 1);
    TypeOver(static_cast<QLineEdit&>(row.Control(ArgumentField::kName)), "strength");
    TypeOver(static_cast<QLineEdit&>(row.Control(ArgumentField::kComment)), "of the layer");
    EXPECT_EQ(Find<OneLineField>(FrameOf(Input("amount")), "Comments").text(), "of the layer");
    test::ShowActive(Frame());
    TypeOver(Find<NumberField>(FrameOf(Input("amount")), "Value"), "0.125");
    const std::string code = Generated();
    EXPECT_THAT(code, HasSubstr("= strength + "));
    EXPECT_THAT(code, HasSubstr("ArgName strength"));
    EXPECT_THAT(code, HasSubstr("of the layer"));
    EXPECT_THAT(code, HasSubstr("0.125"));
}

TEST_F(Tuning, ACommentOfTheFrameStandsInTheRowAndTheOtherWay) {
    StartWithKnobs();
    Do(CommandId::kArgumentEditor);
    auto& editor = Frame().Windows().Get<CArgumentEditor>();
    ASSERT_TRUE(WaitUntil([&] { return !editor.RowWindows().empty(); }));
    const auto shown = [&] {
        return static_cast<QLineEdit&>(editor.RowWindows().begin()->second->Control(ArgumentField::kComment))
            .text();
    };
    test::ShowActive(Frame());
    TypeOver(Find<OneLineField>(FrameOf(Input("amount")), "Comments"), "near");
    EXPECT_EQ(shown(), "near");
}

TEST_F(Tuning, TuningLeavesTheDeskUnpainted) {
    StartWithKnobs();
    NumberField& field = Find<NumberField>(FrameOf(Input("amount")), "Value");
    test::GiveFocus(field);
    Settle();
    const PaintCount desk(Frame().Desk().Desk());
    QTest::keyClicks(&field, "0.5");
    Settle();
    EXPECT_EQ(desk.count, 0);
    Desk().m_mouseButton = &Input("amount");
    Desk().ToggleArgument();
    ASSERT_TRUE(WaitUntil([&] { return desk.count > 0; }));
}

TEST_F(Tuning, CommandsOfSlidersAreThereWhileTheColumnShowsSome) {
    StartWithKnobs();
    const auto commands = {CommandId::kStowAllSliders, CommandId::kUnstowAllSliders,
                           CommandId::kPinAllSliders,  CommandId::kUnpinAllSliders,
                           CommandId::kLockAllSliders, CommandId::kUnlockAllSliders};
    for (const CommandId id : commands) EXPECT_TRUE(IsEnabled(id));
    Do(CommandId::kStowAllSliders);
    EXPECT_EQ(Input("place").stow, 1);
    Do(CommandId::kUnstowAllSliders);
    EXPECT_EQ(Input("place").stow, 0);
    Do(CommandId::kLockAllSliders);
    EXPECT_FALSE(FrameOf(Input("place")).Panel()->isEnabled());
    Do(CommandId::kUnlockAllSliders);
    EXPECT_TRUE(FrameOf(Input("place")).Panel()->isEnabled());
    Do(CommandId::kPinAllSliders);
    Do(CommandId::kUnselectAllBoxes);
    EXPECT_THAT(Frame().SliderDesk().Frames(), SizeIs(3));
    Do(CommandId::kUnpinAllSliders);
    EXPECT_THAT(Frame().SliderDesk().Frames(), IsEmpty());
    for (const CommandId id : commands) EXPECT_FALSE(IsEnabled(id));
}

TEST_F(Tuning, FrozenTheColumnStaysAndThawedItFollows) {
    StartWithKnobs();
    Do(CommandId::kFreezeSliders);
    EXPECT_TRUE(IsChecked(CommandId::kFreezeSliders));
    Do(CommandId::kUnselectAllBoxes);
    EXPECT_THAT(Frame().SliderDesk().Frames(), SizeIs(3));
    QTest::keyClick(&Frame(), Qt::Key_F3);
    EXPECT_THAT(Frame().SliderDesk().Frames(), IsEmpty());
    EXPECT_FALSE(IsChecked(CommandId::kFreezeSliders));
}

TEST_F(Tuning, AMergeFreezesTheColumnOnceItWasToldSo) {
    StartWithKnobs();
    const std::string other = WriteDocument("other", 4);
    test::ChooseFileWhenDialogComes(other);
    test::PressWhenBoxComes("OK");
    Do(CommandId::kMerge);
    EXPECT_THAT(test::BoxesShown(), ElementsAre(test::kFrozenText));
    EXPECT_TRUE(Frame().SliderDesk().IsFrozen());
    Desk().DropPending();
    EXPECT_THAT(Frame().SliderDesk().Frames(), SizeIs(3));
}

TEST_F(Tuning, ALockedDeskTakesTheColumn) {
    StartWithKnobs();
    NumberField& field = Find<NumberField>(FrameOf(Input("amount")), "Value");
    Do(CommandId::kLockDesk);
    EXPECT_FALSE(field.isEnabled());
    Do(CommandId::kLockDesk);
    EXPECT_TRUE(field.isEnabled());
}

TEST_F(Tuning, TheHelpOfAFrameIsInTheStatusBox) {
    StartWithKnobs();
    EXPECT_TRUE(test::HoverUntil(FrameOf(Input("amount")), {4, 4},
                                 [&] { return Frame().StatusBox().Status() == "How much of it."; }));
}

TEST_F(Tuning, ADocumentThatIsOpenedWhileAValueIsTypedTakesNothingOfIt) {
    StartWithKnobs();
    const std::string other = WriteDocument("other", 2);
    TypeOver(Find<NumberField>(FrameOf(Input("amount")), "Value"), "7");
    test::PressWhenBoxComes("Discard");
    EXPECT_TRUE(Frame().OpenDocumentFile(other));
    EXPECT_THAT(Frame().SliderDesk().Frames(), IsEmpty());
    Settle();
    EXPECT_FALSE(Document().IsModified());
    Do(CommandId::kSelectAllBoxes);
    EXPECT_FALSE(Frame().SliderDesk().Frames().empty());
}

TEST_F(Tuning, TheColumnShowsItsPanelsBesideTheDeskWithoutAGap) {
    StartWithKnobs();
    const SliderPane& column = Frame().Sliders();
    EXPECT_EQ(column.width(), column.ColumnWidth());
    const QWidget& desk = Frame().Desk();
    const auto& splitter = static_cast<QSplitter&>(*column.parentWidget());
    EXPECT_EQ(desk.x(), column.width() + splitter.handleWidth());
    EXPECT_FALSE(column.horizontalScrollBar()->isVisible());
    Do(CommandId::kSliderDesk);
    Settle();
    EXPECT_EQ(column.width(), 0);
    Do(CommandId::kSliderDesk);
    Settle();
    EXPECT_EQ(column.width(), column.ColumnWidth());
}

// By whatever road something is edited, frames, rows and document say the same.
TEST_F(Tuning, FramesRowsAndDocumentAreInStepAfterFiveThousandRandomEdits) {
    StartWithKnobs(6);
    Do(CommandId::kSelectAllBoxes);
    Do(CommandId::kArgumentEditor);
    auto& editor = Frame().Windows().Get<CArgumentEditor>();
    ASSERT_TRUE(WaitUntil([&] { return !editor.RowWindows().empty(); }));
    test::ChangeAuditor auditor(Document(), Desk());
    std::mt19937 random(3);
    const auto pick = [&](size_t count) {
        return std::uniform_int_distribution<size_t>(0, count - 1)(random);
    };
    for (int step = 0; step < 5000; ++step) {
        auto place = Document().m_boxes.begin();
        std::advance(place, static_cast<std::ptrdiff_t>(pick(Document().m_boxes.size())));
        COpBox& box = **place;
        COpButton& input = *box.inputs.at(pick(box.inputs.size()));
        CSliderFrame* frame = Frame().Sliders().FrameOf(input);
        switch (pick(7)) {
            case 0:
                if (frame != nullptr && input.name == "amount" && input.currentcast == 0) {
                    Frame().Sliders().BringIntoView(input);
                    Find<NumberField>(*frame, "Value")
                        .Type(QString::number(static_cast<double>(pick(1000)) / 1000));
                }
                break;
            case 1:
                Desk().m_mouseButton = &input;
                Desk().ToggleArgument();
                break;
            case 2:
                Desk().m_mouseButton = &input;
                Desk().ChooseCast(pick(input.values.size()));
                break;
            case 3:
                if (frame != nullptr) {
                    auto& comments = Find<OneLineField>(*Frame().Sliders().BringIntoView(input), "Comments");
                    comments.selectAll();
                    comments.insert(QString::number(step));
                }
                break;
            case 4: {
                COpButton& output = *Document().m_boxes.back()->outputs.at(0);
                if (output.owner != &box && output.CanConnect(input) && !output.WouldLoop(input))
                    Desk().Connect(output, input);
                break;
            }
            case 5:
                Desk().m_mouseButton = &input;
                Desk().DeleteConnections();
                break;
            default:
                box.selected = box.selected == 0 ? 1 : 0;
                Document().edits.SelectionChanged();
                break;
        }
        ASSERT_EQ(auditor.Look(), "") << "step " << step;
        for (const auto& known : Document().m_boxes) {
            for (const auto& button : known->inputs) {
                const CSliderFrame* window = Frame().Sliders().FrameOf(*button);
                if (window == nullptr) continue;
                for (QWidget* widget : window->findChildren<QWidget*>()) {
                    const auto* comments = dynamic_cast<OneLineField*>(widget);
                    if (comments != nullptr && comments->accessibleName() == "Comments") {
                        ASSERT_EQ(Bytes(comments->text()), button->comments);
                    }
                    const auto* number = dynamic_cast<NumberField*>(widget);
                    if (number != nullptr && number->accessibleName() == "Value" &&
                        button->name == "amount") {
                        ASSERT_EQ(number->Number(), static_cast<COpValueFloat&>(*button->values.at(0)).value);
                    }
                }
            }
        }
        for (const auto& [key, row] : editor.RowWindows()) {
            if (row->Button() == nullptr) continue;
            ASSERT_EQ(Bytes(static_cast<QLineEdit&>(row->Control(ArgumentField::kComment)).text()),
                      row->Button()->comments);
            ASSERT_EQ(row->Control(ArgumentField::kName).isEnabled(), row->Button()->arg != 0);
        }
        ASSERT_EQ(editor.Rows().Count(), Document().CollectUnconnectedInputs().size());
    }
}

}  // namespace
}  // namespace tavrin
