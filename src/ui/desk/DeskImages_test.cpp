// SPDX-License-Identifier: Apache-2.0
// Icons and the wallpaper, as they are seen.
#include <gtest/gtest.h>

#include <memory>
#include <vector>

#include "images/SgiTestFile.h"
#include "ui/desk/DeskPaneTest.h"

namespace tavrin {
namespace {

using test::IsColor;
using test::kBackground;
using test::kGreen;
using test::kInk;
using test::Rgba;
using test::SgiTestFile;

constexpr Rgb kRed{1, 0, 0};
constexpr Rgb kBlue{0, 0, 1};
constexpr Rgba kRedPixel{255, 0, 0, 255};
constexpr Rgba kBluePixel{0, 0, 255, 255};

class DeskImages : public test::DeskPaneTest {
  protected:
    // Writes an image file into the installation; its name there.
    std::string Write(const std::string& name, const SgiTestFile& file) {
        host.Directory().Write("installation/" + name, file.Bytes());
        return name;
    }
    std::unique_ptr<CSgiImage> Image(const SgiTestFile& file) {
        return std::make_unique<CSgiImage>(host.Directory().Write("picture.sgi", file.Bytes()), nullptr);
    }
    // A box with an icon of 40 by 30 pixels.
    COpBox& PutIcon(const Rgba& color) {
        COpBox& box = PutLink(300, 200);
        box.icontext = "label";
        box.iconimg = Write("icons/one.sgi", SgiTestFile::Plain(40, 30, 4, color));
        return box;
    }
};

TEST_F(DeskImages, ABoxGrowsForItsIconAndShowsItWhereIconsAreOn) {
    COpBox& box = PutIcon(kRedPixel);
    Show();
    EXPECT_EQ(PanelRect(box).width, 40 + 8);
    EXPECT_EQ(PanelRect(box).height, 30 + 8);
    Look();
    EXPECT_EQ(Count(PanelRect(box), kRed), 0);
    EXPECT_GT(Count(PanelRect(box), kInk), 10);
    document.showiconimages = 1;
    Look();
    EXPECT_EQ(Count(PanelRect(box), kRed), 40 * 30);
    EXPECT_EQ(Count(PanelRect(box), kInk), 0);
    document.zoomFactor = 2;
    pane->CentreOnBox("box_1");
    Look();
    EXPECT_NEAR(Count(PanelRect(box), kRed), 80 * 60, 150);
}

TEST_F(DeskImages, WhereAnIconIsClearTheColorOfItsBoxIsSeen) {
    COpBox& box = PutIcon({255, 0, 0, 0});
    document.showiconimages = 1;
    Show();
    Look();
    EXPECT_THAT(Seen(PanelRect(box).Middle()), IsColor(kGreen));
    EXPECT_EQ(Count(PanelRect(box), kInk), 0);
    highlighted = "box_1";
    Look();
    EXPECT_THAT(Seen(PanelRect(box).Middle()), IsColor(Rgb{1, 1, 1}));
}

TEST_F(DeskImages, AnIconKeepsTheColorItWasFirstShownOn) {
    COpBox& box = PutIcon({255, 0, 0, 0});
    document.showiconimages = 1;
    Show();
    Look();
    box.color[1] = 1;
    Look();
    EXPECT_THAT(Seen(PanelRect(box).Middle()), IsColor(kGreen));
}

TEST_F(DeskImages, WithoutItsFileABoxShowsItsTextAndTheLogTellsOnce) {
    COpBox& box = PutLink(300, 200);
    box.icontext = "label";
    box.iconimg = "icons/none.sgi";
    document.showiconimages = 1;
    Show();
    Look();
    EXPECT_GT(Count(PanelRect(box), kInk), 10);
    const std::string& log = host.Sink().log;
    const size_t told = log.find("none.sgi");
    ASSERT_NE(told, std::string::npos);
    EXPECT_EQ(log.find("none.sgi", log.find('\n', told)), std::string::npos);
}

TEST_F(DeskImages, TheWallpaperStandsInTheMiddleAndDoesNotScroll) {
    Show();
    pane->SetWallpaper(Image(SgiTestFile::Plain(100, 60, 3, kRedPixel)));
    const DeskPoint middle = pane->View().Visible().Middle();
    const DeskRect place{middle.x - 50, middle.y - 30, 100, 60};
    Look();
    EXPECT_NEAR(Count(place.GrownBy(10), kRed), 6000, 100);
    EXPECT_THAT(Seen(middle), IsColor(kRed));
    EXPECT_THAT(Seen({place.left - 3, middle.y}), IsColor(kBackground));
    document.offset[0] = 200;
    document.zoomFactor = 2;
    Look();
    EXPECT_THAT(Seen(pane->View().Visible().Middle()), IsColor(kRed));
    EXPECT_NEAR(Count(pane->View().Visible(), kRed), 6000, 100);
    pane->m_showWallpaper = false;
    Look();
    EXPECT_EQ(Count(pane->View().Visible(), kRed), 0);
}

TEST_F(DeskImages, AWallpaperLargerThanTheWindowFillsIt) {
    Show();
    pane->SetWallpaper(Image(SgiTestFile::Plain(1000, 900, 3, kRedPixel)));
    Look();
    for (const bool tiled : {false, true}) {
        pane->m_tileWallpaper = tiled;
        Look();
        for (const DeskPoint point : {DeskPoint{1, 1}, DeskPoint{400, 300}, DeskPoint{600, 440}}) {
            EXPECT_THAT(Seen(point), IsColor(kRed)) << tiled << point.x;
        }
    }
}

TEST_F(DeskImages, TilesBeginInTheLowerLeftCorner) {
    Show();
    std::vector<Rgba> pixels(size_t{5} * 3, kBluePixel);
    pixels[0] = kRedPixel;  // the lower left pixel of each tile
    pane->SetWallpaper(Image(SgiTestFile::Picture(5, 3, pixels)));
    pane->m_tileWallpaper = true;
    Look();
    for (const int x : {0, 1, 4, 5, 124, 125, 620, 621}) {
        for (const int y : {0, 2, 3, 5, 298, 300, 459}) {
            const bool isCorner = x % 5 == 0 && y % 3 == 0;
            const DeskPoint at{static_cast<float>(x) + 0.5F, static_cast<float>(y) + 0.5F};
            EXPECT_THAT(Seen(at), IsColor(isCorner ? kRed : kBlue)) << x << " " << y;
        }
    }
}

TEST_F(DeskImages, TheSiteSetsTheFirstWallpaper) {
    Write("icons/paper.sgi", SgiTestFile::Plain(100, 60, 3, kRedPixel));
    host.GetSite().settings.Store("desk.setbgimage", "icons/paper.sgi");
    Show();
    Look();
    EXPECT_THAT(Seen(pane->View().Visible().Middle()), IsColor(kRed));
}

TEST_F(DeskImages, AWallpaperThatCannotBeReadIsNone) {
    host.GetSite().settings.Store("desk.setbgimage", "icons/paper.sgi");
    Show();
    Look();
    EXPECT_THAT(Seen(pane->View().Visible().Middle()), IsColor(kBackground));
}

}  // namespace
}  // namespace tavrin
