// SPDX-License-Identifier: Apache-2.0
#include "LineInbox.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <thread>

namespace tavrin::mray {
namespace {

class LineInboxTest : public testing::Test {
  protected:
    LineInboxTest() { EXPECT_EQ(pipe(ends_), 0); }
    ~LineInboxTest() override {
        close(ends_[0]);
        finish();
    }
    void send(const std::string& text) {
        EXPECT_EQ(write(ends_[1], text.data(), text.size()), static_cast<ssize_t>(text.size()));
    }
    void finish() {
        if (ends_[1] >= 0) {
            close(ends_[1]);
            ends_[1] = -1;
        }
    }
    int ends_[2]{-1, -1};
};

TEST_F(LineInboxTest, GivesLineByLineAndThenTheEnd) {
    LineInbox inbox(ends_[0]);
    send("one\n\ntwo\nthr");
    EXPECT_EQ(inbox.wait(), "one");
    EXPECT_EQ(inbox.wait(), "");
    EXPECT_EQ(inbox.wait(), "two");
    send("ee\ncut");
    EXPECT_EQ(inbox.wait(), "three");
    finish();
    EXPECT_EQ(inbox.wait(), std::nullopt);
    EXPECT_EQ(inbox.wait(), std::nullopt);
}

TEST_F(LineInboxTest, TellsOfALineWithoutWaiting) {
    LineInbox inbox(ends_[0]);
    EXPECT_FALSE(inbox.hasLine());
    send("half");
    EXPECT_FALSE(inbox.hasLine());
    send(" and half\n");
    EXPECT_TRUE(inbox.hasLine());
    EXPECT_TRUE(inbox.hasLine());
    EXPECT_EQ(inbox.wait(), "half and half");
    EXPECT_FALSE(inbox.hasLine());
    finish();
    EXPECT_FALSE(inbox.hasLine());
}

TEST_F(LineInboxTest, WaitsForALineSoLongAsItMay) {
    LineInbox inbox(ends_[0]);
    EXPECT_FALSE(inbox.hasLine(std::chrono::milliseconds(1)));
    std::thread hand([this] {
        send("he");
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
        send("re\n");
    });
    EXPECT_TRUE(inbox.hasLine(std::chrono::minutes(1)));
    hand.join();
    EXPECT_TRUE(inbox.hasLine(std::chrono::minutes(1)));
    EXPECT_EQ(inbox.wait(), "here");
    finish();
    EXPECT_FALSE(inbox.hasLine(std::chrono::minutes(1))) << "nothing comes behind the end";
}

TEST_F(LineInboxTest, ALineWithoutAnEndIsRefused) {
    LineInbox inbox(ends_[0]);
    const std::string piece(LineInbox::kLongestLine / 2, 'x');
    for (int i = 0; i < 4; ++i) {
        send(piece);
        for (int k = 0; k < 64; ++k) {
            EXPECT_FALSE(inbox.hasLine());
        }
    }
    EXPECT_THROW(inbox.wait(), std::runtime_error);
}

}  // namespace
}  // namespace tavrin::mray
