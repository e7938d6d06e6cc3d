// SPDX-License-Identifier: Apache-2.0
#include "library/TiebackEnds.h"

#include <vector>

#include "library/OpBox.h"
#include "library/OpButton.h"

namespace tavrin {

TiebackEnds::End TiebackEnds::Of(const COpButton& start) {
    std::vector<const COpButton*> way;
    End end{Kind::kOutput, &start};
    while (end.button->PassesThrough()) {
        const COpButton& output = *end.button;
        // Until its end is known, an output is taken for part of a circle: met again on this way, it is one.
        const auto [known, isNew] = m_ends.try_emplace(&output);
        if (!isNew) {
            end = known->second;
            break;
        }
        way.push_back(&output);
        const COpButton* target = output.PassedInput();
        if (target == nullptr) {
            end.kind = Kind::kMissing;
            break;
        }
        // An argument without a name stands for its own variable, which leads on where the target is an
        // output: one that bears the name of a deleted input.
        const bool leadsOn = target->fixedtext.empty() && target->arg != 0 && target->argname.empty();
        const COpButton* feeder = target->Feeder();
        if (feeder == nullptr && !leadsOn) {
            end = {Kind::kInput, target};
            break;
        }
        end.button = feeder == nullptr ? target : feeder;
    }
    for (const COpButton* output : way) m_ends[output] = end;
    return end;
}

}  // namespace tavrin
