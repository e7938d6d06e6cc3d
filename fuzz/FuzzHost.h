// SPDX-License-Identifier: Apache-2.0
// What the fuzz targets share: a document's host that starts no process and reads no library.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>

#include "base/MainThreadQueue.h"
#include "document/TvDoc.h"
#include "library/OpRegistry.h"
#include "site/Site.h"
#include "text/Archive.h"
#include "text/Report.h"
#include "text/StoredText.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

namespace tavrin::fuzz {

inline CArchive ArchiveOf(const uint8_t* data, size_t size) {
    return CArchive::FromText("input", std::string(reinterpret_cast<const char*>(data), size));
}

// Every operator has this definition.
inline constexpr const char* kDefinition =
    "size 64 48\n"
    "input amount { float { 0.5 0 1 0 \"%g\" } rgb { 1 1 1 \"rgb(%g,%g,%g)\" } generic:mat { value \"m\" } "
    "}\n"
    "input text { string { value \"x\" format \"%s\" quoteflag 1 } }\n"
    "vinput layer { vargseparator \", \" vinstances 2 xyz { 0 0 0 0 1 0 \"%g %g %g\" } rgba { 0 0 0 1 \"%g\" "
    "} }\n"
    "output result { float out rgb out }\n"
    "output tieback=amount same { float out }\n"
    "output fixedvalue=${TAVRN_BoxWid} fixed { float out }\n"
    "defs { castlock.add amount result maxinstances 3 }\n"
    "codegen.main-body append\n"
    "result = ${amount} + layer * text; // ${TAVRN_Cast_amount}\n"
    "<<EOT>>\n";

class FuzzHost : public DocumentHost {
  public:
    Site& GetSite() override { return m_site; }
    const COpRegistry& Registry() const override { return m_registry; }
    const std::map<std::string, std::string>& AppVariables() const override { return m_variables; }
    const CExportOptions& ExportDefaults() const override { return m_exports; }
    bool IsUnsavedOption(const std::string&) const override { return false; }
    bool UseLibrary(const std::string& name) override { return name != ".."; }
    std::string DocumentVersion() const override { return "1.0.0"; }

  protected:
    // Any name that a library can offer is an operator, but for those that begin with "Gone".
    bool LoadDefinition(COpBox& box, const std::string& operatorName, DefinitionTexts*) override {
        if (!IsBareToken(operatorName) || operatorName.starts_with("Gone")) return false;
        CArchive archive = CArchive::FromText("definition", kDefinition);
        box.filename = operatorName;
        return box.ReadDefinition(archive, "/nonexistent", m_report);
    }

  private:
    Report m_report;
    PlainQueue m_queue;
    COpRegistry m_registry{m_report};
    Site m_site{m_report, Environment(), m_queue};

  public:
    Site& site = m_site;

  private:
    std::map<std::string, std::string> m_variables{{"SIZE", "320,240"}, {"TAVRN_SHADER_TYPE", "surface"}};
    CExportOptions m_exports;
};

}  // namespace tavrin::fuzz
