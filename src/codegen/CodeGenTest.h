// SPDX-License-Identifier: Apache-2.0
// What tests of templates look at.
#pragma once

#include <string>
#include <vector>

#include "codegen/CodeGen.h"

namespace tavrin::test {

inline std::vector<std::string> TextsOf(const CCodeGen& codegen, CCodeGen::BlockId id) {
    std::vector<std::string> texts;
    for (size_t i = 0; i < codegen.Block(id).Size(); ++i) texts.push_back(codegen.Block(id).Line(i).text);
    return texts;
}

// Every line of every block with its kind.
inline std::vector<std::string> Everything(const CCodeGen& codegen) {
    std::vector<std::string> lines;
    for (int id = 0; id < CCodeGen::kBlockCount; ++id) {
        const CodeBlock& block = codegen.Block(static_cast<CCodeGen::BlockId>(id));
        for (size_t i = 0; i < block.Size(); ++i) {
            lines.push_back(std::to_string(id) + "/" + std::to_string(static_cast<int>(block.Line(i).kind)) +
                            "/" + block.Line(i).text);
        }
    }
    return lines;
}

}  // namespace tavrin::test
