// SPDX-License-Identifier: Apache-2.0
// A user who does anything in the Argument Editor while the network changes around it.
#include <gtest/gtest.h>

#include <random>

#include "ui/sliders/ArgumentTest.h"

namespace tavrin {
namespace {

constexpr int kSteps = 2500;  // of one walk
constexpr int kMostBoxes = 14;

class ArgumentWalk : public test::ArgumentTest, public testing::WithParamInterface<uint32_t> {
  protected:
    struct Step {
        const char* name;
        int weight;
        void (ArgumentWalk::*run)();
    };
    static const std::vector<Step>& Steps();

    size_t Below(size_t count) { return random() % count; }
    bool OneIn(size_t count) { return Below(count) == 0; }
    std::string AnyText() {
        static const std::vector<std::string> kTexts = {"",
                                                        "Ka",
                                                        "a b c",
                                                        "<b>&amp;</b>",
                                                        "%",
                                                        "\xC3\xA9",
                                                        "\xE6\x9C\xA8",
                                                        std::string(300, 'x'),
                                                        "\"quoted\" \\ #"};
        return kTexts[Below(kTexts.size())];
    }
    COpBox& AnyBox() { return test::BoxAt(document, Below(document.m_boxes.size())); }
    COpButton& AnyInput() {
        COpBox& box = AnyBox();
        return *box.inputs[Below(box.inputs.size())];
    }
    CArgumentRow* AnyWindow() {
        const auto& windows = editor.RowWindows();
        if (!editor.isVisible() || windows.empty()) return nullptr;
        return std::next(windows.begin(), static_cast<std::ptrdiff_t>(Below(windows.size())))->second;
    }

    // The network
    void ABoxComes() {
        if (document.m_boxes.size() < kMostBoxes) AddBox(OneIn(2) ? "Noise" : "mix", ++lastWid, 1 + Below(7));
    }
    void ABoxGoes() {
        if (document.m_boxes.size() > 2) RemoveBox(AnyBox());
    }
    void AWireComes() {
        COpButton& input = AnyInput();
        COpBox& from = AnyBox();
        if (from.wid < input.owner->wid) Connect(from, input);
    }
    void AWireGoes() { Cut(AnyInput()); }
    void ABoxIsRenumbered() {
        COpBox& box = AnyBox();
        const EditScope edit(document, "Number");
        document.edits.BoxTouched(box);
        box.wid = ++lastWid;
    }
    void AnArgumentIsSetElsewhere() { SetArg(AnyInput(), static_cast<int>(Below(2))); }
    void ATextIsTypedElsewhere() {
        const std::string text = AnyText();
        const bool isName = OneIn(2);
        Tune(AnyInput(), [&](COpButton& button) { (isName ? button.argname : button.comments) = text; });
    }
    void SelectionsChange() { document.edits.SelectionChanged(); }
    void AnotherDocumentComes() {
        document.DeleteContents();
        for (size_t count = 2 + Below(6); count > 0; --count) {
            Add(test::MakeLink("New", ++lastWid)).inputs[0]->comments = AnyText();
        }
        document.edits.Replaced();
        EXPECT_EQ(editor.Rows().ScrollTop(), 0);
    }

    // The user
    void AFlagIsClicked() {
        CArgumentRow* row = AnyWindow();
        if (row == nullptr) return;
        const COpButton& button = *row->Button();
        const bool isChange = button.disableargflag == 0;
        const bool was = button.arg != 0;
        static_cast<QCheckBox&>(row->Control(Field::kFlag)).click();
        EXPECT_EQ(button.arg != 0, was != isChange);
    }
    void SomethingIsTyped() {
        CArgumentRow* row = AnyWindow();
        if (row == nullptr || row->Button()->arg == 0) return;
        const COpButton& button = *row->Button();
        const bool isName = OneIn(2);
        auto& field = static_cast<OneLineField&>(row->Control(isName ? Field::kName : Field::kComment));
        if (OneIn(2)) field.setFocus();
        QTest::keyClicks(&field, "t");
        if (OneIn(3)) QTest::keyClick(&field, Qt::Key_Backspace);
        EXPECT_EQ(Bytes(field.text()), isName ? button.argname : button.comments);
    }
    void TheBarIsDragged() { Bar().setValue(static_cast<int>(Below(1000)) - 100); }
    void TheWheelTurns() { TurnWheel(editor, OneIn(2) ? 1 : -1); }
    void TabIsPressed() {
        if (!editor.isVisible()) return;
        QWidget* focused = editor.focusWidget();
        QTest::keyClick(focused != nullptr ? focused : &editor, OneIn(3) ? Qt::Key_Backtab : Qt::Key_Tab);
    }
    void TheWindowIsResized() {
        editor.resize(300 + static_cast<int>(Below(600)),
                      editor.Rows().RowHeight() * static_cast<int>(1 + Below(12)));
    }
    // Each to its end: a window manager may lose one that goes before it has come, or comes before it has
    // gone.
    void TheWindowComesAndGoes() {
        if (editor.isVisible()) {
            ASSERT_TRUE(test::WaitUntilSeen(editor));
            editor.hide();
            QGuiApplication::sync();
            test::HandleEvents();
        } else {
            editor.show();
            ASSERT_TRUE(test::WaitUntilSeen(editor));
        }
    }

    std::mt19937 random{GetParam()};
    int lastWid = 0;
};

const std::vector<ArgumentWalk::Step>& ArgumentWalk::Steps() {
    static const std::vector<Step> kAll = {
        {"a box comes", 6, &ArgumentWalk::ABoxComes},
        {"a box goes", 4, &ArgumentWalk::ABoxGoes},
        {"a wire comes", 8, &ArgumentWalk::AWireComes},
        {"a wire goes", 6, &ArgumentWalk::AWireGoes},
        {"a box is renumbered", 2, &ArgumentWalk::ABoxIsRenumbered},
        {"an argument is set elsewhere", 8, &ArgumentWalk::AnArgumentIsSetElsewhere},
        {"a text is typed elsewhere", 8, &ArgumentWalk::ATextIsTypedElsewhere},
        {"selections change", 2, &ArgumentWalk::SelectionsChange},
        {"another document comes", 1, &ArgumentWalk::AnotherDocumentComes},
        {"a flag is clicked", 12, &ArgumentWalk::AFlagIsClicked},
        {"something is typed", 16, &ArgumentWalk::SomethingIsTyped},
        {"the bar is dragged", 8, &ArgumentWalk::TheBarIsDragged},
        {"the wheel turns", 5, &ArgumentWalk::TheWheelTurns},
        {"Tab is pressed", 12, &ArgumentWalk::TabIsPressed},
        {"the window is resized", 3, &ArgumentWalk::TheWindowIsResized},
        {"the window comes or goes", 1, &ArgumentWalk::TheWindowComesAndGoes},
    };
    return kAll;
}

TEST_P(ArgumentWalk, RowsDocumentAndWindowsStayInStep) {
    std::vector<Step> choices;
    for (const Step& step : Steps()) choices.insert(choices.end(), static_cast<size_t>(step.weight), step);
    ABoxComes();
    ABoxComes();
    ShowRows(6);
    size_t most = 0;
    for (int count = 1; count <= kSteps && !HasFailure(); ++count) {
        const Step& step = choices[Below(choices.size())];
        (this->*step.run)();
        if (OneIn(10)) test::HandleEvents();
        most = std::max(most, editor.Rows().Count());
        if (editor.isVisible()) ExpectInStep();
        if (HasFailure()) ADD_FAILURE() << "seed " << GetParam() << ", step " << count << ": " << step.name;
    }
    EXPECT_GT(most, 30U) << "the walk came nowhere";
    EXPECT_EQ(document.edits.StrayEdits(), 0);
}

INSTANTIATE_TEST_SUITE_P(Seeds, ArgumentWalk, testing::Values(1U, 2U));

}  // namespace
}  // namespace tavrin
