// SPDX-License-Identifier: Apache-2.0
// Ten named blocks of template lines, the macro expander that works on them, and the comment marks of
// the target language.
//
// There are three kinds of CCodeGen: the site's, filled from the site files; one in every box, filled from
// its definition; and the working copy of each save, into which the boxes are merged.
#pragma once

#include <algorithm>
#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "codegen/CodeBlock.h"
#include "codegen/Mex.h"

namespace tavrin {

class CArchive;
class Report;

// A plain value that is copied: each box owns one with its operator's templates, the application one with the
// site's, and each generation works on a copy. Wrong templates are alerted where they are read; its reading
// and clauses stand in CodeGenClauses.cpp.
class CCodeGen {
  public:
    // Blocks by their place in the order of output.
    enum BlockId : int {
        kGlobalOpen,
        kGlobalHeader,
        kMainOpen,
        kMainArgs,
        kMainArgsClose,
        kMainHeader,
        kMainBody,
        kMainClose,
        kGlobalClose,
        kHintText,
        kBlockCount,
        kNoBlock = -1,
    };
    static std::string_view BlockName(BlockId block);
    static BlockId FindBlock(std::string_view name);  // kNoBlock if the name is none of the ten
    // Its lines are expanded with the variables of the box that they come from.
    static bool TakesBoxVariables(BlockId block);

    // Reads one template clause; `keyword` is what followed "codegen.". A relative file of the "@" modes
    // is looked for in `libraryDir`. On failure false, with the message for the user in `errorText`, and
    // nothing was added. A block name that is none of the ten is no error: its text is read and dropped.
    bool ParseClause(CArchive& archive, const std::string& keyword, const std::string& libraryDir,
                     std::string& errorText);

    // Adds a line by the words "append", "insert", "unique", alone or with "@" and a file behind; an
    // unknown block or mode does nothing.
    void AddLine(std::string_view block, std::string_view modeText, std::string text);
    void AddLine(BlockId block, LineKind kind, std::string text, LineOrigin origin = {}) {
        m_blocks[AsIndex(block)].Add(kind, std::move(text), origin);
    }
    void AddLineCoded(std::string_view block, int code, std::string text, LineSource source = {});
    static int ModeCode(std::string_view modeText);

    // The clauses that are read from here on stand in this file. Those of a definition need no name: whoever
    // has the box knows what it was read from.
    void ReadFrom(const std::string& path) { m_readFrom = NumberOf(path); }
    // The file of a line that comes from one that is named here; empty for any other.
    std::string FileOf(LineSource source) const;

    void SetVariable(std::string_view name, std::string_view value) { m_mex.SetVariable(name, value); }
    bool AppendVariable(std::string_view name, std::string_view value, std::string_view separator) {
        return m_mex.AppendVariable(name, value, separator);
    }
    void ClearVariables() { m_mex.ClearVariables(); }
    void ExpandString(std::string_view text, std::string& result) { m_mex.Expand(text, result); }

    // Expands, in place, the lines of one of the five blocks that take a box's variables, or of all five
    // for "all". Any other name is alerted.
    void ExpandAll(std::string_view blockName, Report& report);

    // Adds every line of `other` by the way it came in there. Variables and marks are not merged. BoxMerge
    // merges boxes.
    void Merge(const CCodeGen& other);

    // Where the lines of the final text come from. A plain value.
    struct Origins {
        std::vector<LineOrigin> lines;
        std::array<size_t, kBlockCount> ends{};  // the number of lines up to the end of each block

        BlockId BlockOf(size_t line) const;  // of a line that there is, counted from 0
    };

    // The text as a comment in the target language; false if it has no comment marks.
    bool MakeComment(std::string_view text, std::string& result) const;

    // The final text, without the hint block: trimmed, indented by lines that hold only a brace, expanded
    // with this object's variables, appended to `lines`; `origins`, where it is given,
    // is filled anew.
    void WriteCode(std::vector<std::string>& lines, Origins* origins = nullptr);
    void WriteHints(std::vector<std::string>& lines);

    // Empties blocks and expander and puts back the defaults.
    void Reset() { *this = CCodeGen(); }

    // Whether any block holds a line.
    bool HasLines() const {
        return std::any_of(m_blocks.begin(), m_blocks.end(),
                           [](const CodeBlock& block) { return block.Size() > 0; });
    }
    const CodeBlock& Block(BlockId block) const { return m_blocks[AsIndex(block)]; }
    CMex& Mex() { return m_mex; }
    const CMex& Mex() const { return m_mex; }

    std::string m_varargSep = ", ";  // set by "vararg.sep"; the separator that counts is each vinput's own
    std::string m_lineComment;
    std::string m_openComment;
    std::string m_closeComment;
    std::string m_indent = "    ";  // one step of indentation in the final text

  private:
    static size_t AsIndex(BlockId block) { return static_cast<size_t>(block); }
    bool ParseSetting(CArchive& archive, const std::string& keyword, bool& isSetting, std::string& errorText);
    bool ParseBlock(CArchive& archive, const std::string& keyword, const std::string& libraryDir,
                    std::string& errorText);
    uint32_t NumberOf(const std::string& path);

    std::array<CodeBlock, kBlockCount> m_blocks;
    std::vector<std::string> m_files;  // that lines come from, besides a definition
    uint32_t m_readFrom = LineSource::kDefinition;
    CMex m_mex;
};

}  // namespace tavrin
