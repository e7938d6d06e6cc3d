// SPDX-License-Identifier: Apache-2.0
// Documents: what was read is generated, described to the scripts, stored and read again; what was stored
// always opens. With placeholders for what the library does not know, what they stand for is kept as well.
#include <algorithm>
#include <cstdlib>

#include "codegen/CodeGen.h"
#include "document/DocumentReader.h"
#include "fuzz/FuzzHost.h"
#include "render/ArgInfo.h"
#include "render/NetworkCheck.h"
#include "render/RenderSession.h"

namespace tavrin {
namespace {

void Try(const uint8_t* data, size_t size, const char* placeholders) {
    fuzz::FuzzHost host;
    host.site.settings.Store("document.placeholders", placeholders);
    CTvDoc document(host);
    document.Load(ReadDocument(fuzz::ArchiveOf(data, size)));
    CCodeGen codeGen;
    codeGen.m_lineComment = "//";
    RenderSession(document, host.site, codeGen).Generate();
    WriteArgInfo(document, host.site.report);
    CheckNetwork(document, host.site);

    const std::string stored = document.Store();
    CTvDoc again(host);
    if (!again.Load(ReadDocument(CArchive::FromText("copy", stored)))) std::abort();
    const std::string second = again.Store();
    CTvDoc third(host);
    if (!third.Load(ReadDocument(CArchive::FromText("copy", second)))) std::abort();
    const auto isUnknown = [](const auto& box) { return box->IsPlaceholder(); };
    const auto count = [&](const CTvDoc& own) {
        return std::count_if(own.m_boxes.begin(), own.m_boxes.end(), isUnknown);
    };
    if (count(document) != count(third)) std::abort();
}

}  // namespace
}  // namespace tavrin

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    tavrin::Try(data, size, "0");
    tavrin::Try(data, size, "1");
    return 0;
}
