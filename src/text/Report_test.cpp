// SPDX-License-Identifier: Apache-2.0
#include "text/Report.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/TestSite.h"
#include "text/Tokens.h"

namespace tavrin {
namespace {

using test::ArchiveOf;
using test::CollectingSink;
using testing::ElementsAre;
using testing::IsEmpty;

class ReportTest : public testing::Test {
  protected:
    ReportTest() { report.SetSink(&sink); }

    CollectingSink sink;
    Report report;
};

TEST_F(ReportTest, AnAlertWaitsUntilItIsTaken) {
    report.Alert("command failed: %s", "xyz");
    EXPECT_TRUE(report.HasPending());
    const auto pending = report.TakePending();
    ASSERT_TRUE(pending);
    EXPECT_EQ(pending->text, "command failed: xyz");
    EXPECT_EQ(pending->file, "");
    EXPECT_FALSE(report.HasPending());
    EXPECT_FALSE(report.TakePending());
}

TEST_F(ReportTest, TheLastAlertStands) {
    report.AlertAt(ArchiveOf("", "a.def"), "first");
    report.Alert("second");
    const auto pending = report.TakePending();
    ASSERT_TRUE(pending);
    EXPECT_EQ(pending->text, "second");
    EXPECT_EQ(pending->file, "");
    EXPECT_FALSE(report.HasPending());
}

TEST_F(ReportTest, TheSinkHearsOfEveryAlertAtOnce) {
    report.Alert("first");
    report.AlertAt(ArchiveOf("", "a.def"), "second");
    EXPECT_THAT(sink.alerts, ElementsAre("first", "a.def near line 1: second"));
    EXPECT_THAT(sink.files, ElementsAre("", "a.def"));
}

TEST_F(ReportTest, AnErrorOnTheFirstLineSaysLineOne) {
    CArchive archive = ArchiveOf("bad input\n", "/dir/box.def");
    std::string token;
    ReadToken(archive, token);
    report.AlertAt(archive, "unexpected input");
    EXPECT_EQ(sink.LastAlert(), "/dir/box.def near line 1: unexpected input");
    EXPECT_EQ(report.TakePending()->file, "/dir/box.def");
}

TEST_F(ReportTest, AnErrorBeforeAnythingIsReadSaysLineOne) {
    report.AlertAt(ArchiveOf("one\ntwo\n"), "unexpected input");
    EXPECT_EQ(sink.LastAlert(), "test.txt near line 1: unexpected input");
}

TEST_F(ReportTest, AnErrorThatWasMetEarlierSaysItsPlace) {
    report.AlertAt("/dir/100%s.tvn", 7, "undefined input %n specified");
    EXPECT_EQ(sink.LastAlert(), "/dir/100%s.tvn near line 7: undefined input %n specified");
    EXPECT_EQ(report.TakePending()->file, "/dir/100%s.tvn");
}

TEST_F(ReportTest, AnErrorFurtherDownSaysItsLine) {
    CArchive archive = ArchiveOf("one\n# two\n\"three\nfour\" five six\n");
    std::string token;
    for (int i = 0; i < 3; ++i) ReadToken(archive, token);
    ASSERT_EQ(token, "five");
    report.AlertAt(archive, "no such %s: %d", "cast", 7);
    EXPECT_EQ(sink.LastAlert(), "test.txt near line 4: no such cast: 7");
}

TEST_F(ReportTest, PercentSignsInPathsAndMessagesAreText) {
    report.AlertAt(ArchiveOf("", "100%s.def"), "bad word %s", "%n%d");
    EXPECT_EQ(sink.LastAlert(), "100%s.def near line 1: bad word %n%d");
    EXPECT_EQ(report.TakePending()->file, "100%s.def");
}

TEST_F(ReportTest, LongMessagesStayWhole) {
    const std::string name(5000, 'n');
    report.AlertAt(ArchiveOf("", "a.def"), "unknown %s", name.c_str());
    EXPECT_EQ(sink.LastAlert(), "a.def near line 1: unknown " + name);
}

TEST_F(ReportTest, ALogLineEndsInCrLf) {
    report.LogLine("WARNING: %d of %s", 2, "boxes");
    report.LogLine("done");
    EXPECT_EQ(sink.log, "WARNING: 2 of boxes\r\ndone\r\n");
}

TEST_F(ReportTest, RawTextGoesToTheLogAsItStands) {
    report.LogRaw("par");
    report.LogRaw("t %d\n");
    EXPECT_EQ(sink.log, "part %d\n");
}

TEST_F(ReportTest, TheLogRaisesNoAlert) {
    report.LogLine("note");
    report.LogRaw("note");
    EXPECT_FALSE(report.HasPending());
    EXPECT_THAT(sink.alerts, IsEmpty());
}

TEST(Report, WithoutASinkTheLogIsDroppedAndTheAlertWaits) {
    Report report;
    report.LogLine("lost");
    report.LogRaw("lost");
    report.Alert("kept");
    EXPECT_EQ(report.TakePending()->text, "kept");
}

TEST_F(ReportTest, HeldAlertsWaitForWhoHoldsThem) {
    {
        HeldAlerts outer(report);
        report.Alert("one %d", 1);
        {
            HeldAlerts inner(report);
            report.AlertAt("file", 3, "two");
            report.LogLine("line");
            ASSERT_EQ(inner.All().size(), 1U);
            EXPECT_EQ(inner.All()[0].text, "file near line 3: two");
            EXPECT_EQ(inner.All()[0].file, "file");
            inner.Release();
            EXPECT_THAT(inner.All(), IsEmpty());
            report.Alert("nobody hears of this");
        }
        EXPECT_EQ(outer.All().size(), 2U);
        EXPECT_THAT(sink.alerts, IsEmpty());
        EXPECT_FALSE(report.HasPending());
        EXPECT_EQ(sink.log, "line\r\n") << "the log goes on";
        outer.Release();
    }
    EXPECT_THAT(sink.alerts, ElementsAre("one 1", "file near line 3: two"));
    report.Alert("three");
    EXPECT_EQ(report.TakePending()->text, "three");
}

TEST_F(ReportTest, ALogThatIsHeldComesToItsHolderAlone) {
    {
        const HeldLog outer(report);
        report.LogLine("one");
        {
            const HeldLog inner(report);
            report.LogRaw("two");
            EXPECT_EQ(inner.Text(), "two");
        }
        report.Alert("an alert");
        EXPECT_EQ(outer.Text(), "one\r\n");
    }
    EXPECT_EQ(sink.log, "");
    EXPECT_THAT(sink.alerts, ElementsAre("an alert")) << "alerts go on";
    report.LogLine("three");
    EXPECT_EQ(sink.log, "three\r\n");
}

TEST(FormatText, PrintsAsPrintfDoes) {
    EXPECT_EQ(FormatText("kill.%d", 12), "kill.12");
    EXPECT_EQ(FormatText("%s", ""), "");
    EXPECT_EQ(FormatText("%s", std::string(3000, 'x').c_str()).size(), 3000U);
}

TEST_F(ReportTest, AnAlertOfAnyLengthIsCutAndSaysSo) {
    report.Alert("%s", std::string(1'000'000, 'x').c_str());
    EXPECT_EQ(sink.LastAlert(), std::string(Report::kLongestAlert, 'x') + " ... (" +
                                    std::to_string(1'000'000 - Report::kLongestAlert) +
                                    " bytes are left out here)");
    EXPECT_EQ(report.TakePending()->text, sink.LastAlert());
    const std::string whole(Report::kLongestAlert, 'y');
    report.Alert("%s", whole.c_str());
    EXPECT_EQ(sink.LastAlert(), whole);
}

TEST_F(ReportTest, ALineOfTheLogIsCutBetweenCharacters) {
    std::string line = "x";
    while (line.size() < 100'000) line += "\u20ac";
    report.LogLine("%s", line.c_str());
    const std::string shown = sink.log.substr(0, sink.log.find(" ... ("));
    EXPECT_EQ(shown, line.substr(0, 1 + (Report::kLongestLine - 1) / 3 * 3));
}

}  // namespace
}  // namespace tavrin
