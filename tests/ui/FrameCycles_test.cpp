// SPDX-License-Identifier: Apache-2.0
// Documents whose wires lead back to themselves, cut open by hand in the whole frame and rendered.
#include <QAction>
#include <QMenu>
#include <QWindow>
#include <optional>

#include "ui/base/Text.h"
#include "ui/desk/DeskPane.h"
#include "ui/support/DeskPointer.h"
#include "ui/support/Hands.h"
#include "ui/support/TestFrame.h"

namespace tavrin {
namespace {

using test::DeskPointer;
using test::PressKeys;
using test::WaitUntil;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

class FrameCycles : public test::FrameTest {
  protected:
    FrameCycles() {
        directory.Write("tavrin/tiny/menu/0300.Patterns/0050.Link",
                        "input in { float { 0 0 1 0 \"%g\" } }\noutput out { float out }\n"
                        "codegen.main-body append\nout = f(in);\n<<EOT>>\n");
    }

    // Boxes in a ring from the first to the third and back, a fourth that feeds itself, a fifth apart.
    void OpenRing() {
        std::string text = "tavrn-version 1\ntavrn-renderer tiny\nopdesk\n{\n";
        const auto box = [&](int wid, int x, int y) {
            text += "opbox { filename Link wid " + std::to_string(wid) + " xypos " + std::to_string(x) + " " +
                    std::to_string(y) + " opboxdefs { maxinstances 0 } }\n";
        };
        box(1, 100, 100);
        box(2, 250, 100);
        box(3, 400, 200);
        box(4, 250, 300);
        box(5, 100, 300);
        text += "opconnects\n{\n";
        for (const auto& [from, to] : {std::pair{1, 2}, {2, 3}, {3, 1}, {4, 4}}) {
            text += "opbox:Link," + std::to_string(from) + ",out,0 -> opbox:Link," + std::to_string(to) +
                    ",in,0\n";
        }
        Start();
        Frame().resize(1100, 800);
        Settle();
        ASSERT_TRUE(Frame().OpenDocumentFile(directory.Write("ring.tvn", text + "}\n}\n")));
        Do(CommandId::kFitToWindow);
        Settle();
        pointer.emplace(Frame());
    }
    COpBox& Box(int wid) {
        for (const auto& box : Document().m_boxes) {
            if (box->wid == wid) return *box;
        }
        throw std::logic_error("no such box");
    }
    QPoint InputOf(int wid) { return pointer->Of(Box(wid), "in"); }
    QPoint OutputOf(int wid) { return pointer->Of(Box(wid), "out"); }

    // What F1 generates of the boxes, a line each. The log tells of this render alone.
    std::string Render() {
        PressKeys("Ctrl+Delete");
        PressKeys("F1");
        EXPECT_TRUE(WaitUntil([this] { return !ChildRuns(); }));
        Settle();
        EXPECT_THAT(Log(), HasSubstr("renderit done"));
        const std::string code = test::ReadFile(WorkDir() + "/codegenfile");
        std::string body;
        for (size_t begin = 0; begin < code.size();) {
            const size_t end = std::min(code.find('\n', begin), code.size());
            const std::string line = code.substr(begin, end - begin);
            if (line.find("f(") != std::string::npos) body += line + "\n";
            begin = end + 1;
        }
        return body;
    }

    std::optional<DeskPointer> pointer;
};

TEST_F(FrameCycles, AreLeftOutOfTheCodeUntilTheyAreCutOpen) {
    OpenRing();
    EXPECT_EQ(Render(), "    Link_5_out = f(0);\n");
    EXPECT_THAT(Log(), HasSubstr("WARNING: Link_1 and 3 more are part of"));
}

TEST_F(FrameCycles, AreCutOpenByTheMenuOfAnOutput) {
    OpenRing();
    pointer->ChooseAt(OutputOf(3), {"Delete", "Delete Connections"});
    EXPECT_EQ(Render(),
              "    Link_1_out = f(0);\n    Link_2_out = f(Link_1_out);\n    Link_3_out = f(Link_2_out);\n"
              "    Link_5_out = f(0);\n");
    EXPECT_THAT(Log(), HasSubstr("Link_4 is part of a circle"));
    EXPECT_TRUE(Frame().isWindowModified());
}

TEST_F(FrameCycles, AreCutOpenByTheMenuOfAnInputAlsoOfABoxThatFeedsItself) {
    OpenRing();
    pointer->ChooseAt(InputOf(4), {"Delete", "Delete Connections"});
    pointer->ChooseAt(InputOf(2), {"Delete", "Delete Connections"});
    EXPECT_EQ(Render(),
              "    Link_2_out = f(0);\n    Link_3_out = f(Link_2_out);\n    Link_1_out = f(Link_3_out);\n"
              "    Link_4_out = f(0);\n    Link_5_out = f(0);\n");
    EXPECT_THAT(Log(), Not(HasSubstr("circle")));
}

TEST_F(FrameCycles, AreCutOpenByWiringAnInputAnew) {
    OpenRing();
    pointer->WireByDrag(OutputOf(5), InputOf(2));
    pointer->WireByClicks(InputOf(4), OutputOf(3));
    EXPECT_EQ(Render(),
              "    Link_5_out = f(0);\n    Link_2_out = f(Link_5_out);\n    Link_3_out = f(Link_2_out);\n"
              "    Link_1_out = f(Link_3_out);\n    Link_4_out = f(Link_3_out);\n");
    EXPECT_THAT(Log(), Not(HasSubstr("circle")));
    EXPECT_THAT(test::BoxesShown(), IsEmpty());
}

TEST_F(FrameCycles, AreCutOpenByDeletingASelectedLineWithTheKey) {
    OpenRing();
    pointer->Click(pointer->OfWireInto(*Box(3).inputs.at(0)));
    ASSERT_THAT(Desk().m_selectedConnects, ElementsAre(Box(3).inputs.at(0).get()));
    Settle();
    PressKeys("Delete");
    EXPECT_EQ(Render(),
              "    Link_3_out = f(0);\n    Link_1_out = f(Link_3_out);\n    Link_2_out = f(Link_1_out);\n"
              "    Link_5_out = f(0);\n");
    EXPECT_THAT(Log(), HasSubstr("Link_4 is part of a circle"));
}

TEST_F(FrameCycles, AWireThatWouldCloseTheOpenedRingAgainIsRefused) {
    OpenRing();
    pointer->ChooseAt(InputOf(1), {"Delete", "Delete Connections"});
    test::PressWhenBoxComes("OK");
    pointer->WireByDrag(OutputOf(3), InputOf(1));
    ASSERT_TRUE(WaitUntil([] { return !test::BoxesShown().isEmpty(); }));
    EXPECT_EQ(Bytes(test::BoxesShown().join('|')),
              "Alert: That would create an endless loop!  Watch status box for warnings.");
    EXPECT_TRUE(Box(1).inputs.at(0)->connections.Empty());
    EXPECT_EQ(Render(),
              "    Link_1_out = f(0);\n    Link_2_out = f(Link_1_out);\n    Link_3_out = f(Link_2_out);\n"
              "    Link_5_out = f(0);\n");
}

}  // namespace
}  // namespace tavrin
