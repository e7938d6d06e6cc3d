// SPDX-License-Identifier: Apache-2.0
// Sees to it that children end with the program, however that ends.
#pragma once

#include <sys/types.h>

#include "base/FileDescriptor.h"

namespace tavrin {

// A process beside the program that waits for its end. Where the program goes without a word, killed by
// whatever signal, the processes that carry its tags (base/ProcessTag.h) are asked to end and then ended.
// Made by main, and gone after all that starts children. A process and not the kernel's signal for the death
// of a parent: that one follows the thread that started the child, and does not reach what the child has
// started.
class Warden {
  public:
    // To be made while the program has one thread. Where no process can be had the program goes without.
    Warden();
    Warden(const Warden&) = delete;
    Warden& operator=(const Warden&) = delete;
    // The program ends in good order, and the process with it.
    ~Warden() { Dismiss(); }

    // The same, for a program that ends without its destructors.
    void Dismiss();

  private:
    pid_t m_process = -1;
    FileDescriptor m_lifeline;  // closed by the system where the program does not come to write to it
};

}  // namespace tavrin
