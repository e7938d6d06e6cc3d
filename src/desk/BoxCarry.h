// SPDX-License-Identifier: Apache-2.0
// What a box hands on to a fresh one of its operator that is to take its place.
#pragma once

#include <string>
#include <unordered_map>
#include <vector>

namespace tavrin {

class COpBox;
class COpButton;

// The button of the fresh box for each of the old one, where there is one.
using ButtonSuccessors = std::unordered_map<const COpButton*, COpButton*>;

// Gives a box that is as its definition has made it what its user has made of the old one: number, place and
// selection, whether it is muted, how many instances vinputs have, arguments, values and casts. Buttons are
// the same by their names, or by what the new definition says that they were called; those of one name by
// their order; values by their types. All is carried that the definition has room for, changed by the user or
// not; what it has none for is told in `losses`, a line each. Wires are left as they are.
void CarryOver(const COpBox& old, COpBox& fresh, ButtonSuccessors& successors,
               std::vector<std::string>& losses);

}  // namespace tavrin
