// SPDX-License-Identifier: Apache-2.0
// The way back from a line of generated source to the template that wrote it.
#include "render/LineMap.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>
#include <regex>

#include "render/ShaderText.h"
#include "support/TestHost.h"
#include "text/Tokens.h"

namespace tavrin {

void PrintTo(const LinePlace& place, std::ostream* out) {
    *out << place.box << "|" << place.operatorName << "|" << place.button << "|" << place.clause << "|"
         << place.file << ":" << place.line;
}

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class LineMapTest : public test::DocumentTest {
  protected:
    LineMapTest() {
        host.GetSite().environment.Set("TAVRN_WORKDIR", host.GetSite().directories.workDir);
        site.m_lineComment = "//";
    }
    COpBox& AddBox(const std::string& name, int wid) {
        auto box = std::make_unique<COpBox>();
        EXPECT_TRUE(host.DefineBox(*box, name)) << name;
        box->wid = wid;
        return Add(std::move(box));
    }
    ShaderText Generate() { return GenerateShader(document, "x", host.GetSite(), site); }
    // Of the one line that reads so, blanks apart.
    LinePlace PlaceOf(const std::string& line) {
        const ShaderText text = Generate();
        for (size_t i = 0; i < text.code.size(); ++i) {
            if (Trim(text.code[i]) == line)
                return text.lines.Find(i + 1).value_or(LinePlace{"no place", {}, {}, {}, {}, 0});
        }
        return {"no such line", {}, {}, {}, {}, 0};
    }

    CCodeGen site;
};

TEST_F(LineMapTest, ALineOfADefinitionStandsWhereItWasWritten) {
    const std::string file =
        host.AddOperator("One",
                         "output out { float out }\n"
                         "codegen.main-body append\nfirst;\nsecond;\n<<EOT>>\n"
                         "codegen.global-open append\nthird;\n<<EOT>>\n"
                         "#source lines\n#file " +
                             (host.Directory() / "installation/mini/menu/1000.One") + "\n#line 1 1 11\n");
    AddBox("One", 4);
    EXPECT_EQ(PlaceOf("first;"), (LinePlace{"One_4", "One", "", "main-body", file, 13}));
    EXPECT_EQ(PlaceOf("second;"), (LinePlace{"One_4", "One", "", "main-body", file, 14}));
    EXPECT_EQ(PlaceOf("third;"), (LinePlace{"One_4", "One", "", "global-open", file, 17}));
}

TEST_F(LineMapTest, ALineOfAnIncludedFileStandsInThat) {
    host.AddOperator(
        "One",
        "codegen.main-body append\nown;\nshared;\nalso shared;\nown again;\n<<EOT>>\n"
        "#source lines\n#file /own\n#file /a path/shared\n#line 1 1 1\n#line 3 2 70\n#line 5 1 4\n");
    AddBox("One", 1);
    EXPECT_EQ(PlaceOf("own;"), (LinePlace{"One_1", "One", "", "main-body", "/own", 2}));
    EXPECT_EQ(PlaceOf("also shared;"), (LinePlace{"One_1", "One", "", "main-body", "/a path/shared", 71}));
    EXPECT_EQ(PlaceOf("own again;"), (LinePlace{"One_1", "One", "", "main-body", "/own", 4}));
}

TEST_F(LineMapTest, OfADefinitionWithoutATableTheFileIsKnownAlone) {
    const std::string file = host.AddOperator("One", "codegen.main-body append\nfirst;\n<<EOT>>\n");
    AddBox("One", 1);
    EXPECT_EQ(PlaceOf("first;"), (LinePlace{"One_1", "One", "", "main-body", file, 0}));
}

TEST_F(LineMapTest, ALineOfATemplateFileStandsInThat) {
    const std::string templates = host.Directory().Write("templates", "zero;\none;\n");
    host.AddOperator("One", "codegen.main-body append@" + templates + "\n");
    AddBox("One", 1);
    EXPECT_EQ(PlaceOf("one;"), (LinePlace{"One_1", "One", "", "main-body", templates, 2}));
}

TEST_F(LineMapTest, ALineOfTheSiteIsNoBoxs) {
    CArchive archive = CArchive::FromText("/lib/tavrn.def", "\n\nmain-open append\nsurface x\n<<EOT>>\n");
    std::string word;
    std::string error;
    ASSERT_TRUE(ReadToken(archive, word));
    site.ReadFrom(archive.Path());
    ASSERT_TRUE(site.ParseClause(archive, word, "", error)) << error;
    host.AddOperator("One", "codegen.main-body append\nfirst;\n<<EOT>>\n");
    AddBox("One", 1);
    EXPECT_EQ(PlaceOf("surface x"), (LinePlace{"", "", "", "main-open", "/lib/tavrn.def", 4}));
}

TEST_F(LineMapTest, WhatTheGenerationWritesForABoxIsTheBoxs) {
    host.AddOperator("One", "output a { float out }\noutput b { float out }\n");
    AddBox("One", 3);
    EXPECT_EQ(PlaceOf("// One_3"), (LinePlace{"One_3", "One", "", "main-body", "", 0}));
    EXPECT_EQ(PlaceOf("float One_3_b"), (LinePlace{"One_3", "One", "b", "main-header", "", 0}));
}

TEST_F(LineMapTest, TheDocumentsHelpIsNobodys) {
    site.m_openComment = "/*";
    site.m_closeComment = "*/";
    document.customshaderhelp = "about it";
    EXPECT_EQ(PlaceOf("about it"), (LinePlace{"", "", "", "global-open", "", 0}));
}

TEST_F(LineMapTest, ALineThatTwoBoxesWouldWriteIsTheFirsts) {
    host.AddOperator("One", "codegen.global-open unique\nonce;\n<<EOT>>\n");
    AddBox("One", 1);
    AddBox("One", 2);
    EXPECT_EQ(PlaceOf("once;").box, "One_1");
}

TEST_F(LineMapTest, ALineThatWasPutInFrontKeepsItsPlace) {
    host.AddOperator(
        "One", "codegen.main-body insert\nlast;\nfirst;\n<<EOT>>\n#source lines\n#file /o\n#line 1 1 1\n");
    AddBox("One", 1);
    EXPECT_EQ(PlaceOf("last;").line, 2);
    EXPECT_EQ(PlaceOf("first;").line, 3);
}

TEST_F(LineMapTest, KnowsTheLinesOfABox) {
    host.AddOperator("One", "output a { float out }\ncodegen.main-body append\nx;\n<<EOT>>\n");
    AddBox("One", 1);
    AddBox("One", 2);
    const ShaderText text = Generate();
    std::vector<size_t> lines;
    for (size_t i = 0; i < text.code.size(); ++i) {
        if (text.lines.Find(i + 1)->box == "One_2") lines.push_back(i + 1);
    }
    EXPECT_EQ(lines.size(), 4U);  // a declaration, a gap, the label, x
    EXPECT_EQ(text.lines.LinesOf("One_2"), lines);
    EXPECT_THAT(text.lines.LinesOf("One_3"), IsEmpty());
    EXPECT_EQ(text.lines.Find(0), std::nullopt);
    EXPECT_EQ(text.lines.Find(text.code.size() + 1), std::nullopt);
    EXPECT_EQ(text.lines.LineCount(), text.code.size());
}

TEST_F(LineMapTest, ALineFeedInATextCountsAsInAnEditor) {
    CCodeGen shader;
    shader.AddLine(CCodeGen::kMainBody, LineKind::kAppend, "a\nb", {0, {LineSource::kFirstFile, 7}});
    shader.AddLine(CCodeGen::kMainBody, LineKind::kAppend, "c", {0, {LineSource::kFirstFile, 9}});
    shader.ReadFrom("/f");
    std::vector<std::string> code;
    CCodeGen::Origins origins;
    shader.WriteCode(code, &origins);
    const LineMap map(code, origins, shader, {});
    EXPECT_EQ(map.Find(2)->line, 7);
    EXPECT_EQ(map.Find(3)->line, 9);
    EXPECT_EQ(map.Find(3)->file, "/f");
}

TEST(LineSourceTest, WhatFindsNoRoomIsNotKnown) {
    EXPECT_EQ(LineSource(1, 1'048'575).Line(), 1'048'575);
    EXPECT_EQ(LineSource(4095, 3).File(), LineSource::kGenerated);
    for (const LineSource source : {LineSource(1, 1'048'576), LineSource(4096, 1)}) {
        EXPECT_EQ(source.File(), LineSource::kUnknown);
        EXPECT_EQ(source.Line(), 0);
    }
}

// Each line of a template names the place where it stands, so the source tells by itself what the map is to
// say.
TEST_F(LineMapTest, AgreesWithLinesThatNameTheirOwnPlace) {
    std::mt19937 random(17);
    const auto tag = [](const std::string& name, int line) {
        return "@" + name + ":" + std::to_string(line) + "@ a;";
    };
    for (const std::string name : {"One", "Two", "Three"}) {
        std::string text = "input a { float { 1 0 1 0 \"%g\" } }\noutput o { float out }\n";
        int line = 3;
        for (int clause = 0; clause < 12; ++clause) {
            const char* const blocks[] = {"global-open", "main-header", "main-body", "main-close",
                                          "global-close"};
            const char* const modes[] = {"append", "insert", "unique"};
            text.append("codegen.").append(blocks[random() % 5]).append(" ").append(modes[random() % 3]) +=
                '\n';
            for (size_t lines = random() % 4; lines > 0; --lines) text += tag("/" + name, ++line) + "\n";
            text += "<<EOT>>\n";
            line += 2;
        }
        host.AddOperator(name, text + "#source lines\n#file /" + name + "\n#line 1 1 1\n");
    }
    std::vector<COpBox*> boxes;
    for (int wid = 1; wid <= 40; ++wid) {
        boxes.push_back(&AddBox(std::vector<std::string>{"One", "Two", "Three"}[random() % 3], wid));
        if (wid > 1 && random() % 3 > 0)
            test::Wire(*boxes[random() % (boxes.size() - 1)], 0, *boxes.back(), 0);
    }
    const ShaderText text = Generate();
    std::string error;
    const auto stored = LineMap::Read(text.lines.Store(100), error);
    ASSERT_TRUE(stored) << error;
    const std::regex named("@(.*):(.*)@");
    size_t found = 0;
    for (size_t i = 0; i < text.code.size(); ++i) {
        EXPECT_EQ(stored->Find(i + 101), text.lines.Find(i + 1));
        std::smatch match;
        if (!std::regex_search(text.code[i], match, named)) continue;
        ++found;
        const auto place = text.lines.Find(i + 1);
        ASSERT_TRUE(place);
        EXPECT_EQ(place->file + ":" + std::to_string(place->line), match[1].str() + ":" + match[2].str())
            << i + 1;
        EXPECT_EQ("/" + place->operatorName, match[1].str());
        // Its value or its feeder's name shows whose line it is, but for those that are there once for all.
        EXPECT_TRUE(place->box.starts_with(place->operatorName + "_"));
    }
    EXPECT_GT(found, 200U);
}

TEST(LineMapFile, TellsOfArgumentsAheadOfTheSource) {
    CCodeGen shader;
    shader.AddLine(CCodeGen::kMainBody, LineKind::kAppend, "a");
    std::vector<std::string> code;
    CCodeGen::Origins origins;
    shader.WriteCode(code, &origins);
    const std::string text = LineMap(code, origins, shader, {})
                                 .Store(20, {{5, 9, 12, "Clear Coat", "Ks"}, {15, 2, 3, "A\nB\r", "x\ny"}});
    std::string error;
    const auto map = LineMap::Read(text, error);
    ASSERT_TRUE(map) << error << text;
    EXPECT_EQ(map->Find(4), std::nullopt);
    EXPECT_EQ(map->Find(5), (LinePlace{"Clear Coat_12", "Clear Coat", "Ks", "", "", 0}));
    EXPECT_EQ(map->Find(13), map->Find(5));
    EXPECT_EQ(map->Find(14), std::nullopt);
    EXPECT_EQ(map->Find(16)->button, "x y") << "names are of one line";
    EXPECT_EQ(map->Find(21)->clause, "main-body");
    EXPECT_EQ(map->Store(0), text);
}

TEST(LineMapFile, IsReadAsItWasWritten) {
    const std::string text =
        "#source lines 1\nbox 1 A\nbox 2 B\nfile /a b\nfile /c\n"
        "line 3 2 1 main-body 1 7\noutput 5 2 main-header out\nline 6 4 0 global-open 0 0\n";
    std::string error;
    const auto map = LineMap::Read(text, error);
    ASSERT_TRUE(map) << error;
    EXPECT_EQ(map->Store(0), text);
    EXPECT_EQ(map->Find(4), (LinePlace{"A_1", "A", "", "main-body", "/a b", 8}));
    EXPECT_EQ(map->Find(5), (LinePlace{"B_2", "B", "out", "main-header", "", 0}));
    EXPECT_EQ(map->Find(9), (LinePlace{"", "", "", "global-open", "", 0}));
    EXPECT_EQ(map->Find(10), std::nullopt);
    EXPECT_EQ(map->Find(2), std::nullopt);
}

TEST(LineMapFile, LinesOfSeveralBoxesComeInTheirOrder) {
    std::string error;
    const auto map = LineMap::Read(
        "#source lines 1\nbox 1 A\nbox 2 B\nbox 3 C\nline 1 1 3 main-body 0 0\nline 2 2 1 main-body 0 0\n"
        "line 4 1 2 main-body 0 0\nline 5 1 0 main-body 0 0\nline 6 1 3 main-body 0 0\n",
        error);
    ASSERT_TRUE(map) << error;
    EXPECT_THAT(map->LinesOf({std::unordered_set<std::string>{"A_1", "C_3", "D_4"}}),
                ElementsAre(1, 2, 3, 6));
    EXPECT_THAT(map->LinesOf("B_2"), ElementsAre(4));
    EXPECT_THAT(map->LinesOf(std::unordered_set<std::string>()), IsEmpty());
}

TEST(LineMapFile, AScriptsTextHasTheMapOfTheLinesThatItComesFrom) {
    std::string error;
    const auto map = LineMap::Read(
        "#source lines 1\nbox 1 A\nfile /a\nline 1 3 1 main-body 1 7\noutput 4 1 main-header out\n", error);
    ASSERT_TRUE(map) << error;
    const LineMap made = map->Through({0, 2, 3, 0, 4, 9, 1});
    EXPECT_EQ(made.LineCount(), 7U);
    EXPECT_EQ(made.Find(1), std::nullopt);
    EXPECT_EQ(made.Find(2), map->Find(2));
    EXPECT_EQ(made.Find(3), map->Find(3));
    EXPECT_EQ(made.Find(4), std::nullopt);
    EXPECT_EQ(made.Find(5), map->Find(4));
    EXPECT_EQ(made.Find(6), std::nullopt) << "of a line that there is not";
    EXPECT_EQ(made.Find(7), map->Find(1));
}

TEST(LineMapFile, WhatDoesNotFitTogetherIsRefusedWithItsLine) {
    const std::string head = "#source lines 1\nbox 1 A\nfile /a\n";
    for (const char* line : {
             "line 1 1 2 main-body 1 1",    // no such box
             "line 1 1 1 main-body 2 1",    // no such file
             "line 1 0 1 main-body 1 1",    // of nothing
             "line 0 1 1 main-body 1 1",    // before the first line
             "line 1 1 1 nowhere 1 1",      // no such block
             "line 1 1 1 main-body 1",      // a number is missing
             "line 1 1 1 main-body 1 1 1",  // one too many
             "line 1 99999999999999999999 1 main-body 1 1",
             "line 1 -1 1 main-body 1 1",
             "line x 1 1 main-body 1 1",
             "output 1 0 main-header out",  // of no box
             "output 1 1 main-header ",     // without a name
             "box 2",
             "box A_2 A",
             "argument 1 1 0 size",
             "file ",
             "else",
             "",
         }) {
        std::string error;
        EXPECT_EQ(LineMap::Read(head + line + "\n", error), std::nullopt) << line;
        EXPECT_THAT(error, HasSubstr("line 4 ")) << line;
    }
    std::string error;
    EXPECT_EQ(LineMap::Read(head + "line 5 2 0 main-body 0 0\nline 6 1 0 main-body 0 0\n", error),
              std::nullopt);
    EXPECT_THAT(error, HasSubstr("line 5 "));
    EXPECT_EQ(LineMap::Read("", error), std::nullopt);
    EXPECT_THAT(error, HasSubstr("line 1 "));
}

}  // namespace
}  // namespace tavrin
