// What tavrin-batch prints of operators.
#pragma once

#include <string>

namespace tavrin {

class COpBox;
class COpRegistry;

// A line for each operator: name, menu path, file, with a tab between.
std::string OperatorList(const COpRegistry& registry);

// The help of a defined box and of each of its buttons, with types, defaults and ranges.
std::string OperatorDescription(const COpBox& box);

}  // namespace tavrin
