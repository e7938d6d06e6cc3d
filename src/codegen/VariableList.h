// SPDX-License-Identifier: Apache-2.0
// The variables of a macro expander: pairs of name and value in order of definition, of which the first
// of a name is the one that counts.
//
// All text lies in one buffer with a hash index over it, because a list is built and copied for every box
// at every save: neither costs an allocation for each variable. The index is made at the first look-up, so
// a list that is only built and copied does without.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tavrin {

// A plain value of its expander. Lookup costs no search through all of them.
class VariableList {
  public:
    void Add(std::string_view name, std::string_view value);
    bool Extend(std::string_view name, std::string_view value, std::string_view separator);
    void Clear();

    // The first value of the name, if there is one; a value may be empty. The text is valid until
    // the list changes.
    struct Found {
        bool found = false;
        std::string_view value;
    };
    Found Find(std::string_view name) const;

    size_t Size() const { return m_entries.size(); }
    std::string_view Name(size_t index) const;
    std::string_view Value(size_t index) const;

  private:
    struct Entry {
        uint32_t nameStart;
        uint32_t nameLength;
        uint32_t valueStart;
        uint32_t valueLength;
    };
    static constexpr uint32_t kFree = UINT32_MAX;

    static uint32_t Hash(std::string_view name);
    uint32_t Put(std::string_view text);
    // The slot in which the name stands, or the free one where it belongs.
    size_t Slot(std::string_view name) const;
    // Brings the index up to the last entry.
    void Index() const;
    // The entry that counts for the name, kFree if there is none.
    uint32_t IndexOf(std::string_view name) const;

    std::string m_text;
    std::vector<Entry> m_entries;
    mutable std::vector<uint32_t> m_slots;  // a power of two of them; an entry's index or kFree
    mutable size_t m_indexed = 0;           // entries that the index knows
};

}  // namespace tavrin
