// SPDX-License-Identifier: Apache-2.0
// The orders in which a document's boxes are walked.
#include "document/BoxOrder.h"

#include <algorithm>
#include <unordered_set>

#include "document/TvDoc.h"
#include "text/Tokens.h"

namespace tavrin {

namespace {

// Depth-first post-order from the sinks, without recursion: a chain may be of any length.
class BoxWalk {
  public:
    explicit BoxWalk(std::vector<COpBox*>& list) : m_list(list) {}

    void Visit(COpBox& root) {
        Enter(root);
        while (!m_way.empty()) {
            if (COpBox* next = NextFeeder(m_way.back())) {
                Enter(*next);
            } else {
                m_list.push_back(m_way.back().box);
                m_way.pop_back();
            }
        }
    }

  private:
    struct Step {
        COpBox* box;
        size_t input = 0;  // the next to look at
        size_t peer = 0;
    };

    // A box is entered once. One met again while its own feeders are still being visited is part of a
    // cycle, which ends there.
    void Enter(COpBox& box) {
        if (m_entered.insert(&box).second) m_way.push_back({&box});
    }

    // The box behind the next connection that leads to one not entered yet; nothing at the end.
    COpBox* NextFeeder(Step& step) const {
        for (; step.input < step.box->inputs.size(); ++step.input, step.peer = 0) {
            const ConnectionSet& peers = step.box->inputs[step.input]->connections;
            while (step.peer < peers.Size()) {
                COpBox* feeder = peers.begin()[step.peer++]->owner;
                if (!m_entered.contains(feeder)) return feeder;
            }
        }
        return nullptr;
    }

    std::vector<COpBox*>& m_list;
    std::vector<Step> m_way;
    std::unordered_set<const COpBox*> m_entered;
};

bool FeedsNothing(const COpBox& box) {
    return std::all_of(box.outputs.begin(), box.outputs.end(),
                       [](const auto& output) { return output->connections.Empty(); });
}

}  // namespace

std::vector<COpBox*> InOrderOfTitles(const std::vector<COpBox*>& boxes) {
    std::vector<std::pair<std::string, COpBox*>> keyed;
    keyed.reserve(boxes.size());
    for (COpBox* box : boxes) keyed.emplace_back(ToLower(box->BoxTitleWid()), box);
    std::stable_sort(keyed.begin(), keyed.end(),
                     [](const auto& left, const auto& right) { return left.first < right.first; });
    std::vector<COpBox*> ordered;
    ordered.reserve(keyed.size());
    for (const auto& [key, box] : keyed) ordered.push_back(box);
    return ordered;
}

std::vector<COpButton*> UnconnectedInputs(const std::vector<COpBox*>& boxes) {
    std::vector<COpButton*> buttons;
    for (const COpBox* box : boxes) {
        for (const auto& input : box->inputs) {
            if (input->IsUnknown()) continue;
            if (input->Feeder() == nullptr) buttons.push_back(input.get());
        }
    }
    return buttons;
}

std::vector<COpBox*> CTvDoc::BoxesByTitle() const {
    std::vector<COpBox*> boxes;
    boxes.reserve(m_boxes.size());
    for (const auto& box : m_boxes) boxes.push_back(box.get());
    return InOrderOfTitles(boxes);
}

std::vector<COpBox*> CTvDoc::OrderBoxes() const {
    std::vector<COpBox*> list;
    list.reserve(m_boxes.size());
    BoxWalk walk(list);
    for (COpBox* box : BoxesByTitle()) {
        if (FeedsNothing(*box)) walk.Visit(*box);
    }
    return list;
}

std::vector<COpButton*> CTvDoc::CollectUnconnectedInputs() const { return UnconnectedInputs(BoxesByTitle()); }

bool CTvDoc::BringIntoOrder() {
    const auto isBefore = [](const auto& left, const auto& right) { return left->wid < right->wid; };
    if (std::is_sorted(m_boxes.begin(), m_boxes.end(), isBefore)) return false;
    m_boxes.sort(isBefore);
    return true;
}

void CTvDoc::SortBoxesByWid() {
    if (BringIntoOrder()) afterReorder.Tell();
}

}  // namespace tavrin
