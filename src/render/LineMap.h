// SPDX-License-Identifier: Apache-2.0
// Where each line of a generated source comes from: the way back from a compiler's message to a box, and to
// the line of the template that wrote it.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "codegen/CodeGen.h"

namespace tavrin {

class COpBox;

// What wrote a line. A plain value.
struct LinePlace {
    std::string box;           // title and number; empty for the site's templates and the document's help
    std::string operatorName;  // of that box
    std::string button;        // whose declaration or argument it is; empty for other lines
    std::string clause;        // block of the templates, such as "main-body"
    std::string file;          // of the template; empty where nobody knows
    int line = 0;              // in that file, counted from 1; 0 where nobody knows

    bool operator==(const LinePlace&) const = default;
};

// The lines of the arginfo section that are about one argument. A plain value.
struct ArgumentLines {
    size_t first = 0;  // counted from 1
    size_t count = 0;
    int wid = 0;  // of the box
    std::string operatorName = {};
    std::string button = {};
};

// A plain value. It holds runs of lines that come one after another, since most do. Boxes are named and not
// pointed at, so that a map may outlive its network.
class LineMap {
  public:
    LineMap() = default;
    // Of what CCodeGen::WriteCode has given: `boxes` in the order in which they were merged into `shader`.
    LineMap(const std::vector<std::string>& code, const CCodeGen::Origins& origins, const CCodeGen& shader,
            const std::vector<COpBox*>& boxes);

    // Of a line as a text editor counts, from 1 on. Nothing for one that the map does not have.
    std::optional<LinePlace> Find(size_t line) const;
    // The lines that a box has written, in their order.
    std::vector<size_t> LinesOf(const std::string& box) const;
    // Those that any of these have written.
    std::vector<size_t> LinesOf(const std::unordered_set<std::string>& boxes) const;
    size_t LineCount() const { return m_lineCount; }

    // The map of a text that a script has made of this one: for each of its lines the line of this text that
    // it comes from, 0 for none.
    LineMap Through(const std::vector<size_t>& from) const;

    // The map as scripts read it, of a text that has `before` lines ahead of the source, the arguments' among
    // them.
    std::string Store(size_t before, const std::vector<ArgumentLines>& arguments = {}) const;
    // The same again, lines counted as they stand there. Nothing, with the cause in `error`, for a text that
    // is no such map or does not fit together.
    static std::optional<LineMap> Read(std::string_view text, std::string& error);

  private:
    struct Box {
        int wid = 0;
        std::string operatorName = {};
        bool operator==(const Box&) const = default;
        std::string Title() const { return operatorName + "_" + std::to_string(wid); }
    };
    struct Run {
        size_t first = 0;  // line of the source
        size_t count = 0;
        size_t box = 0;   // counted from 1; 0 for none
        size_t file = 0;  // the same
        int line = 0;     // that the first one comes from; the others follow, unless this is 0
        CCodeGen::BlockId block = CCodeGen::kNoBlock;
        std::string button = {};
        bool IsArgument() const { return !button.empty() && block == CCodeGen::kNoBlock; }
    };
    class Maker;
    class Parser;

    void Add(Run run);
    const Run* RunOf(size_t line) const;
    static void StoreRun(std::string& text, const Run& run);

    std::vector<Box> m_boxes;
    std::vector<std::string> m_files;
    std::vector<Run> m_runs;  // by their first lines, which grow
    size_t m_lineCount = 0;
};

}  // namespace tavrin
