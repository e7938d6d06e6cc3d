// SPDX-License-Identifier: Apache-2.0
// What the names of generated code are made from. Whoever asks for names changes nothing of the network.
#pragma once

#include <cstdint>
#include <unordered_map>

#include "codegen/Mex.h"

namespace tavrin {

class COpBox;
class Report;
class TiebackEnds;
class TypeTables;

// The macro variables with which the fixed values of boxes are expanded for those downstream. Each generation
// prepares its own; who shows names between generations goes by what the last one has left.
class PreparedVariables {
  public:
    // First pass of a generation, to be finished on all boxes before the second. Fixed values alone read the
    // result, so boxes without one can be left out. What stood here for the box is replaced.
    void Prepare(const COpBox& box, const TypeTables& types);

    // The expander with the variables of the box: those prepared, else those that its definition sets.
    const CMex& Of(const COpBox& box) const;

    // Takes over what a later generation has prepared, and forgets boxes that are no more. A box that the
    // later one had no need of keeps what it has.
    void Update(PreparedVariables&& later);
    // How many boxes stand here.
    size_t Size() const { return m_entries.size(); }

  private:
    struct Entry {
        const COpBox* box;
        CMex expander;
    };
    std::unordered_map<uint64_t, Entry> m_entries;  // by the box's serial number, which never comes again
};

// What a name is asked for with. All outlive the asking.
struct NameSource {
    const PreparedVariables& variables;
    // Is alerted of an output that has no name, because its tieback leads nowhere; null where nobody is to be
    // told, as while drawing.
    Report* report = nullptr;
    // Remembers the ends of tiebacks, for who asks for many names while nothing of the network changes; null
    // to follow each anew.
    TiebackEnds* ends = nullptr;
};

}  // namespace tavrin
