// SPDX-License-Identifier: Apache-2.0
#include "document/Edits.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/TestHost.h"

namespace tavrin {
namespace {

using test::MakeLink;
using testing::ElementsAre;
using testing::IsEmpty;

class EditsTest : public test::DocumentTest {
  protected:
    std::vector<std::string> heard;
    Edits::Subscription listener =
        document.edits.Observe([this](const Change& change) { heard.push_back(test::TextOf(change)); });
    Edits& edits = document.edits;
};

TEST_F(EditsTest, AllThatOneActChangesIsToldAtItsEnd) {
    COpBox& box = Add(MakeLink("a", 1));
    COpBox& other = Add(MakeLink("b", 2));
    {
        const EditScope edit(document, "Wire");
        edits.BoxTouched(box);
        edits.BoxTouched(box);
        edits.ButtonTouched(*other.inputs[0]);
        edits.WiresChanged();
        EXPECT_TRUE(document.IsModified());  // at once: the program may be ended meanwhile
        EXPECT_THAT(heard, IsEmpty());
    }
    EXPECT_THAT(heard, ElementsAre("Wire: touched a_1 buttons b_2.in wires"));
    EXPECT_EQ(edits.StrayEdits(), 0);
}

TEST_F(EditsTest, TheOutermostScopeEndsTheActWhichTheFirstNameNames) {
    {
        const EditScope gesture(document, {});
        {
            const EditScope edit(document, "Add Input");
            edits.OptionsChanged();
        }
        const EditScope edit(document, "Wire");
        edits.SettingsChanged();
        EXPECT_THAT(heard, IsEmpty());
    }
    EXPECT_THAT(heard, ElementsAre("Add Input: options settings"));
    {
        const EditScope edit(document, {});
        edits.OptionsChanged();
    }
    EXPECT_EQ(heard.back(), "Edit: options");
}

TEST_F(EditsTest, AnActThatGoesOnIsOneUntilItsEnd) {
    std::optional<HeldEdit> drag;
    drag.emplace(document, "Move");
    COpBox& box = Add(MakeLink("a", 1));
    for (int step = 0; step < 3; ++step) {
        const EditScope edit(document, "Move");
        edits.BoxTouched(box);
    }
    EXPECT_THAT(heard, IsEmpty());
    EXPECT_TRUE(document.IsModified());
    drag.reset();
    EXPECT_THAT(heard, ElementsAre("Move: touched a_1"));
}

TEST_F(EditsTest, AnotherActWhileOneGoesOnIsToldByItself) {
    std::optional<HeldEdit> drag;
    drag.emplace(document, "Move");
    COpBox& box = Add(MakeLink("a", 1));
    const auto move = [&] {
        const EditScope edit(document, "Move");
        edits.BoxTouched(box);
    };
    move();
    {
        const EditScope edit(document, "Lock Desk");
        edits.SettingsChanged();
    }
    EXPECT_THAT(heard, ElementsAre("Move: touched a_1", "Lock Desk: settings"));
    move();
    drag.reset();
    EXPECT_THAT(heard, ElementsAre("Move: touched a_1", "Lock Desk: settings", "Move: touched a_1"));
    EXPECT_EQ(edits.StrayEdits(), 0);
}

TEST_F(EditsTest, AnActThatChangesNothingIsNotTold) {
    { const EditScope edit(document, "Nothing"); }
    EXPECT_THAT(heard, IsEmpty());
    EXPECT_FALSE(document.IsModified());
    {
        const EditScope edit(document, "Something");
        edits.OptionsChanged();
    }
    EXPECT_THAT(heard, ElementsAre("Something: options"));
}

TEST_F(EditsTest, AnEditOutsideAScopeIsToldAllTheSameAndCounted) {
    edits.OptionsChanged();
    EXPECT_THAT(heard, ElementsAre("Edit: options"));
    EXPECT_TRUE(document.IsModified());
    EXPECT_EQ(edits.StrayEdits(), 1);
}

TEST_F(EditsTest, ABoxThatGoesIsNamedByWhatItWasAndNowhereElse) {
    COpBox& fed = Add(MakeLink("fed", 2));
    auto box = MakeLink("a", 1);
    test::Wire(*box, 0, fed, 0);
    const uint64_t serial = box->Serial();
    GoneBox gone;
    const auto other = edits.Observe([&](const Change& change) { gone = change.went.at(0); });
    {
        const EditScope edit(document, "Delete");
        edits.BoxCame(*box);
        edits.BoxDropped(*box);
        edits.BoxTouched(*box);
        edits.ButtonTouched(*box->inputs[0]);
        edits.BoxWent(*box, Edits::Stood::kInNetwork);
        box.reset();
    }
    EXPECT_THAT(heard, ElementsAre("Delete: went a_1 wires"));
    EXPECT_EQ(gone.serial, serial);
    EXPECT_EQ(gone.boxTitleWid, "a_1");
}

TEST_F(EditsTest, AButtonOfATouchedBoxIsNotNamedBesideItsBox) {
    COpBox& box = Add(MakeLink("a", 1));
    {
        const EditScope edit(document, "Cast");
        edits.ButtonTouched(*box.inputs[0]);
        edits.BoxTouched(box);
        edits.ButtonTouched(*box.inputs[0]);
    }
    EXPECT_THAT(heard, ElementsAre("Cast: touched a_1"));
}

TEST_F(EditsTest, WhatIsTunedIsNamedApartUnlessMoreOfTheButtonIsDifferent) {
    COpBox& box = Add(MakeLink("a", 1));
    COpBox& other = Add(MakeLink("b", 2));
    COpBox& third = Add(MakeLink("c", 3));
    {
        const EditScope edit(document, "Value");
        edits.ButtonTuned(*box.inputs[0]);
        edits.ButtonTuned(*box.inputs[0]);
        edits.ButtonTuned(*other.inputs[0]);
        edits.ButtonTouched(*other.inputs[0]);
        edits.ButtonTuned(*other.inputs[0]);
        edits.ButtonTuned(*third.inputs[0]);
        edits.BoxTouched(third);
        edits.ButtonTuned(*third.inputs[0]);
    }
    EXPECT_THAT(heard, ElementsAre("Value: touched c_3 buttons b_2.in tuned a_1.in"));
    EXPECT_TRUE(document.IsModified());
}

TEST_F(EditsTest, WhatIsTunedIsNotSeenOnTheDesk) {
    COpBox& box = Add(MakeLink("a", 1));
    std::vector<bool> seen;
    const auto watch = edits.Observe([&](const Change& change) { seen.push_back(change.IsSeenOnDesk()); });
    {
        const EditScope edit(document, "Value");
        edits.ButtonTuned(*box.inputs[0]);
    }
    {
        const EditScope edit(document, "Option");
        edits.OptionsChanged();
    }
    {
        const EditScope edit(document, "Argument");
        edits.ButtonTouched(*box.inputs[0]);
    }
    EXPECT_THAT(seen, ElementsAre(false, false, true));
}

TEST_F(EditsTest, AnUnmarkedTuningIsToldAndLeavesTheDocumentUnmodified) {
    COpBox& box = Add(MakeLink("a", 1));
    {
        const EditScope edit(document, "Value");
        edits.ButtonTunedUnmarked(*box.inputs[0]);
    }
    EXPECT_THAT(heard, ElementsAre("Value: tuned a_1.in"));
    EXPECT_FALSE(document.IsModified());
    EXPECT_EQ(edits.StrayEdits(), 0);
}

TEST_F(EditsTest, WhatWasTunedOfABoxThatGoesIsNotTold) {
    auto box = MakeLink("a", 1);
    {
        const EditScope edit(document, "Delete");
        edits.ButtonTuned(*box->inputs[0]);
        edits.BoxWent(*box, Edits::Stood::kInNetwork);
        box.reset();
    }
    EXPECT_THAT(heard, ElementsAre("Delete: went a_1"));
}

TEST_F(EditsTest, WhatOnlyWaitsUnderTheMouseLeavesTheDocumentUnmodified) {
    auto box = MakeLink("a", 1);
    {
        const EditScope edit(document, "Add");
        edits.BoxCame(*box);
    }
    {
        const EditScope edit(document, "Delete");
        edits.BoxWent(*box, Edits::Stood::kWaiting);
    }
    EXPECT_FALSE(document.IsModified());
    EXPECT_THAT(heard, ElementsAre("Add: came a_1", "Delete: went a_1"));
    {
        const EditScope edit(document, "Add");
        edits.BoxCame(*box);
        edits.BroughtBoxes();
    }
    EXPECT_TRUE(document.IsModified());
}

TEST_F(EditsTest, AnotherSelectionIsToldAtOnceAndIsNoEdit) {
    const EditScope edit(document, "Move");
    edits.SelectionChanged();
    EXPECT_THAT(heard, ElementsAre("selection"));
    EXPECT_FALSE(document.IsModified());
}

TEST_F(EditsTest, ADocumentThatGivesPlaceToAnotherTakesAlongWhatWasNotedOfIt) {
    const EditScope edit(document, "Move");
    edits.BoxTouched(Add(MakeLink("a", 1)));
    edits.WiresChanged();
    document.DeleteContents();
    Add(MakeLink("b", 1));
    edits.Replaced();
    EXPECT_THAT(heard, ElementsAre("replaced"));
    {
        const EditScope inner(document, "Later");
        edits.OptionsChanged();
    }
    EXPECT_EQ(heard.size(), 1U);  // the scope that was open is open still
}

TEST_F(EditsTest, ListenersAreToldInTheirOrderUntilTheirSubscriptionEnds) {
    auto second = edits.Observe([this](const Change&) { heard.emplace_back("second"); });
    {
        const EditScope edit(document, "One");
        edits.OptionsChanged();
    }
    EXPECT_THAT(heard, ElementsAre("One: options", "second"));
    second.reset();
    {
        const EditScope edit(document, "Two");
        edits.OptionsChanged();
    }
    EXPECT_EQ(heard.back(), "Two: options");
}

TEST_F(EditsTest, EachPartOfAnActThatGoesOnIsToldToThoseWhoFollowTheHand) {
    int parts = 0;
    const auto subscription = edits.ObserveParts([&] { ++parts; });
    {
        const EditScope edit(document, "Options");
        edits.OptionsChanged();
    }
    EXPECT_EQ(parts, 0) << "what is over is told as such";
    {
        const HeldEdit drag(document, "Drag");
        for (int step = 1; step <= 3; ++step) {
            const EditScope edit(document, "Drag");
            const EditScope inner(document, "Inner");
            edits.OptionsChanged();
            EXPECT_EQ(parts, step - 1) << "not in the middle of one";
        }
        EXPECT_EQ(parts, 3);
        EXPECT_TRUE(edits.Pending().options);
        EXPECT_THAT(heard, ElementsAre("Options: options"));
        {
            const EditScope other(document, "Other");
            edits.OptionsChanged();
        }
        EXPECT_EQ(parts, 3);
    }
    EXPECT_EQ(heard.size(), 3U);
}

TEST_F(EditsTest, ASubscriptionMayOutliveTheDocument) {
    Edits::Subscription late;
    {
        CTvDoc other(host);
        late = other.edits.Observe([](const Change&) {});
    }
    late.reset();
}

}  // namespace
}  // namespace tavrin
