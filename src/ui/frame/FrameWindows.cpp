// SPDX-License-Identifier: Apache-2.0
#include "ui/frame/FrameWindows.h"

#include <QScreen>

#include "app/Workspace.h"
#include "ui/commands/CommandActions.h"

namespace tavrin {

namespace {

// The window manager will draw round it what it draws round the frame.
QSize WithBorder(const QWidget& window) {
    const QWidget& frame = *window.parentWidget();
    return window.size() + frame.frameGeometry().size() - frame.size();
}

bool WantsKeysTaken(const Settings& settings) {
    int value = 0;
    return settings.GetSettingInt("finders.takekeys", value) && value != 0;
}

CommandHandler HandlerOf(const WindowRow& row, ToolWindow& window, bool takesKeys) {
    if (row.way == WindowRow::Way::kComesUp) return {[&window] { window.ComeUp(); }};
    const auto toggle = [&window, takesKeys] {
        window.Toggle();
        if (takesKeys && window.IsUp()) window.TakeKeys();
    };
    return {.run = toggle, .checked = [&window] { return window.IsUp(); }};
}

}  // namespace

FrameWindows::FrameWindows(const WindowNeeds& needs, CommandActions& commands) {
    const bool takeKeys = WantsKeysTaken(needs.work.app.GetSite().settings);
    for (const WindowRow& row : WindowTable()) {
        ToolWindow* window = row.make(needs);
        m_all.push_back(window);
        commands.On(row.command, HandlerOf(row, *window, row.takesKeys && takeKeys));
        if (row.addCommands != nullptr) row.addCommands(*window, commands);
    }
}

ToolWindow& FrameWindows::Of(CommandId command) const {
    size_t at = 0;
    while (WindowTable().at(at).command != command) ++at;
    return *m_all[at];
}

void FrameWindows::OnShownOrHidden(const std::function<void()>& observer) const {
    for (ToolWindow* window : m_all) window->OnShownOrHidden(observer);
}

void FrameWindows::RestorePlaces(WindowPlaces& places, const std::function<QRect()>& ground) const {
    for (size_t at = 0; at < m_all.size(); ++at) {
        const WindowRow& row = WindowTable()[at];
        ToolWindow* window = m_all[at];
        if (places.RestoreWindow(*window, row.place, {row.keepsSize, true})) continue;
        window->PlaceWhenFirstShown([windows = m_all, window, share = row.share, ground] {
            FirstPlaceRoom room{ground(), window->parentWidget()->screen()->availableGeometry(), {}};
            for (const ToolWindow* other : windows) {
                if (other->isVisible()) room.taken.push_back(other->pos());
            }
            return FirstPlace(room, WithBorder(*window), share);
        });
    }
}

void FrameWindows::SavePlaces(WindowPlaces& places) const {
    for (size_t at = 0; at < m_all.size(); ++at) {
        if (m_all[at]->IsPlaced()) places.SaveWindow(*m_all[at], WindowTable()[at].place);
    }
}

void FrameWindows::HideAll() const {
    for (ToolWindow* window : m_all) window->hide();
}

}  // namespace tavrin
