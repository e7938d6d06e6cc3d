// SPDX-License-Identifier: Apache-2.0
// What the tests of the color picker build on: one with an owner, and what it tells and shows.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QFrame>
#include <QPushButton>
#include <string>
#include <vector>

#include "ui/sliders/ColorPicker.h"
#include "ui/sliders/ColorWheelView.h"
#include "ui/sliders/HandTest.h"
#include "ui/sliders/NumberField.h"
#include "ui/support/Windows.h"

namespace tavrin {

// As a failing test tells it.
inline void PrintTo(const Color& color, std::ostream* out) {
    *out << "(" << color.r << ", " << color.g << ", " << color.b << ")";
}

namespace test {

class ColorPickerTest : public ::testing::Test {
  protected:
    ColorPickerTest() {
        owner.resize(200, 100);
        picker->SetCallback([this](float r, float g, float b) { told.push_back({r, g, b}); });
        picker->SetDragHook([this](bool begins) { drags.emplace_back(begins ? "begin" : "end"); });
    }

    void Open() { picker->Open("Sky"); }
    void OpenActive() {
        owner.show();
        Open();
        ShowActive(*picker);
    }
    NumberField& Field(const QString& name) {
        for (auto* field : picker->findChildren<NumberField*>())
            if (field->accessibleName() == name) return *field;
        ADD_FAILURE() << "no field " << name.toStdString();
        std::abort();
    }
    float Shown(const QString& name) { return Field(name).text().toFloat(); }
    // H S V R G B.
    std::vector<float> Shown() {
        std::vector<float> numbers;
        for (const char* name : {"Hue", "Saturation", "Lightness", "Red", "Green", "Blue"})
            numbers.push_back(Shown(QString(name)));
        return numbers;
    }
    CColorWheel& Wheel() { return *picker->findChild<CColorWheel*>(); }
    QFrame& Swatch() {
        for (auto* frame : picker->findChildren<QFrame*>())
            if (frame->accessibleName() == "Color") return *frame;
        std::abort();
    }
    QColor SwatchColor() {
        const QImage picture = Swatch().grab().toImage();
        return picture.pixelColor(picture.width() / 2, picture.height() / 2);
    }
    QPushButton& Ok() { return *picker->findChild<QPushButton*>(); }

    std::vector<Color> told;
    std::vector<std::string> drags;
    QWidget owner;
    CColorPicker* picker = new CColorPicker(&owner);
};

}  // namespace test
}  // namespace tavrin
