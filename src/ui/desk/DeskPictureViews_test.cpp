// SPDX-License-Identifier: Apache-2.0
// The view as a whole: zooms, wallpaper, veil, texts at the window's edges. Against references.
#include <gtest/gtest.h>

#include "images/SgiTestFile.h"
#include "ui/desk/DeskPictureTest.h"

namespace tavrin {
namespace {

using test::MakeBox;
using test::Rgba;
using test::SgiTestFile;
using test::Wire;

class DeskPictureViews : public test::DeskPictureTest {
  protected:
    // A little of all that a network shows.
    void PutNetwork() {
        COpBox& start =
            Put(MakeBox("noise", "input in { float { 0 0 1 0 %g } }\noutput o { rgb out }"), 60, 100);
        start.icontext = "Noise";
        start.inputs.at(0)->arg = 1;
        COpBox& end = Put(MakeBox("mix",
                                  "input a { rgb { 0 0 0 %g } }\ninput b { float { 0 0 1 0 %g } }\n"
                                  "input c { float { 0 0 1 0 %g } }\noutput out { float out }"),
                          180, 70);
        end.icontext = "Mix";
        end.color[0] = 0.7F;
        end.inputs.at(2)->disableconnectflag = 1;
        end.selected = 1;
        Wire(start, 0, end, 0);
        Wire(start, 0, end, 1);
        document.linetype = 1;
        document.showvarnames = 1;
    }
    // Pixels that tell where they come from: the lower left corner is red, and each fifth row is dark. Alpha
    // is anything.
    static std::unique_ptr<CSgiImage> Paper(const test::TempDir& directory, int width, int height) {
        std::vector<Rgba> pixels;
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width; ++x) {
                const bool isCorner = x < 4 && y < 4;
                const auto red = static_cast<uint8_t>(isCorner ? 255 : 120 * x / width);
                const auto green = static_cast<uint8_t>(isCorner ? 0 : 255 * y / height);
                const auto blue = static_cast<uint8_t>(y % 5 == 0 ? 40 : 200);
                pixels.push_back({red, green, blue, static_cast<uint8_t>((x * 7 + y * 3) % 256)});
            }
        }
        const std::string path = directory.Write("paper.sgi", SgiTestFile::Picture(width, 4, pixels).Bytes());
        return std::make_unique<CSgiImage>(path, nullptr);
    }
    void SetPaper(int width, int height) { pane->SetWallpaper(Paper(host.Directory(), width, height)); }
};

TEST_F(DeskPictureViews, ANetworkAtEachZoom) {
    PutNetwork();
    Open(240, 160);
    const DeskPoint middle{120, 80};
    for (const char* zoom : {"0.2", "0.25", "0.3", "0.5", "0.8", "1", "1.5", "3", "8"}) {
        // Where much is magnified the middle is the corner of a box.
        const float factor = std::stof(zoom);
        ExpectPictureAt(factor, factor > 2 ? DeskPoint{150, 92} : middle, std::string("zoom-") + zoom);
    }
}

TEST_F(DeskPictureViews, ANetworkAtOddZoomsAndOffsets) {
    PutNetwork();
    Open(240, 160);
    for (const int steps : {-12, -7, -2, 1, 5, 13}) {
        ExpectPictureAt(std::pow(1.1F, static_cast<float>(steps)), {131.7F, 84.3F},
                        "steps" + std::to_string(steps));
    }
}

TEST_F(DeskPictureViews, TextsThatBeginOutsideTheWindowAreSeenWhereTheyEnterIt) {
    COpBox& left = PutLink(0, 75);
    COpBox& below = PutLink(130, 0);
    left.filename = below.filename = "a title of many letters";
    left.icontext = below.icontext = "Panel";
    Wire(PutLink(-45, 135), 0, PutLink(160, 110), 0);
    document.showvarnames = 1;
    Open(200, 150);
    LookEveryWay();                                        // lays out; what follows stays
    desk.MoveBox(below, 0, -5 - TitleRect(below).bottom);  // its title's lower third is outside
    ExpectPicture();
}

TEST_F(DeskPictureViews, ALockedDeskIsVeiled) {
    PutNetwork();
    Open(203, 151);
    Lock(true);
    ExpectPictureAt(1, {120, 80});
    ExpectPictureAt(2, {120, 80}, "zoom-2");
}

TEST_F(DeskPictureViews, TheWallpaperIsSeenOnlyWhereItIsWanted) {
    PutLink(60, 45);
    Open(120, 90);
    SetPaper(100, 70);
    ExpectPicture("shown");
    pane->m_showWallpaper = false;
    ExpectPicture("hidden");
}

TEST_F(DeskPictureViews, ASingleWallpaperStandsInTheMiddle) {
    Open(121, 90);
    SetPaper(40, 31);
    ExpectPicture("smaller");
    ExpectPictureAt(2.3F, {17, 5}, "smaller-zoom-2.3");
    SetPaper(180, 131);
    ExpectPicture("larger");
    SetPaper(180, 31);
    ExpectPicture("wider");
    SetPaper(40, 131);
    ExpectPicture("higher");
}

TEST_F(DeskPictureViews, TiledWallpaperBeginsInTheLowerLeftCorner) {
    Open(121, 90);
    pane->m_tileWallpaper = true;
    SetPaper(40, 31);
    ExpectPicture("smaller");
    ExpectPictureAt(2.3F, {17, 5}, "smaller-zoom-2.3");
    SetPaper(180, 131);
    ExpectPicture("larger");
    SetPaper(180, 31);
    ExpectPicture("wider");
    SetPaper(40, 131);
    ExpectPicture("higher");
    SetPaper(7, 5);
    ExpectPicture("many");
}

TEST_F(DeskPictureViews, AnEmptyDeskIsItsBackground) {
    host.GetSite().settings.Store("desk.backgroundcolor", "0.1 0.2 0.9");
    Open(60, 40);
    ExpectPicture();
}

}  // namespace
}  // namespace tavrin
