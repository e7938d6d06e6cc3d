// SPDX-License-Identifier: Apache-2.0
#include "forms/FormTestHost.h"

namespace tavrin::test {

class FormControls : public FormUse {};

TEST_F(FormControls, AFieldStoresWhatTheUserEnters) {
    auto& field = Make<CFormXField>("xfield", "envname A\nforcefloat");
    field.Read("7", host);
    EXPECT_EQ(field.text, "7.0");
    EXPECT_EQ(host.stored, (Stored{{"A", "7.0"}}));
    EXPECT_EQ(refreshes, 0) << "the controls show it already";
}

TEST_F(FormControls, AnUnnamedWidgetStoresNothingThatTheUserEnters) {
    auto& field = Make<CFormXField>("xfield", "");
    field.Read("7", host);
    EXPECT_EQ(field.text, "7");
    EXPECT_TRUE(host.stored.empty());
    Make<CFormXYField>("xyfield", "").ReadBoxes("1", "2", host);
    EXPECT_TRUE(host.stored.empty());
    Make<CFormStringInput>("stringinput", "").Read("a", host);
    EXPECT_TRUE(host.stored.empty());
    Make<CFormLedButton>("ledbutton", "state 0").Click(true, host);
    EXPECT_TRUE(host.stored.empty());
    Make<CFormChooser>("chooser", "choosercontents {\na\n}").Choose(0, host);
    EXPECT_TRUE(host.stored.empty());
}

TEST_F(FormControls, ChoosingAPresetStoresItsFirstWordAndShowsTheCaption) {
    auto& field =
        Make<CFormXField>("xfield", "envname A\nforcefloat\noptionlabel Depth\noptioncontents {\n1 Fast\n}");
    field.ChoosePreset(1, host);
    EXPECT_EQ(field.text, "1.0");
    EXPECT_EQ(host.stored, (Stored{{"A", "1.0"}}));
    EXPECT_EQ(field.presets.Selected(), 0);
    EXPECT_EQ(refreshes, 1);
}

TEST_F(FormControls, ChoosingTheCaptionDoesNothing) {
    auto& field =
        Make<CFormXField>("xfield", "envname A\nvalue 5\noptionlabel Depth\noptioncontents {\n1 Fast\n}");
    field.ChoosePreset(0, host);
    field.ChoosePreset(99, host);
    field.ChoosePreset(-1, host);
    EXPECT_EQ(field.text, "5");
    EXPECT_TRUE(host.stored.empty());
}

TEST_F(FormControls, APresetWithoutWordLeavesTheText) {
    auto& field = Make<CFormXField>("xfield", "envname A\nvalue 5\noptioncontents {\n\" \"\n}");
    field.ChoosePreset(1, host);
    EXPECT_EQ(field.text, "5");
}

TEST_F(FormControls, AFieldShowsItsOptionAndStoresNothing) {
    auto& field = Make<CFormXField>("xfield", "envname A\nvalue 5");
    form.BroadcastOption("A", "6");
    EXPECT_EQ(field.text, "6");
    EXPECT_EQ(refreshes, 1);
    form.BroadcastOption("B", "7");
    form.BroadcastOption("a", "7");
    EXPECT_EQ(field.text, "6");
    EXPECT_EQ(refreshes, 1);
    EXPECT_TRUE(host.stored.empty());
}

TEST_F(FormControls, DefaultsAreStoredAsIfEntered) {
    auto& field = Make<CFormXField>("xfield", "envname A\nvalue 5\nforcefloat");
    host.variables["A"] = "8";
    form.LoadDefaults(host);
    EXPECT_EQ(field.text, "8.0");
    EXPECT_EQ(host.stored, (Stored{{"A", "8.0"}}));
    EXPECT_EQ(refreshes, 1);
}

TEST_F(FormControls, TwoWidgetsOfOneNameFollowOnlyABroadcast) {
    auto& first = Make<CFormXField>("xfield", "envname A\nvalue 1");
    auto& second = Make<CFormXField>("xfield", "envname A\nvalue 1");
    first.Read("2", host);
    EXPECT_EQ(second.text, "1");
    form.BroadcastOption("A", "3");
    EXPECT_EQ(first.text, "3");
    EXPECT_EQ(second.text, "3");
}

TEST_F(FormControls, APairIsSplitWhateverSeparatesIt) {
    auto& field = Make<CFormXYField>("xyfield", "envname A");
    const auto shown = [&](const std::string& value) {
        form.BroadcastOption("A", value);
        return field.xText + "|" + field.yText;
    };
    EXPECT_EQ(shown("-2.5,3"), "-2.5|3");
    EXPECT_EQ(shown("640x480"), "640|480");
    EXPECT_EQ(shown("abc"), "a|c");
    EXPECT_EQ(shown(""), "|");
    EXPECT_TRUE(host.stored.empty());
}

TEST_F(FormControls, APairIsStoredWithItsSeparator) {
    auto& field = Make<CFormXYField>("xyfield", "envname A\nenvseparator x");
    field.ReadBoxes("640", "480", host);
    EXPECT_EQ(field.xText, "640");
    EXPECT_EQ(field.yText, "480");
    EXPECT_EQ(host.stored, (Stored{{"A", "640x480"}}));
}

TEST_F(FormControls, BothHalvesOfAPairAreForcedToFloats) {
    auto& field = Make<CFormXYField>("xyfield", "envname A\nforcefloat");
    field.ReadBoxes("-1", "2.5", host);
    EXPECT_EQ(host.stored, (Stored{{"A", "-1.0,2.5"}}));
    host.variables["A"] = "3 4";
    form.LoadDefaults(host);
    EXPECT_EQ(field.yText, "4.0");
    EXPECT_EQ(host.stored.back().second, "3.0,4.0");
}

TEST_F(FormControls, TheBoxesOfAPairAreSplitAgainAsOneText) {
    auto& field = Make<CFormXYField>("xyfield", "envname A");
    field.ReadBoxes("1e5", "3", host);
    EXPECT_EQ(field.xText, "1");
    EXPECT_EQ(field.yText, "5,3");
}

TEST_F(FormControls, APairsPresetIsSplitAtTheComma) {
    auto& field = Make<CFormXYField>(
        "xyfield", "envname A\nvalue 7,8\noptionlabel c\noptioncontents {\n1,2 rest\n-3, 4\n5\n,6\n9,\n}");
    const auto chosen = [&](int index) {
        field.ChoosePreset(index, host);
        return field.xText + "|" + field.yText;
    };
    EXPECT_EQ(chosen(1), "1|2");
    EXPECT_EQ(chosen(2), "-3|4");
    EXPECT_EQ(chosen(3), "5|4") << "a half that is missing keeps its text";
    EXPECT_EQ(chosen(4), "5|4");
    EXPECT_EQ(chosen(5), "9|4");
    EXPECT_EQ(host.stored.front(), (std::pair<std::string, std::string>("A", "1,2")));
}

TEST_F(FormControls, ThreeAxesAreStoredInOrder) {
    auto& field = Make<CFormXYZField>("xyzfield", "xenvname X\nzenvname Z\nforcefloat");
    field.ReadBoxes({"1", "2", "3.5"}, host);
    EXPECT_EQ(field.axes[1].text, "2.0");
    EXPECT_EQ(host.stored, (Stored{{"X", "1.0"}, {"Z", "3.5"}}));
}

TEST_F(FormControls, AnAxisTakesItsPresetsAndOptions) {
    auto& field = Make<CFormXYZField>("xyzfield",
                                      "xenvname X\nyenvname Y\nzenvname Z\nyoptionlabel c\nyoptioncontents "
                                      "{\n4 four\n}\nxvalue 1\nzvalue 3");
    field.ChoosePreset(1, 1, host);
    EXPECT_EQ(field.axes[1].text, "4");
    EXPECT_EQ(host.stored, (Stored{{"X", "1"}, {"Y", "4"}, {"Z", "3"}}));
    field.ChoosePreset(1, 0, host);
    EXPECT_EQ(host.stored.size(), 3U);
    form.BroadcastOption("Z", "9");
    EXPECT_EQ(field.axes[2].text, "9");
    EXPECT_EQ(field.axes[0].text, "1");
    EXPECT_EQ(refreshes, 3);
    host.variables = {{"X", "a"}, {"Y", "b"}, {"Z", "c"}};
    form.LoadDefaults(host);
    EXPECT_EQ(field.axes[0].text + field.axes[1].text + field.axes[2].text, "abc");
}

TEST_F(FormControls, AnAxisWithoutNameIsBoundToNoOption) {
    auto& field = Make<CFormXYZField>("xyzfield", "xvalue 1");
    host.variables[""] = "other";
    form.BroadcastOption("", "other");
    form.LoadDefaults(host);
    EXPECT_EQ(field.axes[0].text, "1");
    EXPECT_TRUE(host.stored.empty());
}

TEST_F(FormControls, AFileBecomesTheTextAndItsDirectoryIsKept) {
    auto& input = Make<CFormStringInput>("stringinput", "envname S\nfile 1");
    input.TakeFile("/scenes/a\\b.bmp", host);
    EXPECT_EQ(input.text, "/scenes/a\\b.bmp");
    EXPECT_EQ(input.lastDir, "/scenes/a\\");
    EXPECT_EQ(host.stored, (Stored{{"S", "/scenes/a\\b.bmp"}}));
    EXPECT_EQ(refreshes, 1);
    form.BroadcastOption("S", "x");
    EXPECT_EQ(input.text, "x");
}

TEST_F(FormControls, FramesPassEverythingOnAndPlainWidgetsIgnoreIt) {
    EXPECT_TRUE(
        Read("{\nframe {\nlabel {\n}\nbutton {\n}\nokfield {\n}\nframe {\nxfield {\nenvname A\nvalue "
             "1\n}\n}\n}\n}\n"));
    const auto& outer = Child<CFormFrame>(form, 0);
    const auto& field = Child<CFormXField>(Child<CFormFrame>(outer, 3), 0);
    form.BroadcastOption("A", "2");
    EXPECT_EQ(field.text, "2");
    host.stored.clear();
    form.LoadDefaults(host);
    EXPECT_EQ(field.text, "1");
    EXPECT_EQ(host.stored, (Stored{{"A", "1"}}));
}

TEST_F(FormControls, AVisitorMeetsEachWidgetAsItsKind) {
    struct Names : FormVisitor {
        std::string text;
        void Visit(CFormFrame&) override { text += "frame "; }
        void Visit(CFormLabel&) override { text += "label "; }
        void Visit(CFormXField&) override { text += "xfield "; }
        void Visit(CFormXYField&) override { text += "xyfield "; }
        void Visit(CFormXYZField&) override { text += "xyzfield "; }
        void Visit(CFormButton&) override { text += "button "; }
        void Visit(CFormLedButton&) override { text += "ledbutton "; }
        void Visit(CFormChooser&) override { text += "chooser "; }
        void Visit(CFormOkField&) override { text += "okfield "; }
        void Visit(CFormStringInput&) override { text += "stringinput "; }
    } names;
    std::string text = "{\n";
    const std::string kinds =
        "frame label xfield xyfield xyzfield button ledbutton chooser okfield stringinput ";
    for (size_t at = 0; at < kinds.size(); at = kinds.find(' ', at) + 1) {
        text += kinds.substr(at, kinds.find(' ', at) - at) + " {\n}\n";
    }
    ASSERT_TRUE(Read(text));
    for (const auto& child : form.children) child->Accept(names);
    EXPECT_EQ(names.text, kinds);
}

}  // namespace tavrin::test
