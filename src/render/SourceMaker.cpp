// SPDX-License-Identifier: Apache-2.0
#include "render/SourceMaker.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <sstream>
#include <utility>

#include "base/Files.h"
#include "base/Paths.h"
#include "document/TvDoc.h"
#include "render/ArgInfo.h"
#include "render/RenderSession.h"
#include "render/ShaderText.h"
#include "render/SourceText.h"
#include "site/Site.h"
#include "text/LineDifference.h"
#include "text/OutOfMemory.h"
#include "text/Tokens.h"
#include "text/VisibleText.h"

namespace tavrin {

namespace {

constexpr const char* kDirectory = "sourcefiles";  // of the work directory; no shader can be called so
constexpr const char* kTypeOption = "TAVRN_SHADER_TYPE";
constexpr size_t kMostNotes = 50;

// Alerts and warnings meanwhile, which would come again with each change of the network.
class Gathering {
  public:
    explicit Gathering(Report& report) : m_alerts(report), m_log(report) {}

    void AddTo(std::vector<std::string>& notes) const {
        for (const Report::Pending& alert : m_alerts.All()) notes.push_back(VisibleOneLine(alert.text));
        std::istringstream log(m_log.Text());
        for (std::string line; std::getline(log, line);)
            notes.push_back(VisibleOneLine(line.substr(0, line.find('\r'))));
    }

  private:
    HeldAlerts m_alerts;
    HeldLog m_log;
};

void AddLines(std::vector<std::string>& notes, const std::string& text) {
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        line = VisibleOneLine(line.substr(0, line.find('\r')));
        if (!line.empty() && std::find(notes.begin(), notes.end(), line) == notes.end())
            notes.push_back(line);
    }
}

std::string Joined(const std::vector<std::string>& lines) {
    std::string text;
    for (const std::string& line : lines) text.append(line) += '\n';
    return text;
}

}  // namespace

// What a run of the filter script depends on.
struct SourceMaker::Given {
    std::string code;
    std::string lines;
    std::string options;
    std::string name;    // of the shader
    std::string filter;  // its path

    bool operator==(const Given&) const = default;
};

struct SourceMaker::Column {
    std::unique_ptr<MadeSource> made;
    std::unique_ptr<Given> given;  // of what was made, or is being made
    std::unique_ptr<LineChild> child;
    std::string directory;           // of the run underway
    std::vector<std::string> notes;  // that it has written
};

SourceMaker::SourceMaker(Needs needs) : m_needs(std::move(needs)) {}

SourceMaker::~SourceMaker() = default;

const MadeSource* SourceMaker::Find(const SourceKind& kind) const {
    if (!kind.isFiltered) return m_columns.contains(kind) ? m_generated.get() : nullptr;
    const auto found = m_columns.find(kind);
    return found == m_columns.end() ? nullptr : found->second->made.get();
}

bool SourceMaker::IsAtWork(const SourceKind& kind) const {
    const auto found = m_columns.find(kind);
    return found != m_columns.end() && found->second->child != nullptr;
}

void SourceMaker::Forget() {
    for (auto& [kind, column] : m_columns) {
        Stop(*column);
        column->given.reset();
    }
}

void SourceMaker::Make(const std::vector<SourceKind>& kinds) {
    for (auto& [kind, column] : m_columns) {
        if (std::find(kinds.begin(), kinds.end(), kind) == kinds.end()) Stop(*column);
    }
    std::erase_if(m_columns, [&kinds](const auto& each) {
        return std::find(kinds.begin(), kinds.end(), each.first) == kinds.end();
    });
    const bool isMade = Generate(
        std::any_of(kinds.begin(), kinds.end(), [](const SourceKind& kind) { return kind.isFiltered; }));
    for (const SourceKind& kind : kinds) {
        auto& column = m_columns[kind];
        if (column == nullptr) column = std::make_unique<Column>();
        if (!kind.isFiltered) {
            m_needs.made(kind);
        } else if (isMade) {
            Begin(kind, *column);
        } else {
            Stop(*column);
            column->given.reset();
            Tell(kind, *column, {{}, {}, m_generated->notes, false});
        }
    }
}

// False, with the reason among the notes, if there is nothing that a script could work on.
bool SourceMaker::Generate(bool forScripts) {
    auto made = std::make_unique<MadeSource>();
    {
        Report& report = m_needs.site.report;
        const Gathering said(report);
        const std::string name = m_needs.session.ShaderName();
        made->isThere = WithinMemory(report, "generating the shader " + name, [&] {
            ShaderText shader = GenerateShader(m_needs.document, name, m_needs.site, m_needs.siteCodeGen);
            made->text = Joined(shader.code);
            made->lines = std::move(shader.lines);
            if (!forScripts) return true;
            std::vector<ArgumentLines> arguments;
            m_argInfo =
                WriteArgInfo(m_needs.document.customshaderhelp, m_needs.document.CollectUnconnectedInputs(),
                             shader.variables, report, &arguments);
            m_hints = Joined(shader.hints);
            const auto before = std::count(m_argInfo.begin(), m_argInfo.end(), '\n');
            m_lineMap = made->lines.Store(static_cast<size_t>(before), arguments);
            return true;
        });
        said.AddTo(made->notes);
    }
    m_generated = std::move(made);
    return m_generated->isThere;
}

std::string SourceMaker::OptionsText(const std::string& type) const {
    std::map<std::string, std::string> options = m_needs.document.m_renderOptions;
    if (!type.empty()) options[kTypeOption] = type;
    std::string text;
    for (const auto& [key, value] : options)
        text.append("setenv ").append(key).append(" ").append(QuoteString(value)).append("\r\n");
    return text;
}

void SourceMaker::Begin(const SourceKind& kind, Column& column) {
    Site& site = m_needs.site;
    std::string filter = "bin/codefilter";
    site.settings.GetSettingToken("sourcecodeprefilter", filter);
    auto given =
        std::make_unique<Given>(Given{m_argInfo + m_generated->text, m_lineMap, OptionsText(kind.type),
                                      m_needs.session.ShaderName(), site.LibraryPath(filter)});
    if (column.given != nullptr && *column.given == *given) return;
    Stop(column);
    column.given = std::move(given);
    column.notes = m_generated->notes;
    const auto fail = [&](std::vector<std::string> why) {
        column.given.reset();
        Tell(kind, column, {{}, {}, std::move(why), false});
    };
    std::vector<std::string> refused;
    {
        const Gathering said(site.report);
        if (!m_needs.session.ShaderNameOk()) said.AddTo(refused);
    }
    if (!refused.empty()) return fail(std::move(refused));
    const std::string below = JoinPath(kDirectory, std::to_string(++m_lastRun));
    std::string error;
    if (!WriteFiles(*column.given, below, error)) return fail({error});
    column.directory = site.WorkPath(below);
    const std::string& name = column.given->name;
    LineCall call;
    call.call =
        CallOf({"perl", site.LibraryPath("bin/redirect.pl"), JoinPath(column.directory, "codegenfile"), "-",
                JoinPath(column.directory, "errors.txt"), column.given->filter, name,
                JoinPath(column.directory, name)},
               "source", site.compileLimits);
    call.environment = {{"TAVRN_WORKDIR", column.directory},
                        {"TAVRN_RENOPTS", JoinPath(column.directory, "render_options")},
                        {"TAVRN_SOURCEONLY", "1"}};
    call.hasInput = false;
    call.errorsAreLines = true;
    column.child =
        site.commands.StartLines(std::move(call), {[&column](const std::string& line) {
                                                       if (column.notes.size() < kMostNotes)
                                                           AddLines(column.notes, line);
                                                   },
                                                   [this, kind](const LineEnd& end) { OnEnd(kind, end); }});
    if (const auto time = site.compileLimits.time; time.count() > 0)
        column.child->ExpectWithin(time, "it took longer than " + site.compileLimits.timeSetBy + " allows");
}

bool SourceMaker::WriteFiles(const Given& given, const std::string& directory, std::string& error) const {
    for (const std::string& made : {std::string(kDirectory), directory}) {
        const int number = MakeDirectory(m_needs.site.WorkPath(made));
        if (number == 0 || number == EEXIST) continue;
        error = m_needs.site.WorkPath(made) + ": " + std::strerror(number);
        return false;
    }
    const std::pair<const char*, std::string_view> all[] = {{"codegenfile", given.code},
                                                            {"linemap", given.lines},
                                                            {"hintfile", m_hints},
                                                            {"render_options", given.options}};
    for (const auto& [name, text] : all) {
        if (!m_needs.site.WriteWorkFile(JoinPath(directory, name), text, error)) {
            error = m_needs.site.WorkPath(JoinPath(directory, name)) + ": " + error;
            return false;
        }
    }
    return true;
}

// By value: the child that tells it is let go of here.
void SourceMaker::OnEnd(SourceKind kind, const LineEnd& end) {
    Column& column = *m_columns.at(kind);
    const std::string directory = column.directory;
    MadeSource made;
    std::string error;
    made.isThere = !end.wasEnded && ReadWholeFile(JoinPath(directory, column.given->name), made.text, error);
    made.notes = std::move(column.notes);
    AddLines(made.notes, m_needs.site.LogText(JoinPath(directory, "errors.txt")));
    const std::string script = PathFile(column.given->filter);
    if (end.wasEnded) {
        made.notes.push_back(script + " was ended: " + end.why);
    } else if (end.exitCode != 0 && made.notes.empty()) {
        made.notes.push_back(script + ": " + end.why);
    } else if (!made.isThere && made.notes.empty()) {
        made.notes.push_back(script + " left no source in " + JoinPath(directory, column.given->name));
    }
    if (made.notes.size() > kMostNotes) {
        made.notes.resize(kMostNotes);
        made.notes.push_back("and more, which is left out here");
    }
    std::string map;
    std::optional<LineMap> lines;
    if (made.isThere && ReadWholeFile(JoinPath(directory, column.given->name + ".linemap"), map, error))
        lines = LineMap::Read(map, error);
    // One of another text is as good as none.
    if (lines && lines->LineCount() > SourceText(made.text, {}).LineCount()) lines.reset();
    if (made.isThere) made.lines = lines ? std::move(*lines) : MapOf(made.text);
    Stop(column);
    Tell(kind, column, std::move(made));
}

// Of a script that tells nothing of its lines: those that it has let pass are found again.
LineMap SourceMaker::MapOf(const std::string& text) const {
    const LineDifference difference = CompareLines(m_generated->text, text);
    std::vector<size_t> from(difference.right.size(), 0);
    for (const LineRow& row : difference.rows) {
        if (row.kind == LineRow::Kind::kSame) from[row.right] = row.left + 1;
    }
    return m_generated->lines.Through(from);
}

void SourceMaker::Tell(const SourceKind& kind, Column& column, MadeSource made) {
    column.made = std::make_unique<MadeSource>(std::move(made));
    m_needs.made(kind);
}

void SourceMaker::Stop(Column& column) {
    if (column.child != nullptr) column.child->EndNow();
    column.child.reset();
    column.notes.clear();
    if (!column.directory.empty()) m_left.push_back(std::exchange(column.directory, {}));
    ClearAway();
}

// What is being ended may still write into its own, which goes then with the next.
void SourceMaker::ClearAway() {
    for (const std::string& directory : m_left) RemoveTree(directory, [](const std::string&) {});
    std::erase_if(m_left, [](const std::string& path) { return !PathExists(path); });
}

}  // namespace tavrin
