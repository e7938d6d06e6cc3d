// SPDX-License-Identifier: Apache-2.0
#include "text/NearestNames.h"

#include <algorithm>
#include <utility>

namespace tavrin {

namespace {

constexpr size_t kMostNames = 3;
constexpr size_t kLongestName = 256;  // beyond it a name is no slip of the hand, and comparing takes long

char Lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

// The number of single letters that are to be changed, left out, put in or exchanged with their neighbour.
size_t Distance(std::string_view one, std::string_view other) {
    std::vector<size_t> beforeLast(other.size() + 1);
    std::vector<size_t> last(other.size() + 1);
    std::vector<size_t> row(other.size() + 1);
    for (size_t j = 0; j <= other.size(); ++j) row[j] = j;
    for (size_t i = 1; i <= one.size(); ++i) {
        std::swap(beforeLast, last);
        std::swap(last, row);
        row[0] = i;
        for (size_t j = 1; j <= other.size(); ++j) {
            const bool same = Lower(one[i - 1]) == Lower(other[j - 1]);
            row[j] = std::min({last[j] + 1, row[j - 1] + 1, last[j - 1] + (same ? 0 : 1)});
            if (i > 1 && j > 1 && Lower(one[i - 1]) == Lower(other[j - 2]) &&
                Lower(one[i - 2]) == Lower(other[j - 1]))
                row[j] = std::min(row[j], beforeLast[j - 2] + 1);
        }
    }
    return row[other.size()];
}

}  // namespace

std::vector<std::string> NearestNames(std::string_view name, const std::vector<std::string>& known) {
    if (name.size() > kLongestName) return {};
    const size_t farthest = std::max<size_t>(2, name.size() / 3);
    std::vector<std::pair<size_t, std::string>> found;
    for (const std::string& candidate : known) {
        if (candidate.size() > name.size() + farthest || name.size() > candidate.size() + farthest) continue;
        const size_t distance = Distance(name, candidate);
        // A name of which no letter is left is no neighbour, however short it is.
        if (distance <= farthest && distance < std::max(name.size(), candidate.size()))
            found.emplace_back(distance, candidate);
    }
    std::sort(found.begin(), found.end());
    if (found.size() > kMostNames) found.resize(kMostNames);
    std::vector<std::string> names;
    for (auto& [distance, candidate] : found) names.push_back(std::move(candidate));
    return names;
}

std::string JoinNames(const std::vector<std::string>& names) {
    std::string text;
    for (size_t i = 0; i < names.size(); ++i) {
        if (i > 0) text += i + 1 == names.size() ? " or " : ", ";
        text += names[i];
    }
    return text;
}

}  // namespace tavrin
