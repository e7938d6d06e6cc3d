// SPDX-License-Identifier: Apache-2.0
// What the parsers of braced formats share: reading an expected token or reporting where it is missing.
#pragma once

#include <string>

#include "text/Archive.h"
#include "text/Numbers.h"
#include "text/Report.h"
#include "text/Tokens.h"

namespace tavrin {

// Base of a parser over one archive. Every operation that returns false has raised the alert of a parse
// error, "unexpected input" unless told otherwise.
class TokenParser {
  protected:
    TokenParser(CArchive& archive, Report& report) : m_archive(archive), m_report(report) {}

    bool Unexpected() {
        m_report.AlertAt(m_archive, "unexpected input");
        return false;
    }
    bool Operand(std::string& text) { return ReadToken(m_archive, text) || Unexpected(); }
    bool Operand(int& number) {
        std::string token;
        if (!Operand(token)) return false;
        number = ParseInt(token);
        return true;
    }
    bool Operand(float& number) {
        std::string token;
        if (!Operand(token)) return false;
        number = ParseFloat(token);
        return true;
    }
    // The token "0" or "1" and no other.
    bool Flag(int& flag) {
        std::string token;
        if (!Operand(token)) return false;
        if (token != "0" && token != "1") return Unexpected();
        flag = token == "1" ? 1 : 0;
        return true;
    }
    // One of two words; `flag` is 1 for the first.
    bool Choice(int& flag, const char* first, const char* second) {
        std::string token;
        if (!Operand(token)) return false;
        if (token != first && token != second) return Unexpected();
        flag = token == first ? 1 : 0;
        return true;
    }
    bool Expect(const char* text) {
        std::string token;
        if (!Operand(token)) return false;
        return token == text || Unexpected();
    }

    CArchive& m_archive;
    Report& m_report;
};

}  // namespace tavrin
