// SPDX-License-Identifier: Apache-2.0
// Broken, cut, huge and random files: whatever they hold, reading ends, and the document can be stored.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>

#include "support/TestHost.h"

namespace tavrin {
namespace {

using test::BoxAt;
using testing::HasSubstr;
using testing::IsEmpty;

class DocumentHostile : public test::DocumentTest {
  protected:
    DocumentHostile() {
        host.startsProcesses = false;
        host.AddOperator("op",
                         "vinput v { float { 0 0 1 0 %g } string { value x } generic:m { value x } } output "
                         "o { float out }");
        host.appVariables = {{"A", "1"}};
        document.DeleteContents();
    }
    // Reads into an emptied document. What is there can be stored and read again without a message.
    bool LoadAndStore(const std::string& text) {
        host.Sink().alerts.clear();
        document.DeleteContents();
        const bool loaded = Load(text);
        const auto alerts = Alerts();
        const std::string stored = document.Store();
        document.DeleteContents();
        host.Sink().alerts.clear();
        EXPECT_TRUE(Load(stored));
        EXPECT_THAT(Alerts(), IsEmpty());
        host.Sink().alerts = alerts;
        return loaded;
    }
    // Each beginning of the text from `begin` on, read as a file: either it reads, or one alert tells why
    // not.
    void CutEverywhere(const std::string& text, size_t begin, size_t end) {
        for (size_t size = begin; size <= end; ++size) {
            host.Sink().alerts.clear();
            document.DeleteContents();
            const bool loaded = Load(text.substr(0, size));
            const std::string alert = host.Sink().LastAlert();
            // An export option that is none ends its section alone, the end of the file some of them; a help
            // text without its end says nothing.
            const bool inHelp = text.rfind("customshaderhelp", size) != std::string::npos;
            const bool isWhole = alert.empty() ||
                                 alert.find(": unknown export option: ") != std::string::npos ||
                                 alert.find(": the file ends inside the section ") != std::string::npos;
            ASSERT_TRUE(loaded ? isWhole : !alert.empty() || inHelp) << "cut at " << size << ": " << alert;
            ASSERT_LE(Alerts().size(), 1U) << "cut at " << size;
            ASSERT_TRUE(alert.empty() || alert.starts_with("doc.tvn near line ")) << alert;
        }
    }
};

TEST_F(DocumentHostile, AnEmptyDocumentMayBeCutAnywhere) {
    document.toolbar = {"op", "op"};
    const std::string text = document.Store();
    CutEverywhere(text, 0, text.size());
}

TEST_F(DocumentHostile, ABoxMayBeCutAnywhere) {
    auto box = std::make_unique<COpBox>();
    ASSERT_TRUE(host.DefineBox(*box, "op"));
    box->wid = 1;
    COpBox& added = Add(std::move(box));
    test::Wire(added, 0, added, 0);
    const std::string text = document.Store();
    // A name that is cut is no operator, which is told in the words of the library.
    const size_t begin = text.find("filename op") + std::string("filename op").size();
    CutEverywhere(text, begin, text.find("# DESK STATE"));
}

TEST_F(DocumentHostile, NoiseIsPassedOver) {
    std::mt19937 random(7);
    for (int round = 0; round < 300; ++round) {
        std::string text;
        for (size_t i = random() % 2000; i > 0; --i) text += static_cast<char>(random() % 256);
        EXPECT_TRUE(LoadAndStore(text));
        EXPECT_FALSE(LoadDeskOnly(text));
    }
}

TEST_F(DocumentHostile, KeywordsInAnyOrderEndTheReadingOneWayOrTheOther) {
    static const std::vector<std::string> kWords = {"tavrn-version",
                                                    "toolbar",
                                                    "opdesk",
                                                    "renderoptions",
                                                    "exportoptions",
                                                    "customshaderhelp",
                                                    "{",
                                                    "}",
                                                    "{",
                                                    "}",
                                                    "button",
                                                    "1=x",
                                                    "setenv",
                                                    "A",
                                                    "tavrndir",
                                                    "opconnects",
                                                    "lock",
                                                    "0",
                                                    "1",
                                                    "linetype",
                                                    "trace",
                                                    "offsetxy",
                                                    "zoomxyf",
                                                    "\n",
                                                    "\n",
                                                    "\"",
                                                    "\\",
                                                    "#",
                                                    "opbox:a,1,b,0",
                                                    "->",
                                                    "currentcast",
                                                    "wwms",
                                                    ">",
                                                    std::string(1, '\0'),
                                                    "-1",
                                                    "1e99"};
    std::mt19937 random(11);
    for (int round = 0; round < 3000; ++round) {
        std::string text;
        for (size_t i = random() % 40; i > 0; --i) text += kWords[random() % kWords.size()] + " ";
        LoadAndStore(text);
    }
}

TEST_F(DocumentHostile, WordsOfABoxInAnyOrderEndTheReadingOneWayOrTheOther) {
    static const std::vector<std::string> kWords = {"{",
                                                    "}",
                                                    "}",
                                                    "wid",
                                                    "1",
                                                    "-7",
                                                    "xypos",
                                                    "nan",
                                                    "inf",
                                                    "opboxdefs",
                                                    "maxinstances",
                                                    "opbutton.vinput v v1",
                                                    "opbutton.vinput v v9",
                                                    "opbutton.output o o",
                                                    "{ opbuttondefs { currentcast float wwms {",
                                                    "} } }",
                                                    "pin",
                                                    "argname \"x\"",
                                                    "float 1 2 3 0",
                                                    "generic m \"x\"\n",
                                                    "string \"\"",
                                                    "\n",
                                                    "opconnects {",
                                                    "opbox:op,1,o,0 -> opbox:op,1,v,0"};
    std::mt19937 random(13);
    for (int round = 0; round < 200; ++round) {
        std::string text = "opdesk { opbox { filename op\n";
        for (size_t i = random() % 30; i > 0; --i) text += kWords[random() % kWords.size()] + " ";
        LoadAndStore(text);
    }
}

TEST_F(DocumentHostile, AMillionBracesNestNothing) {
    const std::string braces(1000000, '{');
    std::string spaced;
    for (int i = 0; i < 1000000; ++i) spaced += "{ ";
    EXPECT_TRUE(LoadAndStore(braces));
    EXPECT_TRUE(LoadAndStore(spaced));
    for (const char* section : {"toolbar ", "opdesk ", "renderoptions ", "opdesk { opconnects "}) {
        EXPECT_FALSE(LoadAndStore(section + spaced)) << section;
        EXPECT_EQ(host.Sink().LastAlert(), "doc.tvn near line 1: unexpected input") << section;
    }
    EXPECT_TRUE(LoadAndStore("exportoptions " + spaced));
    EXPECT_EQ(host.Sink().LastAlert(), "doc.tvn near line 1: unknown export option: {");
    EXPECT_FALSE(LoadAndStore("customshaderhelp " + spaced));
    EXPECT_FALSE(LoadAndStore("opdesk { opbox { filename op opbutton.vinput v v1 { " + spaced));
}

TEST_F(DocumentHostile, AWordOfAnyLengthIsRead) {
    const std::string word(3000000, 'x');
    EXPECT_TRUE(Load("toolbar { button 0=" + word + " }\nrenderoptions { setenv A \"" + word + "\" }\n"));
    EXPECT_EQ(document.toolbar.at(0).size(), word.size());
    EXPECT_EQ(document.m_renderOptions["A"].size(), word.size());
    EXPECT_FALSE(Load("opdesk { " + word + " }"));
    EXPECT_FALSE(Load("opdesk { opbox { filename " + word + " } }"));
    EXPECT_FALSE(Load("opdesk { opbox { filename op opbutton.vinput v v1 { currentcast float { " + word));
    EXPECT_THAT(host.Sink().LastAlert(), HasSubstr(word.substr(0, 10000))) << "its beginning";
}

TEST_F(DocumentHostile, FormatCharactersInAFileAreText) {
    EXPECT_FALSE(Load("opdesk { opbox { filename op\nopbutton.%n%s %s%n x"));
    EXPECT_EQ(host.Sink().LastAlert(), "doc.tvn near line 2: button %s%n not of type %n%s");
    EXPECT_FALSE(Load("opdesk { opbox { filename %s%n } }"));
    EXPECT_EQ(host.Sink().LastAlert(), "%s%n: unknown operator name");
    EXPECT_TRUE(Load("exportoptions { %n%s"));
    EXPECT_EQ(host.Sink().LastAlert(), "doc.tvn near line 1: unknown export option: %n%s");
    EXPECT_TRUE(Load("renderoptions { setenv %n%s x }"));
    EXPECT_THAT(host.Sink().log, HasSubstr("discarding unknown render option %n%s"));
}

TEST_F(DocumentHostile, AnOperatorsNameIsNoPath) {
    host.Directory().Write("installation/outside", "output o { float out }");
    for (const char* name : {"../outside", "../../outside", "/etc/passwd", "../menu/1000.op", "..", "."}) {
        host.Sink().alerts.clear();
        EXPECT_FALSE(Load("opdesk { opbox { filename " + std::string(name) + " } }"));
        EXPECT_THAT(Alerts(), testing::ElementsAre(std::string(name) + ": unknown operator name"));
    }
}

TEST_F(DocumentHostile, ManyConnectionsAreReadInOneGo) {
    std::string text = "opdesk { opbox { filename op wid 1\n";
    constexpr int kCopies = 2000;
    for (int copy = 1; copy <= kCopies; ++copy) {
        text += "opbutton.vinput v v" + std::to_string(copy) + " { currentcast float { } } }\n";
    }
    text += "} opconnects {\n";
    for (int copy = 0; copy < kCopies; ++copy)
        text += "opbox:op,1,o,0 -> opbox:op,1,v," + std::to_string(copy) + "\n";
    EXPECT_TRUE(LoadAndStore(text + "} }"));
    EXPECT_EQ(BoxAt(document, 0).outputs.at(0)->connections.Size(), static_cast<size_t>(kCopies));
}

}  // namespace
}  // namespace tavrin
