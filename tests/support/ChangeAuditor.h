// SPDX-License-Identifier: Apache-2.0
// Whether everything that changes of a document is told to those who show it.
#pragma once

#include <cstdint>
#include <map>
#include <string>

#include "desk/OpDesk.h"

namespace tavrin::test {

// Listens like a window, and holds each change that it is told against the document: whatever differs from
// before must be named. Document and desk outlive it.
class ChangeAuditor {
  public:
    ChangeAuditor(CTvDoc& document, const COpDesk& desk);

    // What was not told up to now; empty if all was. To be asked while no edit is open: what differs then
    // since the last change was edited outside of any scope, or not noted in one.
    std::string Look();
    // What the test itself has changed counts as told.
    void TakeAsItIs();

  private:
    struct Picture {
        std::map<uint64_t, std::string> standing;  // names of all boxes, those that wait included
        std::map<uint64_t, std::string> boxes;     // of the network
        std::map<uint64_t, std::string> buttons;   // what the desk shows of them
        std::map<uint64_t, std::string> tuned;     // the rest
        std::string wires;
        std::string options;
        std::string settings;
        DeskFrames frames;
    };
    Picture Take() const;
    void OnChange(const Change& change);
    void Compare(const Picture& now, const Change& change);

    CTvDoc& m_document;
    const COpDesk& m_desk;
    Picture m_before;
    std::string m_missed;
    Edits::Subscription m_changes;
};

}  // namespace tavrin::test
