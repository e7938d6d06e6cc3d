// SPDX-License-Identifier: Apache-2.0
// What the frame tells the picture window, and what it does for it. The test stands for the window.
#include <filesystem>
#include <map>
#include <optional>

#include "render/PictureSocket.h"
#include "ui/base/Text.h"
#include "ui/render/RenderHistoryDlg.h"
#include "ui/support/TestFrame.h"

namespace tavrin {
namespace {

namespace fs = std::filesystem;
using test::WaitUntil;
using Id = CommandId;

class PictureHands : public test::FrameTest {
  protected:
    PictureHands() {
        fs::create_directory(directory / "runtime");
        environment.Set("XDG_RUNTIME_DIR", directory / "runtime");
        environment.Set("TAVRN_VIEW", "/bin/true");
        m_socket.emplace(environment);
        m_listening = m_socket->Listen();
        Start();
        EXPECT_TRUE(WaitUntil([&] { return Receive() > 0; }));
    }
    ~PictureHands() override { End(); }

    // How many messages have come since; the last of each verb stays.
    int Receive() {
        if (FileDescriptor next = PictureSocket::Accept(m_listening)) m_wire.emplace(std::move(next));
        int count = 0;
        if (!m_wire) return count;
        m_wire->Receive();
        while (const auto message = m_wire->Next()) {
            last[message->Verb()] = *message;
            ++count;
        }
        return count;
    }
    bool Hears(const std::function<bool()>& condition) {
        return WaitUntil([&] {
            Receive();
            return condition();
        });
    }
    void Say(const PictureMessage& message) {
        m_wire->Send(message);
        m_wire->Flush();
    }
    void OpenAndRender(int times) {
        ASSERT_TRUE(Frame().OpenDocumentFile(WriteDocument("ball")));
        for (int i = 0; i < times; ++i) {
            Do(Id::kRenderIt);
            ASSERT_TRUE(WaitUntil([&] { return !ChildRuns(); }));
            Settle();
        }
    }

    std::map<std::string, PictureMessage> last;

  private:
    std::optional<PictureSocket> m_socket;
    FileDescriptor m_listening;
    std::optional<PictureWire> m_wire;
};

TEST_F(PictureHands, TheFrameSaysWhoItIsAndWhereItStands) {
    EXPECT_EQ(last["hello"].Text("desk"), WorkDir());
    EXPECT_TRUE(IsChecked(Id::kPictureWindow));
    Frame().move(120, 90);
    Frame().resize(900, 700);
    EXPECT_TRUE(Hears([&] {
        const PictureMessage& frame = last["frame"];
        const QRect now = Frame().frameGeometry();
        return frame.Number("x") == now.x() && frame.Number("y") == now.y() &&
               frame.Number("w") == now.width() && frame.Number("h") == now.height();
    }));
}

TEST_F(PictureHands, EachRenderIsToldFromItsStartToItsEnd) {
    HoldScripts();
    ASSERT_TRUE(Frame().OpenDocumentFile(WriteDocument("ball")));
    Do(Id::kRenderIt);
    ASSERT_TRUE(Hears([&] { return last["render"].Text("state") == "running"; }));
    EXPECT_EQ(last["render"].Text("name"), "ball");
    EXPECT_EQ(last["render"].Number("number"), 1);
    EXPECT_EQ(last["render"].Text("desk"), WorkDir());
    EXPECT_GT(last["render"].Number("started").value_or(0), 0);
    ReleaseScripts();
    EXPECT_TRUE(Hears([&] { return last["render"].Text("state") == "done"; }));
    HoldScripts();
    Do(Id::kRenderIt);
    ASSERT_TRUE(Hears([&] { return last["render"].Number("number") == 2; }));
    Do(Id::kStopRender);
    EXPECT_TRUE(Hears([&] { return last["render"].Text("state") == "stopped"; }));
}

TEST_F(PictureHands, ARenderThatIsSelectedThereIsSelectedInTheHistory) {
    OpenAndRender(3);
    auto& history = Frame().Windows().Get<CRenderHistoryDlg>();
    Do(Id::kRenderHistory);
    Say(PictureMessage("select").Set("number", 2));
    EXPECT_TRUE(WaitUntil([&] { return history.CurrentRender() == 2; }));
    Say(PictureMessage("select").Set("number", 77));
    Say(PictureMessage("select").Set("number", 3));
    EXPECT_TRUE(WaitUntil([&] { return history.CurrentRender() == 3; }));
}

TEST_F(PictureHands, ARenderThatIsRestoredThereIsOpenedAsFromTheHistory) {
    OpenAndRender(1);
    AddBoxes(2);
    const size_t boxes = Document().m_boxes.size();
    Say(PictureMessage("restore").Set("number", 77));
    test::PressWhenBoxComes("Discard");
    Say(PictureMessage("restore").Set("number", 1));
    EXPECT_TRUE(WaitUntil([&] { return Document().m_boxes.size() < boxes; }));
    EXPECT_EQ(test::BoxesShown().size(), 1) << "changes are asked about";
    EXPECT_FALSE(Document().IsModified());
}

TEST_F(PictureHands, TheCommandAsksTheWindowToGo) {
    Do(Id::kPictureWindow);
    EXPECT_TRUE(Hears([&] { return last.contains("close"); }));
}

}  // namespace
}  // namespace tavrin
