// SPDX-License-Identifier: Apache-2.0
#include "ui/log/LogBuffer.h"

#include <algorithm>

namespace tavrin {

namespace {

constexpr char kBell = '\a';

// How much more than needed goes when what waits exceeds the limit: a part of the limit, so that the search
// for a line end and the moving down are rare however small the pieces are.
constexpr size_t kDroppedShare = 16;

// The longest that a character's bytes get.
constexpr size_t kLongestSequence = 4;

bool ContinuesSequence(char byte) { return (byte & 0xC0) == 0x80; }

// How many bytes the character has that begins with this one; 1 for what begins none.
size_t SequenceLength(char first) {
    const auto byte = static_cast<unsigned char>(first);
    if (byte >= 0xF0 && byte < 0xF5) return 4;
    if (byte >= 0xE0 && byte < 0xF0) return 3;
    return byte >= 0xC2 && byte < 0xE0 ? 2 : 1;
}

}  // namespace

void LogBuffer::Append(std::string_view piece) {
    size_t chunk = 0;
    for (size_t i = 0; i < piece.size(); ++i) {
        const char byte = piece[i];
        if (byte != kBell && byte != '\r') continue;
        m_waiting.append(piece, chunk, i - chunk);
        chunk = i + 1;
        if (byte == kBell) {
            m_bell = true;
        } else if (chunk == piece.size() || piece[chunk] != '\n') {
            EraseLastLine();
        }
    }
    m_waiting.append(piece, chunk);
    if (m_waiting.size() - m_start > m_limit) DropOldestLines();
}

void LogBuffer::Clear() {
    m_waiting.clear();
    m_start = 0;
    m_eraseText = m_eraseLastLine = m_bell = false;
}

void LogBuffer::EraseLastLine() {
    const size_t lineEnd = m_waiting.rfind('\n');
    if (lineEnd != std::string::npos && lineEnd >= m_start) {
        m_waiting.resize(lineEnd + 1);
        return;
    }
    m_waiting.clear();
    m_start = 0;
    m_eraseLastLine = true;
}

void LogBuffer::DropOldestLines() {
    m_eraseText = true;
    const size_t keptFrom = m_waiting.size() - (m_limit - m_limit / kDroppedShare);
    const size_t lineEnd = m_waiting.find('\n', keptFrom - 1);
    if (lineEnd != std::string::npos && lineEnd + 1 < m_waiting.size()) {
        m_start = lineEnd + 1;
    } else {
        // One line alone exceeds the limit: its end is kept.
        m_start = keptFrom;
        while (m_start < m_waiting.size() && ContinuesSequence(m_waiting[m_start])) ++m_start;
    }
    // Moved down only when as much is gone as there is to move, so that each byte moves once at most.
    if (m_start >= m_limit) {
        m_waiting.erase(0, m_start);
        m_start = 0;
    }
}

// The end of the whole characters before `end`.
size_t LogBuffer::Ready(size_t end) const {
    const size_t lookBack = std::min(kLongestSequence - 1, end - m_start);
    for (size_t back = 1; back <= lookBack; ++back) {
        const char byte = m_waiting[end - back];
        if (ContinuesSequence(byte)) continue;
        return SequenceLength(byte) > back ? end - back : end;
    }
    return end;
}

LogBuffer::Step LogBuffer::Take(size_t most) {
    Step step;
    step.eraseText = m_eraseText;
    step.eraseLastLine = m_eraseLastLine;
    m_eraseText = m_eraseLastLine = false;
    const size_t end = Ready(std::min(m_waiting.size(), m_start + most));
    step.text.assign(m_waiting, m_start, end - m_start);
    m_start = end;
    if (m_start == m_waiting.size()) {
        m_waiting.clear();
        m_start = 0;
    }
    return step;
}

bool LogBuffer::TakeBell() {
    const bool bell = m_bell;
    m_bell = false;
    return bell;
}

}  // namespace tavrin
