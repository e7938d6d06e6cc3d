// SPDX-License-Identifier: Apache-2.0
// The context menus of the desk as the toolkit shows them.
#pragma once

#include <functional>

#include "desk/DeskMenu.h"

class QMenu;
class QWidget;

namespace tavrin {

// A menu of the entries, ready to pop up. It belongs to the parent and deletes itself when it closes;
// `choose` gets the number of the command that was chosen and must last as long as the parent. Names are
// shown as they are, '&' among them; those too long for the screen are cut in the middle. A help text stands
// in its submenu as a DeskHelpText, which is made when that opens.
QMenu* MakeDeskContextMenu(QWidget* parent, const DeskMenuEntries& entries,
                           const std::function<void(int id)>& choose);

}  // namespace tavrin
