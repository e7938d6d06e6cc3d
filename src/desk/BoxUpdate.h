// SPDX-License-Identifier: Apache-2.0
// Boxes of the network that are brought up to date with the definitions of their operators.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "desk/BoxCarry.h"
#include "desk/OpDesk.h"

namespace tavrin {

// What has come of it. A plain value.
struct BoxUpdateResult {
    size_t boxes = 0;   // that are new now
    size_t losses = 0;  // lines of the log, each about something that did not fit any more
    std::vector<std::string>
        failed;  // operators whose definitions cannot be read: their boxes are the old ones
};

// Made for one act of the user. A fresh box takes the place of each that was read from something else than
// its operator's definition is now; CarryOver tells what it takes over, and wires follow where their buttons
// are there still and may be wired. All of it is one act, "Update Boxes", of which an undo brings the old
// boxes back. A definition that cannot be read has been reported, and leaves all boxes of its operator as
// they are.
class BoxUpdate {
  public:
    // All outlive it.
    BoxUpdate(CTvDoc& document, COpDesk& desk, DocumentHost& host);

    // Boxes of these operators. None while the desk is locked, nor while an edit goes on.
    BoxUpdateResult Run(const std::vector<std::string>& operatorNames);

  private:
    struct Wire {
        COpButton* source;
        COpButton* target;
    };

    std::vector<std::string> DefineAll(const std::vector<std::string>& operatorNames);
    bool DefineFresh(const std::vector<const COpBox*>& boxes, DefinitionTexts& texts);
    void CollectWires();
    COpButton* Successor(COpButton& button) const;
    bool Fits(const Wire& wire, const Wire& now);
    void MoveSelection();

    CTvDoc& m_document;
    COpDesk& m_desk;
    DocumentHost& m_host;
    BoxReplacements m_fresh;
    ButtonSuccessors m_successors;
    std::vector<Wire> m_wires;  // to be made, by the buttons that there are then
    std::vector<std::string> m_losses;
};

}  // namespace tavrin
