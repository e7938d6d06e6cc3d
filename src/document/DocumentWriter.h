// SPDX-License-Identifier: Apache-2.0
// The writer of document files: one fixed layout, to the byte.
#pragma once

#include <string>

namespace tavrin {

class CTvDoc;
class DocumentHost;

// The document's text. Boxes are written in the order of the list. A render option whose name could not be
// read back is left out, and a log line names it.
std::string WriteDocument(const CTvDoc& document, DocumentHost& host);

}  // namespace tavrin
