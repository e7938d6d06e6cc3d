// SPDX-License-Identifier: Apache-2.0
#include "support/DeskInvariants.h"

#include <algorithm>
#include <map>
#include <unordered_map>

namespace tavrin::test {

void DeskInvariants::Fail(const std::string& what, const COpBox* box) {
    m_broken += (box == nullptr ? "" : box->BoxTitleWid() + ": ") + what + "\n";
}

std::string DeskInvariants::Look(const Buttons& selected) {
    m_broken.clear();
    m_wiredBefore = std::exchange(m_wired, {});
    m_oneSidedBefore = std::exchange(m_oneSided, {});
    CheckPlaces();
    CheckNumbers();
    for (const Boxes* place : {&m_network, &m_pending, &m_clipboard}) {
        for (const COpBox* box : *place) CheckButtons(*box, *place);
    }
    if (!std::exchange(m_isTaken, false)) CheckNewPairs(selected);
    CheckInstances();
    CheckReferences();
    if (const COpBox* box = BoxOfACycle(m_wired)) Fail("a cycle", box);
    return m_broken;
}

void DeskInvariants::TakeAsItIs() {
    m_known.clear();
    for (const auto& box : m_document.m_boxes) m_known.insert(box->Serial());
    m_isTaken = true;
}

template <typename List>
void DeskInvariants::Collect(const List& list, Boxes& place) {
    place.clear();
    for (const auto& box : list) {
        if (!COpBox::IsLive(box.get())) Fail("a box that is gone is held");
        if (!place.insert(box.get()).second) Fail("held twice", box.get());
    }
}

void DeskInvariants::CheckPlaces() {
    Collect(m_document.m_boxes, m_network);
    Collect(m_desk.m_pendingBoxes, m_pending);
    Collect(m_desk.m_clipboardBoxes, m_clipboard);
    Boxes all = m_network;
    all.insert(m_pending.begin(), m_pending.end());
    all.insert(m_clipboard.begin(), m_clipboard.end());
    if (all.size() != m_network.size() + m_pending.size() + m_clipboard.size()) Fail("a box in two places");
    if (COpBox::LiveCount() != all.size()) Fail("boxes live that are nowhere");
    for (const COpBox* box : m_clipboard) {
        if (box->wid != 0) Fail("a numbered clone", box);
    }
}

// New boxes have taken the smallest numbers that the others left free.
void DeskInvariants::CheckNumbers() {
    std::set<int> used;
    std::set<int> fresh;
    std::set<uint64_t> known;
    size_t count = 0;
    for (const Boxes* place : {&m_network, &m_pending}) {
        for (const COpBox* box : *place) {
            if (box->wid < 1) Fail("its number is not positive", box);
            (m_known.contains(box->Serial()) ? used : fresh).insert(box->wid);
            known.insert(box->Serial());
            ++count;
        }
    }
    if (used.size() + fresh.size() != count) Fail("two boxes of one number");
    int expected = 0;
    for (const int wid : fresh) {
        do ++expected;
        while (used.contains(expected));
        if (wid != expected) {
            Fail("number " + std::to_string(wid) + " was taken, " + std::to_string(expected) + " is free");
            break;
        }
    }
    m_known = std::move(known);
}

void DeskInvariants::CheckButtons(const COpBox& box, const Boxes& place) {
    const COpButton* last = nullptr;
    for (const auto& input : box.inputs) {
        const int expected = last != nullptr && last->name == input->name ? last->instance + 1 : 1;
        if (input->instance != expected) Fail("instances are not numbered in a row", &box);
        if (input->IsOutput()) Fail("an output among the inputs", &box);
        if (input->connections.Size() > 1) Fail(input->DisplayName() + " has two sources", &box);
        last = input.get();
        CheckConnections(*input, place);
    }
    for (const auto& output : box.outputs) {
        if (!output->IsOutput()) Fail("an input among the outputs", &box);
        CheckConnections(*output, place);
    }
}

void DeskInvariants::CheckConnections(const COpButton& button, const Boxes& place) {
    const COpBox& box = *button.owner;
    for (const COpButton* peer : button.connections) {
        if (!COpButton::IsLive(peer)) return Fail(button.DisplayName() + " is wired to nothing", &box);
        if (!place.contains(peer->owner)) Fail(button.DisplayName() + " is wired out of its place", &box);
        if (peer->IsOutput() == button.IsOutput()) Fail(button.DisplayName() + " is wired to its kind", &box);
        if (button.disableconnectflag != 0) Fail(button.DisplayName() + " may not be wired", &box);
        if (peer->connections.Contains(button)) {
            if (!button.IsOutput()) m_wired.emplace(peer, &button);
        } else if (button.IsOutput()) {
            Fail(button.DisplayName() + " feeds an input that does not know of it", &box);
        } else {
            m_oneSided.emplace(peer, &button);
        }
    }
}

void DeskInvariants::CheckNewPairs(const Buttons& selected) {
    for (const auto& pair : m_oneSided) {
        if (m_oneSidedBefore.contains(pair) || m_clipboard.contains(pair.first->owner)) continue;
        const bool wasWhole = m_wiredBefore.contains(pair);
        if (!wasWhole || !selected.contains(pair.first)) Fail("a wire lost its output", pair.second->owner);
    }
}

void DeskInvariants::CheckInstances() {
    std::map<std::string, int> counts;
    for (const Boxes* place : {&m_network, &m_pending}) {
        for (const COpBox* box : *place) {
            if (++counts[box->filename] > box->maxinstances && box->maxinstances != 0)
                Fail("more than may be", box);
        }
    }
}

void DeskInvariants::CheckReferences() {
    const auto isInNetwork = [this](const COpButton* button) {
        return COpButton::IsLive(button) && m_network.contains(button->owner);
    };
    if (m_desk.m_selectedButton != nullptr && !isInNetwork(m_desk.m_selectedButton))
        Fail("the selected button is stale");
    if (m_desk.m_pulledInput != nullptr &&
        (!isInNetwork(m_desk.m_pulledInput) || m_desk.m_selectedButton == nullptr))
        Fail("the wire in hand is stale");
    if (m_desk.m_mouseButton != nullptr && !isInNetwork(m_desk.m_mouseButton))
        Fail("the button under the mouse is stale");
    if (m_desk.m_mouseBox != nullptr && !m_network.contains(m_desk.m_mouseBox))
        Fail("the box under the mouse is stale");
    std::set<const COpButton*> lines;
    for (const COpButton* input : m_desk.m_selectedConnects) {
        if (!isInNetwork(input) || input->IsOutput()) Fail("a selected line is stale");
        if (!lines.insert(input).second) Fail("a line is selected twice");
    }
}

const COpBox* DeskInvariants::BoxOfACycle(const Pairs& wires) {
    std::unordered_map<const COpBox*, size_t> feeders;
    std::unordered_multimap<const COpBox*, const COpBox*> fed;
    for (const auto& [output, input] : wires) {
        ++feeders[input->owner];
        fed.emplace(output->owner, input->owner);
    }
    std::vector<const COpBox*> ready;
    for (const auto& [output, input] : wires) {
        if (!feeders.contains(output->owner)) ready.push_back(output->owner);
    }
    std::set<const COpBox*> done;
    while (!ready.empty()) {
        const COpBox* box = ready.back();
        ready.pop_back();
        if (!done.insert(box).second) continue;
        const auto [begin, end] = fed.equal_range(box);
        for (auto next = begin; next != end; ++next) {
            if (--feeders[next->second] == 0) ready.push_back(next->second);
        }
    }
    for (const auto& [box, left] : feeders) {
        if (left != 0) return box;
    }
    return nullptr;
}

bool DeskInvariants::HidesACycle() const {
    Pairs all = m_wired;
    all.insert(m_oneSided.begin(), m_oneSided.end());
    return BoxOfACycle(all) != nullptr;
}

}  // namespace tavrin::test
