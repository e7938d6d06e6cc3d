// SPDX-License-Identifier: Apache-2.0
// The peers of a button, in the order in which those buttons were made, so that whatever walks them gives
// the same result in every run.
#pragma once

#include <algorithm>
#include <cstddef>
#include <vector>

namespace tavrin {

class COpButton;

// Most sets have one member at most, which is held in place: a walk over a network then touches half the
// memory. Larger ones are kept in order, to which a member made last is added cheaply.
class ConnectionSet {
  public:
    void Insert(COpButton& button);
    void Erase(const COpButton& button);
    bool Contains(const COpButton& button) const;

    bool Empty() const { return m_only == nullptr && m_many.empty(); }
    size_t Size() const { return m_many.empty() ? (m_only == nullptr ? 0 : 1) : m_many.size(); }
    COpButton* First() const { return m_many.empty() ? m_only : m_many.front(); }
    COpButton* Last() const { return m_many.empty() ? m_only : m_many.back(); }
    COpButton* const* begin() const { return m_many.empty() ? &m_only : m_many.data(); }
    COpButton* const* end() const { return begin() + Size(); }
    bool operator==(const ConnectionSet& other) const {
        return std::equal(begin(), end(), other.begin(), other.end());
    }

  private:
    COpButton* m_only = nullptr;     // while `m_many` is empty
    std::vector<COpButton*> m_many;  // by serial number
};

}  // namespace tavrin
