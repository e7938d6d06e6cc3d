// SPDX-License-Identifier: Apache-2.0
// The commands of the slider column.
#pragma once

namespace tavrin {

class CSliderDesk;
class CommandActions;

// The slider desk outlives the commands.
void AddSliderCommands(CommandActions& commands, CSliderDesk& sliders);

}  // namespace tavrin
