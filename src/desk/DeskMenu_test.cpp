// SPDX-License-Identifier: Apache-2.0
// What the desk's context menus offer, and what their commands do.
#include "desk/DeskMenu.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "desk/BoxMarks.h"
#include "library/Placeholder.h"
#include "site/TypeTables.h"
#include "support/TestHost.h"

namespace tavrin {
namespace {

using test::MakeBox;
using test::MakeLink;
using test::Wire;
using testing::ElementsAre;
using testing::IsEmpty;

// A line for each entry, deeper ones further in: "[x]" is checked, "[ ]" can be, grey ones are in
// parentheses, help texts in quotes.
void Write(std::string& text, const DeskMenuEntries& entries, const std::string& margin) {
    for (const DeskMenuEntry& entry : entries) {
        std::string line = entry.text;
        if (entry.kind == DeskMenuEntry::Kind::kSeparator) line = "---";
        if (entry.kind == DeskMenuEntry::Kind::kHelp) line = '"' + entry.text + '"';
        if (entry.kind == DeskMenuEntry::Kind::kSubmenu) line += " >";
        if (entry.kind == DeskMenuEntry::Kind::kCommand) line += " " + std::to_string(entry.id);
        if (entry.checkable) line.insert(0, entry.checked ? "[x] " : "[ ] ");
        if (!entry.enabled) line = "(" + line + ")";
        text += margin + line + "\n";
        Write(text, entry.entries, margin + "  ");
    }
}
std::string TextOf(const DeskMenuEntries& entries) {
    std::string text = "\n";
    Write(text, entries, "");
    return text;
}
const DeskMenuEntry* Find(const DeskMenuEntries& entries, const std::string& text) {
    for (const DeskMenuEntry& entry : entries) {
        if (entry.text == text) return &entry;
        if (const DeskMenuEntry* deeper = Find(entry.entries, text)) return deeper;
    }
    return nullptr;
}
bool Has(const DeskMenuEntries& entries, const std::string& text) { return Find(entries, text) != nullptr; }
bool IsEnabled(const DeskMenuEntries& entries, const std::string& text) {
    const DeskMenuEntry* entry = Find(entries, text);
    return entry != nullptr && entry->enabled;
}

TypeTables Types() {
    TypeTables types;
    types.SetWord("rgb", "color");
    return types;
}

// Boxes.

TEST(BoxMenuTest, ABoxOffersHelpOnItselfAndItsButtonsAndItsCommands) {
    const auto box = MakeBox("Mix",
                             "boxhelp\n{\nMixes.\nTwo.\n}\n"
                             "input a { float { 0 0 1 0 %g } help\n{\nOne.\n}\n }\n"
                             "vinput v { float { 0 0 1 0 %g } vinstances 2 }\n"
                             "output o { float out }",
                             7);
    EXPECT_EQ(TextOf(BoxMenu(*box)), R"(
Mix_7 0
---
Help >
  On box Mix_7 >
    "Mixes.)"
                                     "\r\n"
                                     R"(Two."
  ---
  On input a >
    "One."
  On input v1 >
    ""
  On input v2 >
    ""
  ---
  On output o >
    ""
---
Copy 36865
Delete >
  This Box 36866
---
Edit File... 36871
)");
}

TEST(BoxMenuTest, TheHelpOfABoxBeginsWithWhatTheLastRunSaysOfIt) {
    const auto box = MakeBox("Mix", "boxhelp\n{\nMixes.\n}\noutput o { float out }", 7);
    BoxMarks marks;
    const auto helpIn = [&](const DeskMenuEntries& menu) {
        return Find(menu, "Help")->entries.front().entries.front().text;
    };
    const std::string plain = helpIn(BoxMenu(*box));
    EXPECT_EQ(helpIn(BoxMenu(*box, &marks)), plain);
    marks.Hear("x: box Mix_7: bad\nx: box Mix_7: worse\n");
    EXPECT_EQ(helpIn(BoxMenu(*box, &marks)), "x: box Mix_7: bad\nx: box Mix_7: worse\n\n" + plain);
    const TypeTables types;
    EXPECT_EQ(helpIn(ButtonMenu(*box->outputs[0], types, std::nullopt, &marks)),
              helpIn(BoxMenu(*box, &marks)));
    const auto other = MakeBox("Mix", "", 8);
    EXPECT_EQ(helpIn(BoxMenu(*other, &marks)), "");
}

TEST(BoxMenuTest, ABoxWithoutInputsOrOutputsHasNoSeparatorsForThem) {
    EXPECT_EQ(TextOf({*Find(BoxMenu(*MakeBox("a", "output o { float out }", 1)), "Help")}), R"(
Help >
  On box a_1 >
    ""
  ---
  On output o >
    ""
)");
    EXPECT_EQ(TextOf({*Find(BoxMenu(*MakeBox("a", "input i { float { 0 0 1 0 %g } }", 1)), "Help")}), R"(
Help >
  On box a_1 >
    ""
  ---
  On input i >
    ""
)");
    EXPECT_EQ(TextOf({*Find(BoxMenu(*MakeBox("a", "", 1)), "Help")}), R"(
Help >
  On box a_1 >
    ""
)");
}

// Buttons.

TEST(ButtonMenuTest, AnInputOffersHelpCastsItsArgumentAndDeletion) {
    const auto box =
        MakeBox("Mix",
                "boxhelp\n{\nMixes.\n}\n"
                "input a { float { 0 0 1 0 %g } rgb { 0 0 0 %g } generic:matrix { value \"m\" }\n"
                "help\n{\nOne.\n}\n }",
                7);
    COpButton& button = *box->inputs.at(0);
    button.currentcast = 1;
    button.arg = 1;
    EXPECT_EQ(TextOf(ButtonMenu(button, Types())), R"(
Mix_7: Button a 0
---
Help >
  On box Mix_7 >
    "Mixes."
  On button a >
    "One."
Casts >
  [ ] float 53248
  [x] color 53249
  [ ] matrix 53250
[x] Argument 36872
---
Delete >
  (Delete Button 36869)
  (Delete Connections 36870)
---
Edit File... 36871
)");
}

TEST(ButtonMenuTest, AVinputCanBeCopiedAndDeleted) {
    const auto box = MakeBox("Mix", "vinput v { float { 0 0 1 0 %g } }", 7);
    EXPECT_EQ(TextOf(ButtonMenu(*box->inputs.at(0), Types())), R"(
Mix_7: Button v1 0
---
Help >
  On box Mix_7 >
    ""
  On button v1 >
    ""
Casts >
  [x] float 53248
[ ] Argument 36872
---
Copy Button Above 36867
Copy Button Below 36868
Delete >
  Delete Button 36869
  (Delete Connections 36870)
---
Edit File... 36871
)");
}

TEST(ButtonMenuTest, AnOutputIsNoArgument) {
    const auto box = MakeBox("Mix", "output o { float out }", 7);
    EXPECT_EQ(TextOf(ButtonMenu(*box->outputs.at(0), Types())), R"(
Mix_7: Button o 0
---
Help >
  On box Mix_7 >
    ""
  On button o >
    ""
Casts >
  [x] float 53248
---
Delete >
  (Delete Button 36869)
  (Delete Connections 36870)
---
Edit File... 36871
)");
}

TEST(ButtonMenuTest, AnOutputCanBeShownWhereThereIsWhoShowsIt) {
    const auto box = MakeBox("Mix", "input i { float { 0 0 1 0 %g } } output o { float out }", 7);
    const COpButton& output = *box->outputs.at(0);
    EXPECT_FALSE(Has(ButtonMenu(output, Types()), "Show This"));
    EXPECT_FALSE(Has(ButtonMenu(*box->inputs.at(0), Types(), false), "Show This"));
    EXPECT_THAT(TextOf(ButtonMenu(output, Types(), false)),
                testing::HasSubstr("  [x] float 53248\n[ ] Show This 36873\n---\n"));
    EXPECT_THAT(TextOf(ButtonMenu(output, Types(), true)), testing::HasSubstr("[x] Show This 36873\n"));
    box->placeholder = std::make_shared<const Placeholder>();
    EXPECT_TRUE(IsEnabled(ButtonMenu(output, Types(), false), "Show This")) << "it says why it cannot";
}

TEST(ButtonMenuTest, AnInputThatMayBeNoArgumentHasNoSuchEntry) {
    const auto box = MakeLink("a", 1);
    EXPECT_TRUE(Has(ButtonMenu(*box->inputs.at(0), {}), "Argument"));
    box->inputs.at(0)->disableargflag = 1;
    EXPECT_FALSE(Has(ButtonMenu(*box->inputs.at(0), {}), "Argument"));
}

TEST(ButtonMenuTest, AButtonThatTheLibraryDoesNotKnowOffersNeitherCastsNorCopiesNorItsArgument) {
    const auto box = MakeBox("Gone", "vinput v { float { 0 0 1 0 %g } } output out { float out }", 3);
    const auto source = MakeLink("Link", 1);
    Wire(*source, 0, *box, 0);
    box->inputs[0]->stray = std::make_shared<const std::string>("opbutton.vinput v v1 { }");
    DeskMenuEntries menu = ButtonMenu(*box->inputs[0], Types());
    EXPECT_TRUE(IsEnabled(menu, "Delete Button")) << "what is left of a former definition may be given up";
    box->inputs[0]->stray.reset();
    box->placeholder = std::make_shared<const Placeholder>();
    box->boxhelp = "why";
    menu = ButtonMenu(*box->inputs[0], Types());
    for (const char* text : {"Casts", "Argument", "Copy Button Above", "Copy Button Below"})
        EXPECT_FALSE(Has(menu, text)) << text;
    EXPECT_FALSE(IsEnabled(menu, "Delete Button"));
    EXPECT_TRUE(IsEnabled(menu, "Delete Connections"));
    EXPECT_EQ(Find(menu, "On button v1")->entries.at(0).text, "why");
}

TEST(ButtonMenuTest, ConnectionsCanBeDeletedAtBothTheirEnds) {
    const auto from = MakeLink("a", 1);
    const auto to = MakeLink("b", 2);
    Wire(*from, 0, *to, 0);
    for (const COpButton* button : {from->outputs.at(0).get(), to->inputs.at(0).get()}) {
        EXPECT_TRUE(IsEnabled(ButtonMenu(*button, {}), "Delete Connections"));
        EXPECT_FALSE(IsEnabled(ButtonMenu(*button, {}), "Delete Button"));
    }
    EXPECT_FALSE(IsEnabled(ButtonMenu(*from->inputs.at(0), {}), "Delete Connections"));
}

TEST(ButtonMenuTest, AnOutputWithoutATypeHasNoCasts) {
    const auto box = MakeBox("a", "output o { }", 1);
    EXPECT_THAT(Find(ButtonMenu(*box->outputs.at(0), {}), "Casts")->entries, IsEmpty());
}

TEST(ButtonMenuTest, CastsBeyondTheLastCommandAreNotOffered) {
    std::string output = "output o {";
    for (int cast = 0; cast < 300; ++cast) output += " generic:t" + std::to_string(cast) + " out";
    const auto box = MakeBox("a", output + " }", 1);
    ASSERT_EQ(box->outputs.at(0)->values.size(), 300U);
    const auto menu = ButtonMenu(*box->outputs.at(0), {});
    const auto& casts = Find(menu, "Casts")->entries;
    ASSERT_EQ(casts.size(), 257U);
    EXPECT_EQ(casts.back().text, "t256");
    EXPECT_EQ(casts.back().id, 53504);
}

// Help texts.

TEST(HelpTextLinesTest, EachCarriageReturnAndLineFeedEndsALine) {
    EXPECT_THAT(HelpTextLines("one\r\ntwo\r\n\r\nfour"), ElementsAre("one", "two", "", "four"));
    EXPECT_THAT(HelpTextLines("one\ntwo"), ElementsAre("one", "two"));
    EXPECT_THAT(HelpTextLines("one\rtwo"), ElementsAre("one", "two"));
}

TEST(HelpTextLinesTest, ATextWithoutAnyIsOneLineAndAnEmptyOneNone) {
    EXPECT_THAT(HelpTextLines("just this"), ElementsAre("just this"));
    EXPECT_THAT(HelpTextLines(""), IsEmpty());
}

TEST(HelpTextLinesTest, WhatEndsTheTextBeginsNoFurtherLine) {
    EXPECT_THAT(HelpTextLines("one\r\n"), ElementsAre("one"));
    EXPECT_THAT(HelpTextLines("one\r"), ElementsAre("one"));
    EXPECT_THAT(HelpTextLines("one\n"), ElementsAre("one"));
    EXPECT_THAT(HelpTextLines("one\r\n\r\n"), ElementsAre("one", ""));
}

// Opened on a desk.

// The window shows the desk's origin in its lower left corner. Boxes are 100 by 48 with a body of 32; inputs
// are 30 wide and outputs 40.
class DeskMenuTest : public test::DocumentTest {
  protected:
    DeskMenuTest() { viewport.SetSize(800, 600); }

    COpBox& Put(std::unique_ptr<COpBox> box, float left, float bottom) {
        COpBox& put = Add(desk, std::move(box));
        put.selected = 0;
        put.layout = {left, bottom, 16, 100, 32, 30, 40};
        view.calls.clear();
        return put;
    }
    COpBox& PutLink(float left, float bottom) { return Put(MakeLink("b", 0), left, bottom); }
    COpBox& PutVinputs(float left, float bottom) {
        return Put(MakeBox("v", "vinput v { float { 0 0 1 0 %g } vinstances 2 }\noutput out { float out }"),
                   left, bottom);
    }
    static DeskPoint On(const COpButton& button) { return ButtonRect(ButtonPlace::Of(button)).Middle(); }
    static DeskPoint On(const COpBox& box) { return TitleRect(box).Middle(); }
    template <typename Target>
    void Choose(const Target& target, int id) {
        ASSERT_TRUE(menu.Open(On(target)));
        menu.Choose(id);
    }
    PointerState At(DeskPoint point, bool left) {
        PointerState pointer;
        pointer.at = viewport.ToWindow(point);
        pointer.left = left;
        return pointer;
    }

    test::RecordingView view{document};
    test::SeenDesk desk{document, host, view};
    DeskViewport viewport{document, {}};
    DeskGestures gestures{
        {document, desk, viewport, view, host.GetSite().report, 3, [](const std::string&) {}}};
    TypeTables types;
    std::vector<std::string> edited;
    DeskMenu menu{
        {document, desk, gestures, view, types, [this](const std::string& name) { edited.push_back(name); }}};
};

TEST_F(DeskMenuTest, ShowThisHandsTheOutputOnAndTheOneThatIsShownIsChecked) {
    COpButton& first = *PutLink(0, 0).outputs[0];
    COpButton& second = *PutLink(300, 0).outputs[0];
    const COpButton* shown = nullptr;
    tavrin::DeskMenu showing{{document, desk, gestures, view, types, [](const std::string&) {},
                              [&shown] { return shown; }, [&shown](COpButton& output) { shown = &output; }}};
    EXPECT_FALSE(Find(*showing.Open(On(first)), "Show This")->checked);
    showing.Choose(desk_command::kShowThis);
    EXPECT_EQ(shown, &first);
    EXPECT_TRUE(Find(*showing.Open(On(first)), "Show This")->checked);
    EXPECT_FALSE(Find(*showing.Open(On(second)), "Show This")->checked);
    EXPECT_FALSE(Has(*menu.Open(On(first)), "Show This")) << "where nobody shows it";
    EXPECT_FALSE(document.IsModified());
}

TEST_F(DeskMenuTest, AnOutputThatGoesWhileItsMenuIsOpenIsNotShown) {
    COpBox& box = PutLink(0, 0);
    int shown = 0;
    tavrin::DeskMenu showing{{document, desk, gestures, view, types, [](const std::string&) {},
                              [] { return nullptr; }, [&shown](COpButton&) { ++shown; }}};
    ASSERT_TRUE(showing.Open(On(*box.outputs[0])));
    desk.DeleteBox(box);
    showing.Choose(desk_command::kShowThis);
    EXPECT_EQ(shown, 0);
}

TEST_F(DeskMenuTest, ADeskThatWasLockedMeanwhileIsShownAllTheSame) {
    COpBox& box = PutLink(0, 0);
    int shown = 0;
    tavrin::DeskMenu showing{{document, desk, gestures, view, types, [](const std::string&) {},
                              [] { return nullptr; }, [&shown](COpButton&) { ++shown; }}};
    ASSERT_TRUE(showing.Open(On(*box.outputs[0])));
    document.lock = 1;
    showing.Choose(desk_command::kShowThis);
    EXPECT_EQ(shown, 1);
}

TEST_F(DeskMenuTest, ThereIsNoMenuForTheEmptyDeskAndNoneForLines) {
    COpBox& from = PutLink(0, 0);
    COpBox& to = PutLink(300, 0);
    Wire(from, 0, to, 0);
    EXPECT_FALSE(menu.Open({200, 300}));
    EXPECT_FALSE(menu.Open({200, 16}));  // the line runs there
    EXPECT_EQ(desk.m_mouseBox, nullptr);
}

TEST_F(DeskMenuTest, ItOpensOnTheTopmostBoxAndItsButton) {
    COpBox& top = PutLink(10, 10);
    COpBox& under = PutLink(60, 10);
    const auto opened = menu.Open({100, 40});
    ASSERT_TRUE(opened);
    EXPECT_EQ(opened->front().text, "b_1: Button out");
    EXPECT_EQ(desk.m_mouseBox, &top);
    EXPECT_EQ(desk.m_mouseButton, top.outputs.at(0).get());
    EXPECT_EQ(menu.Open(On(under))->front().text, "b_2");
    EXPECT_EQ(desk.m_mouseBox, &under);
    EXPECT_EQ(desk.m_mouseButton, nullptr);
}

TEST_F(DeskMenuTest, StaleReferencesAreMendedBeforeItOpens) {
    PutLink(10, 10);
    auto gone = MakeLink("gone", 9);
    desk.m_selectedConnects = {gone->inputs.at(0).get()};
    gone.reset();
    menu.Open({500, 500});
    EXPECT_THAT(desk.m_selectedConnects, IsEmpty());
    EXPECT_EQ(host.Sink().log, "WARNING: m_selectedConnects holds invalid reference\r\n");
}

TEST_F(DeskMenuTest, TheNextMoveIsNoDrag) {
    COpBox& box = PutLink(10, 10);
    COpBox& other = PutLink(300, 300);
    ASSERT_TRUE(menu.Open(On(box)));
    gestures.Move(At(On(other), false));
    EXPECT_EQ(desk.m_mouseBox, &box);
    EXPECT_EQ(desk.m_mouseDesk[0], On(other).x);
    gestures.Move(At(On(other), false));
    EXPECT_EQ(desk.m_mouseBox, &other);
}

TEST_F(DeskMenuTest, WhileAGestureRunsNoneOpens) {
    COpBox& box = PutLink(10, 10);
    gestures.LeftDown(At(On(box), true));
    EXPECT_FALSE(menu.Open(On(box)));
    gestures.LeftUp(At(On(box), false));
    EXPECT_TRUE(menu.Open(On(box)));
}

TEST_F(DeskMenuTest, OnALockedDeskNoneOpensAndAnOpenOneChangesNothing) {
    COpBox& box = PutLink(10, 10);
    ASSERT_TRUE(menu.Open(On(box)));
    document.lock = 1;
    menu.Choose(desk_command::kDeleteBox);
    EXPECT_EQ(document.m_boxes.size(), 1U);
    menu.Choose(desk_command::kEditFile);
    EXPECT_THAT(edited, ElementsAre("b"));
    EXPECT_FALSE(menu.Open(On(box)));
}

// Commands.

TEST_F(DeskMenuTest, TheTitleDoesNothing) {
    COpBox& box = PutVinputs(10, 10);
    Choose(box, desk_command::kNone);
    Choose(*box.inputs.at(0), desk_command::kNone);
    EXPECT_FALSE(document.IsModified());
    EXPECT_THAT(view.calls, IsEmpty());
}

TEST_F(DeskMenuTest, ABoxIsCopiedAndDeleted) {
    COpBox& box = PutLink(10, 10);
    Choose(box, desk_command::kCopyBox);
    ASSERT_EQ(document.m_boxes.size(), 2U);
    EXPECT_EQ(document.m_boxes.front()->BoxTitleWid(), "b_2");
    EXPECT_FLOAT_EQ(document.m_boxes.front()->xypos[0], 16);
    EXPECT_FLOAT_EQ(document.m_boxes.front()->xypos[1], -16);
    Choose(box, desk_command::kDeleteBox);
    ASSERT_EQ(document.m_boxes.size(), 1U);
    EXPECT_EQ(document.m_boxes.front()->BoxTitleWid(), "b_2");
}

TEST_F(DeskMenuTest, AVinputGrowsAboveAndBelow) {
    COpBox& box = PutVinputs(10, 10);
    const COpButton* second = box.inputs.at(1).get();
    Choose(*second, desk_command::kCopyButtonAbove);
    ASSERT_EQ(box.inputs.size(), 3U);
    EXPECT_EQ(box.inputs.at(2).get(), second);
    Choose(*second, desk_command::kCopyButtonBelow);
    ASSERT_EQ(box.inputs.size(), 4U);
    EXPECT_EQ(box.inputs.at(2).get(), second);
    EXPECT_EQ(second->DisplayName(), "v3");
    EXPECT_TRUE(document.IsModified());
}

TEST_F(DeskMenuTest, AVinputIsDeletedTheOnlyOneAsWell) {
    COpBox& box = PutVinputs(10, 10);
    Choose(*box.inputs.at(0), desk_command::kDeleteButton);
    ASSERT_EQ(box.inputs.size(), 1U);
    EXPECT_EQ(box.inputs.at(0)->DisplayName(), "v1");
    Choose(*box.inputs.at(0), desk_command::kDeleteButton);
    EXPECT_THAT(box.inputs, IsEmpty());
    EXPECT_FALSE(Has(BoxMenu(box), "On input v1"));
}

TEST_F(DeskMenuTest, ConnectionsAreCut) {
    COpBox& from = PutLink(10, 10);
    COpBox& to = PutLink(300, 10);
    Wire(from, 0, to, 0);
    desk.m_selectedConnects = {to.inputs.at(0).get()};
    Choose(*from.outputs.at(0), desk_command::kDeleteConnections);
    EXPECT_TRUE(to.inputs.at(0)->connections.Empty());
    EXPECT_THAT(desk.m_selectedConnects, IsEmpty());
}

TEST_F(DeskMenuTest, AnArgumentIsToggledAndSeenCheckedTheNextTime) {
    COpBox& box = PutLink(10, 10);
    Choose(*box.inputs.at(0), desk_command::kArgument);
    EXPECT_EQ(box.inputs.at(0)->arg, 1);
    EXPECT_TRUE(Find(*menu.Open(On(*box.inputs.at(0))), "Argument")->checked);
}

TEST_F(DeskMenuTest, AChosenCastIsSeenCheckedAlsoOnTheButtonsTiedToIt) {
    COpBox& box = Put(MakeBox("m",
                              "input i { float { 0 0 1 0 %g } rgb { 0 0 0 %g } }\n"
                              "input j { xyz { 0 0 0 0 1 0 %g } }\n"
                              "output o { float out rgb out } defs { castlock.add i o castlock.add i j }"),
                      10, 10);
    Choose(*box.inputs.at(0), desk_command::kFirstCast + 1);
    for (const COpButton* button : {box.inputs.at(0).get(), box.outputs.at(0).get()}) {
        EXPECT_TRUE(Find(ButtonMenu(*button, types), "rgb")->checked);
        EXPECT_FALSE(Find(ButtonMenu(*button, types), "float")->checked);
    }
    EXPECT_TRUE(Find(ButtonMenu(*box.inputs.at(1), types), "xyz")->checked);  // it has no other
    EXPECT_TRUE(document.IsModified());
    EXPECT_THAT(view.calls, ElementsAre("Cast: touched m_1", "repaint"));
}

TEST_F(DeskMenuTest, TheFileIsThatOfTheBoxesOperator) {
    COpBox& box = Put(MakeLink("Noise", 0), 10, 10);
    Choose(box, desk_command::kEditFile);
    Choose(*box.outputs.at(0), desk_command::kEditFile);
    EXPECT_THAT(edited, ElementsAre("Noise", "Noise"));
    EXPECT_FALSE(document.IsModified());
}

TEST_F(DeskMenuTest, NothingIsDoneForABoxThatWentWhileTheMenuWasOpen) {
    COpBox& box = PutLink(10, 10);
    PutLink(300, 10);
    ASSERT_TRUE(menu.Open(On(box)));
    desk.DeleteBox(box);
    document.SetModified(false);
    for (const int id : {desk_command::kCopyBox, desk_command::kDeleteBox, desk_command::kEditFile})
        menu.Choose(id);
    EXPECT_EQ(document.m_boxes.size(), 1U);
    EXPECT_THAT(edited, IsEmpty());
    EXPECT_FALSE(document.IsModified());
}

TEST_F(DeskMenuTest, NothingIsDoneForAButtonThatWentWhileTheMenuWasOpen) {
    COpBox& box = PutVinputs(10, 10);
    ASSERT_TRUE(menu.Open(On(*box.inputs.at(0))));
    desk.DeleteButton();
    document.SetModified(false);
    for (int id = desk_command::kCopyBox; id <= desk_command::kArgument; ++id) menu.Choose(id);
    menu.Choose(desk_command::kFirstCast);
    EXPECT_EQ(box.inputs.size(), 1U);
    EXPECT_EQ(document.m_boxes.size(), 1U);
    EXPECT_THAT(edited, IsEmpty());
    EXPECT_FALSE(document.IsModified());
}

TEST_F(DeskMenuTest, NothingIsDoneInADocumentThatTookThePlaceOfTheFirst) {
    COpBox& box = PutLink(10, 10);
    ASSERT_TRUE(menu.Open(On(*box.inputs.at(0))));
    document.DeleteContents();
    desk.OnInitialUpdate();
    PutLink(10, 10);
    document.SetModified(false);
    for (int id = desk_command::kCopyBox; id <= desk_command::kArgument; ++id) menu.Choose(id);
    EXPECT_FALSE(document.IsModified());
    EXPECT_THAT(edited, IsEmpty());
}

TEST_F(DeskMenuTest, WhatLiesUnderTheMouseByNowIsNotTakenForWhatItWasOpenedOn) {
    COpBox& box = PutLink(10, 10);
    COpBox& other = PutLink(300, 10);
    ASSERT_TRUE(menu.Open(On(*box.inputs.at(0))));
    desk.m_mouseBox = &other;
    desk.m_mouseButton = other.inputs.at(0).get();
    menu.Choose(desk_command::kArgument);
    EXPECT_EQ(other.inputs.at(0)->arg + box.inputs.at(0)->arg, 0);
}

}  // namespace
}  // namespace tavrin
