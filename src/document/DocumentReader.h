// The reader of document files. It is deliberately no mirror of the writer: sections may come in any
// order, indentation and blank lines mean nothing, and unknown words between sections are passed over.
#pragma once

#include <set>
#include <string>
#include <unordered_map>

#include "library/DefinitionTexts.h"
#include "text/TokenParser.h"

namespace tavrin {

class COpBox;
class COpButton;
class COpValue;
class CTvDoc;
class DocumentHost;

// Reads one file into one document. It stops at the first error that its format calls an end, alerts it
// with its place, and leaves in the document what was read. Used once.
class DocumentReader : private TokenParser {
  public:
    DocumentReader(CTvDoc& document, CArchive& archive, DocumentHost& host);

    // All sections. On success the boxes are in the order of their numbers and the document is unmodified.
    bool Read();
    // Something of the file was passed over after an error, though reading went on.
    bool HasLostText() const { return m_lostText; }
    // The boxes and connections alone; false also if the file has none.
    bool ReadDeskOnly();

  private:
    bool ReadSection(const std::string& keyword);
    bool ReadToolbar();
    bool ReadRenderOptions();
    bool ReadHelp();

    void ExpectOperators();
    bool ReadOpDesk();
    bool ReadDeskClause(const std::string& keyword);
    bool ReadOpBox();
    bool ReadBoxClause(COpBox& box, const std::string& keyword);
    bool ReadOpBoxButton(COpBox& box, const std::string& kind);
    COpButton* FindInput(COpBox& box, const std::string& kind, const std::string& name,
                         const std::string& fullName);
    void PassToTwin(const COpBox& box);
    COpButton* NextOutput(COpBox& box, const std::string& kind, const std::string& name);
    bool ReadButtonBlock(COpButton& button);
    bool ReadButtonClause(COpButton& button, const std::string& keyword);
    bool ReadValue(COpButton& button, COpValue& value);
    bool ReadGeneric(COpButton& button, const std::string& keyword);
    void ChooseCast(COpButton& button, const std::string& castName);

    bool ReadConnects();
    bool ReadConnection(const std::string& source);
    bool ScanEnd(const std::string& text, int& wid, int& position);
    bool Stop(const std::string& message);

    CTvDoc& m_document;
    DocumentHost& m_host;
    bool m_lostText = false;
    DefinitionTexts m_definitions;
    bool m_hasLookedAhead = false;  // for the operators to come
    // State of the box block at work.
    size_t m_inputCursor = 0;
    size_t m_outputCursor = 0;
    const COpButton* m_inputRead = nullptr;  // the input whose block was read last
    std::set<std::string> m_namesSeen;
    // Boxes by number, for the connections; of a number that the file has twice, the last counts.
    std::unordered_map<int, COpBox*> m_byWid;
};

}  // namespace tavrin
