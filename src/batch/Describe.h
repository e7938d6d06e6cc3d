// SPDX-License-Identifier: Apache-2.0
// What tavrin-batch prints of operators.
#pragma once

#include <string>

namespace tavrin {

class COpBox;
class COpRegistry;
class CTvDoc;

// A line for each operator: name, menu path, file, with a tab between.
std::string OperatorList(const COpRegistry& registry);

// The help of a defined box and of each of its buttons, with types, defaults and ranges.
std::string OperatorDescription(const COpBox& box);

// The help of an operator that is a saved network, and its boxes.
std::string NetworkDescription(const std::string& name, const CTvDoc& network);

}  // namespace tavrin
