// SPDX-License-Identifier: Apache-2.0
// The measure in which panels, forms and small dialogs are laid out.
#pragma once

#include <QFontMetrics>
#include <QRect>

namespace tavrin {

// Where a control stands in its dialog, in dialog units.
struct UnitRect {
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;
};

// A unit is a quarter of the average letter across and an eighth of the font's height down. Lengths are
// rounded from their ends, so that what touches in units touches in pixels.
class DialogUnits {
  public:
    explicit DialogUnits(const QFontMetrics& metrics);

    int Across(int units) const;  // pixels
    int Down(int units) const;
    QRect Pixels(const UnitRect& rect) const;

  private:
    double m_across;
    double m_down;
};

}  // namespace tavrin
