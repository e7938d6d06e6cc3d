// SPDX-License-Identifier: Apache-2.0
// What operators and buttons were called before, as their definitions say.
#pragma once

#include <string>
#include <string_view>

namespace tavrin {

class COpBox;
class COpButton;
class COpRegistry;
struct COpEntry;

// Takes away what cannot be heeded of the former names in a definition that was read from the operator's
// file: what is there wins over what was, and of two the first. The log tells each once.
void SettleAliases(COpBox& box, const COpEntry& entry, const COpRegistry& registry);

// Names of operators are compared without regard to case.
bool WasCalled(const COpBox& box, const std::string& name);
bool WasCalled(const COpButton& button, std::string_view name);

}  // namespace tavrin
