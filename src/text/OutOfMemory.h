// SPDX-License-Identifier: Apache-2.0
// The end of an operation for which there is not enough memory.
#pragma once

#include <new>
#include <stdexcept>
#include <string>

#include "text/Report.h"

namespace tavrin {

// Does the work and gives its result. If memory does not suffice, or a text would be longer than any can be,
// that is alerted as "not enough memory for DOING" and the result is false: the program goes on. What the
// work has made up to there is its owners' to clear away. Put round what a user starts, whose size a file
// decides.
template <typename Work>
bool WithinMemory(Report& report, const std::string& doing, Work work) {
    try {
        return work();
    } catch (const std::bad_alloc&) {
    } catch (const std::length_error&) {
    }
    report.Alert("not enough memory for %s", doing.c_str());
    return false;
}

}  // namespace tavrin
