// SPDX-License-Identifier: Apache-2.0
// The main roads of the hand on the desk in the program as it runs, with events of the display.
#include <filesystem>
#include <sstream>

#include "ui/base/Text.h"
#include "ui/desk/DeskPane.h"
#include "ui/support/RunningProgram.h"
#include "ui/support/TestFrame.h"

namespace tavrin {
namespace {

namespace fs = std::filesystem;
using test::Ask;
using test::WaitUntil;
using testing::HasSubstr;
using testing::Not;

constexpr QSize kSize(1100, 750);  // of the frame
constexpr const char* kWire = " -> opbox:";

// Two boxes beside each other in a document; where their pieces lie in the frame is seen from one that this
// process shows first.
class DeskProgramTest : public test::FrameTest {
  protected:
    DeskProgramTest() {
        fs::create_directories(directory / "home");
        for (const char* name : {"XDG_CONFIG_HOME", "XDG_STATE_HOME", "XDG_CACHE_HOME", "XDG_DATA_HOME"})
            environment.Unset(name);
        Start();
        AddBoxes(2);
        Document().SortBoxesByWid();
        float x = 150;
        for (const auto& box : Document().m_boxes) {
            box->xypos[0] = x;
            box->xypos[1] = 200;
            x += 200;
        }
        m_path = directory.Write("work.tvn", Document().Store());
        Document().SetModified(false);
        Frame().resize(kSize);
        EXPECT_TRUE(Frame().OpenDocumentFile(m_path));
        EXPECT_TRUE(WaitUntil([&] { return Frame().size() == kSize; }));
        Settle();
        Look();
        End();
        m_program = std::make_unique<test::RunningProgram>(environment, QStringList{Shown(m_path)});
        m_window = m_program->Window("^work.tvn$");
        m_program->WaitForSplashToGo();
        X({"windowsize", m_window, QString::number(kSize.width()), QString::number(kSize.height())});
        const std::string size = "Geometry: 1100x750\n";
        EXPECT_TRUE(WaitUntil([&] {
            return Shown(Ask("xdotool", {"getwindowgeometry", m_window}).text).endsWith(Shown(size));
        }));
        X({"windowactivate", "--sync", m_window});
    }
    ~DeskProgramTest() override {
        for (const char* button : {"1", "2", "3"}) X({"mouseup", button});
        X({"keyup", "shift"});
    }

    void X(const QStringList& words) { EXPECT_TRUE(Ask("xdotool", words).ok) << Bytes(words.join(' ')); }
    void MoveTo(QPoint at) {
        X({"mousemove", "--window", m_window, QString::number(at.x()), QString::number(at.y())});
    }
    void Drag(const char* button, QPoint from, QPoint to) {
        MoveTo(from);
        X({"mousedown", button});
        MoveTo((from + to) / 2);
        MoveTo(to);
        X({"mouseup", button});
    }
    // What the document's file holds once it has been saved by keys.
    std::string Saved() {
        m_program->WaitForTitle("work.tvn\\*");
        X({"key", "ctrl+s"});
        m_program->WaitForTitle("work.tvn");
        return test::ReadFile(m_path);
    }
    // The number at that place behind the keyword's nth line.
    static float Number(const std::string& text, const std::string& keyword, int place, int line = 0) {
        size_t at = 0;
        for (int i = 0; i <= line; ++i) at = text.find(keyword + ' ', at) + keyword.size();
        std::istringstream numbers(text.substr(at));
        float number = -1e9F;
        for (int i = 0; i <= place; ++i) numbers >> number;
        return number;
    }
    static float Offset(const std::string& text, int axis) { return Number(text, "offsetxy", axis); }
    static float Zoom(const std::string& text) { return Number(text, "zoomxyf", 2); }

    QPoint title;   // of the first box, in the frame
    QPoint output;  // of the first box
    QPoint input;   // of the second one
    QRect desk;
    std::unique_ptr<test::RunningProgram> m_program;
    QString m_window;
    std::string m_path;

  private:
    void Look() {
        DeskWidget& widget = Frame().Desk().Desk();
        widget.grabFramebuffer();  // lays out
        const auto inFrame = [&](DeskPoint point) {
            const WindowPoint at = Frame().Desk().View().ToWindow(point);
            return widget.mapTo(&Frame(), QPoint(static_cast<int>(at.x), static_cast<int>(at.y)));
        };
        const COpBox& first = *Document().m_boxes.front();
        const COpBox& second = *Document().m_boxes.back();
        title = inFrame(TitleRect(first).Middle());
        output = inFrame(ButtonRect({&first, true, 0}).Middle());
        input = inFrame(ButtonRect({&second, false, 0}).Middle());
        desk = QRect(widget.mapTo(&Frame(), QPoint(0, 0)), widget.size());
    }
};

TEST_F(DeskProgramTest, LeftDragsMoveABoxAndWireTwoButtons) {
    const std::string before = test::ReadFile(m_path);
    const QPoint way(40, -30);
    Drag("1", title, title + way);
    const std::string moved = Saved();
    EXPECT_EQ(Number(moved, "xypos", 0) - Number(before, "xypos", 0), 40);
    EXPECT_EQ(Number(moved, "xypos", 1) - Number(before, "xypos", 1), 30);
    EXPECT_EQ(Number(moved, "xypos", 0, 1), Number(before, "xypos", 0, 1));
    EXPECT_EQ(Offset(moved, 0), Offset(before, 0));
    EXPECT_THAT(moved, Not(HasSubstr(kWire)));
    Drag("1", output + way, input);
    EXPECT_THAT(Saved(), HasSubstr(kWire));
}

TEST_F(DeskProgramTest, DragsOfTheOtherButtonsPanWithoutAMenuAndTheWheelZooms) {
    const std::string before = test::ReadFile(m_path);
    Drag("2", desk.center(), desk.center() + QPoint(50, 20));
    const std::string panned = Saved();
    EXPECT_EQ(Offset(panned, 0) - Offset(before, 0), 50);
    EXPECT_EQ(Offset(panned, 1) - Offset(before, 1), -20);
    EXPECT_EQ(Number(panned, "xypos", 0), Number(before, "xypos", 0));
    X({"keydown", "shift"});
    const QPoint box = title + QPoint(50, 20);
    Drag("3", box, box + QPoint(60, -20));
    X({"keyup", "shift"});
    const std::string pannedOn = Saved();
    EXPECT_EQ(Offset(pannedOn, 0) - Offset(panned, 0), 60);
    EXPECT_EQ(Offset(pannedOn, 1) - Offset(panned, 1), 20);
    EXPECT_EQ(m_program->Windows().size(), 1);
    X({"click", "4"});
    EXPECT_FLOAT_EQ(Zoom(Saved()), 1.1F);
    X({"click", "--repeat", "2", "5"});
    EXPECT_NEAR(Zoom(Saved()), 1 / 1.1F, 1e-5);
}

TEST_F(DeskProgramTest, HeldBeyondTheEdgeABoxStaysUnderThePointerWhileTheDeskScrolls) {
    MoveTo(title);
    X({"mousedown", "1"});
    MoveTo({desk.left() + 10, title.y()});
    MoveTo({desk.left() - 30, title.y()});
    std::string text;
    EXPECT_TRUE(WaitUntil([&] {
        X({"key", "ctrl+s"});
        text = test::ReadFile(m_path);
        return Offset(text, 0) >= 160;
    }));
    X({"mouseup", "1"});
    X({"key", "ctrl+t"});  // so that there is something to save
    text = Saved();
    EXPECT_NEAR(Number(text, "xypos", 0) + Offset(text, 0), 0, 2);
    EXPECT_EQ(static_cast<int>(Offset(text, 0)) % 8, 0);
}

}  // namespace
}  // namespace tavrin
