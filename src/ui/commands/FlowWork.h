// SPDX-License-Identifier: Apache-2.0
// The commands that put boxes in order, and that keep the flow of a network.
#pragma once

namespace tavrin {

class CommandActions;
struct Workspace;

// The workspace outlives the commands. On a locked desk none of them is enabled.
void AddFlowCommands(CommandActions& commands, Workspace& work);

}  // namespace tavrin
