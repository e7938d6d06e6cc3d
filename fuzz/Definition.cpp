// Operator definitions: a box that was read is prepared and generated.
#include "codegen/CodeGen.h"
#include "fuzz/FuzzHost.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace tavrin;
    fuzz::FuzzHost host;
    COpBox box;
    CArchive archive = fuzz::ArchiveOf(data, size);
    box.ReadDefinition(archive, "/nonexistent", host.site.report);
    box.RenumberInputs();
    CCodeGen shader;
    box.PrepareVariables(host.site.types);
    box.GenerateCode(shader, host.site.types, host.site.report);
    std::vector<std::string> lines;
    shader.WriteCode(lines);
    shader.WriteHints(lines);
    return 0;
}
