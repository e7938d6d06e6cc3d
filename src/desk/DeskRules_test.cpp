// SPDX-License-Identifier: Apache-2.0
// What a library may choose of the desk: copies with templates, and anchors without the factor of the zoom.
#include "desk/DeskRules.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "desk/DeskGestures.h"
#include "desk/HitTest.h"
#include "site/Settings.h"
#include "support/TestHost.h"

namespace tavrin {
namespace {

using test::MakeBox;
using test::MakeLink;
using test::Wire;
using testing::ElementsAre;
using testing::Pair;

constexpr const char* kMix =
    "input a { float { 0 0 1 0 %g } rgb { 1 1 1 \"%g %g %g\" } }\noutput o { float out rgb out }\n"
    "defs { castlock.add a o }\ncodegen.main-body append\no = a;\n<<EOT>>\ncodegen.setvariable k v\n";

std::vector<std::string> TemplatesOf(const COpBox& box) {
    std::vector<std::string> lines;
    const CodeBlock& block = box.codegen.Block(CCodeGen::kMainBody);
    for (size_t i = 0; i < block.Size(); ++i) lines.push_back(block.Line(i).text);
    return lines;
}

TEST(DeskRules, ALibraryThatSaysNothingHasTheRulesOfOld) {
    Settings settings;
    DeskRules rules = DeskRules::Read(settings);
    EXPECT_FALSE(rules.copyTemplates);
    EXPECT_FALSE(rules.plainAnchors);
    settings.Store("desk.copytemplates", "1");
    settings.Store("desk.plainanchors", "0");
    rules = DeskRules::Read(settings);
    EXPECT_TRUE(rules.copyTemplates);
    EXPECT_FALSE(rules.plainAnchors);
    settings.Store("desk.copytemplates", "no");
    settings.Store("desk.plainanchors", "1");
    rules = DeskRules::Read(settings);
    EXPECT_FALSE(rules.copyTemplates);
    EXPECT_TRUE(rules.plainAnchors);
}

TEST(DeskRules, WhatIsWantedOfWiresIsChosenOneByOne) {
    const std::vector<std::pair<const char*, bool DeskRules::*>> rules = {
        {"desk.pullwires", &DeskRules::pullWires},     {"desk.dropwires", &DeskRules::dropWires},
        {"desk.escapewires", &DeskRules::escapeWires}, {"desk.insertboxes", &DeskRules::insertBoxes},
        {"desk.keepflow", &DeskRules::keepFlow},       {"desk.copiesinsight", &DeskRules::copiesInSight},
        {"desk.search", &DeskRules::search},           {"desk.hover", &DeskRules::hover},
    };
    for (const auto& [chosen, ignored] : rules) {
        Settings settings;
        settings.Store(chosen, "1");
        for (const auto& [name, rule] : rules)
            EXPECT_EQ(DeskRules::Read(settings).*rule, std::string(name) == chosen) << name;
    }
}

TEST(DeskRules, TheSlackOfLinesIsANumberOfPixelsOrNone) {
    Settings settings;
    EXPECT_EQ(DeskRules::Read(settings).lineSlack, std::nullopt);
    settings.Store("desk.connectslack", "4");
    EXPECT_EQ(DeskRules::Read(settings).lineSlack, 4);
    settings.Store("desk.connectslack", "0");
    EXPECT_EQ(DeskRules::Read(settings).lineSlack, 0);
    settings.Store("desk.connectslack", "1e30");  // all of the desk would be wires
    EXPECT_EQ(DeskRules::Read(settings).lineSlack, 100);
    for (const char* none : {"-1", "wide", "nan"}) {
        settings.Store("desk.connectslack", none);
        EXPECT_EQ(DeskRules::Read(settings).lineSlack, std::nullopt) << none;
    }
}

// Before the desk is made, which reads them.
struct Settled : test::DocumentTest {
    Settled() {
        host.GetSite().settings.Store("desk.copytemplates", "1");
        host.GetSite().settings.Store("desk.plainanchors", "1");
    }
};

class CopiedTemplates : public Settled {
  protected:
    COpBox& Stand(int selected = 1) {
        COpBox& box = Add(desk, MakeBox("Mix", kMix));
        box.selected = selected;
        return box;
    }
    void ExpectLikeItsOriginal(COpBox& box) {
        EXPECT_THAT(TemplatesOf(box), ElementsAre("o = a;"));
        EXPECT_THAT(box.castlock, ElementsAre(Pair("a", "o")));
        EXPECT_FALSE(box.lacksTemplates);
        std::string text;
        box.codegen.ExpandString("k", text);
        EXPECT_EQ(text, "v");
        box.inputs.at(0)->SetCast(1);
        EXPECT_EQ(box.outputs.at(0)->currentcast, 1U);
    }

    test::RecordingView view{document};
    test::SeenDesk desk{document, host, view};
};

TEST_F(CopiedTemplates, AreThoseOfADuplicatesOriginal) {
    desk.DuplicateBox(Stand());
    ExpectLikeItsOriginal(test::BoxAt(document, 0));
}

TEST_F(CopiedTemplates, AreThoseOfWhatWasCopiedAndPastedTwice) {
    Stand();
    desk.CopySelection();
    desk.PasteBoxes(std::nullopt);
    ExpectLikeItsOriginal(*desk.m_pendingBoxes.at(0));
    desk.DropPending();
    desk.PasteBoxes(std::nullopt);
    ExpectLikeItsOriginal(*desk.m_pendingBoxes.at(0));
}

TEST_F(CopiedTemplates, AreThoseOfWhatWasCutAndPasted) {
    Stand();
    desk.CutBoxes();
    ASSERT_TRUE(document.m_boxes.empty());
    desk.PasteBoxes(std::nullopt);
    ExpectLikeItsOriginal(*desk.m_pendingBoxes.at(0));
}

TEST_F(CopiedTemplates, AreCopiesOfTheirOwn) {
    COpBox& original = Stand();
    desk.DuplicateBox(original);
    original.codegen.Reset();
    original.castlock.clear();
    ExpectLikeItsOriginal(test::BoxAt(document, 0));
}

class LeftTemplates : public test::DocumentTest {
  protected:
    COpDesk desk{document, host};
};

TEST_F(LeftTemplates, AreMissedByACopyAndByCopiesOfThat) {
    COpBox& original = Add(desk, MakeBox("Mix", kMix));
    desk.DuplicateBox(original);
    COpBox& copy = test::BoxAt(document, 0);
    EXPECT_TRUE(TemplatesOf(copy).empty());
    EXPECT_TRUE(copy.castlock.empty());
    EXPECT_TRUE(copy.lacksTemplates);
    EXPECT_FALSE(original.lacksTemplates);
    desk.DuplicateBox(copy);
    EXPECT_TRUE(test::BoxAt(document, 0).lacksTemplates);
}

TEST_F(LeftTemplates, AreNotMissedWhereTheDefinitionHasNone) {
    desk.DuplicateBox(Add(desk, MakeLink("Relay", 0)));
    EXPECT_FALSE(test::BoxAt(document, 0).lacksTemplates);
}

// At each of these zooms, where a box is seen, and where its anchor is, are one.
class PlainAnchors : public Settled, public testing::WithParamInterface<float> {
  protected:
    PlainAnchors() {
        document.zoomFactor = GetParam();
        view.SetSize(800, 600);
    }
    // As a layout would put it.
    static void LayOut(COpBox& box) {
        box.layout = {box.xypos[0] - 50, box.xypos[1] - 24, 16, 100, 32, 30, 40};
    }
    static void ExpectWhereItIsSeen(const COpBox& box) {
        EXPECT_FLOAT_EQ(box.layout.left, box.xypos[0] - 50);
        EXPECT_FLOAT_EQ(box.layout.bottom, box.xypos[1] - 24);
    }
    COpBox& Put(float x, float y) {
        auto box = MakeLink("b", 1);
        box->xypos[0] = x;
        box->xypos[1] = y;
        LayOut(*box);
        return Add(std::move(box));
    }
    PointerState At(DeskPoint point, bool left) const {
        PointerState pointer;
        pointer.at = view.ToWindow(point);
        pointer.left = left;
        return pointer;
    }
    // On the box, which is not to be hit at a button.
    void Press(const COpBox& box) {
        const DeskPoint at{box.xypos[0], box.xypos[1]};
        gestures.Move(At(at, false));
        gestures.LeftDown(At(at, true));
        ASSERT_EQ(gestures.Current(), DeskGestures::Kind::kMoving);
    }

    test::RecordingView windows{document};
    test::SeenDesk desk{document, host, windows};
    DeskViewport view{document, {0.1F, 10}};
    DeskGestures gestures{
        {document, desk, view, windows, host.GetSite().report, 3, [](const std::string&) {}}};
};

INSTANTIATE_TEST_SUITE_P(AtZoom, PlainAnchors, testing::Values(0.25F, 1.0F, 3.0F));

TEST_P(PlainAnchors, FollowADrag) {
    COpBox& box = Put(60, 60);
    Press(box);
    gestures.Move(At({83, 71}, true));
    EXPECT_FLOAT_EQ(box.xypos[0], 83);
    EXPECT_FLOAT_EQ(box.xypos[1], 71);
    ExpectWhereItIsSeen(box);
}

TEST_P(PlainAnchors, FollowTheDeskThatScrollsUnderThem) {
    COpBox& box = Put(60, 60);
    Press(box);
    PointerState beyond = At({0, 0}, true);
    beyond.at.x = -20;
    gestures.Move(beyond);
    const WindowPoint held = view.ToWindow({box.xypos[0], box.xypos[1]});
    gestures.Tick();
    gestures.Tick();
    EXPECT_EQ(document.offset[0], 16);
    EXPECT_NEAR(view.ToWindow({box.xypos[0], box.xypos[1]}).x, held.x, 1e-3);
    EXPECT_NEAR(view.ToWindow({box.xypos[0], box.xypos[1]}).y, held.y, 1e-3);
    ExpectWhereItIsSeen(box);
}

TEST_P(PlainAnchors, FollowThePointerWithWhatWaits) {
    desk.m_pendingBoxes.push_back(MakeLink("b", 1));
    COpBox& box = *desk.m_pendingBoxes.at(0);
    LayOut(box);
    gestures.Move(At({40, 56}, false));
    EXPECT_FLOAT_EQ(box.xypos[0], 40);
    EXPECT_FLOAT_EQ(box.xypos[1], 40);  // its body's middle lies under the pointer
    gestures.Move(At({60, 46}, false));
    EXPECT_FLOAT_EQ(box.xypos[0], 60);
    EXPECT_FLOAT_EQ(box.xypos[1], 30);
    ExpectWhereItIsSeen(box);
}

TEST_P(PlainAnchors, LieUnderTheCursorWhenPasted) {
    Put(60, 60).selected = 1;
    Put(100, 20).selected = 1;
    desk.CopySelection();
    desk.PasteBoxes(DeskPoint{10, 30});
    EXPECT_THAT(desk.m_pendingBoxes.at(0)->xypos, ElementsAre(10, 30));
    EXPECT_THAT(desk.m_pendingBoxes.at(1)->xypos, ElementsAre(50, -10));
}

TEST_P(PlainAnchors, KeepAMergedGroupsShape) {
    CTvDoc::BoxList boxes;
    for (const float x : {7.0F, 27.0F}) {
        boxes.push_back(MakeLink("b", 1));
        boxes.back()->xypos[0] = x;
    }
    desk.MergeBoxes(boxes);
    EXPECT_THAT(desk.m_pendingBoxes.at(0)->xypos, ElementsAre(0, 0));
    EXPECT_THAT(desk.m_pendingBoxes.at(1)->xypos, ElementsAre(20, 0));
}

TEST_P(PlainAnchors, LieBesideThoseOfADuplicatesOriginal) {
    desk.DuplicateBox(Put(60, 60));
    EXPECT_THAT(test::BoxAt(document, 0).xypos, ElementsAre(76, 44));
}

}  // namespace
}  // namespace tavrin
