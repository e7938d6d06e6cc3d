// SPDX-License-Identifier: Apache-2.0
// A number with its field and a pair of arrows.
#pragma once

#include <QWidget>
#include <functional>
#include <utility>

#include "ui/windows/WheelNotches.h"

class QToolButton;
class QWheelEvent;

namespace tavrin {

class NumberField;

// What a number of a spin may be: in so many steps from one end to the other.
struct SpinRange {
    float min = 0;
    float max = 1;
    int steps = 1000;
};

// A child of the window that has the number. The user types it, steps it by the arrows or their keys, or
// turns the mouse's wheel while the focus is in the field. A text that is no number of the range is put back
// at once to what it was before.
class CNumberSpin : public QWidget {
  public:
    // `name` is what the field is called where it cannot be seen. The callback is told each number that the
    // user gives, and may destroy the spin.
    CNumberSpin(QWidget* parent, const QString& name, std::function<void(float)> callback,
                const SpinRange& range = {});
    ~CNumberSpin() override;

    float Value() const { return m_value; }
    // Brings the value into the range; it is told to nobody. A field that has it already is left alone with
    // its text and its caret, and a value that is no number changes nothing.
    void SetValue(float value);
    NumberField& Field() { return *m_field; }

  protected:
    void wheelEvent(QWheelEvent* event) override;

  private:
    QToolButton* MakeArrow(Qt::ArrowType arrow, int steps);
    void ReadText();
    void PutBack();
    void Step(double steps);
    int Position() const;
    float ValueAt(int position) const;
    void ShowValue();
    void Tell();

    std::function<void(float)> m_callback;
    const SpinRange m_range;
    float m_value;
    NumberField* m_field;  // a child
    WheelNotches m_wheel;
    bool m_isTelling = false;
};

}  // namespace tavrin
