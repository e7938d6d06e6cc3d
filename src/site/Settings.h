// SPDX-License-Identifier: Apache-2.0
// The generic settings of the site files: every keyword that is not one of the system's own, with the
// rest of its line. What a value means is decided at lookup, by the getter that the consumer chooses.
#pragma once

#include <map>
#include <string>

namespace tavrin {

// One for the process, in the site; filled while site files are read. Nothing here reports: who looks up
// knows what an unusable value means.
class Settings {
  public:
    // Replaces an earlier value of the key.
    void Store(const std::string& key, const std::string& value) { m_settings[key] = value; }

    // Each getter is true if it delivered a usable value. If not, the destination is unchanged: the
    // consumer initialises it with the default and calls the getter.

    bool GetSettingRaw(const std::string& key, std::string& text) const;
    // The first token, which an existing key always delivers, if only as the empty text.
    bool GetSettingToken(const std::string& key, std::string& text) const;
    bool GetSettingRgb(const std::string& key, float (&rgb)[3]) const;
    bool GetSettingFloat(const std::string& key, float& number) const;
    bool GetSettingInt(const std::string& key, int& number) const;

  private:
    const std::string* Find(const std::string& key) const;

    std::map<std::string, std::string> m_settings;
};

}  // namespace tavrin
