// SPDX-License-Identifier: Apache-2.0
// The window "Source" in the whole program: what it shows, how it follows the desk, and where a click leads.
#include "ui/source/SourceWindow.h"

#include <QApplication>
#include <QClipboard>
#include <QLabel>
#include <QMenu>
#include <QTest>
#include <QToolButton>
#include <QWindow>
#include <filesystem>

#include "desk/OpDesk.h"
#include "ui/base/Text.h"
#include "ui/desk/DeskPane.h"
#include "ui/frame/StatusBox.h"
#include "ui/source/SourceColumn.h"
#include "ui/support/Hands.h"
#include "ui/support/TestFrame.h"

namespace tavrin {
namespace {

using test::WaitUntil;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

constexpr const char* kKnobs = R"text(size 64 48
input amount { float { 0.5 0 1 0 "%g" } }
output result { float out }
codegen.main-body append
result = amount + 1;
again(result);
<<EOT>>
)text";

constexpr const char* kTypes = R"text(
roe {
frame {
    chooser {
        envname TAVRN_SHADER_TYPE
        value surface
        choosercontents {
            surface
            module
        }
    }
}
loaddefaults
}
)text";

// Writes the type of the shader ahead of what it is given, and fails while there is a file "broken"; for a
// file "faulty" it fails when the source is to be used.
constexpr const char* kFilter = R"perl(#!/usr/bin/perl
use strict; use warnings;
my ($name, $base) = @ARGV;
if (-e "$ENV{TAVRN_DIR}/../broken") { print STDERR "$name: nothing but trouble\n"; exit 1; }
if (-e "$ENV{TAVRN_DIR}/../faulty" && !$ENV{TAVRN_SOURCEONLY}) {
    print STDERR "$name: line 9 (box Knobs_1, operator Knobs, menu/0500.Knobs line 6): no such function\n";
    print STDERR "$name: line 3 (box Knobs_2, button amount): no such value\n";
    exit 1;
}
my $type = 'none';
open my $options, '<', $ENV{TAVRN_RENOPTS} or die;
while (<$options>) { $type = $1 if /TAVRN_SHADER_TYPE "(.*)"/ }
while (<STDIN>) { last if $_ eq "EndArginfo\n"; }
open my $out, '>', $base or die "$base: $!\n";
print $out "type $type;\n", <STDIN>;
)perl";

class SourceWindowTest : public test::FrameTest {
  protected:
    SourceWindowTest() {
        directory.Write("tavrin/tiny/menu/0500.Knobs", kKnobs);
        directory.Write("tavrin/tiny/bin/codefilter", kFilter);
    }

    void AddToSite(const std::string& lines) {
        const std::string path = "tavrin/tiny/tavrn.def";
        directory.Write(path, test::ReadFile(directory / path) + lines);
    }
    void StartWithKnobs(int boxes = 2) {
        Start();
        AddBoxes(boxes, "Knobs");
    }
    void Open() {
        Do(CommandId::kSource);
        ASSERT_TRUE(WaitUntil([this] { return Window().Refreshes() > 0 && View().LineCount() > 0; }));
    }
    SourceWindow& Window() { return Frame().Windows().Get<SourceWindow>(); }
    SourceColumn& Column(size_t place = 0) { return *Window().Columns().at(place); }
    SourceView& View(size_t place = 0) { return Column(place).View(); }
    std::string Text(size_t place = 0) { return View(place).Source().Text(); }
    bool TextComesTo(const std::string& part, size_t place = 0) {
        return WaitUntil([&] { return Text(place).find(part) != std::string::npos; });
    }
    COpBox& BoxOf(int wid) {
        for (const auto& box : Document().m_boxes) {
            if (box->wid == wid) return *box;
        }
        throw std::out_of_range("no box of that number");
    }
    void Tune(int wid, float number) {
        COpButton& button = *BoxOf(wid).inputs[0];
        const EditScope edit(Document(), "Tune");
        Document().edits.ButtonTuned(button);
        dynamic_cast<COpValueFloat&>(*button.values[0]).value = number;
    }
    // The number of the line, from 1, that reads so, blanks apart.
    size_t LineOf(const std::string& text, size_t place = 0) {
        for (size_t line = 1; line <= View(place).LineCount(); ++line) {
            const std::string_view found = View(place).Source().Line(line - 1);
            const size_t begin = found.find_first_not_of(' ');
            if (begin != std::string_view::npos && found.substr(begin) == text) return line;
        }
        ADD_FAILURE() << "no line " << text << " in\n" << Text(place);
        return 1;
    }
    std::string LitText(size_t place = 0) {
        std::string text;
        for (const size_t line : View(place).Lit()) {
            const std::string_view found = View(place).Source().Line(line - 1);
            text.append(found.substr(std::min(found.find_first_not_of(' '), found.size()))).append("|");
        }
        return text;
    }
    void Click(size_t line, Qt::KeyboardModifiers keys = {}) {
        View().viewport()->window()->raise();
        QTest::mouseClick(View().viewport(), Qt::LeftButton, keys,
                          View().PlaceOfLine(line).center() - QPoint(View().viewport()->width() / 2 - 90, 0));
        Settle();
    }
    std::string Origin() {
        for (const QLabel* label : Window().findChildren<QLabel*>()) {
            if (label->accessibleName() == "Origin of the line") return Bytes(label->text());
        }
        return {};
    }
    std::vector<std::string> Selected() {
        std::vector<std::string> names;
        for (const auto& box : Document().m_boxes) {
            if (box->selected != 0) names.push_back(box->BoxTitleWid());
        }
        return names;
    }
    // Opens the menu of columns with the mouse and clicks the choice.
    void ChooseColumn(const QString& name) {
        auto& button = *Window().findChild<QToolButton*>();
        bool isDone = false;
        QTimer::singleShot(0, &button, [&] {
            QMenu& menu = *button.menu();
            EXPECT_TRUE(WaitUntil([&menu] { return menu.isVisible(); }));
            for (QAction* choice : menu.actions()) {
                if (choice->text() != name) continue;
                isDone = choice->isEnabled();
                QTest::mouseClick(&menu, Qt::LeftButton, {}, menu.actionGeometry(choice).center());
            }
            if (menu.isVisible()) menu.close();
        });
        QTest::mouseClick(&button, Qt::LeftButton);
        Settle();
        m_couldChoose = isDone;
    }
    std::vector<std::string> Headings() {
        std::vector<std::string> headings;
        for (const SourceColumn* column : Window().Columns())
            headings.push_back(Bytes(column->Heading().section(':', 0, 0)));
        return headings;
    }

    bool m_couldChoose = false;
};

TEST_F(SourceWindowTest, TheSourceStandsBesideTheDeskAndFollowsIt) {
    StartWithKnobs(1);
    Open();
    EXPECT_THAT(Text(), HasSubstr("= 0.5 + 1;"));
    Tune(1, 0.75F);
    EXPECT_TRUE(TextComesTo("= 0.75 + 1;"));
    AddBoxes(1, "Knobs");
    EXPECT_TRUE(TextComesTo("again(Knobs_2_result);"));
    Do(CommandId::kUndo);
    EXPECT_TRUE(WaitUntil([this] { return Text().find("Knobs_2") == std::string::npos; }));
    EXPECT_EQ(Log(), "");
}

TEST_F(SourceWindowTest, ManyEditsAtOnceAreFollowedOnce) {
    StartWithKnobs(1);
    Open();
    const int before = Window().Refreshes();
    for (int i = 1; i <= 200; ++i) Tune(1, 0.5F + 0.001F * static_cast<float>(i));
    EXPECT_TRUE(TextComesTo("= 0.7 + 1;"));
    EXPECT_EQ(Window().Refreshes(), before + 1);
}

TEST_F(SourceWindowTest, AHandThatHoldsAButtonIsWaitedFor) {
    StartWithKnobs(1);
    Open();
    QWindow& frame = *Frame().windowHandle();
    const QPoint at = Frame().StatusBox().mapTo(&Frame(), QPoint(5, 5));
    QTest::mousePress(&frame, Qt::LeftButton, {}, at);
    Tune(1, 0.75F);
    ASSERT_TRUE(WaitUntil([this] { return Window().Delays() > 1; }));
    EXPECT_THAT(Text(), HasSubstr("= 0.5 + 1;"));
    QTest::mouseRelease(&frame, Qt::LeftButton, {}, at);
    EXPECT_TRUE(TextComesTo("= 0.75 + 1;"));
}

TEST_F(SourceWindowTest, AHiddenWindowGeneratesNothing) {
    StartWithKnobs(1);
    Tune(1, 0.75F);
    Settle();
    EXPECT_EQ(Window().Refreshes(), 0);
    Open();
    Do(CommandId::kSource);
    const int before = Window().Refreshes();
    Tune(1, 0.25F);
    Desk().SelectAllBoxes();
    EXPECT_TRUE(WaitUntil([this] { return !Window().isVisible(); }));
    EXPECT_EQ(Window().Refreshes(), before);
    Do(CommandId::kSource);
    EXPECT_TRUE(TextComesTo("= 0.25 + 1;"));
}

TEST_F(SourceWindowTest, TheLinesOfTheSelectedBoxesAreLit) {
    StartWithKnobs(3);
    Desk().UnselectAllBoxes();
    Open();
    EXPECT_EQ(LitText(), "");
    Desk().SelectBox("Knobs_2");
    EXPECT_THAT(LitText(), HasSubstr("Knobs_2_result = 0.5 + 1;|again(Knobs_2_result);|"));
    EXPECT_THAT(LitText(), Not(HasSubstr("Knobs_1")));
    EXPECT_THAT(LitText(), HasSubstr("float Knobs_2_result;|")) << "its declaration";
    Tune(1, 0.75F);
    ASSERT_TRUE(TextComesTo("= 0.75 + 1;"));
    EXPECT_THAT(LitText(), HasSubstr("again(Knobs_2_result);|")) << "of the new source as well";
    Desk().SelectAllBoxes();
    EXPECT_THAT(LitText(), HasSubstr("again(Knobs_3_result);|"));
    Desk().UnselectAllBoxes();
    EXPECT_EQ(LitText(), "");
}

TEST_F(SourceWindowTest, LinesThatAreLitFarAwayComeIntoView) {
    StartWithKnobs(60);
    Desk().UnselectAllBoxes();
    Open();
    ASSERT_EQ(View().FirstLineInView(), 1U);
    const auto isSeen = [this](size_t line) {
        return line >= View().FirstLineInView() && line < View().FirstLineInView() + View().LinesInView();
    };
    Desk().SelectBox("Knobs_60");
    EXPECT_TRUE(std::any_of(View().Lit().begin(), View().Lit().end(), isSeen));
    const size_t first = View().FirstLineInView();
    Tune(1, 0.75F);
    ASSERT_TRUE(TextComesTo("= 0.75 + 1;"));
    EXPECT_EQ(View().FirstLineInView(), first) << "what is read stays where it is";
}

TEST_F(SourceWindowTest, AClickOnALineGoesToItsBoxAndTellsWhatWroteIt) {
    StartWithKnobs(3);
    {
        const EditScope edit(Document(), "Move");
        Document().edits.BoxMoved(BoxOf(2));
        BoxOf(2).xypos[0] = 5000;
    }
    Desk().SelectAllBoxes();
    Open();
    const float before = Document().offset[0];
    Click(LineOf("again(Knobs_2_result);"));
    EXPECT_THAT(Selected(), ElementsAre("Knobs_2"));
    EXPECT_NE(Document().offset[0], before) << "the box is far away";
    EXPECT_THAT(Origin(), HasSubstr("box Knobs_2, operator Knobs, menu/0500.Knobs line 6, main-body"));
    EXPECT_THAT(LitText(), HasSubstr("again(Knobs_2_result);|"));
    EXPECT_FALSE(Document().edits.IsOpen());
}

TEST_F(SourceWindowTest, ALineOfNoBoxLeavesTheSelectionAsItIs) {
    StartWithKnobs(2);
    Desk().SelectBox("Knobs_1");
    Open();
    Click(LineOf("surface Untitled"));
    EXPECT_THAT(Selected(), ElementsAre("Knobs_1"));
    EXPECT_THAT(Origin(), HasSubstr("tavrn.def line "));
    Click(LineOf("type none;"));
    EXPECT_THAT(Origin(), HasSubstr("Line 1: no box"));
}

TEST_F(SourceWindowTest, ALineOfABoxThatHasGoneSaysSo) {
    StartWithKnobs(2);
    Open();
    const size_t line = LineOf("again(Knobs_2_result);");
    const HeldEdit held(Document(), "Hold");  // the source waits for its end
    Desk().DeleteBox(BoxOf(2));
    Click(line);
    EXPECT_THAT(Origin(), HasSubstr("box Knobs_2, "));
    EXPECT_THAT(Origin(), HasSubstr("which is not on the desk any more"));
    EXPECT_THAT(Selected(), Not(testing::Contains("Knobs_2")));
}

TEST_F(SourceWindowTest, TheArrowsTellOfLinesAndEnterGoesToTheBox) {
    StartWithKnobs(2);
    Desk().UnselectAllBoxes();
    Open();
    test::FocusOn(View());
    const float zoom = Document().zoom[0];
    const size_t line = LineOf("again(Knobs_1_result);");
    Click(line);
    Desk().UnselectAllBoxes();
    test::PressKeys("Up");
    EXPECT_EQ(View().CaretLine(), line - 1);
    EXPECT_THAT(Origin(), HasSubstr("menu/0500.Knobs line 5"));
    EXPECT_THAT(Selected(), IsEmpty());
    EXPECT_EQ(Document().zoom[0], zoom);
    test::PressKeys("Return");
    EXPECT_THAT(Selected(), ElementsAre("Knobs_1"));
}

TEST_F(SourceWindowTest, ALockedDeskIsMovedToTheBoxAndNothingIsSelected) {
    StartWithKnobs(2);
    Desk().UnselectAllBoxes();
    Open();
    Do(CommandId::kLockDesk);
    Settle();
    Click(LineOf("again(Knobs_2_result);"));
    EXPECT_THAT(Selected(), IsEmpty());
    EXPECT_THAT(Origin(), HasSubstr("box Knobs_2"));
}

TEST_F(SourceWindowTest, KeysOfATextDoNotHitTheDesk) {
    StartWithKnobs(2);
    Open();
    Click(LineOf("again(Knobs_2_result);"));
    ASSERT_THAT(Selected(), ElementsAre("Knobs_2"));
    test::FocusOn(View());
    for (const char* keys : {"Delete", "Ctrl+X", "Ctrl+V", "Ctrl+A", "Down"}) test::PressKeys(keys);
    EXPECT_EQ(Document().m_boxes.size(), 2U);
    EXPECT_THAT(Selected(), ElementsAre("Knobs_2"));
}

TEST_F(SourceWindowTest, WhatIsSelectedIsCopied) {
    StartWithKnobs(1);
    Desk().UnselectAllBoxes();
    Open();
    test::FocusOn(View());
    const size_t line = LineOf("again(Knobs_1_result);");
    Click(line);
    test::PressKeys("Home");
    test::PressKeys("Shift+Down");
    EXPECT_EQ(Bytes(View().SelectedText()), std::string(View().Source().Line(line - 1)) + "\n");
    test::PressKeys("Ctrl+C");
    EXPECT_EQ(QGuiApplication::clipboard()->text(), View().SelectedText());
    test::PressKeys("Ctrl+A");
    test::PressKeys("Ctrl+C");
    EXPECT_EQ(Bytes(QGuiApplication::clipboard()->text()) + "\n", Text());
    test::PressKeys("Escape");
    EXPECT_EQ(View().SelectedText(), "");
}

TEST_F(SourceWindowTest, CaretAndSelectionStayOnTheirLinesWhenTheSourceChanges) {
    StartWithKnobs(2);
    Desk().UnselectAllBoxes();
    Open();
    test::FocusOn(View());
    Click(LineOf("again(Knobs_2_result);"));
    test::PressKeys("Home");
    test::PressKeys("Shift+End");
    const QString selected = View().SelectedText();
    AddBoxes(1, "Constant");
    Tune(1, 0.75F);
    ASSERT_TRUE(TextComesTo("Constant_3"));
    EXPECT_EQ(View().SelectedText(), selected);
    EXPECT_EQ(View().CaretLine(), LineOf("again(Knobs_2_result);"));
}

TEST_F(SourceWindowTest, ALibraryWithoutTypesHasOneColumn) {
    StartWithKnobs(1);
    Open();
    EXPECT_THAT(Headings(), ElementsAre("Shader"));
    EXPECT_THAT(Text(), HasSubstr("type none;"));
}

TEST_F(SourceWindowTest, TypesStandSideBySideAndTheDocumentKeepsItsOwn) {
    AddToSite(kTypes);
    StartWithKnobs(1);
    Document().SetModified(false);
    Open();
    EXPECT_THAT(Headings(), ElementsAre("surface"));
    EXPECT_THAT(Text(), HasSubstr("type surface;"));
    ChooseColumn("module");
    ASSERT_THAT(Headings(), ElementsAre("surface", "module"));
    EXPECT_TRUE(TextComesTo("type module;", 1));
    EXPECT_THAT(Text(0), HasSubstr("type surface;"));
    EXPECT_EQ(Document().m_renderOptions["TAVRN_SHADER_TYPE"], "surface");
    EXPECT_FALSE(Document().IsModified());
    EXPECT_THAT(Bytes(Frame().windowTitle()), HasSubstr("[surface]"));
    ChooseColumn("Before the filter");
    ASSERT_THAT(Headings(), ElementsAre("surface", "module", "Before the filter"));
    EXPECT_TRUE(TextComesTo("again(Knobs_1_result);", 2));
    EXPECT_THAT(Text(2), Not(HasSubstr("type ")));
    Tune(1, 0.75F);
    for (const size_t column : {0U, 1U, 2U}) EXPECT_TRUE(TextComesTo("= 0.75 + 1;", column)) << column;
    ChooseColumn("surface");
    ChooseColumn("module");
    EXPECT_THAT(Headings(), ElementsAre("Before the filter"));
    ChooseColumn("Before the filter");
    EXPECT_FALSE(m_couldChoose) << "the last one stays";
    EXPECT_THAT(Headings(), ElementsAre("Before the filter"));
}

TEST_F(SourceWindowTest, TheColumnFollowsTheTypeOfTheDocumentUntilOneIsChosen) {
    AddToSite(kTypes);
    StartWithKnobs(1);
    Open();
    App().SetVariable("TAVRN_SHADER_TYPE", "module", true);
    EXPECT_TRUE(WaitUntil([this] { return Headings() == std::vector<std::string>{"module"}; }));
    EXPECT_TRUE(TextComesTo("type module;"));
    ChooseColumn("surface");
    App().SetVariable("TAVRN_SHADER_TYPE", "surface", true);
    Tune(1, 0.75F);
    EXPECT_TRUE(TextComesTo("= 0.75 + 1;", 1));
    EXPECT_THAT(Headings(), ElementsAre("surface", "module"));
}

TEST_F(SourceWindowTest, AFailingScriptGivesItsReasonsInPlaceOfTheSource) {
    StartWithKnobs(1);
    Open();
    directory.Write("broken", "");
    Tune(1, 0.75F);
    EXPECT_TRUE(WaitUntil([this] { return Bytes(Column().Notes()) == "Untitled: nothing but trouble"; }));
    EXPECT_FALSE(View().isVisible());
    EXPECT_THAT(Bytes(Column().Heading()), HasSubstr("there is no source"));
    std::filesystem::remove(directory / "broken");
    Tune(1, 0.25F);
    EXPECT_TRUE(TextComesTo("= 0.25 + 1;"));
    EXPECT_TRUE(View().isVisible());
    EXPECT_EQ(Bytes(Column().Notes()), "");
    EXPECT_EQ(Log(), "");
}

TEST_F(SourceWindowTest, LinesThatTheLastRunComplainsOfAreMarkedUntilTheNext) {
    StartWithKnobs(3);
    Desk().UnselectAllBoxes();
    Open();
    EXPECT_THAT(View().Marked(), IsEmpty());
    directory.Write("faulty", "");
    Do(CommandId::kRenderIt);
    const size_t wrong = LineOf("again(Knobs_1_result);");
    ASSERT_TRUE(WaitUntil([this] { return !View().Marked().empty(); }));
    EXPECT_THAT(View().Marked(), testing::Contains(wrong));
    EXPECT_THAT(View().Marked(), Not(testing::Contains(wrong - 1))) << "another line of that template";
    EXPECT_THAT(View().Marked(), testing::Contains(LineOf("again(Knobs_2_result);"))) << "no line is named";
    EXPECT_THAT(View().Marked(), Not(testing::Contains(LineOf("again(Knobs_3_result);"))));
    Click(wrong);
    EXPECT_THAT(Origin(), HasSubstr("no such function"));
    std::filesystem::remove(directory / "faulty");
    Do(CommandId::kRenderIt);
    EXPECT_TRUE(WaitUntil([this] { return View().Marked().empty() && !ChildRuns(); }));
}

TEST_F(SourceWindowTest, TheWordsOfTheLibraryColourTheSource) {
    AddToSite("source.words my.words\n");
    directory.Write("tavrin/tiny/my.words", "class type { float }\n");
    StartWithKnobs(1);
    Open();
    SourceText source = View().Source();
    EXPECT_THAT(source.SpansOf(LineOf("float Knobs_1_result;") - 1), testing::SizeIs(1));
}

TEST_F(SourceWindowTest, AWrongListOfWordsIsToldOnceAndTheSourceIsPlain) {
    AddToSite("source.words my.words\n");
    directory.Write("tavrin/tiny/my.words", "class type { float }\nnonsense\n");
    StartWithKnobs(1);
    Open();
    Tune(1, 0.75F);
    ASSERT_TRUE(TextComesTo("= 0.75 + 1;"));
    const std::string log = Log();
    EXPECT_THAT(log, HasSubstr("my.words near line 2: \"nonsense\""));
    EXPECT_EQ(log.find("near line 2"), log.rfind("near line 2"));
    SourceText source = View().Source();
    EXPECT_THAT(source.SpansOf(LineOf("float Knobs_1_result;") - 1), IsEmpty());
    directory.Write("tavrin/tiny/my.words", "class type { float }\n");
    Do(CommandId::kReloadOperators);
    EXPECT_TRUE(WaitUntil([this] {
        SourceText coloured = View().Source();
        return coloured.SpansOf(LineOf("float Knobs_1_result;") - 1).size() == 1;
    }));
}

TEST_F(SourceWindowTest, AnEmptyDeskHasTheFrameOfAShader) {
    Start();
    Open();
    EXPECT_THAT(Text(), HasSubstr("surface Untitled"));
    EXPECT_EQ(LitText(), "");
}

}  // namespace
}  // namespace tavrin
