// SPDX-License-Identifier: Apache-2.0
// What is selected on the desk, and the care for references to what may be gone.
#include <algorithm>

#include "desk/OpDesk.h"
#include "site/Site.h"

namespace tavrin {

void COpDesk::ClearSelections() {
    UnselectBoxes();
    ClearSelectedButton();
    ClearSelectedConnects();
    m_view->Repaint();  // those of buttons and wires are seen on the desk alone
}

void COpDesk::UnselectBoxes() {
    const bool wasSelected = AnySelected();
    ClearBoxSelection();
    if (wasSelected) m_document.edits.SelectionChanged();
}

void COpDesk::ClearBoxSelection() {
    for (const auto& box : m_document.m_boxes) box->selected = 0;
    for (const auto& box : m_pendingBoxes) box->selected = 0;
    m_selectedFrames.clear();
}

bool COpDesk::AnyBoxSelected() const {
    return std::any_of(m_document.m_boxes.begin(), m_document.m_boxes.end(),
                       [](const auto& box) { return box->selected != 0; });
}

void COpDesk::SetAllSelected(int selected) {
    bool changed = false;
    for (const auto& box : m_document.m_boxes) {
        changed = changed || box->selected != selected;
        box->selected = selected;
    }
    std::set<int> frames;
    for (const auto& [number, frame] : m_document.frames) {
        if (selected != 0) frames.insert(number);
    }
    changed = changed || frames != m_selectedFrames;
    m_selectedFrames = std::move(frames);
    if (changed) m_document.edits.SelectionChanged();
}

void COpDesk::SelectBox(const std::string& boxTitleWid) {
    const auto isIt = [&](const auto& box) { return box->BoxTitleWid() == boxTitleWid; };
    const auto found = std::find_if(m_document.m_boxes.begin(), m_document.m_boxes.end(), isIt);
    if (found == m_document.m_boxes.end()) return;
    ClearBoxSelection();
    (*found)->selected = 1;
    m_document.edits.SelectionChanged();
}

void COpDesk::ValidateReferences() {
    Report& report = m_host.GetSite().report;
    m_document.m_boxes.remove_if([&report](auto& box) {
        if (COpBox::IsLive(box.get())) return false;
        report.LogLine("WARNING: m_boxes holds invalid reference");
        static_cast<void>(box.release());  // it is not there to be destroyed
        return true;
    });
    if (m_selectedButton != nullptr && !COpButton::IsLive(m_selectedButton)) {
        report.LogLine("WARNING: m_selectedButton is invalid");
        ClearSelectedButton();
    }
    if (m_pulledInput != nullptr && !COpButton::IsLive(m_pulledInput)) {
        report.LogLine("WARNING: m_pulledInput is invalid");
        ClearSelectedButton();
    }
    std::erase_if(m_selectedConnects, [&report](const COpButton* button) {
        if (COpButton::IsLive(button)) return false;
        report.LogLine("WARNING: m_selectedConnects holds invalid reference");
        return true;
    });
    if (m_mouseButton != nullptr && !COpButton::IsLive(m_mouseButton)) {
        report.LogLine("WARNING: m_mouseButton is invalid");
        m_mouseButton = nullptr;
    }
    if (m_mouseBox != nullptr && !COpBox::IsLive(m_mouseBox)) {
        report.LogLine("WARNING: m_mouseBox is invalid");
        m_mouseBox = nullptr;
    }
}

void COpDesk::ForgetReferences() {
    m_mouseBox = nullptr;
    m_mouseButton = nullptr;
    ClearSelectedButton();
    ClearSelectedConnects();
    m_selectedFrames.clear();
    m_carriedBoxes.clear();
    m_carriedFrames.clear();
}

void COpDesk::OnInitialUpdate() {
    const EditScope edit(m_document, {});
    ForgetReferences();
    DeletePending();
    m_usedWids.Clear();
    for (const auto& box : m_document.m_boxes) {
        m_view->LayoutBox(*box);
        m_usedWids.Add(box->wid);
    }
    m_document.edits.Replaced();
}

}  // namespace tavrin
