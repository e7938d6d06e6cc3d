// SPDX-License-Identifier: Apache-2.0
// Networks as long as a row of boxes can get, and networks of files that lead back to themselves: whatever
// walks along the wires ends, and cutting the circle open makes the network whole.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>

#include "desk/DeskGestures.h"
#include "render/RenderSession.h"
#include "site/Site.h"
#include "support/TestHost.h"

namespace tavrin {
namespace {

using test::BoxAt;
using test::Wire;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

constexpr int kDeep = 20000;

constexpr const char* kLink =
    "input in { float { 0.5 0 1 0 %g } } output out { float out }\n"
    "codegen.main-body append\nout = in;\n<<EOT>>\n";

class DeepNetworks : public test::DocumentTest {
  protected:
    DeepNetworks() {
        host.startsProcesses = false;
        host.GetSite().types.SetDataType("float", {"float ", ";"});
        view.SetSize(800, 600);
    }

    // A row of boxes, each feeding the next, a desk unit apart.
    void PutRow(int count, const std::string& definition = kLink) {
        const auto first = test::MakeBox("link", definition);
        for (int wid = 1; wid <= count; ++wid) {
            auto box = std::make_unique<COpBox>(*first);
            box->wid = wid;
            box->codegen = first->codegen;
            box->layout = {static_cast<float>(wid), 0, 16, 100, 32, 30, 40};
            COpBox& added = Add(std::move(box));
            if (m_last != nullptr) Wire(*m_last, 0, added, 0);
            m_last = &added;
        }
    }
    static DeskPoint MiddleOf(const COpButton& button) {
        return ButtonRect(ButtonPlace::Of(button)).Middle();
    }
    void Press(DeskPoint at) {
        Point(at, false);
        gestures.LeftDown(m_pointer);
    }
    void Drag(DeskPoint at) { Point(at, true); }
    void Release() {
        m_pointer.left = false;
        gestures.LeftUp(m_pointer);
    }
    COpBox& First() { return *document.m_boxes.front(); }
    COpBox& Last() { return *document.m_boxes.back(); }
    std::vector<std::string> Code() { return RenderSession(document, host.GetSite(), site).Generate().code; }

    test::RecordingView windows{document};
    test::SeenDesk desk{document, host, windows};
    DeskViewport view{document, {0.1F, 10}};
    DeskGestures gestures{{document, desk, view, windows, host.GetSite().report, 3,
                           [this](const std::string& text) { status = text; }}};
    CCodeGen site;
    std::string status;

  private:
    // What is pointed at may be far away: the view follows.
    void Point(DeskPoint at, bool pressed) {
        view.CentreView(at);
        m_pointer.at = view.ToWindow(at);
        m_pointer.left = pressed;
        if (pressed) {
            gestures.Move(m_pointer);
            return;
        }
        gestures.IgnoreNextMove();
        gestures.Move(m_pointer);
    }
    PointerState m_pointer;
    COpBox* m_last = nullptr;
};

TEST_F(DeepNetworks, ALongRowIsGeneratedFromItsFirstBoxToItsLast) {
    PutRow(kDeep);
    const auto code = Code();
    EXPECT_EQ(code.back(), "link_20000_out = link_19999_out;");
    EXPECT_THAT(code, testing::Contains("link_1_out = 0.5;"));
}

TEST_F(DeepNetworks, ALongRowOfBoxesThatPassThroughHasTheNameOfItsFirstEverywhere) {
    PutRow(1);
    PutRow(kDeep, "input in { float { 0.5 0 1 0 %g } } output tieback=in out { float out }\n");
    const NameSource names{document.preparedVariables, &host.GetSite().report};
    EXPECT_EQ(Last().outputs.at(0)->VariableName(names), "link_1_out");
    Code();
    EXPECT_THAT(Alerts(), IsEmpty());
}

TEST_F(DeepNetworks, AWireRoundALongRowIsRefused) {
    PutRow(kDeep);
    First().layout.bottom = Last().layout.bottom = 300;  // clear of the others
    Press(MiddleOf(*Last().outputs.at(0)));
    Drag(MiddleOf(*First().inputs.at(0)));
    EXPECT_THAT(status, HasSubstr("endless loop"));
    Release();
    EXPECT_THAT(Alerts(), SizeIs(1));
    EXPECT_TRUE(First().inputs.at(0)->connections.Empty());
}

TEST_F(DeepNetworks, AllOfALongRowIsDraggedCopiedAndDeleted) {
    PutRow(kDeep);
    desk.SelectAllBoxes();
    Press(TitleRect(First()).Middle());
    Drag({TitleRect(First()).Middle().x + 10, TitleRect(First()).Middle().y + 20});
    Release();
    EXPECT_EQ(First().layout.left, 11);
    EXPECT_EQ(Last().layout.left, kDeep + 10);
    EXPECT_EQ(Last().layout.bottom, 20);
    desk.CopySelection();
    desk.DeleteSelection();
    EXPECT_THAT(document.m_boxes, IsEmpty());
    desk.PasteBoxes(std::nullopt);
    desk.DropPending();
    EXPECT_THAT(document.OrderBoxes(), SizeIs(kDeep));
}

// Circles, which only a file can bring.

class Circle : public DeepNetworks {
  protected:
    // A ring of boxes in a row, as read from a file, and one box apart.
    void LoadRing(int count) {
        host.AddOperator("link", kLink);
        CTvDoc ring(host);
        for (int wid = 1; wid <= count + 1; ++wid) {
            auto box = std::make_unique<COpBox>();
            ASSERT_TRUE(host.DefineBox(*box, "link"));
            box->wid = wid;
            box->xypos[0] = static_cast<float>(wid) * 120;
            ring.m_boxes.push_back(std::move(box));
        }
        auto box = ring.m_boxes.begin();
        for (int i = 1; i < count; ++i, ++box) Wire(**box, 0, **std::next(box), 0);
        Wire(**box, 0, BoxAt(ring, 0), 0);
        ASSERT_TRUE(Load(ring.Store()));
        ASSERT_THAT(document.m_boxes, SizeIs(static_cast<size_t>(count) + 1));
        for (const auto& loaded : document.m_boxes)
            loaded->layout = {loaded->xypos[0], loaded->wid > count ? 200.0F : 0.0F, 16, 100, 32, 30, 40};
        ASSERT_THAT(document.OrderBoxes(), SizeIs(1));
    }
    void ExpectOpen() {
        EXPECT_THAT(document.OrderBoxes(), SizeIs(document.m_boxes.size()));
        EXPECT_THAT(Code(), SizeIs(document.m_boxes.size() * 3));
        EXPECT_THAT(Alerts(), IsEmpty());
    }
    // The place of a wire that is nearest to the middle between its ends.
    DeskPoint MiddleOfWire(const COpButton& input) {
        const DeskPoint from = ButtonAnchor(ButtonPlace::Of(*input.connections.First()));
        const DeskPoint to = ButtonAnchor(ButtonPlace::Of(input));
        return {(from.x + to.x) / 2, (from.y + to.y) / 2};
    }
};

TEST_F(Circle, IsSelectedAndDragged) {
    LoadRing(1000);
    Press(TitleRect(First()).Middle());
    Drag({TitleRect(First()).Middle().x + 10, TitleRect(First()).Middle().y});
    Release();
    EXPECT_EQ(First().layout.left, 130);
    desk.SelectAllBoxes();
    desk.CutBoxes();
    desk.PasteBoxes(std::nullopt);
    desk.DropPending();
    EXPECT_THAT(document.m_boxes, SizeIs(1001));
}

TEST_F(Circle, IsWalkedToItsEndWhileAWireIsDrawn) {
    LoadRing(1000);
    COpBox& apart = Last();
    Press(MiddleOf(*apart.outputs.at(0)));
    Drag(MiddleOf(*BoxAt(document, 3).inputs.at(0)));
    EXPECT_THAT(status, IsEmpty());  // the button has no help
    Drag({0, 500});
    Release();
    Press(MiddleOf(*BoxAt(document, 5).outputs.at(0)));  // outputs take each other's place
    Drag(MiddleOf(*BoxAt(document, 4).inputs.at(0)));
    EXPECT_THAT(status, HasSubstr("endless loop"));
    Release();
    EXPECT_THAT(Alerts(), SizeIs(1));
}

TEST_F(Circle, IsCutOpenByDeletingALine) {
    LoadRing(1000);
    // The line from the last box back to the first lies on all others.
    Press(MiddleOfWire(*BoxAt(document, 1).inputs.at(0)));
    Release();
    ASSERT_THAT(desk.m_selectedConnects, ElementsAre(First().inputs.at(0).get()));
    desk.DeleteSelection();
    ExpectOpen();
}

TEST_F(Circle, IsCutOpenByDeleteConnections) {
    LoadRing(1000);
    desk.m_mouseBox = &BoxAt(document, 7);
    desk.m_mouseButton = BoxAt(document, 7).outputs.at(0).get();
    desk.DeleteConnections();
    ExpectOpen();
}

TEST_F(Circle, IsCutOpenByRewiringAnInput) {
    LoadRing(1000);
    COpButton& input = *BoxAt(document, 3).inputs.at(0);
    Press(MiddleOf(*Last().outputs.at(0)));
    Drag(MiddleOf(input));
    Release();
    EXPECT_TRUE(input.connections.Contains(*Last().outputs.at(0)));
    ExpectOpen();
}

TEST_F(Circle, IsCutOpenByDeletingABox) {
    LoadRing(1000);
    desk.DeleteBox(BoxAt(document, 500));
    ExpectOpen();
}

TEST_F(Circle, OfOneBoxThatFeedsItselfIsCutOpen) {
    LoadRing(1);
    First().inputs.at(0)->Disconnect();
    ExpectOpen();
}

TEST_F(Circle, IsLeftOutOfTheCodeAndTheLogSaysSo) {
    LoadRing(1000);
    EXPECT_THAT(Code(), SizeIs(3));
    EXPECT_THAT(
        host.Sink().log,
        HasSubstr("WARNING: link_1 and 999 more are part of a circle of wires, so no code is generated "
                  "for them"));
}

TEST_F(Circle, OfOneBoxIsToldByItsName) {
    LoadRing(1);
    Code();
    EXPECT_THAT(host.Sink().log,
                HasSubstr("WARNING: link_1 is part of a circle of wires, so no code is generated for it"));
}

}  // namespace
}  // namespace tavrin
