// SPDX-License-Identifier: Apache-2.0
// The two tables that turn the system's type words into the target language's text.
#pragma once

#include <map>
#include <string>
#include <string_view>

#include "site/TypeMark.h"

namespace tavrin {

// A type word that begins with this carries the target's own word behind it, which is never translated.
inline constexpr std::string_view kGenericPrefix = "generic:";

// One for the process, in the site; filled while site files are read. What is not in a table stands for
// itself.
class TypeTables {
  public:
    TypeTables() { ResetDataTypes(); }

    // What stands before and behind a variable's name in its declaration.
    struct Declaration {
        std::string head;
        std::string tail;
    };

    // The table's word, or the word itself.
    std::string TranslateWord(const std::string& word) const;
    // What follows "generic:" as it stands; any other type as by TranslateWord.
    std::string TranslateType(const std::string& type) const;
    // By the type's own word, without its "generic:"; two empty texts for a type that was never declared.
    const Declaration& GetDeclaration(const std::string& type) const;

    void SetWord(const std::string& word, const std::string& translation) {
        m_wordTranslate[word] = translation;
    }
    void ClearWords() { m_wordTranslate.clear(); }
    void SetDataType(const std::string& name, Declaration declaration) {
        m_dataTypes[name] = std::move(declaration);
    }
    // By the type's own word, as declarations are; one that says nothing for a type without any.
    const TypeMark& GetMark(const std::string& type) const;
    void SetMark(const std::string& name, const TypeMark& mark) { m_marks[name] = mark; }
    // Leaves the four built-in types, without marks, and nothing else.
    void ResetDataTypes();

  private:
    std::map<std::string, std::string> m_wordTranslate;
    std::map<std::string, Declaration> m_dataTypes;
    std::map<std::string, TypeMark> m_marks;
};

}  // namespace tavrin
