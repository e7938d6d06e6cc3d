// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>

#include <algorithm>

#include "forms/FormTestHost.h"

namespace tavrin::test {

class FormProperties : public FormTest {};

TEST_F(FormProperties, ALabelHasDefaults) {
    const auto& label = ReadOne<CFormLabel>("label", "");
    EXPECT_EQ(label.label, "");
    EXPECT_EQ(label.alignment, CFormLabel::Alignment::kLeft);
    EXPECT_TRUE(label.resize);
    EXPECT_TRUE(host.stored.empty());
}

TEST_F(FormProperties, ALabelTakesItsProperties) {
    const auto& label = ReadOne<CFormLabel>("label",
                                            "label \"two words\"\njustify center\nresize false\nwidth "
                                            "120\nheight 30 # px\nshadowtype in\nshadowsize");
    EXPECT_EQ(label.label, "two words");
    EXPECT_EQ(label.alignment, CFormLabel::Alignment::kCenter);
    EXPECT_FALSE(label.resize);
    EXPECT_EQ(label.width, 120);
    EXPECT_EQ(label.height, 30);
}

TEST_F(FormProperties, ALabelWithoutSizeKeepsThatOfTheTemplate) {
    const auto& label = ReadOne<CFormLabel>("label", "resize false");
    EXPECT_FALSE(label.resize);
    EXPECT_FALSE(label.width.has_value());
    EXPECT_FALSE(label.height.has_value());
    EXPECT_EQ(CFormLabel::kTemplateSize.width, 64);
    EXPECT_EQ(CFormLabel::kTemplateSize.height, 12);
    EXPECT_EQ(ReadOne<CFormLabel>("label", "width wide").width, 0);
}

TEST_F(FormProperties, JustifyIgnoresOtherWords) {
    EXPECT_EQ(ReadOne<CFormLabel>("label", "justify right\njustify middle").alignment,
              CFormLabel::Alignment::kRight);
    EXPECT_EQ(ReadOne<CFormLabel>("label", "justify right\njustify left").alignment,
              CFormLabel::Alignment::kLeft);
    EXPECT_TRUE(sink.alerts.empty());
    EXPECT_EQ(sink.log, "");
}

TEST_F(FormProperties, BooleansAreWordsOrNumbers) {
    const auto resize = [&](const std::string& value) {
        return ReadOne<CFormLabel>("label", "resize " + value).resize;
    };
    EXPECT_TRUE(resize("true"));
    EXPECT_FALSE(resize("false"));
    EXPECT_FALSE(resize("True"));
    EXPECT_FALSE(resize("yes"));
    EXPECT_FALSE(resize(""));
    EXPECT_FALSE(resize("0"));
    EXPECT_TRUE(resize("2"));
    EXPECT_FALSE(ReadOne<CFormChooser>("chooser", "resize 0").resize);
    EXPECT_TRUE(ReadOne<CFormChooser>("chooser", "resize 1").resize);
    EXPECT_TRUE(ReadOne<CFormStringInput>("stringinput", "file true").file);
    EXPECT_FALSE(ReadOne<CFormStringInput>("stringinput", "file True").file);
}

TEST_F(FormProperties, AnXFieldTakesItsProperties) {
    const auto& field =
        ReadOne<CFormXField>("xfield",
                             "value 3\nenvname A\noptionlabel \"The caption\"\noptioncontents {\n1 "
                             "one\n}\noptioncontents\n{\n2\n}\n"
                             "forcefloat false\nhelp {\ntext\n}\nnotavrnsave");
    EXPECT_EQ(field.envname, "A");
    EXPECT_EQ(field.text, "3.0");
    EXPECT_TRUE(field.forcefloat) << "a flag; its value is not read";
    EXPECT_EQ(field.help, "text");
    EXPECT_EQ(ListOf(field.presets), (Lines{"The caption", "1 one", "2"}));
    EXPECT_EQ(field.presets.Selected(), 0);
    EXPECT_EQ(field.InfoTitle(), "The caption");
    EXPECT_EQ(host.stored, (Stored{{"A", "3.0"}}));
    EXPECT_EQ(host.unsaved, Lines{"A"});
}

TEST_F(FormProperties, AnXFieldHasDefaults) {
    const auto& field = ReadOne<CFormXField>("xfield", "");
    EXPECT_EQ(field.text, "");
    EXPECT_FALSE(field.forcefloat);
    EXPECT_EQ(host.stored, (Stored{{"", ""}})) << "stored under the empty name";
    EXPECT_TRUE(host.unsaved.empty());
}

TEST_F(FormProperties, ForceFloatChangesWholeNumbersOnly) {
    EXPECT_EQ(ReadOne<CFormXField>("xfield", "forcefloat\nvalue 2.5").text, "2.5");
    EXPECT_EQ(ReadOne<CFormXField>("xfield", "forcefloat\nvalue abc").text, "0.0");
    EXPECT_EQ(ReadOne<CFormXField>("xfield", "value 3").text, "3");
    EXPECT_EQ(host.stored, (Stored{{"", "2.5"}, {"", "0.0"}, {"", "3"}}));
}

TEST_F(FormProperties, TheLastOfARepeatedPropertyStands) {
    ReadOne<CFormXField>("xfield", "value 1\nenvname A\nvalue 2\nenvname B");
    EXPECT_EQ(host.stored, (Stored{{"B", "2"}}));
}

TEST_F(FormProperties, ACaptionBehindTheContentsStandsLast) {
    const auto& field = ReadOne<CFormXField>("xfield", "optioncontents {\n1\n2\n}\noptionlabel Depth");
    EXPECT_EQ(ListOf(field.presets), (Lines{"2", "Depth"}));
    const auto& empty = ReadOne<CFormXField>("xfield", "optionlabel Depth");
    EXPECT_EQ(ListOf(empty.presets), Lines{"Depth"});
    EXPECT_EQ(empty.presets.Selected(), PresetList::kNothing);
}

TEST_F(FormProperties, AnXYFieldTakesItsProperties) {
    const auto& field = ReadOne<CFormXYField>(
        "xyfield",
        "envname A\nvalue 1x2.5\nenvseparator \":;\"\nseparatorlabel by\nforcefloat\noptionlabel Size\n"
        "optioncontents {\n1,2 small\n}\nhelp {\nh\n}\nnotavrnsave");
    EXPECT_EQ(field.xText, "1.0");
    EXPECT_EQ(field.yText, "2.5");
    EXPECT_EQ(field.separator, ':');
    EXPECT_EQ(field.separatorLabel, "by");
    EXPECT_EQ(ListOf(field.presets), (Lines{"Size", "1,2 small"}));
    EXPECT_EQ(field.InfoTitle(), "Size");
    EXPECT_EQ(field.help, "h");
    EXPECT_EQ(host.stored, (Stored{{"A", "1.0:2.5"}}));
    EXPECT_EQ(host.unsaved, Lines{"A"});
}

TEST_F(FormProperties, AnXYFieldHasDefaults) {
    const auto& field = ReadOne<CFormXYField>("xyfield", "envseparator");
    EXPECT_EQ(field.separator, ',');
    EXPECT_EQ(field.separatorLabel, "");
    EXPECT_EQ(host.stored, (Stored{{"", ","}}));
}

TEST_F(FormProperties, AnXYZFieldTakesItsProperties) {
    const auto& field = ReadOne<CFormXYZField>(
        "xyzfield",
        "headinglabel Place\nxenvname X\nyenvname Y\nzenvname Z\nxvalue 1\nyvalue 2.5\nzvalue 3\n"
        "xoptionlabel cx\nyoptionlabel cy\nzoptionlabel cz\nxoptioncontents {\n1\n}\n"
        "yoptioncontents {\n2\n}\nzoptioncontents {\n3\n}\nforcefloat\nhelp {\nh\n}\nnotavrnsave");
    EXPECT_EQ(field.headingLabel, "Place");
    EXPECT_EQ(field.InfoTitle(), "Place");
    EXPECT_EQ(field.help, "h");
    EXPECT_EQ(ListOf(field.axes[0].presets), (Lines{"cx", "1"}));
    EXPECT_EQ(ListOf(field.axes[1].presets), (Lines{"cy", "2"}));
    EXPECT_EQ(ListOf(field.axes[2].presets), (Lines{"cz", "3"}));
    EXPECT_EQ(host.stored, (Stored{{"X", "1.0"}, {"Y", "2.5"}, {"Z", "3.0"}}));
    EXPECT_EQ(host.unsaved, (Lines{"X", "Y", "Z"}));
}

TEST_F(FormProperties, AnAxisWithoutNameStoresNothingButIsUnsaved) {
    ReadOne<CFormXYZField>("xyzfield", "yenvname Y\nxvalue 1\nnotavrnsave");
    EXPECT_EQ(host.stored, (Stored{{"Y", ""}}));
    EXPECT_EQ(host.unsaved, (Lines{"", "Y", ""}));
    host.unsaved.clear();
    ReadOne<CFormXYZField>("xyzfield", "xenvname X");
    EXPECT_TRUE(host.unsaved.empty());
}

TEST_F(FormProperties, AStringInputTakesItsProperties) {
    const auto& input = ReadOne<CFormStringInput>(
        "stringinput", "label Title\nvalue \"a b\"\nfile true\nenvname S\nhelp {\nh\n}\nnotavrnsave");
    EXPECT_EQ(input.label, "Title");
    EXPECT_EQ(input.InfoTitle(), "Title");
    EXPECT_EQ(input.text, "a b");
    EXPECT_TRUE(input.file);
    EXPECT_EQ(input.help, "h");
    EXPECT_EQ(host.stored, (Stored{{"S", "a b"}}));
    EXPECT_EQ(host.unsaved, Lines{"S"});
    EXPECT_FALSE(ReadOne<CFormStringInput>("stringinput", "").file);
    EXPECT_EQ(host.stored.back(), (std::pair<std::string, std::string>("", "")));
}

TEST_F(FormProperties, EachKindRefusesThePropertiesOfOthers) {
    for (const char* line : {"envname a", "value a", "help {", "notavrnsave", "justifyx", "Label a"})
        ExpectRefused("label", line);
    for (const char* line : {"separatorlabel x", "envseparator x", "label a", "xvalue 1", "shadowtype"})
        ExpectRefused("xfield", line);
    for (const char* line : {"xvalue 1", "resize 1", "file 1"}) ExpectRefused("xyfield", line);
    for (const char* line :
         {"envname a", "value a", "wvalue 1", "xhelp", "x", "yforcefloat", "zenv", "optionlabel a"}) {
        ExpectRefused("xyzfield", line);
    }
    for (const char* line : {"label a", "envname a", "notavrnsave", "ok_actionto a", "help {"})
        ExpectRefused("button", line);
    for (const char* line : {"actionarg a", "value 1", "label a", "help {"}) ExpectRefused("ledbutton", line);
    for (const char* line : {"actionarg a", "optioncontents {", "help {", "state 1"})
        ExpectRefused("chooser", line);
    for (const char* line : {"actionto a", "defaults_", "ok_", "ok_action", "defaults_label", "envname a"})
        ExpectRefused("okfield", line);
    for (const char* line : {"forcefloat", "optionlabel a", "resize 1", "buttonlabel a"})
        ExpectRefused("stringinput", line);
    EXPECT_TRUE(form.children.empty());
    EXPECT_TRUE(host.stored.empty());
}

TEST_F(FormProperties, AnOptionThatDocumentsCannotKeepIsToldOnce) {
    const std::string told =
        "documents cannot keep the option \"two words\": use a name without blanks, line breaks, "
        "double quotes, backslashes and #, or notavrnsave\r\n";
    const std::pair<const char*, const char*> kWidgets[] = {
        {"xfield", ""},
        {"xyfield", ""},
        {"stringinput", ""},
        {"ledbutton", "state 1\n"},
        {"chooser", "value a\nchoosercontents {\na\n}\n"}};
    for (const auto& [kind, lines] : kWidgets) {
        sink.log.clear();
        EXPECT_TRUE(Read(std::string("{\n") + kind + " {\nenvname \"two words\"\n" + lines + "}\n}\n"));
        EXPECT_THAT(sink.log, testing::MatchesRegex("WARNING: site.def near line [0-9]+: [^\n]*\n")) << kind;
        EXPECT_THAT(sink.log, testing::EndsWith(told)) << kind;
        form.LoadDefaults(host);
        EXPECT_THAT(sink.log, testing::MatchesRegex("[^\n]*\n")) << "told once: " << kind;
        sink.log.clear();
        EXPECT_TRUE(
            Read(std::string("{\n") + kind + " {\nnotavrnsave\nenvname \"two words\"\n" + lines + "}\n}\n"));
        EXPECT_EQ(sink.log, "") << kind;
    }
    ReadOne<CFormXYZField>("xyzfield", "xenvname X\nyenvname \"two words\"\nzenvname a\\b");
    EXPECT_EQ(std::count(sink.log.begin(), sink.log.end(), '\n'), 2);
    EXPECT_THAT(sink.log, testing::HasSubstr(told));
    EXPECT_THAT(sink.log, testing::HasSubstr("the option \"a\\b\""));
    EXPECT_TRUE(sink.alerts.empty());
}

TEST_F(FormProperties, AFieldWithoutAnOptionIsTold) {
    for (const char* kind : {"xfield", "xyfield", "stringinput"}) {
        sink.log.clear();
        EXPECT_TRUE(Read(std::string("{\n") + kind + " {\nvalue 1\n}\n}\n"));
        EXPECT_EQ(
            sink.log,
            "WARNING: site.def near line 5: there is no envname: what the user enters is kept nowhere\r\n")
            << kind;
    }
    sink.log.clear();
    ReadOne<CFormLedButton>("ledbutton", "state 0\nactionto a");
    ReadOne<CFormChooser>("chooser", "actionto a\nchoosercontents {\na\n}");
    ReadOne<CFormXYZField>("xyzfield", "xvalue 1");
    EXPECT_EQ(sink.log, "") << "these are good for more, or ask for less";
}

TEST_F(FormProperties, AHelpBlockThatIsNotClosedIsToldWhereItBegins) {
    EXPECT_TRUE(Read("{\nxfield {\nenvname A\nhelp\n{\nall\n the } rest"));
    EXPECT_EQ(Child<CFormXField>(form, 0).help, "all\r\nthe } rest");
    EXPECT_EQ(sink.log,
              "WARNING: site.def near line 5: the block \"help\" is not closed and takes the rest of the "
              "file: its last line has to be a \"}\" alone\r\n");
    EXPECT_TRUE(sink.alerts.empty());
}

}  // namespace tavrin::test
