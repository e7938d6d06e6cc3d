#include "ui/IniProfile.h"

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
    m_settings.setValue(KeyOf(key), value);
    m_settings.sync();
}

void IniProfile::SetText(const std::string& key, const std::string& value) {
    m_settings.setValue(KeyOf(key), QByteArray::fromStdString(value));
    m_settings.sync();
}

}  // namespace tavrin
