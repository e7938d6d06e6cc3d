// SPDX-License-Identifier: Apache-2.0
#include "ui/sliders/ColorPanels.h"

#include <QApplication>
#include <QPushButton>

#include "ui/sliders/ColorPicker.h"
#include "ui/sliders/PixelPicker.h"
#include "ui/sliders/SliderTest.h"

namespace tavrin {
namespace {

using test::WaitUntil;
using testing::ElementsAre;
using testing::IsEmpty;

class ColorPanels : public test::SliderTest {
  protected:
    COpButton& ShowRgb(const std::string& numbers = "0.5 0.25 1") {
        return *Show("input c { rgb { " + numbers + " \"%g %g %g\" } }").inputs.at(0);
    }
    COpButton& ShowRgba(const std::string& numbers) {
        return *Show("input c { rgba { " + numbers + " \"%g %g %g %g\" } }").inputs.at(0);
    }
    static COpValueRgb& RgbOf(COpButton& button) { return static_cast<COpValueRgb&>(*button.values.at(0)); }
    static COpValueRgba& RgbaOf(COpButton& button) {
        return static_cast<COpValueRgba&>(*button.values.at(0));
    }
    static std::vector<float> Numbers(COpButton& button) {
        const COpValueRgb& rgb = RgbOf(button);
        return {rgb.r, rgb.g, rgb.b};
    }
    QPushButton& Button(const COpButton& button, const QString& text) {
        for (auto* candidate : FrameOf(button).findChildren<QPushButton*>()) {
            if (candidate->text() == text) return *candidate;
        }
        throw std::logic_error("no button");
    }
    // What is seen of the panel.
    QImage Picture(const COpButton& button) { return FrameOf(button).Panel()->grab().toImage(); }
    // Where a colour stands in it that is nowhere else.
    static std::optional<QPoint> Where(const QImage& picture, const QColor& color) {
        for (int y = 0; y < picture.height(); ++y)
            for (int x = 0; x < picture.width(); ++x)
                if (picture.pixel(x, y) == color.rgb()) return QPoint(x, y);
        return std::nullopt;
    }
    CColorPicker* Picker() {
        for (QWidget* window : QApplication::topLevelWidgets()) {
            if (auto* picker = dynamic_cast<CColorPicker*>(window)) return picker;
        }
        return nullptr;
    }
    CColorPicker& OpenPicker(const COpButton& button) {
        QTest::mouseClick(&Button(button, "HSV"), Qt::LeftButton);
        EXPECT_TRUE(WaitUntil([&] { return Picker() != nullptr && Picker()->IsOpen(); }));
        return *Picker();
    }
};

TEST_F(ColorPanels, ShowTheColourInFieldsSlidersAndSwatch) {
    COpButton& button = ShowRgb();
    EXPECT_EQ(Field(button, "Red").text(), "0.5");
    EXPECT_EQ(Field(button, "Green").text(), "0.25");
    EXPECT_EQ(Slider(button, "Red").value(), 50);
    EXPECT_EQ(Slider(button, "Green").value(), 25);
    EXPECT_EQ(Slider(button, "Blue").value(), 100);
    EXPECT_TRUE(Where(Picture(button), QColor(127, 63, 255)));
    EXPECT_FALSE(document.IsModified());
}

TEST_F(ColorPanels, TheAlphaSwatchIsGreyBesideThatOfTheColour) {
    COpButton& button = ShowRgba("0.5 0.25 1 0.4");
    EXPECT_EQ(Slider(button, "Alpha").value(), 40);
    const QImage picture = Picture(button);
    EXPECT_TRUE(Where(picture, QColor(127, 63, 255)));
    EXPECT_TRUE(Where(picture, QColor(102, 102, 102)));
}

TEST_F(ColorPanels, OnlyADraggedThumbChangesAComponent) {
    COpButton& button = ShowRgb();
    ValueSlider& slider = Slider(button, "Green");
    test::GiveFocus(slider);
    QTest::keyClick(&slider, Qt::Key_Right);
    EXPECT_EQ(slider.value(), 26);
    EXPECT_EQ(RgbOf(button).g, 0.25F);
    QTest::mouseClick(&slider, Qt::LeftButton, {}, ThumbAt(slider, 90));
    EXPECT_EQ(RgbOf(button).g, 0.25F);
    EXPECT_FALSE(document.IsModified());
    Drag(slider, 33);
    EXPECT_NEAR(RgbOf(button).g, 0.33, 1e-6);
    EXPECT_EQ(RgbOf(button).r, 0.5F);
    EXPECT_EQ(Field(button, "Green").text(), "0.33");
    EXPECT_THAT(changes, ElementsAre("Value: tuned a_1.c"));
}

TEST_F(ColorPanels, ATextCountsWithEveryKeyAndMovesSliderAndSwatch) {
    COpButton& button = ShowRgb();
    TypeOver(Field(button, "Blue"), "0.");
    EXPECT_EQ(RgbOf(button).b, 0);
    QTest::keyClick(&Field(button, "Blue"), '5');
    EXPECT_EQ(RgbOf(button).b, 0.5F);
    EXPECT_EQ(Field(button, "Blue").text(), "0.5");
    EXPECT_EQ(Slider(button, "Blue").value(), 50);
    EXPECT_TRUE(Where(Picture(button), QColor(127, 63, 127)));
}

TEST_F(ColorPanels, AnEmptyTextOrAPointIsNotReadYet) {
    COpButton& button = ShowRgb();
    for (const char* text : {"", "."}) {
        TypeOver(Field(button, "Red"), text);
        EXPECT_EQ(Field(button, "Red").text(), text);
    }
    EXPECT_EQ(RgbOf(button).r, 0.5F);
    EXPECT_FALSE(document.IsModified());
    Leave();
    EXPECT_EQ(Field(button, "Red").text(), "0.5");
}

TEST_F(ColorPanels, WhatIsNoShareGivesPlaceToTheFormerNumber) {
    COpButton& button = ShowRgb();
    for (const char* text : {"1.5", "-1", "abc", "nan", "inf", "0.5x", "0,5", "1e39"}) {
        Paste(Field(button, "Red"), text);
        EXPECT_EQ(Field(button, "Red").text(), "0.5") << text;
        EXPECT_EQ(RgbOf(button).r, 0.5F) << text;
        EXPECT_EQ(status.back(), "Enter a number from 0 to 1");
        status = {""};
    }
    EXPECT_FALSE(document.IsModified());
    Paste(Field(button, "Red"), QString(1 << 20, '7'));
    EXPECT_EQ(Field(button, "Red").text(), "0.5");
}

TEST_F(ColorPanels, ArrowKeysInAFieldStepWithinTheRange) {
    COpButton& button = ShowRgb();
    NumberField& field = Field(button, "Blue");
    test::GiveFocus(field);
    QTest::keyClick(&field, Qt::Key_Up);
    EXPECT_EQ(RgbOf(button).b, 1);
    QTest::keyClick(&field, Qt::Key_Down);
    EXPECT_NEAR(RgbOf(button).b, 0.99, 1e-6);
}

TEST_F(ColorPanels, AClickOnASwatchLogsTheColour) {
    COpButton& button = ShowRgb();
    const QPoint swatch = *Where(Picture(button), QColor(127, 63, 255)) + QPoint(2, 2);
    Click(*FrameOf(button).Panel(), swatch);
    EXPECT_EQ(host.Sink().log, "a_1_c Rgb: 0.5, 0.25, 1\r\n");
    button.comments = "the sky";
    Click(*FrameOf(button).Panel(), swatch);
    EXPECT_THAT(host.Sink().log, testing::EndsWith("a_1_c (the sky) Rgb: 0.5, 0.25, 1\r\n"));
    Click(*FrameOf(button).Panel(), swatch, Qt::RightButton);
    Click(*FrameOf(button).Panel(), {1, FrameOf(button).Panel()->height() - 1});
    EXPECT_EQ(std::count(host.Sink().log.begin(), host.Sink().log.end(), '\n'), 2);
}

TEST_F(ColorPanels, TheAlphaSwatchLogsAllFour) {
    COpButton& button = ShowRgba("0.5 0.25 1 0.4");
    const QPoint swatch = *Where(Picture(button), QColor(102, 102, 102)) + QPoint(2, 2);
    Click(*FrameOf(button).Panel(), swatch);
    EXPECT_EQ(host.Sink().log, "a_1_c RGBA: 0.5, 0.25, 1, 0.4\r\n");
}

TEST_F(ColorPanels, ThePickerIsCalledByTheCommentOrTheVariable) {
    COpButton& button = ShowRgb();
    EXPECT_EQ(OpenPicker(button).windowTitle(), "a_1_c Color");
    Picker()->close();
    button.comments = "  the sky ";
    EXPECT_EQ(OpenPicker(button).windowTitle(), "the sky");
}

TEST_F(ColorPanels, OnePickerServesAPanelAndASecondClickOnlyBringsItUp) {
    COpButton& button = ShowRgb();
    CColorPicker& picker = OpenPicker(button);
    QTest::mouseClick(&Button(button, "HSV"), Qt::LeftButton);
    EXPECT_EQ(Picker(), &picker);
    EXPECT_TRUE(picker.IsOpen());
    EXPECT_FALSE(document.IsModified());
}

TEST_F(ColorPanels, WhatThePickerChoosesIsRoundedToThousandths) {
    COpButton& button = ShowRgba("0.5 0.25 1 0.4");
    CColorPicker& picker = OpenPicker(button);
    picker.SetColor(0.12345F, 0.5F, 0.9996F, true);
    EXPECT_EQ(RgbaOf(button).r, 0.123F);
    EXPECT_EQ(RgbaOf(button).b, 1.0F);
    EXPECT_EQ(RgbaOf(button).a, 0.4F);
    EXPECT_EQ(Field(button, "Red").text(), "0.123");
    EXPECT_EQ(Slider(button, "Red").value(), 12);
    EXPECT_TRUE(document.IsModified());
    document.SetModified(false);
    picker.SetColor(0.123F, 0.5F, 1, true);
    EXPECT_FALSE(document.IsModified());
}

TEST_F(ColorPanels, AnOpenPickerFollowsFieldsAndSliders) {
    COpButton& button = ShowRgb("1 0 0");
    CColorPicker& picker = OpenPicker(button);
    std::vector<float> told;
    TypeOver(Field(button, "Green"), "1");
    for (auto* field : test::ChildrenOf<NumberField>(picker)) {
        if (field->accessibleName() == "Green") told.push_back(field->Number().value_or(-1));
    }
    EXPECT_THAT(told, ElementsAre(1));
}

TEST_F(ColorPanels, ALockedValueCannotBeChangedThroughItsPicker) {
    COpButton& button = ShowRgb();
    CColorPicker& picker = OpenPicker(button);
    sliders.SetLock(button, true);
    EXPECT_FALSE(picker.isEnabled());
    picker.SetColor(0, 0, 0, true);
    EXPECT_THAT(Numbers(button), ElementsAre(0.5F, 0.25F, 1));
    sliders.SetLock(button, false);
    EXPECT_TRUE(picker.isEnabled());
    picker.SetColor(0, 0, 0, true);
    EXPECT_THAT(Numbers(button), ElementsAre(0, 0, 0));
}

TEST_F(ColorPanels, ThePickerGoesWithTheBox) {
    COpBox& box = Show("input c { rgb { 1 0 0 \"%g\" } }");
    OpenPicker(*box.inputs.at(0));
    desk.DeleteBox(box);
    EXPECT_EQ(Picker(), nullptr);
    test::HandleEvents();
}

TEST_F(ColorPanels, AnotherCastClosesThePicker) {
    COpBox& box = Show("input c { rgb { 1 0 0 \"%g\" } float { 0 0 1 0 \"%g\" } }");
    CColorPicker& picker = OpenPicker(*box.inputs.at(0));
    desk.m_mouseButton = box.inputs.at(0).get();
    desk.ChooseCast(1);
    EXPECT_FALSE(picker.IsOpen());
}

TEST_F(ColorPanels, AColourOfTheScreenIsTakenAsItComes) {
    COpButton& button = ShowRgb();
    QPushButton& pick = Button(button, "CPICK");
    outside.setStyleSheet("background: rgb(10, 20, 30); border: none");
    test::ShowActive(outside);
    const QPoint there = outside.mapToGlobal(outside.rect().center());
    QWindow* window = pane->windowHandle();
    QTest::mousePress(window, Qt::LeftButton, {}, InWindow(pick, pick.rect().center()));
    QTest::mouseRelease(window, Qt::LeftButton, {}, window->mapFromGlobal(there));
    EXPECT_THAT(Numbers(button), ElementsAre(0.039F, 0.078F, 0.118F));
}

}  // namespace
}  // namespace tavrin
