// SPDX-License-Identifier: Apache-2.0
#include "base/Environment.h"

#include <unistd.h>

#include <string_view>

namespace tavrin {

Environment Environment::FromProcess() {
    Environment result;
    for (char** entry = ::environ; entry != nullptr && *entry != nullptr; ++entry) {
        const std::string_view text(*entry);
        const auto equals = text.find('=');
        if (equals == std::string_view::npos) continue;
        result.Set(std::string(text.substr(0, equals)), std::string(text.substr(equals + 1)));
    }
    return result;
}

std::optional<std::string> Environment::Get(const std::string& name) const {
    const auto found = m_values.find(name);
    if (found == m_values.end()) return std::nullopt;
    return found->second;
}

std::vector<std::string> Environment::ToList() const {
    std::vector<std::string> list;
    list.reserve(m_values.size());
    for (const auto& [name, value] : m_values) list.push_back(name + "=" + value);
    return list;
}

}  // namespace tavrin
