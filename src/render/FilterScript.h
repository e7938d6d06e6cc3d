// SPDX-License-Identifier: Apache-2.0
// Running a filter script of the library on the work files.
#pragma once

#include <optional>
#include <string>

namespace tavrin {

struct Site;

// Runs `tool` through the library's redirect script: `input` ("-" for none of its own) on its standard
// input, its errors into the log, NAME and OUTPUT as its arguments; waits for its end, which is alerted if it
// is that of a limit. The exit code, or nothing if the command could not be started, which has been alerted.
std::optional<int> RunFilterScript(Site& site, const std::string& input, const std::string& tool,
                                   const std::string& name, const std::string& output);

}  // namespace tavrin
