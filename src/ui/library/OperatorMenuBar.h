// SPDX-License-Identifier: Apache-2.0
// The operators' menus on the frame's menu bar, behind the frame's own.
#pragma once

#include "ui/library/OperatorMenus.h"

class QMenuBar;

namespace tavrin {

class COpRegistry;

// Belongs to the frame, whose menu bar has its own menus already.
class OperatorMenuBar {
  public:
    OperatorMenuBar(QMenuBar& bar, const COpRegistry& registry, OperatorChooser choose);

    // Shows what the registry holds now: one menu for each item at its top. To be called before the event
    // loop comes round after every scan, since the old menus name operators that are gone.
    void Rebuild();

  private:
    QMenuBar& m_bar;
    const COpRegistry& m_registry;
    OperatorChooser m_choose;
    int m_opMenuFirst = 0;  // position of the first of them on the bar
    int m_opMenuCount = 0;
};

}  // namespace tavrin
