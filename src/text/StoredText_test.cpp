// SPDX-License-Identifier: Apache-2.0
#include "text/StoredText.h"

#include <gtest/gtest.h>

#include "support/TestSite.h"
#include "text/Tokens.h"

namespace tavrin {
namespace {

const std::string_view kOdd[] = {"",   " ",   "a b",  "a\tb", "a\rb",  "a\nb",      "a\r\nb", "a\vb",
                                 "#",  "a#b", "\"",   "a\"b", "\"a\"", "\\",        "a\\",    "a\\b",
                                 " a", "a ",  "\n\n", "\xa0", "\x01",  "\xc3\xa9#", "{",      "}"};

TEST(StoredText, ABareTokenIsReadAsOneTokenAndAsOneWord) {
    for (const char* text :
         {"a", "a.b", "a,b", "{", "}", ">", "\xc3\xa9", "\xff", "\x01", "generic:m", "->"}) {
        EXPECT_TRUE(IsBareToken(text)) << text;
    }
    for (const char* text : {"", " ", "a b", " a", "a ", "a\tb", "a\nb", "a\rb", "a\vb", "a\fb", "#", "a#b",
                             "\"", "a\"", "\\", "a\\b"}) {
        EXPECT_FALSE(IsBareToken(text)) << text;
    }
}

TEST(StoredText, ATokenTextComesBackWhateverItHolds) {
    for (const std::string_view text : kOdd) {
        CArchive archive = test::ArchiveOf(TokenText(text) + "\r\nnext");
        std::string token = "none";
        EXPECT_TRUE(ReadToken(archive, token)) << text;
        EXPECT_EQ(token, text);
        EXPECT_TRUE(ReadToken(archive, token)) << text;
        EXPECT_EQ(token, "next") << text;
    }
    EXPECT_EQ(TokenText("plain"), "plain");
}

TEST(StoredText, OneLineHasABlankForEachLineBreak) {
    EXPECT_EQ(OneLine("a\nb\rc\r\nd\r\re\n\nf"), "a b c d  e  f");
    EXPECT_EQ(OneLine("\r\n"), " ");
    EXPECT_EQ(OneLine("\r"), " ");
    EXPECT_EQ(OneLine(""), "");
    EXPECT_EQ(OneLine(" as it is\t\v"), " as it is\t\v");
}

}  // namespace
}  // namespace tavrin
