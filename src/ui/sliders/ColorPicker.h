// SPDX-License-Identifier: Apache-2.0
// The window "Color Picker": a wheel, a swatch and six numbers of one colour.
#pragma once

#include <array>
#include <functional>

#include "sliders/ColorModel.h"
#include "ui/windows/ToolWindow.h"

namespace tavrin {

class CColorWheel;
class CNumberSpin;

// Floats over the window of its owner, a panel, which makes it and with which it is destroyed. It knows
// neither panels nor buttons: what the user picks is told to the callback at once, and there is nothing to
// cancel. Its controls are made when it opens first, so one that is never opened costs next to nothing.
// Disabled, it takes no input but what closes it.
class CColorPicker : public ToolWindow {
  public:
    explicit CColorPicker(QWidget* owner);
    // A drag that goes on ends, and its hook is told.
    ~CColorPicker() override;

    // Shows the window, first beside its owner and later where it was; one that is open is brought up. A
    // title is shown as it stands.
    void Open(const QString& title);
    bool IsOpen() const { return isVisible(); }

    // Shows a colour, which is told to the callback if `notify` is set. Shown what was just told, rounded to
    // thousandths, it keeps the finer one: so whoever is told may answer so.
    void SetColor(float r, float g, float b, bool notify);
    // The callback may destroy the picker.
    void SetCallback(std::function<void(float, float, float)> callback) { m_callback = std::move(callback); }
    // Told when a drag on the wheel begins and when it has ended, once each, by whatever way it ends: also by
    // the picker being hidden, disabled or destroyed. May destroy the picker at the release of the mouse.
    void SetDragHook(std::function<void(bool begins)> hook) { m_dragHook = std::move(hook); }

  protected:
    bool event(QEvent* event) override;

  private:
    class Swatch;
    // As they stand in the order of the Tab key.
    enum Field { kHue, kSaturation, kLightness, kRed, kGreen, kBlue, kFieldCount };

    void MakeControls();
    QLayout* MakeFields();
    void ShowColor();
    void ShowNumber(Field field, float number);
    void TakeComponents();
    void TakeHsl();
    float Number(Field field) const;
    QPoint PlaceBesideOwner() const;

    Color m_color;
    std::function<void(float, float, float)> m_callback;
    std::function<void(bool)> m_dragHook;
    // Children; null until the picker opens first.
    CColorWheel* m_wheel = nullptr;
    Swatch* m_swatch = nullptr;
    std::array<CNumberSpin*, kFieldCount> m_fields{};
};

}  // namespace tavrin
