// SPDX-License-Identifier: Apache-2.0
// The command numbers of the program: the vocabulary that menus, keys, toolbars and actions share.
#pragma once

namespace tavrin {

// The commands of the main window, by the numbers that scripts, tests and the profile know. A plain value.
enum class CommandId : int {
#define COMMAND(name, number, text, keys, icon, tip) name = number,
#include "app/CommandList.def"
};

}  // namespace tavrin
