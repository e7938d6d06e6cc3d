// SPDX-License-Identifier: Apache-2.0
// What a document's file says, told without a box, a library or a process.
#include "document/DocumentForm.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "document/DocumentReader.h"
#include "support/TestSite.h"

namespace tavrin {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

DocumentForm Read(std::string_view text) { return ReadDocument(test::ArchiveOf(text, "doc.tvn")); }

template <typename Record>
const Record& SectionAt(const DocumentForm& form, size_t place) {
    return std::get<Record>(form.sections.at(place));
}
// Of the section that comes last.
const BoxRecord& BoxAt(const DocumentForm& form, size_t place) {
    return std::get<BoxRecord>(SectionAt<DeskRecord>(form, form.sections.size() - 1).items.at(place));
}
// The only button of the only box, of which this is the block of settings and values.
DocumentForm ReadButton(const std::string& block) {
    return Read("opdesk { opbox { filename Noise opbutton.input scale scale { currentcast float wwms {\n" +
                block + "\n} } } } }");
}
const ButtonRecord& ButtonOf(const DocumentForm& form) { return BoxAt(form, 0).buttons.at(0); }

std::vector<std::string> ErrorsOf(const DocumentForm& form) {
    std::vector<std::string> errors;
    for (const ReadingError& error : form.errors) {
        const bool stops = error.kind == ReadingError::Kind::kStop;
        errors.push_back((stops ? "stop " : "passed ") + std::to_string(error.line) + ": " + error.message);
    }
    return errors;
}

TEST(DocumentForm, SectionsAreRecordsInTheOrderOfTheText) {
    const DocumentForm form = Read(
        "customshaderhelp\n{\n>  indented\n}\n"
        "toolbar { button 0=Noise button 9=Mix button none }\n"
        "tavrn-renderer tiny tavrn-version 1.2\n"
        "renderoptions { setenv SIZE \"320 240\" }\n"
        "exportoptions\n{\n    tavrndir 1 /out dir/ \n}\n");
    EXPECT_TRUE(form.IsReadToEnd());
    EXPECT_THAT(form.errors, IsEmpty());
    ASSERT_THAT(form.sections, SizeIs(6));
    EXPECT_EQ(SectionAt<HelpRecord>(form, 0).text, "  indented");
    EXPECT_THAT(SectionAt<ToolbarRecord>(form, 1).operators, ElementsAre("Noise", "Mix"));
    EXPECT_EQ(SectionAt<LibraryRecord>(form, 2).name, "tiny");
    EXPECT_EQ(SectionAt<VersionRecord>(form, 3).version, "1.2");
    const auto& options = SectionAt<RenderOptionsRecord>(form, 4).options;
    ASSERT_THAT(options, SizeIs(1));
    EXPECT_EQ(options[0].name, "SIZE");
    EXPECT_EQ(options[0].value, "320 240");
    const auto& exports = SectionAt<ExportOptionsRecord>(form, 5).options;
    ASSERT_THAT(exports, SizeIs(1));
    EXPECT_EQ(exports[0].key, "tavrndir");
    EXPECT_EQ(exports[0].line, "1 /out dir/ ");
}

TEST(DocumentForm, ABoxHasWhatTheTextSaysOfIt) {
    const DocumentForm form = Read(
        "opdesk { opbox { filename Noise wid 3 xypos 1.5 -2 opboxdefs { maxinstances 4 }\n"
        "opbutton.vinput in in2 { opbuttondefs { currentcast rgb wwms {\n"
        "pin 1 arg 1 argname \"g\" comments \"how \\\"fine\\\"\" rgb 0.1 0.2 0.3 } } }\n"
        "opbutton.output out out { currentcast float wwms { } } } }\n"
        "opconnects { opbox:Noise,3,out,0 -> opbox:Mix,4,in,2 }\n"
        "lock 1 linetype trace offsetxy 5 6 }");
    ASSERT_THAT(form.errors, IsEmpty());
    const BoxRecord& box = BoxAt(form, 0);
    EXPECT_EQ(box.operatorName, "Noise");
    EXPECT_EQ(box.LastSetting("wid")->integer, 3);
    EXPECT_THAT(box.LastSetting("xypos")->numbers, ElementsAre(1.5F, -2.0F));
    EXPECT_EQ(box.LastSetting("opboxdefs")->integer, 4);
    ASSERT_THAT(box.buttons, SizeIs(2));
    const ButtonRecord& button = box.buttons[0];
    EXPECT_EQ(button.kind, "vinput");
    EXPECT_EQ(button.name, "in");
    EXPECT_EQ(button.fullName, "in2");
    EXPECT_EQ(button.cast, "rgb");
    EXPECT_EQ(button.pin, 1);
    EXPECT_EQ(button.stow, std::nullopt);
    EXPECT_EQ(button.arg, 1);
    EXPECT_EQ(button.argname, "g");
    EXPECT_EQ(button.comments, "how \"fine\"");
    EXPECT_EQ(box.buttons[1].kind, "output");

    const auto& items = SectionAt<DeskRecord>(form, 0).items;
    ASSERT_THAT(items, SizeIs(5));
    const auto& wire = std::get<ConnectionRecord>(items[1]);
    EXPECT_EQ(wire.source.operatorName, "Noise");
    EXPECT_EQ(wire.source.wid, 3);
    EXPECT_EQ(wire.target.button, "in");
    EXPECT_EQ(wire.target.position, 2);
    EXPECT_EQ(std::get<DeskSettingRecord>(items[2]).keyword, "lock");
    EXPECT_EQ(std::get<DeskSettingRecord>(items[2]).flag, 1);
    EXPECT_EQ(std::get<DeskSettingRecord>(items[3]).flag, 1) << "trace";
    EXPECT_EQ(std::get<DeskSettingRecord>(items[4]).numbers[1], 6.0F);
}

TEST(DocumentForm, TheLastSettingOfABoxCounts) {
    const DocumentForm form = Read("opdesk { opbox { filename a wid 1 wid 2 } }");
    EXPECT_THAT(BoxAt(form, 0).settings, SizeIs(2));
    EXPECT_EQ(BoxAt(form, 0).LastSetting("wid")->integer, 2);
    EXPECT_EQ(BoxAt(form, 0).LastSetting("xypos"), nullptr);
}

TEST(DocumentForm, ValuesOfEveryTypeAreTold) {
    const DocumentForm form = ReadButton(
        "float 1 2 3 1\nxyz 1 2 3 4 5 0\nrgba 1 2 3 4\nstring \"a b\"\n"
        "generic \"x \\\"y\"\ngeneric mat \"gold\"\ngeneric:odd \"z\"\n");
    const auto& values = ButtonOf(form).values;
    ASSERT_THAT(values, SizeIs(7));
    EXPECT_EQ(values[0].type, "float");
    EXPECT_THAT(values[0].numbers, ElementsAre(1, 2, 3, 0, 0));
    EXPECT_EQ(values[0].numberCount, 3U);
    EXPECT_EQ(values[0].integer, 1);
    EXPECT_THAT(values[1].numbers, ElementsAre(1, 2, 3, 4, 5));
    EXPECT_EQ(values[1].integer, 0);
    EXPECT_EQ(values[2].numberCount, 4U);
    EXPECT_EQ(values[2].integer, std::nullopt);
    EXPECT_EQ(values[3].text, "a b");
    EXPECT_EQ(values[4].text, "x \\\"y") << "a line and no tokens";
    EXPECT_EQ(values[4].name, "");
    EXPECT_EQ(values[5].name, "mat");
    EXPECT_EQ(values[5].text, "gold");
    EXPECT_EQ(values[6].type, "generic:odd");
    EXPECT_EQ(form.TextOf(values[5]), "generic mat \"gold\"");
}

TEST(DocumentForm, RecordsKnowTheirPlace) {
    const DocumentForm form = Read(
        "# a comment\ntoolbar { }\n\nopdesk\n{\n"
        "    opbox # here\n    {\n        filename A\n        wid 7\n    }\r\n"
        "opbox { filename B }# behind\n"
        "    opconnects { opbox:A,7,o,0 ->\n opbox:B,0,i,0 }\nlock \"1\"\n}\n");
    ASSERT_THAT(form.errors, IsEmpty());
    EXPECT_EQ(form.TextOf(PlaceOf(form.sections.at(0))), "toolbar { }");
    EXPECT_EQ(form.LineOf(PlaceOf(form.sections.at(0))), 2);
    const BoxRecord& first = BoxAt(form, 0);
    EXPECT_EQ(form.TextOf(first), "opbox # here\n    {\n        filename A\n        wid 7\n    }");
    EXPECT_EQ(form.LineOf(first), 6);
    EXPECT_EQ(form.LastLineOf(first), 10);
    EXPECT_EQ(form.TextOf(first.settings.at(0)), "wid 7");
    EXPECT_TRUE(form.TextOf(BoxAt(form, 1)).starts_with("opbox { filename B }"));
    const auto& items = SectionAt<DeskRecord>(form, 1).items;
    EXPECT_EQ(form.TextOf(std::get<ConnectionRecord>(items.at(2))), "opbox:A,7,o,0 ->\n opbox:B,0,i,0");
    EXPECT_EQ(form.LineOf(std::get<ConnectionRecord>(items.at(2))), 12);
    EXPECT_EQ(form.LastLineOf(std::get<ConnectionRecord>(items.at(2))), 13);
    EXPECT_EQ(form.TextOf(std::get<DeskSettingRecord>(items.at(3))), "lock \"1\"");
    EXPECT_EQ(form.LineOf(first), 6) << "asked again, out of turn";
}

// What a document holds of an operator that nobody knows goes back to a file as it came.
TEST(DocumentForm, TheTextOfABoxReadsAsTheBox) {
    const std::string box =
        "opbox { filename \"My Box\" wid 3 opbutton.input a a { currentcast \"x y\" wwms { generic q\n } } } "
        "}";
    const DocumentForm form = Read("opdesk {\n" + box + " lock 1 }");
    EXPECT_EQ(form.TextOf(BoxAt(form, 0)), box);
    EXPECT_EQ(BoxAt(form, 0).operatorName, "My Box");
}

TEST(DocumentForm, TextsStayWhereTheyAreWhenTheFormMoves) {
    DocumentForm first = Read("renderoptions { setenv A \"b \\\"c\" setenv D e }");
    const DocumentForm form = std::move(first);
    const auto& options = SectionAt<RenderOptionsRecord>(form, 0).options;
    ASSERT_THAT(options, SizeIs(2));
    EXPECT_EQ(options[0].value, "b \"c");
    EXPECT_EQ(options[1].value, "e");
    EXPECT_EQ(form.Path(), "doc.tvn");
}

TEST(DocumentForm, AnErrorStopsTheReadingAndKeepsWhatThereIs) {
    const DocumentForm form = Read(
        "opdesk\n{\nopbox { filename A wid 1 xypos 5 6\n"
        "opbutton.input a a { currentcast float wwms { float 1 2");
    EXPECT_FALSE(form.IsReadToEnd());
    EXPECT_THAT(ErrorsOf(form), ElementsAre("stop 4: unexpected input"));
    const BoxRecord& box = BoxAt(form, 0);
    EXPECT_FALSE(box.IsWhole());
    EXPECT_THAT(box.LastSetting("xypos")->numbers, ElementsAre(5, 6));
    ASSERT_THAT(box.buttons, SizeIs(1));
    EXPECT_FALSE(box.buttons[0].IsWhole());
    ASSERT_THAT(box.buttons[0].values, SizeIs(1));
    EXPECT_FALSE(box.buttons[0].values[0].IsWhole());
    EXPECT_EQ(box.buttons[0].values[0].numberCount, 2U);
    EXPECT_EQ(box.buttons[0].values[0].integer, std::nullopt);
}

TEST(DocumentForm, ABoxThatTheTextEndsInIsWhole) {
    const DocumentForm form = Read("opdesk { opbox { filename A wid 1");
    EXPECT_TRUE(form.IsReadToEnd());
    EXPECT_TRUE(BoxAt(form, 0).IsWhole());
}

TEST(DocumentForm, ErrorsAreToldInTheirOrder) {
    const DocumentForm form = Read(
        "exportoptions {\nbogus 1 x\ntoolbar {\nbutton 0=A }\nexportoptions {\n\nother 1\ntoolbar {\nno");
    EXPECT_THAT(ErrorsOf(form),
                ElementsAre("passed 3: unknown export option: bogus",
                            "passed 8: unknown export option: other", "stop 9: unexpected input"));
    EXPECT_THAT(SectionAt<ToolbarRecord>(form, 1).operators, ElementsAre("A"));
}

TEST(DocumentForm, EachErrorHasItsWords) {
    const auto errors = [](const std::string& text) { return ErrorsOf(Read(text)); };
    const std::string box = "opdesk { opbox { filename A\n";
    EXPECT_THAT(errors(box + "opbutton.input"), ElementsAre("stop 2: expected button name"));
    EXPECT_THAT(errors(box + "opbutton.input a"), ElementsAre("stop 2: expected button id"));
    EXPECT_THAT(errors(box + "opbutton.input a a { currentcast x wwms { odd"),
                ElementsAre("stop 2: unexpected input \"odd\""));
    EXPECT_THAT(errors("customshaderhelp {\nno end"), ElementsAre("stop 2: ")) << "without a word";
    EXPECT_THAT(errors("opdesk {\nopconnects { opbox:A,1,b"), ElementsAre("stop 2: unexpected input"));
    EXPECT_THAT(errors("opdesk {\nlock 2 }"), ElementsAre("stop 2: unexpected input"));
}

TEST(DocumentForm, TheDeskAloneIsReadWhereverItStands) {
    const DocumentForm form = ReadDesk(
        test::ArchiveOf("toolbar broken\nopdesk { opbox { filename A } }\nopdesk { bogus", "doc.tvn"));
    EXPECT_TRUE(form.IsReadToEnd());
    ASSERT_THAT(form.sections, SizeIs(1));
    EXPECT_EQ(BoxAt(form, 0).operatorName, "A");
    EXPECT_THAT(ReadDesk(test::ArchiveOf("toolbar { }", "doc.tvn")).sections, IsEmpty());
}

}  // namespace
}  // namespace tavrin
