// SPDX-License-Identifier: Apache-2.0
#include "render/LiveCommand.h"

#include <filesystem>
#include <utility>

#include "base/Process.h"
#include "site/Site.h"
#include "text/VisibleText.h"

namespace tavrin {

namespace {

namespace fs = std::filesystem;

constexpr const char* kSetting = "livecommand";
constexpr size_t kMostQuoted = 200;  // bytes of what cannot be understood

std::string Quoted(const std::string& line) {
    return "\"" + VisibleOneLine(line.substr(0, kMostQuoted)) + (line.size() > kMostQuoted ? "..." : "") +
           "\"";
}

// Up to a comment, which begins outside of quotes.
std::string WithoutComment(const std::string& value) {
    bool isQuoted = false;
    for (size_t i = 0; i < value.size(); ++i) {
        if (value[i] == '"') isQuoted = !isQuoted;
        if (value[i] == '#' && !isQuoted) return value.substr(0, i);
    }
    return value;
}

}  // namespace

// A document can bring another library into use, of which these settings say nothing.
std::vector<std::string> LiveCommand::WordsOf(const Site& site) {
    std::string value;
    if (site.settingsLibrary != site.directories.libName || !site.settings.GetSettingRaw(kSetting, value))
        return {};
    std::vector<std::string> words = SplitCommandLine(WithoutComment(value));
    if (!words.empty()) words.front() = site.LibraryPath(words.front());
    return words;
}

LiveCommand::LiveCommand(Site& site, const std::vector<std::string>& words, LiveAnswers& answers)
    : m_site(site), m_answers(answers), m_limit(LiveLimit::Of(site)), m_notes(site) {
    LineCall call;
    call.call = CallOf(words, "live", site.renderLimits);
    call.call.words.insert(call.call.words.begin(), "PerlExec");
    m_child = site.commands.StartLines(std::move(call), {[this](const std::string& line) { Hear(line); },
                                                         [this](const LineEnd& end) { Fail(end.why); }});
}

bool LiveCommand::CanTake() const { return m_underway.empty() || (m_underway.size() == 1 && m_hasShown); }

void LiveCommand::Take(const LiveState& state) {
    m_child->Send(state.directory);
    m_underway.push_back(state);
    RenewLimit();
}

void LiveCommand::RenewLimit() {
    if (m_underway.empty()) {
        m_child->ExpectNothing();
    } else if (m_limit.time.count() > 0) {
        m_child->ExpectWithin(m_limit.time, m_limit.why);
    }
}

void LiveCommand::Hear(const std::string& line) {
    const size_t blank = line.find(' ');
    const std::string verb = line.substr(0, blank);
    const std::string rest = blank == std::string::npos ? std::string() : line.substr(blank + 1);
    // It is at work; but once a newer state waits, it is to come to an end.
    if (m_underway.size() == 1 && (verb == "note" || verb == "coarse")) RenewLimit();
    if (verb == "note") return m_notes.Add(rest);
    if (m_underway.empty()) return Fail("it answered what it was not asked: " + Quoted(line));
    if (verb == "coarse" || verb == "picture") return HearPicture(line, rest, verb == "picture");
    if (verb == "error") {
        const std::string notes = m_notes.Waiting();
        m_notes.Say();
        return m_answers.OnError(TakeFirst().id, VisibleOneLine(rest), notes);
    }
    if (line != "dropped") return Fail("it answered " + Quoted(line));
    if (m_underway.size() == 1) return Fail("it dropped a state that no newer one follows");
    m_notes.Forget();
    m_answers.OnDropped(TakeFirst().id);
}

void LiveCommand::HearPicture(const std::string& line, const std::string& path, bool isFinal) {
    const uint64_t id = m_underway.front().id;
    if (const auto problem = ProblemOf(m_underway.front(), path))
        return Fail("it answered " + Quoted(line) + ", " + *problem);
    m_hasShown = true;
    if (isFinal) {
        m_notes.Say();
        TakeFirst();
    }
    m_answers.OnPicture(id, path, isFinal);
}

std::optional<std::string> LiveCommand::ProblemOf(const LiveState& state, const std::string& path) {
    std::error_code code;
    const fs::path real = fs::canonical(path, code);
    if (code) return "where there is no picture: " + code.message();
    const std::string directory = fs::canonical(state.directory, code).string() + "/";
    if (code || path.empty() || path.front() != '/' || !real.string().starts_with(directory))
        return "which is not in the directory of its state";
    if (!fs::is_regular_file(real, code)) return "which is no file";
    return std::nullopt;
}

LiveState LiveCommand::TakeFirst() {
    LiveState first = std::move(m_underway.front());
    m_underway.pop_front();
    m_hasShown = false;
    RenewLimit();
    return first;
}

void LiveCommand::Fail(const std::string& why) {
    m_notes.Say();
    m_underway.clear();
    m_child->EndNow();
    m_child.reset();  // what it has said beyond that is not heard
    m_answers.OnFailure("The live command was ended: " + why);
}

}  // namespace tavrin
