// SPDX-License-Identifier: Apache-2.0
// What holds for every desk after every edit, whoever made it.
#pragma once

#include <cstdint>
#include <set>
#include <string>
#include <utility>

#include "desk/OpDesk.h"

namespace tavrin::test {

// Looks at a desk again and again, and remembers what it saw last: some rules are about how it changes. The
// document and the desk outlive it. The first look is to be at a desk that is whole.
class DeskInvariants {
  public:
    DeskInvariants(const CTvDoc& document, const COpDesk& desk) : m_document(document), m_desk(desk) {}

    using Buttons = std::set<const COpButton*>;
    // What the desk breaks; empty if all is well. `selected` are the buttons that were selected for wiring at
    // some time of the edit: only wiring from an output again what it feeds already leaves a wire that the
    // output does not know of.
    std::string Look(const Buttons& selected);
    // The desk holds another network now, as a file or the history has it: of what the rules about changes
    // look at nothing has changed at the next look.
    void TakeAsItIs();

    // The wires that only their input knows of, and the whole ones, as output and input.
    using Pairs = std::set<std::pair<const COpButton*, const COpButton*>>;
    const Pairs& OneSided() const { return m_oneSided; }
    // Nobody looks along them before a wire is made, so that they may close a cycle. In a copy of such boxes
    // all wires are whole.
    bool HidesACycle() const;
    const Pairs& Wired() const { return m_wired; }

  private:
    using Boxes = std::set<const COpBox*>;
    void Fail(const std::string& what, const COpBox* box = nullptr);
    void CheckPlaces();
    void CheckNumbers();
    void CheckButtons(const COpBox& box, const Boxes& place);
    void CheckConnections(const COpButton& button, const Boxes& place);
    void CheckNewPairs(const Buttons& selected);
    void CheckInstances();
    void CheckReferences();
    static const COpBox* BoxOfACycle(const Pairs& wires);
    template <typename List>
    void Collect(const List& list, Boxes& place);

    const CTvDoc& m_document;
    const COpDesk& m_desk;
    std::string m_broken;
    Boxes m_network;
    Boxes m_pending;
    Boxes m_clipboard;
    std::set<uint64_t> m_known;  // serial numbers of the numbered boxes
    Pairs m_wired;               // whole wires
    Pairs m_oneSided;
    Pairs m_wiredBefore;
    Pairs m_oneSidedBefore;
    bool m_isTaken = false;  // since the last look
};

}  // namespace tavrin::test
