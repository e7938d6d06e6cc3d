// SPDX-License-Identifier: Apache-2.0
// How boxes are laid out, and how lines run between them.
#include "desk/DeskGeometry.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>

#include "desk/HitTest.h"
#include "support/TestHost.h"

namespace tavrin {
namespace {

using test::MakeBox;
using test::MakeLink;
using testing::ElementsAre;
using testing::SizeIs;

// Every character is as wide as the number says.
class EvenText : public TextMeasure {
  public:
    float LabelWidth(const std::string& text) const override {
        return label * static_cast<float>(text.size());
    }
    float TitleWidth(const std::string& text) const override {
        return title * static_cast<float>(text.size());
    }
    float label = 0;
    float title = 0;
};

void Place(COpBox& box, float left, float bottom) { box.layout = {left, bottom, 16, 100, 32, 30, 40}; }

class DeskGeometry : public test::DocumentTest {
  protected:
    // A box with that many buttons, laid out 100 wide with a body 32 high.
    COpBox& AddPlaced(size_t inputs, size_t outputs, float left, float bottom) {
        std::string definition;
        for (size_t i = 0; i < inputs; ++i)
            definition += "input i" + std::to_string(i) + " { float { 0 0 1 0 %g } }\n";
        for (size_t i = 0; i < outputs; ++i)
            definition += "output o" + std::to_string(i) + " { float out }\n";
        COpBox& box = Add(MakeBox("b", definition, ++m_lastWid));
        EXPECT_EQ(box.inputs.size(), inputs);
        EXPECT_EQ(box.outputs.size(), outputs);
        Place(box, left, bottom);
        return box;
    }
    using Points = std::vector<DeskPoint>;
    static Points PointsOf(const Polyline& line) { return {line.begin(), line.end()}; }
    static Points Route(const COpBox& from, size_t output, const COpBox& to, size_t input) {
        return PointsOf(ConnectionPolyline({&from, true, output}, {&to, false, input}, true));
    }

    EvenText text;

  private:
    int m_lastWid = 0;
};

using P = DeskPoint;

TEST_F(DeskGeometry, ABoxWithoutTextsIsAsSmallAsItsBevelsAndColumns) {
    const auto box = MakeLink("a", 1);
    box->xypos[0] = 100;
    box->xypos[1] = 50;
    LayoutBox(*box, 1, text, {});
    EXPECT_EQ(box->layout.leftColumnWidth, 28);  // least text, gap and two bevels
    EXPECT_EQ(box->layout.rightColumnWidth, 28);
    EXPECT_EQ(box->layout.titleHeight, 16);
    EXPECT_EQ(box->layout.bodyHeight, 16);
    EXPECT_EQ(box->layout.width, 64);  // columns and an empty label with its bevels
    EXPECT_EQ(BoxRect(*box), (DeskRect{68, 34, 64, 32}));
    EXPECT_EQ(BoxRect(*box).Middle(), (P{100, 50}));
    EXPECT_EQ(TitleRect(*box), (DeskRect{68, 50, 64, 16}));
    EXPECT_EQ(PanelRect(*box), (DeskRect{96, 34, 8, 16}));
}

TEST_F(DeskGeometry, TheWidestTextDecides) {
    text.label = 5;
    text.title = 10;
    const auto box = MakeBox("name",
                             "icontext label\ninput short { float { 0 0 1 0 %g } }\n"
                             "input muchlonger { float { 0 0 1 0 %g } }\noutput o { float out }",
                             12);
    ASSERT_EQ(box->icontext, "label");
    LayoutBox(*box, 1, text, {});
    EXPECT_EQ(box->layout.leftColumnWidth, 58);
    EXPECT_EQ(box->layout.rightColumnWidth, 28);
    EXPECT_EQ(box->layout.width, 58 + 28 + 58);
    box->filename = std::string(40, 'n');
    LayoutBox(*box, 1, text, {});
    EXPECT_EQ(box->layout.width, 43 * 5 + 8);  // "_12" behind the name
}

TEST_F(DeskGeometry, TheNumberOfAVinputCountsForItsWidth) {
    text.label = 10;
    const auto box = MakeBox("a", "vinput ab { float { 0 0 1 0 %g } }", 1);
    LayoutBox(*box, 1, text, {});
    EXPECT_EQ(box->layout.leftColumnWidth, 30 + 8);
}

TEST_F(DeskGeometry, TheHeightIsThatOfTheLargestOfRowsIconAndSize) {
    const auto box = MakeBox("a",
                             "input i { float { 0 0 1 0 %g } }\ninput j { float { 0 0 1 0 %g } }\ninput k { "
                             "float { 0 0 1 0 %g } }",
                             1);
    LayoutBox(*box, 1, text, {});
    EXPECT_EQ(box->layout.bodyHeight, 48);
    LayoutBox(*box, 1, text, {64, 60});
    EXPECT_EQ(box->layout.bodyHeight, 68);
    EXPECT_EQ(box->layout.width, 72 + 2 * 28);
    box->size[0] = 300;
    box->size[1] = 100;
    LayoutBox(*box, 1, text, {64, 60});
    EXPECT_EQ(BoxRect(*box).width, 300);
    EXPECT_EQ(BoxRect(*box).height, 100);
}

TEST_F(DeskGeometry, BelowAZoomOfOneTheBevelsKeepTheirPixels) {
    text.label = 5;
    const auto box = MakeBox("a", "input abcdefgh { float { 0 0 1 0 %g } }", 1);
    LayoutBox(*box, 0.5F, text, {32, 32});
    EXPECT_EQ(box->layout.leftColumnWidth, 16 + 80);
    EXPECT_EQ(box->layout.bodyHeight, 32 + 16);  // an icon's pixels are desk units
    LayoutBox(*box, 2, text, {});
    EXPECT_EQ(box->layout.leftColumnWidth, 8 + 20);
}

TEST_F(DeskGeometry, ButtonsShareTheHeightOfTheBodyFromTheTop) {
    const COpBox& box = AddPlaced(4, 2, 10, 20);
    EXPECT_EQ(ButtonRect({&box, false, 0}), (DeskRect{10, 44, 30, 8}));
    EXPECT_EQ(ButtonRect({&box, false, 3}), (DeskRect{10, 20, 30, 8}));
    EXPECT_EQ(ButtonRect({&box, true, 1}), (DeskRect{70, 20, 40, 16}));
    EXPECT_EQ(ButtonAnchor({&box, false, 0}), (P{10, 48}));
    EXPECT_EQ(ButtonAnchor({&box, true, 1}), (P{110, 28}));
    EXPECT_EQ(GrowArrowRect({&box, false, 1}, true), (DeskRect{10, 44, 30, 16}));
    EXPECT_EQ(GrowArrowRect({&box, false, 1}, false), (DeskRect{10, 20, 30, 16}));
    EXPECT_EQ(ButtonPlace::Of(*box.outputs.at(1)).index, 1U);
    EXPECT_TRUE(ButtonPlace::Of(*box.outputs.at(1)).isOutput);
}

TEST_F(DeskGeometry, ADirectLineHasTwoPoints) {
    const COpBox& from = AddPlaced(0, 1, 0, 0);
    const COpBox& to = AddPlaced(1, 0, -500, 300);
    EXPECT_THAT(PointsOf(ConnectionPolyline({&from, true, 0}, {&to, false, 0}, false)),
                ElementsAre(P{100, 16}, P{-500, 316}));
}

TEST_F(DeskGeometry, ATracedLineTurnsTwiceBeforeATargetToTheRight) {
    const COpBox& from = AddPlaced(0, 1, 0, 0);        // leaves at (100, 16)
    const COpBox& lower = AddPlaced(2, 0, 300, -100);  // enters at -76 and -92
    EXPECT_THAT(Route(from, 0, lower, 0), ElementsAre(P{100, 16}, P{292, 16}, P{292, -76}, P{300, -76}));
    EXPECT_THAT(Route(from, 0, lower, 1), ElementsAre(P{100, 16}, P{284, 16}, P{284, -92}, P{300, -92}));
    const COpBox& higher = AddPlaced(2, 0, 300, 100);  // enters at 124 and 108
    EXPECT_THAT(Route(from, 0, higher, 0), ElementsAre(P{100, 16}, P{284, 16}, P{284, 124}, P{300, 124}));
    EXPECT_THAT(Route(from, 0, higher, 1), ElementsAre(P{100, 16}, P{292, 16}, P{292, 108}, P{300, 108}));
    const COpBox& level = AddPlaced(1, 0, 300, 0);  // counts as below
    EXPECT_THAT(Route(from, 0, level, 0), ElementsAre(P{100, 16}, P{292, 16}, P{292, 16}, P{300, 16}));
}

TEST_F(DeskGeometry, ATracedLineComesRoundATargetToTheLeft) {
    const COpBox& from = AddPlaced(0, 2, 0, 0);  // leaves at (100, 24) and (100, 8)
    const COpBox& lower = AddPlaced(2, 0, -300, -100);
    EXPECT_THAT(Route(from, 0, lower, 1),
                ElementsAre(P{100, 24}, P{116, 24}, P{116, -36}, P{-316, -36}, P{-316, -92}, P{-300, -92}));
    EXPECT_THAT(Route(from, 1, lower, 0),
                ElementsAre(P{100, 8}, P{108, 8}, P{108, -44}, P{-308, -44}, P{-308, -76}, P{-300, -76}));
    const COpBox& higher = AddPlaced(2, 0, -300, 100);
    EXPECT_THAT(Route(from, 1, higher, 0),
                ElementsAre(P{100, 8}, P{116, 8}, P{116, 84}, P{-316, 84}, P{-316, 124}, P{-300, 124}));
    // The turn has to lie more than a step from the source.
    const COpBox& near = AddPlaced(1, 0, 116, -100);
    EXPECT_THAT(Route(from, 0, near, 0), SizeIs(6));
    const COpBox& further = AddPlaced(1, 0, 117, -100);
    EXPECT_THAT(Route(from, 0, further, 0), SizeIs(4));
}

TEST_F(DeskGeometry, TheNetworkIsTheUnionOfItsBoxesWithAMarginOfPixels) {
    EXPECT_FALSE(NetworkRect(document, 1).has_value());
    AddPlaced(1, 0, -50, 0);
    AddPlaced(0, 1, 300, -200);
    EXPECT_EQ(NetworkRect(document, 1), (DeskRect{-60, -210, 470, 268}));
    EXPECT_EQ(NetworkRect(document, 0.5F), (DeskRect{-70, -220, 490, 288}));
}

TEST_F(DeskGeometry, TracedLinesCountForTheNetworksRectangle) {
    COpBox& from = AddPlaced(0, 1, 0, 0);
    COpBox& to = AddPlaced(1, 0, 0, -100);
    test::Wire(from, 0, to, 0);
    document.linetype = 0;
    EXPECT_EQ(NetworkRect(document, 1), (DeskRect{-10, -110, 120, 168}));
    document.linetype = 1;  // eight units out on either side
    EXPECT_EQ(NetworkRect(document, 1), (DeskRect{-18, -110, 136, 168}));
}

TEST_F(DeskGeometry, EveryPointOfEveryTracedLineCountsWhereverItsBoxesLie) {
    document.linetype = 1;
    unsigned state = 7;
    const auto chance = [&state](unsigned below) {
        state = state * 1664525 + 1013904223;
        return (state >> 16) % below;
    };
    for (int network = 0; network < 60; ++network) {
        document.m_boxes.clear();
        std::vector<COpBox*> boxes;
        for (int i = 0; i < 12; ++i) {
            boxes.push_back(&AddPlaced(1 + chance(4), 1 + chance(4), static_cast<float>(chance(40)) * 16,
                                       static_cast<float>(chance(20)) * 16));
        }
        Points points;
        for (COpBox* to : boxes) {
            COpBox& from = *boxes[chance(12)];
            const size_t output = chance(static_cast<unsigned>(from.outputs.size()));
            const size_t input = chance(static_cast<unsigned>(to->inputs.size()));
            test::Wire(from, output, *to, input);
            // Made again from the output, a wire keeps only the input's side.
            if (chance(3) == 0) from.outputs[output]->Connect(*to->inputs[input]);
            for (const P& point : Route(from, output, *to, input)) points.push_back(point);
        }
        DeskRect all = BoxRect(*boxes.front());
        for (const COpBox* box : boxes) all = all.UnitedWith(BoxRect(*box));
        for (const P& point : points) all = all.UnitedWith({point.x, point.y, 0, 0});
        EXPECT_EQ(NetworkRect(document, 1), all.GrownBy(10)) << "network " << network;
    }
}

TEST_F(DeskGeometry, ARectangleHoldsItsLeftAndBottomEdgesOnly) {
    const DeskRect rect{0, 0, 10, 10};
    EXPECT_TRUE(rect.Contains({0, 0}));
    EXPECT_FALSE(rect.Contains({10, 5}));
    EXPECT_FALSE(rect.Contains({5, 10}));
    EXPECT_FALSE(rect.Encloses(rect));
    EXPECT_TRUE(rect.Encloses({0, 0, 9, 9}));
    EXPECT_EQ(DeskRect::Between({7, 9}, {2, 1}), (DeskRect{2, 1, 5, 8}));
}

TEST_F(DeskGeometry, RectanglesThatShareAnEdgeOnlyDoNotOverlap) {
    const DeskRect rect{0, 0, 10, 10};
    EXPECT_TRUE(rect.Overlaps(rect));
    for (const DeskRect& other : {DeskRect{9, 9, 10, 10}, DeskRect{-9, -9, 10, 10}, DeskRect{2, 3, 4, 5},
                                  DeskRect{-5, 4, 20, 1}, DeskRect{5, 5, 0, 0}}) {
        EXPECT_TRUE(rect.Overlaps(other)) << other.left << " " << other.bottom;
        EXPECT_TRUE(other.Overlaps(rect)) << other.left << " " << other.bottom;
    }
    for (const DeskRect& other : {DeskRect{10, 0, 10, 10}, DeskRect{-10, 0, 10, 10}, DeskRect{0, 10, 10, 10},
                                  DeskRect{0, -10, 10, 10}, DeskRect{11, 11, 5, 5}, DeskRect{0, 0, 0, 10},
                                  DeskRect{std::nanf(""), 0, 10, 10}, DeskRect{0, 0, 10, std::nanf("")}}) {
        EXPECT_FALSE(rect.Overlaps(other)) << other.left << " " << other.bottom;
        EXPECT_FALSE(other.Overlaps(rect)) << other.left << " " << other.bottom;
    }
}

TEST_F(DeskGeometry, CornersRunAgainstTheClockFromTheLowerLeft) {
    EXPECT_THAT((DeskRect{1, 2, 10, 20}.Corners()), ElementsAre(P{1, 2}, P{11, 2}, P{11, 22}, P{1, 22}));
}

// Boxes of any size and buttons, each with lines from others, near and far, before and behind it.
class LinesByChance : public DeskGeometry {
  protected:
    void MakeNetwork() {
        document.m_boxes.clear();
        std::vector<COpBox*> boxes;
        for (int i = 0; i < 10; ++i) {
            COpBox& box = AddPlaced(1 + Chance(9), 1 + Chance(9), 0, 0);
            const auto rows = static_cast<float>(std::max(box.inputs.size(), box.outputs.size()));
            box.layout = {2 * Coordinate(),
                          2 * Coordinate(),
                          desk_lengths::kRowHeight,
                          20 + Coordinate() * 0.25F,
                          rows * desk_lengths::kRowHeight + Coordinate() * 0.25F,
                          10,
                          10};
            boxes.push_back(&box);
        }
        for (COpBox* to : boxes) {
            for (size_t input = 0; input < to->inputs.size(); ++input) {
                COpBox& from = *boxes[Chance(10)];
                if (&from != to) test::Wire(from, Chance(from.outputs.size()), *to, input);
            }
        }
    }
    size_t Chance(size_t below) {
        m_state = m_state * 1664525 + 1013904223;
        return (m_state >> 16) % below;
    }
    float Coordinate() { return static_cast<float>(Chance(4000)) * 0.25F; }

  private:
    unsigned m_state = 11;
};

TEST_F(LinesByChance, NoPointOfALineLiesOutsideItsReach) {
    int traced = 0;
    for (int network = 0; network < 100; ++network) {
        MakeNetwork();
        for (const auto& box : document.m_boxes) {
            ForEachConnection(*box, [&](const ButtonPlace& from, const ButtonPlace& to, COpButton&) {
                const DeskRect reach = LineReach(*from.box, *to.box);
                for (const bool trace : {false, true}) {
                    const Polyline line = ConnectionPolyline(from, to, trace);
                    traced += line.count == 6 ? 1 : 0;
                    for (const P& point : line) {
                        EXPECT_TRUE(reach.Contains(point)) << point.x << " " << point.y;
                    }
                }
                return true;
            });
        }
    }
    EXPECT_GT(traced, 1000);
}

TEST_F(LinesByChance, EveryLineThatTouchesARectangleIsVisitedInItsOrderAndMostOthersAreNot) {
    int all = 0;
    int visited = 0;
    for (int network = 0; network < 100; ++network) {
        MakeNetwork();
        const DeskRect window{2 * Coordinate(), 2 * Coordinate(), 60, 40};
        for (const auto& box : document.m_boxes) {
            std::vector<COpButton*> within;
            ForEachConnectionWithin(
                window, *box, [&](const ButtonPlace& from, const ButtonPlace& to, COpButton& input) {
                    EXPECT_EQ(from.box->outputs.at(from.index).get(), input.connections.First());
                    EXPECT_EQ(to.box->inputs.at(to.index).get(), &input);
                    within.push_back(&input);
                    return true;
                });
            visited += static_cast<int>(within.size());
            auto next = within.begin();
            ForEachConnection(*box, [&](const ButtonPlace& from, const ButtonPlace& to, COpButton& input) {
                ++all;
                if (next != within.end() && *next == &input) {
                    ++next;
                    return true;
                }
                for (const bool trace : {false, true}) {
                    const Polyline line = ConnectionPolyline(from, to, trace);
                    for (size_t i = 1; i < line.count; ++i) {
                        const DeskRect segment = DeskRect::Between(line.points[i - 1], line.points[i]);
                        EXPECT_FALSE(segment.GrownBy(0.01F).Overlaps(window));
                    }
                }
                return true;
            });
            EXPECT_EQ(next, within.end()) << "out of order";
        }
    }
    EXPECT_LT(visited, all / 2);
}

TEST_F(DeskGeometry, AVisitOfLinesWithinARectangleEndsWhenItIsTold) {
    COpBox& from = AddPlaced(0, 1, 0, 0);
    COpBox& to = AddPlaced(3, 0, 300, 0);
    for (size_t i = 0; i < 3; ++i) test::Wire(from, 0, to, i);
    size_t visits = 0;
    const auto until = [&](size_t count) {
        visits = 0;
        return ForEachConnectionWithin(
            BoxRect(to), to,
            [&](const ButtonPlace&, const ButtonPlace&, COpButton&) { return ++visits < count; });
    };
    EXPECT_FALSE(until(2));
    EXPECT_EQ(visits, 2U);
    EXPECT_TRUE(until(4));
    EXPECT_EQ(visits, 3U);
}

class HitTest : public DeskGeometry {};

TEST_F(HitTest, TheTopmostBoxIsHit) {
    COpBox& top = AddPlaced(1, 0, 0, 0);
    COpBox& below = AddPlaced(1, 0, 50, 0);
    EXPECT_EQ(HitBox(document, {60, 10}), &top);
    EXPECT_EQ(HitBox(document, {0, 0}), &top);
    EXPECT_EQ(HitBox(document, {99, 47}), &top);  // the title belongs to it
    EXPECT_EQ(HitBox(document, {100, 10}), &below);
    EXPECT_EQ(HitBox(document, {60, 48}), nullptr);
}

TEST_F(HitTest, ButtonsAreHitInTheirRowsOnly) {
    const COpBox& box = AddPlaced(2, 1, 0, 0);
    EXPECT_EQ(HitButton(box, {5, 16}), box.inputs.at(0).get());
    EXPECT_EQ(HitButton(box, {5, 15}), box.inputs.at(1).get());
    EXPECT_EQ(HitButton(box, {5, 32}), nullptr);  // title
    EXPECT_EQ(HitButton(box, {30, 16}), nullptr);
    EXPECT_EQ(HitButton(box, {60, 5}), box.outputs.at(0).get());
    EXPECT_EQ(HitButton(box, {100, 5}), nullptr);
}

TEST_F(HitTest, ALineIsHitWithinItsWidthAndGivesItsInput) {
    COpBox& from = AddPlaced(0, 1, 0, 0);
    COpBox& to = AddPlaced(1, 0, 300, 0);
    test::Wire(from, 0, to, 0);  // level at 16
    EXPECT_EQ(HitConnection(document, {200, 17}, 3), to.inputs.at(0).get());
    EXPECT_EQ(HitConnection(document, {200, 19}, 3), nullptr);
    EXPECT_EQ(HitConnection(document, {320, 16}, 3), nullptr);
    document.linetype = 1;
    EXPECT_EQ(HitConnection(document, {292, 14}, 3), to.inputs.at(0).get());
}

TEST_F(HitTest, TheNearestLineInReachIsFound) {
    COpBox& from = AddPlaced(0, 1, 0, 0);
    COpBox& to = AddPlaced(1, 0, 300, 0);
    COpBox& above = AddPlaced(1, 0, 300, 40);
    test::Wire(from, 0, to, 0);  // level at 16
    test::Wire(from, 0, above, 0);
    EXPECT_EQ(NearestConnection(document, {250, 18}, 6), to.inputs.at(0).get());
    EXPECT_EQ(NearestConnection(document, {250, 44}, 6), above.inputs.at(0).get());
    EXPECT_EQ(NearestConnection(document, {250, 44}, 40), above.inputs.at(0).get());
    EXPECT_EQ(NearestConnection(document, {200, 10.1F}, 6), to.inputs.at(0).get());
    EXPECT_EQ(NearestConnection(document, {200, 9.9F}, 6), nullptr);
    document.linetype = 1;
    EXPECT_EQ(NearestConnection(document, {296, 54}, 6), above.inputs.at(0).get());
}

TEST(DistanceToSegment, IsThatToItsNearestPoint) {
    EXPECT_FLOAT_EQ(DistanceToSegment({5, 2}, {0, 0}, {10, 0}), 2);
    EXPECT_FLOAT_EQ(DistanceToSegment({-3, 4}, {0, 0}, {10, 0}), 5);
    EXPECT_FLOAT_EQ(DistanceToSegment({0, 10}, {0, 0}, {10, 10}), std::sqrt(50.0F));
    EXPECT_FLOAT_EQ(DistanceToSegment({3, 4}, {0, 0}, {0, 0}), 5);
}

TEST(HitsSegment, ToleranceIsStrictAndTheEndsAreHalfOpen) {
    const P start{0, 0};
    EXPECT_TRUE(HitsSegment({-2, 0}, start, {10, 0}, 2));
    EXPECT_FALSE(HitsSegment({12, 0}, start, {10, 0}, 2));
    EXPECT_FALSE(HitsSegment({5, 2}, start, {10, 0}, 2));
    EXPECT_FALSE(HitsSegment({5, -2}, start, {10, 0}, 2));
    EXPECT_TRUE(HitsSegment({-1.9F, 5}, start, {0, 10}, 2));
    EXPECT_FALSE(HitsSegment({-2, 5}, start, {0, 10}, 2));
}

TEST(HitsSegment, ASlantedLineIsHitByHeightOrByWidth) {
    const P end{10, 100};
    EXPECT_TRUE(HitsSegment({6, 50}, {0, 0}, end, 2));  // near in width, far in height
    EXPECT_FALSE(HitsSegment({7.5F, 50}, {0, 0}, end, 2));
    EXPECT_TRUE(HitsSegment({50, 6}, {100, 10}, {0, 0}, 2));
    EXPECT_FALSE(HitsSegment({50, 7.5F}, {100, 10}, {0, 0}, 2));
}

}  // namespace
}  // namespace tavrin
