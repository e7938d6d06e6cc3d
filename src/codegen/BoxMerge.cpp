// SPDX-License-Identifier: Apache-2.0
#include "codegen/BoxMerge.h"

namespace tavrin {

CMex& BoxMerge::Start(const CCodeGen& box) {
    m_box = &box;
    ++m_place;
    m_mex.ClearVariables();
    m_mex.Tokens() = box.Mex().Tokens();
    return m_mex;
}

void BoxMerge::Merge(const std::vector<Declaration>& declarations) {
    m_mex.m_state = CMex::kPlain;
    const auto expand = [this](std::string_view text) {
        constexpr size_t kGrowth = 32;  // names of variables are longer than those of buttons
        std::string expanded;
        expanded.reserve(text.size() + kGrowth);
        m_mex.Expand(text, expanded);
        return expanded;
    };
    for (int index = 0; index < CCodeGen::kBlockCount; ++index) {
        const auto block = static_cast<CCodeGen::BlockId>(index);
        const CodeBlock& lines = m_box->Block(block);
        const bool expands = CCodeGen::TakesBoxVariables(block);
        for (size_t i = 0; i < lines.Size(); ++i) {
            const CodeLine& line = lines.Line(i);
            m_shader.AddLine(block, line.kind, expands ? expand(line.text) : line.text,
                             {m_place, line.origin.source});
        }
        if (block != CCodeGen::kMainHeader) continue;
        for (const Declaration& declaration : declarations) {
            m_shader.AddLine(block, LineKind::kAppend, expand(declaration.text),
                             Generated(declaration.output));
        }
    }
}

}  // namespace tavrin
