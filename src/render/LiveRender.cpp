// SPDX-License-Identifier: Apache-2.0
#include "render/LiveRender.h"

#include <algorithm>
#include <utility>

#include "document/TvDoc.h"
#include "render/LiveCommand.h"
#include "render/LiveRuns.h"
#include "site/Site.h"
#include "text/OutOfMemory.h"

namespace tavrin {

namespace {

constexpr std::chrono::milliseconds kQuick{8};  // half of the time between two frames
constexpr size_t kMostSaid = 1000;              // lines that are remembered

}  // namespace

LiveRender::LiveRender(RenderSession& session, const CTvDoc& document, Site& site, Hands hands)
    : m_session(session), m_document(document), m_site(site), m_hands(std::move(hands)), m_states(site) {}

LiveRender::~LiveRender() = default;

void LiveRender::SwitchOn() {
    m_isOn = true;
    m_failures = 0;
}

void LiveRender::SwitchOff() {
    m_isOn = false;
    m_isBehind = false;
    m_maker.reset();
    m_failed.reset();
    m_makerKey.clear();
    m_last.reset();
    m_said.clear();
    m_underway.clear();
    m_states.Clear();
}

bool LiveRender::WantsPause() const { return m_runsScripts || m_lastCost > kQuick; }

// Nothing where it goes on.
std::string LiveRender::WhyWaits() const {
    if (m_document.m_boxes.empty()) return "the desk is empty";
    if (m_document.lock != 0) return "the desk is locked";
    return {};
}

void LiveRender::Update() {
    m_isBehind = false;
    if (!m_isOn) return;
    m_failed.reset();
    if (const std::string why = WhyWaits(); !why.empty()) {
        m_last.reset();
        return m_hands.trouble("Live waits: " + why);
    }
    ChooseMaker();
    if (!m_maker->CanTake()) {
        m_isBehind = true;
        return;
    }
    const auto start = Clock::now();
    TakeState();
    m_lastCost = std::chrono::duration_cast<std::chrono::microseconds>(Clock::now() - start);
}

void LiveRender::TakeState() {
    const auto start = Clock::now();
    std::optional<Taken> taken = Generate();
    if (!taken) return m_last.reset();
    // A probe that ends by being generated may have ended Live.
    if (m_maker == nullptr || taken == m_last) return;
    LiveState state;
    std::string error;
    if (!m_states.Write(taken->files, taken->name, state, error)) {
        m_last.reset();
        return m_hands.trouble(error);
    }
    m_last = std::move(taken);
    m_underway.emplace(state.id, start);
    m_maker->Take(state);
}

// Nothing, with the trouble told, if there is no state. What is remarked on one that there is comes into the
// log, once: it would come again with each change.
std::optional<LiveRender::Taken> LiveRender::Generate() {
    const HeldAlerts alerts(m_site.report);
    Taken taken;
    std::string log;
    bool isMade = false;
    {
        const HeldLog held(m_site.report);
        isMade = m_session.ShaderNameOk() &&
                 WithinMemory(m_site.report, "generating the shader " + m_session.ShaderName(), [&] {
                     taken = {m_session.MakeWorkFiles(Rendered::kProbe), m_session.ShaderName()};
                     return true;
                 });
        log = held.Text();
    }
    for (size_t begin = 0; begin < log.size();) {
        const size_t end = std::min(log.find("\r\n", begin), log.size());
        SayOnce(log.substr(begin, end - begin));
        begin = end + 2;
    }
    for (const Report::Pending& alert : alerts.All()) SayOnce("WARNING: " + alert.text);
    m_remark = alerts.All().empty() ? std::string() : alerts.All().back().text;
    if (isMade) return taken;
    m_hands.trouble(m_remark);
    return std::nullopt;
}

void LiveRender::SayOnce(const std::string& line) {
    if (m_said.size() >= kMostSaid) m_said.clear();
    if (m_said.insert(line).second) m_site.report.LogLine("%s", line.c_str());
}

// The command of the library as it is now, in the environment that children have now.
void LiveRender::ChooseMaker() {
    const std::vector<std::string> words = LiveCommand::WordsOf(m_site);
    std::vector<std::string> key = words;
    key.push_back(m_site.directories.libDir);
    if (!words.empty()) {
        for (std::string& variable : m_site.environment.ToList()) key.push_back(std::move(variable));
    }
    if (m_maker != nullptr && key == m_makerKey) return;
    // What failed with the same state would fail with it again.
    if (key != m_makerKey) m_last.reset();
    m_maker.reset();
    m_underway.clear();
    m_makerKey = std::move(key);
    LiveAnswers& answers = *this;
    m_runsScripts = words.empty();
    if (m_runsScripts) {
        m_maker = std::make_unique<LiveRuns>(m_site, answers);
    } else {
        m_maker = std::make_unique<LiveCommand>(m_site, words, answers);
    }
}

void LiveRender::OnPicture(uint64_t id, const std::string& path, bool isFinal) {
    m_failures = 0;
    const auto started = m_underway.find(id);
    const auto time = started == m_underway.end() ? Clock::duration(0) : Clock::now() - started->second;
    m_states.NotePicture(id);
    if (isFinal) {
        NoteAnswer(id);
        m_session.marks.Replace({});
    }
    m_hands.picture(
        {id, path, isFinal, std::chrono::duration_cast<std::chrono::milliseconds>(time), m_remark});
    AskForNext();
}

void LiveRender::OnError(uint64_t id, const std::string& text, const std::string& notes) {
    NoteAnswer(id);
    m_session.marks.Replace(text + "\n" + notes);
    m_hands.trouble(text);
    AskForNext();
}

void LiveRender::OnDropped(uint64_t id) {
    NoteAnswer(id);
    AskForNext();
}

void LiveRender::NoteAnswer(uint64_t id) {
    m_underway.erase(id);
    m_states.NoteAnswer(id);
}

void LiveRender::AskForNext() {
    if (m_isOn && m_isBehind && m_maker != nullptr && m_maker->CanTake()) m_hands.ready();
}

// The one that has failed is still at its words.
void LiveRender::OnFailure(const std::string& why) {
    m_failed = std::move(m_maker);
    for (const auto& [id, started] : std::exchange(m_underway, {})) m_states.NoteAnswer(id);
    m_site.report.LogLine("WARNING: %s", why.c_str());
    if (++m_failures < kMostFailures) {
        m_hands.trouble(why);
        if (m_isBehind) m_hands.ready();
        return;
    }
    const std::string off =
        "Live is switched off after " + std::to_string(kMostFailures) + " failures in a row";
    m_site.report.LogLine("WARNING: %s", off.c_str());
    m_hands.trouble(why + ". " + off);
    auto failed = std::move(m_failed);
    SwitchOff();
    m_failed = std::move(failed);
    m_hands.switchedOff();
}

}  // namespace tavrin
