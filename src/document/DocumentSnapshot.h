// SPDX-License-Identifier: Apache-2.0
// The text of a document that is being worked on, at hand at any time for little.
#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "document/Edits.h"

namespace tavrin {

class COpBox;
class DocumentHost;

// Keeps the texts of all boxes and of their wires, and writes anew only those that edits have touched: the
// first text of a long document can be made in slices, and later ones cost what was done since. Main thread
// only; document and host outlive it.
class DocumentSnapshot {
  public:
    // In this order they are the text. They never change, and may go to another thread.
    using Pieces = std::vector<std::shared_ptr<const std::string>>;

    DocumentSnapshot(CTvDoc& document, DocumentHost& host);
    DocumentSnapshot(const DocumentSnapshot&) = delete;
    DocumentSnapshot& operator=(const DocumentSnapshot&) = delete;

    // Writes texts anew for about this time, one at least; true if none is left. Edits may come in between.
    bool Advance(std::chrono::microseconds time);
    // The text that CTvDoc::Snapshot gives. Writes what is left.
    Pieces Take();
    // Nothing was edited since Take, and the desk is seen as it was then.
    bool IsUpToDate() const;

  private:
    struct Texts {
        std::shared_ptr<const std::string> box;
        std::shared_ptr<const std::string> wires;
    };
    struct View {
        float offset[2];
        float zoom;
        bool operator==(const View&) const = default;
    };

    void OnChange(const Change& change);
    void ForgetWithWires(const COpBox& box);
    static void Refresh(const COpBox& box, Texts& texts);
    View PresentView() const;

    CTvDoc& m_document;
    DocumentHost& m_host;
    std::unordered_map<uint64_t, Texts> m_texts;  // by the boxes' serial numbers
    bool m_anyLeft = true;                        // a text may be missing
    bool m_edited = true;
    View m_view{};
    Edits::Subscription m_changes;
};

std::string TextOf(const DocumentSnapshot::Pieces& pieces);

}  // namespace tavrin
