// SPDX-License-Identifier: Apache-2.0
// The table in which a preprocessor tells where its lines come from.
#include "library/SourceLines.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tavrin {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kTable =
    "#source lines\n#file /lib/menu/0100.Noise\n#file /lib/include/a b.inc\n#line 1 1 4\n#line 3 2 1\n#line "
    "5 1 9\n";

std::string PlaceOf(const SourceLines& lines, int line) {
    const auto place = lines.Find(line);
    return place ? place->file + ":" + std::to_string(place->line) : "nowhere";
}

TEST(SourceLines, ALineComesFromTheRunThatItStandsIn) {
    const SourceLines lines(kTable);
    EXPECT_THAT(lines.Files(), ElementsAre("/lib/menu/0100.Noise", "/lib/include/a b.inc"));
    EXPECT_EQ(PlaceOf(lines, 1), "/lib/menu/0100.Noise:4");
    EXPECT_EQ(PlaceOf(lines, 2), "/lib/menu/0100.Noise:5");
    EXPECT_EQ(PlaceOf(lines, 3), "/lib/include/a b.inc:1");
    EXPECT_EQ(PlaceOf(lines, 4), "/lib/include/a b.inc:2");
    EXPECT_EQ(PlaceOf(lines, 70), "/lib/menu/0100.Noise:74");
}

TEST(SourceLines, WithoutATableNothingIsKnown) {
    EXPECT_EQ(PlaceOf(SourceLines(""), 1), "nowhere");
    EXPECT_THAT(SourceLines("").Files(), IsEmpty());
}

TEST(SourceLines, WhatATableDoesNotTellIsNotGuessed) {
    EXPECT_EQ(PlaceOf(SourceLines("#source lines\n#file /a\n#line 3 1 1\n"), 2), "nowhere");
    for (const char* line :
         {"1 2 1", "1 1", "1 1 1 1", "1 1 0", "1 1 2147483647", "1 1 99999999999", "1  1 1"})
        EXPECT_EQ(PlaceOf(SourceLines(std::string("#file /a\n#line ") + line + "\n"), 1), "nowhere") << line;
}

std::string DefinitionIn(const std::string& text) { return text.substr(0, EndOfDefinition(text)); }

TEST(SourceLines, TheTableIsNoPartOfTheDefinition) {
    EXPECT_EQ(DefinitionIn(std::string("size 1 2\n") + kTable), "size 1 2\n");
    EXPECT_EQ(DefinitionIn(kTable), "");
    EXPECT_EQ(DefinitionIn(std::string("x\n") + kTable + kTable), std::string("x\n") + kTable);
}

TEST(SourceLines, CommentsThatLookAlikeAreTheAuthors) {
    for (const char* text :
         {"", "\n", "x", "#source lines\n", "x\n#source lines\n", "#line 1 1 1\n",
          "x #source lines\n#file a\n", "#source lines\nx\n#file a\n", "#source lines\n#file \n",
          "#source lines\n#file a", "#source lines\n#file a\n\n", "#source lines\n#line \n",
          "#source lines\n#line up the wires\n", "#source lines\n#line 1 of 3\n"}) {
        EXPECT_EQ(DefinitionIn(text), text);
    }
}

}  // namespace
}  // namespace tavrin
