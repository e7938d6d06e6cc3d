// SPDX-License-Identifier: Apache-2.0
// The macro expander: a text-substitution machine that walks a text character by character and replaces
// the names of variables by their values.
//
// Two forms are expanded: ${NAME}, and NAME on its own where it is a whole word (letters, digits and
// underscores). Values are not scanned again. The scanner also knows comments, quotes and escapes; the
// token lists that arm those are empty unless somebody fills them, and the system never does.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "codegen/VariableList.h"

namespace tavrin {

// A plain value, one in each CCodeGen. Nothing here fails: what is no variable stays as it is.
class CMex {
  public:
    // The scanner's state, kept between texts: a comment or a quoted run spans lines.
    enum State : int {
        kPlain = 0,
        kEscaped = 1,
        kInQuotes = 2,
        kInComment = 3,
        kAfterStrayClose = 4,  // everything is dropped until the state is set again from outside
        kInLineComment = 5,
    };

    // What makes the scanner aware of a language's comments and quotes.
    struct Syntax {
        std::vector<std::string> openComments;
        std::vector<std::string> closeComments;
        std::vector<std::string> lineComments;
        std::vector<char> escapes;
        std::vector<char> quotes;
        bool keepComments = false;

        bool IsBare() const {
            return openComments.empty() && closeComments.empty() && lineComments.empty() && escapes.empty() &&
                   quotes.empty();
        }
    };

    // Empties lists, variables and lines; the state and both counters become 0.
    void Reset();

    // `result` receives the expansion of `text`.
    void Expand(std::string_view text, std::string& result);
    // The same expansion, after which the scanner is where it was.
    std::string Expanded(std::string_view text) const;

    // Sets the state and the line counter to 0, then appends the expansion of each line of the line
    // buffer to `lines` as an element of its own.
    void ExpandLines(std::vector<std::string>& lines);

    // The same for lines that come one by one: the start, and then each line.
    void BeginLines();
    void ExpandLine(std::string_view line, std::vector<std::string>& lines);

    // Appends a pair; never replaces, so the first value given to a name is the one that counts.
    void SetVariable(std::string_view name, std::string_view value) { m_variables.Add(name, value); }

    // Extends the first variable of that name by the separator and the value; true. Sets it if there is
    // none; false.
    bool AppendVariable(std::string_view name, std::string_view value, std::string_view separator) {
        return m_variables.Extend(name, value, separator);
    }
    void ClearVariables() { m_variables.Clear(); }
    const VariableList& Variables() const { return m_variables; }

    std::vector<std::string>& LineBuffer() { return m_lines; }
    void ClearLines() { m_lines.clear(); }

    Syntax& Tokens() { return m_syntax; }
    const Syntax& Tokens() const { return m_syntax; }
    int m_state = kPlain;
    // The line in which the present state was entered, by the counter of ExpandLines.
    int StateStart() const { return m_stateStart; }

  private:
    void Append(std::string_view text, std::string& result);
    // Nothing but variables is looked for.
    bool IsPlain() const { return m_state == kPlain && m_syntax.IsBare(); }
    void ExpandBare(std::string_view text, std::string& result) const;
    void Step(std::string_view text, size_t& i, std::string& result);
    void StepPlain(std::string_view text, size_t& i, std::string& result);
    void Enter(State state) {
        m_state = state;
        m_stateStart = m_lineCounter;
    }
    void EndText();

    // Places of the next '}' already looked up in the text at work, so that many "${" share one search.
    struct BraceFinder {
        std::string_view text;
        size_t known = 0;
        bool searched = false;
        size_t Next(size_t from);
    };
    // Substitutes at `i`: appends the value, moves `i` past what was matched.
    bool TryVariable(std::string_view text, size_t& i, BraceFinder& braces, std::string& result) const;

    Syntax m_syntax;
    VariableList m_variables;
    std::vector<std::string> m_lines;
    int m_lineCounter = 0;
    int m_stateStart = 0;
};

}  // namespace tavrin
