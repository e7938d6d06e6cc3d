// SPDX-License-Identifier: Apache-2.0
#include "desk/BoxMarks.h"

#include <gmock/gmock.h>

namespace tavrin {
namespace {

using testing::HasSubstr;
using testing::Not;
using testing::Pointee;

class BoxMarksTest : public testing::Test {
  protected:
    BoxMarksTest() : told(marks.afterChange.Add([this] { ++tellings; })) {}

    BoxMarks marks;
    int tellings = 0;
    Listeners<>::Subscription told;
};

TEST_F(BoxMarksTest, AnErrorMarksTheBoxThatItNames) {
    marks.Hear("demo: line 4 (box Noise_3 of operator Noise): no good\n");
    EXPECT_THAT(marks.Find("Noise_3"),
                Pointee(std::string("demo: line 4 (box Noise_3 of operator Noise): no good")));
    EXPECT_EQ(marks.Find("Noise_4"), nullptr);
    EXPECT_EQ(tellings, 1);
}

TEST_F(BoxMarksTest, PiecesOfALineAreOneLine) {
    for (const char* piece : {"demo: box No", "ise", "_1", "2: bad", "\r", "\n"}) {
        EXPECT_TRUE(marks.IsEmpty());
        marks.Hear(piece);
        if (*piece == '\r') break;
    }
    EXPECT_THAT(marks.Find("Noise_12"), Pointee(std::string("demo: box Noise_12: bad")));
    EXPECT_EQ(marks.Find("Noise_1"), nullptr);
}

TEST_F(BoxMarksTest, ALineMarksEveryBoxThatItNames) {
    marks.Hear("'Ks' is a float in box Plastic_1, button Ks but a vec3 in box Clear Coat_12, button shine\n");
    EXPECT_NE(marks.Find("Plastic_1"), nullptr);
    EXPECT_NE(marks.Find("Clear Coat_12"), nullptr);
}

TEST_F(BoxMarksTest, WarningsAndOtherWordsMarkNone) {
    marks.Hear("demo: warning: line 4 (box Noise_3): odd\nWARNING: box Noise_3 is a copy\n");
    marks.Hear("rendering Noise_3\nthe toolbox Noise_3\nbox Noise\nbox _3\nbox Noise_\nbox Noise_3x\nbox \n");
    EXPECT_TRUE(marks.IsEmpty());
    EXPECT_EQ(tellings, 0);
}

TEST_F(BoxMarksTest, TheNextRunBeginsWithoutThem) {
    marks.Hear("box Noise_3: bad\nbox Mi");
    marks.Begin();
    EXPECT_TRUE(marks.IsEmpty());
    EXPECT_EQ(tellings, 2);
    marks.Hear("x_4: of the run before\n");
    EXPECT_TRUE(marks.IsEmpty());
    marks.Begin();
    EXPECT_EQ(tellings, 2) << "there was nothing to lose";
}

TEST_F(BoxMarksTest, LinesOfAnotherRenderMarkNone) {
    marks.Begin();
    marks.SetRender(2);
    marks.Hear("[render 1] box Mix_4: bad\n[render 22] box Mix_4: bad\n[render 2] box Noise_3: bad\n");
    EXPECT_EQ(marks.Find("Mix_4"), nullptr);
    EXPECT_THAT(marks.Find("Noise_3"), Pointee(std::string("box Noise_3: bad")));
}

TEST_F(BoxMarksTest, AllThatIsSaidOfABoxIsTold) {
    marks.Hear("box Noise_3: bad\nbox Noise_3: worse\nbox Noise_3: bad\n");
    EXPECT_THAT(marks.Find("Noise_3"), Pointee(std::string("box Noise_3: bad\nbox Noise_3: worse")));
    EXPECT_EQ(tellings, 1);
}

TEST_F(BoxMarksTest, AReplacementTellsOnlyWhatDiffers) {
    marks.Replace("box Noise_3: bad");
    EXPECT_EQ(tellings, 1);
    marks.Replace("box Noise_3: bad\n");
    EXPECT_EQ(tellings, 1);
    marks.Replace("box Mix_4: bad\n");
    EXPECT_EQ(marks.Find("Noise_3"), nullptr);
    EXPECT_NE(marks.Find("Mix_4"), nullptr);
    EXPECT_EQ(tellings, 2);
    marks.Replace("");
    EXPECT_TRUE(marks.IsEmpty());
    EXPECT_EQ(tellings, 3);
}

TEST_F(BoxMarksTest, AFloodIsKeptWithinWhatCanBeRead) {
    std::string flood;
    for (int i = 0; i < 3000; ++i)
        flood += "box Noise_" + std::to_string(i) + ": bad\nbox Mix_1: " + std::to_string(i) + "\n";
    marks.Hear("box Long_1: " + std::string(1'000'000, 'x'));
    marks.Hear(std::string(1'000'000, 'y') + "\n" + flood);
    ASSERT_NE(marks.Find("Long_1"), nullptr);
    EXPECT_EQ(marks.Find("Long_1")->size(), BoxMarks::kLongestLine);
    ASSERT_NE(marks.Find("Mix_1"), nullptr);
    EXPECT_EQ(std::count(marks.Find("Mix_1")->begin(), marks.Find("Mix_1")->end(), '\n') + 1,
              static_cast<long>(BoxMarks::kMostLines));
    EXPECT_NE(marks.Find("Noise_100"), nullptr);
    EXPECT_EQ(marks.Find("Noise_2999"), nullptr);
}

TEST_F(BoxMarksTest, HostileBytesDoNoHarm) {
    using namespace std::string_literals;
    marks.Hear("box \0_1\nbox \xff\xfe_2: \x1b[31m\nbox __3\nbox a_1_2_3: x\n[render ] box A_1\n[render"s);
    marks.Hear("\n");
    EXPECT_NE(marks.Find("\xff\xfe_2"), nullptr);
    EXPECT_NE(marks.Find("a_1_2_3"), nullptr);
}

}  // namespace
}  // namespace tavrin
