// SPDX-License-Identifier: Apache-2.0
// The boxes of a network by title and number, such as "Noise_3".
#pragma once

#include <string>
#include <unordered_set>

#include "document/TvDoc.h"

namespace tavrin {

// For who asks often, about text that is in view. Looks at the network when it is asked first behind a change
// of it; the document outlives the questions.
class BoxNames {
  public:
    explicit BoxNames(CTvDoc& document);

    bool Stands(const std::string& boxTitleWid);

  private:
    const CTvDoc& m_document;
    std::unordered_set<std::string> m_names;
    bool m_isStale = true;
    Edits::Subscription m_changes;
};

}  // namespace tavrin
