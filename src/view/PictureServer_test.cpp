// SPDX-License-Identifier: Apache-2.0
#include "view/PictureServer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/socket.h>

#include "support/TestSite.h"
#include "ui/support/Windows.h"

namespace tavrin {
namespace {

using test::WaitUntil;
using testing::ElementsAre;

class PictureServerTest : public testing::Test {
  protected:
    PictureServerTest() {
        environment.Set("XDG_RUNTIME_DIR", directory.Path());
        environment.Set("DISPLAY", ":7");
        socket = std::make_unique<PictureSocket>(environment);
        server = std::make_unique<PictureServer>(
            socket->Listen(),
            PictureServer::Hands{
                .take = [this](const PictureMessage& message) { heard.push_back(message.Verb()); },
                .came = [this](const std::string& desk) { heard.push_back(desk + " came"); },
                .went = [this](const std::string& desk) { heard.push_back(desk + " went"); }});
    }
    PictureWire Connect() { return PictureWire(PictureSocket(environment).Connect()); }
    static void Say(PictureWire& wire, const PictureMessage& message) {
        EXPECT_TRUE(wire.Send(message));
        EXPECT_TRUE(wire.Flush());
    }
    bool Hears(size_t count) {
        return WaitUntil([&] { return heard.size() >= count; });
    }

    test::TempDir directory;
    Environment environment;
    std::vector<std::string> heard;
    std::unique_ptr<PictureSocket> socket;
    std::unique_ptr<PictureServer> server;
};

TEST_F(PictureServerTest, ADeskComesSaysWhatItHasToSayAndGoes) {
    {
        PictureWire desk = Connect();
        Say(desk, PictureMessage("hello").Set("desk", "/a"));
        Say(desk, PictureMessage("render"));
        ASSERT_TRUE(Hears(2));
        server->Tell("/a", PictureMessage("select").Set("number", 3));
        server->Tell("/b", PictureMessage("keep").Set("number", 4));
        std::vector<std::string> told;
        ASSERT_TRUE(WaitUntil([&] {
            desk.Receive();
            while (const auto message = desk.Next()) told.push_back(message->Line());
            return !told.empty();
        }));
        EXPECT_THAT(told, ElementsAre("select number=3\n"));
    }
    ASSERT_TRUE(Hears(3));
    EXPECT_THAT(heard, ElementsAre("/a came", "render", "/a went"));
}

TEST_F(PictureServerTest, WhoOnlyLeavesAWordIsNoDesk) {
    {
        PictureWire hand = Connect();
        Say(hand, PictureMessage("render"));
    }
    ASSERT_TRUE(Hears(1));
    test::HandleEvents();
    EXPECT_THAT(heard, ElementsAre("render"));
}

TEST_F(PictureServerTest, TwoDesksAreToldApart) {
    PictureWire one = Connect();
    PictureWire other = Connect();
    Say(one, PictureMessage("hello").Set("desk", "/a"));
    Say(other, PictureMessage("hello").Set("desk", "/b"));
    Say(other, PictureMessage("hello").Set("desk", "/c"));
    ASSERT_TRUE(Hears(2));
    server->Tell("/b", PictureMessage("select").Set("number", 1));
    ASSERT_TRUE(WaitUntil([&] {
        other.Receive();
        return other.Next().has_value();
    }));
    one.Receive();
    EXPECT_FALSE(one.Next());
    test::HandleEvents();
    EXPECT_EQ(heard.size(), 2U) << "a desk has one name";
}

TEST_F(PictureServerTest, ADeskThatDoesNotReadHoldsUpNobody) {
    PictureWire deaf = Connect();
    Say(deaf, PictureMessage("hello").Set("desk", "/a"));
    ASSERT_TRUE(Hears(1));
    const std::string text(4000, 'x');
    for (int i = 0; i < 2000; ++i) server->Tell("/a", PictureMessage("select").Set("text", text));
    PictureWire other = Connect();
    Say(other, PictureMessage("render"));
    EXPECT_TRUE(Hears(2));
}

TEST_F(PictureServerTest, WhatIsNoMessageIsPassedOver) {
    PictureWire wire = Connect();
    const std::string noise = std::string(300000, 'x') + "\n\xff\xff\n\n=\nrender number=1\n";
    size_t sent = 0;
    ASSERT_TRUE(WaitUntil([&] {
        const ssize_t count =
            ::send(wire.Descriptor(), noise.data() + sent, noise.size() - sent, MSG_NOSIGNAL | MSG_DONTWAIT);
        if (count > 0) sent += static_cast<size_t>(count);
        return sent == noise.size();
    }));
    ASSERT_TRUE(Hears(1));
    EXPECT_THAT(heard, ElementsAre("render"));
}

TEST_F(PictureServerTest, ManyThatComeAtOnceAreBounded) {
    std::vector<PictureWire> wires;
    for (int i = 0; i < 200; ++i) {
        wires.push_back(Connect());
        test::HandleEvents();
    }
    wires.clear();
    test::HandleEvents();
    PictureWire desk = Connect();
    Say(desk, PictureMessage("hello").Set("desk", "/a"));
    EXPECT_TRUE(Hears(1)) << "and who comes later is served";
}

}  // namespace
}  // namespace tavrin
