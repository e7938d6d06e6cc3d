// SPDX-License-Identifier: Apache-2.0
// The slider of a panel.
#pragma once

#include <QSlider>
#include <functional>

namespace tavrin {

// A child of its panel: 0 to kSliderSteps. The wheel moves it only where it has the focus; elsewhere it
// belongs to the column.
class ValueSlider : public QSlider {
  public:
    struct Hooks {
        // The user has moved it, by dragging its thumb or in another way.
        std::function<void(int position, bool isDrag)> moved;
        std::function<void(bool begins)> drag;
        std::function<int()> stepsFrom;  // where a key's step begins
    };
    ValueSlider(QWidget* parent, const QString& name, Hooks hooks);

    // Puts the thumb there, held at its ends, which is told to nobody.
    void ShowPosition(int position);

  protected:
    void changeEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

  private:
    Hooks m_hooks;
};

}  // namespace tavrin
