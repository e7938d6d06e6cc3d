// SPDX-License-Identifier: Apache-2.0
// The commands of the system that a form's widgets run.
#pragma once

#include <string>
#include <vector>

namespace tavrin {

class CFormFrame;

// Holds back the actions that run a command in the children of `form` from `first` on. A line for each that
// says which: "button Publish: publish.sh --all".
std::vector<std::string> HoldFormCommands(CFormFrame& form, size_t first);

// No action of the form is held back any more.
void ReleaseFormCommands(CFormFrame& form);

}  // namespace tavrin
