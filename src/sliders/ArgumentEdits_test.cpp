// SPDX-License-Identifier: Apache-2.0
#include "sliders/ArgumentEdits.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/TestHost.h"

namespace tavrin {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class ArgumentEdits : public test::DocumentTest {
  protected:
    ArgumentEdits() { document.SetModified(false); }

    COpButton& button = *Add(test::MakeLink("a", 1)).inputs[0];
    std::vector<std::string> heard;
    Edits::Subscription listener =
        document.edits.Observe([this](const Change& change) { heard.push_back(test::TextOf(change)); });
};

TEST_F(ArgumentEdits, AnArgumentIsToldToWhoeverShowsTheDesk) {
    SetArgument(document, button, true);
    EXPECT_EQ(button.arg, 1);
    EXPECT_TRUE(document.IsModified());
    SetArgument(document, button, false);
    EXPECT_EQ(button.arg, 0);
    EXPECT_THAT(heard, ElementsAre("Argument: buttons a_1.in", "Argument: buttons a_1.in"));
}

TEST_F(ArgumentEdits, NamesAndCommentsAreTunedWhichTheDeskDoesNotShow) {
    SetArgumentName(document, button, "Ka \"x\"");
    SetComment(document, button, "how much");
    EXPECT_EQ(button.argname, "Ka \"x\"");
    EXPECT_EQ(button.comments, "how much");
    EXPECT_TRUE(document.IsModified());
    EXPECT_THAT(heard, ElementsAre("Argument Name: tuned a_1.in", "Comment: tuned a_1.in"));
}

TEST_F(ArgumentEdits, WhatIsSoAlreadyIsNoEdit) {
    button.arg = 2;  // as a document may have it
    button.argname = "Ka";
    button.comments = "how much";
    SetArgument(document, button, true);
    SetArgumentName(document, button, "Ka");
    SetComment(document, button, "how much");
    EXPECT_EQ(button.arg, 2);
    EXPECT_FALSE(document.IsModified());
    EXPECT_THAT(heard, IsEmpty());
}

}  // namespace
}  // namespace tavrin
