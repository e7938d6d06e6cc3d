// SPDX-License-Identifier: Apache-2.0
// The lines of a shader's help text.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tavrin {

// Split at line feeds, carriage returns dropped. An empty text has no lines.
inline std::vector<std::string> HelpLines(std::string_view help) {
    std::vector<std::string> lines;
    if (help.empty()) return lines;
    lines.emplace_back();
    for (const char c : help) {
        if (c == '\n') {
            lines.emplace_back();
        } else if (c != '\r') {
            lines.back() += c;
        }
    }
    return lines;
}

}  // namespace tavrin
