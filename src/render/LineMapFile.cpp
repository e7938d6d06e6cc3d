// SPDX-License-Identifier: Apache-2.0
// The map of lines as a file, which scripts read and docs/formats.md describes.
#include <charconv>
#include <map>
#include <utility>

#include "render/LineMap.h"
#include "text/StoredText.h"

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

std::string LineMap::Store(size_t before, const std::vector<ArgumentLines>& arguments) const {
    std::string text(kHead);
    text += '\n';
    std::map<std::pair<int, std::string>, size_t> numbers;
    const auto store = [&](const Box& box) {
        const auto [known, isNew] = numbers.emplace(std::pair(box.wid, box.operatorName), numbers.size() + 1);
        if (!isNew) return known->second;
        text.append("box ").append(std::to_string(box.wid)).append(" ");
        text.append(OneLine(box.operatorName)) += '\n';
        return known->second;
    };
    std::vector<size_t> boxes{0};
    for (const Box& box : m_boxes) boxes.push_back(store(box));
    for (const ArgumentLines& argument : arguments) store({argument.wid, argument.operatorName});
    for (const std::string& file : m_files) text.append("file ").append(file) += '\n';
    for (const ArgumentLines& argument : arguments) {
        StoreRun(text, {argument.first, argument.count, store({argument.wid, argument.operatorName}), 0, 0,
                        CCodeGen::kNoBlock, argument.button});
    }
    for (Run run : m_runs) {
        run.first += before;
        run.box = boxes[run.box];
        StoreRun(text, run);
    }
    return text;
}

void LineMap::StoreRun(std::string& text, const Run& run) {
    const auto number = [&text](size_t value) { text.append(" ").append(std::to_string(value)); };
    const bool isOutput = !run.button.empty() && !run.IsArgument();
    text += run.IsArgument() ? "argument" : isOutput ? "output" : "line";
    number(run.first);
    if (!isOutput) number(run.count);
    number(run.box);
    if (!run.IsArgument()) text.append(" ").append(CCodeGen::BlockName(run.block));
    if (!run.button.empty()) {
        text.append(" ").append(OneLine(run.button)) += '\n';
        return;
    }
    number(run.file);
    number(static_cast<size_t>(run.line));
    text += '\n';
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
        if (word == "argument") return TakeArgument(line);
        return false;
    }

  private:
    bool TakeBox(std::string_view line) {
        int wid = 0;
        const std::string_view word = TakeUpTo(line, ' ');
        const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), wid);
        if (error != std::errc() || end != word.data() + word.size() || line.empty()) return false;
        m_map.m_boxes.push_back({wid, std::string(line)});
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
        return TakeButton(line, std::move(run));
    }
    bool TakeArgument(std::string_view line) {
        Run run;
        if (!TakeNumber(line, run.first) || !TakeNumber(line, run.count) || !TakeNumber(line, run.box))
            return false;
        return TakeButton(line, std::move(run));
    }
    bool TakeButton(std::string_view name, Run run) {
        run.button = name;
        return !name.empty() && run.box > 0 && Accept(std::move(run));
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
