// SPDX-License-Identifier: Apache-2.0
// The button from which the user drags to a colour anywhere on the screen.
#pragma once

#include <QPointF>
#include <QPushButton>
#include <QRgb>
#include <functional>
#include <optional>

namespace tavrin {

class Report;

// The colour that the screen shows at a place, in global coordinates; nothing where there is no screen. One
// that is empty stands for a platform whose screen cannot be read.
using ScreenReader = std::function<std::optional<QRgb>(QPointF)>;

// Of the platform that the program runs on.
ScreenReader PlatformScreenReader();

// "CPICK": the mouse is pressed on it, and where it is released the colour under the cursor is picked.
// Nothing is picked by a release on the button itself, nor when the drag ends otherwise: by Escape, or by the
// button being hidden or disabled. A child of its panel, which it does not know. Where the screen cannot be
// read it is disabled, and the first one in the process says so in the log.
class CPixelPicker : public QPushButton {
  public:
    CPixelPicker(QWidget* parent, Report& report, ScreenReader reader = PlatformScreenReader());

    // Told what was picked, in components rounded to thousandths. May destroy the picker.
    void SetCallback(std::function<void(float, float, float)> callback) { m_callback = std::move(callback); }

  protected:
    bool event(QEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

  private:
    void SetTracking(bool tracks);
    void Pick(QPointF place);

    ScreenReader m_reader;
    std::function<void(float, float, float)> m_callback;
    bool m_tracking = false;
};

}  // namespace tavrin
