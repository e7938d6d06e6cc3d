// SPDX-License-Identifier: Apache-2.0
// Where frames and notes lie, and what a press takes hold of.
#include "desk/FrameGeometry.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>

#include "support/TestHost.h"

namespace tavrin {
namespace {

using Kind = DeskFrame::Kind;

DeskFrame FrameOf(DeskRect rect, Kind kind = Kind::kFrame) {
    return {.kind = kind,
            .left = rect.left,
            .bottom = rect.bottom,
            .width = rect.width,
            .height = rect.height,
            .text = {}};
}

int HitNumber(const DeskFrames& frames, DeskPoint point, float zoom = 1) {
    const auto hit = HitFrame(frames, point, zoom);
    return hit ? hit->number : 0;
}

TEST(FrameGeometry, AFrameIsHeldByItsBarAndEmptyDeskBelow) {
    const DeskFrames frames = {{1, FrameOf({0, 0, 400, 300})}};
    EXPECT_EQ(HitNumber(frames, {200, 290}), 1);
    EXPECT_EQ(HitNumber(frames, {200, 150}), 0);
    EXPECT_EQ(HitNumber(frames, {200, 310}), 0);
    EXPECT_FALSE(HitFrame(frames, {200, 290}, 1)->corner);
}

TEST(FrameGeometry, ANoteIsHeldAnywhere) {
    const DeskFrames frames = {{1, FrameOf({0, 0, 400, 300}, Kind::kNote)}};
    EXPECT_EQ(HitNumber(frames, {200, 290}), 1);
    EXPECT_EQ(HitNumber(frames, {200, 150}), 1);
    EXPECT_EQ(HitNumber(frames, {401, 150}), 0);
}

TEST(FrameGeometry, EachCornerIsToBeHeld) {
    const DeskFrame frame = FrameOf({0, 0, 400, 300});
    const DeskFrames frames = {{1, frame}};
    for (size_t corner = 0; corner < kFrameCorners; ++corner) {
        const auto hit = HitFrame(frames, FrameCorner(frame, corner, 1).Middle(), 1);
        ASSERT_TRUE(hit) << corner;
        EXPECT_EQ(hit->corner, corner);
    }
}

TEST(FrameGeometry, TheBarCanBeHeldFromAfarAndLeavesRoomInASmallFrame) {
    const DeskFrame frame = FrameOf({0, 0, 4000, 3000});
    EXPECT_GE(FrameHandle(frame, 0.1F).height * 0.1F, 15);
    const DeskFrame low = FrameOf({0, 0, 400, 32});
    EXPECT_LE(FrameHandle(low, 0.1F).height, 16);
    EXPECT_LE(FrameCorner(low, 0, 0.1F).height, 16);
}

TEST(FrameGeometry, ASmallFrameLiesOnALargeOneAndNotesOnBoth) {
    const DeskFrames frames = {{1, FrameOf({0, 0, 100, 100}, Kind::kNote)},
                               {2, FrameOf({0, 78, 200, 22})},
                               {3, FrameOf({0, 0, 400, 100})}};
    EXPECT_EQ(HitNumber(frames, {50, 92}), 1);
    EXPECT_EQ(HitNumber(frames, {150, 92}), 2);
    EXPECT_EQ(HitNumber(frames, {300, 92}), 3);
    std::vector<int> order;
    for (const PlacedFrame& placed : FramesFromBelow(frames, {0, 0, 1000, 1000}))
        order.push_back(placed.number);
    EXPECT_THAT(order, testing::ElementsAre(3, 2, 1));
}

TEST(FrameGeometry, OfThoseOfOneSizeTheLaterLiesOnTop) {
    const DeskFrames frames = {{1, FrameOf({0, 0, 100, 100})}, {2, FrameOf({0, 0, 100, 100})}};
    EXPECT_EQ(HitNumber(frames, {50, 95}), 2);
}

TEST(FrameGeometry, WhatIsOutOfSightIsLeftOut) {
    const DeskFrames frames = {{1, FrameOf({0, 0, 100, 100})}, {2, FrameOf({500, 0, 100, 100})}};
    EXPECT_EQ(FramesFromBelow(frames, {400, 0, 300, 300}).size(), 1U);
}

TEST(FrameGeometry, ADraggedCornerMovesItsSidesAndNoSideGetsTooShort) {
    const DeskRect rect{100, 100, 200, 150};
    EXPECT_EQ(WithCornerAt(rect, 0, {50, 80}), (DeskRect{50, 80, 250, 170}));
    EXPECT_EQ(WithCornerAt(rect, 1, {350, 80}), (DeskRect{100, 80, 250, 170}));
    EXPECT_EQ(WithCornerAt(rect, 2, {350, 300}), (DeskRect{100, 100, 250, 200}));
    EXPECT_EQ(WithCornerAt(rect, 3, {50, 300}), (DeskRect{50, 100, 250, 200}));
    const DeskRect least = WithCornerAt(rect, 0, {9999, 9999});
    EXPECT_EQ(least, (DeskRect{300 - DeskFrame::kLeastSide, 250 - DeskFrame::kLeastSide,
                               DeskFrame::kLeastSide, DeskFrame::kLeastSide}))
        << "the other corner stays";
    EXPECT_EQ(WithCornerAt(rect, 2, {-9999, -9999}).width, DeskFrame::kLeastSide);
    EXPECT_EQ(WithCornerAt(rect, 2, {1e9F, 1e9F}).width, DeskFrame::kMostSide);
}

class PlaceForNotes : public test::DocumentTest {
  protected:
    void PutBox(DeskRect rect) {
        COpBox& box = Add(test::MakeLink("b", ++m_lastWid));
        box.layout = {rect.left, rect.bottom, 16, rect.width, rect.height - 16, 30, 40};
    }
    static DeskRect NoteAt(DeskPoint middle) {
        return {middle.x - kNewNote.width / 2, middle.y - kNewNote.height / 2, kNewNote.width,
                kNewNote.height};
    }
    const DeskRect m_seen{0, 0, 800, 600};

  private:
    int m_lastWid = 0;
};

TEST_F(PlaceForNotes, OnAnEmptyDeskItIsTheMiddle) {
    EXPECT_EQ(PlaceForNote(document, m_seen), m_seen.Middle());
}

TEST_F(PlaceForNotes, NoBoxAndNoNoteIsInItsWayAndAllOfItIsSeen) {
    PutBox({300, 200, 200, 200});
    for (int i = 0; i < 5; ++i) {
        const DeskRect note = NoteAt(PlaceForNote(document, m_seen));
        EXPECT_TRUE(m_seen.Encloses(note)) << i;
        EXPECT_FALSE(note.Overlaps({300, 200, 200, 200})) << i;
        for (const auto& [number, other] : document.frames)
            EXPECT_FALSE(FrameRect(other).Overlaps(note)) << i;
        DeskFrame own = FrameOf(note, Kind::kNote);
        AddFrame(document.frames, own);
    }
}

TEST_F(PlaceForNotes, WhereAllIsTakenItIsTheMiddle) {
    PutBox({-1000, -1000, 3000, 3000});
    EXPECT_EQ(PlaceForNote(document, m_seen), m_seen.Middle());
}

TEST(FrameGeometry, EachColourHasANameAndALookAndAnyNumberIsOne) {
    std::set<std::string> names;
    for (int color = 0; color < DeskFrame::kColors; ++color) names.insert(FrameColorName(color));
    EXPECT_EQ(names.size(), static_cast<size_t>(DeskFrame::kColors));
    EXPECT_EQ(FrameColor(-5), FrameColor(0));
    EXPECT_EQ(FrameColor(99), FrameColor(DeskFrame::kColors - 1));
}

}  // namespace
}  // namespace tavrin
