// The top level of a document and its smaller sections.
#include "document/DocumentReader.h"

#include "document/TvDoc.h"
#include "site/Site.h"

namespace tavrin {

DocumentReader::DocumentReader(CTvDoc& document, CArchive& archive, DocumentHost& host)
    : TokenParser(archive, host.GetSite().report),
      m_document(document),
      m_host(host),
      m_definitions(host.Registry(), host.GetSite()) {
    for (const auto& box : document.m_boxes) m_byWid[box->wid] = box.get();
}

bool DocumentReader::Stop(const std::string& message) {
    m_report.AlertAt(m_archive, "%s", message.c_str());
    return false;
}

bool DocumentReader::Read() {
    std::string keyword;
    while (ReadToken(m_archive, keyword)) {
        if (!ReadSection(keyword)) return false;
    }
    m_document.SortBoxesByWid();
    m_document.SetModified(false);
    return true;
}

bool DocumentReader::ReadDeskOnly() {
    std::string token;
    while (ReadToken(m_archive, token)) {
        if (token == "opdesk") return ReadOpDesk();
    }
    return false;
}

bool DocumentReader::ReadSection(const std::string& keyword) {
    std::string word;
    if (keyword == "tavrn-version") return Operand(word);
    if (keyword == "tavrn-renderer") {
        // While reading, so that the boxes that follow are looked up in that library.
        if (!Operand(word)) return false;
        m_definitions.Clear();
        if (!m_host.UseLibrary(word)) {
            m_report.AlertAt(m_archive,
                             "the library name \"%s\" leads out of the installation; reading on with %s",
                             word.c_str(), m_host.GetSite().directories.libName.c_str());
        }
        return true;
    }
    if (keyword == "toolbar") return ReadToolbar();
    if (keyword == "opdesk") return ReadOpDesk();
    if (keyword == "renderoptions") return ReadRenderOptions();
    if (keyword == "exportoptions") {
        // Reading goes on behind an unknown option, but what the section held after it is lost.
        m_lostText = !ReadExportOptions(m_archive, m_document.exportOptions, m_report) || m_lostText;
        return true;
    }
    if (keyword == "customshaderhelp") return ReadHelp();
    return true;  // an unknown word, and the words of its block after it
}

bool DocumentReader::ReadToolbar() {
    if (!Expect("{")) return false;
    m_document.toolbar.clear();
    std::string token;
    while (Operand(token)) {
        if (token == "}") return true;
        if (token != "button") return Unexpected();
        if (!Operand(token)) return false;
        FieldScanner scanner(token);
        if (!scanner.Int() || !scanner.Literal("=")) continue;
        if (const auto name = scanner.Word()) m_document.toolbar.emplace_back(*name);
    }
    return false;
}

bool DocumentReader::ReadRenderOptions() {
    if (!Expect("{")) return false;
    std::string token;
    while (Operand(token)) {
        if (token == "}") return true;
        if (token != "setenv") return Unexpected();
        std::string key;
        std::string value;
        if (!Operand(key) || !Operand(value)) return false;
        const auto option = m_document.m_renderOptions.find(key);
        if (option == m_document.m_renderOptions.end()) {
            m_report.LogLine("discarding unknown render option %s", key.c_str());
        } else {
            option->second = value;
        }
    }
    return false;
}

// The markers that protect the text's own indentation and braces come off in the reading.
bool DocumentReader::ReadHelp() {
    if (!Expect("{")) return false;
    std::string_view restOfLine;
    m_archive.ReadLine(restOfLine);
    return ReadTextBlock(m_archive, m_document.customshaderhelp);
}

}  // namespace tavrin
