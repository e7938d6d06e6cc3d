// SPDX-License-Identifier: Apache-2.0
// The clauses of site definitions files.
#include "app/SiteFileReader.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "codegen/CodeGen.h"
#include "document/ExportOptions.h"
#include "support/TestSite.h"

namespace tavrin {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

class SiteFileReaderTest : public testing::Test {
  protected:
    // Reads a text as the file "tavrn.def".
    void Read(std::string_view text) {
        CArchive archive = test::ArchiveOf(text, "tavrn.def");
        SiteFileReader(archive, targets).Read();
    }
    // The value as the file has it; "(none)" for a key that is not there.
    std::string Raw(const std::string& key) {
        std::string text = "(none)";
        site.settings.GetSettingRaw(key, text);
        return text;
    }
    std::string Head(const std::string& type) { return site.types.GetDeclaration(type).head; }
    std::string Tail(const std::string& type) { return site.types.GetDeclaration(type).tail; }
    // The lines that a block of the template has come to.
    std::vector<std::string> Code() {
        std::vector<std::string> lines;
        codeGen.WriteCode(lines);
        return lines;
    }

    test::TestSite test;
    Site& site = test.site;
    CCodeGen codeGen;
    CExportOptions exportDefaults;
    std::vector<std::string> formWords;
    SiteTargets targets{site, codeGen, exportDefaults, [this](CArchive& archive) {
                            std::string word;
                            while (ReadToken(archive, word) && word != "}") formWords.push_back(word);
                        }};
};

TEST_F(SiteFileReaderTest, AnyOtherKeywordIsASettingWithTheRestOfItsLine) {
    Read("desk.font  \"Arial Narrow\" # wide \t\nmade.up.key 1 2  3\r\nalone\n");
    EXPECT_EQ(Raw("desk.font"), "\"Arial Narrow\" # wide");
    EXPECT_EQ(Raw("made.up.key"), "1 2  3");
    EXPECT_EQ(Raw("alone"), "");
    EXPECT_EQ(Raw("desk.fnot"), "(none)");
    EXPECT_THAT(test.sink.alerts, IsEmpty());
}

TEST_F(SiteFileReaderTest, ALaterValueOfAKeyReplacesTheEarlier) {
    Read("maxhistory 5\nmaxhistory 7\n");
    EXPECT_EQ(Raw("maxhistory"), "7");
    Read("maxhistory 9\n");
    EXPECT_EQ(Raw("maxhistory"), "9");
}

TEST_F(SiteFileReaderTest, AKeywordGluedToACommentIsStoredWithoutAValue) {
    Read("desk.lock#x 1\ndesk.showvarnames 1\n");
    EXPECT_EQ(Raw("desk.lock"), "");
    int lock = 77;
    EXPECT_FALSE(site.settings.GetSettingInt("desk.lock", lock));
    EXPECT_EQ(lock, 77);
    EXPECT_EQ(Raw("desk.showvarnames"), "1");
}

TEST_F(SiteFileReaderTest, TooFewNumbersLeaveTheDefaultWithoutAMessage) {
    Read("desk.backgroundcolor 1 0\n");
    float rgb[3] = {0.6F, 0.7F, 0.7F};
    EXPECT_FALSE(site.settings.GetSettingRgb("desk.backgroundcolor", rgb));
    EXPECT_EQ(rgb[0], 0.6F);
    EXPECT_THAT(test.sink.alerts, IsEmpty());
    EXPECT_EQ(test.sink.log, "");
}

TEST_F(SiteFileReaderTest, AnEmptyKeywordIsPassedOver) {
    Read("\"\" desk.lock 1\n");
    EXPECT_EQ(Raw("desk.lock"), "1");
    EXPECT_EQ(Raw(""), "(none)");
}

TEST_F(SiteFileReaderTest, AFormGoesToTheFormReaderFromBehindItsKeyword) {
    Read("roe { winwidth 3\n}\nafter 1\n");
    EXPECT_THAT(formWords, ElementsAre("{", "winwidth", "3"));
    EXPECT_EQ(Raw("after"), "1");
    EXPECT_EQ(Raw("winwidth"), "(none)");
}

TEST_F(SiteFileReaderTest, AWwmBlockIsThrownAwayUpToABraceInTheFirstColumn) {
    Read("wwm {\ninside 1\n  }\nstill.inside 2\n} and the rest of this line 3\nafter 4\n");
    EXPECT_EQ(Raw("inside"), "(none)");
    EXPECT_EQ(Raw("still.inside"), "(none)");
    EXPECT_EQ(Raw("and"), "(none)");
    EXPECT_EQ(Raw("after"), "4");
}

TEST_F(SiteFileReaderTest, AWwmBlockThatDoesNotEndTakesTheRestOfTheFile) {
    Read("before 1\nwwm\ninside 2\n");
    EXPECT_EQ(Raw("before"), "1");
    EXPECT_EQ(Raw("inside"), "(none)");
    EXPECT_THAT(test.sink.alerts, IsEmpty());
}

TEST_F(SiteFileReaderTest, ToolButtonsKeepTheOrderOfTheFileWhateverTheirNumbers) {
    Read("toolbutton 7=Noise\ntoolbutton 0=Mix ignored\ntoolbutton -3=Ramp\n");
    EXPECT_THAT(site.toolButtons, ElementsAre("Noise", "Mix", "Ramp"));
}

TEST_F(SiteFileReaderTest, OneToolButtonOfALaterFileReplacesTheWholeList) {
    Read("toolbutton 1=Noise\ntoolbutton 2=Mix\n");
    Read("desk.lock 1\n");
    EXPECT_THAT(site.toolButtons, ElementsAre("Noise", "Mix"));
    Read("toolbutton 1=Ramp\n");
    EXPECT_THAT(site.toolButtons, ElementsAre("Ramp"));
}

TEST_F(SiteFileReaderTest, AToolButtonWithoutANumberOrANameAddsNothing) {
    Read("toolbutton 1=Noise\ntoolbutton Mix\ntoolbutton 2=\ntoolbutton 3 =Ramp\ntoolbutton\n");
    EXPECT_THAT(site.toolButtons, ElementsAre("Noise"));
    Read("toolbutton 1=\n");
    EXPECT_THAT(site.toolButtons, IsEmpty());
}

TEST_F(SiteFileReaderTest, EachProbeLineNamesOneNetworkMore) {
    Read("probe probe/float.tvn  # numbers\nprobe \"with blanks/rgb.tvn\" more\nprobe\nprobe # none\n");
    Read("probe /home/own.tvn\n");
    EXPECT_THAT(site.probes, ElementsAre("probe/float.tvn", "with blanks/rgb.tvn", "/home/own.tvn"));
    EXPECT_THAT(test.sink.alerts, IsEmpty());
    EXPECT_EQ(Raw("probe"), "(none)") << "it is no setting, of which the last alone would count";
}

TEST_F(SiteFileReaderTest, ProbeNetworksLieInTheLibraryThatNamesThem) {
    site.directories.libName = "glass";
    site.directories.libDir = "/site/glass";
    site.settingsLibrary = "glass";
    site.probes = {"probe/float.tvn", "/home/own.tvn"};
    EXPECT_THAT(site.ProbePaths(), ElementsAre("/site/glass/probe/float.tvn", "/home/own.tvn"));
    site.directories.libName = "clay";
    EXPECT_THAT(site.ProbePaths(), IsEmpty());
}

TEST_F(SiteFileReaderTest, WordsAreTranslatedByTheLastPair) {
    Read("wordtranslate.add rgb vec3 more\nwordtranslate.add xyz point\nwordtranslate.add xyz  vector\n");
    EXPECT_EQ(site.types.TranslateWord("rgb"), "vec3");
    EXPECT_EQ(site.types.TranslateWord("xyz"), "vector");
    EXPECT_EQ(site.types.TranslateWord("float"), "float");
}

TEST_F(SiteFileReaderTest, AWordWithoutATranslationIsTranslatedToNothing) {
    Read("wordtranslate.add rgb\nwordtranslate.add\nafter 1\n");
    EXPECT_EQ(site.types.TranslateWord("rgb"), "");
    EXPECT_EQ(site.types.TranslateWord(""), "");
    EXPECT_EQ(Raw("after"), "1");
}

TEST_F(SiteFileReaderTest, ClearingTheTranslationsKeepsTheLinesBehind) {
    Read("wordtranslate.add rgb vec3\nwordtranslate.clear wordtranslate.add xyz vec3\n");
    EXPECT_EQ(site.types.TranslateWord("rgb"), "rgb");
    EXPECT_EQ(site.types.TranslateWord("xyz"), "vec3");
}

TEST_F(SiteFileReaderTest, MenuDirectoriesAccumulateOverTheFiles) {
    site.menuDirs = {"menu"};
    Read("menudir.add   our own menu \t\nmenudir.add /shared/menu\n");
    Read("menudir.add personal\n");
    EXPECT_THAT(site.menuDirs, ElementsAre("menu", "our own menu", "/shared/menu", "personal"));
}

TEST_F(SiteFileReaderTest, ExportOptionsAreTheDefaultsOfDocuments) {
    Read("exportoptions\n{\n    shadersourcedir 1 /shaders\n    postsavescript 1 install it\n}\nafter 1\n");
    EXPECT_EQ(exportDefaults.saveSource, 1);
    EXPECT_EQ(exportDefaults.sourcePath, "/shaders/");
    EXPECT_EQ(exportDefaults.postSaveScript, "install it");
    EXPECT_EQ(exportDefaults.saveTavrn, 0);
    EXPECT_EQ(Raw("after"), "1");
}

TEST_F(SiteFileReaderTest, TemplatesGoToTheSitesCodeGen) {
    Read(
        "codegen.linecomment \"//\" codegen.opencomment \"/*\"\n"
        "codegen.main-open append\nsurface # not a comment\n<<EOT>>\nafter 1\n");
    EXPECT_EQ(codeGen.m_lineComment, "//");
    EXPECT_EQ(codeGen.m_openComment, "/*");
    EXPECT_THAT(Code(), ElementsAre("surface # not a comment"));
    EXPECT_EQ(Raw("after"), "1");
}

TEST_F(SiteFileReaderTest, AFileOfATemplateLiesInTheLibrary) {
    site.directories.libDir = test.directory / "lib";
    test.directory.Write("lib/parts/head.txt", "one\ntwo\n");
    Read("codegen.global-open append@parts/head.txt\n");
    EXPECT_THAT(Code(), ElementsAre("one", "two"));
}

TEST_F(SiteFileReaderTest, AFaultyTemplateEndsTheFileAndKeepsWhatWasRead) {
    Read("before 1\n\ncodegen.main-open sideways\nafter 2\n");
    EXPECT_THAT(test.sink.alerts,
                ElementsAre("tavrn.def near line 4: ERROR: unknown codegen type 'main-open'"));
    EXPECT_THAT(test.sink.files, ElementsAre("tavrn.def"));
    EXPECT_EQ(Raw("before"), "1");
    EXPECT_EQ(Raw("after"), "(none)");
}

TEST_F(SiteFileReaderTest, AMessageWithPercentSignsIsShownAsItIs) {
    Read("codegen.main%s%n-open sideways\n");
    EXPECT_THAT(test.sink.alerts,
                ElementsAre("tavrn.def near line 2: ERROR: unknown codegen type 'main%s%n-open'"));
}

TEST_F(SiteFileReaderTest, CodeFormatClausesHaveNoEffect) {
    Read("codeformat.anything whatever { \" desk.lock 1\nafter 2\n");
    EXPECT_EQ(Raw("codeformat.anything"), "(none)");
    EXPECT_EQ(Raw("whatever"), "(none)");
    EXPECT_EQ(Raw("desk.lock"), "(none)");
    EXPECT_EQ(Raw("after"), "2");
}

TEST_F(SiteFileReaderTest, ADataTypeNeedsNoOpeningBraceAndMayHaveComments) {
    Read(
        "datatype.add\nname color # \"x\"\n\n   declarehead \"varying color \"\t\n# declaretail =0\n"
        "declaretail \" ;\"\n}\nafter 1\n");
    EXPECT_EQ(Head("color"), "varying color ");
    EXPECT_EQ(Tail("color"), " ;");
    EXPECT_EQ(Raw("after"), "1");
    EXPECT_THAT(test.sink.alerts, IsEmpty());
}

TEST_F(SiteFileReaderTest, ADataTypeReplacesTheOneOfItsName) {
    Read(
        "datatype.add {\nname float\ndeclarehead \"varying float \"\ndeclaretail ;\n}\n"
        "datatype.add {\nname float\ndeclarehead \"float \"\n}\n");
    EXPECT_EQ(Head("float"), "float ");
    EXPECT_EQ(Tail("float"), "");
}

TEST_F(SiteFileReaderTest, ADataTypeMayHaveAColorAndAShape) {
    Read(
        "datatype.add {\nname rgb\ncolor 0.9 0.5 0 # warm\nshape square\n}\n"
        "datatype.add {\nname vec2\nshape \"diamond\"\n}\n");
    EXPECT_EQ(site.types.GetMark("rgb").color, (std::array<float, 3>{0.9F, 0.5F, 0}));
    EXPECT_EQ(site.types.GetMark("rgb").shape, TypeShape::kSquare);
    EXPECT_EQ(site.types.GetMark("generic:vec2").color, std::nullopt);
    EXPECT_EQ(site.types.GetMark("generic:vec2").shape, TypeShape::kDiamond);
    EXPECT_EQ(site.types.GetMark("float").shape, std::nullopt);
    EXPECT_THAT(test.sink.alerts, IsEmpty());
    Read("datatype.clearall\n");
    EXPECT_EQ(site.types.GetMark("rgb").shape, std::nullopt);
}

TEST_F(SiteFileReaderTest, AColorOrAShapeThatIsNoneIsToldAndTheTypeGoesOn) {
    Read(
        "datatype.add {\nname rgb\ncolor 1 2 0\nshape round\ndeclarehead \"vec3 \"\n}\n"
        "datatype.add {\nname xyz\ncolor blue\n}\nafter 1\n");
    EXPECT_THAT(
        test.sink.alerts,
        ElementsAre("tavrn.def near line 4: the color of a type is three numbers from 0 to 1, such as "
                    "0.9 0.7 0.2: 1 2 0",
                    "tavrn.def near line 5: the shape of a type is one of circle, square, diamond, "
                    "triangle, wedge, bar: round",
                    "tavrn.def near line 10: the color of a type is three numbers from 0 to 1, such as "
                    "0.9 0.7 0.2: blue"));
    EXPECT_EQ(site.types.GetMark("rgb").color, std::nullopt);
    EXPECT_EQ(site.types.GetMark("rgb").shape, std::nullopt);
    EXPECT_EQ(Head("rgb"), "vec3 ");
    EXPECT_EQ(Raw("after"), "1");
}

TEST_F(SiteFileReaderTest, ACommentIsCutOffInsideQuotesToo) {
    Read("datatype.add {\nname odd\ndeclarehead \"a#b\"\n}\n");
    EXPECT_EQ(Head("odd"), "\"a");
}

TEST_F(SiteFileReaderTest, LinesOfADataTypeWithoutTwoWordsArePassedOver) {
    Read("datatype.add\n{\nname\nwrong # word\nname vec2\ndeclarehead \"vec2 \"\ndeclarehead #x\n}\n");
    EXPECT_EQ(Head("vec2"), "vec2 ");
    EXPECT_THAT(test.sink.alerts, IsEmpty());
}

TEST_F(SiteFileReaderTest, AnIndentedBraceDoesNotEndADataType) {
    Read("datatype.add {\nname vec2\n  }\ndeclarehead \"vec2 \"\n}\nafter 1\n");
    EXPECT_EQ(Head("vec2"), "vec2 ");
    EXPECT_EQ(Raw("after"), "1");
}

TEST_F(SiteFileReaderTest, ADataTypeThatDoesNotEndIsStored) {
    Read("datatype.add {\nname vec2\ndeclarehead \"vec2 \"");
    EXPECT_EQ(Head("vec2"), "vec2 ");
    EXPECT_THAT(test.sink.alerts, IsEmpty());
}

TEST_F(SiteFileReaderTest, ABadWordEndsADataTypeAndTheLinesLeftAreClauses) {
    Read("datatype.add {\nname vec2\ndeclarehead \"vec2 \"\ndeclaretial ;\ndeclaretail ;\n}\nafter 1\n");
    EXPECT_THAT(test.sink.alerts,
                ElementsAre("tavrn.def near line 5: invalid keyword in datatype.add clause: declaretial"));
    EXPECT_EQ(Head("vec2"), "vec2 ");
    EXPECT_EQ(Tail("vec2"), "");
    EXPECT_EQ(Raw("declaretail"), ";");
    EXPECT_EQ(Raw("}"), "");
    EXPECT_EQ(Raw("after"), "1");
}

TEST_F(SiteFileReaderTest, ClearingTheDataTypesGivesTheBuiltInsBack) {
    Read(
        "datatype.add {\nname vec2\ndeclarehead \"vec2 \"\n}\n"
        "datatype.add {\nname rgb\ndeclarehead \"vec3 \"\ndeclaretail ;\n}\n"
        "wordtranslate.add rgb vec3\ndatatype.clearall\nafter 1\n");
    EXPECT_EQ(Head("vec2"), "");
    EXPECT_EQ(Head("rgb"), "color ");
    EXPECT_EQ(Tail("rgb"), "");
    EXPECT_EQ(Head("xyz"), "point ");
    EXPECT_EQ(Head("float"), "float ");
    EXPECT_EQ(Head("string"), "string ");
    EXPECT_EQ(site.types.TranslateWord("rgb"), "vec3");
    EXPECT_EQ(Raw("after"), "1");
}

TEST_F(SiteFileReaderTest, ShaderTypesHaveAnExtensionEach) {
    Read("ext.shaderiface surface .sif more\next.shaderiface light .lif\next.shaderiface light .cus\n");
    EXPECT_THAT(site.shaderIfaceExts, ElementsAre(Pair("light", ".cus"), Pair("surface", ".sif")));
}

TEST_F(SiteFileReaderTest, AShaderTypeAloneGetsAnEmptyExtension) {
    Read("ext.shaderiface surface .sif\next.shaderiface surface\nafter 1\n");
    EXPECT_THAT(site.shaderIfaceExts, ElementsAre(Pair("surface", "")));
    EXPECT_EQ(Raw("after"), "1");
    EXPECT_THAT(test.sink.alerts, IsEmpty());
}

TEST_F(SiteFileReaderTest, AShaderInterfaceExtensionWithoutATypeEndsTheFile) {
    Read("before 1\next.shaderiface surface .sif\next.shaderiface  \nafter 2\n");
    EXPECT_THAT(test.sink.alerts, ElementsAre("tavrn.def near line 4: invalid shaderiface extension spec: "));
    EXPECT_EQ(Raw("before"), "1");
    EXPECT_THAT(site.shaderIfaceExts, ElementsAre(Pair("surface", ".sif")));
    EXPECT_EQ(Raw("after"), "(none)");
}

TEST_F(SiteFileReaderTest, AnErrorInTheLastLineIsCountedThereWithoutALineEnd) {
    Read("before 1\next.shaderiface");
    EXPECT_THAT(test.sink.alerts, ElementsAre("tavrn.def near line 2: invalid shaderiface extension spec: "));
}

}  // namespace
}  // namespace tavrin
