// SPDX-License-Identifier: Apache-2.0
#include "codegen/VariableList.h"

#include <cstring>

namespace tavrin {

namespace {
// Room for a box of a handful of buttons.
constexpr size_t kFirstSlots = 64;
constexpr size_t kFirstEntries = 32;
constexpr size_t kFirstText = 1024;
}  // namespace

uint32_t VariableList::Hash(std::string_view name) {
    if (name.empty()) return 0;
    // Length, first and last eight bytes mixed by a multiplication: names are short, and those that
    // share a long prefix differ at the end.
    uint64_t head = 0;
    uint64_t tail = 0;
    const size_t part = name.size() < 8 ? name.size() : 8;
    std::memcpy(&head, name.data(), part);
    std::memcpy(&tail, name.data() + name.size() - part, part);
    uint64_t mixed = (head ^ (tail << 23 | tail >> 41) ^ name.size()) * 0x9E3779B97F4A7C15ULL;
    mixed ^= mixed >> 29;
    return static_cast<uint32_t>(mixed >> 16);
}

uint32_t VariableList::Put(std::string_view text) {
    const auto start = static_cast<uint32_t>(m_text.size());
    m_text += text;
    return start;
}

size_t VariableList::Slot(std::string_view name) const {
    const size_t mask = m_slots.size() - 1;
    size_t slot = Hash(name) & mask;
    while (m_slots[slot] != kFree && Name(m_slots[slot]) != name) slot = (slot + 1) & mask;
    return slot;
}

void VariableList::Index() const {
    if (m_indexed == m_entries.size()) return;
    if (m_slots.size() < m_entries.size() * 2) {
        size_t count = kFirstSlots;
        while (count < m_entries.size() * 2) count *= 2;
        m_slots.assign(count, kFree);
        m_indexed = 0;
    }
    for (; m_indexed < m_entries.size(); ++m_indexed) {
        uint32_t& slot = m_slots[Slot(Name(m_indexed))];
        if (slot == kFree) slot = static_cast<uint32_t>(m_indexed);  // an earlier one of the name counts
    }
}

uint32_t VariableList::IndexOf(std::string_view name) const {
    if (m_entries.empty()) return kFree;
    Index();
    return m_slots[Slot(name)];
}

void VariableList::Add(std::string_view name, std::string_view value) {
    if (m_entries.empty()) {
        m_text.reserve(kFirstText);
        m_entries.reserve(kFirstEntries);
    }
    const uint32_t nameStart = Put(name);
    const uint32_t valueStart = Put(value);
    m_entries.push_back(
        {nameStart, static_cast<uint32_t>(name.size()), valueStart, static_cast<uint32_t>(value.size())});
}

bool VariableList::Extend(std::string_view name, std::string_view value, std::string_view separator) {
    const uint32_t index = IndexOf(name);
    if (index == kFree) {
        Add(name, value);
        return false;
    }
    Entry& entry = m_entries[index];
    if (entry.valueStart + entry.valueLength != m_text.size()) {
        entry.valueStart = Put(std::string(m_text, entry.valueStart, entry.valueLength));
    }
    Put(separator);
    Put(value);
    entry.valueLength = static_cast<uint32_t>(m_text.size()) - entry.valueStart;
    return true;
}

void VariableList::Clear() {
    m_text.clear();
    m_entries.clear();
    m_slots.clear();
    m_indexed = 0;
}

VariableList::Found VariableList::Find(std::string_view name) const {
    const uint32_t index = IndexOf(name);
    if (index == kFree) return {};
    return {true, Value(index)};
}

std::string_view VariableList::Name(size_t index) const {
    return std::string_view(m_text).substr(m_entries[index].nameStart, m_entries[index].nameLength);
}

std::string_view VariableList::Value(size_t index) const {
    return std::string_view(m_text).substr(m_entries[index].valueStart, m_entries[index].valueLength);
}

}  // namespace tavrin
