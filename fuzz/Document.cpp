// SPDX-License-Identifier: Apache-2.0
// Documents: what was read is generated, described to the scripts, stored and read again; what was stored
// always opens.
#include <cstdlib>

#include "codegen/CodeGen.h"
#include "document/DocumentReader.h"
#include "fuzz/FuzzHost.h"
#include "render/ArgInfo.h"
#include "render/NetworkCheck.h"
#include "render/RenderSession.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace tavrin;
    fuzz::FuzzHost host;
    CTvDoc document(host);
    document.Load(ReadDocument(fuzz::ArchiveOf(data, size)));
    CCodeGen codeGen;
    codeGen.m_lineComment = "//";
    RenderSession(document, host.site, codeGen).Generate();
    WriteArgInfo(document, host.site.report);
    CheckNetwork(document, host.site.report);

    const std::string stored = document.Store();
    CTvDoc again(host);
    if (!again.Load(ReadDocument(CArchive::FromText("copy", stored)))) std::abort();
    const std::string second = again.Store();
    CTvDoc third(host);
    if (!third.Load(ReadDocument(CArchive::FromText("copy", second)))) std::abort();
    return 0;
}
