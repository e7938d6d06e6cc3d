// SPDX-License-Identifier: Apache-2.0
// What a document looks like in its file, to the byte.
#include "document/DocumentWriter.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <ctime>

#include "support/TestHost.h"

namespace tavrin {
namespace {

using test::CrLfText;
using test::kTestTime;
using test::MakeBox;
using test::Wire;
using testing::HasSubstr;
using testing::Not;

// The network of the documentation's example. Lines end in CR LF but for those of the export options.
const char* const kExampleHead = R"(# Tavrn file written at Sun Sep 09 01:46:40 2001

tavrn-version 1.3.32

tavrn-renderer mini

toolbar
{
    button 0=noisebox
    button 1=surfacebox
}

opdesk
{
    # BOXES

    # noisebox_1
    opbox
    {
        filename noisebox
        wid 1
        xypos 100.000000 200.000000

        opboxdefs
        {
            maxinstances 0
        }

        opbutton.output result result
        {
            opbuttondefs
            {
                currentcast float
                wwms
                {
                    pin 0
                    stow 0
                    lock 0
                    arg 0
                    argname ""
                    comments ""
                }
            }
        }
    }

    # surfacebox_2
    opbox
    {
        filename surfacebox
        wid 2
        xypos -64.500000 0.000000

        opboxdefs
        {
            maxinstances 3
        }

        opbutton.input amount amount
        {
            opbuttondefs
            {
                currentcast float
                wwms
                {
                    pin 1
                    stow 0
                    lock 1
                    arg 1
                    argname "how \"much\""
                    comments "in C:\\dir"
                    float 0.5 0 1 0
                    rgb 0.1 0.2 0.3
                }
            }
        }
    }

    opconnects
    {
        opbox:noisebox,1,result,0 -> opbox:surfacebox,2,amount,0
    }

    # DESK STATE
    drawlinesoverboxes 0
    showvarnames       0
    lock               0
    showiconimages     0
    linetype           direct
    offsetxy           0.000000 0.000000
    zoomxyf            0.500000 0.500000 1.000000
}

renderoptions
{
    setenv DEPTH "2"
    setenv OUT_FILE "\"a\\b\" c"
}

exportoptions
{
)";
const char* const kExampleExport =
    "    tavrndir 1 /home/user/\n"
    "    shadersourcedir 0 ./\n"
    "    compiledshaderdir 0 ./\n"
    "    shaderinterfacedir 0 ./\n"
    "    renderinterfacedir 0 ./\n"
    "    postsavescript 1 /bin/true now\n";
const char* const kExampleTail = R"(}

customshaderhelp
{
>Marble
>
>    veins
}

# Tavrn file written at Sun Sep 09 01:46:40 2001

)";

class DocumentWriter : public test::DocumentTest {
  protected:
    // The line that begins so, without blanks before it and without its end.
    std::string LineOf(const std::string& text, const std::string& begin) {
        const auto place = text.find(" " + begin + " ");
        if (place == std::string::npos) return {};
        return text.substr(place + 1, text.find_first_of("\r\n", place) - place - 1);
    }
    // What stands in the file between the braces of a section.
    std::string SectionOf(const std::string& text, const std::string& name) {
        const std::string head = "\r\n" + name + "\r\n{\r\n";
        const auto begin = text.find(head);
        if (begin == std::string::npos) return "no section";
        return text.substr(begin + head.size(), text.find("}\r\n\r\n", begin) - begin - head.size());
    }
    // The lines that a button with such values has behind its comments.
    std::string ValueLines(const std::string& values) {
        document.m_boxes.clear();
        Add(MakeBox("b", "input i { " + values + " }", 1));
        const std::string text = document.Store();
        const std::string before = "comments \"\"\r\n";
        const auto begin = text.find(before) + before.size();
        return text.substr(begin, text.find("                }\r\n", begin) - begin);
    }
};

TEST_F(DocumentWriter, TheExampleIsWrittenByteByByte) {
    COpBox& noise = Add(MakeBox("noisebox", "output result { float out }", 1));
    COpBox& surface = Add(MakeBox("surfacebox", R"(input amount { float { 0.5 0 1 0 %g }
        rgb { 0.1 0.2 0.3 %g } wwms.argflag 1 wwms.argname "how \"much\"" } defs { maxinstances 3 })",
                                  2));
    noise.xypos[0] = 100;
    noise.xypos[1] = 200;
    surface.xypos[0] = -64.5F;
    surface.inputs.at(0)->pin = 1;
    surface.inputs.at(0)->lock = 1;
    surface.inputs.at(0)->comments = "in C:\\dir";
    Wire(noise, 0, surface, 0);
    document.toolbar = {"noisebox", "surfacebox"};
    document.m_renderOptions = {{"OUT_FILE", "\"a\\b\" c"}, {"DEPTH", "2"}};
    document.exportOptions.saveTavrn = 1;
    document.exportOptions.tavrnPath = "/home/user/doc.tvn";
    document.exportOptions.runPostSave = 1;
    document.exportOptions.postSaveScript = "/bin/true now";
    document.customshaderhelp = "Marble\r\n\r\n    veins";
    EXPECT_EQ(document.Store(), CrLfText(kExampleHead) + kExampleExport + CrLfText(kExampleTail));
    EXPECT_EQ(host.Sink().log, "");
}

TEST_F(DocumentWriter, AnEmptyDocumentHasEverySection) {
    document.customshaderhelp.clear();
    const std::string header = "# Tavrn file written at " + kTestTime + "\n\n";
    const std::string before =
        header +
        "tavrn-version 1.3.32\n\ntavrn-renderer mini\n\ntoolbar\n{\n}\n\n"
        "opdesk\n{\n    # BOXES\n\n    opconnects\n    {\n    }\n\n    # DESK STATE\n"
        "    drawlinesoverboxes 0\n    showvarnames       0\n    lock               0\n"
        "    showiconimages     0\n    linetype           direct\n"
        "    offsetxy           0.000000 0.000000\n    zoomxyf            0.500000 0.500000 1.000000\n}\n\n"
        "renderoptions\n{\n}\n\nexportoptions\n{\n";
    const std::string exports =
        "    tavrndir 0 ./\n    shadersourcedir 0 ./\n    compiledshaderdir 0 ./\n"
        "    shaderinterfacedir 0 ./\n    renderinterfacedir 0 ./\n    postsavescript 0 \n";
    const std::string after = "}\n\ncustomshaderhelp\n{\n\n}\n\n" + header;
    EXPECT_EQ(document.Store(), CrLfText(before) + exports + CrLfText(after));
}

TEST_F(DocumentWriter, TheTimeIsLocalTimeUnlessOneIsGiven) {
    host.GetSite().environment.Unset("SOURCE_DATE_EPOCH");
    const std::time_t before = std::time(nullptr);
    const std::string text = document.Store();
    const std::time_t after = std::time(nullptr);
    bool found = false;
    for (std::time_t at = before; at <= after; ++at) {
        char time[64];
        std::strftime(time, sizeof time, "%a %b %d %H:%M:%S %Y", std::localtime(&at));
        const std::string header = "# Tavrn file written at " + std::string(time) + "\r\n\r\n";
        found = found || (text.starts_with(header) && text.ends_with("}\r\n\r\n" + header));
    }
    EXPECT_TRUE(found) << text.substr(0, 60);
}

TEST_F(DocumentWriter, AnEmptyGivenTimeCountsAsNone) {
    host.GetSite().environment.Set("SOURCE_DATE_EPOCH", "");
    EXPECT_THAT(document.Store(), Not(HasSubstr("1970")));
}

TEST_F(DocumentWriter, TheSelectedLibraryIsNamed) {
    host.UseLibrary("other");
    EXPECT_THAT(document.Store(), HasSubstr("\r\n\r\ntavrn-renderer other\r\n\r\ntoolbar\r\n"));
}

TEST_F(DocumentWriter, BoxesAreWrittenInTheOrderOfTheirNumbersAndStayInIt) {
    for (const int wid : {10, 2, 7}) Add(MakeBox("b", "", wid));
    const std::string text = document.Store();
    EXPECT_LT(text.find("# b_2\r\n"), text.find("# b_7\r\n"));
    EXPECT_LT(text.find("# b_7\r\n"), text.find("# b_10\r\n"));
    EXPECT_EQ(test::WidsOf(document), (std::vector<int>{2, 7, 10}));
}

TEST_F(DocumentWriter, EachCopyOfAVinputIsAButtonOfItsOwn) {
    Add(MakeBox("b", "vinput layer { rgb { 0 0 0 %g } vinstances 3 }", 1));
    const std::string text = document.Store();
    for (const char* head : {"layer layer1", "layer layer2", "layer layer3"}) {
        EXPECT_THAT(text,
                    HasSubstr("\r\n\r\n        opbutton.vinput " + std::string(head) + "\r\n        {\r\n"));
    }
    EXPECT_THAT(text, Not(HasSubstr("layer4")));
}

TEST_F(DocumentWriter, InputsComeBeforeOutputsWhateverTheDefinitionHasFirst) {
    Add(MakeBox("b", "output o { float out } input i { string { value x } }", 1));
    const std::string text = document.Store();
    EXPECT_LT(text.find("opbutton.input i i"), text.find("opbutton.output o o"));
}

TEST_F(DocumentWriter, EveryKindOfValueHasItsLine) {
    const std::string blanks(20, ' ');
    EXPECT_EQ(ValueLines("float { 0.25 -1 1e6 1 %g }"), blanks + "float 0.25 -1 1e+06 1\r\n");
    EXPECT_EQ(ValueLines("xyz { 1 2.5 -3 0 10 1 %g }"), blanks + "xyz 1 2.5 -3 0 10 1\r\n");
    EXPECT_EQ(ValueLines("rgb { 0.1 0.2 0.3 %g }"), blanks + "rgb 0.1 0.2 0.3\r\n");
    EXPECT_EQ(ValueLines("rgba { 0.1 0.2 0.3 1 %g }"), blanks + "rgba 0.1 0.2 0.3 1\r\n");
    EXPECT_EQ(ValueLines(R"(string { value "a \"b\" \\c" })"), blanks + R"(string "a \"b\" \\c")" + "\r\n");
    EXPECT_EQ(ValueLines("generic { value plain }"), blanks + "generic \"plain\"\r\n");
    EXPECT_EQ(ValueLines("generic:matrix { value \"1 0\" }"), blanks + "generic matrix \"1 0\"\r\n");
}

TEST_F(DocumentWriter, ANumberHasSixSignificantDigits) {
    const std::string blanks(20, ' ');
    EXPECT_EQ(ValueLines("float { 0.123456789 1234567 0.00001 0 %g }"),
              blanks + "float 0.123457 1.23457e+06 1e-05 0\r\n");
}

TEST_F(DocumentWriter, AllCastsOfAnInputAreWrittenInTheirOrder) {
    const std::string lines =
        ValueLines("generic:m { value v } float { 1 2 3 0 %g } string { value s } rgb { 4 5 6 %g }");
    const std::string blanks(20, ' ');
    EXPECT_EQ(lines, blanks + "generic m \"v\"\r\n" + blanks + "float 1 2 3 0\r\n" + blanks +
                         "string \"s\"\r\n" + blanks + "rgb 4 5 6\r\n");
}

TEST_F(DocumentWriter, TheCurrentCastIsNamedWhole) {
    COpBox& box = Add(MakeBox("b", "input i { float { 0 0 0 0 %g } generic:matrix { value v } }", 1));
    box.inputs.at(0)->currentcast = 1;
    EXPECT_EQ(LineOf(document.Store(), "currentcast"), "currentcast generic:matrix");
}

TEST_F(DocumentWriter, AnOutputWithoutAnyTypeHasAnEmptyCast) {
    Add(MakeBox("b", "output o { }", 1));
    EXPECT_EQ(LineOf(document.Store(), "currentcast"), "currentcast \"\"");
}

TEST_F(DocumentWriter, ConnectionsFollowTheOutputsOfEachBox) {
    COpBox& first = Add(MakeBox("a", "output x { float out } output y { float out }", 1));
    COpBox& second = Add(MakeBox("b",
                                 "input p { float { 0 0 0 0 %g } } vinput q { float { 0 0 0 0 %g } "
                                 "vinstances 2 } output z { float out }",
                                 2));
    COpBox& third = Add(test::MakeLink("c", 3));
    Wire(second, 0, third, 0);
    Wire(first, 1, second, 2);
    Wire(first, 0, second, 0);
    Wire(first, 1, second, 1);
    EXPECT_THAT(document.Store(), HasSubstr("    }\r\n\r\n    opconnects\r\n    {\r\n"
                                            "        opbox:a,1,x,0 -> opbox:b,2,p,0\r\n"
                                            "        opbox:a,1,y,1 -> opbox:b,2,q,1\r\n"
                                            "        opbox:a,1,y,1 -> opbox:b,2,q,2\r\n"
                                            "        opbox:b,2,z,0 -> opbox:c,3,in,0\r\n"
                                            "    }\r\n\r\n    # DESK STATE\r\n"));
}

TEST_F(DocumentWriter, AConnectionThatIsLeftOnTheInputsSideAloneIsNotWritten) {
    COpBox& from = Add(test::MakeLink("a", 1));
    COpBox& to = Add(test::MakeLink("b", 2));
    from.outputs.at(0)->Connect(*to.inputs.at(0));
    from.outputs.at(0)->Connect(*to.inputs.at(0));
    ASSERT_EQ(to.inputs.at(0)->connections.First(), from.outputs.at(0).get());
    EXPECT_THAT(document.Store(), HasSubstr("opconnects\r\n    {\r\n    }\r\n"));
}

TEST_F(DocumentWriter, TheStateOfTheDeskHasItsSevenLines) {
    document.drawlinesoverboxes = 1;
    document.showvarnames = 1;
    document.lock = 1;
    document.showiconimages = 1;
    document.linetype = 1;
    document.offset[0] = -12.25F;
    document.offset[1] = 7;
    document.zoom[0] = 1;
    document.zoom[1] = 2;
    document.zoomFactor = 0.125F;
    EXPECT_THAT(document.Store(),
                HasSubstr("    # DESK STATE\r\n    drawlinesoverboxes 1\r\n    showvarnames       1\r\n"
                          "    lock               1\r\n    showiconimages     1\r\n"
                          "    linetype           trace\r\n    offsetxy           -12.250000 7.000000\r\n"
                          "    zoomxyf            1.000000 2.000000 0.125000\r\n}\r\n\r\nrenderoptions\r\n"));
    document.linetype = 2;
    EXPECT_THAT(document.Store(), HasSubstr("linetype           direct\r\n"));
}

TEST_F(DocumentWriter, OptionsThatDocumentsDoNotHoldAreLeftOut) {
    document.m_renderOptions = {{"KEPT", "a"}, {"PRIVATE", "b"}, {"also", ""}};
    host.unsavedOptions = {"PRIVATE"};
    EXPECT_EQ(SectionOf(document.Store(), "renderoptions"),
              "    setenv KEPT \"a\"\r\n    setenv also \"\"\r\n");
    EXPECT_EQ(host.Sink().log, "");
}

TEST_F(DocumentWriter, AnOptionWhoseNameCouldNotBeReadBackIsLeftOutAndNamed) {
    for (const std::string name : {"", "a b", "a#b", "#", "say\"so", "back\\slash", "line\nend", "tab\t"}) {
        host.Sink().log.clear();
        document.m_renderOptions = {{name, "x"}, {"kept", "y"}};
        EXPECT_EQ(SectionOf(document.Store(), "renderoptions"), "    setenv kept \"y\"\r\n") << name;
        EXPECT_THAT(host.Sink().log, testing::StartsWith("WARNING: "));
        EXPECT_THAT(host.Sink().log, HasSubstr("\"" + name + "\""));
    }
}

TEST_F(DocumentWriter, OfAnExportedFileOnlyTheDirectoryIsWritten) {
    CExportOptions& options = document.exportOptions;
    options.tavrnPath = "/a/b.c/doc.tvn";
    options.sourcePath = "relative/x.src";
    options.compiledPath = "name";
    options.shaderIfacePath = "C:\\d\\e.cus";
    options.renderIfacePath = "/only/";
    options.postSaveScript = "/bin/sh -c \"x\" # y";
    options.saveSource = 1;
    options.saveRenderIface = 2;
    EXPECT_EQ(SectionOf(document.Store(), "exportoptions"),
              "    tavrndir 0 /a/b.c/\n    shadersourcedir 1 relative/\n    compiledshaderdir 0 \n"
              "    shaderinterfacedir 0 C:\\d\\\n    renderinterfacedir 2 /only/\n"
              "    postsavescript 0 /bin/sh -c \"x\" # y\n");
}

TEST_F(DocumentWriter, EachLineOfTheHelpIsMarked) {
    const std::pair<const char*, const char*> kCases[] = {
        {"", ""},
        {"x", ">x"},
        {"x\r\n", ">x\r\n"},
        {"\r\nx", ">\r\n>x"},
        {"  a\r\n}\r\n>b", ">  a\r\n>}\r\n>>b"},
        {"a\nb", ">a\n>b"},
    };
    for (const auto& [help, lines] : kCases) {
        document.customshaderhelp = help;
        EXPECT_THAT(document.Store(), HasSubstr("customshaderhelp\r\n{\r\n" + std::string(lines) +
                                                "\r\n}\r\n\r\n# Tavrn file written at"))
            << help;
    }
}

TEST_F(DocumentWriter, WritingTwiceGivesTheSameText) {
    COpBox& from = Add(test::MakeLink("a", 1));
    for (int wid = 2; wid < 30; ++wid) Wire(from, 0, Add(test::MakeLink("b", wid)), 0);
    EXPECT_EQ(WriteDocument(document, host), WriteDocument(document, host));
    EXPECT_EQ(document.Store(), document.Store());
}

}  // namespace
}  // namespace tavrin
