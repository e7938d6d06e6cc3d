// SPDX-License-Identifier: Apache-2.0
// What stood at each place of a document's history, for walks that go back to it.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <string>

#include "document/EditHistory.h"
#include "document/TvDoc.h"
#include "support/NetworkPrint.h"

namespace tavrin::test {

// The document keeps a history, and outlives this.
class HistoryPrints {
  public:
    // Edits of the act `joins` may go on with the step before; any other that changes something is a step.
    explicit HistoryPrints(const CTvDoc& document, std::string joins = {})
        : m_document(document), m_joins(std::move(joins)) {}

    // An edit has led here from the place `before`. Of several steps of one edit only the last place is
    // known, and what followed `before` has been given up.
    void Note(size_t before) {
        const size_t place = History().Place();
        const std::string now = PrintNetwork(m_document);
        const auto known = m_prints.find(place);
        const bool isKnown = place == before && known != m_prints.end();
        if (isKnown && known->second == now) return;
        if (isKnown) {
            EXPECT_TRUE(place > 0 && History().Name(place - 1) == m_joins)
                << "an edit that is no step; before:\n"
                << known->second << "now:\n"
                << now;
        }
        m_prints.erase(m_prints.upper_bound(std::min(before, place)), m_prints.end());
        m_prints[place] = now;
    }
    // The document has given place to another.
    void Forget() { m_prints.clear(); }
    // An undo or a redo has led here; false for a place that nobody has looked at.
    bool ExpectWhatStoodHere() const {
        const auto known = m_prints.find(History().Place());
        if (known == m_prints.end()) return false;
        EXPECT_EQ(PrintNetwork(m_document), known->second) << "at place " << History().Place();
        return true;
    }

  private:
    const EditHistory& History() const { return *m_document.History(); }

    const CTvDoc& m_document;
    std::string m_joins;
    std::map<size_t, std::string> m_prints;
};

}  // namespace tavrin::test
