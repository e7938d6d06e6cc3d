// Documents: what was read is generated, described to the scripts, stored and read again; what was stored
// always opens.
#include <cstdlib>

#include "codegen/CodeGen.h"
#include "fuzz/FuzzHost.h"
#include "render/ArgInfo.h"
#include "render/NetworkCheck.h"
#include "render/RenderSession.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace tavrin;
    fuzz::FuzzHost host;
    CTvDoc document(host);
    CArchive archive = fuzz::ArchiveOf(data, size);
    document.Load(archive);
    CCodeGen codeGen;
    codeGen.m_lineComment = "//";
    RenderSession(document, host.site, codeGen).Generate();
    WriteArgInfo(document, host.site.report);
    CheckNetwork(document, host.site.report);

    const std::string stored = document.Store();
    CTvDoc again(host);
    CArchive copy = CArchive::FromText("copy", stored);
    if (!again.Load(copy)) std::abort();
    const std::string second = again.Store();
    CTvDoc third(host);
    CArchive secondCopy = CArchive::FromText("copy", second);
    if (!third.Load(secondCopy)) std::abort();
    return 0;
}
