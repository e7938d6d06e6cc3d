// SPDX-License-Identifier: Apache-2.0
#include "render/SourceWords.h"

#include <gmock/gmock.h>

#include "site/Site.h"
#include "support/TestFiles.h"
#include "support/TestSite.h"
#include "text/Archive.h"

namespace tavrin {
namespace {

using testing::HasSubstr;

class SourceWordsTest : public testing::Test {
  protected:
    SourceWordsTest() { report.SetSink(&sink); }

    std::optional<SourceWords> Read(const std::string& text) {
        CArchive archive = CArchive::FromText("/library/my.words", text);
        return SourceWords::Read(archive, report);
    }
    std::string Alert() {
        const auto pending = report.TakePending();
        return pending ? pending->text : std::string();
    }

    test::CollectingSink sink;
    Report report;
};

TEST_F(SourceWordsTest, WithoutAListEveryWordIsPlainAndNothingIsAMark) {
    const SourceWords words;
    EXPECT_EQ(words.ClassOf("float"), SourceClass::kPlain);
    EXPECT_FALSE(words.HasNumbers());
    EXPECT_TRUE(words.AllMarks().empty());
    EXPECT_TRUE(words.Directive().empty());
}

TEST_F(SourceWordsTest, WordsHaveTheClassThatNamesThemLast) {
    const auto words = Read(
        "class keyword { if else\n  return } # and more\nclass type { float else }\nclass constant { true }\n"
        "class variable { u }\nclass directive { pragma }\n");
    ASSERT_TRUE(words);
    EXPECT_EQ(words->ClassOf("if"), SourceClass::kKeyword);
    EXPECT_EQ(words->ClassOf("else"), SourceClass::kType);
    EXPECT_EQ(words->ClassOf("true"), SourceClass::kConstant);
    EXPECT_EQ(words->ClassOf("u"), SourceClass::kVariable);
    EXPECT_EQ(words->ClassOf("pragma"), SourceClass::kDirective);
    EXPECT_EQ(words->ClassOf("If"), SourceClass::kPlain);
    EXPECT_EQ(words->ClassOf("and"), SourceClass::kPlain) << "a comment of the list";
}

TEST_F(SourceWordsTest, AStarStandsForAnyMoreLettersAndTheLongestBeginningCounts) {
    const auto words = Read("class function { mr* mrColor }\nclass variable { mrIn* }\n");
    ASSERT_TRUE(words);
    EXPECT_EQ(words->ClassOf("mrNoise"), SourceClass::kFunction);
    EXPECT_EQ(words->ClassOf("mr"), SourceClass::kFunction);
    EXPECT_EQ(words->ClassOf("mrInput"), SourceClass::kVariable);
    EXPECT_EQ(words->ClassOf("m"), SourceClass::kPlain);
}

TEST_F(SourceWordsTest, ALanguageMayHaveNoCaseAndFurtherLetters) {
    const auto words = Read("ignorecase 1\nletters \"$-\"\nclass keyword { Begin $x-y }\n");
    ASSERT_TRUE(words);
    EXPECT_EQ(words->ClassOf("bEGIN"), SourceClass::kKeyword);
    EXPECT_EQ(words->ClassOf("$X-Y"), SourceClass::kKeyword);
    EXPECT_TRUE(words->IsLetter('$'));
    EXPECT_FALSE(words->IsLetter('%'));
    EXPECT_TRUE(words->IsLetter('_'));
    EXPECT_TRUE(words->IsLetter('\xC3')) << "letters of other scripts";
}

TEST_F(SourceWordsTest, MistakesAreToldWithFileAndLine) {
    const struct {
        const char* text;
        const char* message;
    } mistakes[] = {
        {"\ncolour red\n", "near line 2: \"colour\" is none of linecomment, blockcomment, string"},
        {"\n\nclass verb { go }", "near line 3: \"verb\" is no class of words"},
        {"class keyword go", "near line 1: unexpected input"},
        {"class keyword {\n go", "near line 2: the words of the class keyword have no closing brace"},
        {"class keyword { a-b }", "near line 1: \"a-b\" is no word"},
        {"class keyword { * }", "near line 1: \"*\" is no word"},
        {"class keyword { \"\" }", "near line 1: \"\" is no word"},
        {"class", "near line 1: unexpected input"},
        {"linecomment \"\"", "near line 1: \"\" is no mark"},
        {"linecomment \"a b\"", "near line 1: \"a b\" is no mark"},
        {"blockcomment \"/*\"", "near line 1: unexpected input"},
        {"string \"'\" \"'\" \"ab\"", "near line 1: \"ab\" is more than one character"},
        {"numbers yes", "near line 1: unexpected input"},
        {"class keyword { x }\nignorecase 1", "near line 2: ignorecase stands before the first class"},
    };
    for (const auto& mistake : mistakes) {
        EXPECT_FALSE(Read(mistake.text)) << mistake.text;
        EXPECT_THAT(Alert(), HasSubstr(std::string("/library/my.words ") + mistake.message)) << mistake.text;
    }
}

// The list of a library, as the settings name it.
class LibraryWords : public testing::Test {
  protected:
    LibraryWords() {
        site.directories.libDir = directory.Path();
        site.directories.libName = site.settingsLibrary = "mini";
    }
    SourceClass ClassOf(const std::string& word) { return SourceWords::Of(site).ClassOf(word); }

    test::TestSite test;
    Site& site = test.site;
    const test::TempDir& directory = test.directory;
};

TEST_F(LibraryWords, AreThoseOfTheFileThatTheSettingNames) {
    directory.Write("my.words", "class type { float }\n");
    EXPECT_EQ(ClassOf("float"), SourceClass::kPlain);
    site.settings.Store("source.words", "my.words # of ours");
    EXPECT_EQ(ClassOf("float"), SourceClass::kType);
    EXPECT_FALSE(site.report.HasPending());
}

TEST_F(LibraryWords, AreNotUsedForAnotherLibraryThatADocumentBrings) {
    directory.Write("my.words", "class type { float }\n");
    site.settings.Store("source.words", "my.words");
    site.directories.libName = "other";
    EXPECT_EQ(ClassOf("float"), SourceClass::kPlain);
    EXPECT_FALSE(site.report.HasPending());
}

TEST_F(LibraryWords, AFileThatIsNotThereOrIsWrongIsToldAndIsAsGoodAsNone) {
    site.settings.Store("source.words", "my.words");
    EXPECT_EQ(ClassOf("float"), SourceClass::kPlain);
    EXPECT_THAT(site.report.TakePending()->text, HasSubstr("my.words for reading: No such file"));
    directory.Write("my.words", "class type { float }\nnonsense\n");
    EXPECT_EQ(ClassOf("float"), SourceClass::kPlain);
    EXPECT_THAT(site.report.TakePending()->text, HasSubstr("my.words near line 2: \"nonsense\""));
}

TEST(SuppliedWords, AreThoseOfTheShadersThatTheSuppliedLibraryMakes) {
    test::CollectingSink sink;
    Report report;
    report.SetSink(&sink);
    std::string error;
    auto archive = CArchive::Open(test::SourcePath("installation/mray/glsl.words"), error);
    ASSERT_TRUE(archive) << error;
    const auto words = SourceWords::Read(*archive, report);
    ASSERT_TRUE(words) << sink.LastAlert();
    EXPECT_EQ(words->ClassOf("if"), SourceClass::kKeyword);
    EXPECT_EQ(words->ClassOf("vec3"), SourceClass::kType);
    EXPECT_EQ(words->ClassOf("smoothstep"), SourceClass::kFunction);
    EXPECT_EQ(words->ClassOf("mrNoise"), SourceClass::kFunction);
    EXPECT_EQ(words->ClassOf("tvLambert"), SourceClass::kFunction);
    EXPECT_EQ(words->ClassOf("tvColor"), SourceClass::kVariable);
    EXPECT_EQ(words->ClassOf("mr_p"), SourceClass::kVariable);
    EXPECT_EQ(words->ClassOf("Noise_1_result"), SourceClass::kPlain);
    EXPECT_EQ(words->Directive(), "#");
}

}  // namespace
}  // namespace tavrin
