// SPDX-License-Identifier: Apache-2.0
#include "ui/base/IniProfile.h"

namespace tavrin {

namespace {

QString KeyOf(const std::string& key) { return "Settings/" + QString::fromStdString(key); }

}  // namespace

IniProfile::IniProfile() : m_settings(QSettings::IniFormat, QSettings::UserScope, "Orlane", "Tavrin") {
    m_settings.setFallbacksEnabled(false);
}

int IniProfile::GetInt(const std::string& key, int otherwise) const {
    bool isNumber = false;
    const int value = m_settings.value(KeyOf(key)).toInt(&isNumber);
    return isNumber ? value : otherwise;
}

// As bytes, whatever a file's name holds.
std::string IniProfile::GetText(const std::string& key) const {
    return m_settings.value(KeyOf(key)).toByteArray().toStdString();
}

void IniProfile::SetInt(const std::string& key, int value) {
    if (!m_settings.contains(KeyOf(key)) || GetInt(key, ~value) != value) Write(key, value);
}

void IniProfile::SetText(const std::string& key, const std::string& value) {
    if (!m_settings.contains(KeyOf(key)) || GetText(key) != value)
        Write(key, QByteArray::fromStdString(value));
}

// Dear, since the whole file goes to the disk: the end of the program sets some fifty values, of which hardly
// one has changed.
void IniProfile::Write(const std::string& key, const QVariant& value) {
    m_settings.setValue(KeyOf(key), value);
    m_settings.sync();
}

}  // namespace tavrin
