// SPDX-License-Identifier: Apache-2.0
#include "document/ExportOptions.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/TestSite.h"

namespace tavrin {
namespace {

using test::ArchiveOf;
using testing::ElementsAre;
using testing::IsEmpty;

class ExportOptions : public ::testing::Test {
  protected:
    ExportOptions() { report.SetSink(&sink); }

    // Reads a clause from behind its keyword.
    void Read(const std::string& text) {
        CArchive archive = ArchiveOf(text, "site.def");
        ReadExportOptions(archive, options, report);
        rest = std::string(archive.Rest());
    }

    CExportOptions options;
    test::CollectingSink sink;
    Report report;
    std::string rest;  // what the clause left unread
};

TEST_F(ExportOptions, StartWithNothingToWriteAndTheCurrentDirectory) {
    EXPECT_EQ(options.saveTavrn + options.saveSource + options.saveCompiled, 0);
    EXPECT_EQ(options.saveShaderIface + options.saveRenderIface + options.runPostSave, 0);
    EXPECT_THAT((std::vector<std::string>{options.tavrnPath, options.compiledPath, options.sourcePath,
                                          options.shaderIfacePath, options.renderIfacePath}),
                testing::Each("./"));
    EXPECT_EQ(options.postSaveScript, "");
}

TEST_F(ExportOptions, EachKeySetsItsFlagAndItsPath) {
    Read(
        "{\ntavrndir 1 /t/\nshadersourcedir 2 /s/\ncompiledshaderdir 3 /c/\nshaderinterfacedir 4 /i/\n"
        "renderinterfacedir 5 /r/\npostsavescript 6 run it\n}\nnext\n");
    EXPECT_EQ(options.saveTavrn, 1);
    EXPECT_EQ(options.tavrnPath, "/t/");
    EXPECT_EQ(options.saveSource, 2);
    EXPECT_EQ(options.sourcePath, "/s/");
    EXPECT_EQ(options.saveCompiled, 3);
    EXPECT_EQ(options.compiledPath, "/c/");
    EXPECT_EQ(options.saveShaderIface, 4);
    EXPECT_EQ(options.shaderIfacePath, "/i/");
    EXPECT_EQ(options.saveRenderIface, 5);
    EXPECT_EQ(options.renderIfacePath, "/r/");
    EXPECT_EQ(options.runPostSave, 6);
    EXPECT_EQ(options.postSaveScript, "run it");
    EXPECT_EQ(rest, "\nnext\n");
    EXPECT_THAT(sink.alerts, IsEmpty());
}

TEST_F(ExportOptions, AnEmptyPathLeavesThePathAndSetsTheFlag) {
    options.tavrnPath = "/old/";
    options.postSaveScript = "old";
    Read("{\ntavrndir 1\npostsavescript 1 \r\n}");
    EXPECT_EQ(options.tavrnPath, "/old/");
    EXPECT_EQ(options.saveTavrn, 1);
    EXPECT_EQ(options.postSaveScript, "old");
    EXPECT_EQ(options.runPostSave, 1);
}

TEST_F(ExportOptions, ADirectoryGetsTheSeparatorThatItLacks) {
    Read(
        "{\ntavrndir 1 /a/b\nshadersourcedir 1 /a/b/\ncompiledshaderdir 1 C:\\a\\\npostsavescript 1 /a/b\n}");
    EXPECT_EQ(options.tavrnPath, "/a/b/");
    EXPECT_EQ(options.sourcePath, "/a/b/");
    EXPECT_EQ(options.compiledPath, "C:\\a\\");
    EXPECT_EQ(options.postSaveScript, "/a/b");
}

TEST_F(ExportOptions, ADirectoryThatIsKeptGetsTheSeparatorToo) {
    options.tavrnPath = " /kept ";
    Read("{\ntavrndir 0\n}");
    EXPECT_EQ(options.tavrnPath, "/kept/");
}

TEST_F(ExportOptions, APathIsTheRestOfItsLineTrimmed) {
    Read("{\ntavrndir 1   /with blank/ # and more  \t\npostsavescript 1 \"/x y\" \\z \n}");
    EXPECT_EQ(options.tavrnPath, "/with blank/ # and more/");
    EXPECT_EQ(options.postSaveScript, "\"/x y\" \\z");
}

TEST_F(ExportOptions, ALineWithoutANumberSetsNoFlag) {
    options.saveTavrn = 1;
    options.tavrnPath = "/old/";
    Read("{\ntavrndir yes /new/\n}");
    EXPECT_EQ(options.saveTavrn, 1);
    EXPECT_EQ(options.tavrnPath, "/old/");
    EXPECT_THAT(sink.alerts, IsEmpty());
}

TEST_F(ExportOptions, TheOpeningTokenIsNotChecked) {
    Read("anything\ntavrndir 1 /a/\n}");
    EXPECT_EQ(options.tavrnPath, "/a/");
}

TEST_F(ExportOptions, TheEndOfTheFileEndsTheClause) {
    Read("{\ntavrndir 1 /a/");
    EXPECT_EQ(options.tavrnPath, "/a/");
    Read("{");
    Read("");
    EXPECT_THAT(sink.alerts, IsEmpty());
}

TEST_F(ExportOptions, AnUnknownKeyEndsTheClauseAndLeavesTheRest) {
    Read("{\n# c\nTavrndir 1 /a/\nshadersourcedir 1 /b/\n}\n");
    EXPECT_THAT(sink.alerts, ElementsAre("site.def near line 4: unknown export option: Tavrndir"))
        << "its line has been read";
    EXPECT_EQ(options.saveSource, 0);
    EXPECT_EQ(rest, "shadersourcedir 1 /b/\n}\n") << "flag and path of the unknown key are gone with it";
}

TEST_F(ExportOptions, TheLineOfAnUnknownKeyMayBeTheLast) {
    Read("{\nnew 1 /a/");
    EXPECT_THAT(sink.alerts, ElementsAre("site.def near line 2: unknown export option: new"));
    EXPECT_EQ(rest, "");
}

TEST_F(ExportOptions, WhatIsWrittenReadsBack) {
    options.saveTavrn = 1;
    options.tavrnPath = "/some dir/doc.tvn";
    options.shaderIfacePath = "/i/x.cus";
    options.runPostSave = 1;
    options.postSaveScript = "perl -e \"print 1\" # done";
    const std::string lines = ExportOptionLines(options);
    EXPECT_THAT(lines, testing::Not(testing::HasSubstr("\r")));
    options = CExportOptions();
    Read("{\n" + lines + "}\n");
    EXPECT_EQ(options.tavrnPath, "/some dir/");
    EXPECT_EQ(options.shaderIfacePath, "/i/");
    EXPECT_EQ(options.postSaveScript, "perl -e \"print 1\" # done");
    EXPECT_EQ(ExportOptionLines(options), lines);
}

}  // namespace
}  // namespace tavrin
