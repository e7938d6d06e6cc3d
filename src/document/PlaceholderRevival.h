// SPDX-License-Identifier: Apache-2.0
// Makes real boxes of placeholders.
#pragma once

#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "library/DefinitionTexts.h"
#include "library/OpBox.h"

namespace tavrin {

class DocumentHost;

// The box that can take a placeholder's place: its number, its place on the desk, and all that its block
// says.
struct RevivedBox {
    std::unique_ptr<COpBox> box;
    // For each of the placeholder's buttons, in their order, the one of the new box; null for one that
    // neither the block nor the operator has. What only the block has is a stray button.
    std::vector<COpButton*> inputs;
    std::vector<COpButton*> outputs;
    std::vector<std::string> misfits;  // what does not fit any more, in words
};

// For one look at a network after the operators were read anew. Operators that cannot be had are asked for
// once.
class PlaceholderRevival {
  public:
    explicit PlaceholderRevival(DocumentHost& host);

    // Nothing while there is no such operator; of one that is there and cannot be read the log tells why. The
    // placeholder stays as it is.
    std::optional<RevivedBox> Make(const COpBox& placeholder);

  private:
    bool Define(COpBox& box, const std::string& operatorName);

    DocumentHost& m_host;
    DefinitionTexts m_definitions;
    std::set<std::string> m_failed;  // names in lower case
};

}  // namespace tavrin
