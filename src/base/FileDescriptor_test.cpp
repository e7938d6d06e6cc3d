// SPDX-License-Identifier: Apache-2.0
#include "base/FileDescriptor.h"

#include <fcntl.h>
#include <gtest/gtest.h>

namespace tavrin {
namespace {

int OpenNull() { return ::open("/dev/null", O_RDONLY | O_CLOEXEC); }
bool IsOpen(int number) { return ::fcntl(number, F_GETFD) >= 0; }

TEST(FileDescriptor, ClosesWhenItsOwnerGoes) {
    int number = -1;
    {
        const FileDescriptor file(OpenNull());
        number = file.Get();
        ASSERT_TRUE(IsOpen(number));
    }
    EXPECT_FALSE(IsOpen(number));
}

TEST(FileDescriptor, AnEmptyOneIsFalse) {
    EXPECT_FALSE(FileDescriptor());
    EXPECT_FALSE(FileDescriptor(-1));
    EXPECT_TRUE(FileDescriptor(OpenNull()));
}

TEST(FileDescriptor, MovingPassesTheOwnership) {
    FileDescriptor first(OpenNull());
    const int number = first.Get();
    FileDescriptor second(std::move(first));
    EXPECT_EQ(second.Get(), number);
    EXPECT_TRUE(IsOpen(number));
}

TEST(FileDescriptor, WhatAnAssignmentReplacesIsClosed) {
    FileDescriptor first(OpenNull());
    FileDescriptor second(OpenNull());
    const int replaced = first.Get();
    const int kept = second.Get();
    first = std::move(second);
    EXPECT_FALSE(IsOpen(replaced));
    EXPECT_TRUE(IsOpen(kept));
    EXPECT_EQ(first.Get(), kept);
}

TEST(FileDescriptor, AReleasedOneStaysOpen) {
    FileDescriptor file(OpenNull());
    const int number = file.Release();
    EXPECT_FALSE(file);
    file.Close();
    EXPECT_TRUE(IsOpen(number));
    ::close(number);
}

TEST(FileDescriptor, ClosingTwiceClosesOnce) {
    FileDescriptor file(OpenNull());
    const int number = file.Get();
    file.Close();
    const FileDescriptor other(OpenNull());  // takes the freed number
    ASSERT_EQ(other.Get(), number);
    file.Close();
    EXPECT_TRUE(IsOpen(number));
}

}  // namespace
}  // namespace tavrin
