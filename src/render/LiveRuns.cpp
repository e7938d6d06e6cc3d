// SPDX-License-Identifier: Apache-2.0
#include "render/LiveRuns.h"

#include <sstream>
#include <utility>

#include "base/Files.h"
#include "base/Paths.h"
#include "render/RenderRecords.h"
#include "site/Site.h"

namespace tavrin {

namespace {

constexpr const char* kNumber = "0";  // of the render: none that the history has

}  // namespace

LiveRuns::LiveRuns(Site& site, LiveAnswers& answers)
    : m_site(site), m_answers(answers), m_limit(LiveLimit::Of(site)), m_notes(site) {}

void LiveRuns::Take(const LiveState& state) {
    if (m_child != nullptr) m_child->EndNow();
    m_child.reset();
    if (const auto before = std::exchange(m_state, state)) m_answers.OnDropped(before->id);
    m_notes.Forget();
    MakeDirectory(JoinPath(state.directory, kNumber));
    RunFilter();
}

void LiveRuns::RunFilter() {
    std::string filter = "bin/codefilter";
    m_site.settings.GetSettingToken("sourcecodeprefilter", filter);
    const std::string& directory = m_state->directory;
    Run({"perl", m_site.LibraryPath("bin/redirect.pl"), JoinPath(directory, "codegenfile"), "-",
         JoinPath(directory, "errors.txt"), m_site.LibraryPath(filter), m_state->name,
         JoinPath(directory, m_state->name)},
        PathFile(filter), &LiveRuns::RunRender);
}

void LiveRuns::RunRender() {
    Run({"PerlExec", m_site.LibraryPath("bin/renderit"), m_state->name, kNumber}, "renderit",
        &LiveRuns::Finish);
}

void LiveRuns::Run(std::vector<std::string> words, const std::string& name, void (LiveRuns::*done)()) {
    m_step = name;
    LineCall call;
    call.call = CallOf(std::move(words), "live", m_site.renderLimits);
    call.environment = {{"TAVRN_WORKDIR", m_state->directory},
                        {"TAVRN_RENOPTS", JoinPath(m_state->directory, "render_options")},
                        {"MRAY_VIEWER", ""},  // nothing but Live shows it
                        {"TAVRN_VIEW", ""}};
    call.hasInput = false;
    call.errorsAreLines = true;
    m_child =
        m_site.commands.StartLines(std::move(call), {[this](const std::string& line) { m_notes.Add(line); },
                                                     [this, done](const LineEnd& end) { OnEnd(end, done); }});
    if (m_limit.time.count() > 0) m_child->ExpectWithin(m_limit.time, m_limit.why);
}

void LiveRuns::OnEnd(const LineEnd& end, void (LiveRuns::*done)()) {
    if (end.wasEnded) {
        m_notes.Say();
        m_state.reset();
        return m_answers.OnFailure("The live run of " + m_step + " was ended: " + end.why);
    }
    if (end.exitCode == 0) return (this->*done)();
    std::istringstream errors(m_site.LogText(JoinPath(m_state->directory, "errors.txt")));
    for (std::string line; std::getline(errors, line);) m_notes.Add(line.substr(0, line.find('\r')));
    const std::string first = m_notes.First();
    GiveUp(m_step + ": " + (first.empty() ? end.why : first));
}

void LiveRuns::Finish() {
    const std::string directory = JoinPath(m_state->directory, kNumber);
    const std::string picture = RenderRecords::PictureAt(JoinPath(directory, m_state->name));
    if (picture.empty()) return GiveUp("bin/renderit left no picture in " + directory);
    m_notes.Forget();
    m_answers.OnPicture(std::exchange(m_state, std::nullopt)->id, picture, true);
}

void LiveRuns::GiveUp(const std::string& text) {
    const std::string notes = m_notes.Waiting();
    m_notes.Say();
    m_answers.OnError(std::exchange(m_state, std::nullopt)->id, text, notes);
}

}  // namespace tavrin
