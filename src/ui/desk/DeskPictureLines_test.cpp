// SPDX-License-Identifier: Apache-2.0
// Connections as they are seen, against references.
#include <gtest/gtest.h>

#include "ui/desk/DeskPictureTest.h"

namespace tavrin {
namespace {

using test::MakeBox;
using test::Wire;

constexpr const char* kThreeByTwo =
    "input a { float { 0 0 1 0 %g } }\ninput b { float { 0 0 1 0 %g } }\ninput c { float { 0 0 1 0 %g } }\n"
    "output x { float out }\noutput y { float out }";

class DeskPictureLines : public test::DeskPictureTest {
  protected:
    COpBox& PutMany(float x, float y) { return Put(MakeBox("many", kThreeByTwo), x, y); }
    COpBox& PutColors(float x, float y) { return Put(MakeBox("rgb", "output o { rgb out }"), x, y); }
    void Trace() { document.linetype = 1; }
    // Three pairs: of one cast, of two, and of two with its line selected.
    void PutCasts() {
        COpBox* starts[] = {&PutLink(50, 160), &PutColors(50, 100), &PutColors(50, 40)};
        float y = 145;
        for (COpBox* start : starts) {
            COpBox& end = PutLink(210, y);
            Wire(*start, 0, end, 0);
            if (start == starts[2]) desk.m_selectedConnects = {end.inputs.at(0).get()};
            y -= 60;
        }
    }
    // Opens with the line of these selected, which opening forgets.
    void OpenSelected(int width, int height) {
        const auto selected = desk.m_selectedConnects;
        Open(width, height);
        desk.m_selectedConnects = selected;
    }
};

TEST_F(DeskPictureLines, ADirectLineRunsStraightFromOutputToInput) {
    Wire(PutLink(50, 110), 0, PutLink(190, 40), 0);
    Wire(PutLink(190, 120), 0, PutLink(50, 30), 0);  // backward
    Open(240, 150);
    ExpectPicture();
}

TEST_F(DeskPictureLines, ATracedLineToTheRightHasFourPoints) {
    Trace();
    COpBox& start = PutLink(40, 75);
    Wire(start, 0, PutLink(200, 120), 0);
    Wire(start, 0, PutLink(200, 30), 0);
    Open(240, 150);
    ExpectPicture();
}

TEST_F(DeskPictureLines, ATracedLineOnOneLevelIsStraight) {
    Trace();
    Wire(PutLink(40, 50), 0, PutLink(200, 50), 0);
    Open(240, 100);
    ExpectPicture();
}

TEST_F(DeskPictureLines, ATracedLineToTheLeftOnOneLevelPassesOverItsTarget) {
    Trace();
    Wire(PutLink(170, 60), 0, PutLink(70, 60), 0);
    Open(240, 110);
    ExpectPicture();
}

TEST_F(DeskPictureLines, ATracedLineDownToTheLeftPassesOverItsTarget) {
    Trace();
    Wire(PutLink(170, 140), 0, PutLink(70, 40), 0);
    Open(240, 190);
    ExpectPicture();
}

TEST_F(DeskPictureLines, ATracedLineUpToTheLeftPassesUnderItsTarget) {
    Trace();
    Wire(PutLink(170, 40), 0, PutLink(70, 140), 0);
    Open(240, 190);
    ExpectPicture();
}

TEST_F(DeskPictureLines, TracedLinesOfNeighbouringButtonsKeepApartDownward) {
    Trace();
    COpBox& start = PutMany(60, 180);
    COpBox& right = PutMany(250, 120);
    COpBox& left = PutMany(80, 40);
    for (size_t i = 0; i < 3; ++i) {
        Wire(start, i % 2, right, i);
        Wire(start, i % 2, left, i);
    }
    Open(320, 240);
    ExpectPicture();
}

TEST_F(DeskPictureLines, TracedLinesOfNeighbouringButtonsKeepApartUpward) {
    Trace();
    COpBox& start = PutMany(60, 60);
    COpBox& right = PutMany(250, 120);
    COpBox& left = PutMany(80, 190);
    for (size_t i = 0; i < 3; ++i) {
        Wire(start, i % 2, right, i);
        Wire(start, i % 2, left, i);
    }
    Open(320, 240);
    ExpectPicture();
}

TEST_F(DeskPictureLines, LinesShowWhetherCastsAgreeAndWhatIsSelected) {
    PutCasts();
    OpenSelected(260, 190);
    ExpectPicture("direct");
    Trace();
    ExpectPicture("traced");
}

TEST_F(DeskPictureLines, SelectedLinesAreDrawnAboveTheOthers) {
    COpBox& lower = PutLink(50, 40);
    COpBox& upper = PutLink(50, 110);
    COpBox& right = PutMany(200, 75);
    Wire(upper, 0, right, 2);
    Wire(lower, 0, right, 0);
    desk.m_selectedConnects = {right.inputs.at(0).get()};  // comes first among the inputs
    OpenSelected(260, 150);
    ExpectPicture();
}

TEST_F(DeskPictureLines, TheColorOfStippledLinesFollowsThatOfAllLines) {
    Settings& settings = host.GetSite().settings;
    settings.Store("desk.stipplelinecolor", "");
    settings.Store("desk.connectcolor", "0.1 0.4 0");
    PutCasts();
    OpenSelected(260, 190);
    ExpectPicture();
}

TEST_F(DeskPictureLines, LinesRunBehindBoxesOrOverThem) {
    COpBox& start = PutLink(40, 90);
    PutLink(120, 65).selected = 1;
    Wire(start, 0, PutLink(200, 40), 0);
    Open(240, 130);
    ExpectPicture("behind");
    document.drawlinesoverboxes = 1;
    ExpectPicture("over");
}

TEST_F(DeskPictureLines, VariablesNamesStandAtTheStartsOfLinesInTheirColors) {
    document.showvarnames = 1;
    PutCasts();
    OpenSelected(260, 190);
    ExpectPicture("direct");
    Trace();
    ExpectPicture("traced");
    ExpectPictureAt(2, {90, 100}, "zoom-2");
    ExpectPictureAt(0.4F, {130, 95}, "zoom-0.4");  // no letters are that small
}

TEST_F(DeskPictureLines, TheSiteSetsTheWidthOfLines) {
    host.GetSite().settings.Store("box.connectlinewidth", "6");
    PutCasts();
    OpenSelected(260, 190);
    ExpectPicture();
}

TEST_F(DeskPictureLines, LinesAreAsWideAtEachZoom) {
    PutCasts();
    OpenSelected(260, 190);
    Trace();
    ExpectPictureAt(0.5F, {130, 95}, "zoom-0.5");
    ExpectPictureAt(2.5F, {130, 95}, "zoom-2.5");
}

TEST_F(DeskPictureLines, LinesThatLeaveTheWindowAreCut) {
    Trace();
    Wire(PutLink(-60, 75), 0, PutLink(300, 60), 0);
    Wire(PutLink(100, 220), 0, PutLink(60, -80), 0);
    Wire(PutColors(100, -60), 0, PutLink(190, 230), 0);
    Open(240, 150);
    ExpectPicture();
}

}  // namespace
}  // namespace tavrin
