// SPDX-License-Identifier: Apache-2.0
#include "app/RecentFiles.h"

#include <algorithm>
#include <string_view>

#include "base/Paths.h"
#include "base/Profile.h"

namespace tavrin {

namespace {

constexpr std::string_view kHexDigits = "0123456789ABCDEF";

std::string KeyOf(size_t place) { return "Recent File List/File" + std::to_string(place + 1); }

std::string Encoded(const std::string& path) {
    std::string text;
    for (const char c : path) {
        if (c >= ' ' && c <= '~' && c != '%') {
            text += c;
            continue;
        }
        const auto byte = static_cast<unsigned char>(c);
        text.append({'%', kHexDigits[byte >> 4], kHexDigits[byte & 15]});
    }
    return text;
}

// A '%' that no two digits follow stands for itself.
std::string Decoded(const std::string& text) {
    std::string path;
    for (size_t i = 0; i < text.size(); ++i) {
        const bool hasDigits = text[i] == '%' && i + 2 < text.size();
        const size_t high = hasDigits ? kHexDigits.find(text[i + 1]) : std::string_view::npos;
        const size_t low = hasDigits ? kHexDigits.find(text[i + 2]) : std::string_view::npos;
        if (high == std::string_view::npos || low == std::string_view::npos) {
            path += text[i];
            continue;
        }
        path += static_cast<char>(high * kHexDigits.size() + low);
        i += 2;
    }
    return path;
}

}  // namespace

std::vector<std::string> RecentFiles::List() const {
    std::vector<std::string> paths;
    for (size_t place = 0; place < kRecentFiles; ++place) {
        const std::string path = Decoded(m_profile.GetText(KeyOf(place)));
        if (path.empty() || std::find(paths.begin(), paths.end(), path) != paths.end()) continue;
        paths.push_back(path);
    }
    return paths;
}

void RecentFiles::Store(const std::vector<std::string>& paths) {
    for (size_t place = 0; place < kRecentFiles; ++place) {
        const std::string text = place < paths.size() ? Encoded(paths[place]) : std::string();
        if (m_profile.GetText(KeyOf(place)) != text) m_profile.SetText(KeyOf(place), text);
    }
}

void RecentFiles::Add(const std::string& path) {
    if (path.empty()) return;
    std::vector<std::string> paths = List();
    std::erase(paths, FullPath(path));
    paths.insert(paths.begin(), FullPath(path));
    Store(paths);
}

void RecentFiles::Remove(const std::string& path) {
    std::vector<std::string> paths = List();
    std::erase(paths, FullPath(path));
    Store(paths);
}

}  // namespace tavrin
