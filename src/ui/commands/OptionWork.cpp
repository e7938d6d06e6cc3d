// SPDX-License-Identifier: Apache-2.0
#include "ui/commands/OptionWork.h"

#include "base/Profile.h"
#include "site/Site.h"
#include "ui/commands/CommandActions.h"
#include "ui/desk/DeskPane.h"
#include "ui/desk/Minimap.h"
#include "ui/frame/StatusBox.h"
#include "ui/sliders/SliderPane.h"

namespace tavrin {

namespace {

// In the profile.
constexpr const char* kScrollBarsKey = "OpDesk.scrollbars";
constexpr const char* kMinimapKey = "OpDesk.minimap";

// Children see a switch from its first use on.
void Flip(bool& flag, const char* variable, Site& site) {
    flag = !flag;
    site.environment.Set(variable, flag ? "1" : "0");
}

}  // namespace

OptionWork::OptionWork(const Needs& needs)
    : m_needs(needs), m_sliderColumnWidth(needs.sliders.ColumnWidth()) {
    int shown = 1;
    m_needs.site.settings.GetSettingInt("desk.statusbar", shown);
    m_showStatus = shown != 0;
    ShowParts();
    m_needs.desk.SetScrollBarsShown(m_needs.profile.GetInt(kScrollBarsKey, 1) != 0);
    int hasMap = 0;  // until the user has chosen
    m_needs.site.settings.GetSettingInt("desk.minimap", hasMap);
    m_needs.desk.Map().SetWanted(m_needs.profile.GetInt(kMinimapKey, hasMap) != 0);
}

void OptionWork::ShowParts() {
    m_needs.statusBox.setVisible(m_showStatus);
    m_needs.sliders.setFixedWidth(m_showSliderDesk ? m_sliderColumnWidth : 0);
}

void OptionWork::Save() const {
    m_needs.profile.SetInt(kScrollBarsKey, m_needs.desk.ScrollBarsShown() ? 1 : 0);
    m_needs.profile.SetInt(kMinimapKey, m_needs.desk.Map().IsWanted() ? 1 : 0);
}

void OptionWork::AddTo(CommandActions& commands) {
    AddParts(commands);
    Site& site = m_needs.site;
    commands.On(CommandId::kSoundEffects, {.run = [&site] { Flip(site.quietMode, "TAVRN_QUIET", site); },
                                           .checked = [&site] { return !site.quietMode; }});
    commands.On(CommandId::kDebugMode, {.run = [&site] { Flip(site.debugMode, "TAVRN_DEBUG", site); },
                                        .checked = [&site] { return site.debugMode; }});
}

void OptionWork::AddParts(CommandActions& commands) {
    DeskPane& desk = m_needs.desk;
    commands.On(CommandId::kScrollBars, {.run = [&desk] { desk.SetScrollBarsShown(!desk.ScrollBarsShown()); },
                                         .checked = [&desk] { return desk.ScrollBarsShown(); }});
    Minimap& map = desk.Map();
    commands.On(CommandId::kMinimap, {.run = [&map] { map.SetWanted(!map.IsWanted()); },
                                      .checked = [&map] { return map.IsWanted(); }});
    const auto add = [&](CommandId id, bool& isShown) {
        commands.On(id, {.run =
                             [this, &isShown] {
                                 isShown = !isShown;
                                 ShowParts();
                             },
                         .checked = [&isShown] { return isShown; }});
    };
    add(CommandId::kStatusBar, m_showStatus);
    add(CommandId::kSliderDesk, m_showSliderDesk);
}

}  // namespace tavrin
