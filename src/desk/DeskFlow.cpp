// SPDX-License-Identifier: Apache-2.0
#include "desk/DeskFlow.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <unordered_map>
#include <unordered_set>

#include "document/TvDoc.h"

namespace tavrin {

namespace {

bool IsFree(const COpButton& button) {
    return button.connections.Empty() && button.NamedBy().Empty() && !button.IsUnknown();
}

// The first of the best ones, by a rank that is none at 0; null without any.
template <typename Rank>
COpButton* Best(const std::vector<std::unique_ptr<COpButton>>& buttons, Rank rank) {
    COpButton* best = nullptr;
    int highest = 0;
    for (const auto& button : buttons) {
        const int own = rank(*button);
        if (own <= highest) continue;
        highest = own;
        best = button.get();
    }
    return best;
}

bool HasCast(const COpButton& button, const std::string& type) {
    return button.values.empty() || type.empty() || button.FindCast(type) >= 0;
}

// Where the line through two points is within the rectangle, as parts of the way; false where it is not.
bool Clip(const DeskRect& rect, DeskPoint start, DeskPoint end) {
    float enters = 0;
    float leaves = 1;
    const auto cut = [&](float from, float to, float low, float high) {
        if (from == to) return from >= low && from < high;
        const float one = (low - from) / (to - from);
        const float other = (high - from) / (to - from);
        enters = std::max(enters, std::min(one, other));
        leaves = std::min(leaves, std::max(one, other));
        return enters < leaves;
    };
    return cut(start.x, end.x, rect.left, rect.Right()) && cut(start.y, end.y, rect.bottom, rect.Top());
}

float Distance(DeskPoint point, DeskPoint start, DeskPoint end) {
    const float across = end.x - start.x;
    const float up = end.y - start.y;
    const float length = across * across + up * up;
    const float part = length > 0 ? ((point.x - start.x) * across + (point.y - start.y) * up) / length : 0;
    const float along = std::clamp(part, 0.0F, 1.0F);
    return std::hypot(point.x - start.x - along * across, point.y - start.y - along * up);
}

// How near the line comes to the rectangle's middle; infinite if it passes by.
float DistanceUnder(const DeskRect& rect, const Polyline& line) {
    float nearest = std::numeric_limits<float>::infinity();
    for (size_t i = 1; i < line.count; ++i) {
        if (!Clip(rect, line.points[i - 1], line.points[i])) continue;
        nearest = std::min(nearest, Distance(rect.Middle(), line.points[i - 1], line.points[i]));
    }
    return nearest;
}

// Follows wires against their direction through boxes that go.
class FlowWalk {
  public:
    explicit FlowWalk(const std::vector<COpBox*>& boxes) : m_going(boxes.begin(), boxes.end()) {}

    bool IsGoing(const COpBox& box) const { return m_going.contains(&box); }

    // What the output hands on, from beyond the boxes; null if nothing. Each stretch is walked once; a way
    // that leads back to itself hands on nothing.
    COpButton* SourceOf(COpButton& output) {
        std::vector<const COpButton*> way;
        COpButton* source = &output;
        while (source != nullptr && IsGoing(*source->owner)) {
            const auto [known, isNew] = m_sources.try_emplace(source);
            if (!isNew) {
                source = known->second;
                break;
            }
            way.push_back(source);
            const COpButton* input = CounterpartOf(*source);
            source = input == nullptr ? nullptr : input->connections.First();
        }
        for (const COpButton* passed : way) m_sources[passed] = source;
        return source;
    }

  private:
    static const COpButton* CounterpartOf(const COpButton& output) {
        const std::string& type = output.CurrentType();
        size_t before = 0;  // outputs of the type
        for (const auto& other : output.owner->outputs) {
            if (other.get() == &output) break;
            before += other->CurrentType() == type ? 1 : 0;
        }
        const COpButton* first = nullptr;
        size_t count = 0;
        for (const auto& input : output.owner->inputs) {
            if (!type.empty() && input->CurrentType() != type) continue;
            const bool isWired = !input->connections.Empty();
            if (isWired && count == before) return input.get();
            if (isWired && first == nullptr) first = input.get();
            ++count;
        }
        return first;
    }

    std::unordered_set<const COpBox*> m_going;
    std::unordered_map<const COpButton*, COpButton*> m_sources;
};

}  // namespace

COpButton* FitFor(const COpButton& picked, const COpBox& box) {
    const std::string& type = picked.CurrentType();
    COpButton* fit = Best(picked.IsOutput() ? box.inputs : box.outputs, [&](const COpButton& own) {
        if (!IsFree(own) || !own.CanConnect(picked)) return 0;
        return own.CurrentType() == type ? 2 : HasCast(own, type) ? 1 : 0;
    });
    return fit == nullptr || picked.WouldLoop(*fit) ? nullptr : fit;
}

std::optional<Insertion> FitBetween(COpButton& source, COpButton& target, const COpBox& box) {
    const std::string& sent = source.CurrentType();
    const std::string& taken = target.CurrentType();
    COpButton* input = FitFor(source, box);
    COpButton* output = Best(box.outputs, [&](const COpButton& own) {
        if (!IsFree(own) || !own.CanConnect(target)) return 0;
        if (own.CurrentType() == taken) return 3;
        return own.CurrentType() == sent ? 2 : HasCast(own, taken) ? 1 : 0;
    });
    if (input == nullptr || output == nullptr) return std::nullopt;
    if (output->WouldLoop(target)) return std::nullopt;
    return Insertion{&source, &target, input, output};
}

std::optional<Insertion> FindInsertion(const CTvDoc& document, const COpBox& box) {
    struct Candidate {
        float distance;
        COpButton* target;
    };
    std::vector<Candidate> candidates;
    const DeskRect rect = BoxRect(box);
    for (const auto& fed : document.m_boxes) {
        if (fed.get() == &box) continue;
        ForEachConnectionWithin(
            rect, *fed, [&](const ButtonPlace& from, const ButtonPlace& to, COpButton& input) {
                if (from.box == &box) return true;
                const float distance =
                    DistanceUnder(rect, ConnectionPolyline(from, to, document.linetype == 1));
                if (std::isfinite(distance)) candidates.push_back({distance, &input});
                return true;
            });
    }
    std::stable_sort(candidates.begin(), candidates.end(), [](const Candidate& one, const Candidate& other) {
        return one.distance < other.distance;
    });
    for (const Candidate& candidate : candidates) {
        COpButton& source = *candidate.target->connections.First();
        if (const auto fit = FitBetween(source, *candidate.target, box)) return fit;
    }
    return std::nullopt;
}

std::vector<FlowWire> WiresPast(const std::vector<COpBox*>& boxes) {
    FlowWalk walk(boxes);
    std::vector<FlowWire> wires;
    for (const COpBox* box : boxes) {
        for (const auto& output : box->outputs) {
            for (COpButton* target : output->NamedBy()) {
                if (walk.IsGoing(*target->owner)) continue;
                COpButton* source = walk.SourceOf(*output);
                if (source != nullptr && target->CanConnect(*source)) wires.push_back({source, target});
            }
        }
    }
    return wires;
}

}  // namespace tavrin
