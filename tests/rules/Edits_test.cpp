// SPDX-License-Identifier: Apache-2.0
// Where an edit may be said to have happened.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "support/TestSite.h"

namespace tavrin {
namespace {

namespace fs = std::filesystem;

// What the program itself is made of, below a source folder, that holds the word.
std::vector<std::string> FilesThatSay(const fs::path& source, const std::string& word) {
    std::vector<std::string> files;
    for (const auto& entry : fs::recursive_directory_iterator(source)) {
        const std::string name = entry.path().filename().string();
        if (!entry.is_regular_file() || name.find("Test.h") != std::string::npos ||
            name.ends_with("_test.cpp"))
            continue;
        if (test::ReadFile(entry.path().string()).find(word) != std::string::npos)
            files.push_back(fs::relative(entry.path(), source).string());
    }
    return files;
}

// Everybody else notes in an EditScope what was changed, so that all who show it hear of it.
TEST(EditRules, NobodyButTheDocumentSaysThatItIsModified) {
    for (const std::string& file : FilesThatSay(test::SourcePath("src"), "SetModified"))
        EXPECT_TRUE(file.starts_with("document/")) << file;
}

TEST(EditRules, AFileThatSaysItElsewhereIsFound) {
    test::TempDir directory;
    directory.Write("desk/Hand.cpp", "document.SetModified();\n");
    directory.Write("desk/Hand_test.cpp", "document.SetModified();\n");
    directory.Write("desk/HandTest.h", "document.SetModified();\n");
    directory.Write("desk/Foot.cpp", "// nothing\n");
    EXPECT_THAT(FilesThatSay(directory / "", "SetModified"), testing::ElementsAre("desk/Hand.cpp"));
}

}  // namespace
}  // namespace tavrin
