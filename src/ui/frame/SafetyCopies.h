// SPDX-License-Identifier: Apache-2.0
// Copies of unsaved work, written aside now and then, and offered after a start that follows a crash.
#pragma once

#include <QDeadlineTimer>
#include <QTimer>
#include <functional>

#include "app/Recovery.h"
#include "document/DocumentSnapshot.h"

class QWidget;

namespace tavrin {

struct Workspace;

// Belongs to the frame. The text is made in idle moments, a slice at a time, and written by another thread: a
// copy of a long document holds up no gesture, and the end of the main thread holds up no copy.
class SafetyCopies {
  public:
    // `tell` is for the user, when copies cannot be written.
    SafetyCopies(Workspace& work, MainThreadQueue& queue, std::function<void(const std::string&)> tell);

    // What is unsaved goes aside now.
    void Update();
    // Nothing unsaved is left.
    void Discard();
    // Asks about what programs that did not end well have left. `settleChanges` is asked before a copy takes
    // the document's place.
    void OfferLeftovers(QWidget& frame, const std::function<bool()>& settleChanges);

  private:
    bool IsInSafety() const;
    void Look();
    void Prepare();

    Workspace& m_work;
    Recovery m_recovery;
    DocumentSnapshot m_snapshot;
    QTimer m_look;     // whether there is something to copy
    QTimer m_prepare;  // runs while there is, whenever the program is idle
    QDeadlineTimer m_patience;
    bool m_hasCopy = false;  // there may be one
};

}  // namespace tavrin
