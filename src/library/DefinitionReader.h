// SPDX-License-Identifier: Apache-2.0
// The reader of a preprocessed box definition.
#pragma once

#include <string>
#include <vector>

#include "text/TokenParser.h"

namespace tavrin {

class COpBox;
class COpButton;
class COpValueFloat;
class COpValueGeneric;
class COpValueRgb;
class COpValueRgba;
class COpValueString;
class COpValueXyz;
enum class ButtonKind : int;

// Reads clauses into one box and stops at the first error, which it has then reported with its place.
// What was read stays in the box. Used once.
// Values are read in DefinitionValues.cpp.
class DefinitionReader : private TokenParser {
  public:
    // All outlive it. Messages tell of the operator's file, and of the line of it or of what it includes that
    // a line of the archive comes from, where the preprocessor has left a table of that.
    DefinitionReader(COpBox& box, CArchive& archive, const std::string& libraryDir, Report& report,
                     const std::string& operatorPath);
    ~DefinitionReader() { m_archive.SetRemark({}); }
    DefinitionReader(const DefinitionReader&) = delete;
    DefinitionReader& operator=(const DefinitionReader&) = delete;

    bool Read();

  private:
    bool ReadClause(const std::string& keyword);
    bool ReadDefs();
    bool ReadAlias(std::vector<std::string>& aliases);
    bool ReadKeywords();
    bool ReadInput(ButtonKind kind);
    bool ReadInputProperty(COpButton& button, const std::string& keyword);
    bool ReadOutput();
    bool ReadOutputProperty(COpButton& button, const std::string& keyword);

    // One alternative of an input, from the keyword of its type on.
    bool ReadValue(COpButton& button, const std::string& keyword);
    // What stands behind the keyword: a brace group, or the loose block of a text.
    bool ReadBody(COpValueFloat& value);
    bool ReadBody(COpValueXyz& value);
    bool ReadBody(COpValueRgb& value);
    bool ReadBody(COpValueRgba& value);
    bool ReadBody(COpValueString& value);
    bool ReadBody(COpValueGeneric& value);
    template <typename Value>
    bool ReadOptions(Value& value);

    void AddInstances(const COpButton& button);

    bool HelpBlock(std::string& help);
    void HelpText(const char* keyword, std::string& help);
    // A name or type that documents write bare. False, reported, if it would not come back from there.
    bool CanBeStored(const char* what, const std::string& name);
    // For messages, since the file that they name is the preprocessor's; empty while there is no name, and
    // where they tell it anyway.
    std::string OfOperator() const;
    std::string Origin(int line) const;

    COpBox& m_box;
    const std::string& m_libraryDir;
    const std::string& m_operatorPath;
    std::string m_sourceLines;   // the preprocessor's table
    bool m_isOpenEnded = false;  // the file ended within a help block
};

}  // namespace tavrin
