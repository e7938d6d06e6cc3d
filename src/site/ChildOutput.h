// SPDX-License-Identifier: Apache-2.0
// What children write on its way to the log: neither the way nor the log is without bounds.
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <string>
#include <string_view>

namespace tavrin {

// The brake between those who read from children and who takes the pieces: with so many on the way a reader
// waits, and in the end the child does, whose pipe is full. One for all children of the program.
class OutputBrake {
  public:
    static constexpr size_t kMostPieces = 4096;

    // Any thread: waits for room for a piece, which is then on the way. False if the time is over, or if
    // nobody is to wait any more and there is none.
    bool Take(std::chrono::milliseconds time);
    // A piece has arrived.
    void Give();
    // While it is off nobody waits: the program ends, and takes nothing.
    void SetOff(bool isOff);
    bool IsOff() const;

  private:
    mutable std::mutex m_mutex;
    std::condition_variable m_changed;
    size_t m_underway = 0;
    bool m_isOff = false;
};

// How much of one child's output goes into the log: its beginning, and its last lines. Told apart as the
// pieces come.
class OutputBound {
  public:
    static constexpr size_t kLastBytes = 4096;

    explicit OutputBound(uint64_t mostBytes) : m_most(mostBytes) {}

    // Whether the piece goes on at once. Otherwise it is kept for the end, or left out.
    bool Passes(std::string_view piece);
    void LeaveOut(std::string_view piece);
    // What is to follow at the end of the output: a line that tells how much was left out, and the last
    // lines.
    std::string Rest() const;

    // The same of a text file as it stands; empty if there is none.
    static std::string OfFile(const std::string& path, uint64_t mostBytes);

  private:
    uint64_t m_most;
    uint64_t m_passed = 0;
    uint64_t m_kept = 0;  // bytes that did not pass
    std::string m_last;   // of those
    bool m_isInLine = false;
};

}  // namespace tavrin
