// SPDX-License-Identifier: Apache-2.0
// Where outputs that are tied back lead in the end, and those of muted boxes.
#pragma once

#include <unordered_map>

namespace tavrin {

class COpButton;

// Follows tiebacks from box to box, each stretch of the way once: what it has found stays true as long as no
// button, wire or argument of the network changes, so it is made for one generation or one painting.
class TiebackEnds {
  public:
    enum class Kind {
        kInput,    // an input that nothing feeds
        kOutput,   // an output that stands for itself
        kMissing,  // an output whose tieback names no button of its box any more
        kCircle,   // none: the way leads round
    };
    struct End {
        Kind kind = Kind::kCircle;
        const COpButton* button = nullptr;
    };

    // An output that stands for itself is its own end.
    End Of(const COpButton& output);

  private:
    std::unordered_map<const COpButton*, End> m_ends;
};

}  // namespace tavrin
