// SPDX-License-Identifier: Apache-2.0
#include "ui/sliders/NumberSpin.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QClipboard>
#include <QToolButton>
#include <clocale>
#include <limits>
#include <memory>
#include <vector>

#include "ui/sliders/HandTest.h"
#include "ui/sliders/NumberField.h"
#include "ui/support/Windows.h"

namespace tavrin {
namespace {

using test::TurnWheel;
using test::TypeInto;
using testing::ElementsAre;
using testing::IsEmpty;

class NumberSpin : public testing::Test {
  protected:
    NumberField& Field() { return spin->Field(); }
    QString Text() { return Field().text(); }
    // 0 is the arrow up.
    QToolButton& Arrow(int which) { return *spin->findChildren<QToolButton*>().at(which); }
    void Paste(const QString& text) {
        QApplication::clipboard()->setText(text);
        Field().selectAll();
        Field().paste();
    }

    QWidget window;
    std::vector<float> told;
    CNumberSpin* spin = new CNumberSpin(&window, "Hue", [this](float value) { told.push_back(value); });
};

TEST_F(NumberSpin, ShowsItsValueWhichIsToldToNobody) {
    EXPECT_EQ(Text(), "0");
    spin->SetValue(0.25F);
    EXPECT_EQ(Text(), "0.25");
    EXPECT_EQ(spin->Value(), 0.25F);
    EXPECT_THAT(told, IsEmpty());
    EXPECT_EQ(Field().accessibleName(), "Hue");
}

TEST_F(NumberSpin, AValueOutOfTheRangeComesToItsEnd) {
    spin->SetValue(7);
    EXPECT_EQ(spin->Value(), 1);
    spin->SetValue(-7);
    EXPECT_EQ(spin->Value(), 0);
    spin->SetValue(std::numeric_limits<float>::infinity());
    EXPECT_EQ(spin->Value(), 1);
}

TEST_F(NumberSpin, WhatIsNoNumberChangesNothing) {
    spin->SetValue(0.5F);
    spin->SetValue(std::numeric_limits<float>::quiet_NaN());
    EXPECT_EQ(spin->Value(), 0.5F);
    EXPECT_EQ(Text(), "0.5");
}

TEST_F(NumberSpin, AFieldThatHasTheValueKeepsItsText) {
    TypeInto(Field(), "0.50");
    spin->SetValue(0.5F);
    EXPECT_EQ(Text(), "0.50");
}

TEST_F(NumberSpin, EachKeyThatMakesANumberIsTold) {
    TypeInto(Field(), "0.25");
    EXPECT_THAT(told, ElementsAre(0, 0, 0.2F, 0.25F));
    EXPECT_EQ(spin->Value(), 0.25F);
    EXPECT_EQ(Text(), "0.25");
}

TEST_F(NumberSpin, ATextOnTheWayToANumberIsPassedOver) {
    spin->SetValue(0.5F);
    Field().selectAll();
    QTest::keyClick(&Field(), Qt::Key_Delete);
    EXPECT_EQ(Text(), "");
    QTest::keyClicks(&Field(), " ");
    QTest::keyClicks(&Field(), ".");
    EXPECT_EQ(Text(), " .");
    EXPECT_THAT(told, IsEmpty());
    EXPECT_EQ(spin->Value(), 0.5F);
    QTest::keyClicks(&Field(), "2");
    EXPECT_THAT(told, ElementsAre(0.2F));
}

TEST_F(NumberSpin, BlanksRoundANumberDoNotCount) {
    Paste("  0.75 ");
    EXPECT_THAT(told, ElementsAre(0.75F));
}

TEST_F(NumberSpin, ANumberOutOfTheRangeIsPutBack) {
    spin->SetValue(0.25F);
    Paste("1.5");
    EXPECT_EQ(Text(), "0.25");
    Paste("-0.5");
    EXPECT_EQ(Text(), "0.25");
    EXPECT_EQ(spin->Value(), 0.25F);
    EXPECT_THAT(told, IsEmpty());
}

TEST_F(NumberSpin, TypedKeyByKeyTheLastNumberOfTheRangeComesBack) {
    spin->SetValue(0.25F);
    TypeInto(Field(), "1.5");
    EXPECT_EQ(Text(), "1");
    EXPECT_EQ(spin->Value(), 1);
}

TEST_F(NumberSpin, WhatIsNoNumberIsPutBack) {
    spin->SetValue(0.25F);
    for (const char* text :
         {"x", "0.5x", "0.5 0.5", "nan", "inf", "-", "0,5", "0x1", "1e", "..", "1e-", "%f"}) {
        Paste(text);
        EXPECT_EQ(Text(), "0.25") << text;
    }
    EXPECT_THAT(told, IsEmpty());
}

TEST_F(NumberSpin, TheCaretStaysWhereABadKeyWasTyped) {
    spin->SetValue(0.25F);
    Field().setCursorPosition(3);
    QTest::keyClicks(&Field(), "x");
    EXPECT_EQ(Text(), "0.25");
    EXPECT_EQ(Field().cursorPosition(), 3);
}

TEST_F(NumberSpin, NumbersAreThoseOfTheCLocaleInEveryLocale) {
    const std::string before = std::setlocale(LC_ALL, nullptr);
    const QLocale locale;
    if (std::setlocale(LC_ALL, "de_DE.UTF-8") == nullptr) std::setlocale(LC_ALL, "");
    QLocale::setDefault(QLocale(QLocale::German));
    spin->SetValue(0.5F);
    EXPECT_EQ(Text(), "0.5");
    Paste("0.75");
    EXPECT_THAT(told, ElementsAre(0.75F));
    QLocale::setDefault(locale);
    std::setlocale(LC_ALL, before.c_str());
}

TEST_F(NumberSpin, AMegabyteThatIsPastedIsPutBackOrCut) {
    spin->SetValue(0.25F);
    Paste(QString(1'000'000, 'x'));
    EXPECT_EQ(Text(), "0.25");
    Paste("0.5" + QString(1'000'000, '0'));
    EXPECT_LT(Text().size(), 100);
    EXPECT_THAT(told, ElementsAre(0.5F));
}

TEST_F(NumberSpin, LeavingShowsTheValueInPlaceOfAnUnfinishedText) {
    QLineEdit other(&window);
    test::ShowActive(window);
    test::GiveFocus(Field());
    spin->SetValue(0.25F);
    TypeInto(Field(), ".");
    test::GiveFocus(other);
    EXPECT_EQ(Text(), "0.25");
    EXPECT_THAT(told, IsEmpty());
}

TEST_F(NumberSpin, TheArrowKeysStepByThousandths) {
    QTest::keyClick(&Field(), Qt::Key_Up);
    QTest::keyClick(&Field(), Qt::Key_Up);
    QTest::keyClick(&Field(), Qt::Key_Down);
    EXPECT_THAT(told, ElementsAre(0.001F, 0.002F, 0.001F));
    EXPECT_EQ(Text(), "0.001");
    QTest::keyClick(&Field(), Qt::Key_PageUp);
    QTest::keyClick(&Field(), Qt::Key_Up, Qt::ShiftModifier);
    EXPECT_EQ(Text(), "0.021");
    QTest::keyClick(&Field(), Qt::Key_Up, Qt::ControlModifier);  // no less than one
    QTest::keyClick(&Field(), Qt::Key_Down, Qt::ControlModifier);
    EXPECT_EQ(Text(), "0.021");
    EXPECT_EQ(told.size(), 7U);
}

TEST_F(NumberSpin, EachStepUpAndDownIsTheNextThousandth) {
    for (int i = 1; i <= 1000; ++i) {
        QTest::keyClick(&Field(), Qt::Key_Up);
        ASSERT_EQ(spin->Value(), static_cast<float>(i / 1000.0));
    }
    for (int i = 999; i >= 0; --i) {
        QTest::keyClick(&Field(), Qt::Key_Down);
        ASSERT_EQ(spin->Value(), static_cast<float>(i / 1000.0));
    }
}

TEST_F(NumberSpin, AStepFromBetweenGoesByWholeThousandths) {
    Paste("0.1239");
    QTest::keyClick(&Field(), Qt::Key_Up);
    EXPECT_EQ(Text(), "0.124");
    Paste("0.1239");
    QTest::keyClick(&Field(), Qt::Key_Down);
    EXPECT_EQ(Text(), "0.122");
}

TEST_F(NumberSpin, StepsEndAtTheEndsOfTheRangeAndTellNothingThere) {
    QTest::keyClick(&Field(), Qt::Key_Down);
    EXPECT_THAT(told, IsEmpty());
    spin->SetValue(0.998F);
    QTest::keyClick(&Field(), Qt::Key_PageUp);
    QTest::keyClick(&Field(), Qt::Key_PageUp);
    EXPECT_THAT(told, ElementsAre(1));
}

TEST_F(NumberSpin, TheArrowsStepAtThePressAndGiveTheFocusToTheField) {
    test::ShowActive(window);
    test::PressAt(Arrow(0), {3, 3});
    EXPECT_THAT(told, ElementsAre(0.001F));
    test::ReleaseAt(Arrow(0), {3, 3});
    EXPECT_THAT(told, ElementsAre(0.001F));
    EXPECT_TRUE(test::WaitUntil([&] { return Field().hasFocus(); }));
    test::ClickAt(Arrow(1), {3, 3});
    EXPECT_THAT(told, ElementsAre(0.001F, 0));
}

TEST_F(NumberSpin, AnArrowHeldDownGoesOn) {
    test::ShowActive(window);
    test::PressAt(Arrow(0), {3, 3});
    EXPECT_TRUE(test::WaitUntil([&] { return told.size() > 3; }));
    test::ReleaseAt(Arrow(0), {3, 3});
}

TEST_F(NumberSpin, TheMousesWheelStepsOnlyWhereTheFocusIs) {
    QLineEdit other(&window);
    test::ShowActive(window);
    test::GiveFocus(other);
    TurnWheel(Field(), 120);
    EXPECT_THAT(told, IsEmpty());
    test::GiveFocus(Field());
    TurnWheel(Field(), 240);
    EXPECT_THAT(told, ElementsAre(0.002F));
    TurnWheel(Field(), -120);
    EXPECT_THAT(told, ElementsAre(0.002F, 0.001F));
    TurnWheel(Field(), 120, Qt::ShiftModifier);
    EXPECT_THAT(told, ElementsAre(0.002F, 0.001F, 0.011F));
}

TEST_F(NumberSpin, SmallTurnsOfTheWheelAddUpToAStep) {
    test::ShowActive(window);
    test::GiveFocus(Field());
    TurnWheel(Field(), 50);
    TurnWheel(Field(), 50);
    EXPECT_THAT(told, IsEmpty());
    TurnWheel(Field(), 50);
    EXPECT_THAT(told, ElementsAre(0.001F));
    TurnWheel(Field(), 90);
    EXPECT_THAT(told, ElementsAre(0.001F, 0.002F));
}

TEST_F(NumberSpin, AnotherRangeHasItsOwnSteps) {
    CNumberSpin other(&window, "Angle", [this](float value) { told.push_back(value); }, {-90, 90, 18});
    EXPECT_EQ(other.Value(), -90);
    QTest::keyClick(&other.Field(), Qt::Key_Up);
    EXPECT_THAT(told, ElementsAre(-80));
    TypeInto(other.Field(), "45");
    EXPECT_EQ(other.Value(), 45);
    QTest::keyClick(&other.Field(), Qt::Key_Up);
    EXPECT_EQ(other.Value(), 50);
}

class SpinThatGoes : public testing::Test {
  protected:
    QWidget window;
    int calls = 0;
    CNumberSpin* spin = new CNumberSpin(&window, "Hue", [this](float) {
        ++calls;
        delete spin;
        spin = nullptr;
    });
};

TEST_F(SpinThatGoes, WhileItsFieldIsTypedIn) {
    test::ShowActive(window);
    test::GiveFocus(spin->Field());
    QTest::keyClick(&spin->Field(), '1');
    EXPECT_EQ(spin, nullptr);
    EXPECT_EQ(calls, 1);
}

TEST_F(SpinThatGoes, WhileItIsSteppedByAKey) {
    QTest::keyClick(&spin->Field(), Qt::Key_Up);
    EXPECT_EQ(spin, nullptr);
}

TEST_F(SpinThatGoes, WhileAnArrowIsPressed) {
    test::PressAt(*spin->findChild<QToolButton*>(), {3, 3});
    EXPECT_EQ(spin, nullptr);
}

TEST_F(SpinThatGoes, WhileTheWheelIsTurned) {
    test::ShowActive(window);
    test::GiveFocus(spin->Field());
    TurnWheel(spin->Field(), 120);
    EXPECT_EQ(spin, nullptr);
}

}  // namespace
}  // namespace tavrin
