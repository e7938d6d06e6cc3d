// SPDX-License-Identifier: Apache-2.0
// What a network is and what it generates, for comparing: of a file of the render history, or of the desk.
#pragma once

#include <string>
#include <vector>

#include "document/TvDoc.h"
#include "render/NetworkPicture.h"

namespace tavrin {

class CCodeGen;

// A plain value, of which nothing leads back to a document.
struct HistoryDocument {
    NetworkPicture network;
    // As the library makes it now, before its filter script, and what that is told of the arguments, whose
    // values stand nowhere else. Lines end in line feeds.
    std::string source;
    // What the user has to know of it, a line each: that the file could not be read, or not all of it, what
    // stands there as a placeholder, what generation had to say.
    std::vector<std::string> notes;
    bool isRead = false;  // there is something to compare
};

// Reads such documents with the library in use. A file is read into a document of its own: nothing of the
// desk, its document and its library changes, and nothing is alerted or logged, but that a file cannot be
// read at all, which is logged. All that was to be said stands in the notes. Of a file of another library the
// boxes are placeholders, and there is no source.
class HistoryReader {
  public:
    // Both outlive it.
    HistoryReader(DocumentHost& host, const CCodeGen& siteCodeGen) : m_host(host), m_codeGen(siteCodeGen) {}

    // Starts the preprocessor once for each operator that the file names.
    HistoryDocument Read(const std::string& path, const std::string& shaderName);
    // Options that documents do not hold are left out.
    NetworkPicture PictureOf(const CTvDoc& document);
    // What it generates, which the document does not come to know; what is said of it goes to the notes.
    std::string SourceOf(const CTvDoc& document, const std::string& shaderName,
                         std::vector<std::string>& notes);

  private:
    DocumentHost& m_host;
    const CCodeGen& m_codeGen;
};

}  // namespace tavrin
