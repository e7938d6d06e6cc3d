// SPDX-License-Identifier: Apache-2.0
// Operator definitions: a box that was read is prepared and generated.
#include "codegen/BoxMerge.h"
#include "fuzz/FuzzHost.h"
#include "library/CodeNames.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace tavrin;
    fuzz::FuzzHost host;
    COpBox box;
    CArchive archive = fuzz::ArchiveOf(data, size);
    box.ReadDefinition(archive, "/nonexistent", host.site.report, "/nonexistent/0100.Operator");
    box.RenumberInputs();
    CCodeGen shader;
    PreparedVariables prepared;
    prepared.Prepare(box, host.site.types);
    BoxMerge merge(shader);
    box.GenerateCode(merge, host.site.types, {prepared, &host.site.report});
    std::vector<std::string> lines;
    shader.WriteCode(lines);
    shader.WriteHints(lines);
    return 0;
}
