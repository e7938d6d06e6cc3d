// SPDX-License-Identifier: Apache-2.0
#include "ui/commands/SearchWork.h"

#include <utility>

#include "app/Workspace.h"
#include "base/Profile.h"
#include "ui/base/Text.h"
#include "ui/commands/CommandActions.h"
#include "ui/desk/DeskPane.h"
#include "ui/search/SearchPopup.h"

namespace tavrin {

namespace {

constexpr std::chrono::milliseconds kSlice{4};  // of reading, between two events
constexpr int kBreath = 1;                      // milliseconds between two slices
constexpr int kWait = 15;                       // for the preprocessor
constexpr int kOften = 150;                     // between two looks for more of what is typed
constexpr const char* kRecentKey = "Search.recent";
constexpr char kSeparator = '/';  // which no name has, being that of a file

std::vector<std::string> Split(const std::string& text) {
    std::vector<std::string> names;
    for (size_t begin = 0; begin < text.size();) {
        const size_t end = std::min(text.find(kSeparator, begin), text.size());
        if (end > begin) names.push_back(text.substr(begin, end - begin));
        begin = end + 1;
    }
    return names;
}

std::string Joined(const std::vector<std::string>& names) {
    std::string text;
    for (const std::string& name : names) text += (text.empty() ? "" : std::string(1, kSeparator)) + name;
    return text;
}

QString WhatFor(const COpButton* button) {
    if (button == nullptr) return "Search for an operator";
    return QString(button->IsOutput() ? "What takes " : "What gives ") + Shown(button->DisplayName()) +
           (button->IsOutput() ? " of " : " to ") + Shown(button->owner->BoxTitleWid());
}

}  // namespace

SearchWork::SearchWork(const Needs& needs) : m_needs(needs) {
    m_timer.setSingleShot(true);
    m_timer.callOnTimeout([this] { Read(); });
}

SearchWork::~SearchWork() { End(); }

// Once the menu that it was chosen in has gone.
void SearchWork::AddTo(CommandActions& commands) {
    const auto open = [this] {
        if (!IsLocked() && !m_hasEnded) OpenAt(PlaceOnDesk(), {}, nullptr);
    };
    commands.On(CommandId::kSearch,
                {[this, open] { QTimer::singleShot(0, &m_timer, open); }, [this] { return !IsLocked(); }});
}

bool SearchWork::IsLocked() const { return m_needs.work.document.lock != 0; }

bool SearchWork::OpenByKey(const QString& begun) {
    if (!m_needs.work.desk.Rules().search || IsLocked() || m_hasEnded) return false;
    OpenAt(PlaceOnDesk(), begun, nullptr);
    return true;
}

bool SearchWork::OpenForWire(const COpButton& button, DeskPoint at) {
    if (!m_needs.work.desk.Rules().search || IsLocked() || m_hasEnded) return false;
    OpenAt(at, {}, &button);
    return true;
}

void SearchWork::OnIdle() {
    if (m_needs.work.desk.Rules().search) BeginReading();
}

void SearchWork::LibraryChanged() {
    if (m_index == nullptr) return;
    m_index->Reload();
    m_search->Refresh();
    if (m_popup != nullptr) m_popup->FindAgain();
    m_timer.start(0);
}

void SearchWork::End() {
    m_hasEnded = true;
    m_timer.stop();
    delete std::exchange(m_popup, nullptr);
    m_search.reset();
    m_index.reset();
}

void SearchWork::BeginReading() {
    if (m_index != nullptr || m_hasEnded) return;
    CTvApp& app = m_needs.work.app;
    m_index = std::make_unique<OperatorIndex>(app.Registry(), app.GetSite());
    m_search = std::make_unique<OperatorSearch>(*m_index);
    m_search->SetRecent(Split(m_needs.profile.GetText(kRecentKey)));
    m_index->Reload();
    m_timer.start(0);
}

// The list grows with what is read, but not with each slice: to find again takes time as well.
void SearchWork::Read() {
    const OperatorIndex::Pace pace = m_index->Step(kSlice);
    m_search->Refresh();
    const bool isDone = pace == OperatorIndex::Pace::kDone;
    const bool isDue = isDone || !m_lastFind.isValid() || m_lastFind.elapsed() >= kOften;
    if (m_popup != nullptr && isDue && m_shown != m_index->Revision()) {
        m_shown = m_index->Revision();
        m_lastFind.start();
        m_popup->FindAgain();
    }
    if (!isDone) m_timer.start(pace == OperatorIndex::Pace::kBusy ? kBreath : kWait);
}

DeskPoint SearchWork::PlaceOnDesk() const {
    return m_needs.desk.CursorOnDesk().value_or(m_needs.desk.View().Visible().Middle());
}

void SearchWork::OpenAt(DeskPoint at, const QString& begun, const COpButton* button) {
    BeginReading();
    if (m_popup == nullptr) {
        m_popup = new SearchPopup(
            &m_needs.frame,
            {*m_index, *m_search, m_needs.work.app.GetSite().directories.tavrnDir,
             [this](const std::string& name, const std::optional<WireFit>& fit) { Put(name, fit); },
             [this] { LetGo(); }});
    }
    m_at = at;
    m_isForWire = button != nullptr;
    const WindowPoint seen = m_needs.desk.View().ToWindow(at);
    SearchPopup::Wanted wanted;
    wanted.at = m_needs.desk.Desk().mapToGlobal(QPoint(int(seen.x), int(seen.y)));
    wanted.begun = begun;
    if (button != nullptr) wanted.end = OpenEnd::Of(*button);
    wanted.what = WhatFor(button);
    m_popup->Open(wanted);
}

void SearchWork::Put(const std::string& name, const std::optional<WireFit>& fit) {
    Workspace& work = m_needs.work;
    if (IsLocked()) {
        LetGo();
        return;
    }
    m_search->Use(name);
    m_needs.profile.SetText(kRecentKey, Joined(m_search->Recent()));
    work.app.RestoreWorkDirectory();
    work.desk.PutOperator(name, m_at, fit ? &*fit : nullptr);
}

void SearchWork::LetGo() {
    if (!m_isForWire) return;
    m_needs.work.desk.ClearSelectedButton();
    m_needs.desk.Repaint();
}

}  // namespace tavrin
