// SPDX-License-Identifier: Apache-2.0
#include "library/OperatorIndex.h"

#include <unistd.h>

#include <algorithm>
#include <utility>

#include "base/Files.h"
#include "library/DefinitionTexts.h"
#include "library/OpRegistry.h"
#include "library/SavedNetwork.h"
#include "site/CommandQueue.h"
#include "site/Site.h"
#include "text/Archive.h"
#include "text/StoredText.h"
#include "text/Tokens.h"

namespace tavrin {

namespace {

using Source = KnownOperator::Source;
using MenuPaths = std::unordered_map<uint32_t, std::string>;

// Of all operators in one walk: the registry finds one path by going through the whole tree.
void CollectMenuPaths(const OpMenu& menu, const std::string& path, MenuPaths& paths) {
    for (const OpMenuItem& item : menu.items) {
        if (item.kind == OpMenuItem::Kind::kOperator) paths[item.id] = path;
        if (item.kind != OpMenuItem::Kind::kSubmenu) continue;
        CollectMenuPaths(*item.submenu, path.empty() ? item.label : path + " > " + item.label, paths);
    }
}

std::string LastLine(const std::string& text) {
    const std::string_view lines = TrimRight(text);
    const size_t begin = lines.find_last_of("\r\n");
    return OneLine(begin == std::string_view::npos ? lines : lines.substr(begin + 1));
}

OperatorIndex::Limits Filled(OperatorIndex::Limits limits) {
    if (limits.atATime == 0) limits.atATime = std::max<size_t>(1, CommandQueue::CoreCount() / 2);
    return limits;
}

}  // namespace

OperatorIndex::OperatorIndex(const COpRegistry& registry, Site& site)
    : OperatorIndex(registry, site, Limits(), std::chrono::steady_clock::now) {}

OperatorIndex::OperatorIndex(const COpRegistry& registry, Site& site, const Limits& limits, Clock clock)
    : m_registry(registry),
      m_site(site),
      m_limits(Filled(limits)),
      m_clock(std::move(clock)),
      m_queue(std::make_unique<CommandQueue>(site.commands, m_limits.atATime)) {}

OperatorIndex::~OperatorIndex() { EndRuns(); }

void OperatorIndex::EndRuns() {
    m_queue = std::make_unique<CommandQueue>(m_site.commands, m_limits.atATime);  // ends what runs
    for (const Run& run : m_running) {
        ::unlink(run.outputPath.c_str());
        ::unlink(run.errorPath.c_str());
    }
    m_running.clear();
}

void OperatorIndex::Reload() {
    EndRuns();
    m_stamps.clear();
    m_toRun.clear();
    m_nextFile = m_nextRun = m_settled = 0;
    // Another preprocessor may make anything of the same files.
    const FileStamp preprocessor = StampOf(m_site.LibraryPath("bin/spp"));
    if (preprocessor != m_preprocessor) m_sources.clear();
    m_preprocessor = preprocessor;
    std::vector<KnownOperator> former = std::exchange(m_operators, {});
    ListOperators();
    KeepWhatIsKnown(std::move(former));
    ++m_revision;
    ++m_reloads;
}

void OperatorIndex::ListOperators() {
    MenuPaths menus;
    CollectMenuPaths(m_registry.Root(), {}, menus);
    for (const auto& entry : m_registry.Entries()) {
        KnownOperator& known = m_operators.emplace_back();
        known.id = entry->id;
        known.name = entry->name;
        known.menu = menus[entry->id];
        known.path = entry->path;
    }
}

// It is searched until it is known better.
void OperatorIndex::KeepWhatIsKnown(std::vector<KnownOperator> former) {
    std::unordered_map<std::string, KnownOperator*> byPath;
    for (KnownOperator& known : former) byPath[known.path] = &known;
    Sources sources;
    for (KnownOperator& known : m_operators) {
        Changed(known);
        const auto found = byPath.find(known.path);
        if (found == byPath.end()) continue;
        KnownOperator& old = *found->second;
        known.source = old.source;
        known.aliases = std::move(old.aliases);
        known.keywords = std::move(old.keywords);
        known.icon = std::move(old.icon);
        known.color = old.color;
        known.help = std::move(old.help);
        known.buttons = std::move(old.buttons);
        known.problem = std::move(old.problem);
        if (auto node = m_sources.extract(known.path)) sources.insert(std::move(node));
    }
    m_sources = std::move(sources);
}

const FileStamp& OperatorIndex::Stamp(const std::string& path) {
    auto found = m_stamps.find(path);
    if (found == m_stamps.end()) found = m_stamps.emplace(path, StampOf(path)).first;
    return found->second;
}

bool OperatorIndex::IsCurrent(const KnownOperator& known) {
    const auto found = m_sources.find(known.path);
    if (found == m_sources.end() || found->second->isUncertain || !known.problem.empty()) return false;
    // What was read as it stands is not enough once the preprocessor may be run.
    if (known.source == Source::kOwnFile && m_site.PreprocessIsPure()) return false;
    const std::vector<FileStamp>& files = found->second->files;
    return std::all_of(files.begin(), files.end(),
                       [this](const FileStamp& file) { return file == Stamp(file.path); });
}

OperatorIndex::Pace OperatorIndex::Step(std::chrono::microseconds slice) {
    const auto end = m_clock() + slice;
    while (StepOnce()) {
        if (m_clock() >= end) return Pace::kBusy;
    }
    return m_running.empty() ? Pace::kDone : Pace::kWaiting;
}

// One piece of work, of a millisecond or so; false if there is none now.
bool OperatorIndex::StepOnce() {
    if (m_nextFile < m_operators.size()) {
        LookAtFile(m_nextFile++);
        return true;
    }
    if (FinishOneRun()) return true;
    if (m_nextRun == m_toRun.size() || m_running.size() == m_limits.atATime) return false;
    StartRun(m_toRun[m_nextRun++]);
    return true;
}

void OperatorIndex::LookAtFile(size_t place) {
    KnownOperator& known = m_operators[place];
    if (IsCurrent(known)) {
        ++m_settled;
        return;
    }
    const RunStart begun = BeginRun();
    std::string text;
    const bool isRead = ReadOwnFile(known, text);
    m_sources[known.path] = SourceOf(known.path, {}, begun);
    if (isRead && known.source != Source::kNetwork && m_site.PreprocessIsPure()) {
        m_toRun.push_back(place);
    } else {
        ++m_settled;
    }
}

// False where there is no more to be had of the operator.
bool OperatorIndex::ReadOwnFile(KnownOperator& known, std::string& text) {
    std::string problem;
    if (!ReadBounded(known.path, text, problem)) {
        ForgetDefinition(known);
        known.problem = std::move(problem);
        Changed(known);
        return false;
    }
    CArchive archive = CArchive::FromText(known.path, text);
    if (KindOf(archive) == OperatorText::kNetwork) {
        LearnNetwork(known, text);
        Changed(known);
        return true;
    }
    // What a run has given is better than the file alone, until the next run has given more.
    if (known.source == Source::kDefinition && m_site.PreprocessIsPure()) return true;
    Learn(known, text);
    known.source = Source::kOwnFile;
    // Directives are none of a definition's language: what the file alone lacks is no fault of it.
    known.problem.clear();
    Changed(known);
    return true;
}

void OperatorIndex::Learn(KnownOperator& known, const std::string& text) const {
    LearnDefinition(known, text, m_site.directories.libDir);
    // What is there wins over what was.
    std::erase_if(known.aliases,
                  [&](const std::string& alias) { return m_registry.FindByName(alias) != nullptr; });
}

bool OperatorIndex::ReadBounded(const std::string& path, std::string& text, std::string& problem) const {
    const FileStamp file = StampOf(path);
    if (file.IsThere() && static_cast<uint64_t>(file.size) > m_limits.text) {
        problem = path + " is too large to be searched";
        return false;
    }
    std::string reason;
    if (ReadWholeFile(path, text, reason)) return true;
    problem = path + ": " + reason;
    return false;
}

void OperatorIndex::StartRun(size_t place) {
    Run run;
    run.place = place;
    const std::string name = "known." + std::to_string(place);
    run.outputPath = m_site.WorkPath(name + ".tmp");
    run.errorPath = m_site.WorkPath(name + ".errors");
    ::unlink(run.outputPath.c_str());
    ::unlink(run.errorPath.c_str());
    run.begun = BeginRun();
    run.started = m_clock();
    const COpEntry entry{0, m_operators[place].path, {}};
    run.number = m_queue->Add(DefinitionTexts::Call(m_site, entry, run.outputPath, run.errorPath).words);
    m_queue->Continue();
    m_running.push_back(std::move(run));
}

bool OperatorIndex::FinishOneRun() {
    const auto now = m_clock();
    const auto over = std::find_if(m_running.begin(), m_running.end(), [&](const Run& run) {
        return m_queue->HasEnded(run.number) || now - run.started > m_limits.run;
    });
    if (over == m_running.end()) return false;
    const Run run = std::move(*over);
    m_running.erase(over);
    Finish(run);
    return true;
}

void OperatorIndex::Finish(const Run& run) {
    m_queue->End(run.number);
    KnownOperator& known = m_operators[run.place];
    known.problem = LearnFromRun(run, known);
    if (!known.problem.empty()) known.buttons.clear();
    ::unlink(run.outputPath.c_str());
    ::unlink(run.errorPath.c_str());
    Changed(known);
    ++m_settled;
}

// Why it could not be read, if so.
std::string OperatorIndex::LearnFromRun(const Run& run, KnownOperator& known) {
    std::string text;
    std::string problem;
    const std::optional<int> exitCode = m_queue->Result(run.number);
    if (exitCode != 0) {
        std::string ignored;
        if (exitCode && ReadBounded(run.errorPath, text, ignored)) problem = LastLine(text);
        if (!problem.empty()) return problem;
        return "the preprocessor " + std::string(exitCode ? "fails for " : "did not end for ") + known.path;
    }
    if (!ReadBounded(run.outputPath, text, problem)) return "the preprocessor's output of " + problem;
    m_sources[known.path] = SourceOf(known.path, text, run.begun);
    Learn(known, text);
    known.source = Source::kDefinition;
    return known.problem;
}

}  // namespace tavrin
