// SPDX-License-Identifier: Apache-2.0
#include "forms/FormParser.h"

#include "forms/FormTestHost.h"
#include "text/Tokens.h"

namespace tavrin::test {

class FormParser : public FormTest {};

TEST_F(FormParser, ReadsAWholeForm) {
    for (const std::string& text : {kExampleForm, WithCrLf(kExampleForm)}) {
        form.ClearAll(host);
        host.stored.clear();
        CArchive archive = ArchiveOf(text);
        std::string keyword;
        ASSERT_TRUE(ReadToken(archive, keyword));
        ASSERT_EQ(keyword, "roe");
        ASSERT_TRUE(ReadForm(archive, form, host, report));

        EXPECT_EQ(form.winWidth, 380);
        EXPECT_EQ(form.winHeight, 0);
        EXPECT_EQ(form.count, 1);
        EXPECT_EQ(form.placed, 2U);
        ASSERT_EQ(form.children.size(), 2U);
        const auto& frame = Child<CFormFrame>(form, 0);
        EXPECT_EQ(frame.orientation, FormOrientation::kVertical);
        EXPECT_EQ(frame.count, 2);
        ASSERT_EQ(frame.children.size(), 2U);
        auto& depth = Child<CFormXField>(frame, 0);
        EXPECT_EQ(depth.envname, "RENDER_DEPTH");
        EXPECT_EQ(depth.text, "2.0");
        EXPECT_EQ(ListOf(depth.presets), (Lines{"Depth", "1 Fast", "4 Careful"}));
        const auto& size = Child<CFormXYField>(frame, 1);
        EXPECT_EQ(size.xText, "640");
        EXPECT_EQ(size.yText, "480");
        EXPECT_EQ(size.separatorLabel, "x");
        const auto& ok = Child<CFormOkField>(form, 1);
        EXPECT_EQ(ok.ok.to + "/" + ok.ok.message + "/" + ok.ok.argument, "form/render/render");
        EXPECT_EQ(ok.defaults.to + "/" + ok.defaults.message, "roe/use-defaults");
        EXPECT_EQ(host.stored, (Stored{{"RENDER_DEPTH", "2.0"}, {"SIZE_X", "640,480"}}));
        EXPECT_TRUE(sink.alerts.empty());

        depth.ChoosePreset(2, host);
        EXPECT_EQ(depth.text, "4.0");
        EXPECT_EQ(host.variables["RENDER_DEPTH"], "4.0");
        EXPECT_EQ(depth.presets.Selected(), 0);
    }
}

TEST_F(FormParser, AnEmptySectionSucceedsAndPlacesNothing) {
    EXPECT_TRUE(Read("{\n}\nmore"));
    EXPECT_EQ(rest, "more");
    EXPECT_TRUE(form.children.empty());
    EXPECT_EQ(form.placed, 0U);
    EXPECT_EQ(form.winWidth, 0);
    EXPECT_EQ(form.winHeight, 0);
    EXPECT_TRUE(host.stored.empty());
}

TEST_F(FormParser, TheBraceOfASectionMayStandAnywhere) {
    for (const char* text :
         {"{\nwinwidth 9\n}\n", " {\r\nwinwidth 9\r\n}\r\n", "\n\n{\nwinwidth 9\n}\n",
          "# note\n{ # note\nwinwidth 9 # note\n}\n", "{ winwidth 9\n}\n", "\r\n{\r\nwinwidth 9"}) {
        form.winWidth = 0;
        EXPECT_TRUE(Read(text)) << text;
        EXPECT_EQ(form.winWidth, 9) << text;
        EXPECT_EQ(rest, "") << text;
    }
}

TEST_F(FormParser, ASectionWithoutBraceFails) {
    EXPECT_FALSE(Read("winwidth 9\n}\n"));
    EXPECT_EQ(sink.LastAlert(), "site.def near line 1: expected opening brace");
    EXPECT_EQ(form.winWidth, 0);
}

TEST_F(FormParser, WindowSizesCountWhenTheSectionIsComplete) {
    EXPECT_TRUE(Read("{\nwinwidth 1\nwinwidth 300px\nwinheight 200\n}\n"));
    EXPECT_EQ(form.winWidth, 300);
    EXPECT_EQ(form.winHeight, 200);
    EXPECT_TRUE(Read("{\nwinwidth 0\nwinheight none\n}\n"));
    EXPECT_EQ(form.winWidth, 300) << "0 keeps the size";
    EXPECT_EQ(form.winHeight, 200);
    EXPECT_FALSE(Read("{\nwinwidth 50\nnonsense {\n}\n}\n"));
    EXPECT_EQ(form.winWidth, 300);
}

TEST_F(FormParser, ALaterSectionAddsToTheForm) {
    EXPECT_TRUE(Read("{\nlabel {\n}\n}\n"));
    EXPECT_TRUE(Read("{\nbutton {\n}\n}\n"));
    ASSERT_EQ(form.children.size(), 2U);
    Child<CFormLabel>(form, 0);
    Child<CFormButton>(form, 1);
    EXPECT_EQ(form.placed, 2U);
}

TEST_F(FormParser, ClearAllRemovesWidgetsAndKeepsTheirDefaults) {
    EXPECT_TRUE(Read("{\nxfield {\nenvname A\nvalue 1\n}\n}\n"));
    EXPECT_TRUE(Read("{\nclearall\nlabel {\n}\n}\n"));
    ASSERT_EQ(form.children.size(), 1U);
    Child<CFormLabel>(form, 0);
    EXPECT_EQ(host.variables["A"], "1");
    EXPECT_TRUE(Read("{\nlabel {\n}\nclearall\n}\n"));
    EXPECT_TRUE(form.children.empty()) << "widgets of the same section go as well";
    EXPECT_EQ(form.placed, 0U);
    EXPECT_TRUE(Read("{\nlabel {\n}\n}\n"));
    EXPECT_FALSE(Read("{\nclearall\nlabel {\n}\nbad {\n"));
    EXPECT_EQ(form.placed, 0U) << "what stands now was never placed";
}

TEST_F(FormParser, LoadDefaultsReachesTheWidgetsReadSoFar) {
    host.variables["B"] = "site";
    EXPECT_TRUE(
        Read("{\nframe {\nxfield {\nenvname A\nvalue 1\n}\n}\nxfield {\nenvname A\nvalue 2\n}\n"
             "loaddefaults\nxfield {\nenvname A\nvalue 3\n}\n}\n"));
    EXPECT_EQ(Child<CFormXField>(Child<CFormFrame>(form, 0), 0).text, "2");
    EXPECT_EQ(Child<CFormXField>(form, 1).text, "2");
    EXPECT_EQ(Child<CFormXField>(form, 2).text, "3");
    EXPECT_EQ(host.stored, (Stored{{"A", "1"}, {"A", "2"}, {"A", "2"}, {"A", "2"}, {"A", "3"}}));
}

TEST_F(FormParser, ASectionAsksForTheBraceOfAWidget) {
    EXPECT_TRUE(Read("{\nlabel {\nlabel a\n}\nlabel\n{\nlabel b\n}\nlabel words\n\n{\nlabel c\n}\n}\n"));
    ASSERT_EQ(form.children.size(), 3U);
    EXPECT_EQ(Child<CFormLabel>(form, 2).label, "c");
    EXPECT_FALSE(Read("{\nlabel words\nlabel a\n}\n}\n"));
    EXPECT_EQ(sink.LastAlert(), "site.def near line 3: expected opening brace");
    EXPECT_EQ(form.children.size(), 3U);
}

TEST_F(FormParser, AFrameTakesAnyWordForTheBraceOfAWidget) {
    EXPECT_TRUE(
        Read("{\nframe {\nlabel {\nlabel a\n}\nlabel\n{\nlabel b\n}\nlabel anything\nlabel c\n}\n}\n}\n"));
    const auto& frame = Child<CFormFrame>(form, 0);
    ASSERT_EQ(frame.children.size(), 3U);
    EXPECT_EQ(Child<CFormLabel>(frame, 0).label, "a");
    EXPECT_EQ(Child<CFormLabel>(frame, 1).label, "b");
    EXPECT_EQ(Child<CFormLabel>(frame, 2).label, "c");
    EXPECT_FALSE(Read("{\nframe {\nlabel\nlabel c\n}\n}\n}\n"));
    EXPECT_EQ(sink.LastAlert(), "site.def near line 4: expected opening brace");
}

TEST_F(FormParser, UnknownKindsFail) {
    EXPECT_FALSE(Read("{\nlabel {\n}\nslider {\n}\n}\n"));
    EXPECT_EQ(sink.LastAlert(), "site.def near line 5: unexpected input");
    EXPECT_FALSE(Read("{\nframe {\nLabel {\n}\n}\n}\n"));
    EXPECT_EQ(sink.LastAlert(), "site.def near line 4: unexpected input");
    EXPECT_FALSE(Read("{\nslider\nlabel {\n"));
    EXPECT_EQ(sink.LastAlert(), "site.def near line 3: expected opening brace")
        << "the brace is looked at first";
    EXPECT_EQ(form.children.size(), 1U);
}

TEST_F(FormParser, LayoutBlocksSetTheFrame) {
    const auto& frame =
        ReadOne<CFormFrame>("frame", "{\nhorizontal 3\n}\nlabel {\n}\n{\nshadowtype x y\nshadowsize\n}");
    EXPECT_EQ(frame.orientation, FormOrientation::kHorizontal);
    EXPECT_EQ(frame.count, 3);
    const auto& last =
        ReadOne<CFormFrame>("frame", "{\nhorizontal 3\n}\nlabel {\n}\n{ ignored\nvertical 2\n}");
    EXPECT_EQ(last.orientation, FormOrientation::kVertical);
    EXPECT_EQ(last.count, 2);
    EXPECT_EQ(last.children.size(), 1U);
    EXPECT_EQ(ReadOne<CFormFrame>("frame", "{\nvertical many\n}").count, 0);
}

TEST_F(FormParser, AnUnknownKeyOfALayoutBlockFailsTheFrame) {
    EXPECT_FALSE(Read("{\nlabel {\n}\nframe {\nlabel {\n}\n{\nmargin 3\n}\n}\n}\n"));
    EXPECT_EQ(sink.LastAlert(), "site.def near line 9: unexpected input");
    EXPECT_EQ(form.children.size(), 1U);
}

TEST_F(FormParser, ACountOfZeroIsPutRightOnTheFrameAroundTheOneThatEnds) {
    EXPECT_TRUE(Read("{\nframe {\n{\nvertical 0\n}\nframe {\n{\nhorizontal 0\n}\n}\n}\n}\n"));
    auto& outer = Child<CFormFrame>(form, 0);
    auto& inner = Child<CFormFrame>(outer, 0);
    EXPECT_EQ(outer.count, 1);
    EXPECT_EQ(inner.count, 0);
    EXPECT_EQ(inner.Place({{10, 10}}).size(), 1U) << "and places its children all the same";
}

TEST_F(FormParser, OtherWidgetsAndOtherCountsRepairNothing) {
    EXPECT_TRUE(Read("{\nframe {\n{\nvertical 0\n}\nlabel {\n}\n}\n}\n"));
    EXPECT_EQ(Child<CFormFrame>(form, 0).count, 0);
    EXPECT_TRUE(Read("{\nframe {\nframe {\n}\n{\nvertical 0\n}\n}\n}\n"));
    EXPECT_EQ(Child<CFormFrame>(form, 1).count, 0);
    EXPECT_TRUE(Read("{\nframe {\n{\nvertical -2\n}\nframe {\n}\n}\n}\n"));
    EXPECT_EQ(Child<CFormFrame>(form, 2).count, -2);
}

TEST_F(FormParser, ACommentedClosingBraceIsUnexpectedInABody) {
    EXPECT_FALSE(Read("{\nxfield {\nvalue 1\n} # comment\n}\n"));
    EXPECT_EQ(sink.LastAlert(), "site.def near line 5: unexpected input");
    EXPECT_TRUE(form.children.empty());
    EXPECT_TRUE(host.stored.empty());
}

TEST_F(FormParser, ACommentedClosingBraceIsAPresetInAContentsBlock) {
    const auto& field = ReadOne<CFormXField>("xfield", "optioncontents {\n} # comment\n}");
    EXPECT_EQ(ListOf(field.presets), (Lines{"", "} # comment"}));
}

TEST_F(FormParser, ContentsBlocksTakeLinesAsTheyAre) {
    const auto& chooser = ReadOne<CFormChooser>(
        "chooser",
        "choosercontents {\n  a # b \n\n\t\n\"quoted # \"\n_SEPARATOR_\n\"\"\n#c\n\"}\"\n}\n"
        "choosercontents words\n{ first\nlast\n}");
    EXPECT_EQ(chooser.lines, (Lines{"a # b", "quoted # ", "", "#c", "}", "first", "last"}));
}

TEST_F(FormParser, BlocksAskForTheirBrace) {
    for (const char* key : {"optioncontents", "help"}) {
        sink.alerts.clear();
        EXPECT_FALSE(Read(std::string("{\nxfield {\n") + key + " words\n1\n}\n}\n}\n"));
        EXPECT_EQ(sink.LastAlert(), "site.def near line 4: expected opening brace") << key;
    }
    EXPECT_FALSE(Read("{\nxyzfield {\nyoptioncontents\n1\n}\n}\n}\n"));
    EXPECT_EQ(sink.LastAlert(), "site.def near line 4: expected opening brace");
    EXPECT_FALSE(Read("{\nchooser {\nchoosercontents {}\n}\n}\n}\n"));
    EXPECT_EQ(sink.LastAlert(), "site.def near line 4: expected opening brace");
    EXPECT_TRUE(form.children.empty());
}

TEST_F(FormParser, HelpKeepsLinesAndGuardedBraces) {
    const auto& field =
        ReadOne<CFormXField>("xfield", "help {\nlost\n}\nhelp\n{\n\n first # one\n\n>}\n>  last\n}");
    EXPECT_EQ(field.help, "first # one\r\n\r\n}\r\n  last") << "the last block stands";
}

TEST_F(FormParser, AFailureEndsTheSectionAndKeepsWhatWasComplete) {
    EXPECT_FALSE(Read(
        "{\nxfield {\nenvname A\n}\nframe {\nxfield {\nenvname B\n}\nlabel {\nbad\n}\n}\nlabel {\n}\n}\n"));
    EXPECT_EQ(sink.alerts.size(), 1U);
    ASSERT_EQ(form.children.size(), 1U) << "the frame went with the widget in it that failed";
    EXPECT_EQ(Child<CFormXField>(form, 0).envname, "A");
    EXPECT_EQ(form.placed, 0U);
    EXPECT_EQ(host.stored, (Stored{{"A", ""}, {"B", ""}}));
    EXPECT_EQ(rest, "}\n}\nlabel {\n}\n}\n") << "reading stops at the line at fault";
    EXPECT_TRUE(Read("{\n}\n"));
    EXPECT_EQ(form.placed, 1U) << "the next complete section places it";
}

}  // namespace tavrin::test
