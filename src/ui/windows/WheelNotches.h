// SPDX-License-Identifier: Apache-2.0
// The turns of a wheel as whole notches.
#pragma once

#include <QWheelEvent>

namespace tavrin {

// Owned by the widget that heeds the wheel. Fine wheels tell of parts of a notch, which are kept until they
// make one; a turn in the other direction forgets them.
class WheelNotches {
  public:
    // What this event completes: positive away from the user, 0 for one that goes sideways.
    int Turn(const QWheelEvent& event) {
        const int turn = event.angleDelta().y();
        if (turn == 0) return 0;
        if ((turn > 0) != (m_rest > 0)) m_rest = 0;
        m_rest += turn;
        const int notches = m_rest / QWheelEvent::DefaultDeltasPerStep;
        m_rest -= notches * QWheelEvent::DefaultDeltasPerStep;
        return notches;
    }

  private:
    int m_rest = 0;  // eighths of a degree
};

}  // namespace tavrin
