// The reader of a preprocessed box definition.
#pragma once

#include <string>

namespace tavrin {

class CArchive;
class COpBox;
class COpButton;
class COpValueFloat;
class COpValueGeneric;
class COpValueRgb;
class COpValueRgba;
class COpValueString;
class COpValueXyz;
class Report;
enum class ButtonKind : int;

// Reads clauses into one box and stops at the first error, which it has then reported with its place.
// What was read stays in the box. Used once.
class DefinitionReader {
  public:
    DefinitionReader(COpBox& box, CArchive& archive, const std::string& libraryDir, Report& report)
        : m_box(box), m_archive(archive), m_libraryDir(libraryDir), m_report(report) {}

    bool Read();

  private:
    bool ReadClause(const std::string& keyword);
    bool ReadDefs();
    bool ReadInput(ButtonKind kind);
    bool ReadInputProperty(COpButton& button, const std::string& keyword);
    bool ReadOutput();
    bool ReadOutputProperty(COpButton& button, const std::string& keyword);

    // One alternative of an input, from the keyword of its type on.
    bool ReadValue(COpButton& button, const std::string& keyword);
    bool ReadGroup(COpValueFloat& value);
    bool ReadGroup(COpValueXyz& value);
    bool ReadGroup(COpValueRgb& value);
    bool ReadGroup(COpValueRgba& value);
    bool ReadBlock(COpValueString& value);
    bool ReadBlock(COpValueGeneric& value);
    template <typename Value>
    bool ReadOptions(Value& value);

    // Each reads one token and reports "unexpected input" if it is missing or does not fit.
    bool Operand(std::string& text);
    bool Operand(int& number);
    bool Operand(float& number);
    bool Flag(int& flag);  // the token "0" or "1" and no other
    bool Expect(const char* text);
    bool HelpBlock(std::string& help);
    bool Unexpected();

    COpBox& m_box;
    CArchive& m_archive;
    const std::string& m_libraryDir;
    Report& m_report;
};

}  // namespace tavrin
