// SPDX-License-Identifier: Apache-2.0
#include "InfoLog.h"

#include <algorithm>
#include <cctype>
#include <string_view>

namespace tavrin::mray {

namespace {

// Takes digits off the front.
std::string_view takeNumber(std::string_view& text) {
    std::size_t n = 0;
    while (n < text.size() && std::isdigit(static_cast<unsigned char>(text[n])) != 0) {
        ++n;
    }
    const std::string_view digits = text.substr(0, n);
    text.remove_prefix(n);
    return digits;
}

bool take(std::string_view& text, std::string_view prefix) {
    if (!text.starts_with(prefix)) {
        return false;
    }
    text.remove_prefix(prefix.size());
    return true;
}

void skipSpace(std::string_view& text) {
    text.remove_prefix(std::min(text.find_first_not_of(" \t\r"), text.size()));
}

// Known forms: "0:12(7): error: text", "0(12) : error C1: text",
// "ERROR: 0:12: text".  An empty result means that no line is named.
std::string_view takeLineNumber(std::string_view& text) {
    std::string_view rest = text;
    take(rest, "ERROR: ") || take(rest, "WARNING: ");
    if (takeNumber(rest).empty() || !(take(rest, ":") || take(rest, "("))) {
        return {};
    }
    const std::string_view line = takeNumber(rest);
    if (line.empty()) {
        return {};
    }
    if (take(rest, "(")) {
        takeNumber(rest);
    }
    take(rest, ")");
    skipSpace(rest);
    take(rest, ":");
    skipSpace(rest);
    text = rest;
    return line;
}

}  // namespace

std::string readableLog(const std::string& log, const std::string& file) {
    std::string result;
    std::string_view rest = log.c_str();  // up to a zero, if the driver counts it
    while (!rest.empty()) {
        const std::size_t end = std::min(rest.find('\n'), rest.size());
        std::string_view text = rest.substr(0, end);
        rest.remove_prefix(std::min(end + 1, rest.size()));
        skipSpace(text);
        if (text.empty()) {
            continue;
        }
        const std::string line(takeLineNumber(text));
        result += file + ":" + (line.empty() ? "" : line + ":") + " " + std::string(text) + "\n";
    }
    return result;
}

}  // namespace tavrin::mray
