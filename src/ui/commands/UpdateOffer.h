// SPDX-License-Identifier: Apache-2.0
// Offers to bring boxes up to date whose operators' definitions have been edited.
#pragma once

#include <algorithm>
#include <functional>
#include <string>
#include <vector>

#include "desk/OperatorWatch.h"

class QWidget;

namespace tavrin {

class CStatusBox;
class DeskPane;
struct Workspace;

// Belongs to the frame. A look is asked for when the user comes back to the program, from an editor perhaps,
// or reloads the operators; it is made, and the user asked, at the next idle pass with nothing in hand. The
// user is asked once about each change, and the desk is as it was until the answer is Yes. Definitions that
// cannot be read are told in the log and in the status box; after a reload by an alert.
class UpdateOffer {
  public:
    // All of it outlives this.
    struct Needs {
        QWidget& frame;
        Workspace& work;
        DeskPane& desk;
        CStatusBox& statusBox;
        std::function<bool()> isScriptRunning;
    };
    explicit UpdateOffer(Needs needs);

    // Files may have changed.
    void LookAtFiles() { m_due = std::max(m_due, Look::kAtFiles); }
    // The user wants to know of every operator, those among them that were declined.
    void LookAtAll() { m_due = Look::kAtAll; }

    // To be called at each idle pass; waits for one at which nothing is in hand.
    void OnIdle();

  private:
    enum class Look { kNone, kAtFiles, kAtAll };

    bool IsInHand() const;
    void TellProblems(const std::vector<std::string>& problems, bool byAlert);
    bool Ask(const std::vector<StaleOperator>& stale);
    void Update(const std::vector<StaleOperator>& stale);

    Needs m_needs;
    OperatorWatch m_watch;
    Look m_due = Look::kNone;
    bool m_isAsking = false;
};

}  // namespace tavrin
