// SPDX-License-Identifier: Apache-2.0
// What is read of a document is all that a document says: it can be written back.
#include "document/DocumentFormWriter.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

#include "document/DocumentReader.h"
#include "support/TestHost.h"

namespace tavrin {
namespace {

using test::ReadFile;
using test::SourcePath;
using testing::HasSubstr;

std::string Rewritten(const std::string& text) {
    return WriteForm(ReadDocument(test::ArchiveOf(text, "doc.tvn")));
}

std::vector<std::string> DocumentsIn(const std::vector<std::string>& folders) {
    std::vector<std::string> files;
    for (const std::string& folder : folders) {
        for (const auto& entry : std::filesystem::recursive_directory_iterator(SourcePath(folder))) {
            const bool isDocument = entry.path().extension() == ".tvn" || folder.starts_with("fuzz");
            if (isDocument && entry.is_regular_file()) files.push_back(entry.path());
        }
    }
    std::sort(files.begin(), files.end());
    return files;
}

TEST(DocumentFormWriter, WhatTheProgramHasSavedComesBackToTheByte) {
    size_t count = 0;
    for (const std::string& file : DocumentsIn({"examples", "tests"})) {
        const std::string text = ReadFile(file);
        if (!text.starts_with("# Tavrn file written at ")) continue;
        EXPECT_EQ(Rewritten(text), text) << file;
        ++count;
    }
    EXPECT_GT(count, 6U) << "the examples are among them";
}

TEST(DocumentFormWriter, WhatAnybodyHasWrittenIsWrittenOnceAndThenStays) {
    for (const std::string& file : DocumentsIn({"examples", "tests", "fuzz/corpus/document"})) {
        const std::string once = Rewritten(ReadFile(file));
        EXPECT_EQ(Rewritten(once), once) << file;
    }
}

TEST(DocumentFormWriter, ATextWithoutItsHeaderGetsNone) {
    EXPECT_EQ(Rewritten("toolbar { button 7=A }"), "toolbar\r\n{\r\n    button 0=A\r\n}\r\n\r\n");
}

TEST(DocumentFormWriter, WhatIsNotToldIsNotWritten) {
    EXPECT_EQ(Rewritten("opdesk { opbox { filename A opbutton.input a a { currentcast x { pin 1 } } } } }"),
              "opdesk\r\n{\r\n    # BOXES\r\n\r\n    # A_0\r\n    opbox\r\n    {\r\n        filename A\r\n"
              "\r\n        opbutton.input a a\r\n        {\r\n            opbuttondefs\r\n            {\r\n"
              "                currentcast x\r\n                wwms\r\n                {\r\n"
              "                    pin 1\r\n                }\r\n            }\r\n        }\r\n    }\r\n"
              "\r\n    opconnects\r\n    {\r\n    }\r\n\r\n    # DESK STATE\r\n}\r\n\r\n");
}

TEST(DocumentFormWriter, TokensThatNeedQuotesGetThem) {
    const std::string text = Rewritten(
        "tavrn-renderer \"my lib\" toolbar { button \"0=a#b\" } opdesk { opbox { filename \"a b\" "
        "opbutton.input \"c d\" \"c d\" { currentcast \"e f\" { argname \"g\\\"h\" } } } } } "
        "renderoptions { setenv \"i j\" \"\" }");
    EXPECT_THAT(text, HasSubstr("tavrn-renderer \"my lib\"\r\n"));
    EXPECT_THAT(text, HasSubstr("    button \"0=a#b\"\r\n"));
    EXPECT_THAT(text, HasSubstr("        filename \"a b\"\r\n"));
    EXPECT_THAT(text, HasSubstr("        opbutton.input \"c d\" \"c d\"\r\n"));
    EXPECT_THAT(text, HasSubstr("currentcast \"e f\"\r\n"));
    EXPECT_THAT(text, HasSubstr("argname \"g\\\"h\"\r\n"));
    EXPECT_THAT(text, HasSubstr("    setenv \"i j\" \"\"\r\n"));
}

}  // namespace
}  // namespace tavrin
