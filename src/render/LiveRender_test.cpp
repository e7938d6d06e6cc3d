// SPDX-License-Identifier: Apache-2.0
// Live with a live command: which states it gets, what becomes of its answers, and every way in which it can
// misbehave.
#include "render/LiveTest.h"

namespace tavrin {
namespace {

namespace fs = std::filesystem;
using test::kPaints;
using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

class LiveRenderTest : public test::LiveTest {
  protected:
    LiveRenderTest() {
        site.settings.Store("livecommand", "bin/live");
        Script("live", kPaints);
    }
};

TEST_F(LiveRenderTest, AStateIsWhatARenderWouldFind) {
    document.m_renderOptions["SIZE"] = "320,240";
    live.SwitchOn();
    live.Update();
    ASSERT_TRUE(PumpToPictures(1));
    const std::string directory = site.WorkPath(".live/1");
    EXPECT_EQ(pictures[0].path, directory + "/p.png");
    EXPECT_EQ(pictures[0].id, 1U);
    EXPECT_TRUE(pictures[0].isFinal);
    const WorkFiles files = session.MakeWorkFiles();
    EXPECT_EQ(test::ReadFile(directory + "/codegenfile"), files.code);
    EXPECT_EQ(test::ReadFile(directory + "/linemap"), files.lines);
    EXPECT_EQ(test::ReadFile(directory + "/hintfile"), files.hints);
    EXPECT_EQ(test::ReadFile(directory + "/render_options"), "setenv SIZE \"320,240\"\r\n");
    EXPECT_EQ(test::ReadFile(directory + "/name"), "plastic\n");
    EXPECT_THAT(troubles, IsEmpty());
}

TEST_F(LiveRenderTest, BoxesThatTheErrorsOfAStateNameAreMarkedUntilThereIsAPicture) {
    Script("live",
           "Next();\nprint \"note x: line 1 (box Noise_4): too\\nerror x: line 2 (box Link_1): bad\\n\";\n"
           "Next();\nprint \"note x: line 1 (box Noise_4): too\\nerror other\\n\";\n" +
               std::string(kPaints));
    live.SwitchOn();
    Change();
    ASSERT_TRUE(PumpUntil([this] { return troubles.size() == 1; }));
    ASSERT_NE(session.marks.Find("Link_1"), nullptr);
    EXPECT_EQ(*session.marks.Find("Link_1"), "x: line 2 (box Link_1): bad");
    EXPECT_NE(session.marks.Find("Noise_4"), nullptr) << "of what is told besides";
    Change();
    ASSERT_TRUE(PumpUntil([this] { return troubles.size() == 2; }));
    EXPECT_EQ(session.marks.Find("Link_1"), nullptr);
    EXPECT_NE(session.marks.Find("Noise_4"), nullptr) << "although the log has heard of it before";
    Change();
    ASSERT_TRUE(PumpToPictures(1));
    EXPECT_TRUE(session.marks.IsEmpty());
}

TEST_F(LiveRenderTest, RendersKnowNothingOfIt) {
    live.SwitchOn();
    Change();
    ASSERT_TRUE(PumpToPictures(1));
    for (const char* file : {"codegenfile", "hintfile", "render_options", "errors.txt", "plastic", "1"})
        EXPECT_FALSE(fs::exists(site.WorkPath(file))) << file;
    EXPECT_EQ(session.m_nextRender, 1);
    EXPECT_THAT(session.History().Entries(), IsEmpty());
    EXPECT_EQ(session.records.Newest(), nullptr);
    EXPECT_FALSE(site.commands.AnyChildRunning());
    EXPECT_FALSE(document.IsModified());
}

TEST_F(LiveRenderTest, TheCommandIsStartedOnceWithItsWords) {
    site.settings.Store("livecommand", "bin/live \"two words\" three  # and no comment");
    Script("live", "Note(join('|', @ARGV));\n" + std::string(kPaints));
    live.SwitchOn();
    for (int round = 1; round <= 3; ++round) {
        Change();
        ASSERT_TRUE(PumpToPictures(static_cast<size_t>(round)));
    }
    EXPECT_THAT(Noted(), ElementsAre("two words|three"));
}

TEST_F(LiveRenderTest, AStateThatIsTheSameIsNotSentAgain) {
    live.SwitchOn();
    Change();
    ASSERT_TRUE(PumpToPictures(1));
    live.Update();
    live.Update();
    Change();
    ASSERT_TRUE(PumpToPictures(2));
    EXPECT_EQ(pictures[1].id, 2U);
}

TEST_F(LiveRenderTest, WhileItIsOffNothingIsStarted) {
    Change();
    EXPECT_FALSE(site.commands.AnyLineChildLeft());
    EXPECT_FALSE(fs::exists(site.WorkPath(".live")));
}

TEST_F(LiveRenderTest, SwitchingOffEndsTheCommandAndLeavesNoState) {
    live.SwitchOn();
    Change();
    ASSERT_TRUE(PumpToPictures(1));
    live.SwitchOff();
    EXPECT_FALSE(live.IsOn());
    EXPECT_TRUE(PumpUntilNothingIsLeft());
    EXPECT_TRUE(fs::is_empty(site.WorkPath(".live")));
    live.SwitchOn();
    live.Update();
    EXPECT_TRUE(PumpToPictures(2)) << "the same network gives its picture again";
}

TEST_F(LiveRenderTest, CoarsePicturesComeBeforeTheFinalOne) {
    Script("live",
           "while (my $dir = Next()) {\n"
           "  print \"coarse \", Paint($dir, 'c.png'), \"\\n\" for 1, 2;\n"
           "  print \"picture \", Paint($dir, 'p.png'), \"\\n\";\n"
           "}\n");
    live.SwitchOn();
    Change();
    ASSERT_TRUE(PumpToPictures(3));
    EXPECT_FALSE(pictures[0].isFinal);
    EXPECT_FALSE(pictures[1].isFinal);
    EXPECT_TRUE(pictures[2].isFinal);
    EXPECT_EQ(pictures[0].id, pictures[2].id);
}

// While it refines the first, the second waits in its pipe; the third and the fourth come to nothing, and the
// fifth is what the network is at the end.
TEST_F(LiveRenderTest, TheLastStateWinsAndAtMostOneWaits) {
    Script("live",
           "my $first = Next();\n"
           "print \"coarse \", Paint($first, 'c.png'), \"\\n\";\n"
           "Wait('go');\n"
           "print \"dropped\\n\";\n" +
               std::string(kPaints));
    live.SwitchOn();
    Change();
    ASSERT_TRUE(PumpToPictures(1));
    for (int change = 0; change < 4; ++change) Change();
    EXPECT_TRUE(fs::exists(site.WorkPath(".live/2")));
    EXPECT_FALSE(fs::exists(site.WorkPath(".live/3"))) << "it is not even written";
    host.Directory().Write("work/go", "");
    ASSERT_TRUE(PumpToPictures(3));
    EXPECT_EQ(pictures[1].id, 2U);
    EXPECT_EQ(pictures[2].id, 3U);
    EXPECT_EQ(test::ReadFile(site.WorkPath(".live/3/render_options")), "setenv STEP \"5\"\r\n");
    EXPECT_THAT(troubles, IsEmpty());
}

TEST_F(LiveRenderTest, BeforeTheFirstPictureNothingMoreIsSent) {
    Script("live", "my $dir = Next();\nWait('go');\nprint \"picture \", Paint($dir, 'p.png'), \"\\n\";\n" +
                       std::string(kPaints));
    live.SwitchOn();
    Change();
    Change();
    Change();
    EXPECT_FALSE(fs::exists(site.WorkPath(".live/2")));
    host.Directory().Write("work/go", "");
    ASSERT_TRUE(PumpToPictures(2));
    EXPECT_EQ(test::ReadFile(site.WorkPath(".live/2/render_options")), "setenv STEP \"3\"\r\n");
}

TEST_F(LiveRenderTest, AnErrorIsTroubleAndLiveGoesOn) {
    Script("live",
           "Next();\nprint \"note first line\\nnote second line\\nerror the shader is broken\\n\";\n" +
               std::string(kPaints));
    live.SwitchOn();
    Change();
    ASSERT_TRUE(PumpToTroubles(1));
    EXPECT_THAT(troubles, ElementsAre("the shader is broken"));
    EXPECT_THAT(Log(), HasSubstr("[live] first line\r\n[live] second line\r\n"));
    Change();
    EXPECT_TRUE(PumpToPictures(1));
    EXPECT_THAT(Log(), Not(HasSubstr("WARNING")));
}

TEST_F(LiveRenderTest, NotesThatComeWithEachStateAreSaidOnce) {
    Script("live", "while (Next()) { print \"note the same\\nerror broken\\n\"; }\n");
    live.SwitchOn();
    for (size_t round = 1; round <= 3; ++round) {
        Change();
        ASSERT_TRUE(PumpToTroubles(round));
    }
    EXPECT_EQ(Log(), "[live] the same\r\n");
}

TEST_F(LiveRenderTest, AFloodOfNotesIsCutInTheLog) {
    Script("live",
           "my $dir = Next();\nprint 'note ', 'x' x 99, \"\\n\" for 1 .. 20000;\n"
           "print \"picture \", Paint($dir, 'p.png'), \"\\n\";\nNext();\n");
    live.SwitchOn();
    Change();
    ASSERT_TRUE(PumpToPictures(1));
    EXPECT_LT(Log().size(), 40'000U);
    EXPECT_THAT(Log(), HasSubstr("more notes are left out here"));
}

TEST_F(LiveRenderTest, WhatTheGenerationRemarksIsSaidOnceAndNoAlert) {
    document.m_boxes.front()->lacksTemplates = true;
    live.SwitchOn();
    for (size_t round = 1; round <= 3; ++round) {
        Change();
        ASSERT_TRUE(PumpToPictures(round));
    }
    const std::string log = Log();
    const size_t first = log.find("is a copy without templates");
    ASSERT_NE(first, std::string::npos);
    EXPECT_EQ(log.find("is a copy without templates", first + 1), std::string::npos);
    EXPECT_THAT(Alerts(), IsEmpty());
}

TEST_F(LiveRenderTest, AnotherDocumentIsRemarkedOnAnew) {
    document.m_boxes.front()->lacksTemplates = true;
    live.SwitchOn();
    Change();
    ASSERT_TRUE(PumpToPictures(1));
    const size_t before = Log().size();
    live.ForgetSaid();
    Change();
    ASSERT_TRUE(PumpToPictures(2));
    EXPECT_THAT(Log().substr(before), HasSubstr("is a copy without templates"));
}

TEST_F(LiveRenderTest, AShaderThatCannotBeNamedIsTroubleAndNoAlert) {
    document.SetPath("/documents/two words.tvn");
    live.SwitchOn();
    live.Update();
    EXPECT_THAT(troubles, ElementsAre("shader name contains whitespace characters"));
    EXPECT_THAT(Alerts(), IsEmpty());
    document.SetPath("/documents/words.tvn");
    live.Update();
    EXPECT_TRUE(PumpToPictures(1));
    EXPECT_EQ(test::ReadFile(site.WorkPath(".live/1/name")), "words\n");
}

TEST_F(LiveRenderTest, AnEmptyDeskAndALockedOneAreWaitedFor) {
    live.SwitchOn();
    live.Update();
    ASSERT_TRUE(PumpToPictures(1));
    document.lock = 1;
    live.Update();
    document.lock = 0;
    const auto box = std::exchange(document.m_boxes.front(), nullptr);
    document.m_boxes.clear();
    live.Update();
    EXPECT_THAT(troubles, ElementsAre("Live waits: the desk is locked", "Live waits: the desk is empty"));
    Add(test::MakeLink("Link", 1));
    live.Update();
    EXPECT_TRUE(PumpToPictures(2)) << "the same state again, since the trouble is over";
}

TEST_F(LiveRenderTest, AStateThatCannotBeWrittenIsTrouble) {
    host.Directory().Write("work/.live", "a file in the way");
    live.SwitchOn();
    live.Update();
    ASSERT_THAT(troubles, SizeIs(1));
    EXPECT_THAT(troubles[0], HasSubstr("/work/.live/1: "));
    fs::remove(site.WorkPath(".live"));
    live.Update();
    EXPECT_TRUE(PumpToPictures(1));
}

TEST_F(LiveRenderTest, OfManyStatesTheDirectoriesOfTheLastPicturesStay) {
    live.SwitchOn();
    for (size_t round = 1; round <= 20; ++round) {
        Change();
        ASSERT_TRUE(PumpToPictures(round));
    }
    EXPECT_THAT(LiveDirectories(), ElementsAre("18", "19", "20"));
}

// Pictures may still be read while those that came later gave none.
TEST_F(LiveRenderTest, APictureStaysWhileLaterStatesGiveNone) {
    Script("live",
           "my $dir = Next();\nprint \"picture \", Paint($dir, 'p.png'), \"\\n\";\n"
           "while (Next()) { print \"error broken\\n\"; }\n");
    live.SwitchOn();
    Change();
    ASSERT_TRUE(PumpToPictures(1));
    for (size_t round = 1; round <= 6; ++round) {
        Change();
        ASSERT_TRUE(PumpToTroubles(round));
    }
    EXPECT_THAT(LiveDirectories(), ElementsAre("1", "6", "7"));
    EXPECT_TRUE(fs::exists(pictures[0].path));
}

TEST_F(LiveRenderTest, AnotherCommandTakesThePlaceOfTheOneBefore) {
    Script("other", "Note(\"other\");\n" + std::string(kPaints));
    live.SwitchOn();
    live.Update();
    ASSERT_TRUE(PumpToPictures(1));
    site.settings.Store("livecommand", "bin/other");
    live.Update();
    ASSERT_TRUE(PumpToPictures(2));
    EXPECT_THAT(Noted(), ElementsAre("other"));
    live.SwitchOff();
    EXPECT_TRUE(PumpUntilNothingIsLeft());
}

TEST_F(LiveRenderTest, AnotherEnvironmentStartsTheCommandAnew) {
    Script("live", "Note($ENV{TAVRN_DEBUG} // 'none');\n" + std::string(kPaints));
    site.environment.Unset("TAVRN_DEBUG");
    live.SwitchOn();
    Change();
    ASSERT_TRUE(PumpToPictures(1));
    site.environment.Set("TAVRN_DEBUG", "1");
    Change();
    ASSERT_TRUE(PumpToPictures(2));
    EXPECT_THAT(Noted(), ElementsAre("none", "1"));
}

// More than a hand that moves could wait for, on any machine.
TEST_F(LiveRenderTest, ALargeNetworkWantsThatTheHandRests) {
    EXPECT_FALSE(live.WantsPause());
    for (int wid = 2; wid <= 20'000; ++wid) Add(test::MakeLink("Link", wid));
    live.SwitchOn();
    Change();
    EXPECT_TRUE(live.WantsPause());
    EXPECT_TRUE(PumpToPictures(1));
}

// How it fails

struct Misdeed {
    const char* name;
    const char* script;  // after a state was read into $dir
    const char* told;    // what Live says of it
};

void PrintTo(const Misdeed& misdeed, std::ostream* out) { *out << misdeed.name; }

const Misdeed kMisdeeds[] = {
    {"AnswersNonsense", "print \"hello\\n\"; Next();", "it answered \"hello\""},
    {"AnswersNothing", "print \"\\n\"; Next();", "it answered \"\""},
    {"AnswersControls", "print \"\\e[2J\\n\"; Next();", "it answered \"\\x1b[2J\""},
    {"AnswersTwice", "my $p = Paint($dir, 'p.png'); print \"picture $p\\npicture $p\\n\"; Next();",
     "it answered what it was not asked: \"picture "},
    {"Hangs", "sleep 1000;", "it gave no answer within 1 s; limit.rendertime in the site definitions"},
    {"HangsBehindItsFirstPicture", "print 'coarse ', Paint($dir, 'c.png'), \"\\n\"; sleep 1000;",
     "it gave no answer within 1 s"},
    {"FloodsALine", "print 'x' x 1000 while 1;", "it wrote a line of more than 64 KB"},
    {"FloodsLines", "print \"y\\n\" while 1;", "it answered \"y\""},
    {"Dies", "exit 3;", "it ended with status 3"},
    {"DiesBehindItsFirstPicture", "print 'coarse ', Paint($dir, 'c.png'), \"\\n\"; exit 4;",
     "it ended with status 4"},
    {"IsKilled", "kill 'KILL', $$; sleep 1000;", "it was ended by signal 9"},
    {"IgnoresTheSignalThatAsks", "$SIG{TERM} = 'IGNORE'; print \"hello\\n\"; sleep 1000 while 1;",
     "it answered \"hello\""},
    {"ClosesItsOutput", "close STDOUT; sleep 1000;", "it closed its output"},
    {"LeavesAChildWithItsOutput", "if (!fork) { Own(); sleep 1000; exit } exit 5;", "it ended with status 5"},
    {"PaintsElsewhere", "print \"picture \", Paint(\"$dir/../..\", 'p.png'), \"\\n\"; Next();",
     "which is not in the directory of its state"},
    {"PaintsBesideItsDirectory",
     "mkdir \"${dir}0\"; print \"picture \", Paint(\"${dir}0\", 'p.png'), \"\\n\"; Next();",
     "which is not in the directory of its state"},
    {"LeadsElsewhere", "symlink '/etc/passwd', \"$dir/p.png\"; print \"picture $dir/p.png\\n\"; Next();",
     "which is not in the directory of its state"},
    {"NamesNoFullPath", "Paint($dir, 'p.png'); chdir $dir; print \"picture p.png\\n\"; Next();", "p.png\""},
    {"NamesNoPath", "print \"picture\\n\"; Next();", "where there is no picture"},
    {"PaintsNothing", "print \"coarse $dir/none.png\\n\"; Next();",
     "where there is no picture: No such file or directory"},
    {"PaintsADirectory", "mkdir \"$dir/p.png\"; print \"picture $dir/p.png\\n\"; Next();",
     "which is no file"},
    {"DropsTheLastState", "print \"dropped\\n\"; Next();", "it dropped a state that no newer one follows"},
};

class LiveMisdeeds : public LiveRenderTest, public testing::WithParamInterface<Misdeed> {
  protected:
    LiveMisdeeds() {
        site.settings.Store("limit.rendertime", "1");
        site.ReadLimits();
        Script("live", "Own();\nmy $dir = Next();\n" + std::string(GetParam().script) + "\nsleep 1000;\n");
    }
};

TEST_P(LiveMisdeeds, AreToldAndEndedAndTheNextChangeStartsAnew) {
    live.SwitchOn();
    Change();
    ASSERT_TRUE(PumpToTroubles(1));
    EXPECT_THAT(troubles[0], AllOf(HasSubstr("The live command was ended: "), HasSubstr(GetParam().told)));
    EXPECT_THAT(Log(), HasSubstr("WARNING: The live command was ended: "));
    EXPECT_TRUE(PumpUntilNothingIsLeft());
    EXPECT_TRUE(OwnAreGone());
    EXPECT_TRUE(live.IsOn());
    Script("live", kPaints);
    const size_t before = pictures.size();
    Change();
    EXPECT_TRUE(PumpUntil([&] { return pictures.size() > before && pictures.back().isFinal; }));
    EXPECT_THAT(Alerts(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(Each, LiveMisdeeds, testing::ValuesIn(kMisdeeds),
                         [](const auto& test) { return std::string(test.param.name); });

TEST_F(LiveRenderTest, ACommandThatIsNotThereIsToldOf) {
    fs::remove(site.LibraryPath("bin/live"));
    live.SwitchOn();
    Change();
    ASSERT_TRUE(PumpToTroubles(1));
    EXPECT_EQ(troubles[0], "The live command was ended: it ended with status 2");
    EXPECT_THAT(Log(), HasSubstr("bin/live")) << "perl says which file";
}

TEST_F(LiveRenderTest, ALauncherThatIsNotThereIsToldOf) {
    site.environment.Set("PATH", "/nowhere");
    live.SwitchOn();
    Change();
    ASSERT_TRUE(PumpToTroubles(1));
    EXPECT_EQ(troubles[0], "The live command was ended: it cannot be started: No such file or directory");
}

TEST_F(LiveRenderTest, AFailureIsNoReasonToTryTheSameStateAgain) {
    Script("live", "Next();\nexit 3;\n");
    live.SwitchOn();
    Change();
    ASSERT_TRUE(PumpToTroubles(1));
    live.Update();
    live.Update();
    EXPECT_TRUE(live.IsOn());
    EXPECT_THAT(troubles, SizeIs(1));
    EXPECT_FALSE(fs::exists(site.WorkPath(".live/2")));
}

TEST_F(LiveRenderTest, AChangeThatWaitedIsTakenAfterAFailure) {
    Script("live",
           "my $dir = Next();\nif (!-e \"$ENV{TAVRN_WORKDIR}/failed\") {\n  Wait('go');\n"
           "  open my $out, '>', \"$ENV{TAVRN_WORKDIR}/failed\"; exit 3;\n}\n"
           "Answer($dir);\n" +
               std::string(kPaints));
    live.SwitchOn();
    Change();
    Change();
    host.Directory().Write("work/go", "");
    ASSERT_TRUE(PumpToPictures(1));
    EXPECT_THAT(troubles, SizeIs(1));
    EXPECT_EQ(test::ReadFile(site.WorkPath(".live/2/render_options")), "setenv STEP \"2\"\r\n");
}

TEST_F(LiveRenderTest, ThreeFailuresInARowSwitchLiveOff) {
    Script("live", "Next();\nexit 3;\n");
    live.SwitchOn();
    for (size_t failure = 1; failure <= 3; ++failure) {
        EXPECT_TRUE(live.IsOn());
        Change();
        ASSERT_TRUE(PumpToTroubles(failure));
    }
    EXPECT_FALSE(live.IsOn());
    EXPECT_EQ(switchedOff, 1);
    EXPECT_EQ(
        troubles[2],
        "The live command was ended: it ended with status 3. Live is switched off after 3 failures in a row");
    EXPECT_THAT(Log(), HasSubstr("WARNING: Live is switched off after 3 failures in a row\r\n"));
    EXPECT_TRUE(PumpUntilNothingIsLeft());
    EXPECT_TRUE(fs::is_empty(site.WorkPath(".live")));
    Change();
    EXPECT_FALSE(site.commands.AnyLineChildLeft());
    Script("live", kPaints);
    live.SwitchOn();
    live.Update();
    EXPECT_TRUE(PumpToPictures(1)) << "who switches it on again gets another chance";
}

TEST_F(LiveRenderTest, APictureBetweenFailuresStartsTheCountAnew) {
    Script("live", "my $dir = Next();\nAnswer($dir);\nNext();\nexit 3;\n");
    live.SwitchOn();
    for (size_t round = 1; round <= 4; ++round) {
        Change();
        ASSERT_TRUE(PumpToPictures(round));
        Change();
        ASSERT_TRUE(PumpToTroubles(round));
    }
    EXPECT_TRUE(live.IsOn());
}

TEST_F(LiveRenderTest, NotesAndCoarsePicturesKeepASlowOneAlive) {
    site.settings.Store("limit.rendertime", "1");
    site.ReadLimits();
    Script(
        "live",
        "my $dir = Next();\nfor (1 .. 15) { select undef, undef, undef, 0.1; print \"note $_\\n\"; }\n"
        "print 'coarse ', Paint($dir, 'c.png'), \"\\n\";\n"
        "for (1 .. 15) { select undef, undef, undef, 0.1; print 'coarse ', Paint($dir, 'c.png'), \"\\n\"; }\n"
        "Answer($dir);\n" +
            std::string(kPaints));
    live.SwitchOn();
    Change();
    ASSERT_TRUE(
        PumpUntil([this] { return !troubles.empty() || (!pictures.empty() && pictures.back().isFinal); }));
    EXPECT_THAT(troubles, IsEmpty());
}

// Which a script that refines for ever would do, too.
TEST_F(LiveRenderTest, OnceANewerStateWaitsTheyDoNot) {
    site.settings.Store("limit.rendertime", "1");
    site.ReadLimits();
    Script(
        "live",
        "my $dir = Next();\n"
        "while (1) { print 'coarse ', Paint($dir, 'c.png'), \"\\n\"; select undef, undef, undef, 0.02; }\n");
    live.SwitchOn();
    Change();
    ASSERT_TRUE(PumpToPictures(1));
    Change();
    ASSERT_TRUE(PumpToTroubles(1));
    EXPECT_THAT(troubles[0], HasSubstr("it gave no answer within 1 s"));
}

TEST_F(LiveRenderTest, SwitchingOffLeavesNothingOfACommandThatHeedsNothing) {
    Script("live",
           "$SIG{$_} = 'IGNORE' for qw(TERM INT HUP);\nOwn();\nif (!fork) { Own(); setpgrp; sleep 1000 while "
           "1; }\n"
           "Answer(Next());\nsleep 1000 while 1;\n");
    live.SwitchOn();
    Change();
    ASSERT_TRUE(PumpToPictures(1));
    ASSERT_TRUE(PumpUntil([this] { return OwnCount() == 2; }));
    live.SwitchOff();
    EXPECT_TRUE(PumpUntilNothingIsLeft());
    EXPECT_TRUE(OwnAreGone());
}

TEST_F(LiveRenderTest, TheEndOfTheProgramEndsItWithoutAWord) {
    Script("live", "Own();\nAnswer(Next());\nsleep 1000 while 1;\n");
    live.SwitchOn();
    Change();
    ASSERT_TRUE(PumpToPictures(1));
    site.commands.EndChildren(std::chrono::milliseconds(0));
    EXPECT_TRUE(OwnAreGone());
    Pump();
    EXPECT_THAT(troubles, IsEmpty());
}

}  // namespace
}  // namespace tavrin
