// SPDX-License-Identifier: Apache-2.0
// A terminal for programs and streams that behave otherwise on one.
#pragma once

#include <fcntl.h>
#include <gtest/gtest.h>
#include <stdlib.h>
#include <termios.h>
#include <unistd.h>

#include <cerrno>
#include <string>

#include "base/FileDescriptor.h"

namespace tavrin::test {

// What is written to Side() is what the user would see, byte by byte.
class Terminal {
  public:
    Terminal() : m_user(::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC)) {
        EXPECT_TRUE(m_user && ::grantpt(m_user.Get()) == 0 && ::unlockpt(m_user.Get()) == 0);
        m_side = FileDescriptor(::open(::ptsname(m_user.Get()), O_RDWR | O_NOCTTY | O_CLOEXEC));
        EXPECT_TRUE(m_side);
        termios plain{};
        EXPECT_EQ(::tcgetattr(m_side.Get(), &plain), 0);
        ::cfmakeraw(&plain);
        EXPECT_EQ(::tcsetattr(m_side.Get(), TCSANOW, &plain), 0);
    }

    int Side() const { return m_side.Get(); }

    // All that was written, once nobody writes any more. What is more than a terminal holds would have kept
    // its writer waiting.
    std::string Seen() {
        m_side.Close();
        std::string text;
        char piece[4096];
        for (;;) {
            const ssize_t count = ::read(m_user.Get(), piece, sizeof piece);
            if (count < 0 && errno == EINTR) continue;
            if (count <= 0) return text;  // EIO: the other side is closed
            text.append(piece, static_cast<size_t>(count));
        }
    }

  private:
    FileDescriptor m_user;
    FileDescriptor m_side;
};

}  // namespace tavrin::test
