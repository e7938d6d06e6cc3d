// SPDX-License-Identifier: Apache-2.0
// Menus of operators, as the directories of the library have them.
#pragma once

#include <QString>
#include <cstdint>
#include <functional>
#include <string>

class QMenu;

namespace tavrin {

struct OpMenu;

// Takes the command of an operator.
using OperatorChooser = std::function<void(uint32_t id)>;

// Shows `content` in `menu`, in place of all that the menu held. Nothing is built before the menu, and then
// each submenu, opens for the first time, so a library of thousands of operators costs nothing until then.
// Until then the menu also looks at `content` and what hangs below it: after COpRegistry::Clear it must be
// filled again, or destroyed, before anyone can open it. Filling is safe from within `choose`. Separators
// stand where the library has them, also at the ends.
void FillOperatorMenu(QMenu& menu, const OpMenu& content, OperatorChooser choose);

// Hands a command on. Those above COpRegistry::kLastId reach nobody, from wherever they come.
void SendOperatorCommand(uint32_t id, const OperatorChooser& choose);

}  // namespace tavrin
