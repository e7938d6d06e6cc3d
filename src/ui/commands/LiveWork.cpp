// SPDX-License-Identifier: Apache-2.0
#include "ui/commands/LiveWork.h"

#include <utility>

#include "app/Workspace.h"
#include "ui/base/Text.h"
#include "ui/commands/CommandActions.h"
#include "ui/frame/StatusBox.h"
#include "ui/render/PictureLink.h"

namespace tavrin {

namespace {

// Milliseconds without a change after which a hand rests.
constexpr int kPause = 120;
// The same before a time is told: each telling repaints the window, which the desk makes dear where there is
// no graphics card.
constexpr int kRest = 300;

}  // namespace

LiveWork::LiveWork(Needs needs)
    : m_needs(std::move(needs)),
      m_work(m_needs.work),
      m_live(m_work.session, m_work.document, m_work.app.GetSite(),
             {[this](const LivePicture& picture) { OnPicture(picture); },
              [this](const std::string& text) { OnTrouble(text); }, [this] { Schedule(); },
              [this] { OnSwitchedOff(); }}) {
    m_turn.setSingleShot(true);
    m_turn.callOnTimeout([this] { Update(); });
    m_rest.setSingleShot(true);
    m_rest.setInterval(kRest);
    m_rest.callOnTimeout([this] { m_needs.statusBox.SetAside(m_told); });
    Edits& edits = m_work.document.edits;
    m_changes = edits.Observe([this](const Change& change) { OnChange(change); });
    m_parts = edits.ObserveParts([this] { Schedule(); });
    m_probes = m_work.probe.afterChange.Add([this] { OnProbe(); });
}

LiveWork::~LiveWork() = default;

void LiveWork::AddTo(CommandActions& commands) {
    commands.On(CommandId::kLive, {.run = [this] { Toggle(); }, .checked = [this] { return m_isOn; }});
}

void LiveWork::Toggle() {
    m_isOn = !m_isOn;
    m_isRefused = false;
    m_trouble.clear();
    Update();
}

void LiveWork::End() {
    m_hasEnded = true;
    m_turn.stop();
    if (m_live.IsOn()) m_live.SwitchOff();
}

// A selection changes nothing of the picture.
void LiveWork::OnChange(const Change& change) {
    if (change.replaced) m_live.ForgetSaid();
    if (change.HasBoxes() || !change.buttons.empty() || !change.tuned.empty() || change.wires ||
        change.options || change.settings)
        Schedule();
}

// In its own time: a probe may end in the middle of being generated.
void LiveWork::OnProbe() {
    m_isRefused = false;
    if (!m_turn.isActive()) m_turn.start(0);
}

bool LiveWork::IsWanted() const {
    return (m_isOn || m_work.probe.Output() != nullptr) && !m_isRefused && !m_hasEnded;
}

void LiveWork::Schedule() {
    if (!m_live.IsOn() || m_hasEnded) return;
    if (m_live.WantsPause()) {
        m_turn.start(kPause);
    } else if (!m_turn.isActive()) {
        m_turn.start(0);
    }
}

void LiveWork::Update() {
    m_turn.stop();
    if (!IsWanted()) {
        if (!m_live.IsOn()) return;
        m_live.SwitchOff();
        m_needs.pictures.EndLive();
        m_rest.stop();
        m_needs.statusBox.SetAside({});
        return;
    }
    if (!m_live.IsOn()) m_live.SwitchOn();
    m_work.app.RestoreWorkDirectory();
    m_live.Update();
}

void LiveWork::OnPicture(const LivePicture& picture) {
    m_trouble.clear();
    m_needs.pictures.ShowLive(picture.id, picture.path, picture.isFinal);
    if (picture.isFinal) {
        m_told = QString("Live: %1 ms").arg(picture.time.count());
        if (!picture.remark.empty()) m_told += "; " + Shown(picture.remark);
        m_rest.start();
    }
    afterPicture.Tell(picture);
}

void LiveWork::OnTrouble(const std::string& text) {
    if (text == std::exchange(m_trouble, text)) return;
    m_rest.stop();
    m_needs.pictures.TellLiveTrouble(text);
    m_needs.statusBox.SetAside(text.starts_with("Live") ? Shown(text) : "Live: " + Shown(text));
    afterTrouble.Tell(text);
}

void LiveWork::OnSwitchedOff() {
    m_isOn = false;
    m_isRefused = true;
    m_turn.stop();
    m_needs.pictures.EndLive();
    m_needs.rulesChanged();
}

}  // namespace tavrin
