// SPDX-License-Identifier: Apache-2.0
#include "InfoLog.h"

#include <gtest/gtest.h>

namespace tavrin::mray {
namespace {

TEST(InfoLog, NamesTheLineInAllKnownForms) {
    EXPECT_EQ(readableLog("0:12(7): error: `a' undeclared\n", "s.frag"),
              "s.frag:12: error: `a' undeclared\n");
    EXPECT_EQ(readableLog("0(12) : error C1: no\n", "s.frag"), "s.frag:12: error C1: no\n");
    EXPECT_EQ(readableLog("ERROR: 0:12: 'a' : no\n", "s.frag"), "s.frag:12: 'a' : no\n");
}

TEST(InfoLog, KeepsOtherLines) {
    EXPECT_EQ(readableLog("error: no main", "s.frag"), "s.frag: error: no main\n");
    EXPECT_EQ(readableLog("3 errors found\n", "s.frag"), "s.frag: 3 errors found\n");
    EXPECT_EQ(readableLog("0:: odd\n0:x: odd\n", "s"), "s: 0:: odd\ns: 0:x: odd\n");
}

TEST(InfoLog, DropsEmptyLinesAndTrailingZeros) {
    EXPECT_EQ(readableLog(std::string("\n \r\n0:1(2): a\n\0", 14), "s"), "s:1: a\n");
    EXPECT_EQ(readableLog("", "s"), "");
}

}  // namespace
}  // namespace tavrin::mray
