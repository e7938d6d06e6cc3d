// SPDX-License-Identifier: Apache-2.0
// The floor of macro expansion: a word scan with a hash look-up and nothing else.
#pragma once

#include <cctype>
#include <string>
#include <string_view>
#include <unordered_map>

namespace tavrin::bench {

class BareExpander {
  public:
    // Knows `count` names, name0 to nameN.
    explicit BareExpander(int count) {
        for (int i = 0; i < count; ++i)
            m_values["name" + std::to_string(i)] = "Box_" + std::to_string(i) + "_out";
    }

    void Expand(std::string_view text, std::string& result) const {
        size_t i = 0;
        while (i < text.size()) {
            const size_t begin = i;
            while (i < text.size() && !IsWord(text[i])) ++i;
            result += text.substr(begin, i - begin);
            const size_t word = i;
            while (i < text.size() && IsWord(text[i])) ++i;
            if (word == i) continue;
            const std::string_view name = text.substr(word, i - word);
            const auto found = m_values.find(name);
            result += found == m_values.end() ? name : std::string_view(found->second);
        }
    }

    const auto& Values() const { return m_values; }

  private:
    static bool IsWord(char c) { return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_'; }

    struct Hash {
        using is_transparent = void;
        size_t operator()(std::string_view text) const { return std::hash<std::string_view>()(text); }
    };
    std::unordered_map<std::string, std::string, Hash, std::equal_to<>> m_values;
};

}  // namespace tavrin::bench
