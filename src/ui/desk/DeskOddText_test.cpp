// SPDX-License-Identifier: Apache-2.0
// Texts of every script and of none on the desk: boxes are as wide as their texts, the same every time, and
// everything can be painted and hit.
#include <gtest/gtest.h>

#include "ui/desk/DeskPaneTest.h"

namespace tavrin {
namespace {

using test::MakeBox;

const std::vector<std::string>& OddTexts() {
    static const std::vector<std::string> texts{
        "Gr\xC3\xB6\xC3\x9F"
        "e",                                                 // Latin with marks
        "\xD0\xA6\xD0\xB2\xD0\xB5\xD1\x82",                  // Cyrillic
        "\xE9\xA2\x9C\xE8\x89\xB2\xE6\xB7\xB7\xE5\x90\x88",  // Chinese
        "\xD7\xA6\xD7\x91\xD7\xA2",                          // Hebrew, from right to left
        "\xF0\x9F\x8E\xA8\xF0\x9F\x8E\xA8",                  // outside the basic plane
        "e\xCC\x81\xCC\x81\xCC\x81",                         // marks upon a letter
        "a\x01\x02\x1B[31mb\x7F",                            // control characters
        "\xFF\xFE\xC3\x28\xE2\x82",                          // no text at all
        std::string(2000, 'w'),
    };
    return texts;
}

class DeskOddText : public test::DeskPaneTest {
  protected:
    COpBox& PutOdd(const std::string& text) {
        auto box = MakeBox(text, "input in { float { 0 0 1 0 %g } } output out { float out }");
        box->icontext = text;
        box->boxhelp = text;
        for (const auto* side : {&box->inputs, &box->outputs}) {
            side->front()->name = text;
            side->front()->help = text;
            side->front()->argname = text;
            side->front()->arg = 1;
        }
        return Put(std::move(box), 300, 200);
    }
};

TEST_F(DeskOddText, ABoxHasRoomForItsTextsAndTheSameEveryTime) {
    for (const std::string& text : OddTexts()) {
        document.m_boxes.clear();
        COpBox& box = PutOdd(text);
        Show();
        Look();
        const BoxLayout first = box.layout;
        EXPECT_EQ(first.leftColumnWidth, first.rightColumnWidth) << text;
        EXPECT_GE(first.width, first.leftColumnWidth + first.rightColumnWidth) << text;
        EXPECT_TRUE(std::isfinite(first.width)) << text;
        pane->LayoutAll();
        EXPECT_EQ(box.layout.width, first.width) << text;
        EXPECT_EQ(box.layout.leftColumnWidth, first.leftColumnWidth) << text;
        COpBox twin(box);
        twin.wid = box.wid;
        pane->LayoutBox(twin);
        EXPECT_EQ(twin.layout.width, first.width) << text;
    }
}

TEST_F(DeskOddText, IsPaintedAtEveryZoomWithoutAnError) {
    for (const std::string& text : OddTexts()) {
        document.m_boxes.clear();
        COpBox& box = PutOdd(text);
        COpBox& other = PutLink(300, 60);
        test::Wire(box, 0, other, 0);
        document.showvarnames = 1;
        Show();
        for (const float zoom : {0.1F, 0.26F, 1.0F, 1.7F, 10.0F}) {
            document.zoomFactor = zoom;
            pane->CentreOnBox(box.BoxTitleWid());
            Look();
        }
        EXPECT_TRUE(std::isfinite(box.layout.width));
    }
}

TEST_F(DeskOddText, HelpComesToTheStatusBoxAsItStands) {
    for (const std::string& text : OddTexts()) {
        document.m_boxes.clear();
        COpBox& box = PutOdd(text);
        Show();
        pane->CentreOnBox(box.BoxTitleWid());
        Look();
        MoveTo(TitleOf(box));
        EXPECT_EQ(status, text);
    }
}

}  // namespace
}  // namespace tavrin
