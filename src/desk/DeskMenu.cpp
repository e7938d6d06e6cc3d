// SPDX-License-Identifier: Apache-2.0
#include "desk/DeskMenu.h"

#include <algorithm>

#include "desk/BoxMarks.h"
#include "desk/HitTest.h"
#include "site/TypeTables.h"

namespace tavrin {

namespace {

using Kind = DeskMenuEntry::Kind;

DeskMenuEntry Separator() { return {.kind = Kind::kSeparator}; }
DeskMenuEntry Item(std::string text, int id, bool enabled = true) {
    return {.text = std::move(text), .id = id, .enabled = enabled};
}
DeskMenuEntry Checked(std::string text, int id, bool checked) {
    return {.text = std::move(text), .id = id, .checkable = true, .checked = checked};
}
DeskMenuEntry Submenu(std::string text, DeskMenuEntries entries) {
    return {.kind = Kind::kSubmenu, .text = std::move(text), .entries = std::move(entries)};
}
DeskMenuEntry HelpOn(std::string text, const std::string& help) {
    return Submenu(std::move(text), {{.kind = Kind::kHelp, .text = help}});
}

void AddHelpOnButtons(DeskMenuEntries& entries, const char* what,
                      const std::vector<std::unique_ptr<COpButton>>& buttons) {
    if (buttons.empty()) return;
    entries.push_back(Separator());
    for (const auto& button : buttons) {
        entries.push_back(
            HelpOn("On " + std::string(what) + " " + button->DisplayName(), button->HelpText()));
    }
}

DeskMenuEntry BoxHelp(const COpBox& box, const BoxMarks* marks) {
    DeskMenuEntries help = {HelpOn("On box " + box.BoxTitleWid(), HelpOf(box, marks))};
    AddHelpOnButtons(help, "input", box.inputs);
    AddHelpOnButtons(help, "output", box.outputs);
    return Submenu("Help", std::move(help));
}

DeskMenuEntry ButtonHelp(const COpButton& button, const BoxMarks* marks) {
    return Submenu("Help", {HelpOn("On box " + button.owner->BoxTitleWid(), HelpOf(*button.owner, marks)),
                            HelpOn("On button " + button.DisplayName(), button.HelpText())});
}

// An output may have no type at all, and then no cast.
DeskMenuEntry Casts(const COpButton& button, const TypeTables& types) {
    constexpr size_t kMost = desk_command::kLastCast - desk_command::kFirstCast + 1;
    DeskMenuEntries casts;
    for (size_t index = 0; index < std::min(button.values.size(), kMost); ++index) {
        casts.push_back(Checked(button.DisplayCastName(index, types),
                                desk_command::kFirstCast + static_cast<int>(index),
                                index == button.currentcast));
    }
    return Submenu("Casts", std::move(casts));
}

DeskMenuEntry DeleteFromButton(const COpButton& button) {
    return Submenu("Delete", {Item("Delete Button", desk_command::kDeleteButton,
                                   button.kind == ButtonKind::kVinput && !button.owner->IsPlaceholder()),
                              Item("Delete Connections", desk_command::kDeleteConnections,
                                   !button.connections.Empty())});
}

DeskMenuEntry EditFile() { return Item("Edit File...", desk_command::kEditFile); }

bool IsCast(int id) { return id >= desk_command::kFirstCast && id <= desk_command::kLastCast; }

}  // namespace

DeskMenuEntries BoxMenu(const COpBox& box, const BoxMarks* marks) {
    return {Item(box.BoxTitleWid(), desk_command::kNone),
            Separator(),
            BoxHelp(box, marks),
            Separator(),
            Item("Copy", desk_command::kCopyBox),
            Submenu("Delete", {Item("This Box", desk_command::kDeleteBox)}),
            Separator(),
            EditFile()};
}

DeskMenuEntries ButtonMenu(const COpButton& button, const TypeTables& types, std::optional<bool> isShown,
                           const BoxMarks* marks) {
    DeskMenuEntries menu = {
        Item(button.owner->BoxTitleWid() + ": Button " + button.DisplayName(), desk_command::kNone),
        Separator(), ButtonHelp(button, marks)};
    if (!button.IsUnknown()) menu.push_back(Casts(button, types));
    if (!button.IsOutput() && button.disableargflag == 0 && !button.IsUnknown()) {
        menu.push_back(Checked("Argument", desk_command::kArgument, button.arg != 0));
    }
    // One that cannot be shown says why when it is chosen.
    if (button.IsOutput() && isShown) menu.push_back(Checked("Show This", desk_command::kShowThis, *isShown));
    menu.push_back(Separator());
    if (button.kind == ButtonKind::kVinput && !button.IsUnknown()) {
        menu.push_back(Item("Copy Button Above", desk_command::kCopyButtonAbove));
        menu.push_back(Item("Copy Button Below", desk_command::kCopyButtonBelow));
    }
    menu.push_back(DeleteFromButton(button));
    menu.push_back(Separator());
    menu.push_back(EditFile());
    return menu;
}

DeskMenuEntries FrameMenu(const DeskFrame& frame) {
    const bool isFrame = frame.kind == DeskFrame::Kind::kFrame;
    DeskMenuEntries colors;
    for (int color = 0; color < DeskFrame::kColors; ++color) {
        colors.push_back(
            Checked(FrameColorName(color), desk_command::kFirstFrameColor + color, color == frame.color));
    }
    return {Item(isFrame ? "Rename Frame" : "Edit Note", desk_command::kEditFrame),
            Submenu("Color", std::move(colors)), Separator(),
            Item(isFrame ? "Delete Frame" : "Delete Note", desk_command::kDeleteFrame)};
}

std::vector<std::string_view> HelpTextLines(std::string_view help) {
    std::vector<std::string_view> lines;
    while (!help.empty()) {
        const size_t end = std::min(help.find_first_of("\r\n"), help.size());
        lines.push_back(help.substr(0, end));
        help.remove_prefix(end);
        help.remove_prefix(help.starts_with("\r\n") ? 2 : std::min<size_t>(help.size(), 1));
    }
    return lines;
}

std::optional<DeskMenuEntries> DeskMenu::Open(DeskPoint at) {
    COpDesk& desk = m_needs.desk;
    if (m_needs.document.lock != 0 || m_needs.gestures.Current() != DeskGestures::Kind::kIdle) return {};
    desk.ValidateReferences();
    if (m_needs.gestures.GrowArrowsShown()) {
        m_needs.gestures.HideGrowArrows();
        m_needs.windows.Repaint();
    }
    COpBox* box = HitBox(m_needs.document, at);
    m_frame = 0;
    if (box == nullptr) return OpenForFrame(at);
    COpButton* button = HitButton(*box, at);
    desk.m_mouseBox = box;
    desk.m_mouseButton = button;
    m_boxSerial = box->Serial();
    m_buttonSerial = button == nullptr ? 0 : button->Serial();
    m_needs.gestures.IgnoreNextMove();
    if (button == nullptr) return BoxMenu(*box, m_needs.marks);
    std::optional<bool> isShown;
    if (m_needs.toggleShown) isShown = m_needs.shownOutput() == button;
    return ButtonMenu(*button, m_needs.types, isShown, m_needs.marks);
}

std::optional<DeskMenuEntries> DeskMenu::OpenForFrame(DeskPoint at) {
    const auto hit = m_needs.gestures.FrameAt(at);
    if (!hit) return {};
    m_frame = hit->number;
    m_needs.desk.m_mouseBox = nullptr;
    m_needs.desk.m_mouseButton = nullptr;
    m_needs.gestures.IgnoreNextMove();
    return FrameMenu(m_needs.document.frames.at(m_frame));
}

bool DeskMenu::TargetStands() const {
    const COpBox* box = m_needs.desk.m_mouseBox;
    if (!COpBox::IsLive(box) || box->Serial() != m_boxSerial) return false;
    const COpButton* button = m_needs.desk.m_mouseButton;
    return m_buttonSerial == 0 || (COpButton::IsLive(button) && button->Serial() == m_buttonSerial);
}

void DeskMenu::Choose(int id) {
    if (m_frame != 0) return ChooseForFrame(id);
    if (id == desk_command::kNone || !TargetStands()) return;
    COpBox& box = *m_needs.desk.m_mouseBox;
    if (id == desk_command::kEditFile) {
        m_needs.editFile(box.filename);
        return;
    }
    if (id == desk_command::kShowThis) {
        m_needs.toggleShown(*m_needs.desk.m_mouseButton);  // by which nothing of the document changes
        return;
    }
    if (m_needs.document.lock != 0) return;
    if (m_buttonSerial == 0) {
        ChooseForBox(id, box);
    } else {
        ChooseForButton(id);
    }
    m_needs.windows.Repaint();
}

void DeskMenu::ChooseForFrame(int id) {
    if (m_needs.document.lock != 0 || !m_needs.document.frames.contains(m_frame)) return;
    const int color = id - desk_command::kFirstFrameColor;
    if (id == desk_command::kEditFrame && m_needs.editFrame) m_needs.editFrame(m_frame);
    if (id == desk_command::kDeleteFrame) m_needs.desk.DeleteFrame(m_frame);
    if (color >= 0 && color < DeskFrame::kColors) m_needs.desk.SetFrameColor(m_frame, color);
    m_needs.windows.Repaint();
}

void DeskMenu::ChooseForBox(int id, COpBox& box) {
    if (id == desk_command::kCopyBox) m_needs.desk.DuplicateBox(box);
    if (id == desk_command::kDeleteBox) m_needs.desk.DeleteBox(box);
}

void DeskMenu::ChooseForButton(int id) {
    COpDesk& desk = m_needs.desk;
    switch (id) {
        case desk_command::kCopyButtonAbove:
        case desk_command::kCopyButtonBelow:
            desk.GrowVinput(id == desk_command::kCopyButtonAbove);
            break;
        case desk_command::kDeleteButton:
            desk.DeleteButton();
            break;
        case desk_command::kDeleteConnections:
            desk.DeleteConnections();
            break;
        case desk_command::kArgument:
            desk.ToggleArgument();
            break;
        default:
            if (IsCast(id)) desk.ChooseCast(static_cast<size_t>(id - desk_command::kFirstCast));
    }
}

}  // namespace tavrin
