// SPDX-License-Identifier: Apache-2.0
// The panels of numbers on sliders.
#pragma once

#include <vector>

#include "sliders/SliderValue.h"
#include "ui/sliders/SliderPanel.h"

class QCheckBox;

namespace tavrin {

class NumberField;
class ValueSlider;

// Numbers that share a range: fields for the range and for each number, a slider for each, and the switch for
// whole numbers. A text counts with every key, so a number may stand outside the range until the focus leaves
// a field. One that is no number is marked and changes nothing.
class NumberPanel : public SliderPanel {
  public:
    void Refresh() override;
    bool Read() override;

  protected:
    // Where the numbers of a value lie.
    struct Numbers {
        float* min = nullptr;
        float* max = nullptr;
        int* integer = nullptr;
        std::vector<float*> values;  // one for each slider; empty once the button has gone
    };
    // Where a number's controls stand, and what it is called.
    struct Places {
        const char* name;
        UnitRect label;
        UnitRect field;
        UnitRect slider;
    };

    using SliderPanel::SliderPanel;
    void MakeControls(const std::vector<Places>& places, const UnitRect& integer);
    virtual Numbers Find() const = 0;
    // Whether what a slider gives is cut to whole numbers.
    virtual bool CutsToWhole(const Numbers& numbers) const { return *numbers.integer != 0; }
    bool IsIntegerChecked() const;

    static constexpr UnitRect kMinLabel{1, 1, 18, 12};
    static constexpr UnitRect kMinField{20, 1, 26, 12};
    static constexpr UnitRect kMaxLabel{48, 1, 15, 12};
    static constexpr UnitRect kMaxField{63, 1, 26, 12};

  private:
    struct Part {
        NumberField* field;
        ValueSlider* slider;
    };
    NumberField* MakeField(const UnitRect& label, const UnitRect& field, const char* name,
                           std::function<void(double)> stepped);
    ValueSlider* MakeSlider(const UnitRect& place, const char* name, size_t part);
    std::vector<NumberField*> Fields() const;
    ValueRange RangeOf(const Numbers& numbers) const;

    void ShowSliders();
    void Typed(const NumberField& field);
    void Left();
    void Slide(size_t part, int position);
    void StepValue(size_t part, double steps);
    void StepEnd(NumberField& field, float* Numbers::*end, double steps);

    NumberField* m_min = nullptr;
    NumberField* m_max = nullptr;
    QCheckBox* m_integer = nullptr;
    std::vector<Part> m_parts;
};

class CFloatPanel : public NumberPanel {
  public:
    static constexpr int kUnitsHigh = 40;
    CFloatPanel(QWidget* frame, COpButton& button, const SliderNeeds& needs);

  private:
    Numbers Find() const override;
};

class CXyzPanel : public NumberPanel {
  public:
    static constexpr int kUnitsHigh = 83;
    CXyzPanel(QWidget* frame, COpButton& button, const SliderNeeds& needs);

  private:
    Numbers Find() const override;
    // By the switch, which may be ahead of the value while a field holds what is no number.
    bool CutsToWhole(const Numbers&) const override { return IsIntegerChecked(); }
};

}  // namespace tavrin
