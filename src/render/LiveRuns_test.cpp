// SPDX-License-Identifier: Apache-2.0
// Live for a library without a live command: its filter script and its render script, for each state anew.
#include "render/LiveTest.h"

namespace tavrin {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

// As redirect.pl of the libraries: input, output and errors of a command.
constexpr const char* kRedirect =
    "my ($in, $out, $err, @command) = @ARGV;\n"
    "open(STDIN, '<', $in) or die; open(STDERR, '>', $err) or die;\n"
    "exec $^X, @command;\n";

constexpr const char* kFilter =
    "my ($name, $base) = @ARGV;\n"
    "open my $out, '>', $base or die; print $out <STDIN>; close $out;\n";

constexpr const char* kRenders =
    "my ($name, $number) = @ARGV;\n"
    "die 'no shader' if !-s \"$ENV{TAVRN_WORKDIR}/$name\";\n"
    "Paint(\"$ENV{TAVRN_WORKDIR}/$number\", \"$name.png\");\n";

class LiveRunsTest : public test::LiveTest {
  protected:
    LiveRunsTest() {
        host.Directory().Write("installation/mini/bin/redirect.pl", kRedirect);
        Script("codefilter", kFilter);
        Script("renderit", kRenders);
    }
};

TEST_F(LiveRunsTest, APictureIsMadeByTheScriptsOfARender) {
    live.SwitchOn();
    live.Update();
    ASSERT_TRUE(PumpToPictures(1));
    EXPECT_EQ(pictures[0].path, site.WorkPath(".live/1/0/plastic.png"));
    EXPECT_TRUE(pictures[0].isFinal);
    EXPECT_EQ(test::ReadFile(site.WorkPath(".live/1/plastic")), session.MakeWorkFiles().code);
    EXPECT_THAT(troubles, IsEmpty());
    EXPECT_EQ(Log(), "");
}

TEST_F(LiveRunsTest, RendersKnowNothingOfIt) {
    live.SwitchOn();
    live.Update();
    ASSERT_TRUE(PumpToPictures(1));
    for (const char* file : {"codegenfile", "hintfile", "render_options", "errors.txt", "plastic", "0", "1"})
        EXPECT_FALSE(fs::exists(site.WorkPath(file))) << file;
    EXPECT_EQ(session.m_nextRender, 1);
    EXPECT_FALSE(site.commands.AnyProcessLeft());
}

TEST_F(LiveRunsTest, TheScriptsWorkInTheDirectoryOfTheStateAndShowNothing) {
    site.environment.Set("MRAY_VIEWER", "xdg-open");
    Script("renderit", "Note(\"$ENV{TAVRN_WORKDIR} $ENV{TAVRN_RENOPTS} '$ENV{MRAY_VIEWER}' @ARGV\");\n" +
                           std::string(kRenders));
    live.SwitchOn();
    live.Update();
    ASSERT_TRUE(PumpToPictures(1));
    const std::string directory = site.WorkPath(".live/1");
    EXPECT_THAT(Noted(), ElementsAre(directory + " " + directory + "/render_options '' plastic 0"));
}

TEST_F(LiveRunsTest, TheFilterIsTheOneThatTheSiteNames) {
    site.settings.Store("sourcecodeprefilter", "bin/other");
    Script("other", "Note('other');\n" + std::string(kFilter));
    live.SwitchOn();
    live.Update();
    ASSERT_TRUE(PumpToPictures(1));
    EXPECT_THAT(Noted(), ElementsAre("other"));
}

TEST_F(LiveRunsTest, ANewerStateStopsTheRunBeforeIt) {
    Script("renderit", "if ($ENV{TAVRN_WORKDIR} =~ m{/1$}) { Own(); sleep 1000; }\n" + std::string(kRenders));
    live.SwitchOn();
    Change();
    ASSERT_TRUE(PumpUntil([this] { return OwnCount() == 1; }));
    Change();
    ASSERT_TRUE(PumpToPictures(1));
    EXPECT_EQ(pictures[0].id, 2U);
    EXPECT_TRUE(OwnAreGone());
    EXPECT_THAT(troubles, IsEmpty()) << "that is no failure";
    EXPECT_TRUE(live.WantsPause()) << "changes that follow fast would stop each other's runs";
}

TEST_F(LiveRunsTest, AFilterThatFailsIsTroubleInItsOwnWords) {
    Script("codefilter", "print STDERR \"no such operator\\nand more\\n\"; exit 3;\n");
    live.SwitchOn();
    for (size_t round = 1; round <= 3; ++round) {
        Change();
        ASSERT_TRUE(PumpToTroubles(round));
    }
    EXPECT_EQ(troubles[0], "codefilter: no such operator");
    EXPECT_EQ(Log(), "[live] no such operator\r\n[live] and more\r\n") << "once for all";
    EXPECT_TRUE(live.IsOn()) << "it is the network's fault";
}

TEST_F(LiveRunsTest, ARenderThatFailsIsTroubleInItsOwnWords) {
    Script("renderit", "print \"line 7: syntax error\\n\"; exit 1;\n");
    live.SwitchOn();
    live.Update();
    ASSERT_TRUE(PumpToTroubles(1));
    EXPECT_EQ(troubles[0], "renderit: line 7: syntax error");
}

TEST_F(LiveRunsTest, ARenderWithoutAWordOrAPictureIsTrouble) {
    Script("renderit", "exit 4;\n");
    live.SwitchOn();
    live.Update();
    ASSERT_TRUE(PumpToTroubles(1));
    EXPECT_EQ(troubles[0], "renderit: it ended with status 4");
    Script("renderit", "exit 0;\n");
    Change();
    ASSERT_TRUE(PumpToTroubles(2));
    EXPECT_EQ(troubles[1], "bin/renderit left no picture in " + site.WorkPath(".live/2/0"));
}

TEST_F(LiveRunsTest, ARenderThatHangsIsEndedAndThreeOfThemSwitchLiveOff) {
    site.settings.Store("limit.rendertime", "1");
    site.ReadLimits();
    Script("renderit", "Own(); sleep 1000;\n");
    live.SwitchOn();
    for (size_t failure = 1; failure <= 3; ++failure) {
        Change();
        ASSERT_TRUE(PumpToTroubles(failure));
    }
    EXPECT_THAT(troubles[0], HasSubstr("The live run of renderit was ended: it gave no answer within 1 s"));
    EXPECT_FALSE(live.IsOn());
    EXPECT_TRUE(PumpUntilNothingIsLeft());
    EXPECT_TRUE(OwnAreGone());
}

TEST_F(LiveRunsTest, ARenderThatFloodsIsNoMatter) {
    Script("renderit", "print 'x' x 99, \"\\n\" for 1 .. 20000;\n" + std::string(kRenders));
    live.SwitchOn();
    live.Update();
    ASSERT_TRUE(PumpToPictures(1));
    EXPECT_EQ(Log(), "");
}

TEST_F(LiveRunsTest, ALiveCommandOfAnotherLibraryIsNotThisOnes) {
    Script("live", "Note('live');\n");
    site.settings.Store("livecommand", "bin/live");
    site.settingsLibrary = "other";
    live.SwitchOn();
    live.Update();
    ASSERT_TRUE(PumpToPictures(1));
    EXPECT_THAT(Noted(), IsEmpty());
}

TEST_F(LiveRunsTest, SwitchingOffStopsTheRun) {
    Script("renderit", "Own(); sleep 1000;\n");
    live.SwitchOn();
    live.Update();
    ASSERT_TRUE(PumpUntil([this] { return OwnCount() == 1; }));
    live.SwitchOff();
    EXPECT_TRUE(PumpUntilNothingIsLeft());
    EXPECT_TRUE(OwnAreGone());
    EXPECT_THAT(pictures, IsEmpty());
    EXPECT_THAT(troubles, IsEmpty());
}

}  // namespace
}  // namespace tavrin
