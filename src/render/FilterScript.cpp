// SPDX-License-Identifier: Apache-2.0
#include "render/FilterScript.h"

#include <unistd.h>

#include "base/Paths.h"
#include "site/Site.h"

namespace tavrin {

std::optional<int> RunFilterScript(Site& site, const std::string& input, const std::string& tool,
                                   const std::string& name, const std::string& output) {
    const std::string errors = site.WorkPath("errors.txt");
    const ProgramCall call =
        CallOf({"perl", site.LibraryPath("bin/redirect.pl"), input, "-", errors, tool, name, output},
               PathFile(tool), site.compileLimits);
    ::unlink(errors.c_str());
    ProcessInfo process;
    if (!site.commands.RunCall(call, &process)) return std::nullopt;
    site.LogFile(errors);
    return process.exitCode;
}

}  // namespace tavrin
