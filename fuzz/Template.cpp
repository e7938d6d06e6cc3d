// SPDX-License-Identifier: Apache-2.0
// Template clauses, and the expansion of what they hold: the first line of the input is the text that is
// expanded, the rest are clauses.
#include "codegen/CodeGen.h"
#include "fuzz/FuzzHost.h"
#include "text/Tokens.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace tavrin;
    CArchive archive = fuzz::ArchiveOf(data, size);
    std::string_view text;
    archive.ReadLine(text);
    CCodeGen codeGen;
    std::string keyword;
    std::string error;
    while (ReadToken(archive, keyword) && codeGen.ParseClause(archive, keyword, "/nonexistent", error)) {
    }
    std::string expanded;
    codeGen.ExpandString(text, expanded);
    std::vector<std::string> lines;
    codeGen.WriteCode(lines);
    return 0;
}
