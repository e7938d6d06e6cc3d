// SPDX-License-Identifier: Apache-2.0
#include "Shelf.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

namespace tavrin::mray {
namespace {

struct Word {
    std::string text;
    [[nodiscard]] const std::string& key() const { return text; }
};

TEST(Shelf, KeepsWhatWasUsedLast) {
    Shelf<Word> shelf(2);
    const auto ask = [&shelf](const std::string& text) {
        return shelf.find(text, [&text](auto& all) { all.push_front({text}); }).second;
    };
    EXPECT_TRUE(ask("a"));
    EXPECT_TRUE(ask("b"));
    EXPECT_FALSE(ask("a"));
    EXPECT_TRUE(ask("c"));  // b goes
    EXPECT_EQ(shelf.size(), 2U);
    EXPECT_FALSE(ask("a"));
    EXPECT_FALSE(ask("c"));
    EXPECT_TRUE(ask("b"));
    EXPECT_EQ(shelf.size(), 2U);
}

TEST(Shelf, WhatCannotBeMadeTakesNoRoom) {
    Shelf<Word> shelf(1);
    shelf.find(std::string("a"), [](auto& all) { all.push_front({"a"}); });
    EXPECT_THROW(shelf.find(std::string("b"), [](auto&) { throw std::runtime_error("no"); }),
                 std::runtime_error);
    EXPECT_FALSE(shelf.find(std::string("a"), [](auto&) { FAIL(); }).second);
}

}  // namespace
}  // namespace tavrin::mray
