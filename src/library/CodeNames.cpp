// SPDX-License-Identifier: Apache-2.0
#include "library/CodeNames.h"

#include "library/OpBox.h"

namespace tavrin {

void PreparedVariables::Prepare(const COpBox& box, const TypeTables& types) {
    CMex expander;
    expander.Tokens() = box.codegen.Mex().Tokens();
    box.PrepareVariables(expander, types);
    m_entries.insert_or_assign(box.Serial(), Entry{&box, std::move(expander)});
}

const CMex& PreparedVariables::Of(const COpBox& box) const {
    const auto found = m_entries.find(box.Serial());
    return found == m_entries.end() ? box.codegen.Mex() : found->second.expander;
}

void PreparedVariables::Update(PreparedVariables&& later) {
    later.m_entries.merge(m_entries);
    m_entries = std::move(later.m_entries);
    // A new box may lie where an old one did.
    std::erase_if(m_entries, [](const auto& entry) {
        const COpBox* box = entry.second.box;
        return !COpBox::IsLive(box) || box->Serial() != entry.first;
    });
}

}  // namespace tavrin
