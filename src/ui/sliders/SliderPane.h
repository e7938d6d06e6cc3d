// SPDX-License-Identifier: Apache-2.0
// The column of sliders at the left of the frame.
#pragma once

#include <QScrollArea>

namespace tavrin {

// A child of the frame.
class SliderPane : public QScrollArea {
  public:
    explicit SliderPane(QWidget* frame);

    // Wide enough for a panel beside its scroll bar, in pixels.
    int ColumnWidth() const;

    // While frozen, the set of panels stays as it is.
    bool IsFrozen() const { return m_frozen; }
    void SetFrozen(bool frozen) { m_frozen = frozen; }

  private:
    bool m_frozen = false;
};

}  // namespace tavrin
