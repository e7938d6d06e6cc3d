// SPDX-License-Identifier: Apache-2.0
// One asynchronous child of Commands; for the files of that class alone.
#pragma once

#include "site/Commands.h"

namespace tavrin {

// Owned by Commands. Its thread owns the pipes and ends when the process has been reaped.
struct Commands::Child {
    Child(int number, ChildWatch childWatch, std::string childTag)
        : id(number), watch(std::move(childWatch)), tag(std::move(childTag)) {}

    const int id;
    ChildWatch watch;  // of the thread
    const std::string tag;
    int pid = -1;                        // guarded by m_childMutex; -1 where there is no process to signal
    bool wasStopped = false;             // guarded by m_childMutex
    bool brokeLimit = false;             // of the thread
    std::atomic<bool> finished = false;  // the process has been reaped and the thread is about to end
    FileDescriptor wake;                 // readable: stop reading
    std::thread thread;
};

}  // namespace tavrin
