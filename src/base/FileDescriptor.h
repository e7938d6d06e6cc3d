// SPDX-License-Identifier: Apache-2.0
// A file descriptor that is closed when its owner goes.
#pragma once

#include <unistd.h>

#include <utility>

namespace tavrin {

// Owns one descriptor, which its destructor closes; -1 is none. Moves, and does not copy.
class FileDescriptor {
  public:
    FileDescriptor() = default;
    explicit FileDescriptor(int number) : m_number(number) {}
    FileDescriptor(FileDescriptor&& other) noexcept : m_number(other.Release()) {}
    FileDescriptor& operator=(FileDescriptor&& other) noexcept {
        if (this != &other) {
            Close();
            m_number = other.Release();
        }
        return *this;
    }
    ~FileDescriptor() { Close(); }

    explicit operator bool() const { return m_number >= 0; }
    int Get() const { return m_number; }
    int Release() { return std::exchange(m_number, -1); }
    void Close() {
        if (m_number >= 0) ::close(std::exchange(m_number, -1));
    }

  private:
    int m_number = -1;
};

}  // namespace tavrin
