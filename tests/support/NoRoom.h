// SPDX-License-Identifier: Apache-2.0
// A system that has no room for another thread or process.
#pragma once

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <functional>

namespace tavrin::test {

// Runs the work in a process that may start nothing more; the status with which that ends: what the work
// returned, or 128 and the number of the signal that ended it. Where the tests run as root it is another
// user's, since root may start what it likes: what the work is to reach must be open to all.
inline int WhereNothingCanBeStarted(const std::function<int()>& work) {
    constexpr uid_t kNobody = 65534;
    const pid_t child = ::fork();
    if (child == 0) {
        const bool isRoot = ::getuid() == 0;
        const rlimit none{0, 0};
        if (isRoot && (::setgid(kNobody) != 0 || ::setuid(kNobody) != 0)) ::_exit(99);
        ::setrlimit(RLIMIT_NPROC, &none);
        ::_exit(work());
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

}  // namespace tavrin::test
