// SPDX-License-Identifier: Apache-2.0
// What a press would meet: which line is near enough, and what lights up before it.
#include "desk/DeskGestures.h"
#include "desk/HitTest.h"

namespace tavrin {

COpButton* DeskGestures::LineAt(DeskPoint at) const {
    const float zoom = m_needs.view.Zoom();
    const std::optional<float> slack = m_needs.desk.Rules().lineSlack;
    if (!slack) return HitConnection(m_needs.document, at, m_needs.lineWidth / zoom);
    return NearestConnection(m_needs.document, at, (m_needs.lineWidth * 0.5F + *slack) / zoom);
}

// Only what changes is painted anew: the pointer moves all the time.
void DeskGestures::FollowHover(const COpBox* box, const COpButton* button, DeskPoint at) {
    const COpDesk& desk = m_needs.desk;
    const bool isQuiet =
        m_gesture == Kind::kIdle && desk.m_pendingBoxes.empty() && desk.m_selectedButton == nullptr;
    if (!desk.Rules().hover || !isQuiet) return SetHover({});
    SetHover({box, button, box == nullptr ? LineAt(at) : nullptr});
}

void DeskGestures::SetHover(const Hover& hover) {
    if (m_hover == hover) return;
    m_hover = hover;
    m_needs.windows.Repaint();
}

void DeskGestures::PointerLeft() {
    m_pointerInside = false;
    SetHover({});
}

void DeskGestures::LookAgain() {
    if (!m_pointerInside || !m_needs.desk.Rules().hover) return;
    const DeskPoint at = m_needs.view.ToDesk(m_mousePoint);
    const COpBox* box = HitBox(m_needs.document, at);
    FollowHover(box, box == nullptr ? nullptr : HitButton(*box, at), at);
}

}  // namespace tavrin
