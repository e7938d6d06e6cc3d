// SPDX-License-Identifier: Apache-2.0
#include "ui/commands/FrameCommands.h"

#include "app/Workspace.h"
#include "desk/FrameGeometry.h"
#include "ui/commands/CommandActions.h"
#include "ui/desk/DeskPane.h"

namespace tavrin {

void AddFrameCommands(CommandActions& commands, Workspace& work, DeskPane& desk) {
    const auto isFree = [&document = work.document] { return document.lock == 0; };
    // What is new wants a name at once.
    commands.On(CommandId::kAddFrame,
                {[&work, &desk] { desk.EditFrame(work.desk.FrameSelected(desk.View().Visible().Middle())); },
                 isFree});
    commands.On(CommandId::kAddNote, {[&work, &desk] {
                                          const DeskPoint place =
                                              PlaceForNote(work.document, desk.View().Visible());
                                          desk.EditFrame(work.desk.AddNote(place));
                                      },
                                      isFree});
}

}  // namespace tavrin
