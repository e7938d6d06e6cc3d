// SPDX-License-Identifier: Apache-2.0
// The window "Menu Finder": all operators of the library in one alphabetical list.
#pragma once

#include "ui/library/OperatorMenus.h"
#include "ui/windows/ToolWindow.h"

namespace tavrin {

class COpRegistry;
class FinderList;

// Lives as long as the frame. Empty until the first Refresh.
class MenuFinder : public ToolWindow {
  public:
    // `choose` gets the command of the operator of a row that was double-clicked or entered, from the event
    // loop, as if its menu item had been chosen. Rows that name no operator do nothing.
    MenuFinder(QWidget* frame, const COpRegistry& registry, OperatorChooser choose);

    // Lists the registry's operators as they are now, each first character under a heading of its own.
    void Refresh();
    void LibraryChanged() override { Refresh(); }
    // A locked desk takes no operators.
    void SetLocked(bool locked) override { setEnabled(!locked); }
    void TakeKeys() override;

  private:
    void Choose(const std::string& name);

    const COpRegistry& m_registry;
    OperatorChooser m_choose;
    FinderList* m_list;  // a child
};

}  // namespace tavrin
