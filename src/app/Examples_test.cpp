// SPDX-License-Identifier: Apache-2.0
#include "app/Examples.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>

#include "support/TestSite.h"

namespace tavrin {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr const char* kHelp =
    "customshaderhelp\n{\n>    O L D   P A I N T\n>\n>VARIABLES\n>    wear - how much is gone\n>\n"
    ">DESCRIPTION\n>    Paint that has flaked off. One noise\n>    decides where: ask it.\n>\n>    More of "
    "it.\n"
    "}\n";

class ExamplesTest : public testing::Test {
  protected:
    std::string Write(const std::string& name, const std::string& text) {
        return directory.Write("examples/" + name, text);
    }
    std::vector<Example> List() {
        std::vector<Example> examples;
        EXPECT_TRUE(ListExamples(directory / "examples", ".tvn", examples));
        return examples;
    }
    std::vector<std::string> Titles() {
        std::vector<std::string> titles;
        for (const Example& example : List()) titles.push_back(example.title);
        return titles;
    }

    test::TempDir directory;
};

TEST_F(ExamplesTest, ADocumentIsToldOfByItsHelp) {
    const std::string path = Write("paint.tvn", std::string("opdesk\n{\n}\n") + kHelp);
    const std::string picture = Write("paint.png", "");
    EXPECT_THAT(List(),
                ElementsAre(Example{path, "Old Paint", "Paint that has flaked off.",
                                    "Paint that has flaked off. One noise decides where: ask it.", picture}));
}

TEST_F(ExamplesTest, TheyStandInTheOrderOfTheirFilesAndNothingElseIsAmongThem) {
    for (const char* name : {"b.tvn", "a.tvn", "c.tvn"}) Write(name, "opdesk\n{\n}\n");
    Write("a.txt", "");
    Write(".tvn", "");
    fs::create_directories(directory / "examples/d.tvn");
    EXPECT_THAT(Titles(), ElementsAre("a", "b", "c"));
}

TEST_F(ExamplesTest, APictureMayBeOfEitherKindAndMayBeMissing) {
    for (const char* name : {"a.tvn", "b.tvn", "c.tvn"}) Write(name, "opdesk\n{\n}\n");
    const std::string drawn = Write("a.png", "");
    const std::string taken = Write("b.jpg", "");
    const std::vector<Example> examples = List();
    ASSERT_THAT(examples, SizeIs(3));
    EXPECT_EQ(examples[0].picture, drawn);
    EXPECT_EQ(examples[1].picture, taken);
    EXPECT_EQ(examples[2].picture, "");
}

TEST_F(ExamplesTest, WhatIsBrokenHugeOrNoDocumentHasTheNameOfItsFile) {
    Write("broken.tvn", "opdesk {\nopbox { filename \n");
    Write("empty.tvn", "");
    Write("huge.tvn", kHelp + std::string(size_t(kMostExampleBytes), '\n'));
    Write("picture.tvn", "\x89PNG\r\n");
    Write("sound.tvn", kHelp);
    ASSERT_EQ(::mkfifo((directory / "examples/pipe.tvn").c_str(), 0600), 0);
    EXPECT_THAT(Titles(), ElementsAre("broken", "empty", "huge", "picture", "pipe", "Old Paint"));
}

TEST_F(ExamplesTest, NoMoreAreListedThanAWindowCanShow) {
    for (size_t i = 0; i < kMostExamples + 3; ++i) Write(std::to_string(1000 + i) + ".tvn", "");
    EXPECT_THAT(List(), SizeIs(kMostExamples));
    EXPECT_EQ(List().back().title, std::to_string(1000 + kMostExamples - 1));
}

TEST_F(ExamplesTest, ADirectoryThatIsNotThereCannotBeListed) {
    std::vector<Example> examples(1);
    EXPECT_FALSE(ListExamples(directory / "nowhere", ".tvn", examples));
    EXPECT_THAT(examples, IsEmpty());
}

TEST_F(ExamplesTest, AHelpSaysWhatItHas) {
    EXPECT_EQ(DescribeExample("Glass\r\n\r\nDESCRIPTION\r\nClear."),
              (Example{"", "Glass", "Clear.", "Clear.", ""}));
    EXPECT_EQ(DescribeExample("  C L A Y  "), (Example{"", "Clay", "", "", ""}));
    EXPECT_EQ(DescribeExample("A 4 B"), (Example{"", "A4b", "", "", ""}));
    EXPECT_EQ(DescribeExample("X"), (Example{"", "X", "", "", ""}));
    EXPECT_EQ(DescribeExample("Of two words\nDESCRIPTION\n"), (Example{"", "Of two words", "", "", ""}));
    EXPECT_EQ(DescribeExample(""), Example{});
    EXPECT_EQ(DescribeExample("\n \n"), Example{});
}

TEST_F(ExamplesTest, ATemplateThatNobodyHasFilledInTellsNothing) {
    EXPECT_EQ(DescribeExample("    T I T L E   O F   S H A D E R\r\n\r\nDESCRIPTION\r\n    Your text."),
              Example{});
}

TEST_F(ExamplesTest, TheSettingNamesTheirDirectoryFromItsOwnLibraryOn) {
    test::TestSite site;
    site.site.directories.tavrnDir = "/inst";
    site.site.directories.libName = "other";
    site.site.directories.libDir = "/inst/other";
    site.site.settingsLibrary = "glass";
    EXPECT_EQ(ExamplesDirectory(site.site), "");
    site.site.settings.Store("examples", "examples  # of glass");
    EXPECT_EQ(ExamplesDirectory(site.site), "/inst/glass/examples");
    site.site.settings.Store("examples", "/elsewhere");
    EXPECT_EQ(ExamplesDirectory(site.site), "/elsewhere");
}

// Each of those that come along has its picture and its words.
TEST_F(ExamplesTest, TheExamplesOfTheSourcesAreWhole) {
    std::vector<Example> examples;
    ASSERT_TRUE(ListExamples(test::SourcePath("installation/mray/examples"), ".tvn", examples));
    std::vector<std::string> titles;
    for (const Example& example : examples) {
        titles.push_back(example.title);
        EXPECT_NE(example.picture, "") << example.path;
        EXPECT_NE(example.summary, "") << example.path;
    }
    EXPECT_THAT(titles, ElementsAre("Brick Wall", "Copper", "Lava", "Marble", "Layered Paint", "Wood"));
}

}  // namespace
}  // namespace tavrin
