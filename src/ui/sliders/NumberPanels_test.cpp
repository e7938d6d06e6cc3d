// SPDX-License-Identifier: Apache-2.0
#include "ui/sliders/NumberPanels.h"

#include <QCheckBox>
#include <QWheelEvent>

#include "ui/sliders/SliderTest.h"

namespace tavrin {
namespace {

using test::WaitUntil;
using testing::ElementsAre;
using testing::IsEmpty;

class NumberPanels : public test::SliderTest {
  protected:
    // The one input of a box, a number with that range.
    COpButton& ShowFloat(const std::string& numbers) {
        return *Show("input x { float { " + numbers + " \"%g\" } }").inputs.at(0);
    }
    COpButton& ShowXyz(const std::string& numbers) {
        return *Show("input p { xyz { " + numbers + " \"%g %g %g\" } }").inputs.at(0);
    }
    static COpValueFloat& FloatOf(COpButton& button) {
        return static_cast<COpValueFloat&>(*button.values.at(0));
    }
    static COpValueXyz& XyzOf(COpButton& button) { return static_cast<COpValueXyz&>(*button.values.at(0)); }
    QCheckBox& Int(const COpButton& button) { return *FrameOf(button).findChild<QCheckBox*>(); }
};

TEST_F(NumberPanels, ShowTheValueItsRangeAndItsPlaceInIt) {
    COpButton& button = ShowFloat("0.5 0 1 0");
    EXPECT_EQ(Field(button, "Min").text(), "0");
    EXPECT_EQ(Field(button, "Max").text(), "1");
    EXPECT_EQ(Field(button).text(), "0.5");
    EXPECT_EQ(Slider(button).value(), 50);
    EXPECT_FALSE(Int(button).isChecked());
    EXPECT_FALSE(document.IsModified());
    EXPECT_THAT(changes, IsEmpty());
}

TEST_F(NumberPanels, ADragIsOneEditThatIsInTheValueFromTheFirstStep) {
    COpButton& button = ShowFloat("0.5 0 1 0");
    ValueSlider& slider = Slider(button);
    Drag(slider, 33, true);
    EXPECT_NEAR(FloatOf(button).value, 0.33F, 1e-6);
    EXPECT_EQ(Field(button).text(), "0.33");
    EXPECT_TRUE(document.IsModified());
    EXPECT_THAT(changes, IsEmpty());
    Release(slider, 33);
    EXPECT_THAT(changes, ElementsAre("Value: tuned a_1.x"));
    EXPECT_NEAR(FloatOf(button).value, 0.33F, 1e-6);
}

TEST_F(NumberPanels, AReversedRangeRunsBackward) {
    COpButton& button = ShowFloat("10 10 0 0");
    Drag(Slider(button), 100);
    EXPECT_NEAR(FloatOf(button).value, 0, 1e-5);
    Drag(Slider(button), 25);
    EXPECT_NEAR(FloatOf(button).value, 7.5, 1e-5);
}

TEST_F(NumberPanels, WithWholeNumbersTheThumbSnaps) {
    COpButton& button = ShowFloat("0 0 10 1");
    EXPECT_TRUE(Int(button).isChecked());
    Drag(Slider(button), 37);
    EXPECT_EQ(FloatOf(button).value, 3);
    EXPECT_EQ(Slider(button).value(), 30);
    EXPECT_EQ(Field(button).text(), "3");
}

TEST_F(NumberPanels, WholeNumbersAreCutTowardZero) {
    COpButton& button = ShowFloat("1 -1 1 1");
    Drag(Slider(button), 10);
    EXPECT_EQ(FloatOf(button).value, 0);
    EXPECT_EQ(Slider(button).value(), 50);
}

TEST_F(NumberPanels, AnEmptyRangeHasItsSliderAtTheLeftAndGivesItsOneValue) {
    COpButton& button = ShowFloat("5 2 2 0");
    EXPECT_EQ(Slider(button).value(), 0);
    Drag(Slider(button), 60);
    EXPECT_EQ(FloatOf(button).value, 2);
    EXPECT_EQ(Slider(button).value(), 0);
}

TEST_F(NumberPanels, AValueOutsideTheRangeStaysUntilTheFocusLeavesAField) {
    COpButton& button = ShowFloat("7 0 1 0");
    EXPECT_EQ(Slider(button).value(), 100);
    EXPECT_EQ(FloatOf(button).value, 7);
    TypeOver(Field(button), "-3");
    EXPECT_EQ(FloatOf(button).value, -3);
    EXPECT_EQ(Slider(button).value(), 0);
    document.SetModified(false);
    Leave();
    EXPECT_EQ(FloatOf(button).value, 0);
    EXPECT_EQ(Field(button).text(), "0");
    EXPECT_TRUE(document.IsModified());
}

TEST_F(NumberPanels, AReversedRangeClampsAsWell) {
    COpButton& button = ShowFloat("7 10 6 0");
    TypeOver(Field(button), "50");
    Leave();
    EXPECT_EQ(FloatOf(button).value, 10);
    TypeOver(Field(button, "Max"), "8");
    TypeOver(Field(button), "1");
    Leave();
    EXPECT_EQ(FloatOf(button).value, 8);
}

TEST_F(NumberPanels, LeavingAFieldOfAValueThatLiesInItsRangeIsNoEdit) {
    COpButton& button = ShowFloat("0.5 0 1 0");
    test::GiveFocus(Field(button));
    Leave();
    EXPECT_FALSE(document.IsModified());
    EXPECT_EQ(FloatOf(button).value, 0.5F);
}

TEST_F(NumberPanels, EachKeyCountsAndTheTextStaysAsItIsTyped) {
    COpButton& button = ShowFloat("0.5 -10 10 0");
    TypeOver(Field(button), "-");
    EXPECT_FALSE(document.IsModified());
    EXPECT_EQ(FloatOf(button).value, 0.5F);
    const std::vector<std::pair<char, float>> keys = {
        {'.', 0.5F}, {'2', -0.2F}, {'5', -0.25F}, {'0', -0.25F}};
    QString typed = "-";
    for (const auto& [key, value] : keys) {
        QTest::keyClick(&Field(button), key);
        typed += QLatin1Char(key);
        EXPECT_EQ(FloatOf(button).value, value) << key;
        EXPECT_EQ(Field(button).text(), typed);
    }
    EXPECT_EQ(Slider(button).value(), 48);
    Leave();
    EXPECT_EQ(Field(button).text(), "-0.25");
}

TEST_F(NumberPanels, AnEmptyTextIsOnTheWayToANumber) {
    COpButton& button = ShowFloat("0.5 0 1 0");
    for (const char* text : {"", "."}) {
        TypeOver(Field(button), text);
        EXPECT_FALSE(Field(button).IsRefused());
    }
    EXPECT_EQ(FloatOf(button).value, 0.5F);
    EXPECT_FALSE(document.IsModified());
    Leave();
    EXPECT_EQ(Field(button).text(), "0.5");
}

class RefusedNumber : public NumberPanels, public testing::WithParamInterface<const char*> {};

TEST_P(RefusedNumber, IsMarkedAndTheFormerValueStands) {
    COpButton& button = ShowFloat("0.5 0 1 0");
    Paste(Field(button), GetParam());
    EXPECT_TRUE(Field(button).IsRefused());
    EXPECT_FALSE(Field(button).toolTip().isEmpty());
    EXPECT_EQ(FloatOf(button).value, 0.5F);
    EXPECT_FALSE(document.IsModified());
    EXPECT_THAT(status, ElementsAre("Enter a number, such as 0.5 or -2"));
    Leave();
    EXPECT_EQ(Field(button).text(), "0.5");
    EXPECT_FALSE(Field(button).IsRefused());
    EXPECT_TRUE(Field(button).toolTip().isEmpty());
}

INSTANTIATE_TEST_SUITE_P(Texts, RefusedNumber,
                         testing::Values("abc", "0.5x", "nan", "inf", "-inf", "1e39", "0x1", "1,5", "1 2"));

TEST_F(NumberPanels, AMegabyteThatIsPastedHarmsNothing) {
    COpButton& button = ShowFloat("0.5 0 1 0");
    Paste(Field(button), QString(1 << 20, 'x'));
    EXPECT_EQ(FloatOf(button).value, 0.5F);
    EXPECT_LT(Field(button).text().size(), 100);
    Leave();
    EXPECT_EQ(Field(button).text(), "0.5");
}

TEST_F(NumberPanels, ANumberCanBePasted) {
    COpButton& button = ShowFloat("0.5 0 1 0");
    Paste(Field(button), " 0.125\n");
    EXPECT_EQ(FloatOf(button).value, 0.125F);
}

TEST_F(NumberPanels, ABadTextInOneFieldKeepsTheOthersFromBeingRead) {
    COpButton& button = ShowFloat("0.5 0 1 0");
    TypeOver(Field(button, "Min"), "a");
    Field(button).setText("0.75");  // as if typed, without leaving the other
    QTest::keyClick(&Field(button), '1');
    EXPECT_EQ(FloatOf(button).value, 0.5F);
    EXPECT_TRUE(Field(button, "Min").IsRefused());
    EXPECT_FALSE(Field(button).IsRefused());
}

// What a field does not show of a number is lost when any of them is read.
TEST_F(NumberPanels, FieldsCarrySixDigits) {
    COpButton& button = ShowFloat("0.12345678 0 1 0");
    TypeOver(Field(button, "Max"), "2");
    EXPECT_EQ(FloatOf(button).max, 2);
    EXPECT_EQ(FloatOf(button).value, 0.123457F);
}

TEST_F(NumberPanels, TheSwitchForWholeNumbersCutsWhatTheSliderGivesAndNotWhatIsTyped) {
    COpButton& button = ShowFloat("0.5 0 10 0");
    QTest::mouseClick(&Int(button), Qt::LeftButton, {}, {8, Int(button).height() / 2});
    EXPECT_EQ(FloatOf(button).integer, 1);
    EXPECT_EQ(FloatOf(button).value, 0.5F);
    EXPECT_TRUE(document.IsModified());
    TypeOver(Field(button), "2.5");
    Leave();
    EXPECT_EQ(FloatOf(button).value, 2.5F);
    Drag(Slider(button), 48);
    EXPECT_EQ(FloatOf(button).value, 4);
}

TEST_F(NumberPanels, EachSliderOfAPointHasItsOwnNumberInTheCommonRange) {
    COpButton& button = ShowXyz("1 2 3 0 10 0");
    EXPECT_EQ(Slider(button, "X").value(), 10);
    EXPECT_EQ(Slider(button, "Z").value(), 30);
    Drag(Slider(button, "Y"), 80);
    EXPECT_EQ(XyzOf(button).x, 1);
    EXPECT_NEAR(XyzOf(button).y, 8, 1e-5);
    EXPECT_EQ(XyzOf(button).z, 3);
    TypeOver(Field(button, "Max"), "5");
    EXPECT_EQ(Slider(button, "X").value(), 20);
    EXPECT_EQ(Slider(button, "Z").value(), 60);
    Leave();
    EXPECT_EQ(XyzOf(button).y, 5);
    EXPECT_EQ(Field(button, "Y").text(), "5");
}

TEST_F(NumberPanels, AnEmptyRangePutsAllThreeSlidersAtTheLeft) {
    COpButton& button = ShowXyz("1 2 3 4 4 0");
    for (const char* axis : {"X", "Y", "Z"}) EXPECT_EQ(Slider(button, axis).value(), 0);
}

// For a point the switch itself counts, for a number what was read of it.
TEST_F(NumberPanels, WhileAFieldHoldsNoNumberTheSwitchOfAPointIsAheadOfItsValue) {
    COpButton& point = ShowXyz("1 2 3 0 10 0");
    TypeOver(Field(point, "Min"), "a");
    Int(point).click();
    EXPECT_EQ(XyzOf(point).integer, 0);
    Slider(point, "X").triggerAction(QAbstractSlider::SliderSingleStepAdd);  // with the focus in the field
    EXPECT_EQ(XyzOf(point).x, 1);
    Slider(point, "X").triggerAction(QAbstractSlider::SliderPageStepAdd);
    EXPECT_EQ(XyzOf(point).x, 2);
    EXPECT_EQ(XyzOf(point).integer, 0);
}

TEST_F(NumberPanels, KeysOfTheSliderReachEveryPosition) {
    COpButton& button = ShowFloat("0 0 1 0");
    ValueSlider& slider = Slider(button);
    test::GiveFocus(slider);
    for (int step = 1; step <= 100; ++step) {
        QTest::keyClick(&slider, Qt::Key_Right);
        ASSERT_NEAR(FloatOf(button).value, static_cast<float>(step) / 100, 1e-6);
    }
    for (int step = 99; step >= 0; --step) {
        QTest::keyClick(&slider, Qt::Key_Left);
        ASSERT_NEAR(FloatOf(button).value, static_cast<float>(step) / 100, 1e-6);
    }
    QTest::keyClick(&slider, Qt::Key_End);
    EXPECT_EQ(FloatOf(button).value, 1);
    QTest::keyClick(&slider, Qt::Key_PageDown);
    EXPECT_NEAR(FloatOf(button).value, 0.9, 1e-6);
}

TEST_F(NumberPanels, AClickBesideTheThumbMovesIt) {
    COpButton& button = ShowFloat("0 0 1 0");
    ValueSlider& slider = Slider(button);
    QTest::mouseClick(&slider, Qt::LeftButton, {}, ThumbAt(slider, 90));
    EXPECT_GT(FloatOf(button).value, 0);
    EXPECT_TRUE(document.IsModified());
}

// A position that was cut off must not be taken for the user's.
TEST_F(NumberPanels, BeingShownAgainNeverMovesAValue) {
    COpButton& button = ShowFloat("0 0 1 0");
    const std::vector<SliderPanel*> panels{FrameOf(button).Panel()};
    for (int position = 0; position <= kSliderSteps; ++position) {
        const float value = SliderValue(position, {0, 1, false});
        FloatOf(button).value = value;
        for (int times = 0; times < 3; ++times) panels.at(0)->Refresh();
        ASSERT_EQ(FloatOf(button).value, value);
        Drag(Slider(button), position);
        ASSERT_EQ(FloatOf(button).value, value);
    }
    changes.clear();
    panels.at(0)->Refresh();
    EXPECT_THAT(changes, IsEmpty());
}

TEST_F(NumberPanels, ArrowKeysStepTheNumberInAField) {
    COpButton& button = ShowFloat("0.5 0 1 0");
    NumberField& field = Field(button);
    test::GiveFocus(field);
    QTest::keyClick(&field, Qt::Key_Up);
    EXPECT_NEAR(FloatOf(button).value, 0.51, 1e-6);
    QTest::keyClick(&field, Qt::Key_Down, Qt::ShiftModifier);
    EXPECT_NEAR(FloatOf(button).value, 0.41, 1e-6);
    QTest::keyClick(&field, Qt::Key_Up, Qt::ControlModifier);
    EXPECT_NEAR(FloatOf(button).value, 0.411, 1e-6);
    for (int i = 0; i < 12; ++i) QTest::keyClick(&field, Qt::Key_PageUp);
    EXPECT_EQ(FloatOf(button).value, 1);
    NumberField& max = Field(button, "Max");
    test::GiveFocus(max);
    QTest::keyClick(&max, Qt::Key_Up);
    EXPECT_NEAR(FloatOf(button).max, 1.01, 1e-6);
}

TEST_F(NumberPanels, TheWheelMovesASliderOnlyWhereItHasTheFocus) {
    COpButton& button = ShowFloat("0.5 0 1 0");
    ValueSlider& slider = Slider(button);
    const auto turn = [&] {
        const QPoint at = slider.rect().center();
        QWheelEvent event(at, slider.mapToGlobal(at), {}, {0, 120}, Qt::NoButton, {}, Qt::NoScrollPhase,
                          false);
        QCoreApplication::sendEvent(&slider, &event);
    };
    turn();
    EXPECT_EQ(FloatOf(button).value, 0.5F);
    test::GiveFocus(slider);
    turn();
    EXPECT_NE(FloatOf(button).value, 0.5F);
}

TEST_F(NumberPanels, ALockWhileDraggingEndsTheDragWhereItIs) {
    COpButton& button = ShowFloat("0 0 1 0");
    ValueSlider& slider = Slider(button);
    Drag(slider, 40, true);
    const float value = FloatOf(button).value;
    sliders.SetLock(button, true);
    EXPECT_FALSE(FrameOf(button).Panel()->isEnabled());
    DragOn(slider, 90);
    EXPECT_EQ(FloatOf(button).value, value);
    Release(slider, 90);
    EXPECT_EQ(FloatOf(button).value, value);
    EXPECT_FALSE(document.edits.IsOpen());
    sliders.SetLock(button, false);
    DragOn(slider, 10);
    EXPECT_EQ(FloatOf(button).value, value);
}

TEST_F(NumberPanels, ABoxThatGoesWhileItsFieldIsTypedInTakesNothingAlong) {
    COpBox& box = Show("input x { float { 0.5 0 1 0 \"%g\" } }");
    COpBox& other = Add(desk, test::MakeBox("b", "input x { float { 0.5 0 1 0 \"%g\" } }"));
    Select(other);
    TypeOver(Field(*box.inputs.at(0)), "7");
    desk.DeleteBox(box);
    EXPECT_EQ(sliders.Frames().size(), 1U);
    EXPECT_EQ(FloatOf(*other.inputs.at(0)).value, 0.5F);
    EXPECT_FALSE(document.edits.IsOpen());
    test::HandleEvents();
}

// What vanishes has not been left by the user.
TEST_F(NumberPanels, AFrameThatVanishesClampsNothing) {
    COpBox& box = Show("input x { float { 0.5 0 1 0 \"%g\" } }");
    TypeOver(Field(*box.inputs.at(0)), "7");
    Select(box, false);
    EXPECT_EQ(FloatOf(*box.inputs.at(0)).value, 7);
    test::HandleEvents();
    EXPECT_EQ(FloatOf(*box.inputs.at(0)).value, 7);
}

TEST_F(NumberPanels, ADragThatItsFrameDoesNotOutliveEnds) {
    COpBox& box = Show("input x { float { 0.5 0 1 0 \"%g\" } }");
    Drag(Slider(*box.inputs.at(0)), 80, true);
    EXPECT_TRUE(document.edits.IsOpen());
    desk.DeleteBox(box);
    EXPECT_FALSE(document.edits.IsOpen());
    EXPECT_THAT(changes.back(), testing::HasSubstr("went a_1"));
    test::HandleEvents();
}

TEST_F(NumberPanels, EnterReadsWhatIsShown) {
    COpButton& button = ShowFloat("0.5 0 1 0");
    test::GiveFocus(Field(button));
    Field(button).setText("0.25");
    QTest::keyClick(&Field(button), Qt::Key_Return);
    EXPECT_EQ(FloatOf(button).value, 0.25F);
    Field(button).setText("0.75");
    QTest::keyClick(&Field(button), Qt::Key_Escape);
    EXPECT_EQ(FloatOf(button).value, 0.25F);
}

}  // namespace
}  // namespace tavrin
