// SPDX-License-Identifier: Apache-2.0
// The commands that put frames and notes on the desk.
#pragma once

namespace tavrin {

class CommandActions;
class DeskPane;
struct Workspace;

// Workspace and desk outlive the commands. On a locked desk none of them is enabled.
void AddFrameCommands(CommandActions& commands, Workspace& work, DeskPane& desk);

}  // namespace tavrin
