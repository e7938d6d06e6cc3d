// SPDX-License-Identifier: Apache-2.0
#include "ui/render/PictureLink.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QDialog>
#include <filesystem>

#include "render/PictureSocket.h"
#include "support/TestSite.h"
#include "ui/support/Windows.h"

namespace tavrin {
namespace {

namespace fs = std::filesystem;
using test::WaitUntil;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

// Stands for the window.
class FakeWindow {
  public:
    explicit FakeWindow(const Environment& environment)
        : m_socket(environment), m_listening(m_socket.Listen()) {}

    // All that has been said, over however many connections, as lines without their desk.
    std::vector<std::string> Hear(size_t least) {
        WaitUntil([&] {
            if (FileDescriptor next = PictureSocket::Accept(m_listening))
                m_wires.emplace_back(std::move(next));
            for (PictureWire& wire : m_wires) {
                wire.Receive();
                while (const auto message = wire.Next()) {
                    std::string line = message->Line();
                    line.pop_back();
                    const std::string desk = " desk=/desk";
                    if (const size_t at = line.find(desk); at != std::string::npos)
                        line.erase(at, desk.size());
                    m_heard.push_back(line);
                }
            }
            return m_heard.size() >= least;
        });
        return std::exchange(m_heard, {});
    }
    void Say(const PictureMessage& message) {
        m_wires.back().Send(message);
        m_wires.back().Flush();
    }
    bool IsListening() const { return static_cast<bool>(m_listening); }
    void Disconnect() { m_wires.clear(); }

  private:
    PictureSocket m_socket;
    FileDescriptor m_listening;
    std::vector<PictureWire> m_wires;
    std::vector<std::string> m_heard;
};

class PictureLinkTest : public testing::Test {
  protected:
    PictureLinkTest() {
        site.environment = Environment::FromProcess();
        site.environment.Set("XDG_RUNTIME_DIR", directory / "runtime");
        site.environment.Set("DISPLAY", ":77");
        site.environment.Unset("WAYLAND_DISPLAY");
        site.environment.Set("TAVRN_VIEW", directory / "view");
        fs::create_directories(directory / "runtime");
        // What is started as the window notes that.
        directory.Write("view", "#!/bin/sh\necho started >>'" + (directory / "starts") + "'\n");
        fs::permissions(directory / "view", fs::perms::owner_all);
        site.directories.workDir = "/desk";
    }
    ~PictureLinkTest() override { link.reset(); }
    void Make() {
        link = std::make_unique<PictureLink>(
            site,
            PictureLink::Hands{
                .selectRender = [this](int number) { hands.push_back("select " + std::to_string(number)); },
                .restoreRender = [this](int number) { hands.push_back("restore " + std::to_string(number)); },
                .keepRender = [this](int number) { hands.push_back("keep " + std::to_string(number)); },
                .liveShown = [this](uint64_t id) { hands.push_back("shown " + std::to_string(id)); },
                .cameOrWent = [this] { ++changes; }});
    }
    static RenderRecord Record(int number, RenderRecord::State state = RenderRecord::State::kDone) {
        RenderRecord record;
        record.number = number;
        record.name = "ball";
        record.started = std::chrono::system_clock::time_point(std::chrono::milliseconds(1000 * number));
        record.state = state;
        return record;
    }
    size_t Starts() {
        const std::string text = fs::exists(directory / "starts") ? test::ReadFile(directory / "starts") : "";
        return static_cast<size_t>(std::count(text.begin(), text.end(), '\n'));
    }

    test::TestSite base;
    Site& site = base.site;
    test::TempDir& directory = base.directory;
    std::vector<std::string> hands;
    int changes = 0;
    std::unique_ptr<PictureLink> link;
};

TEST_F(PictureLinkTest, AWindowThatIsThereIsToldAtOnce) {
    FakeWindow window(site.environment);
    ASSERT_TRUE(window.IsListening());
    Make();
    EXPECT_TRUE(link->IsUp());
    RenderRecord record = Record(3);
    record.duration = std::chrono::milliseconds(1500);
    record.picture = "/desk/3/ball.png";
    record.differs = "Noise_3 scale";
    link->TellRender(record);
    link->ForgetRender(2);
    link->CompareRenders(1, 3);
    link->ComeUp();
    EXPECT_THAT(
        window.Hear(5),
        ElementsAre("hello",
                    "render differs=Noise_3%20scale duration=1500 file=/desk/3/ball.png name=ball number=3 "
                    "started=3000 state=done",
                    "forget number=2", "compare first=1 second=3", "comeup"));
}

TEST_F(PictureLinkTest, AWindowThatComesLaterIsToldWhatWasSaidBefore) {
    Make();
    EXPECT_FALSE(link->IsUp());
    EXPECT_TRUE(link->IsPossible());
    link->FrameMoved({1, 2, 300, 400});
    for (const int number : {1, 2, 3}) link->TellRender(Record(number));
    link->ForgetRender(2);
    RenderRecord failed = Record(3, RenderRecord::State::kFailed);
    failed.failure = "status 2";
    link->TellRender(failed);
    EXPECT_EQ(Starts(), 0U) << "for a render no window is started: its script does that";
    FakeWindow window(site.environment);
    ASSERT_TRUE(WaitUntil([&] { return link->IsUp(); })) << "it is heard of as it comes";
    EXPECT_GT(changes, 0);
    EXPECT_THAT(window.Hear(4),
                ElementsAre("hello", "frame h=400 w=300 x=1 y=2",
                            "render differs= name=ball number=1 started=1000 state=done",
                            "render differs= name=ball number=3 started=3000 state=failed text=status%202"));
}

TEST_F(PictureLinkTest, ALivePictureStartsTheWindowOnce) {
    Make();
    link->ShowLive(1, "/desk/1.png", false);
    ASSERT_TRUE(WaitUntil([&] { return Starts() == 1; }));
    for (uint64_t id = 2; id < 50; ++id) link->ShowLive(id, "/desk/x.png", true);
    link->TellLiveTrouble("it hangs");
    test::HandleEvents();
    EXPECT_EQ(Starts(), 1U);
    FakeWindow window(site.environment);
    ASSERT_TRUE(WaitUntil([&] { return link->IsUp(); }));
    EXPECT_THAT(window.Hear(3),
                ElementsAre("hello", "live file=/desk/x.png final=1 id=49", "trouble text=it%20hangs"))
        << "the newest is what counts";
    link->ShowLive(50, "/desk/y.png", false);
    link->EndLive();
    link->EndLive();
    EXPECT_THAT(window.Hear(2), ElementsAre("live file=/desk/y.png final=0 id=50", "endlive"));
}

TEST_F(PictureLinkTest, AWindowThatWasKilledIsStartedAgainAndToldAgain) {
    auto window = std::make_unique<FakeWindow>(site.environment);
    Make();
    link->TellRender(Record(1));
    window->Hear(2);
    window.reset();
    ASSERT_TRUE(WaitUntil([&] { return !link->IsUp(); }));
    link->TellRender(Record(2));
    EXPECT_EQ(Starts(), 0U);
    link->ComeUp();
    ASSERT_TRUE(WaitUntil([&] { return Starts() == 1; }));
    FakeWindow next(site.environment);
    ASSERT_TRUE(WaitUntil([&] { return link->IsUp(); }));
    const auto heard = next.Hear(3);
    ASSERT_EQ(heard.size(), 3U);
    EXPECT_THAT(heard[1], HasSubstr("number=1"));
    EXPECT_THAT(heard[2], HasSubstr("number=2"));
}

TEST_F(PictureLinkTest, WhatIsToBeComparedWaitsForTheWindow) {
    Make();
    link->CompareRenders(1, 2);
    ASSERT_TRUE(WaitUntil([&] { return Starts() == 1; }));
    FakeWindow window(site.environment);
    ASSERT_TRUE(WaitUntil([&] { return link->IsUp(); }));
    EXPECT_THAT(window.Hear(2), ElementsAre("hello", "compare first=1 second=2"));
    window.Disconnect();
    ASSERT_TRUE(WaitUntil([&] { return !link->IsUp(); }));
    link->TellRender(Record(1));
    const auto heard = window.Hear(2);
    EXPECT_THAT(heard[1], StartsWith("render ")) << "and is told once";
}

TEST_F(PictureLinkTest, AWindowThatHangsCostsNothingAndIsToldOnce) {
    FakeWindow window(site.environment);
    Make();
    RenderRecord record = Record(1);
    record.differs = std::string(3000, 'x');
    for (int number = 1; number <= 500; ++number) {
        record.number = number;
        link->TellRender(record);
        link->FrameMoved({number, 0, 10, 10});
        link->ShowLive(static_cast<uint64_t>(number), "/desk/x.png", true);
    }
    const std::string& log = base.sink.log;
    const size_t told = log.find("the picture window does not answer");
    ASSERT_NE(told, std::string::npos);
    EXPECT_EQ(log.find("the picture window does not answer", told + 1), std::string::npos);
    EXPECT_TRUE(link->IsUp());
    // It comes to itself: what counts has reached it by the end.
    bool hasLast = false, hasFrame = false, hasLive = false;
    ASSERT_TRUE(WaitUntil([&] {
        for (const std::string& line : window.Hear(1)) {
            hasLast = hasLast || line.find(" number=500 ") != std::string::npos;
            hasFrame = hasFrame || line == "frame h=10 w=10 x=500 y=0";
            hasLive = hasLive || line.find("id=500") != std::string::npos;
        }
        return hasLast && hasFrame && hasLive;
    }));
}

TEST_F(PictureLinkTest, WhatTheUserDoesInTheWindowComesToTheHands) {
    FakeWindow window(site.environment);
    Make();
    window.Hear(1);
    window.Say(PictureMessage("select").Set("number", 3));
    window.Say(PictureMessage("restore").Set("number", 4));
    window.Say(PictureMessage("keep").Set("number", 5));
    window.Say(PictureMessage("shown").Set("id", 6));
    for (const char* odd : {"0", "-3", "x", "99999999999"})
        window.Say(PictureMessage("restore").Set("number", odd));
    window.Say(PictureMessage("restore"));
    window.Say(PictureMessage("render").Set("number", 3));
    window.Say(PictureMessage("select").Set("number", 9));
    ASSERT_TRUE(WaitUntil([&] { return hands.size() >= 5; }));
    EXPECT_THAT(hands, ElementsAre("select 3", "restore 4", "keep 5", "shown 6", "select 9"));
}

TEST_F(PictureLinkTest, WhileADialogIsUpNothingElseIsDone) {
    FakeWindow window(site.environment);
    Make();
    window.Hear(1);
    QDialog dialog;
    dialog.setModal(true);
    test::WhenDialogComes([](QDialog&) {});  // it stays
    test::ShowActive(dialog);
    for (const char* verb : {"select", "restore", "keep"}) window.Say(PictureMessage(verb).Set("number", 3));
    window.Say(PictureMessage("shown").Set("id", 6));
    ASSERT_TRUE(WaitUntil([&] { return !hands.empty(); }));
    EXPECT_THAT(hands, ElementsAre("shown 6"));
}

TEST_F(PictureLinkTest, WhatComesAtTheEndOfTheProgramDoesNoHarm) {
    FakeWindow window(site.environment);
    Make();
    window.Hear(1);
    window.Say(PictureMessage("restore").Set("number", 4));
    link.reset();
    test::HandleEvents();
    EXPECT_THAT(hands, IsEmpty());
}

TEST_F(PictureLinkTest, WithoutADisplayOrAProgramNothingHappens) {
    for (const char* variable : {"DISPLAY", "TAVRN_VIEW"}) {
        const std::string value = site.environment.Get(variable).value_or("");
        site.environment.Set(variable, "");
        Make();
        EXPECT_FALSE(link->IsPossible());
        link->TellRender(Record(1));
        link->ShowLive(1, "/x.png", true);
        link->ComeUp();
        link->Close();
        link->CompareRenders(1, 2);
        EXPECT_FALSE(link->IsUp());
        test::HandleEvents();
        EXPECT_EQ(Starts(), 0U);
        EXPECT_TRUE(fs::is_empty(directory / "runtime"));
        site.environment.Set(variable, value);
    }
    EXPECT_EQ(base.sink.log, "");
    EXPECT_THAT(base.sink.alerts, IsEmpty());
}

TEST_F(PictureLinkTest, AProgramThatCannotStartIsTold) {
    site.environment.Set("TAVRN_VIEW", directory / "missing");
    Make();
    link->ComeUp();
    ASSERT_EQ(base.sink.alerts.size(), 1U);
    EXPECT_THAT(base.sink.alerts[0], HasSubstr("the picture window"));
}

}  // namespace
}  // namespace tavrin
