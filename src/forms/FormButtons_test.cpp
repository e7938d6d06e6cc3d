// SPDX-License-Identifier: Apache-2.0
#include "forms/FormButtons.h"

#include "forms/FormTestHost.h"

namespace tavrin::test {

class FormButtons : public FormUse {};

TEST_F(FormButtons, ALedButtonTurnsOnForItsOwnWordAndForTrueInAnyCase) {
    auto& button = Make<CFormLedButton>("ledbutton", "envname L\nenvon yes\nstate 0");
    const auto shown = [&](const std::string& value) {
        form.BroadcastOption("L", value);
        return button.state;
    };
    EXPECT_TRUE(shown("TRUE"));
    EXPECT_FALSE(shown("Yes"));
    EXPECT_TRUE(shown("yes"));
    EXPECT_FALSE(shown("0"));
    EXPECT_TRUE(shown("1"));
    EXPECT_FALSE(shown("2"));
    EXPECT_TRUE(host.stored.empty());
    EXPECT_EQ(refreshes, 6);
}

TEST_F(FormButtons, ClickingALedButtonStoresItsWordAndSendsThePlainState) {
    auto& button =
        Make<CFormLedButton>("ledbutton", "envname L\nenvon yes\nstate 0\nactionto a\nactionmsg b");
    const FormAction on = button.Click(true, host);
    EXPECT_TRUE(button.state);
    EXPECT_EQ(on.to + on.message + on.argument, "ab1");
    EXPECT_EQ(button.Click(false, host).argument, "0");
    EXPECT_EQ(host.stored, (Stored{{"L", "yes"}, {"L", "0"}}));
    EXPECT_FALSE(Make<CFormLedButton>("ledbutton", "state 0").Click(true, host).IsSet());
}

TEST_F(FormButtons, ALedButtonStoresItsDefault) {
    auto& button = Make<CFormLedButton>("ledbutton", "envname L\nenvon yes\nstate 0");
    host.variables["L"] = "True";
    form.LoadDefaults(host);
    EXPECT_TRUE(button.state);
    EXPECT_EQ(host.stored, (Stored{{"L", "yes"}}));
}

TEST_F(FormButtons, AChooserStoresTheChosenLineAndSendsIt) {
    auto& chooser = Make<CFormChooser>(
        "chooser", "envname C\nactionto a\nactionmsg b\nchoosercontents {\none\ntwo words\n}");
    const FormAction action = chooser.Choose(1, host);
    EXPECT_EQ(chooser.selected, 1);
    EXPECT_EQ(action.to + action.message + "/" + action.argument, "ab/two words");
    EXPECT_EQ(host.stored, (Stored{{"C", "two words"}}));
    EXPECT_EQ(refreshes, 0);
    EXPECT_FALSE(chooser.Choose(2, host).IsSet());
    EXPECT_FALSE(chooser.Choose(-1, host).IsSet());
    EXPECT_EQ(host.stored.size(), 1U);
}

TEST_F(FormButtons, AChosenLineIsLookedUpAgain) {
    auto& chooser = Make<CFormChooser>("chooser", "envname C\nchoosercontents {\nabc\nab\n}");
    chooser.Choose(1, host);
    EXPECT_EQ(chooser.selected, 0);
    EXPECT_EQ(host.stored, (Stored{{"C", "ab"}}));
    EXPECT_EQ(refreshes, 1) << "the list must show the other line";
}

TEST_F(FormButtons, AChooserFollowsItsOptionAsFarAsItHasTheLine) {
    auto& chooser = Make<CFormChooser>("chooser", "envname C\nvalue one\nchoosercontents {\none\ntwo\n}");
    form.BroadcastOption("C", "TW");
    EXPECT_EQ(chooser.selected, 1);
    form.BroadcastOption("C", "three");
    EXPECT_EQ(chooser.selected, 1);
    EXPECT_TRUE(host.stored.empty());
}

TEST_F(FormButtons, ADefaultThatAChooserDoesNotHaveLeavesItAndStoresNothing) {
    auto& chooser = Make<CFormChooser>("chooser", "envname C\nvalue one\nchoosercontents {\none\ntwo\n}");
    host.variables["C"] = "three";
    form.LoadDefaults(host);
    EXPECT_EQ(chooser.selected, 0);
    EXPECT_TRUE(host.stored.empty());
    host.variables["C"] = "T";
    form.LoadDefaults(host);
    EXPECT_EQ(chooser.selected, 1);
    EXPECT_EQ(host.stored, (Stored{{"C", "T"}}));
}

TEST_F(FormButtons, TheEmptyTextMatchesNoLine) {
    auto& chooser = Make<CFormChooser>("chooser", "envname C\nchoosercontents {\none\ntwo\n}");
    EXPECT_EQ(chooser.selected, CFormChooser::kNothing);
    form.LoadDefaults(host);
    form.BroadcastOption("C", "");
    EXPECT_EQ(chooser.selected, CFormChooser::kNothing);
    chooser.Choose(1, host);
    host.stored.clear();
    host.variables.erase("C");
    form.LoadDefaults(host);
    form.BroadcastOption("C", "");
    EXPECT_EQ(chooser.selected, 1);
    EXPECT_TRUE(host.stored.empty());
}

TEST_F(FormButtons, TheEmptyTextMatchesALineThatIsEmpty) {
    auto& chooser = Make<CFormChooser>("chooser", "envname C\nvalue one\nchoosercontents {\none\n\"\"\n}");
    chooser.Choose(1, host);
    EXPECT_EQ(chooser.selected, 1);
    EXPECT_EQ(host.stored, (Stored{{"C", ""}}));
}

}  // namespace tavrin::test
