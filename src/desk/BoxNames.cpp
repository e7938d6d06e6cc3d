// SPDX-License-Identifier: Apache-2.0
#include "desk/BoxNames.h"

namespace tavrin {

BoxNames::BoxNames(CTvDoc& document)
    : m_document(document), m_changes(document.edits.Observe([this](const Change& change) {
          m_isStale = m_isStale || change.HasBoxes();
      })) {}

bool BoxNames::Stands(const std::string& boxTitleWid) {
    if (m_isStale) {
        m_names.clear();
        for (const auto& box : m_document.m_boxes) m_names.insert(box->BoxTitleWid());
        m_isStale = false;
    }
    return m_names.contains(boxTitleWid);
}

}  // namespace tavrin
