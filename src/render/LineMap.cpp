// SPDX-License-Identifier: Apache-2.0
#include "render/LineMap.h"

#include <algorithm>
#include <unordered_map>

#include "library/DefinitionSource.h"
#include "library/OpBox.h"
#include "library/OpButton.h"
#include "library/SourceLines.h"

namespace tavrin {

// Brings what 32 bits say of a line into names, each definition's table read once.
class LineMap::Maker {
  public:
    Maker(LineMap& map, const CCodeGen& shader, const std::vector<COpBox*>& boxes)
        : m_map(map), m_shader(shader), m_boxes(boxes) {}

    void Add(size_t line, const LineOrigin& origin, CCodeGen::BlockId block) {
        Run run{line, 1, origin.box, 0, 0, block, {}};
        const uint32_t file = origin.source.File();
        const COpBox* box = origin.box > 0 ? m_boxes[origin.box - 1] : nullptr;
        if (file == LineSource::kGenerated) {
            const auto output = static_cast<size_t>(origin.source.Line());
            if (box != nullptr && output > 0 && output <= box->outputs.size())
                run.button = box->outputs[output - 1]->DisplayName();
        } else if (file == LineSource::kDefinition && box != nullptr) {
            PlaceInDefinition(*box, origin.source.Line(), run);
        } else if (file >= LineSource::kFirstFile) {
            run.file = NumberOf((box != nullptr ? box->codegen : m_shader).FileOf(origin.source));
            run.line = origin.source.Line();
        }
        m_map.Add(std::move(run));
    }

  private:
    struct Table {
        std::vector<SourceLines::Run> runs;
        std::vector<size_t> files;  // their numbers in the map
    };

    size_t NumberOf(const std::string& path) {
        if (path.empty() || path.find('\n') != std::string::npos) return 0;
        const auto [known, isNew] = m_numbers.emplace(path, m_map.m_files.size() + 1);
        if (isNew) m_map.m_files.push_back(path);
        return known->second;
    }

    const Table& TableOf(const DefinitionSource& source) {
        const auto [known, isNew] = m_tables.try_emplace(&source);
        Table& table = known->second;
        if (!isNew) return table;
        const SourceLines lines(source.lines);
        table.runs = lines.Runs();
        for (const std::string& file : lines.Files()) table.files.push_back(NumberOf(file));
        return table;
    }

    // A definition without a table is at least known by its operator's file.
    void PlaceInDefinition(const COpBox& box, int line, Run& run) {
        if (box.source == nullptr) return;
        const Table& table = TableOf(*box.source);
        const auto behind =
            std::upper_bound(table.runs.begin(), table.runs.end(), line,
                             [](int wanted, const SourceLines::Run& each) { return wanted < each.first; });
        if (behind == table.runs.begin()) {
            run.file = box.source->files.empty() ? 0 : NumberOf(box.source->files.front().path);
            return;
        }
        const SourceLines::Run& found = *std::prev(behind);
        const auto file = static_cast<size_t>(found.file);
        if (file > table.files.size()) return;
        run.file = table.files[file - 1];
        run.line = found.line + (line - found.first);
    }

    LineMap& m_map;
    const CCodeGen& m_shader;
    const std::vector<COpBox*>& m_boxes;
    std::unordered_map<std::string, size_t> m_numbers;  // of files
    std::unordered_map<const DefinitionSource*, Table> m_tables;
};

LineMap::LineMap(const std::vector<std::string>& code, const CCodeGen::Origins& origins,
                 const CCodeGen& shader, const std::vector<COpBox*>& boxes) {
    m_boxes.reserve(boxes.size());
    for (const COpBox* box : boxes) m_boxes.push_back({box->wid, box->filename});
    Maker maker(*this, shader, boxes);
    size_t line = 1;
    for (size_t i = 0; i < code.size(); ++i) {
        const CCodeGen::BlockId block = origins.BlockOf(i);
        // What a value brings of line feeds makes more lines of one.
        const auto last = line + static_cast<size_t>(std::count(code[i].begin(), code[i].end(), '\n'));
        for (; line <= last; ++line) maker.Add(line, origins.lines[i], block);
    }
}

void LineMap::Add(Run run) {
    m_lineCount = std::max(m_lineCount, run.first + run.count - 1);
    if (!m_runs.empty()) {
        Run& last = m_runs.back();
        const bool goesOn = run.line == 0
                                ? last.line == 0
                                : last.line > 0 && static_cast<size_t>(run.line - last.line) == last.count;
        if (last.first + last.count == run.first && last.box == run.box && last.block == run.block &&
            last.file == run.file && last.button == run.button && goesOn) {
            last.count += run.count;
            return;
        }
    }
    m_runs.push_back(std::move(run));
}

const LineMap::Run* LineMap::RunOf(size_t line) const {
    const auto behind = std::upper_bound(m_runs.begin(), m_runs.end(), line,
                                         [](size_t wanted, const Run& run) { return wanted < run.first; });
    if (behind == m_runs.begin()) return nullptr;
    const Run& run = *std::prev(behind);
    return line < run.first + run.count ? &run : nullptr;
}

std::optional<LinePlace> LineMap::Find(size_t line) const {
    const Run* found = RunOf(line);
    if (found == nullptr) return std::nullopt;
    const Run& run = *found;
    LinePlace place;
    if (run.box > 0) {
        place.box = m_boxes[run.box - 1].Title();
        place.operatorName = m_boxes[run.box - 1].operatorName;
    }
    place.button = run.button;
    if (run.block != CCodeGen::kNoBlock) place.clause = CCodeGen::BlockName(run.block);
    if (run.file > 0) place.file = m_files[run.file - 1];
    if (run.line > 0) place.line = run.line + static_cast<int>(line - run.first);
    return place;
}

std::vector<size_t> LineMap::LinesOf(const std::string& box) const {
    return LinesOf(std::unordered_set<std::string>{box});
}

std::vector<size_t> LineMap::LinesOf(const std::unordered_set<std::string>& boxes) const {
    std::vector<bool> isWanted;
    for (const Box& box : m_boxes) isWanted.push_back(boxes.contains(box.Title()));
    std::vector<size_t> lines;
    for (const Run& run : m_runs) {
        if (run.box == 0 || !isWanted[run.box - 1]) continue;
        for (size_t i = 0; i < run.count; ++i) lines.push_back(run.first + i);
    }
    return lines;
}

LineMap LineMap::Through(const std::vector<size_t>& from) const {
    LineMap map;
    map.m_boxes = m_boxes;
    map.m_files = m_files;
    for (size_t i = 0; i < from.size(); ++i) {
        const Run* source = RunOf(from[i]);
        if (source == nullptr) continue;
        Run run = *source;
        run.first = i + 1;
        run.count = 1;
        if (run.line > 0) run.line += static_cast<int>(from[i] - source->first);
        map.Add(std::move(run));
    }
    map.m_lineCount = from.size();
    return map;
}

}  // namespace tavrin
