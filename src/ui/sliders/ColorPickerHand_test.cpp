// SPDX-License-Identifier: Apache-2.0
// What the user does in the color picker: fields and wheel, and both against each other.
#include <QToolButton>
#include <random>

#include "sliders/SliderValue.h"
#include "ui/sliders/ColorPickerTest.h"

namespace tavrin {
namespace {

using test::DragTo;
using test::PressAt;
using test::ReleaseAt;
using test::TypeInto;
using testing::ElementsAre;
using testing::IsEmpty;

// Fields

using ColorPickerFields = test::ColorPickerTest;

TEST_F(ColorPickerFields, AComponentThatIsTypedIsTheColorsAtOnce) {
    OpenActive();
    picker->SetColor(0.25F, 0.5F, 0.75F, false);
    TypeInto(Field("Blue"), "1");
    EXPECT_THAT(told, ElementsAre(Color{0.25F, 0.5F, 1}));
    EXPECT_EQ(SwatchColor(), QColor(63, 127, 255));
    EXPECT_NEAR(Shown("Lightness"), 0.625F, 1e-6F);
    EXPECT_NEAR(Wheel().Wheel().MarkerColor().b, 1, 1e-5F);
    told.clear();
    TypeInto(Field("Red"), "1");
    TypeInto(Field("Green"), "1");
    EXPECT_THAT(told, ElementsAre(Color{1, 0.5F, 1}, Color{1, 1, 1}));
}

TEST_F(ColorPickerFields, HueSaturationAndLightnessAreConvertedToComponents) {
    OpenActive();
    picker->SetColor(0.5F, 0.25F, 0.25F, false);
    TypeInto(Field("Hue"), "0.5");
    const Color cyan = ColorOf({0.5F, HslOf({0.5F, 0.25F, 0.25F}).s, 0.375F});
    EXPECT_NEAR(told.back().r, cyan.r, 0.001F);
    EXPECT_NEAR(told.back().b, cyan.b, 0.001F);
    EXPECT_NEAR(Wheel().Wheel().Hue(), kWholeTurn / 2, 0.01);
    TypeInto(Field("Saturation"), "1");
    EXPECT_NEAR(told.back().r, 0, 1e-6F);
    EXPECT_NEAR(told.back().b, 0.75F, 0.001F);
    Field("Lightness").Type("0.5");  // at once
    EXPECT_NEAR(told.back().b, 1, 0.001F);
    EXPECT_NEAR(Shown("Blue"), 1, 1e-6F);
}

TEST_F(ColorPickerFields, AGreyLosesTheHueThatIsTyped) {
    OpenActive();
    picker->SetColor(0.5F, 0.5F, 0.5F, false);
    TypeInto(Field("Hue"), "0.5");
    EXPECT_EQ(Shown("Hue"), 0);
    EXPECT_EQ(told.back(), (Color{0.5F, 0.5F, 0.5F}));
}

TEST_F(ColorPickerFields, BlackOnTheWayToANumberTakesTheHueAway) {
    OpenActive();
    picker->SetColor(0.25F, 0.5F, 0.75F, false);
    test::GiveFocus(Field("Lightness"));
    TypeInto(Field("Lightness"), "0");
    EXPECT_THAT(Shown(), ElementsAre(0, 0, 0, 0, 0, 0));
    QTest::keyClicks(&Field("Lightness"), ".25");
    EXPECT_THAT(Shown(), ElementsAre(0, 0, 0.25F, 0.25F, 0.25F, 0.25F));
}

// Thousandths of a dark color tell its hue only roughly.
TEST_F(ColorPickerFields, AnOwnerThatShowsWhatItWasToldDoesNotTakeTheTypedNumberAway) {
    OpenActive();
    picker->SetCallback([this](float r, float g, float b) {
        const Color rounded = Rounded({r, g, b});
        told.push_back(rounded);
        picker->SetColor(rounded.r, rounded.g, rounded.b, false);
    });
    picker->SetColor(0.02F, 0.01F, 0.01F, false);
    test::GiveFocus(Field("Hue"));
    TypeInto(Field("Hue"), "0.123");
    EXPECT_EQ(Field("Hue").text(), "0.123");
    Field("Lightness").Type("0.5");
    EXPECT_EQ(Field("Hue").text(), "0.123");
}

TEST_F(ColorPickerFields, AWholeTurnOfHueIsRedWhichStandsAtZero) {
    OpenActive();
    picker->SetColor(0, 1, 0, false);
    TypeInto(Field("Hue"), "1");
    EXPECT_EQ(told.back(), (Color{1, 0, 0}));
    EXPECT_EQ(Field("Hue").text(), "0");
}

TEST_F(ColorPickerFields, AFieldDoesNotFightWithAUserWhoTypesMoreDigits) {
    OpenActive();
    picker->SetColor(0.25F, 0.5F, 0.75F, false);
    for (const char* name : {"Red", "Green", "Blue", "Hue", "Saturation", "Lightness"}) {
        picker->SetColor(0.25F, 0.5F, 0.75F, false);
        for (const char* text : {"0.1234", "0.6789", "0.1875", "0.4375", "0.50", "0.10004"}) {
            TypeInto(Field(name), text);
            EXPECT_EQ(Field(name).text(), text) << name;
        }
    }
}

TEST_F(ColorPickerFields, ANumberOutOfTheRangeRestoresTheFormerOne) {
    OpenActive();
    picker->SetColor(0.25F, 0.5F, 0.75F, false);
    test::ReplaceText(Field("Green"), "1.5");
    EXPECT_EQ(Field("Green").text(), "0.5");
    test::ReplaceText(Field("Green"), "green");
    EXPECT_EQ(Field("Green").text(), "0.5");
    EXPECT_THAT(told, IsEmpty());
}

TEST_F(ColorPickerFields, AStepUpFromAllTheHueComesRoundToItsBegin) {
    OpenActive();
    picker->SetColor(0, 1, 0, false);
    TypeInto(Field("Hue"), "0.999");
    QTest::keyClick(&Field("Hue"), Qt::Key_Up);
    EXPECT_EQ(Field("Hue").text(), "0");
    QTest::keyClick(&Field("Hue"), Qt::Key_Up);
    EXPECT_EQ(Field("Hue").text(), "0.001");
}

// The wheel

using ColorPickerWheel = test::ColorPickerTest;

TEST_F(ColorPickerWheel, ADragTellsColorsInThousandths) {
    Open();
    const double side = Wheel().width();
    PressAt(Wheel(), {side * 0.53, side * 0.47});
    DragTo(Wheel(), {side * 0.57, side * 0.51});
    ReleaseAt(Wheel(), {side * 0.57, side * 0.51});
    ASSERT_EQ(told.size(), 2U);
    for (const Color& color : told) EXPECT_EQ(color, Rounded(color));
    EXPECT_EQ(Shown("Red"), told.back().r);
    EXPECT_EQ(Shown("Green"), told.back().g);
    EXPECT_THAT(drags, ElementsAre("begin", "end"));
}

// Rounded to thousandths, the darkest colors have hardly a hue: a drag through them is to keep it.
TEST_F(ColorPickerWheel, ADragThroughBlackAndWhiteKeepsTheHue) {
    Open();
    const ColorWheel& wheel = Wheel().Wheel();
    PressAt(Wheel(), {wheel.Size() * 0.8, wheel.Size() * 0.86});
    ReleaseAt(Wheel(), {wheel.Size() * 0.8, wheel.Size() * 0.86});
    const double hue = wheel.Hue();
    PressAt(Wheel(), {wheel.Centre().x, wheel.Centre().y});
    for (const WheelPoint corner : {wheel.BlackCorner(), wheel.WhiteCorner()}) {
        for (int share = 0; share <= 100; ++share) {
            DragTo(Wheel(), {wheel.Centre().x + (corner.x - wheel.Centre().x) * share / 100,
                             wheel.Centre().y + (corner.y - wheel.Centre().y) * share / 100});
        }
    }
    DragTo(Wheel(), {wheel.Centre().x, wheel.Centre().y});
    EXPECT_EQ(wheel.Hue(), hue);
}

TEST_F(ColorPickerWheel, TheOwnerMayAnswerEachColorByShowingIt) {
    Open();
    picker->SetCallback([this](float r, float g, float b) {
        told.push_back({r, g, b});
        picker->SetColor(r, g, b, false);
    });
    const double side = Wheel().width();
    PressAt(Wheel(), {side * 0.5, side * 0.5});
    DragTo(Wheel(), {side * 0.55, side * 0.5});
    EXPECT_EQ(told.size(), 2U);
    EXPECT_THAT(drags, ElementsAre("begin"));
}

TEST_F(ColorPickerWheel, ClosingInADragEndsIt) {
    OpenActive();
    PressAt(Wheel(), {5, 5});
    picker->close();
    EXPECT_THAT(drags, ElementsAre("begin", "end"));
}

TEST_F(ColorPickerWheel, DestroyedInADragItTellsTheEndOnce) {
    Open();
    PressAt(Wheel(), {5, 5});
    delete picker;
    EXPECT_THAT(drags, ElementsAre("begin", "end"));
}

TEST_F(ColorPickerWheel, GoesWithItsOwner) {
    auto* panel = new QWidget;
    auto* other = new CColorPicker(panel);
    std::vector<std::string> ends;
    other->SetDragHook([&ends](bool begins) { ends.emplace_back(begins ? "begin" : "end"); });
    other->Open("Sky");
    PressAt(*other->findChild<CColorWheel*>(), {5, 5});
    delete panel;
    EXPECT_THAT(ends, ElementsAre("begin", "end"));
}

// Those that hear may destroy the picker

class PickerThatGoes : public test::ColorPickerTest {
  protected:
    PickerThatGoes() {
        OpenActive();
        picker->SetCallback([this](float, float, float) { Go(); });
    }
    void Go() {
        ASSERT_NE(picker, nullptr) << "told of a picker that has gone";
        delete picker;
        picker = nullptr;
    }
};

TEST_F(PickerThatGoes, AtAPressOnTheWheel) {
    PressAt(Wheel(), {5, 5});
    EXPECT_EQ(picker, nullptr);
    EXPECT_THAT(drags, ElementsAre("begin", "end"));
}

// The window that the platform gave the mouse to goes with the picker.
TEST_F(PickerThatGoes, AtAPressThatThePlatformTellsItsWindow) {
    const QPoint place = Wheel().mapTo(picker, QPoint(5, 5));
    QTest::mousePress(picker->windowHandle(), Qt::LeftButton, {}, place);
    EXPECT_EQ(picker, nullptr);
    test::HandleEvents();
    EXPECT_THAT(drags, ElementsAre("begin", "end"));
}

TEST_F(PickerThatGoes, AtAKeyThatThePlatformTellsItsWindow) {
    test::GiveFocus(Field("Green"));
    QTest::keyPress(picker->windowHandle(), '1');
    EXPECT_EQ(picker, nullptr);
    test::HandleEvents();
}

TEST_F(PickerThatGoes, InADragOnTheWheel) {
    picker->SetCallback({});
    PressAt(Wheel(), {5, 5});
    picker->SetCallback([this](float, float, float) { Go(); });
    DragTo(Wheel(), {50, 5});
    EXPECT_EQ(picker, nullptr);
    EXPECT_THAT(drags, ElementsAre("begin", "end"));
}

TEST_F(PickerThatGoes, AtTheEndOfADrag) {
    picker->SetCallback({});
    picker->SetDragHook([this](bool begins) {
        drags.emplace_back(begins ? "begin" : "end");
        if (!begins) Go();
    });
    PressAt(Wheel(), {5, 5});
    ReleaseAt(Wheel(), {5, 5});
    EXPECT_EQ(picker, nullptr);
    EXPECT_THAT(drags, ElementsAre("begin", "end"));
}

TEST_F(PickerThatGoes, AtAKeyInAField) {
    test::GiveFocus(Field("Green"));
    QTest::keyClick(&Field("Green"), '1');
    EXPECT_EQ(picker, nullptr);
}

TEST_F(PickerThatGoes, AtAStepOfAField) {
    QTest::keyClick(&Field("Red"), Qt::Key_Up);
    EXPECT_EQ(picker, nullptr);
}

TEST_F(PickerThatGoes, AtAnArrowOfAField) {
    const auto arrows = picker->findChildren<QToolButton*>();
    PressAt(*arrows.last(), {3, 3});  // of blue, down, where nothing moves
    ASSERT_NE(picker, nullptr);
    ReleaseAt(*arrows.last(), {3, 3});
    PressAt(*arrows.at(arrows.size() - 2), {3, 3});
    EXPECT_EQ(picker, nullptr);
}

// All together

// A hand that does anything: drags, types, steps and turns.
class RandomHand {
  public:
    RandomHand(CColorPicker& picker, CColorWheel& wheel) : m_wheel(wheel) {
        m_fields = picker.findChildren<NumberField*>();
    }
    void Act() {
        NumberField& field = *m_fields[Below(int(m_fields.size()))];
        switch (Below(5)) {
            case 0:
                PressAt(m_wheel, Place());
                break;
            case 1:
                DragTo(m_wheel, Place());
                break;
            case 2:
                ReleaseAt(m_wheel, Place());
                break;
            case 3:
                TypeInto(field, QString::number(Below(1001) / 1000.0));
                break;
            default:
                QTest::keyClick(&field, Below(2) == 0 ? Qt::Key_Up : Qt::Key_Down,
                                Below(2) == 0 ? Qt::ShiftModifier : Qt::NoModifier);
        }
    }

  private:
    int Below(int count) { return std::uniform_int_distribution<int>(0, count - 1)(m_random); }
    QPointF Place() {
        std::uniform_real_distribution<double> place(-0.1, 1.1);
        return {place(m_random) * m_wheel.width(), place(m_random) * m_wheel.height()};
    }

    std::mt19937 m_random{5};
    CColorWheel& m_wheel;
    QList<NumberField*> m_fields;
};

using ColorPickerWalk = test::ColorPickerTest;

TEST_F(ColorPickerWalk, WheelFieldsAndSwatchStayInStepWhateverTheHandDoes) {
    OpenActive();
    RandomHand hand(*picker, Wheel());
    picker->SetColor(0.25F, 0.5F, 0.75F, true);
    for (int i = 0; i < 500; ++i) {
        hand.Act();
        const Color color = told.back();
        const Hsl hsl = HslOf(color);
        const float expected[] = {hsl.h, hsl.s, hsl.l, color.r, color.g, color.b};
        const std::vector<float> shown = Shown();
        // Half a thousandth by the rounding, and as much again that a field may be apart from that.
        for (size_t field = 0; field < 6; ++field) ASSERT_NEAR(shown[field], expected[field], 0.00101F);
        const Color marked = Wheel().Wheel().MarkerColor();
        ASSERT_NEAR(marked.r, color.r, 0.00051F);
        ASSERT_NEAR(marked.g, color.g, 0.00051F);
        ASSERT_NEAR(marked.b, color.b, 0.00051F);
        ASSERT_EQ(SwatchColor(), QColor(SwatchByte(color.r, 255.99), SwatchByte(color.g, 255.99),
                                        SwatchByte(color.b, 255.99)));
    }
    EXPECT_GT(told.size(), 200U);
}

}  // namespace
}  // namespace tavrin
