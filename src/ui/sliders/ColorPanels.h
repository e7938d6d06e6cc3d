// SPDX-License-Identifier: Apache-2.0
// The panels of colours.
#pragma once

#include <memory>
#include <vector>

#include "ui/sliders/SliderPanel.h"

class QPushButton;

namespace tavrin {

class CColorPicker;
class CPixelPicker;
class NumberField;
class ValueSlider;

// A field and a slider for each component, a swatch, and the ways to the Color Picker and to a colour of the
// screen. Components are 0 to 1; a text that is none of those gives place to the one before at once. Only
// dragging a thumb changes a component: a key or a click beside it moves the thumb alone.
class ColorPanel : public SliderPanel {
  public:
    ~ColorPanel() override;

    void Refresh() override;
    bool Read() override;
    void PutAside() override;
    void Release() override;

  protected:
    struct Places {
        const char* letter;
        const char* name;
        UnitRect label;
        UnitRect field;
        UnitRect slider;
    };
    struct Template {
        std::vector<Places> components;  // red, green, blue, and alpha if there is one
        UnitRect swatch;
        UnitRect alphaSwatch;  // empty without alpha
        UnitRect picker;
        UnitRect pixelPicker;
    };

    using SliderPanel::SliderPanel;
    void MakeControls(const Template& places);
    // Where the components lie; empty once the button has gone.
    virtual std::vector<float*> Find() const = 0;
    // What a click on a swatch logs them as.
    virtual const char* LogName() const = 0;

    void changeEvent(QEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

  private:
    using Components = std::vector<float>;
    void MakeComponent(const Places& places, size_t component);
    Components Values() const;
    void Store(const Components& values);
    void ShowFields();
    void ShowColor();  // beside the fields
    void ShowInPicker();

    void Typed(const NumberField& field);
    void Slide(size_t component, int position);
    void StepValue(size_t component, double steps);
    void LogColor() const;
    void OpenPicker();
    void TakeFromPicker(float r, float g, float b);
    void TakeFromScreen(float r, float g, float b);
    void Take(float r, float g, float b);

    std::vector<NumberField*> m_fields;
    std::vector<ValueSlider*> m_sliders;
    QRect m_swatch;
    QRect m_alphaSwatch;
    QPushButton* m_pick = nullptr;
    std::unique_ptr<CColorPicker> m_picker;  // once it was asked for
};

class CRgbPanel : public ColorPanel {
  public:
    static constexpr int kUnitsHigh = 67;
    CRgbPanel(QWidget* frame, COpButton& button, const SliderNeeds& needs);

  private:
    std::vector<float*> Find() const override;
    const char* LogName() const override { return "Rgb:"; }
};

class CRgbaPanel : public ColorPanel {
  public:
    static constexpr int kUnitsHigh = 90;
    CRgbaPanel(QWidget* frame, COpButton& button, const SliderNeeds& needs);

  private:
    std::vector<float*> Find() const override;
    const char* LogName() const override { return "RGBA:"; }
};

}  // namespace tavrin
