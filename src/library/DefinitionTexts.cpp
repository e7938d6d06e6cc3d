// SPDX-License-Identifier: Apache-2.0
#include "library/DefinitionTexts.h"

#include <unistd.h>

#include <cstdio>

#include "base/Files.h"
#include "library/DefinitionSource.h"
#include "library/OpRegistry.h"
#include "site/CommandQueue.h"
#include "site/Site.h"

namespace tavrin {

namespace {

// A file that is not there takes away the one in its place.
void MoveOver(const std::string& from, const std::string& to) {
    if (std::rename(from.c_str(), to.c_str()) != 0) ::unlink(to.c_str());
}

}  // namespace

DefinitionTexts::DefinitionTexts(const COpRegistry& registry, Site& site, Sharing sharing)
    : m_registry(registry),
      m_site(site),
      m_sharing(sharing),
      m_queue(std::make_unique<CommandQueue>(site.commands)) {}

DefinitionTexts::~DefinitionTexts() { Clear(); }

bool DefinitionTexts::AreShared() const {
    return (m_sharing == Sharing::kAlways || m_site.PreprocessIsPure()) && !m_site.commands.IsInterrupted();
}

std::string DefinitionTexts::OutputPath(const Site& site) { return site.WorkPath("boxdef.tmp"); }
std::string DefinitionTexts::ErrorPath(const Site& site) { return site.WorkPath("errors.txt"); }

ProgramCall DefinitionTexts::Call(const Site& site, const COpEntry& entry, const std::string& outputPath,
                                  const std::string& errorPath) {
    return CallOf({"perl", site.LibraryPath("bin/redirect.pl"), "-", outputPath, errorPath,
                   site.LibraryPath("bin/spp"), entry.path});
}

// A preprocessor of which the library says nothing is run once at a time.
void DefinitionTexts::Expect(const std::vector<std::string_view>& operatorNames) {
    if (!AreShared() || !m_site.PreprocessIsPure()) return;
    for (const std::string_view name : operatorNames) {
        if (const COpEntry* entry = m_registry.FindByName(std::string(name))) Enqueue(*entry);
    }
    m_queue->Continue();
}

const DefinitionText* DefinitionTexts::Find(const COpEntry& entry) {
    if (!AreShared()) return nullptr;
    const size_t number = Enqueue(entry);
    if (m_runs[number].isOver) {
        m_queue->Continue();
    } else {
        Finish(number);
    }
    return m_runs[number].text ? &*m_runs[number].text : nullptr;
}

// The number of the operator's run. Each has files of its own: several run at a time.
size_t DefinitionTexts::Enqueue(const COpEntry& entry) {
    const auto [place, isNew] = m_byPath.try_emplace(entry.path, m_runs.size());
    if (!isNew) return place->second;
    Run& run = m_runs.emplace_back();
    const std::string name = "boxdef." + std::to_string(place->second);
    run.outputPath = m_site.WorkPath(name + ".tmp");
    run.errorPath = m_site.WorkPath(name + ".errors");
    run.operatorPath = entry.path;
    run.begun = BeginRun();
    ::unlink(run.outputPath.c_str());
    ::unlink(run.errorPath.c_str());
    return m_queue->Add(Call(m_site, entry, run.outputPath, run.errorPath).words);
}

void DefinitionTexts::Finish(size_t number) {
    const auto exitCode = m_queue->Result(number);
    Run& run = m_runs[number];
    run.isOver = true;
    // What a message names and the editor shows is what the box of that message has read.
    MoveOver(run.outputPath, OutputPath(m_site));
    MoveOver(run.errorPath, ErrorPath(m_site));
    DefinitionText text;
    std::string reason;
    if (exitCode != 0 || !ReadWholeFile(OutputPath(m_site), text.definition, reason)) return;
    text.log = m_site.LogText(ErrorPath(m_site));
    text.source = SourceOf(run.operatorPath, text.definition, run.begun);
    run.text = std::move(text);
}

void DefinitionTexts::Clear() {
    m_queue = std::make_unique<CommandQueue>(m_site.commands);  // ends what runs, so that it writes no more
    for (const Run& run : m_runs) {
        if (run.isOver) continue;
        ::unlink(run.outputPath.c_str());
        ::unlink(run.errorPath.c_str());
    }
    m_runs.clear();
    m_byPath.clear();
}

}  // namespace tavrin
