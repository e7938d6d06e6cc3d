// SPDX-License-Identifier: Apache-2.0
// Icons and wallpapers that are broken, huge, or no files at all: the desk is painted all the same.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
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
using testing::HasSubstr;

constexpr Rgb kRed{1, 0, 0};
constexpr Rgba kRedPixel{255, 0, 0, 255};

// A picture of one colour whose rows are all the same bytes of the file.
std::string OneRowAgainAndAgain(int width, int height) {
    SgiTestFile file;
    file.width = width;
    file.height = height;
    file.channels = 4;
    const size_t rows = static_cast<size_t>(height) * 4;
    const std::string row = test::EncodeRow(std::vector<uint8_t>(static_cast<size_t>(width), 255));
    const std::string zeros = test::EncodeRow(std::vector<uint8_t>(static_cast<size_t>(width), 0));
    const size_t data = SgiTestFile::kHeaderBytes + 8 * rows;
    std::string starts;
    std::string lengths;
    for (size_t i = 0; i < rows; ++i) {
        const size_t channel = i / static_cast<size_t>(height);
        const bool full = channel == 0 || channel == 3;
        starts += test::BigEndianBytes(full ? data : data + row.size(), 4);
        lengths += test::BigEndianBytes(full ? row.size() : zeros.size(), 4);
    }
    return file.Header() + starts + lengths + row + zeros;
}

class DeskHostileImages : public test::DeskPaneTest {
  protected:
    std::string InstalledPath(const std::string& name) {
        return host.GetSite().directories.tavrnDir + "/icons/" + name;
    }
    std::string Write(const std::string& name, const std::string& bytes) {
        host.Directory().Write("installation/icons/" + name, bytes);
        return "icons/" + name;
    }
    COpBox& PutIcon(const std::string& path) {
        COpBox& box = PutLink(300, 200);
        box.icontext = "label";
        box.iconimg = path;
        document.showiconimages = 1;
        return box;
    }
    // A box with such an icon has the size of one without, shows its text, and the log says why once.
    void ExpectNoIcon(const std::string& path, const std::string& warning) {
        host.Sink().log.clear();
        document.m_boxes.clear();
        COpBox& plain = PutIcon("");
        Show();
        Look();
        const DeskRect size = BoxRect(plain);
        document.m_boxes.clear();
        COpBox& box = PutIcon(path);
        box.xypos[0] = 300;
        Show();
        Look();
        Look();
        EXPECT_EQ(BoxRect(box).width, size.width) << path;
        EXPECT_EQ(BoxRect(box).height, size.height) << path;
        EXPECT_GT(Count(PanelRect(box), kInk), 10) << path;
        const std::string& log = host.Sink().log;
        const size_t told = log.find(warning);
        ASSERT_NE(told, std::string::npos) << log;
        EXPECT_EQ(log.find(warning, told + 1), std::string::npos) << log;
        EXPECT_THAT(Alerts(), testing::IsEmpty());
    }
};

TEST_F(DeskHostileImages, AnIconThatIsNoRegularFileIsNone) {
    std::filesystem::create_directories(InstalledPath("folder.sgi"));
    ASSERT_EQ(::mkfifo(InstalledPath("pipe.sgi").c_str(), 0600), 0);
    ExpectNoIcon("icons/folder.sgi", "folder.sgi: unable to open file");
    ExpectNoIcon("icons/pipe.sgi", "pipe.sgi: unable to open file");
    ExpectNoIcon("/dev/zero", "/dev/zero: unable to open file");
    ExpectNoIcon("../../../../../../../../etc/passwd", "passwd: invalid magic number");
}

TEST_F(DeskHostileImages, ABrokenIconIsNone) {
    SgiTestFile empty = SgiTestFile::Plain(1, 1, 4, kRedPixel);
    empty.width = 0;
    ExpectNoIcon(Write("thin.sgi", empty.Bytes()), "thin.sgi: error reading pixel data");
    SgiTestFile vast;
    vast.width = vast.height = 32767;
    vast.channels = 4;
    ExpectNoIcon(Write("vast.sgi", vast.Header() + std::string(88, '\0')),
                 "vast.sgi: error reading row offset data");
    const std::string sound = SgiTestFile::Plain(8, 8, 4, kRedPixel).Bytes();
    ExpectNoIcon(Write("cut.sgi", sound.substr(0, sound.size() - 1)), "cut.sgi: error reading pixel data");
    ExpectNoIcon(Write("none.sgi", ""), "none.sgi: invalid header");
}

TEST_F(DeskHostileImages, AHugeIconMakesAHugeBoxThatIsPaintedAndWired) {
    COpBox& box = PutIcon(Write("huge.sgi", OneRowAgainAndAgain(4000, 4000)));
    COpBox& other = PutLink(-2300, 200);
    other.size[1] = 400;
    Show();
    EXPECT_EQ(PanelRect(box).width, 4000 + 8);
    EXPECT_EQ(PanelRect(box).height, 4000 + 8);
    for (const float zoom : {1.0F, 0.1F, 10.0F, 0.37F}) {
        document.zoomFactor = zoom;
        pane->CentreOnBox("box_1");
        Look();
        EXPECT_THAT(Seen(PanelRect(box).Middle()), IsColor(kRed)) << zoom;
    }
    document.zoomFactor = 0.1F;
    pane->CentreOnBox("box_1");
    Look();
    Press(At(ButtonRect(ButtonPlace::Of(*other.outputs.at(0))).Middle()));
    Drag(At(ButtonRect(ButtonPlace::Of(*box.inputs.at(0))).Middle()));
    Release(At(ButtonRect(ButtonPlace::Of(*box.inputs.at(0))).Middle()));
    EXPECT_TRUE(box.inputs.at(0)->connections.Contains(*other.outputs.at(0)));
}

TEST_F(DeskHostileImages, IconsAsWideOrAsHighAsCanBeArePainted) {
    COpBox& wide = PutIcon(Write("wide.sgi", OneRowAgainAndAgain(32767, 3)));
    COpBox& high = PutLink(300, -30000);
    high.filename = "high";
    high.iconimg = Write("high.sgi", OneRowAgainAndAgain(3, 32767));
    Show();
    for (const COpBox* box : {&wide, &high}) {
        for (const float zoom : {1.0F, 10.0F}) {
            document.zoomFactor = zoom;
            pane->CentreOnBox(box->BoxTitleWid());
            Look();
            EXPECT_THAT(Seen(PanelRect(*box).Middle()), IsColor(kRed)) << box->filename << zoom;
        }
    }
}

TEST_F(DeskHostileImages, AWallpaperAsLargeAsCanBeIsShown) {
    Show();
    for (const QSize size : {QSize(32767, 2), QSize(2, 32767), QSize(4000, 4000)}) {
        const std::string path =
            host.Directory().Write("paper.sgi", OneRowAgainAndAgain(size.width(), size.height()));
        pane->SetWallpaper(std::make_unique<CSgiImage>(path, nullptr));
        for (const bool tiled : {false, true}) {
            pane->m_tileWallpaper = tiled;
            Look();
            const DeskRect seen = pane->View().Visible();
            EXPECT_THAT(Seen(tiled ? DeskPoint{seen.left + 0.5F, seen.bottom + 0.5F} : seen.Middle()),
                        IsColor(kRed))
                << size.width() << (tiled ? " tiled" : "");
        }
    }
}

TEST_F(DeskHostileImages, TheSitesWallpaperThatIsNoImageIsNoneAndTheLogTells) {
    ASSERT_EQ(::mkfifo((host.GetSite().directories.tavrnDir + "/pipe").c_str(), 0600), 0);
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"pipe", "pipe: unable to open file"},
        {".", ": unable to open file"},
        {"/dev/zero", "WARNING: /dev/zero: unable to open file"},
        {Write("bad.sgi", std::string(600, 'x')), "bad.sgi: invalid magic number"},
    };
    for (const auto& [path, warning] : cases) {
        host.GetSite().settings.Store("desk.setbgimage", path);
        Show();
        Look();
        EXPECT_THAT(Seen(pane->View().Visible().Middle()), IsColor(kBackground)) << path;
        EXPECT_THAT(host.Sink().log, HasSubstr(warning));
        EXPECT_THAT(Alerts(), testing::IsEmpty());
    }
}

}  // namespace
}  // namespace tavrin
