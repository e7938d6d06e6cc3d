// SPDX-License-Identifier: Apache-2.0
#include "codegen/CodeGen.h"

#include <algorithm>

#include "text/Archive.h"
#include "text/Report.h"
#include "text/Tokens.h"

namespace tavrin {

namespace {

constexpr std::array<std::string_view, CCodeGen::kBlockCount> kBlockNames = {
    "global-open", "global-header", "main-open",  "main-args",    "main-args-close",
    "main-header", "main-body",     "main-close", "global-close", "hinttext"};

// The blocks that take a box's variables, in the order in which they are expanded.
constexpr std::array kBoxBlocks = {CCodeGen::kGlobalOpen, CCodeGen::kMainHeader, CCodeGen::kMainBody,
                                   CCodeGen::kGlobalClose, CCodeGen::kHintText};

}  // namespace

std::string_view CCodeGen::BlockName(BlockId block) { return kBlockNames[AsIndex(block)]; }

CCodeGen::BlockId CCodeGen::FindBlock(std::string_view name) {
    for (size_t i = 0; i < kBlockNames.size(); ++i) {
        if (kBlockNames[i] == name) return static_cast<BlockId>(i);
    }
    return kNoBlock;
}

bool CCodeGen::TakesBoxVariables(BlockId block) {
    return std::find(kBoxBlocks.begin(), kBoxBlocks.end(), block) != kBoxBlocks.end();
}

void CCodeGen::AddLine(std::string_view block, std::string_view modeText, std::string text) {
    AddLineCoded(block, ModeCode(modeText), std::move(text));
}

void CCodeGen::AddLineCoded(std::string_view block, int code, std::string text, LineSource source) {
    const BlockId id = FindBlock(block);
    constexpr int kKnownCodes = 6;  // three words, and the same three with a file
    if (id == kNoBlock || code < 0 || code >= kKnownCodes) return;
    AddLine(id, static_cast<LineKind>(code % 3), std::move(text), {0, source});
}

uint32_t CCodeGen::NumberOf(const std::string& path) {
    const auto known = std::find(m_files.begin(), m_files.end(), path);
    const auto index = static_cast<size_t>(known - m_files.begin());
    if (index + LineSource::kFirstFile >= LineSource::kGenerated) return LineSource::kUnknown;
    if (known == m_files.end()) m_files.push_back(path);
    return static_cast<uint32_t>(index + LineSource::kFirstFile);
}

std::string CCodeGen::FileOf(LineSource source) const {
    const size_t index = source.File() - LineSource::kFirstFile;
    return source.File() >= LineSource::kFirstFile && index < m_files.size() ? m_files[index] : std::string();
}

void CCodeGen::ExpandAll(std::string_view blockName, Report& report) {
    m_mex.m_state = CMex::kPlain;
    int count = 0;
    std::string expanded;
    for (const BlockId block : kBoxBlocks) {
        if (blockName != BlockName(block) && blockName != "all") continue;
        m_blocks[AsIndex(block)].ChangeTexts([&](std::string& text) {
            m_mex.Expand(text, expanded);
            text = expanded;
        });
        ++count;
    }
    if (count == 0) {
        report.Alert("CCodeGen::ExpandAll(): blockname '%s' not yet supported!",
                     std::string(blockName).c_str());
    }
}

void CCodeGen::Merge(const CCodeGen& other) {
    for (size_t block = 0; block < kBlockCount; ++block) {
        const CodeBlock& lines = other.m_blocks[block];
        for (size_t i = 0; i < lines.Size(); ++i) {
            const CodeLine& line = lines.Line(i);
            m_blocks[block].Add(line.kind, line.text, line.origin);
        }
    }
}

bool CCodeGen::MakeComment(std::string_view text, std::string& result) const {
    result.clear();
    if (!m_lineComment.empty()) {
        result.append(m_lineComment).append(" ").append(text);
    } else if (!m_openComment.empty()) {
        result.append(m_openComment).append(" ").append(text).append(" ").append(m_closeComment);
    }
    return !result.empty();
}

void CCodeGen::WriteCode(std::vector<std::string>& lines, Origins* origins) {
    size_t count = 0;
    for (size_t block = kGlobalOpen; block <= kGlobalClose; ++block) count += m_blocks[block].Size();
    lines.reserve(lines.size() + count);
    if (origins != nullptr) {
        *origins = {};
        origins->lines.reserve(count);
    }
    m_mex.BeginLines();
    std::string line;
    int depth = 0;
    std::string indentation;
    const auto indent = [&](int change) {
        depth += change;
        indentation.clear();
        for (int i = 0; i < depth; ++i) indentation += m_indent;
    };
    for (size_t block = kGlobalOpen; block <= kGlobalClose; ++block) {
        for (size_t i = 0; i < m_blocks[block].Size(); ++i) {
            const CodeLine& from = m_blocks[block].Line(i);
            const std::string_view text = Trim(from.text);
            if (text == "}") indent(-1);
            line.assign(indentation).append(text);
            m_mex.ExpandLine(line, lines);
            if (origins != nullptr) origins->lines.push_back(from.origin);
            if (text == "{") indent(1);
        }
        if (origins != nullptr) origins->ends[block] = origins->lines.size();
    }
}

CCodeGen::BlockId CCodeGen::Origins::BlockOf(size_t line) const {
    int block = kGlobalOpen;
    while (block < kGlobalClose && ends[AsIndex(static_cast<BlockId>(block))] <= line) ++block;
    return static_cast<BlockId>(block);
}

void CCodeGen::WriteHints(std::vector<std::string>& lines) {
    m_mex.ClearLines();
    const CodeBlock& hints = Block(kHintText);
    for (size_t i = 0; i < hints.Size(); ++i) m_mex.LineBuffer().push_back(hints.Line(i).text);
    m_mex.ExpandLines(lines);
    m_mex.ClearLines();
}

}  // namespace tavrin
