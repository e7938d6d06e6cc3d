// SPDX-License-Identifier: Apache-2.0
// What the picture tests of the desk build on: small desks in colours of their own, seen in every way of
// painting and compared with references.
#pragma once

#include <set>
#include <vector>

#include "ui/desk/DeskPaneTest.h"
#include "ui/support/Pictures.h"

namespace tavrin::test {

// A way in which the desk paints one and the same thing. All are held against the same references, and
// against the first one.
struct PaintingWay {
    const char* name;
    void (*choose)(tavrin::DeskPane& pane);
};
inline const std::vector<PaintingWay>& Ways() {
    static const std::vector<PaintingWay> ways{
        {"plain", [](tavrin::DeskPane& pane) { pane.SetPlain(true); }},
        {"batched", [](tavrin::DeskPane& pane) { pane.SetPlain(false); }},
    };
    return ways;
}

// The software renderer gives the same pixels in every run; the channels' slack is for other roundings.
inline constexpr PictureTolerance kFromReference{2, 0};
inline constexpr PictureTolerance kBetweenWays{0, 0};

// A picture is named after its test, with a variant behind where a test has several. What the references hold
// for a test and this pixel ratio, the test has to look at.
class DeskPictureTest : public DeskPaneTest {
  protected:
    DeskPictureTest() {
        Settings& settings = host.GetSite().settings;
        settings.Store("desk.backgroundcolor", "0.6 0.7 0.7");
        settings.Store("desk.rubberbandcolor", "1 0 0");
        settings.Store("desk.boxtint", "0 0 0");
        settings.Store("box.selectedlinewidth", "3");
        settings.Store("box.hilightedcolor", "1 1 1");
        settings.Store("box.selectedbuttoncolor", "1 1 0.7");
        settings.Store("box.connectlinewidth", "3");
    }

    // The desk fills the window, which is never on the screen.
    void Open(int width, int height) {
        MakePane();
        pane->SetScrollBarsShown(false);
        pane->setAttribute(Qt::WA_DontShowOnScreen);
        pane->resize(width, height);
        desk.OnInitialUpdate();
        pane->show();
        HandleEvents();
        ASSERT_EQ(pane->Desk().size(), QSize(width, height));
        document.SetModified(false);
    }
    // Looks in every way; the picture of the first one stays to be asked about.
    void LookEveryWay(PictureTolerance between = kBetweenWays) {
        m_pictures.clear();
        for (const PaintingWay& way : Ways()) {
            way.choose(*pane);
            Look();
            m_pictures.push_back(Picture().convertToFormat(QImage::Format_RGB32));
        }
        for (size_t i = 1; i < m_pictures.size(); ++i) {
            const int count = CountDifferences(m_pictures[0], m_pictures[i], between.channel);
            EXPECT_LE(count, between.pixels)
                << "pixels that " << Ways()[i].name << " paints otherwise than " << Ways()[0].name;
        }
        Ways().front().choose(*pane);
    }
    // `between` is how far the ways may be apart, and `from` how far each from the reference.
    void ExpectPicture(const std::string& variant = "", PictureTolerance between = kBetweenWays,
                       PictureTolerance from = kFromReference) {
        LookEveryWay(between);
        const std::string name = TestName() + (variant.empty() ? "" : "." + variant) + RatioEnding();
        EXPECT_TRUE(m_compared.insert(name).second) << name << " is compared twice";
        for (size_t i = 0; i < m_pictures.size(); ++i) {
            EXPECT_EQ(m_shelf.Compare(m_pictures[i], name, Ways()[i].name, from), "");
        }
    }
    // As ExpectPicture, of the desk at another zoom about a point in the window's middle.
    void ExpectPictureAt(float zoom, DeskPoint middle, const std::string& variant = "",
                         PictureTolerance between = kBetweenWays, PictureTolerance from = kFromReference) {
        document.zoomFactor = zoom;
        document.offset[0] = pane->View().Width() * 0.5F - zoom * middle.x;
        document.offset[1] = pane->View().Height() * 0.5F - zoom * middle.y;
        ExpectPicture(variant, between, from);
    }
    void TearDown() override {
        for (const std::string& name : m_shelf.References()) {
            const bool isOurs = name.substr(0, name.find_first_of(".@")) == TestName();
            if (isOurs && name.ends_with(RatioEnding())) {
                EXPECT_TRUE(m_compared.contains(name)) << "the reference " << name << " was not looked at";
            }
        }
    }

  private:
    static std::string TestName() { return testing::UnitTest::GetInstance()->current_test_info()->name(); }
    std::string RatioEnding() {
        return "@" + std::to_string(static_cast<int>(qApp->devicePixelRatio())) + "x";
    }

    PictureShelf m_shelf = DeskPictureShelf();
    std::vector<QImage> m_pictures;  // as the ways stand
    std::set<std::string> m_compared;
};

}  // namespace tavrin::test
