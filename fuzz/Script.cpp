// SPDX-License-Identifier: Apache-2.0
// Script files: their statements, with nothing carried out.
#include "app/ScriptFile.h"
#include "fuzz/FuzzHost.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace tavrin;
    ScriptFile script(fuzz::ArchiveOf(data, size));
    ScriptStatement statement;
    while (script.Next(statement)) {
    }
    return 0;
}
