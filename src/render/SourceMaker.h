// SPDX-License-Identifier: Apache-2.0
// The source of the network as it stands, for each type of shader that is looked at.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "render/LineMap.h"
#include "site/LineChild.h"

namespace tavrin {

class CCodeGen;
class CTvDoc;
class RenderSession;
struct Site;

// Which source is meant. A plain value.
struct SourceKind {
    bool isFiltered = true;  // else as it is before the library's filter script
    std::string type;        // of the shader; empty for what the document's options say

    auto operator<=>(const SourceKind&) const = default;
};

// A plain value.
struct MadeSource {
    std::string text;
    LineMap lines;                   // where those of the text come from
    std::vector<std::string> notes;  // what was said of it, a line each
    bool isThere = false;            // else the notes tell why there is none
};

// Owned by who shows the sources. The network is generated as for a render; the filter script runs in a
// directory of its own for each type, beside all renders and without being waited for. The document, its type
// and what renders find in the work directory stay as they are, and nothing of it comes into the log. Main
// thread only.
class SourceMaker {
  public:
    // All of it outlives this.
    struct Needs {
        const CTvDoc& document;
        RenderSession& session;
        Site& site;
        const CCodeGen& siteCodeGen;
        std::function<void(const SourceKind&)> made;  // there is another source of this kind
    };
    explicit SourceMaker(Needs needs);
    ~SourceMaker();

    // Makes these, of the network as it is now. What is not among them is forgotten, and what would be the
    // same again is left as it is.
    void Make(const std::vector<SourceKind>& kinds);
    // What was made may be out of date though the network is not: the scripts are others. Those that run are
    // stopped, and what was made stays until the next Make.
    void Forget();

    // The last one; null for none yet.
    const MadeSource* Find(const SourceKind& kind) const;
    bool IsAtWork(const SourceKind& kind) const;

  private:
    struct Given;
    struct Column;

    bool Generate(bool forScripts);
    void Begin(const SourceKind& kind, Column& column);
    bool WriteFiles(const Given& given, const std::string& directory, std::string& error) const;
    void OnEnd(SourceKind kind, const LineEnd& end);
    LineMap MapOf(const std::string& text) const;
    void Tell(const SourceKind& kind, Column& column, MadeSource made);
    void Stop(Column& column);
    void ClearAway();
    std::string OptionsText(const std::string& type) const;

    Needs m_needs;
    std::unique_ptr<MadeSource> m_generated;
    std::string m_argInfo;
    std::string m_lineMap;  // as the script reads it
    std::string m_hints;
    std::map<SourceKind, std::unique_ptr<Column>> m_columns;
    std::vector<std::string> m_left;  // directories that nobody needs any more
    uint64_t m_lastRun = 0;
};

}  // namespace tavrin
