// SPDX-License-Identifier: Apache-2.0
#include "ui/sliders/SliderPane.h"

#include <QApplication>
#include <QScrollBar>
#include <QToolButton>
#include <QWheelEvent>

#include "ui/sliders/NameLabel.h"
#include "ui/sliders/SliderTest.h"

namespace tavrin {
namespace {

using test::MakeBox;
using test::WaitUntil;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kTwo = R"(
input first { help {
The first.
}
float { 0 0 1 0 "%g" } rgb { 1 0 0 "%g" } }
input second { help {
The second.
}
float { 0 0 1 0 "%g" } }
)";

class SliderColumn : public test::SliderTest {
  protected:
    static std::string ManyInputs(int count) {
        std::string definition;
        for (int i = 0; i < count; ++i)
            definition += "input in" + std::to_string(i) + " { float { 0 0 1 0 \"%g\" } }\n";
        return definition;
    }
    QToolButton& Toggle(const COpButton& button, const QString& name) {
        return Find<QToolButton>(button, name);
    }
    void ClickOn(const COpButton& button, const QString& toggle) {
        QToolButton& target = Toggle(button, toggle);
        Click(target, target.rect().center());
    }
    OneLineField& Comments(const COpButton& button) { return Find<OneLineField>(button, "Comments"); }
    QScrollBar& Bar() { return *pane->verticalScrollBar(); }
    size_t Windows() {
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        return test::ChildrenOf<CSliderFrame>(*pane).size();
    }
};

TEST_F(SliderColumn, WithNothingToShowTheBarIsThereAndInert) {
    Show(ManyInputs(1)).selected = 0;
    document.edits.SelectionChanged();
    EXPECT_TRUE(Bar().isVisible());
    EXPECT_EQ(Bar().maximum(), 0);
    EXPECT_EQ(Windows(), 0U);
}

TEST_F(SliderColumn, WhatFitsDoesNotScroll) {
    Show(ManyInputs(2));
    EXPECT_EQ(Bar().maximum(), 0);
    EXPECT_TRUE(Bar().isVisible());
}

TEST_F(SliderColumn, IsAsWideAsAPanelWithItsBar) {
    COpBox& box = Show(ManyInputs(1));
    EXPECT_FALSE(pane->horizontalScrollBar()->isVisible());
    EXPECT_EQ(FrameOf(*box.inputs.at(0)).width(), pane->viewport()->width());
}

TEST_F(SliderColumn, FramesStandBelowEachOther) {
    COpBox& box = Show(kTwo);
    const CSliderFrame& first = FrameOf(*box.inputs.at(0));
    const CSliderFrame& second = FrameOf(*box.inputs.at(1));
    EXPECT_EQ(first.y(), 0);
    EXPECT_EQ(second.y(), first.height());
}

TEST_F(SliderColumn, OnlyFramesInViewAndAPageBesideHaveWindows) {
    COpBox& box = Show(ManyInputs(300));
    const int height = FrameOf(*box.inputs.at(0)).height();
    const auto most = static_cast<size_t>(3 * kHeight / height + 3);
    EXPECT_LE(Windows(), most);
    EXPECT_EQ(pane->FrameOf(*box.inputs.at(200)), nullptr);
    EXPECT_EQ(Bar().maximum(), 300 * height - pane->viewport()->height());
    Bar().setValue(Bar().maximum());
    CSliderFrame* last = pane->FrameOf(*box.inputs.at(299));
    ASSERT_NE(last, nullptr);
    EXPECT_EQ(last->mapTo(pane->viewport(), QPoint(0, height)).y(), pane->viewport()->height());
    EXPECT_EQ(pane->FrameOf(*box.inputs.at(150)), nullptr);
}

TEST_F(SliderColumn, TheWheelScrollsWhateverItIsOver) {
    COpBox& box = Show(ManyInputs(30));
    ValueSlider& slider = Slider(*box.inputs.at(1));
    const auto turn = [&](QWidget& over, int angle) {
        const QPoint at = over.rect().center();
        QWheelEvent event(at, over.mapToGlobal(at), {}, {0, angle}, Qt::NoButton, {}, Qt::NoScrollPhase,
                          false);
        QSpontaneKeyEvent::setSpontaneous(&event);  // only such a one goes on to the parents
        qApp->notify(&over, &event);
    };
    turn(slider, -120);
    const int line = Bar().value();
    EXPECT_GT(line, 0);
    turn(Field(*box.inputs.at(1)), -60);
    EXPECT_EQ(Bar().value(), line);
    turn(Field(*box.inputs.at(1)), -60);
    EXPECT_EQ(Bar().value(), 2 * line);
    turn(*pane->viewport(), 240);
    EXPECT_EQ(Bar().value(), 0);
    EXPECT_EQ(slider.value(), 0);
    EXPECT_FALSE(document.IsModified());
}

TEST_F(SliderColumn, TabGoesThroughEveryControlInTheOrderOfTheColumn) {
    COpBox& box = Show(ManyInputs(30));
    test::GiveFocus(Comments(*box.inputs.at(0)));
    std::vector<std::string> names;
    for (int i = 0; i < 10; ++i) {
        names.push_back(Bytes(test::FocusWidget().accessibleName()));
        QTest::keyClick(&test::FocusWidget(), Qt::Key_Tab);
    }
    EXPECT_THAT(names, ElementsAre("Comments", "Stow", "Pin", "Lock", "Min", "Max", "Value", "", "Value",
                                   "Comments"));
    EXPECT_TRUE(FrameOf(*box.inputs.at(1)).isAncestorOf(&test::FocusWidget()));
    // And on through frames that had no window when it began, which come into view.
    for (const auto& input : box.inputs) {
        if (input == box.inputs.at(0) || input == box.inputs.at(1)) continue;
        for (int i = 0; i < 9; ++i) QTest::keyClick(&test::FocusWidget(), Qt::Key_Tab);
        QWidget& focus = test::FocusWidget();
        CSliderFrame* frame = pane->FrameOf(*input);
        ASSERT_NE(frame, nullptr);
        ASSERT_TRUE(frame->isAncestorOf(&focus)) << input->name;
        ASSERT_TRUE(pane->viewport()->rect().contains(
            QRect(focus.mapTo(pane->viewport(), QPoint(0, 0)), focus.size())));
    }
    for (int i = 0; i < 9; ++i) QTest::keyClick(&test::FocusWidget(), Qt::Key_Backtab);
    EXPECT_TRUE(FrameOf(*box.inputs.at(28)).isAncestorOf(&test::FocusWidget()));
}

TEST_F(SliderColumn, TheHelpOfWhatIsUnderTheMouseIsInTheStatusBox) {
    COpBox& box = Show(kTwo);
    const auto says = [&](const char* help) { return !status.empty() && status.back() == help; };
    EXPECT_TRUE(test::HoverUntil(FrameOf(*box.inputs.at(0)), {5, 5}, [&] { return says("The first."); }));
    EXPECT_TRUE(test::HoverUntil(FrameOf(*box.inputs.at(1)), {5, 5}, [&] { return says("The second."); }));
}

TEST_F(SliderColumn, AStowedFrameIsItsHeaderAndKeepsItsPanel) {
    COpBox& box = Show(kTwo);
    COpButton& button = *box.inputs.at(0);
    CSliderFrame& frame = FrameOf(button);
    const SliderPanel* panel = frame.Panel();
    const int whole = frame.height();
    ClickOn(button, "Stow");
    EXPECT_EQ(button.stow, 1);
    EXPECT_LT(frame.height(), whole / 2 + 1);
    EXPECT_FALSE(panel->isVisible());
    EXPECT_EQ(FrameOf(*box.inputs.at(1)).y(), frame.height());
    EXPECT_THAT(changes, ElementsAre("Stow: tuned a_1.first"));
    static_cast<COpValueFloat&>(*button.values.at(0)).value = 0.5F;
    ClickOn(button, "Stow");
    EXPECT_EQ(frame.Panel(), panel);
    EXPECT_TRUE(panel->isVisible());
    EXPECT_EQ(frame.height(), whole);
    frame.Refresh();
    EXPECT_EQ(Field(button).text(), "0.5");
}

TEST_F(SliderColumn, AnUnpinnedFrameOfABoxThatIsNotSelectedVanishesByTheClick) {
    COpBox& box = Show(kTwo);
    COpButton& button = *box.inputs.at(1);
    ClickOn(button, "Pin");
    EXPECT_EQ(button.pin, 1);
    Select(box, false);
    EXPECT_EQ(sliders.Frames().size(), 1U);
    ClickOn(button, "Pin");
    EXPECT_EQ(button.pin, 0);
    EXPECT_THAT(sliders.Frames(), IsEmpty());
    test::HandleEvents();
    EXPECT_EQ(Windows(), 0U);
}

TEST_F(SliderColumn, ALockTakesThePanelAndLeavesTheHeader) {
    COpBox& box = Show(kTwo);
    COpButton& button = *box.inputs.at(0);
    ClickOn(button, "Lock");
    EXPECT_EQ(button.lock, 1);
    EXPECT_FALSE(FrameOf(button).Panel()->isEnabled());
    EXPECT_TRUE(FrameOf(*box.inputs.at(1)).Panel()->isEnabled());
    TypeOver(Comments(button), "locked");
    EXPECT_EQ(button.comments, "locked");
    ClickOn(button, "Lock");
    EXPECT_TRUE(FrameOf(button).Panel()->isEnabled());
}

TEST_F(SliderColumn, AButtonThatCameLockedShowsItAndCanBeUsedAtFirst) {
    auto made = MakeBox("a", kTwo);
    made->inputs.at(0)->lock = 1;
    COpBox& box = Add(desk, std::move(made));
    Select(box);
    test::ShowActive(*pane);
    COpButton& button = *box.inputs.at(0);
    EXPECT_TRUE(Toggle(button, "Lock").isChecked());
    EXPECT_TRUE(FrameOf(button).Panel()->isEnabled());
    ClickOn(button, "Lock");
    ClickOn(button, "Lock");
    EXPECT_FALSE(FrameOf(button).Panel()->isEnabled());
}

// Frames get their windows late, and are locked from the start then.
TEST_F(SliderColumn, LockingAllCountsForFramesThatWereNeverInView) {
    COpBox& box = Show(ManyInputs(100));
    sliders.LockAll(true);
    EXPECT_FALSE(FrameOf(*box.inputs.at(99)).Panel()->isEnabled());
    sliders.LockAll(false);
    EXPECT_TRUE(FrameOf(*box.inputs.at(99)).Panel()->isEnabled());
    EXPECT_TRUE(FrameOf(*box.inputs.at(0)).Panel()->isEnabled());
}

TEST_F(SliderColumn, AnotherCastHasAnotherPanelAndTheFirstComesBack) {
    COpBox& box = Show(kTwo);
    COpButton& button = *box.inputs.at(0);
    CSliderFrame& frame = FrameOf(button);
    const SliderPanel* number = frame.Panel();
    const auto cast = [&](size_t index) {
        desk.m_mouseButton = &button;
        desk.ChooseCast(index);
    };
    cast(1);
    const SliderPanel* color = frame.Panel();
    EXPECT_NE(color, number);
    EXPECT_FALSE(number->isVisible());
    EXPECT_EQ(Field(button, "Red").text(), "1");
    cast(0);
    EXPECT_EQ(frame.Panel(), number);
    cast(1);
    EXPECT_EQ(frame.Panel(), color);
}

TEST_F(SliderColumn, CommentsAreInTheButtonWithEveryKeyAndFollowIt) {
    COpBox& box = Show(kTwo);
    COpButton& button = *box.inputs.at(0);
    TypeOver(Comments(button), "of <b>&sky");
    EXPECT_EQ(button.comments, "of <b>&sky");
    EXPECT_TRUE(document.IsModified());
    EXPECT_EQ(changes.size(), 10U);
    {
        const EditScope edit(document, "Comment");
        document.edits.ButtonTuned(button);
        button.comments = "from elsewhere";
    }
    EXPECT_EQ(Comments(button).text(), "from elsewhere");
}

TEST_F(SliderColumn, EnterInACommentReadsThePanelToo) {
    COpBox& box = Show(kTwo);
    COpButton& button = *box.inputs.at(0);
    test::GiveFocus(Comments(button));
    Field(button).setText("0.25");
    QTest::keyClick(&Comments(button), Qt::Key_Enter);
    EXPECT_EQ(static_cast<COpValueFloat&>(*button.values.at(0)).value, 0.25F);
}

TEST_F(SliderColumn, LongNamesAreElidedWithTheWholeInTheToolTip) {
    const std::string name = "AnOperatorWithAVeryLongNameThatNobodyCanRead&Write";
    COpBox& box = Show("input anInputWithAVeryLongName { float { 0 0 1 0 \"%g\" } }", name);
    std::vector<std::string> names;
    for (const NameLabel* label : test::ChildrenOf<NameLabel>(FrameOf(*box.inputs.at(0)))) {
        names.push_back(Bytes(label->Name()));
        EXPECT_EQ(label->toolTip(), label->Name());
        EXPECT_LT(label->width(), label->WholeWidth());
    }
    EXPECT_THAT(names, ElementsAre(name + "_1", "anInputWithAVeryLongName"));
}

TEST_F(SliderColumn, ShortNamesNeedNoToolTip) {
    COpBox& box = Show(kTwo);
    for (const NameLabel* label : test::ChildrenOf<NameLabel>(FrameOf(*box.inputs.at(0)))) {
        EXPECT_TRUE(label->toolTip().isEmpty());
        EXPECT_EQ(label->fontMetrics().elidedText(label->Name(), Qt::ElideMiddle, label->width()),
                  label->Name());
    }
}

// The kind of list that a rubber band over a whole network makes.
TEST_F(SliderColumn, FramesThatStayKeepTheirWindowsWhateverComesAboveThem) {
    COpBox& box = Show(kTwo, "m");
    CSliderFrame& frame = FrameOf(*box.inputs.at(0));
    TypeOver(Comments(*box.inputs.at(0)), "ab");
    const int caret = Comments(*box.inputs.at(0)).cursorPosition();
    Select(Add(desk, MakeBox("a", kTwo)));
    EXPECT_EQ(pane->FrameOf(*box.inputs.at(0)), &frame);
    EXPECT_GT(frame.y(), 0);
    EXPECT_EQ(Comments(*box.inputs.at(0)).cursorPosition(), caret);
    EXPECT_TRUE(test::HasFocus(Comments(*box.inputs.at(0))));
}

TEST_F(SliderColumn, ADocumentThatIsReadWhileAFieldIsTypedInTakesTheFramesAlong) {
    COpBox& box = Show(kTwo);
    TypeOver(Field(*box.inputs.at(0)), "7");
    document.DeleteContents();
    EXPECT_EQ(sliders.Frames().size(), 0U);
    pane->repaint();
    test::HandleEvents();
    EXPECT_EQ(Windows(), 0U);
}

TEST_F(SliderColumn, AHiddenColumnMakesNoWindows) {
    COpBox& box = Show(kTwo);
    const QWidget& field = Field(*box.inputs.at(0));
    pane->resize(0, kHeight);
    ASSERT_TRUE(WaitUntil([&] { return pane->viewport()->width() <= 0; }));
    EXPECT_FALSE(field.isVisible());
    COpBox& other = Add(desk, MakeBox("b", kTwo));
    Select(other);
    EXPECT_EQ(pane->FrameOf(*other.inputs.at(0)), nullptr);
    pane->resize(pane->ColumnWidth(), kHeight);
    ASSERT_TRUE(WaitUntil([&] { return pane->FrameOf(*other.inputs.at(0)) != nullptr; }));
    EXPECT_TRUE(field.isVisible());
}

TEST_F(SliderColumn, AnotherFontMeasuresEverythingAnew) {
    COpBox& box = Show(kTwo);
    const int height = FrameOf(*box.inputs.at(0)).height();
    const int width = pane->ColumnWidth();
    QFont font = pane->font();
    font.setPointSizeF(2 * font.pointSizeF());
    pane->setFont(font);
    test::HandleEvents();
    EXPECT_GT(FrameOf(*box.inputs.at(0)).height(), height * 3 / 2);
    EXPECT_GT(pane->ColumnWidth(), width * 3 / 2);
    EXPECT_EQ(FrameOf(*box.inputs.at(1)).y(), FrameOf(*box.inputs.at(0)).height());
}

}  // namespace
}  // namespace tavrin
