#include "codegen/VariableList.h"

#include <cstring>

namespace tavrin {

namespace {
constexpr size_t kFirstSlots = 32;
}

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

void VariableList::Grow() {
    const std::vector<uint32_t> old = std::move(m_slots);
    m_slots.assign(old.empty() ? kFirstSlots : old.size() * 2, kFree);
    for (const uint32_t index : old) {
        if (index != kFree) m_slots[Slot(Name(index))] = index;
    }
}

void VariableList::Add(std::string_view name, std::string_view value) {
    if (m_used * 2 >= m_slots.size()) Grow();
    const auto index = static_cast<uint32_t>(m_entries.size());
    const size_t slot = Slot(name);
    const uint32_t nameStart = Put(name);
    const uint32_t valueStart = Put(value);
    m_entries.push_back({nameStart, static_cast<uint32_t>(name.size()), valueStart,
                         static_cast<uint32_t>(value.size())});
    if (m_slots[slot] != kFree) return;  // an earlier variable of the name counts
    m_slots[slot] = index;
    ++m_used;
}

bool VariableList::Extend(std::string_view name, std::string_view value, std::string_view separator) {
    const size_t slot = m_slots.empty() ? 0 : Slot(name);
    if (m_slots.empty() || m_slots[slot] == kFree) {
        Add(name, value);
        return false;
    }
    Entry& entry = m_entries[m_slots[slot]];
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
    m_used = 0;
}

VariableList::Found VariableList::Find(std::string_view name) const {
    if (m_slots.empty()) return {};
    const uint32_t index = m_slots[Slot(name)];
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
