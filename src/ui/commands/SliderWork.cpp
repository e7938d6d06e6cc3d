// SPDX-License-Identifier: Apache-2.0
#include "ui/commands/SliderWork.h"

#include "sliders/SliderDesk.h"
#include "ui/commands/CommandActions.h"

namespace tavrin {

void AddSliderCommands(CommandActions& commands, CSliderDesk& sliders) {
    const auto add = [&](CommandId id, void (CSliderDesk::*set)(bool), bool value) {
        commands.On(id, {.run = [&sliders, set, value] { (sliders.*set)(value); },
                         .enabled = [&sliders] { return !sliders.Frames().empty(); }});
    };
    add(CommandId::kStowAllSliders, &CSliderDesk::StowAll, true);
    add(CommandId::kUnstowAllSliders, &CSliderDesk::StowAll, false);
    add(CommandId::kPinAllSliders, &CSliderDesk::PinAll, true);
    add(CommandId::kUnpinAllSliders, &CSliderDesk::PinAll, false);
    add(CommandId::kLockAllSliders, &CSliderDesk::LockAll, true);
    add(CommandId::kUnlockAllSliders, &CSliderDesk::LockAll, false);
    commands.On(CommandId::kFreezeSliders, {.run = [&sliders] { sliders.SetFrozen(!sliders.IsFrozen()); },
                                            .checked = [&sliders] { return sliders.IsFrozen(); }});
}

}  // namespace tavrin
