// SPDX-License-Identifier: Apache-2.0
// The map of lines as a file, which scripts read:
//
//   #source lines 1
//   box TITLE OPERATOR                  each box, in the order of generation
//   file PATH                           each file that a line comes from
//   line FIRST COUNT BOX CLAUSE FILE LINE
//                                       so many lines from FIRST on were written by the BOXth box (0: by
//                                       none), in that block, from LINE on of the FILEth file (0: not known)
//   output LINE BOX CLAUSE NAME         the line declares that output of the box
#include <charconv>

#include "render/LineMap.h"

namespace tavrin {

namespace {

constexpr std::string_view kHead = "#source lines 1";
constexpr size_t kMost = 1'000'000'000;  // lines and counts, so that two can be added

std::string_view TakeUpTo(std::string_view& text, char end) {
    const size_t at = text.find(end);
    const std::string_view taken = text.substr(0, at);
    text.remove_prefix(at == std::string_view::npos ? text.size() : at + 1);
    return taken;
}

bool TakeNumber(std::string_view& text, size_t& number) {
    const std::string_view word = TakeUpTo(text, ' ');
    const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), number);
    return error == std::errc() && end == word.data() + word.size() && number <= kMost;
}

bool TakeBlock(std::string_view& text, CCodeGen::BlockId& block) {
    block = CCodeGen::FindBlock(TakeUpTo(text, ' '));
    return block != CCodeGen::kNoBlock;
}

}  // namespace

std::string LineMap::Store(size_t before) const {
    std::string text(kHead);
    text += '\n';
    for (const Box& box : m_boxes)
        text.append("box ").append(box.title).append(" ").append(box.operatorName) += '\n';
    for (const std::string& file : m_files) text.append("file ").append(file) += '\n';
    const auto number = [&text](size_t value) { text.append(" ").append(std::to_string(value)); };
    for (const Run& run : m_runs) {
        const std::string_view block = CCodeGen::BlockName(run.block);
        if (!run.output.empty()) {
            text += "output";
            number(run.first + before);
            number(run.box);
            text.append(" ").append(block).append(" ").append(run.output) += '\n';
            continue;
        }
        text += "line";
        number(run.first + before);
        number(run.count);
        number(run.box);
        text.append(" ").append(block);
        number(run.file);
        number(static_cast<size_t>(run.line));
        text += '\n';
    }
    return text;
}

// Reads one line after the other into a map; each tells whether it fits what was read before.
class LineMap::Parser {
  public:
    explicit Parser(LineMap& map) : m_map(map) {}

    bool Take(std::string_view line) {
        const std::string_view word = TakeUpTo(line, ' ');
        if (word == "box") return TakeBox(line);
        if (word == "file") return TakeFile(line);
        if (word == "line") return TakeRun(line);
        if (word == "output") return TakeOutput(line);
        return false;
    }

  private:
    bool TakeBox(std::string_view line) {
        const std::string_view title = TakeUpTo(line, ' ');
        if (title.empty() || line.empty()) return false;
        m_map.m_boxes.push_back({std::string(title), std::string(line)});
        return true;
    }
    bool TakeFile(std::string_view line) {
        m_map.m_files.emplace_back(line);
        return !line.empty();
    }
    bool TakeRun(std::string_view line) {
        Run run;
        size_t number = 0;
        if (!TakeNumber(line, run.first) || !TakeNumber(line, run.count) || !TakeNumber(line, run.box) ||
            !TakeBlock(line, run.block) || !TakeNumber(line, run.file) || !TakeNumber(line, number)) {
            return false;
        }
        run.line = static_cast<int>(number);
        return line.empty() && Accept(std::move(run));
    }
    bool TakeOutput(std::string_view line) {
        Run run;
        run.count = 1;
        if (!TakeNumber(line, run.first) || !TakeNumber(line, run.box) || !TakeBlock(line, run.block))
            return false;
        run.output = line;
        return !run.output.empty() && run.box > 0 && Accept(std::move(run));
    }
    bool Accept(Run run) {
        if (run.first <= m_map.m_lineCount || run.count == 0 || run.box > m_map.m_boxes.size() ||
            run.file > m_map.m_files.size()) {
            return false;
        }
        m_map.m_lineCount = run.first + run.count - 1;
        m_map.m_runs.push_back(std::move(run));
        return true;
    }

    LineMap& m_map;
};

std::optional<LineMap> LineMap::Read(std::string_view text, std::string& error) {
    LineMap map;
    Parser parser(map);
    if (TakeUpTo(text, '\n') != kHead) {
        error = "line 1 is not \"" + std::string(kHead) + "\"";
        return std::nullopt;
    }
    for (size_t number = 2; !text.empty(); ++number) {
        if (parser.Take(TakeUpTo(text, '\n'))) continue;
        error =
            "line " + std::to_string(number) + " is none of a map of lines, or does not fit those before it";
        return std::nullopt;
    }
    return map;
}

}  // namespace tavrin
