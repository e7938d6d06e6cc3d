// SPDX-License-Identifier: Apache-2.0
// The public face of a generated shader: the section by which the library's scripts learn of its help and
// its arguments.
#pragma once

#include <string>
#include <vector>

namespace tavrin {

class COpButton;
class CTvDoc;
class PreparedVariables;
class Report;
struct ArgumentLines;

// The section, from "Help" to "EndArginfo", lines ended by LF. An argument is an unconnected input whose
// argument flag is set. `places`, if there is one, is told where each argument stands.
std::string WriteArgInfo(const CTvDoc& document, Report& report,
                         std::vector<ArgumentLines>* places = nullptr);

// The same with these unconnected inputs, in this order, and that help text.
std::string WriteArgInfo(const std::string& help, const std::vector<COpButton*>& unconnected,
                         const PreparedVariables& variables, Report& report,
                         std::vector<ArgumentLines>* places = nullptr);

}  // namespace tavrin
