// SPDX-License-Identifier: Apache-2.0
// "Show This": what the windows do while an output stands for the picture.
#pragma once

#include <functional>

#include "base/Listeners.h"

namespace tavrin {

class DeskPane;
struct Workspace;

// Belongs to the frame. While an output is shown the desk marks it, also a locked one.
class ProbeWork {
  public:
    // All of it outlives this.
    struct Needs {
        Workspace& work;
        DeskPane& desk;
        std::function<void()> hasChanged;  // another output is shown, or none any more
    };
    explicit ProbeWork(Needs needs);

  private:
    Needs m_needs;
    Listeners<>::Subscription m_changes;
};

}  // namespace tavrin
