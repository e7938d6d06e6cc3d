// SPDX-License-Identifier: Apache-2.0
#include "batch/TerminalSink.h"

#include <fcntl.h>
#include <gtest/gtest.h>

#include <memory>

#include "base/FileDescriptor.h"
#include "support/Terminal.h"
#include "support/TestSite.h"

namespace tavrin {
namespace {

class TerminalSinkTest : public testing::Test {
  protected:
    // What has been printed so far.
    std::string Printed() const { return test::ReadFile(directory / "terminal"); }
    std::string PrintedOf(std::initializer_list<std::string_view> pieces) {
        for (const std::string_view piece : pieces) sink->OnLog(piece);
        return Printed();
    }

    test::TempDir directory;
    FileDescriptor file{
        ::open((directory / "terminal").c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600)};
    std::unique_ptr<TerminalSink> sink = std::make_unique<TerminalSink>(file.Get());
};

TEST_F(TerminalSinkTest, LineEndsBecomeThePlatforms) {
    EXPECT_EQ(PrintedOf({"one\r\ntwo\nthree\r\n"}), "one\ntwo\nthree\n");
}

TEST_F(TerminalSinkTest, CarriageReturnsOfProgressPass) {
    EXPECT_EQ(PrintedOf({" 5%\r10%\r\r15%"}), " 5%\r10%\r\r15%");
}

TEST_F(TerminalSinkTest, ALineEndMayBeSplitOverTwoPieces) {
    EXPECT_EQ(PrintedOf({"one\r"}), "one");
    EXPECT_EQ(PrintedOf({"\ntwo\r"}), "one\ntwo");
    EXPECT_EQ(PrintedOf({"three"}), "one\ntwo\rthree");
}

TEST_F(TerminalSinkTest, ControlCharactersCannotSteerTheTerminal) {
    EXPECT_EQ(PrintedOf({std::string_view("\x1b[2J\a\b\0\x7f\v\f\x0e|\t", 13)}), "?[2J???????|\t");
    sink->OnAlert("in \x1b]0;title\x07", "");
    EXPECT_EQ(Printed(), "?[2J???????|\t\nALERT: in ?]0;title?\n");
}

TEST_F(TerminalSinkTest, UpperControlCharactersCannotSteerTheTerminal) {
    EXPECT_EQ(PrintedOf({"a\x9b"
                         "2J"}),
              "a?2J");
    EXPECT_EQ(PrintedOf({"|\xc2\x9b"
                         "2J"}),
              "a?2J|\xc2?2J");
    EXPECT_EQ(PrintedOf({"|\xc2",
                         "\x9b"
                         "2J"}),
              "a?2J|\xc2?2J|\xc2?2J");
}

TEST_F(TerminalSinkTest, LettersOfEveryLanguagePass) {
    constexpr std::string_view kText =
        "Gr\xc3\xbc\xc3\x9f"
        "e \xe2\x82\xac \xe2\x80\x9c \xf0\x9f\x98\x80 \xc2\xa0.";
    EXPECT_EQ(PrintedOf({kText}), kText);
    for (const char& byte : kText) sink->OnLog(std::string_view(&byte, 1));
    EXPECT_EQ(Printed(), std::string(kText) + std::string(kText));
}

TEST_F(TerminalSinkTest, AnAlertIsALineOfItsOwn) {
    sink->OnAlert("first", "");
    sink->OnAlert("second", "file.tvn");
    EXPECT_EQ(Printed(), "ALERT: first\nALERT: second\n");
    EXPECT_TRUE(sink->AnyAlert());
}

TEST_F(TerminalSinkTest, AnAlertEndsTheLineThatStandsOpen) {
    sink->OnLog(" 5%\r10%");
    sink->OnAlert("stopped", "");
    sink->OnLog("rest\r\n");
    sink->OnAlert("again", "");
    EXPECT_EQ(Printed(), " 5%\r10%\nALERT: stopped\nrest\nALERT: again\n");
}

TEST_F(TerminalSinkTest, ACarriageReturnBeforeAnAlertIsForgotten) {
    sink->OnLog("10%\r");
    sink->OnAlert("stopped", "");
    sink->OnLog("next");
    EXPECT_EQ(Printed(), "10%\nALERT: stopped\nnext");
}

TEST_F(TerminalSinkTest, LineEndsAtTheEndOfAnAlertAreNotDoubled) {
    sink->OnAlert("unable to create it\n", "");
    sink->OnAlert("two\r\nlines\r\n\r\n", "");
    EXPECT_EQ(Printed(), "ALERT: unable to create it\nALERT: two\nlines\n");
}

TEST_F(TerminalSinkTest, AQuietTerminalShowsAlertsAlone) {
    sink->SetQuiet();
    sink->OnLog("a note, open");
    sink->OnAlert("trouble", "");
    EXPECT_EQ(Printed(), "ALERT: trouble\n");
}

TEST_F(TerminalSinkTest, ASilencedTerminalShowsNothing) {
    sink->OnLog("before\r\n");
    sink->Silence();
    sink->OnLog("after\r\n");
    sink->OnAlert("after", "");
    EXPECT_EQ(Printed(), "before\n");
}

TEST_F(TerminalSinkTest, AnAlertCountsWhetherItIsShownOrNot) {
    EXPECT_FALSE(sink->AnyAlert());
    sink->OnLog("a note\r\n");
    EXPECT_FALSE(sink->AnyAlert());
    sink->Silence();
    sink->OnAlert("trouble", "");
    EXPECT_TRUE(sink->AnyAlert());
}

TEST_F(TerminalSinkTest, EndingTheLineTwiceEndsItOnce) {
    sink->EndLine();
    EXPECT_EQ(Printed(), "");
    sink->OnLog("10%\r");
    sink->EndLine();
    sink->EndLine();
    EXPECT_EQ(Printed(), "10%\n");
}

TEST_F(TerminalSinkTest, TheEndLeavesTheCursorAtTheStartOfALine) {
    sink->OnLog("open");
    sink.reset();
    EXPECT_EQ(Printed(), "open\n");
}

TEST(TerminalSinkOnATerminal, WhatWouldSteerItIsShown) {
    test::Terminal terminal;
    {
        TerminalSink sink(terminal.Side());
        sink.OnLog("safe\r\n\x1b[2J\rhidden\xe2\x80");
        sink.OnLog("\xae|\r\n\r   5%\r");
        sink.OnLog("  10%\r\n");
        sink.OnAlert(
            "in \x9b"
            "1m\rfine",
            "");
        sink.OnLog("open\r");
        sink.OnAlert("last", "");
        sink.OnLog("\xe2\x80");
    }
    EXPECT_EQ(terminal.Seen(),
              "safe\n\\x1b[2J\\rhidden\\u{202e}|\n\r   5%\r  10%\nALERT: in \\x9b1m\\rfine\n"
              "open\\r\nALERT: last\n\xe2\x80\n");
}

TEST_F(TerminalSinkTest, AQuietTerminalShowsTheLogOfAStepThatHasFailed) {
    sink->SetQuiet();
    sink->OnLog("a step\r\n");
    sink->EndStep(false);
    sink->OnLog("no such\a file\r\n");
    sink->EndStep(true);
    sink->OnLog("because of this\r\n");
    sink->OnAlert("trouble", "");
    sink->EndStep(false);
    sink->OnLog("told elsewhere\r\n");
    sink->ForgetKept();
    sink->EndStep(true);
    EXPECT_EQ(Printed(), "no such? file\nALERT: trouble\nbecause of this\n");
}

TEST_F(TerminalSinkTest, OfALongLogTheEndIsKeptAndTheRestCounted) {
    sink->SetQuiet();
    std::string line = std::string(99, 'x') + "\n";
    constexpr size_t kLines = 10 * TerminalSink::kMostKept / 100;
    for (size_t i = 0; i < kLines; ++i) sink->OnLog(line);
    sink->OnLog("the reason\n");
    sink->EndStep(true);
    const std::string printed = Printed();
    EXPECT_LE(printed.size(), 2 * TerminalSink::kMostKept + 100);
    EXPECT_TRUE(printed.ends_with("x\nthe reason\n"));
    const size_t lineEnd = printed.find('\n');
    const std::string dropped = std::to_string(kLines * 100 + 11 - (printed.size() - lineEnd - 1));
    EXPECT_EQ(printed.substr(0, lineEnd), "(" + dropped + " bytes of the log before this are left out)");
    EXPECT_EQ(printed[lineEnd + 1], 'x');
}

TEST_F(TerminalSinkTest, ATerminalThatIsGoneIsNoTrouble) {
    TerminalSink gone(-1);
    gone.OnLog("note");
    gone.OnAlert("trouble", "");
    EXPECT_TRUE(gone.AnyAlert());
}

}  // namespace
}  // namespace tavrin
