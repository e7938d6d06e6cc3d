// SPDX-License-Identifier: Apache-2.0
#include "site/Settings.h"

#include "text/Numbers.h"
#include "text/Tokens.h"

namespace tavrin {

const std::string* Settings::Find(const std::string& key) const {
    const auto found = m_settings.find(key);
    return found == m_settings.end() ? nullptr : &found->second;
}

bool Settings::GetSettingRaw(const std::string& key, std::string& text) const {
    const std::string* value = Find(key);
    if (value != nullptr) text = *value;
    return value != nullptr;
}

bool Settings::GetSettingToken(const std::string& key, std::string& text) const {
    const std::string* value = Find(key);
    if (value == nullptr) return false;
    text.clear();
    bool inQuotes = false;
    bool escaped = false;
    for (const char c : *value) {
        if (!inQuotes && (c == '#' || EndsToken(c))) break;
        if (c == '"' && !escaped) {
            if (inQuotes) break;
            inQuotes = true;
        } else if (c == '\\' && !escaped) {
            escaped = true;
        } else {
            text += c;
            escaped = false;
        }
    }
    return true;
}

bool Settings::GetSettingRgb(const std::string& key, float (&rgb)[3]) const {
    const std::string* value = Find(key);
    if (value == nullptr) return false;
    FieldScanner scanner(*value);
    float numbers[3];
    for (float& number : numbers) {
        const auto scanned = scanner.Float();
        if (!scanned) return false;
        number = *scanned;
    }
    for (int i = 0; i < 3; ++i) rgb[i] = numbers[i];
    return true;
}

bool Settings::GetSettingFloat(const std::string& key, float& number) const {
    const std::string* value = Find(key);
    const auto scanned = value == nullptr ? std::nullopt : FieldScanner(*value).Float();
    if (scanned) number = *scanned;
    return scanned.has_value();
}

bool Settings::GetSettingInt(const std::string& key, int& number) const {
    const std::string* value = Find(key);
    const auto scanned = value == nullptr ? std::nullopt : FieldScanner(*value).Int();
    if (scanned) number = *scanned;
    return scanned.has_value();
}

}  // namespace tavrin
