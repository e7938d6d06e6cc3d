// SPDX-License-Identifier: Apache-2.0
// Compiler messages of the different graphics drivers, brought to one form.
#pragma once

#include <string>

namespace tavrin::mray {

// Turns every line of a compiler's log that names a source line into
// "FILE:LINE: message"; other lines become "FILE: message".
std::string readableLog(const std::string& log, const std::string& file);

}  // namespace tavrin::mray
