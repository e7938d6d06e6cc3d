// SPDX-License-Identifier: Apache-2.0
// How a box comes by its definition: the operator's file goes through the library's preprocessor, and the
// result is read afresh for every box, so that an edit of the file takes effect for the next one.
#include <unistd.h>

#include "base/Files.h"
#include "base/Paths.h"
#include "base/ReadLimit.h"
#include "library/Aliases.h"
#include "library/DefinitionReader.h"
#include "library/DefinitionSource.h"
#include "library/DefinitionTexts.h"
#include "library/OpBox.h"
#include "library/OpRegistry.h"
#include "site/Site.h"
#include "text/Archive.h"
#include "text/StoredText.h"

namespace tavrin {

namespace {

constexpr size_t kSortKeyLength = 5;  // of a library file's name, its dot included

std::string TitleOf(const COpEntry& entry) { return PathFile(entry.path).substr(kSortKeyLength); }

// Runs the preprocessor; its output, or nothing, reported.
std::optional<CArchive> Preprocess(const COpEntry& entry, Site& site) {
    const std::string outputPath = DefinitionTexts::OutputPath(site);
    const std::string errorPath = DefinitionTexts::ErrorPath(site);
    const ProgramCall call = DefinitionTexts::Call(site, entry, outputPath, errorPath);
    ::unlink(outputPath.c_str());
    ::unlink(errorPath.c_str());
    ProcessInfo process;
    if (!site.commands.RunCall(call, &process)) return std::nullopt;

    site.LogFile(errorPath);
    if (process.exitCode != 0) {
        site.report.Alert("\"%s\" returned %d", call.shownAs.c_str(), process.exitCode);
        return std::nullopt;
    }
    std::string reason;
    auto archive = CArchive::Open(outputPath, reason);
    if (!archive)
        site.report.Alert("unable to open %s for reading%s", outputPath.c_str(),
                          reason == TooLarge() ? (": " + reason).c_str() : "");
    return archive;
}

}  // namespace

bool COpBox::Define(const std::string& operatorName, const COpRegistry& registry, Site& site,
                    DefinitionTexts* texts) {
    if (const COpEntry* entry = registry.FindByName(operatorName))
        return DefineFrom(*entry, registry, site, texts);
    if (DefineByAlias(operatorName, registry, site, texts)) return true;
    site.report.Alert("%s: unknown operator name", operatorName.c_str());
    return false;
}

// Which operator says so only the preprocessed definition tells: in the file the word may stand in a part
// that is left out, or belong to a button.
bool COpBox::DefineByAlias(const std::string& operatorName, const COpRegistry& registry, Site& site,
                           DefinitionTexts* texts) {
    const COpEntry* found = nullptr;
    for (const COpEntry* entry : registry.MayHaveBeenCalled(operatorName)) {
        if (found != nullptr && !registry.IsFirstClaim(operatorName, *entry)) continue;
        COpBox other;
        COpBox& box = found == nullptr ? *this : other;
        HeldAlerts held(site.report);
        const bool isDefined = box.DefineFrom(*entry, registry, site, texts);
        for (const Report::Pending& alert : held.All()) registry.WarnOnce(OneLine(alert.text));
        if (isDefined && WasCalled(box, operatorName)) {
            if (found != nullptr)
                registry.WarnOnce("alias " + OneLine(operatorName) + " in " + OneLine(entry->path) +
                                  " is not heeded: it is claimed by " + OneLine(found->path) + " before");
            if (found == nullptr) found = entry;
        } else if (found == nullptr) {
            ForgetDefinition();
        }
    }
    return found != nullptr;
}

void COpBox::ForgetDefinition() {
    ClearButtons();
    codegen.Reset();
    castlock.clear();
    aliases.clear();
    keywords.clear();
    vinputNames.clear();
    source.reset();
    lacksTemplates = false;
    maxinstances = 0;
    boxhelp.clear();
    icontext.clear();
    iconimg.clear();
    filename.clear();
    for (int i = 0; i < 3; ++i) color[i] = 0;
    size[0] = size[1] = 0;
}

bool COpBox::DefineFrom(const COpEntry& entry, const COpRegistry& registry, Site& site,
                        DefinitionTexts* texts) {
    if (const DefinitionText* shared = texts == nullptr ? nullptr : texts->Find(entry)) {
        site.report.LogRaw(shared->log);
        if (!ReadText(entry, *shared, site, site.report)) return false;
    } else {
        const RunStart begun = BeginRun();
        std::optional<CArchive> archive = Preprocess(entry, site);
        if (!archive) return false;
        filename = TitleOf(entry);
        source = SourceOf(entry.path, archive->Text(), begun);
        if (!ReadDefinition(*archive, site.directories.libDir, site.report, entry.path)) return false;
    }
    SettleAliases(*this, entry, registry);
    return true;
}

bool COpBox::ReadText(const COpEntry& entry, const DefinitionText& text, Site& site, Report& report) {
    CArchive archive = CArchive::FromText(DefinitionTexts::OutputPath(site), text.definition);
    filename = TitleOf(entry);
    source = text.source;
    if (ReadDefinition(archive, site.directories.libDir, report, entry.path)) return true;
    // The message names this file, in which another operator's text may lie by now.
    std::string ignored;
    site.WriteWorkFile(PathFile(archive.Path()), text.definition, ignored);
    return false;
}

bool COpBox::ReadDefinition(CArchive& archive, const std::string& libraryDir, Report& report,
                            const std::string& operatorPath) {
    return DefinitionReader(*this, archive, libraryDir, report, operatorPath).Read();
}

}  // namespace tavrin
