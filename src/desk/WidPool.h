// SPDX-License-Identifier: Apache-2.0
// The numbers that boxes carry on the desk.
#pragma once

#include <map>

namespace tavrin {

// Hands out the smallest free number, from 1 up. A file may hold a number twice, so numbers are counted.
class WidPool {
  public:
    int Next() {
        int wid = m_firstFree;
        for (auto used = m_used.lower_bound(wid); used != m_used.end() && used->first == wid; ++used) ++wid;
        m_used[wid] = 1;
        m_firstFree = wid + 1;
        return wid;
    }

    void Add(int wid) { ++m_used[wid]; }

    void Remove(int wid) {
        const auto used = m_used.find(wid);
        if (used == m_used.end() || --used->second > 0) return;
        m_used.erase(used);
        if (wid > 0 && wid < m_firstFree) m_firstFree = wid;
    }

    void Clear() {
        m_used.clear();
        m_firstFree = 1;
    }

  private:
    std::map<int, int> m_used;  // number, how often
    int m_firstFree = 1;        // every number below is in use
};

}  // namespace tavrin
