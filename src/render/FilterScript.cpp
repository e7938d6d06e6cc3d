// SPDX-License-Identifier: Apache-2.0
#include "render/FilterScript.h"

#include <unistd.h>

#include "site/Site.h"

namespace tavrin {

std::optional<int> RunFilterScript(Site& site, const std::string& input, const std::string& tool,
                                   const std::string& name, const std::string& output) {
    const std::string errors = site.WorkPath("errors.txt");
    const std::string command = "perl " + site.LibraryPath("bin/redirect.pl") + " " + input + " - " + errors +
                                " " + tool + " " + name + " " + output;
    ::unlink(errors.c_str());
    ProcessInfo process;
    if (!site.commands.RunCommand(command, true, &process)) return std::nullopt;
    site.LogFile(errors);
    return process.exitCode;
}

}  // namespace tavrin
