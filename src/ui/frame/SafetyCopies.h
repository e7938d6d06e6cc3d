// SPDX-License-Identifier: Apache-2.0
// Copies of unsaved work, written aside now and then, and offered after a start that follows a crash.
#pragma once

#include <QTimer>
#include <functional>
#include <memory>

#include "app/Recovery.h"

class QWidget;

namespace tavrin {

struct Workspace;

// Belongs to the frame.
class SafetyCopies {
  public:
    explicit SafetyCopies(Workspace& work);

    // What is unsaved goes aside now.
    void Update();
    // Nothing unsaved is left.
    void Discard();
    // Asks about what programs that did not end well have left. `settleChanges` is asked before a copy takes
    // the document's place.
    void OfferLeftovers(QWidget& frame, const std::function<bool()>& settleChanges);

  private:
    Workspace& m_work;
    Recovery m_recovery;
    QTimer m_timer;
};

}  // namespace tavrin
