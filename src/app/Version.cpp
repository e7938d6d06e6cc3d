// SPDX-License-Identifier: Apache-2.0
#include "app/Version.h"

namespace tavrin {

std::string VersionText(std::string_view resource) {
    std::string text;
    for (const char c : resource) {
        if (c != ' ') text += c == ',' ? '.' : c;
    }
    return text;
}

std::string ShortVersion(const std::string& version) {
    size_t dot = std::string::npos;
    for (int component = 0; component < 3; ++component) {
        dot = version.find('.', dot == std::string::npos ? 0 : dot + 1);
        if (dot == std::string::npos) return version;
    }
    return version.substr(0, dot);
}

}  // namespace tavrin
