// SPDX-License-Identifier: Apache-2.0
// Which buttons may be wired together, and how a wire is made and unmade.
#include <algorithm>
#include <vector>

#include "library/OpBox.h"
#include "library/OpButton.h"

namespace tavrin {

namespace {

// Boxes by their serial numbers: a walk over a large network asks it at every wire.
class BoxSet {
  public:
    // False if the box is in it already.
    bool Insert(const COpBox& box) {
        const auto place = static_cast<size_t>(box.Serial());
        if (place >= m_has.size()) m_has.resize(2 * place + 1);
        if (m_has[place]) return false;
        m_has[place] = true;
        return true;
    }

  private:
    std::vector<bool> m_has;
};

bool MadeBefore(const COpButton* left, const COpButton* right) { return left->Serial() < right->Serial(); }

}  // namespace

void ConnectionSet::Insert(COpButton& button) {
    if (Empty()) {
        m_only = &button;
        return;
    }
    if (m_many.empty()) {
        if (m_only == &button) return;
        m_many.push_back(m_only);
        m_only = nullptr;
    }
    const auto place = std::lower_bound(m_many.begin(), m_many.end(), &button, MadeBefore);
    if (place == m_many.end() || *place != &button) m_many.insert(place, &button);
}

void ConnectionSet::Erase(const COpButton& button) {
    if (m_only == &button) m_only = nullptr;
    const auto place = std::lower_bound(m_many.begin(), m_many.end(), &button, MadeBefore);
    if (place != m_many.end() && *place == &button) m_many.erase(place);
}

bool ConnectionSet::Contains(const COpButton& button) const {
    return std::binary_search(begin(), end(), &button, MadeBefore);
}

COpButton::~COpButton() { Isolate(); }

void COpButton::Isolate() {
    Disconnect();
    while (!m_namedBy.Empty()) m_namedBy.Last()->DropPeer(*this);
}

void COpButton::Park() {
    Isolate();
    Retire();
}

void COpButton::SetWires(const ButtonWires& wires) {
    connections = wires.connections;
    m_namedBy = wires.namedBy;
}

void COpButton::AddPeer(COpButton& peer) {
    connections.Insert(peer);
    peer.m_namedBy.Insert(*this);
}

void COpButton::DropPeer(COpButton& peer) {
    connections.Erase(peer);
    peer.m_namedBy.Erase(*this);
}

const COpButton* COpButton::Feeder() const {
    if (connections.Empty() || IsUnknown()) return nullptr;
    const COpButton* source = connections.First();
    if (source->IsUnknown()) return nullptr;
    return source->IsOfMutedBox() && !source->PassesThrough() ? nullptr : source;
}

bool COpButton::CanConnect(const COpButton& other) const {
    if (disableconnectflag != 0 || other.disableconnectflag != 0) return false;
    return IsOutput() != other.IsOutput();
}

bool COpButton::WouldLoop(const COpButton& other) const {
    const COpBox& source = IsOutput() ? *owner : *other.owner;
    const COpBox& target = IsOutput() ? *other.owner : *owner;
    return ReachesForward(source, target);
}

bool COpButton::ReachesForward(const COpBox& source, const COpBox& start) {
    BoxSet visited;
    visited.Insert(start);
    std::vector<const COpBox*> waiting{&start};
    while (!waiting.empty()) {
        const COpBox& box = *waiting.back();
        waiting.pop_back();
        if (&box == &source) return true;
        for (const auto& output : box.outputs) {
            for (const COpButton* input : output->connections) {
                if (visited.Insert(*input->owner)) waiting.push_back(input->owner);
            }
        }
    }
    return false;
}

void COpButton::Connect(COpButton& other) {
    if (IsOutput()) {
        // In this order: a pair that is wired already loses the output's side here, which the last step
        // does not restore.
        AddPeer(other);
        other.Disconnect();
    } else {
        Disconnect();
        AddPeer(other);
    }
    other.AddPeer(*this);
}

void COpButton::Disconnect() {
    while (!connections.Empty()) {
        COpButton& peer = *connections.Last();
        peer.DropPeer(*this);
        DropPeer(peer);
    }
}

}  // namespace tavrin
