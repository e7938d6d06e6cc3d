// SPDX-License-Identifier: Apache-2.0
// The commands that tell of the program itself.
#pragma once

class QWidget;

namespace tavrin {

class CTvApp;
class CommandActions;

// Online Documentation and About. Frame and application outlive the commands.
void AddHelpCommands(CommandActions& commands, QWidget& frame, CTvApp& app);

}  // namespace tavrin
