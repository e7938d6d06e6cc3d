// SPDX-License-Identifier: Apache-2.0
// "Show This": what the windows do while an output stands for the picture.
#pragma once

#include <functional>

#include "base/Listeners.h"

class QAction;
class QWidget;

namespace tavrin {

class DeskPane;
struct Workspace;

// Belongs to the frame. While an output is shown the desk marks it, and the key of Zoom Reset ends that and
// does nothing else; also on a locked desk.
class ProbeWork {
  public:
    // All of it outlives this.
    struct Needs {
        QWidget& frame;
        Workspace& work;
        DeskPane& desk;
        QAction& zoomReset;
        std::function<void()> hasChanged;  // another output is shown, or none any more
    };
    explicit ProbeWork(Needs needs);

  private:
    void Follow();
    void TakeKey(bool isTaken);

    Needs m_needs;
    QAction* m_end;
    Listeners<>::Subscription m_changes;
};

}  // namespace tavrin
