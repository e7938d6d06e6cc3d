// SPDX-License-Identifier: Apache-2.0
#include "app/RecentFiles.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/Paths.h"
#include "base/Profile.h"

namespace tavrin {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class RecentFilesTest : public testing::Test {
  protected:
    std::string Stored(int number) {
        return profile.GetText("Recent File List/File" + std::to_string(number));
    }

    MemoryProfile profile;
    RecentFiles recent{profile};
};

TEST_F(RecentFilesTest, TheNewestFourAreKept) {
    EXPECT_THAT(recent.List(), IsEmpty());
    for (const char* path : {"/a", "/b", "/c", "/d", "/e"}) recent.Add(path);
    EXPECT_THAT(recent.List(), ElementsAre("/e", "/d", "/c", "/b"));
    EXPECT_EQ(Stored(1), "/e");
    EXPECT_EQ(Stored(4), "/b");
    EXPECT_EQ(Stored(5), "");
}

TEST_F(RecentFilesTest, AFileThatIsOpenedAgainComesToTheFront) {
    for (const char* path : {"/x/a", "/x/b", "/x/../x/./a"}) recent.Add(path);
    EXPECT_THAT(recent.List(), ElementsAre("/x/a", "/x/b"));
}

TEST_F(RecentFilesTest, ARelativePathIsKeptInFull) {
    recent.Add("a.tvn");
    recent.Add(FullPath("a.tvn"));
    EXPECT_THAT(recent.List(), ElementsAre(FullPath("a.tvn")));
}

TEST_F(RecentFilesTest, ARemovedFileLeavesNoGap) {
    for (const char* path : {"/a", "/b", "/c"}) recent.Add(path);
    recent.Remove("/x/../b");
    EXPECT_THAT(recent.List(), ElementsAre("/c", "/a"));
    EXPECT_EQ(Stored(2), "/a");
    EXPECT_EQ(Stored(3), "");
    recent.Remove("/never");
    EXPECT_THAT(recent.List(), ElementsAre("/c", "/a"));
}

TEST_F(RecentFilesTest, NamesOfAnyBytesComeBack) {
    std::string path = "/";
    for (int byte = 1; byte < 256; ++byte) {
        if (byte != '/' && byte != '\\') path += static_cast<char>(byte);
    }
    recent.Add(path);
    recent.Add("/100%41.tvn");
    EXPECT_THAT(recent.List(), ElementsAre("/100%41.tvn", path));
    for (const char c : Stored(2)) EXPECT_TRUE(c >= ' ' && c <= '~');
}

TEST_F(RecentFilesTest, WhatOthersWroteIsTakenAsItStands) {
    profile.SetText("Recent File List/File1", "/50%");
    profile.SetText("Recent File List/File2", "");
    profile.SetText("Recent File List/File3", "/a%zz%4");
    profile.SetText("Recent File List/File4", "/50%");
    EXPECT_THAT(recent.List(), ElementsAre("/50%", "/a%zz%4"));
}

TEST_F(RecentFilesTest, AFileWithoutANameIsNone) {
    recent.Add("");
    EXPECT_THAT(recent.List(), IsEmpty());
}

}  // namespace
}  // namespace tavrin
