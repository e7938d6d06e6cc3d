// SPDX-License-Identifier: Apache-2.0
// What becomes of a wire in hand.
#include "desk/DeskGestures.h"
#include "desk/HitTest.h"
#include "text/Report.h"

namespace tavrin {

namespace {

// A press words it differently.
constexpr const char* kLoopAtRelease = "That would create an endless loop!  Watch status box for warnings.";

}  // namespace

void DeskGestures::FinishWire(COpButton* grown) {
    const COpButton* selected = m_needs.desk.m_selectedButton;
    if (selected == nullptr) return;
    COpButton* target = TargetOf(*selected, grown);
    if (target == nullptr) return;  // the button stays selected: a click on another one wires them as well
    if (selected->WouldLoop(*target)) {
        m_needs.report.Alert("%s", kLoopAtRelease);
    } else {
        Wire(*target);
    }
}

COpButton* DeskGestures::TargetOf(const COpButton& picked, COpButton* grown) const {
    COpButton* target = nullptr;
    for (COpButton* candidate : {m_needs.desk.m_mouseButton, grown}) {
        if (candidate != nullptr && picked.CanConnect(*candidate)) target = candidate;
    }
    return target;
}

// Beyond the window's edge nobody sees what lies there.
bool DeskGestures::IsEmptyDesk(DeskPoint at) const {
    return m_needs.view.Visible().Contains(at) && HitBox(m_needs.document, at) == nullptr;
}

// The pointer has left the button that was pressed. Until then it was a click, which picks any button; and on
// the arrows beside a vinput nothing but that grows.
void DeskGestures::PullWire() {
    COpDesk& desk = m_needs.desk;
    COpButton* input = desk.m_selectedButton;
    if (m_hasDrawn || input == nullptr || desk.m_mouseButton == input) return;
    m_hasDrawn = true;
    if (!desk.Rules().pullWires || input->IsOutput() || input->connections.Empty()) return;
    desk.m_pulledInput = input;
    desk.m_selectedButton = input->connections.First();
}

// Until here the wire stands where it was, whatever is drawn.
void DeskGestures::FinishPull(COpButton& input, COpButton* grown, DeskPoint at) {
    COpDesk& desk = m_needs.desk;
    const COpButton* source = desk.m_selectedButton;
    COpButton* target = source == nullptr ? nullptr : TargetOf(*source, grown);
    desk.ClearSelectedButton();
    if (source == nullptr || input.connections.First() != source) return;  // changed meanwhile
    if (target == nullptr) {
        if (IsEmptyDesk(at)) desk.CutWire(input);
    } else if (target != &input && source->WouldLoop(*target)) {
        m_needs.report.Alert("%s", kLoopAtRelease);
    } else {
        desk.MoveWire(input, *target);
    }
}

// Of a wire that found no button.
void DeskGestures::DropWire(DeskPoint at) {
    COpDesk& desk = m_needs.desk;
    COpButton* picked = desk.m_selectedButton;
    if (picked == nullptr || !IsEmptyDesk(at)) return;
    m_isTakenUp = m_needs.wireDropped && m_needs.wireDropped(*picked, at);
    if (m_isTakenUp) return;
    if (desk.Rules().dropWires) desk.ClearSelectedButton();
}

bool DeskGestures::LetGo() {
    COpDesk& desk = m_needs.desk;
    if (!desk.Rules().escapeWires || desk.m_selectedButton == nullptr) return false;
    desk.ClearSelectedButton();
    if (m_gesture == Kind::kWiring) EndGesture();
    m_growArrowsShown = false;
    m_needs.windows.Repaint();
    return true;
}

void DeskGestures::Wire(COpButton& target) {
    m_needs.desk.Connect(*m_needs.desk.m_selectedButton, target);
    m_needs.desk.ClearSelectedButton();
}

}  // namespace tavrin
