// SPDX-License-Identifier: Apache-2.0
// Desks by chance, painted in every way: no two may differ in a pixel.
#include <gtest/gtest.h>

#include <cstdlib>

#include "images/SgiTestFile.h"
#include "ui/desk/DeskPictureTest.h"

namespace tavrin {
namespace {

using test::MakeBox;
using test::SgiTestFile;

class DeskPictureScenes : public test::DeskPictureTest {
  protected:
    static constexpr int kWidth = 300;
    static constexpr int kHeight = 220;

    // One scene for each seed.
    void MakeScene(unsigned seed) {
        m_state = seed * 2654435761U + 17;
        document.m_boxes.clear();
        desk.OnInitialUpdate();
        desk.m_pendingBoxes.clear();
        pane->SetWallpaper(nullptr);
        document.linetype = Chance(2);
        document.showvarnames = Chance(3) == 0;
        document.drawlinesoverboxes = Chance(3) == 0;
        document.showiconimages = 0;
        const int boxes = 1 + Chance(60);
        const float spread = 20 + Fraction() * 600;
        for (int i = 0; i < boxes; ++i) PutBox(spread);
        Connect();
        Pend(spread);
        LookSomewhere(spread);
        pane->LayoutAll();
        highlighted = Chance(3) == 0 ? document.m_boxes.back()->BoxTitleWid() : "";
        Lock(Chance(6) == 0);
        if (Chance(6) == 0) PutPaper();
    }

  private:
    int Chance(int below) {
        m_state = m_state * 1664525 + 1013904223;
        return static_cast<int>((m_state >> 16) % static_cast<unsigned>(below));
    }
    float Fraction() { return static_cast<float>(Chance(65536)) / 65536; }
    template <typename Items>
    auto& OneOf(Items& items) {
        return *std::next(items.begin(), Chance(static_cast<int>(items.size())));
    }
    std::unique_ptr<COpBox> AnyBox() {
        static const char* const kCasts[] = {"float { 0 0 1 0 %g }", "rgb { 0 0 0 %g }"};
        static const char* const kNames[] = {"a", "colour", "gjpqy", "a_long_name_of_a_button", "x1"};
        std::string definition;
        for (int i = Chance(5); i > 0; --i) {
            definition += std::string(Chance(4) == 0 ? "vinput " : "input ") + kNames[Chance(5)] +
                          std::to_string(i) + " { " + kCasts[Chance(2)] + " }\n";
        }
        for (int i = Chance(4); i > 0; --i) {
            definition += std::string("output ") + kNames[Chance(5)] + std::to_string(i) + " { " +
                          (Chance(2) == 0 ? "float" : "rgb") + " out }\n";
        }
        auto box = MakeBox(kNames[Chance(5)], definition);
        if (Chance(3) != 0) box->icontext = kNames[Chance(5)];
        if (Chance(4) == 0) box->size[0] = Chance(300) - 40;
        if (Chance(4) == 0) box->size[1] = Chance(200) - 40;
        box->selected = Chance(4) == 0;
        for (const auto& input : box->inputs) {
            input->arg = Chance(4) == 0;
            input->disableconnectflag = Chance(4) == 0;
        }
        return box;
    }
    void PutBox(float spread) {
        COpBox& box = Put(AnyBox(), Fraction() * spread, Fraction() * spread);
        for (float& channel : box.color) channel = Fraction();
    }
    // Each input by chance; some of the lines are selected, and one button may be picked.
    void Connect() {
        for (const auto& to : document.m_boxes) {
            for (const auto& input : to->inputs) {
                COpBox& from = *OneOf(document.m_boxes);
                if (from.outputs.empty() || &from == to.get() || Chance(3) == 0) continue;
                OneOf(from.outputs)->Connect(*input);
                if (Chance(6) == 0) desk.m_selectedConnects.push_back(input.get());
            }
            if (Chance(10) == 0 && !to->inputs.empty()) desk.m_selectedButton = OneOf(to->inputs).get();
        }
    }
    void Pend(float spread) {
        desk.m_pendingPlaced = Chance(4) == 0;
        for (int i = desk.m_pendingPlaced ? 1 + Chance(4) : 0; i > 0; --i) {
            auto box = AnyBox();
            box->wid = 500 + i;
            box->xypos[0] = Fraction() * spread;
            box->xypos[1] = Fraction() * spread;
            desk.m_pendingBoxes.push_back(std::move(box));
        }
    }
    void LookSomewhere(float spread) {
        static constexpr float kZooms[] = {0.05F, 0.1F, 0.25F, 0.5F, 0.75F, 1, 1, 1, 1.5F, 2, 3, 9};
        document.zoomFactor = Chance(3) == 0 ? std::pow(1.1F, static_cast<float>(Chance(50) - 26))
                                             : kZooms[Chance(static_cast<int>(std::size(kZooms)))];
        for (float& offset : document.offset) {
            offset = 120 - Fraction() * spread * document.zoomFactor;
            if (Chance(3) == 0) offset = std::floor(offset);
        }
    }
    void PutPaper() {
        std::vector<test::Rgba> pixels;
        const int width = 1 + Chance(400);
        const int height = 1 + Chance(60);
        for (int i = 0; i < width * height; ++i) {
            pixels.push_back({static_cast<uint8_t>(i), static_cast<uint8_t>(i / width * 9), 99, 255});
        }
        const std::string path =
            host.Directory().Write("paper.sgi", SgiTestFile::Picture(width, 4, pixels).Bytes());
        pane->SetWallpaper(std::make_unique<CSgiImage>(path, nullptr));
        pane->m_tileWallpaper = Chance(2) == 0;
    }

    unsigned m_state = 0;
};

// TAVRIN_DESK_SCENES asks for more of them than each run of the suite paints, or for a single one: "5000" or
// "4711-4711".
TEST_F(DeskPictureScenes, ByChance) {
    unsigned first = 1;
    unsigned last = 200;
    if (const char* wanted = std::getenv("TAVRIN_DESK_SCENES")) {
        char* end = nullptr;
        last = static_cast<unsigned>(std::strtoul(wanted, &end, 10));
        if (*end == '-') {
            first = last;
            last = static_cast<unsigned>(std::strtoul(end + 1, nullptr, 10));
        }
    }
    PutLink(0, 0);
    Open(kWidth, kHeight);
    for (unsigned seed = first; seed <= last; ++seed) {
        SCOPED_TRACE("scene " + std::to_string(seed));
        MakeScene(seed);
        LookEveryWay();
    }
    desk.m_pendingBoxes.clear();
}

}  // namespace
}  // namespace tavrin
