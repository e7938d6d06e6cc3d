// SPDX-License-Identifier: Apache-2.0
// Makes the boxes and the settings of a document from what its file says.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "document/DocumentForm.h"
#include "document/UnknownParts.h"
#include "library/DefinitionTexts.h"

namespace tavrin {

class COpBox;
class COpButton;
class CTvDoc;
class DocumentHost;
class Report;

// Works through the records in the order of the text, selects the library that one names, and reports what it
// meets, the form's own errors among it, as if the text were read meanwhile. It stops where the form does, or
// where a record means nothing in this library; what has been made until then stays in the document. Where
// the site wants placeholders, a box or button that the library does not have stops nothing: it stands in the
// document as the file has it. Used once; document, form and host outlive it.
class DocumentBuilder {
  public:
    DocumentBuilder(CTvDoc& document, const DocumentForm& form, DocumentHost& host);

    // All sections. On success the boxes are in the order of their numbers and the document is unmodified.
    bool Build();
    // The first desk section alone; false also if there is none.
    bool BuildDesk();

  private:
    bool TakeSections();
    bool Take(const VersionRecord&) { return true; }
    bool Take(const LibraryRecord& library);
    bool Take(const MutedRecord& muted);
    bool Take(const FrameRecord& record);
    bool Take(const ToolbarRecord& toolbar);
    bool Take(const DeskRecord& desk);
    bool Take(const RenderOptionsRecord& section);
    bool Take(const ExportOptionsRecord& section);
    bool Take(const HelpRecord& help);

    bool Take(const BoxRecord& box);
    bool Take(const ConnectionRecord& connection);
    bool Take(const DeskSettingRecord& setting);

    // A box, with the inputs of its block in their order where placeholders are wanted.
    struct BuiltBox {
        COpBox* box = nullptr;
        std::vector<COpButton*> inputs;
    };
    bool BuildBox(std::unique_ptr<COpBox> made, const BoxRecord& record);
    bool StandIn(const BoxRecord& record, const std::string& reason);
    std::string WhyUndefined(COpBox& box, const BoxRecord& record);
    COpButton* FindButton(const BuiltBox& built, const ConnectionRecord::End& end, bool isOutput) const;
    std::string PresentName(std::string_view operatorName);
    void ExpectOperators(const DeskRecord& desk);
    void MuteBoxes();
    void ReportErrorsUpTo(size_t place);
    bool Stop(const DocumentRecord& record, const std::string& message);

    CTvDoc& m_document;
    const DocumentForm& m_form;
    DocumentHost& m_host;
    Report& m_report;
    DefinitionTexts m_definitions;
    bool m_expectsOperators = false;  // of the library in use
    size_t m_errorsReported = 0;
    std::optional<UnknownParts> m_unknown;  // where placeholders are wanted
    // For the connections; of a number that the file has twice, the last counts.
    std::unordered_map<int, BuiltBox> m_byWid;
    std::vector<int> m_muted;  // numbers, of boxes that need not be there
};

}  // namespace tavrin
