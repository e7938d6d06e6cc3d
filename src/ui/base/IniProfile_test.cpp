// SPDX-License-Identifier: Apache-2.0
#include "ui/base/IniProfile.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "support/TestSite.h"

namespace tavrin {
namespace {

TEST(IniProfile, WhatIsSetIsThereInTheNextRun) {
    {
        IniProfile profile;
        profile.SetInt("MainWindow.x", -40);
        profile.SetText("File", "/a b/\xC3\xA4;\"odd\".tvn");
    }
    const IniProfile profile;
    EXPECT_EQ(profile.GetInt("MainWindow.x", 7), -40);
    EXPECT_EQ(profile.GetText("File"), "/a b/\xC3\xA4;\"odd\".tvn");
}

TEST(IniProfile, WhatIsMissingOrNoNumberIsTheDefault) {
    IniProfile profile;
    profile.SetText("Broken", "wide");
    EXPECT_EQ(profile.GetInt("Broken", 7), 7);
    EXPECT_EQ(profile.GetInt("Missing", 8), 8);
    EXPECT_EQ(profile.GetText("Missing"), "");
}

TEST(IniProfile, LiesInTheUsersConfigurationDirectoryUnderItsSection) {
    IniProfile profile;
    profile.SetInt("Log.wordwrap", 1);
    const std::string file = std::string(::getenv("XDG_CONFIG_HOME")) + "/Orlane/Tavrin.ini";
    EXPECT_NE(test::ReadFile(file).find("[Settings]"), std::string::npos);
    EXPECT_NE(test::ReadFile(file).find("Log.wordwrap=1"), std::string::npos);
}

TEST(IniProfile, WhatHasNotChangedIsNotWrittenAgain) {
    IniProfile profile;
    profile.SetInt("MainWindow.y", 31);
    profile.SetText("Folder", "/a");
    const std::string file = std::string(::getenv("XDG_CONFIG_HOME")) + "/Orlane/Tavrin.ini";
    const std::string kept = file + ".kept";
    std::filesystem::rename(file, kept);
    profile.SetInt("MainWindow.y", 31);
    profile.SetText("Folder", "/a");
    EXPECT_FALSE(std::filesystem::exists(file));
    std::filesystem::rename(kept, file);
    profile.SetInt("MainWindow.y", 32);
    profile.SetText("Folder", "/b");
    const IniProfile next;
    EXPECT_EQ(next.GetInt("MainWindow.y", 0), 32);
    EXPECT_EQ(next.GetText("Folder"), "/b");
}

}  // namespace
}  // namespace tavrin
