// SPDX-License-Identifier: Apache-2.0
// The writer of document files: one fixed layout, to the byte.
#pragma once

#include <string>

namespace tavrin {

class COpBox;
class CTvDoc;
class DocumentHost;

// The document's text. Boxes are written in the order of the list. A render option whose name could not be
// read back is left out, and a log line names it.
std::string WriteDocument(const CTvDoc& document, DocumentHost& host);

// The same text in parts, for who keeps them: `beforeBoxes`, each box, `beforeWires`, the wires that leave
// each box, `behindWires`. Nothing is logged.
struct DocumentFrame {
    std::string beforeBoxes;
    std::string beforeWires;
    std::string behindWires;
};
DocumentFrame WriteDocumentFrame(const CTvDoc& document, DocumentHost& host);
std::string WriteBox(const COpBox& box);
std::string WriteWires(const COpBox& box);

}  // namespace tavrin
