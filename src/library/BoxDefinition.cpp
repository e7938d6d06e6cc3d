// How a box comes by its definition: the operator's file goes through the library's preprocessor, and the
// result is read afresh for every box, so that an edit of the file takes effect for the next one.
#include <unistd.h>

#include "base/Paths.h"
#include "library/DefinitionReader.h"
#include "library/OpBox.h"
#include "library/OpRegistry.h"
#include "site/Site.h"
#include "text/Archive.h"

namespace tavrin {

namespace {

constexpr size_t kSortKeyLength = 5;  // of a library file's name, its dot included

}  // namespace

bool COpBox::Define(const std::string& operatorName, const COpRegistry& registry, Site& site) {
    const COpEntry* entry = registry.FindByName(operatorName);
    if (entry == nullptr) {
        site.report.Alert("%s: unknown operator name", operatorName.c_str());
        return false;
    }
    const std::string tmpPath = site.WorkPath("boxdef.tmp");
    const std::string errPath = site.WorkPath("errors.txt");
    const std::string commandLine = "perl " + site.LibraryPath("bin/redirect.pl") + " - " + tmpPath + " " +
                                    errPath + " " + site.LibraryPath("bin/spp") + " " + entry->path;
    ::unlink(tmpPath.c_str());
    ::unlink(errPath.c_str());
    ProcessInfo process;
    if (!site.commands.RunCommand(commandLine, true, &process)) return false;

    site.LogFile(errPath);
    if (process.exitCode != 0) {
        site.report.Alert("\"%s\" returned %d", commandLine.c_str(), process.exitCode);
        return false;
    }
    std::string reason;
    auto archive = CArchive::Open(tmpPath, reason);
    if (!archive) {
        site.report.Alert("unable to open %s for reading", tmpPath.c_str());
        return false;
    }
    filename = PathFile(entry->path).substr(kSortKeyLength);
    return ReadDefinition(*archive, site.directories.libDir, site.report);
}

bool COpBox::ReadDefinition(CArchive& archive, const std::string& libraryDir, Report& report) {
    return DefinitionReader(*this, archive, libraryDir, report).Read();
}

}  // namespace tavrin
