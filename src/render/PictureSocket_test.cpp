// SPDX-License-Identifier: Apache-2.0
#include "render/PictureSocket.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>

#include "support/Patience.h"
#include "support/TestSite.h"

namespace tavrin {
namespace {

namespace fs = std::filesystem;
using test::SleepUntil;
using test::TempDir;
using testing::ElementsAre;

class PictureSocketTest : public testing::Test {
  protected:
    PictureSocketTest() {
        environment.Set("XDG_RUNTIME_DIR", directory.Path());
        environment.Set("DISPLAY", ":7");
    }
    // The numbers of what comes until the other end has gone or so many are there.
    static std::vector<int64_t> Numbers(PictureWire& wire, size_t most) {
        std::vector<int64_t> numbers;
        SleepUntil([&] {
            const bool isThere = wire.Receive();
            while (const auto message = wire.Next()) numbers.push_back(message->Number("n").value_or(-1));
            return !isThere || numbers.size() >= most;
        });
        return numbers;
    }
    static PictureMessage Numbered(int64_t number) { return PictureMessage("x").Set("n", number); }

    TempDir directory;
    Environment environment;
};

TEST_F(PictureSocketTest, MessagesGoBothWays) {
    PictureSocket window(environment);
    const FileDescriptor listening = window.Listen();
    ASSERT_TRUE(listening);
    EXPECT_FALSE(PictureSocket::Accept(listening)) << "nobody has come";
    const PictureSocket desk(environment);
    PictureWire one(desk.Connect());
    PictureWire other(PictureSocket::Accept(listening));
    ASSERT_GE(one.Descriptor(), 0);
    ASSERT_GE(other.Descriptor(), 0);
    EXPECT_TRUE(one.Send(Numbered(1)) && one.Send(Numbered(2)) && one.Flush());
    EXPECT_TRUE(other.Send(Numbered(3)) && other.Flush());
    EXPECT_THAT(Numbers(other, 2), ElementsAre(1, 2));
    EXPECT_THAT(Numbers(one, 1), ElementsAre(3));
}

TEST_F(PictureSocketTest, IsNamedAfterTheDisplayInADirectoryOfTheUsersOwn) {
    PictureSocket window(environment);
    const FileDescriptor listening = window.Listen();
    EXPECT_EQ(window.Directory(), directory / "tavrin");
    EXPECT_TRUE(fs::is_socket(directory / "tavrin/pictures.:7"));
    EXPECT_EQ(fs::status(directory / "tavrin").permissions(), fs::perms::owner_all);
    environment.Set("DISPLAY", ":8");
    EXPECT_FALSE(PictureSocket(environment).Connect());
    environment.Set("WAYLAND_DISPLAY", "/run/w/1");
    PictureSocket other(environment);
    EXPECT_TRUE(other.Listen());
    EXPECT_TRUE(fs::is_socket(directory / "tavrin/pictures._run_w_1"));
}

TEST_F(PictureSocketTest, APathThatIsTooLongForAnAddressDoesAsWell) {
    const std::string deep = directory / std::string(150, 'd');
    fs::create_directories(deep);
    environment.Set("XDG_RUNTIME_DIR", deep);
    PictureSocket window(environment);
    const FileDescriptor listening = window.Listen();
    EXPECT_TRUE(fs::is_socket(deep + "/tavrin/pictures.:7"));
    EXPECT_TRUE(PictureSocket(environment).Connect());
}

TEST_F(PictureSocketTest, WithoutADisplayThereIsNone) {
    environment.Unset("DISPLAY");
    PictureSocket socket(environment);
    EXPECT_FALSE(PictureSocket::HasDisplay(environment));
    EXPECT_FALSE(socket.IsPossible());
    EXPECT_FALSE(socket.Connect());
    EXPECT_FALSE(socket.Listen());
    EXPECT_TRUE(fs::is_empty(directory.Path()));
    environment.Set("DISPLAY", "");
    EXPECT_FALSE(PictureSocket::HasDisplay(environment));
}

TEST_F(PictureSocketTest, ADirectoryThatOthersMayEnterOrThatIsALinkIsNotUsed) {
    fs::create_directory(directory / "tavrin");
    fs::permissions(directory / "tavrin", fs::perms::owner_all | fs::perms::group_exec);
    EXPECT_NE(PictureSocket(environment).Directory(), directory / "tavrin");
    fs::remove(directory / "tavrin");
    fs::create_directory(directory / "other");
    fs::permissions(directory / "other", fs::perms::owner_all);
    fs::create_directory_symlink(directory / "other", directory / "tavrin");
    EXPECT_NE(PictureSocket(environment).Directory(), directory / "tavrin");
}

TEST_F(PictureSocketTest, OnlyOneProcessListensAndAStaleSocketIsReplaced) {
    auto first = std::make_unique<PictureSocket>(environment);
    FileDescriptor listening = first->Listen();
    ASSERT_TRUE(listening);
    EXPECT_FALSE(PictureSocket(environment).Listen());
    EXPECT_TRUE(PictureSocket(environment).Connect()) << "the first one still has it";
    // As if it had been killed.
    listening.Close();
    first.reset();
    EXPECT_TRUE(fs::is_socket(directory / "tavrin/pictures.:7"));
    EXPECT_FALSE(PictureSocket(environment).Connect());
    PictureSocket second(environment);
    const FileDescriptor again = second.Listen();
    EXPECT_TRUE(again);
    EXPECT_TRUE(PictureSocket(environment).Connect());
}

TEST_F(PictureSocketTest, AnEndThatReadsNothingCostsNothing) {
    PictureSocket window(environment);
    const FileDescriptor listening = window.Listen();
    PictureWire wire(window.Connect());
    PictureWire hung(PictureSocket::Accept(listening));
    int64_t taken = 0;
    while (wire.Send(Numbered(taken)) && wire.Flush()) ++taken;
    EXPECT_TRUE(wire.IsWaiting());
    EXPECT_GT(taken, 1000);
    for (int i = 0; i < 100; ++i) EXPECT_FALSE(wire.Send(Numbered(taken)));
    // It comes to itself: what was taken comes whole and in order.
    std::vector<int64_t> numbers;
    ASSERT_TRUE(SleepUntil([&] {
        EXPECT_TRUE(wire.Flush());
        EXPECT_TRUE(hung.Receive());
        while (const auto message = hung.Next()) numbers.push_back(message->Number("n").value_or(-1));
        return numbers.size() >= static_cast<size_t>(taken);
    }));
    for (size_t i = 0; i < numbers.size(); ++i) ASSERT_EQ(numbers[i], static_cast<int64_t>(i));
    EXPECT_FALSE(wire.IsWaiting());
    EXPECT_TRUE(wire.Send(Numbered(-1)));
}

TEST_F(PictureSocketTest, WhatWaitsInASlotIsSupersededByTheNewest) {
    PictureSocket window(environment);
    const FileDescriptor listening = window.Listen();
    PictureWire wire(window.Connect());
    PictureWire other(PictureSocket::Accept(listening));
    wire.Send(Numbered(1), "live");
    wire.Send(Numbered(2), "frame");
    wire.Send(Numbered(3));
    wire.Send(Numbered(4), "live");
    wire.Send(Numbered(5));
    for (int64_t number = 10; number < 20000; ++number) EXPECT_TRUE(wire.Send(Numbered(number), "frame"));
    EXPECT_TRUE(wire.Flush());
    EXPECT_THAT(Numbers(other, 4), ElementsAre(3, 4, 5, 19999));
}

TEST_F(PictureSocketTest, AnEndThatHasGoneIsTold) {
    PictureSocket window(environment);
    const FileDescriptor listening = window.Listen();
    PictureWire wire(window.Connect());
    {
        PictureWire other(PictureSocket::Accept(listening));
        other.Send(Numbered(1));
        other.Flush();
    }
    EXPECT_THAT(Numbers(wire, 2), ElementsAre(1)) << "what came before is still to be had";
    EXPECT_FALSE(wire.Receive());
    wire.Send(Numbered(2));
    EXPECT_FALSE(wire.Flush()) << "and no signal ends the process";
}

}  // namespace
}  // namespace tavrin
