// SPDX-License-Identifier: Apache-2.0
// The user's settings, kept in the desktop's configuration directory.
#pragma once

#include <QSettings>

#include "base/Profile.h"

namespace tavrin {

// "Orlane/Tavrin.ini" under $XDG_CONFIG_HOME, all values in the section "Settings".
class IniProfile : public Profile {
  public:
    IniProfile();

    int GetInt(const std::string& key, int otherwise) const override;
    std::string GetText(const std::string& key) const override;
    void SetInt(const std::string& key, int value) override;
    void SetText(const std::string& key, const std::string& value) override;

  private:
    void Write(const std::string& key, const QVariant& value);

    QSettings m_settings;
};

}  // namespace tavrin
