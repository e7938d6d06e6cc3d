// SPDX-License-Identifier: Apache-2.0
// How wires go on where a box comes between their ends, or goes from there. Nothing here changes anything: it
// tells what an edit would wire.
#pragma once

#include <optional>
#include <vector>

#include "desk/DeskGeometry.h"

namespace tavrin {

// The buttons by which a box goes between the ends of a wire: from the source to the input, from the output
// to the target. All stand in the network.
struct Insertion {
    COpButton* source = nullptr;
    COpButton* target = nullptr;  // the input that stands for the wire
    COpButton* input = nullptr;
    COpButton* output = nullptr;
};

// The button of the box that a wire from the picked button would enter: one that nothing is wired to, of its
// type, else with a cast for it; the first of them. Null if there is none, or if the wire would close a
// circle.
COpButton* FitFor(const COpButton& picked, const COpBox& box);

// An input and an output of the box that nothing is wired to, of the types that the wire has, else with casts
// for them, as a wire drawn by hand would be legal and would close no circle; the casts stay as they are.
// Nothing if there are none.
std::optional<Insertion> FitBetween(COpButton& source, COpButton& target, const COpBox& box);

// Of the wires that run under the box, the one nearest to its middle that it fits into.
std::optional<Insertion> FindInsertion(const CTvDoc& document, const COpBox& box);

struct FlowWire {
    COpButton* source = nullptr;
    COpButton* target = nullptr;
};

// The wires that join what feeds the boxes to what they feed, once they are gone: each output hands on what
// its counterpart among the inputs of its box is fed, the first of its type for the first, the second for the
// second, else the first that is wired. What leads through several of the boxes is followed through all of
// them. Inputs that nothing is left for are not named.
std::vector<FlowWire> WiresPast(const std::vector<COpBox*>& boxes);

}  // namespace tavrin
