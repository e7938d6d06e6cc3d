// SPDX-License-Identifier: Apache-2.0
#include "site/TypeTables.h"

namespace tavrin {

namespace {

std::string OwnWord(const std::string& type) {
    return type.starts_with(kGenericPrefix) ? type.substr(kGenericPrefix.size()) : type;
}

}  // namespace

std::string TypeTables::TranslateWord(const std::string& word) const {
    const auto found = m_wordTranslate.find(word);
    return found == m_wordTranslate.end() ? word : found->second;
}

std::string TypeTables::TranslateType(const std::string& type) const {
    if (type.starts_with(kGenericPrefix)) return type.substr(kGenericPrefix.size());
    return TranslateWord(type);
}

const TypeTables::Declaration& TypeTables::GetDeclaration(const std::string& type) const {
    static const Declaration kNone;
    const auto found = m_dataTypes.find(OwnWord(type));
    return found == m_dataTypes.end() ? kNone : found->second;
}

const TypeMark& TypeTables::GetMark(const std::string& type) const {
    static const TypeMark kNone;
    const auto found = m_marks.find(OwnWord(type));
    return found == m_marks.end() ? kNone : found->second;
}

void TypeTables::ResetDataTypes() {
    m_marks.clear();
    m_dataTypes = {{"rgb", {"color ", ""}},
                   {"xyz", {"point ", ""}},
                   {"float", {"float ", ""}},
                   {"string", {"string ", ""}}};
}

}  // namespace tavrin
