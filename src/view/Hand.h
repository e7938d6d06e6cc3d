// SPDX-License-Identifier: Apache-2.0
// Handing a picture to the window, as a script does at the end of a render.
#pragma once

#include <string>
#include <vector>

#include "base/Environment.h"

namespace tavrin {

// The words behind "--hand": N NAME FILE [--growing]. Tells the window that is there, or starts one with the
// word; waits for nobody. Where there is no display nothing happens. Needs no toolkit. The exit status;
// a wrong call is told on standard error.
int HandPicture(const std::vector<std::string>& words, const Environment& environment);

}  // namespace tavrin
