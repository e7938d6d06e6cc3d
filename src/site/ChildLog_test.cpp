// SPDX-License-Identifier: Apache-2.0
// Whose line is whose, where children write at the same time.
#include "site/ChildLog.h"

#include <gtest/gtest.h>

#include "support/TestSite.h"

namespace tavrin {
namespace {

class ChildLogTest : public testing::Test {
  protected:
    ChildLogTest() { report.SetSink(&sink); }

    test::CollectingSink sink;
    Report report;
    ChildLog log{report};
};

TEST_F(ChildLogTest, AChildAlonePassesAsItComes) {
    log.Begin(1, "render 1");
    for (const char* piece : {"rend", "ering\n\r  5%", "\r 10%\r", "\nopen"}) log.Append(1, piece);
    log.End(1);
    EXPECT_EQ(sink.log, "rendering\n\r  5%\r 10%\r\nopen");
}

TEST_F(ChildLogTest, ChildrenOneAfterTheOtherHaveNoLabels) {
    for (const int id : {1, 2}) {
        log.Begin(id, "render " + std::to_string(id));
        log.Append(id, "a\n");
        log.End(id);
    }
    EXPECT_EQ(sink.log, "a\na\n");
}

TEST_F(ChildLogTest, LinesOfTwoAreWholeAndLabelled) {
    log.Begin(1, "render 1");
    log.Begin(2, "export");
    log.Append(1, "rendering mar");
    log.Append(2, "wrote a.frag\nwro");
    log.Append(1, "ble\r\n");
    log.Append(2, "te a.spv\n");
    EXPECT_EQ(sink.log,
              "[export] wrote a.frag\n"
              "[render 1] rendering marble\r\n"
              "[export] wrote a.spv\n");
}

TEST_F(ChildLogTest, ALineThatWasOpenWhenTheOtherCameIsEndedByTheOthersLine) {
    log.Begin(1, "render 1");
    log.Append(1, "rend");
    log.Begin(2, "render 2");
    log.Append(2, "other\n");
    log.Append(1, "ering\n");
    EXPECT_EQ(sink.log, "rend\n[render 2] other\n[render 1] ering\n");
}

TEST_F(ChildLogTest, ALineThatWasOpenWhenTheOtherCameGoesOnIfNothingHasComeBetween) {
    log.Begin(1, "render 1");
    log.Append(1, "rend");
    log.Begin(2, "render 2");
    log.Append(1, "ering\nmore\n");
    EXPECT_EQ(sink.log, "rendering\n[render 1] more\n");
}

TEST_F(ChildLogTest, TheLabelStaysWhenTheOtherHasEnded) {
    log.Begin(1, "render 1");
    log.Begin(2, "render 2");
    log.Append(1, "be");
    log.End(2);
    log.Append(1, "gun\nmore\n");
    log.End(1);
    EXPECT_EQ(sink.log, "[render 1] begun\n[render 1] more\n");
}

TEST_F(ChildLogTest, WhatIsLeftAtTheEndIsALine) {
    log.Begin(1, "render 1");
    log.Begin(2, "render 2");
    log.Append(1, "no line feed");
    log.End(1);
    log.Append(2, "other\n");
    EXPECT_EQ(sink.log, "[render 1] no line feed\n[render 2] other\n");
}

TEST_F(ChildLogTest, OfProgressTheLastStateIsTold) {
    log.Begin(1, "render 1");
    log.Begin(2, "render 2");
    log.Append(1, "\r  5%\r 50%");
    log.Append(2, "\r  7%\r\n");
    log.Append(1, "\r100%\nwrote it\n");
    EXPECT_EQ(sink.log, "[render 2]   7%\r\n[render 1] 100%\n[render 1] wrote it\n");
}

TEST_F(ChildLogTest, AChildWithoutALabelPassesAsItComesAndIsNoCompany) {
    log.Begin(1, "");
    log.Begin(2, "render 2");
    log.Append(1, "a");
    log.Append(2, "b");
    log.Begin(3, "render 3");
    log.Append(3, "c\n");
    log.Append(1, "d\n");
    EXPECT_EQ(sink.log, "ab\n[render 3] c\nd\n");
}

TEST_F(ChildLogTest, LinesOfSomebodyElseStandOnTheirOwn) {
    log.Begin(1, "render 1");
    log.Append(1, "half");
    log.Note("a note\nanother\n");
    log.Append(1, " a line\n");
    log.Note("a third\n");
    EXPECT_EQ(sink.log, "half\na note\nanother\n a line\na third\n");
}

TEST_F(ChildLogTest, ALineWithoutEndIsBroken) {
    log.Begin(1, "render 1");
    log.Begin(2, "render 2");
    log.Append(1, std::string(4097, 'x'));
    EXPECT_EQ(sink.log, "[render 1] " + std::string(4096, 'x') + "\n");
}

}  // namespace
}  // namespace tavrin
