// SPDX-License-Identifier: Apache-2.0
#include "ui/sliders/ColorPicker.h"

#include <QAction>
#include <QLabel>
#include <QScreen>
#include <QToolButton>
#include <array>
#include <cmath>
#include <limits>

#include "ui/sliders/ColorPickerTest.h"
#include "ui/support/Stacking.h"

namespace tavrin {
namespace {

using test::DragTo;
using test::PressAt;
using test::ReleaseAt;
using test::TypeInto;
using testing::ElementsAre;
using testing::IsEmpty;

// The window

using ColorPickerWindow = test::ColorPickerTest;

TEST_F(ColorPickerWindow, OneThatIsNeverOpenedHasNoControls) {
    picker->SetColor(1, 0, 0, false);
    EXPECT_THAT(picker->findChildren<QWidget*>(), IsEmpty());
    EXPECT_FALSE(picker->IsOpen());
}

TEST_F(ColorPickerWindow, OpensWithTheTitleAsItStandsAndTheColorThatWasSetBefore) {
    picker->SetColor(0.25F, 0.5F, 0.75F, false);
    picker->Open("R&D [*] 50%");
    EXPECT_TRUE(picker->IsOpen());
    EXPECT_TRUE(picker->isWindow());
    EXPECT_EQ(picker->parentWidget(), &owner);
    ASSERT_TRUE(test::WaitUntilSeen(*picker));
    EXPECT_EQ(picker->windowHandle()->title(), "R&D [*] 50%");
    EXPECT_EQ(Shown("Green"), 0.5F);
    EXPECT_EQ(SwatchColor(), QColor(63, 127, 191));
    EXPECT_THAT(told, IsEmpty());
}

TEST_F(ColorPickerWindow, ComesUpBesideItsOwner) {
    owner.move(300, 200);
    owner.show();
    ASSERT_TRUE(test::WaitUntilSeen(owner));
    Open();
    ASSERT_TRUE(test::WaitUntilSeen(*picker));
    EXPECT_TRUE(test::WaitUntil([&] {
        const QRect place = picker->frameGeometry();
        return place.left() > owner.geometry().right() && place.left() < owner.geometry().right() + 100 &&
               place.top() < owner.geometry().bottom();
    }));
}

TEST_F(ColorPickerWindow, ComesUpWhollyOnTheScreenAtTheOtherSideWhereThereIsNoRoom) {
    const QRect screen = owner.screen()->availableGeometry();
    owner.move(screen.right() - 250, screen.bottom() - 150);
    owner.show();
    ASSERT_TRUE(test::WaitUntilSeen(owner));
    Open();
    ASSERT_TRUE(test::WaitUntilSeen(*picker));
    EXPECT_TRUE(test::WaitUntil([&] {
        const QRect place = picker->frameGeometry();
        return screen.contains(place) && place.right() < owner.geometry().left();
    }));
}

TEST_F(ColorPickerWindow, ComesBackWhereTheUserPutIt) {
    OpenActive();
    picker->move(700, 500);
    ASSERT_TRUE(test::WaitUntil([&] { return picker->pos() == QPoint(700, 500); }));
    picker->close();
    Open();
    ASSERT_TRUE(test::WaitUntilSeen(*picker));
    EXPECT_TRUE(test::WaitUntil([&] { return picker->pos() == QPoint(700, 500); }));
}

TEST_F(ColorPickerWindow, OpenedAgainWhileItIsOpenItOnlyComesUp) {
    OpenActive();
    TypeInto(Field("Red"), "0.5");
    told.clear();
    const QPoint place = picker->pos();
    QWidget other(&owner, Qt::Drawer);
    other.setGeometry(picker->geometry());
    test::ShowActive(other);
    ASSERT_TRUE(test::WaitUntil([&] { return test::IsAbove(other, *picker); }));
    Open();
    EXPECT_TRUE(test::WaitUntil([&] { return test::IsAbove(*picker, other) && picker->isActiveWindow(); }));
    EXPECT_EQ(picker->pos(), place);
    EXPECT_EQ(Field("Red").text(), "0.5");
    EXPECT_THAT(told, IsEmpty());
}

TEST_F(ColorPickerWindow, OkTheCloseButtonAndEscapeCloseItAndChangeNothing) {
    OpenActive();
    TypeInto(Field("Red"), "0.5");
    told.clear();
    test::ClickAt(Ok(), Ok().rect().center());
    EXPECT_FALSE(picker->IsOpen());
    OpenActive();
    picker->close();
    EXPECT_FALSE(picker->IsOpen());
    OpenActive();
    QTest::keyClick(&Field("Red"), Qt::Key_Escape);
    EXPECT_FALSE(picker->IsOpen());
    EXPECT_THAT(told, IsEmpty());
    OpenActive();
    EXPECT_EQ(Shown("Red"), 0.5F);
}

TEST_F(ColorPickerWindow, EscapeClosesItFromEveryControlThoughItIsTheKeyOfACommand) {
    QAction command(&owner);
    int calls = 0;
    command.setShortcut(QKeySequence(Qt::Key_Escape));
    command.setShortcutContext(Qt::ApplicationShortcut);
    owner.addAction(&command);
    QObject::connect(&command, &QAction::triggered, &owner, [&calls] { ++calls; });
    Open();
    const auto fields = picker->findChildren<NumberField*>();
    std::vector<QWidget*> controls(fields.begin(), fields.end());
    controls.push_back(&Ok());
    for (QWidget* control : controls) {
        OpenActive();
        test::GiveFocus(*control);
        QTest::keyClick(control, Qt::Key_Escape);
        EXPECT_FALSE(picker->IsOpen());
    }
    EXPECT_EQ(calls, 0);
}

TEST_F(ColorPickerWindow, EnterIsForOkOnlyWhereThatHasTheFocus) {
    OpenActive();
    test::GiveFocus(Field("Red"));
    QTest::keyClick(&Field("Red"), Qt::Key_Return);
    EXPECT_TRUE(picker->IsOpen());
    test::GiveFocus(Ok());
    QTest::keyClick(&Ok(), Qt::Key_Return);
    EXPECT_FALSE(picker->IsOpen());
}

TEST_F(ColorPickerWindow, TheTabKeyGoesThroughHueSaturationLightnessRedGreenBlueAndOk) {
    OpenActive();
    test::GiveFocus(Field("Hue"));
    QStringList names;
    for (int i = 0; i < 8; ++i) {
        auto* control = &test::FocusWidget();
        ASSERT_NE(control, nullptr);
        names << (control == &Ok() ? "OK" : control->accessibleName());
        QTest::keyClick(control, Qt::Key_Tab);
    }
    EXPECT_EQ(names, QStringList({"Hue", "Saturation", "Lightness", "Red", "Green", "Blue", "OK", "Hue"}));
}

TEST_F(ColorPickerWindow, IsLaidOutInTwoColumnsBelowTheSwatchAndTheWheel) {
    OpenActive();
    EXPECT_EQ(Wheel().width(), Wheel().height());
    EXPECT_LT(Wheel().geometry().bottom(), Swatch().geometry().top());
    const auto place = [&](const char* name) {
        auto& field = Field(name);
        return QRect(field.mapTo(picker, QPoint(0, 0)), field.size());
    };
    for (const auto& column : {std::array{"Hue", "Saturation", "Lightness"}, {"Red", "Green", "Blue"}}) {
        EXPECT_LT(Swatch().geometry().bottom(), place(column[0]).top());
        EXPECT_LT(place(column[0]).bottom(), place(column[1]).top());
        EXPECT_LT(place(column[1]).bottom(), place(column[2]).top());
        EXPECT_EQ(place(column[0]).left(), place(column[2]).left());
        EXPECT_EQ(place(column[0]).width(), place(column[2]).width());
        EXPECT_LT(place(column[2]).bottom(), Ok().geometry().top());
    }
    EXPECT_EQ(place("Hue").top(), place("Red").top());
    EXPECT_LT(place("Hue").right(), place("Red").left());
    EXPECT_LT(std::abs(place("Hue").width() - place("Red").width()), 4);
    const int digits = picker->fontMetrics().horizontalAdvance("0.0000");
    EXPECT_GT(place("Hue").width(), digits);
    for (const QWidget* child : picker->findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly))
        EXPECT_TRUE(picker->rect().contains(child->geometry()));
    QStringList letters;
    for (const auto* label : picker->findChildren<QLabel*>()) letters << label->text();
    EXPECT_EQ(letters, QStringList({"H", "S", "V", "R", "G", "B"}));
}

// What is set

using ColorPickerColor = test::ColorPickerTest;

TEST_F(ColorPickerColor, PureRedHasNoHueAndStandsOnTop) {
    Open();
    picker->SetColor(0, 1, 0, false);
    picker->SetColor(1, 0, 0, false);
    EXPECT_THAT(Shown(), ElementsAre(0, 1, 0.5F, 1, 0, 0));
    EXPECT_EQ(Wheel().Wheel().Hue(), 0);
}

TEST_F(ColorPickerColor, BlackIsZeroInEveryField) {
    Open();
    picker->SetColor(0.1F, 0.7F, 0.3F, false);
    picker->SetColor(0, 0, 0, false);
    EXPECT_THAT(Shown(), ElementsAre(0, 0, 0, 0, 0, 0));
}

TEST_F(ColorPickerColor, AGreyLeavesTheWheelsHue) {
    Open();
    picker->SetColor(0, 1, 0, false);
    const double green = Wheel().Wheel().Hue();
    picker->SetColor(0.5F, 0.5F, 0.5F, false);
    EXPECT_EQ(Wheel().Wheel().Hue(), green);
    EXPECT_NEAR(Wheel().Wheel().TriangleMarker().y, Wheel().Wheel().Centre().y, 1e-5);
    EXPECT_THAT(Shown(), ElementsAre(0, 0, 0.5F, 0.5F, 0.5F, 0.5F));
}

TEST_F(ColorPickerColor, TheFieldsShowThousandths) {
    Open();
    picker->SetColor(1 / 3.0F, 0.12345F, 2 / 3.0F, false);
    EXPECT_EQ(Field("Red").text(), "0.333");
    EXPECT_EQ(Field("Green").text(), "0.123");
    EXPECT_EQ(Field("Blue").text(), "0.667");
}

TEST_F(ColorPickerColor, IsToldOnlyIfThatIsAskedForAndAsItWasSet) {
    Open();
    picker->SetColor(0.1F, 0.2F, 0.3F, false);
    EXPECT_THAT(told, IsEmpty());
    picker->SetColor(0.12345F, 0.2F, 0.3F, true);
    EXPECT_THAT(told, ElementsAre(Color{0.12345F, 0.2F, 0.3F}));
    picker->SetCallback({});
    picker->SetColor(0, 0, 0, true);
}

TEST_F(ColorPickerColor, FillsTheSwatchButForItsEdgeWithTruncatedBytes) {
    Open();
    picker->SetColor(0.5F, 0.25F, 1, false);
    EXPECT_EQ(SwatchColor(), QColor(127, 63, 255));
    picker->SetColor(0.2F, 0.6F, 0.9999F, false);  // the bytes of a scale of 255.99
    EXPECT_EQ(SwatchColor(), QColor(51, 153, 255));
    const QImage picture = Swatch().grab().toImage();
    const auto ratio = static_cast<int>(picture.devicePixelRatio());
    const QColor filled = SwatchColor();
    EXPECT_EQ(picture.pixelColor(2 * ratio, 2 * ratio), filled);
    EXPECT_EQ(picture.pixelColor(picture.width() - 1 - 2 * ratio, picture.height() - 1 - 2 * ratio), filled);
    EXPECT_NE(picture.pixelColor(2 * ratio - 1, 2 * ratio), filled);
    EXPECT_NE(picture.pixelColor(picture.width() - 2 * ratio, picture.height() - 1 - 2 * ratio), filled);
}

TEST_F(ColorPickerColor, ColorsOutsideTheCubeStayInTheFieldsRange) {
    Open();
    picker->SetColor(2, -1, 0.5F, false);
    EXPECT_EQ(Shown("Red"), 1);
    EXPECT_EQ(Shown("Green"), 0);
    EXPECT_EQ(Shown("Blue"), 0.5F);
    const std::vector<float> before = Shown();
    picker->SetColor(std::numeric_limits<float>::quiet_NaN(), 0, 0.5F, false);
    EXPECT_EQ(Shown("Red"), before[3]);
}

// A value that is locked

using ColorPickerLock = test::ColorPickerTest;

TEST_F(ColorPickerLock, DisabledItTakesNoInputAndADragEnds) {
    OpenActive();
    picker->SetColor(0.25F, 0.5F, 0.75F, false);
    PressAt(Wheel(), {5, 5});
    told.clear();
    picker->setEnabled(false);
    EXPECT_THAT(drags, ElementsAre("begin", "end"));
    DragTo(Wheel(), {50, 5});
    test::PressKey(Field("Red"), Qt::Key_1, "1");
    PressAt(*picker->findChild<QToolButton*>(), {3, 3});
    ReleaseAt(*picker->findChild<QToolButton*>(), {3, 3});
    test::TurnWheel(Field("Red"), 120);
    EXPECT_THAT(told, IsEmpty());
    picker->SetColor(0.125F, 0.5F, 0.75F, false);  // what the program shows still comes
    EXPECT_EQ(Field("Red").text(), "0.125");
    test::PressKey(*picker, Qt::Key_Escape);
    EXPECT_FALSE(picker->IsOpen());
}

}  // namespace
}  // namespace tavrin
