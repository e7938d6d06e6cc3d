// SPDX-License-Identifier: Apache-2.0
#include "ui/sliders/ArgumentRow.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QApplication>
#include <QPointer>

#include "ui/sliders/ArgumentTest.h"
#include "ui/support/Hands.h"

namespace tavrin {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class ArgumentRow : public test::ArgumentTest {
  protected:
    void Start(const std::string& name = "a") {
        box = &AddBox(name, 1, 2);
        ShowRows(4);
        heard.clear();
    }
    COpButton& Input() { return *box->inputs[0]; }

    COpBox* box = nullptr;
    std::vector<std::string> heard;
    Edits::Subscription hearing =
        document.edits.Observe([this](const Change& change) { heard.push_back(test::TextOf(change)); });
};

TEST_F(ArgumentRow, ATickMakesAnArgumentAndOpensItsFields) {
    Start();
    EXPECT_FALSE(Name(0).isEnabled());
    EXPECT_FALSE(Comment(0).isEnabled());
    ClickFlag(0);
    EXPECT_EQ(Input().arg, 1);
    EXPECT_TRUE(Name(0).isEnabled());
    EXPECT_TRUE(Comment(0).isEnabled());
    ClickFlag(0);
    EXPECT_EQ(Input().arg, 0);
    EXPECT_FALSE(Name(0).isEnabled());
    EXPECT_FALSE(Comment(0).isEnabled());
    EXPECT_THAT(heard, ElementsAre("Argument: buttons a_1.i0", "Argument: buttons a_1.i0"));
    EXPECT_TRUE(document.IsModified());
}

TEST_F(ArgumentRow, EachKeyIsInTheDocumentAtOnce) {
    Start();
    SetArg(Input(), 1);
    heard.clear();
    test::GiveFocus(Name(0));
    test::PressKeys("k");
    test::PressKeys("a");
    EXPECT_EQ(Input().argname, "ka");
    test::GiveFocus(Comment(0));
    test::PressKeys("c");
    EXPECT_EQ(Input().comments, "c");
    EXPECT_THAT(heard, ElementsAre("Argument Name: tuned a_1.i0", "Argument Name: tuned a_1.i0",
                                   "Comment: tuned a_1.i0"));
}

TEST_F(ArgumentRow, ShowingAndLeavingAreNoEdits) {
    Start();
    SetArg(Input(), 2);
    Tune(Input(), [](COpButton& button) {
        button.argname = "K\xFF";
        button.comments = "a\r\nb";
    });
    document.SetModified(false);
    heard.clear();
    test::GiveFocus(Name(0));
    test::GiveFocus(Comment(0));
    test::GiveFocus(Flag(0));
    editor.hide();
    test::ShowActive(editor);
    EXPECT_THAT(heard, IsEmpty());
    EXPECT_FALSE(document.IsModified());
    EXPECT_EQ(Input().arg, 2);
    EXPECT_EQ(Input().argname, "K\xFF");
    EXPECT_EQ(Input().comments, "a\r\nb");
}

TEST_F(ArgumentRow, AnEditOfOneFieldLeavesTheBytesOfTheOthers) {
    Start();
    SetArg(Input(), 2);
    Tune(Input(), [](COpButton& button) {
        button.argname = "K\xFF\xC3";
        button.comments = "c";
    });
    test::GiveFocus(Comment(0));
    Comment(0).setCursorPosition(1);
    test::PressKeys("x");
    EXPECT_EQ(Input().comments, "cx");
    EXPECT_EQ(Input().argname, "K\xFF\xC3");
    EXPECT_EQ(Input().arg, 2);
}

TEST_F(ArgumentRow, AFlagThatTheOperatorForbidsIsGreyAndStaysTicked) {
    Start();
    Input().disableargflag = 1;
    SetArg(Input(), 1);
    EXPECT_FALSE(Flag(0).isEnabled());
    EXPECT_TRUE(Flag(0).isChecked());
    EXPECT_TRUE(Name(0).isEnabled());
    EXPECT_TRUE(Comment(0).isEnabled());
    ClickFlag(0);
    EXPECT_EQ(Input().arg, 1);
    test::GiveFocus(Name(0));
    test::PressKeys("k");
    EXPECT_EQ(Input().argname, "k");
}

TEST_F(ArgumentRow, AWindowThatHasAnotherButtonHasItsOwnRules) {
    box = &AddBox("a", 1, 20);
    for (size_t at = 0; at < 20; at += 2) box->inputs[at]->disableargflag = 1;
    ShowRows(2);
    for (int top = 0; top <= Bar().maximum(); top += editor.Rows().RowHeight()) {
        Bar().setValue(top);
        ExpectInStep();
    }
}

TEST_F(ArgumentRow, AnAmpersandIsShownAsItself) {
    Start("salt & pepper");
    const QString name = "salt & pepper_1_i0";
    editor.resize(1000, editor.height());
    ASSERT_TRUE(test::WaitUntil([&] { return editor.width() == 1000; }));
    EXPECT_EQ(Flag(0).text(), "salt && pepper_1_i0");
    EXPECT_TRUE(Flag(0).shortcut().isEmpty());
    EXPECT_EQ(Flag(0).accessibleName(), name);
}

TEST_F(ArgumentRow, ALongNameIsElidedAndItsToolTipHasAllOfIt) {
    const std::string title = "<b>" + std::string(300, 'm') + "</b>";
    Start(title);
    const QString shown = Flag(0).text();
    EXPECT_TRUE(shown.contains(u'\u2026'));
    EXPECT_LT(Flag(0).fontMetrics().horizontalAdvance(shown), Flag(0).width());
    EXPECT_TRUE(shown.endsWith("i0")) << "what tells the inputs of a box apart is seen";
    EXPECT_TRUE(Flag(0).toolTip().contains("&lt;b&gt;" + QString(300, 'm')));
    {
        const EditScope edit(document, "Title");
        document.edits.BoxTouched(*box);
        box->filename[150] = 'X';
    }
    EXPECT_EQ(Flag(0).text(), shown);
    EXPECT_TRUE(Flag(0).toolTip().contains("mXm")) << "though the two look the same";
    RemoveBox(*box);
    AddBox("b", 2, 1);
    EXPECT_EQ(Flag(0).text(), "b_2_i0");
    EXPECT_EQ(Flag(0).toolTip(), "");
}

TEST_F(ArgumentRow, NamesOfEveryKindAreShownOnOneLine) {
    Start("two\nlines");
    EXPECT_EQ(Flag(0).text(), "two lines_1_i0");
    for (const std::string& title : {std::string(1'000'000, 'm'), std::string("\xFF\xFE"),
                                     std::string("\xE2\x80\xAE\xE6\x9C\xA8"), std::string()}) {
        const EditScope edit(document, "Title");
        document.edits.BoxTouched(*box);
        box->filename = title;
    }
    EXPECT_EQ(Flag(0).text(), "_1_i0");
}

TEST_F(ArgumentRow, HostileTextsAreShownAsTheyAreAndNotChanged) {
    Start();
    SetArg(Input(), 1);
    for (const std::string& text :
         {std::string("<img src=x>"), std::string("&amp; %s %n"), std::string("\xFF\x00\x01", 3),
          std::string(100'000, 'm'), std::string("\xE2\x80\xAE"), std::string("a\nb")}) {
        Tune(Input(), [&](COpButton& button) { button.argname = button.comments = text; });
        EXPECT_EQ(Name(0).text(), Comment(0).text());
        EXPECT_GT(Name(0).text().size(), 0);
        test::GiveFocus(Comment(0));
        test::GiveFocus(Name(0));
        EXPECT_EQ(Input().argname, text);
        EXPECT_EQ(Input().comments, text);
    }
}

TEST_F(ArgumentRow, WithoutItsButtonItChangesNothing) {
    Start();
    SetArg(Input(), 1);
    test::GiveFocus(Name(0));
    CArgumentRow& row = RowAt(0);
    auto& name = Name(0);
    auto& flag = Flag(0);
    heard.clear();
    row.LetGo();
    EXPECT_EQ(row.Button(), nullptr);
    EXPECT_FALSE(name.hasFocus());
    QTest::keyClicks(&name, "Ka");
    flag.click();
    EXPECT_THAT(heard, IsEmpty());
    EXPECT_EQ(Input().argname, "");
    EXPECT_EQ(Input().arg, 1);
}

TEST_F(ArgumentRow, ANamelessArgumentShowsWhatItWillBeCalled) {
    Start();
    EXPECT_EQ(Name(0).placeholderText(), "");
    EXPECT_EQ(Comment(0).placeholderText(), "");
    SetArg(Input(), 1);
    EXPECT_EQ(Name(0).placeholderText(), "a_1_i0");
    EXPECT_EQ(Comment(0).placeholderText(), "Comment");
    EXPECT_EQ(Name(0).accessibleName(), "Argument name of a_1_i0");
    EXPECT_EQ(Comment(0).accessibleName(), "Comment on a_1_i0");
}

}  // namespace
}  // namespace tavrin
