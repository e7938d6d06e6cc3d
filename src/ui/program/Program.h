// SPDX-License-Identifier: Apache-2.0
// One run of the desktop program.
#pragma once

#include <string>
#include <vector>

namespace tavrin {

// Runs the program to its end; its exit status. `argc` and `argv` are main's, kept until then.
int RunProgram(int& argc, char** argv);

}  // namespace tavrin
