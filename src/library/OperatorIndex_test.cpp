// SPDX-License-Identifier: Apache-2.0
#include "library/OperatorIndex.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <utime.h>

#include <algorithm>
#include <filesystem>
#include <sstream>

#include "base/Files.h"
#include "library/SavedNetwork.h"
#include "support/SmallLibrary.h"

namespace tavrin {
namespace {

using Pace = OperatorIndex::Pace;
using Source = KnownOperator::Source;
using test::ReadFile;
using test::SleepUntil;
using test::SmallLibrary;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

// Writes the operator to "runs", and its file to the output with what it includes in place of "@file". A
// definition that begins with "refused" fails with a message, one with "mute" without, and one with "stuck"
// says so and never ends; "await" waits for the file "go".
constexpr const char* kPreprocessor = R"(my ($in, $out, $err, $spp, $def) = @ARGV;
my $work = $ENV{TAVRN_WORKDIR};
(my $name = $def) =~ s/.*\d\.//;
open my $runs, '>>', "$work/runs"; syswrite $runs, "$name\n";
open STDERR, '>', $err;
open my $d, '<', $def; local $/; my $text = <$d>;
my $lines = "#source lines\n#file $def\n";
print STDERR "a warning\n$name is refused\n" and exit 3 if $text =~ /^refused/;
exit 4 if $text =~ /^mute/;
if ($text =~ /^stuck/) { open my $s, '>', "$work/stuck.$name"; close $s; sleep 1 while 1; }
if ($text =~ /^await/) { select undef, undef, undef, 0.01 until -e "$work/go"; $text =~ s/.*\n//; }
$text =~ s{^\@(\S+)$}{ $lines .= "#file $1\n"; open my $i, '<', $1; <$i> }me;
open my $o, '>', $out; print $o $text, $lines;
)";

constexpr const char* kNoise =
    "alias Cloud\nboxhelp {\nSoft clouds.\n}\ninput scale { float { 1 0 9 0 \"%g\" } }\noutput result { "
    "float out }\n";

class OperatorIndexTest : public testing::Test {
  protected:
    std::vector<std::string> Runs() const {
        std::vector<std::string> runs;
        std::istringstream file(ReadFile(library.own.site.WorkPath("runs")));
        for (std::string line; std::getline(file, line);) runs.push_back(line);
        return runs;
    }
    void ForgetRuns() const { std::filesystem::remove(library.own.site.WorkPath("runs")); }
    std::string PathOf(const std::string& name) const { return library.own.directory / ("lib/menu/" + name); }
    // A file that is long unchanged: what was read of it is certain.
    void AddOld(const std::string& name, std::string_view text) {
        library.Add(name, text);
        MakeOld(PathOf(name));
    }
    static void MakeOld(const std::string& path) {
        const utimbuf times{1000000000, 1000000000 + s_age++};
        ASSERT_EQ(::utime(path.c_str(), &times), 0);
    }
    std::vector<std::string> WorkFiles() const {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(library.own.site.directories.workDir))
            names.push_back(entry.path().filename());
        return names;
    }

    SmallLibrary library;
    static inline int s_age = 0;
};

// What is there at once

TEST_F(OperatorIndexTest, NamesAndMenusAreThereBeforeAnythingIsRead) {
    library.Add("0100.Patterns/0010.Soft/0010.Noise", kNoise);
    library.Add("0200.Mix", "");
    library.Scan();
    const auto& operators = library.index->Operators();
    ASSERT_EQ(operators.size(), 2U);
    EXPECT_EQ(operators[0].name, "Noise");
    EXPECT_EQ(operators[0].menu, "Patterns > Soft");
    EXPECT_EQ(operators[0].id, COpRegistry::kFirstId);
    EXPECT_EQ(operators[0].source, Source::kName);
    EXPECT_EQ(operators[1].menu, "");
    EXPECT_EQ(library.index->Unread(), 2U);
}

TEST_F(OperatorIndexTest, ALibraryWithoutOperatorsIsDoneAtOnce) {
    EXPECT_EQ(library.Step(), Pace::kDone);
    library.Scan();
    EXPECT_EQ(library.Step(), Pace::kDone);
    EXPECT_THAT(library.index->Operators(), IsEmpty());
}

TEST_F(OperatorIndexTest, AStepThatHasNoTimeDoesOnePieceOfWork) {
    for (const char* name : {"0100.A", "0100.B", "0100.C"}) library.Add(name, kNoise);
    library.Scan();
    for (size_t left = 3; left > 0; --left) {
        EXPECT_EQ(library.index->Unread(), left);
        EXPECT_EQ(library.index->Step(std::chrono::microseconds(0)), Pace::kBusy);
    }
    EXPECT_EQ(library.index->Unread(), 0U);
    EXPECT_EQ(library.Step(), Pace::kDone);
}

// Without a pure preprocessor

TEST_F(OperatorIndexTest, WhereThePreprocessorIsNotDeclaredPureItIsNeverRun) {
    library.SetPreprocessor(kPreprocessor);
    library.own.site.settings.Store("preprocess.pure", "0");
    library.Add("0100.Noise", kNoise);
    ASSERT_TRUE(library.Load());
    EXPECT_THAT(Runs(), IsEmpty());
    const KnownOperator& noise = library.Known("Noise");
    EXPECT_EQ(noise.source, Source::kOwnFile);
    EXPECT_EQ(noise.help, "Soft clouds.");
    EXPECT_THAT(noise.aliases, ElementsAre("Cloud"));
    EXPECT_EQ(noise.buttons.size(), 2U);
}

TEST_F(OperatorIndexTest, WhatOnlyThePreprocessorUnderstandsIsNoProblemOfAFileReadAsItStands) {
    library.Add("0100.Noise", "boxhelp {\nSoft clouds.\n}\n@BOX@\ninput a { float { 0 0 1 0 \"%g\" } }\n");
    ASSERT_TRUE(library.Load());
    EXPECT_EQ(library.Known("Noise").help, "Soft clouds.");
    EXPECT_EQ(library.Known("Noise").problem, "");
}

// With one

TEST_F(OperatorIndexTest, WhatThePreprocessorMakesOfAnOperatorIsKnown) {
    library.SetPreprocessor(kPreprocessor);
    const std::string included = library.own.directory.Write("common", "boxhelp {\nFrom elsewhere.\n}\n");
    library.Add("0100.Noise", "@" + included + "\n" + kNoise);
    ASSERT_TRUE(library.Load());
    EXPECT_EQ(library.Known("Noise").source, Source::kDefinition);
    EXPECT_EQ(library.Known("Noise").problem, "");
    EXPECT_THAT(library.Known("Noise").help, HasSubstr("Soft clouds."));
    EXPECT_THAT(Runs(), ElementsAre("Noise"));
    EXPECT_EQ(library.index->Unread(), 0U);
}

TEST_F(OperatorIndexTest, SeveralRunAtATimeAndTheStepDoesNotWaitForThem) {
    library.SetPreprocessor(kPreprocessor);
    for (const char* name : {"0100.A", "0100.B", "0100.C"})
        library.Add(name, std::string("await\n") + kNoise);
    library.Scan();
    library.StepUntilWaiting();
    EXPECT_EQ(library.Step(), Pace::kWaiting);
    EXPECT_TRUE(SleepUntil([&] { return Runs().size() == 2; })) << "two of them at a time";
    EXPECT_EQ(library.index->Unread(), 3U);
    library.own.directory.Write("work/go", "");
    ASSERT_TRUE(library.Fill());
    EXPECT_THAT(Runs(), UnorderedElementsAre("A", "B", "C"));
    EXPECT_EQ(library.Known("C").source, Source::kDefinition);
}

TEST_F(OperatorIndexTest, NothingIsReportedAndNoFileOfAMessageIsTouched) {
    library.SetPreprocessor(kPreprocessor);
    library.Add("0100.A", "refused");
    library.Add("0100.B", "whatever");
    library.Add("0100.C", "alias B\nalias C\n");
    const std::string shown = library.own.directory.Write("work/boxdef.tmp", "what a message shows");
    ASSERT_TRUE(library.Load());
    EXPECT_THAT(library.own.sink.alerts, IsEmpty());
    EXPECT_EQ(library.own.sink.log, "");
    EXPECT_FALSE(library.own.report.HasPending());
    EXPECT_EQ(ReadFile(shown), "what a message shows");
    EXPECT_THAT(WorkFiles(), UnorderedElementsAre("boxdef.tmp", "runs")) << "its own files go again";
}

TEST_F(OperatorIndexTest, AliasesThatNameAnOperatorAreNotHeeded) {
    library.SetPreprocessor(kPreprocessor);
    library.Add("0100.Noise", "alias cells\nalias NOISE\nalias Cloud\n");
    library.Add("0100.Cells", "");
    ASSERT_TRUE(library.Load());
    EXPECT_THAT(library.Known("Noise").aliases, ElementsAre("Cloud"));
}

TEST_F(OperatorIndexTest, ASavedNetworkIsKnownByItsCommentsAndNotPreprocessed) {
    library.SetPreprocessor(kPreprocessor);
    library.Add("0100.WornPaint", "# Flaked off.\n" + std::string(kDocumentKeyword) + " 1\n");
    ASSERT_TRUE(library.Load());
    EXPECT_EQ(library.Known("WornPaint").source, Source::kNetwork);
    EXPECT_EQ(library.Known("WornPaint").help, "Flaked off.");
    EXPECT_THAT(Runs(), IsEmpty());
}

// What cannot be read

TEST_F(OperatorIndexTest, ADefinitionThatFailsKeepsNameAndProblemAndHoldsUpNoOther) {
    library.SetPreprocessor(kPreprocessor);
    library.Add("0100.A", "refused\n");
    library.Add("0100.B", "mute");
    library.Add("0100.C", "whatever");
    library.Add("0100.D", kNoise);
    ASSERT_TRUE(library.Load());
    EXPECT_EQ(library.Known("A").problem, "A is refused");
    EXPECT_EQ(library.Known("B").problem, "the preprocessor fails for " + PathOf("0100.B"));
    EXPECT_THAT(library.Known("C").problem, HasSubstr("unexpected input"));
    EXPECT_EQ(library.Known("D").problem, "");
    EXPECT_EQ(library.Known("D").source, Source::kDefinition);
}

TEST_F(OperatorIndexTest, OfADefinitionThatFailsItsOwnFileIsSearchedButNoButtonIsOffered) {
    library.SetPreprocessor("exit 3;");
    library.Add("0100.Noise", kNoise);
    ASSERT_TRUE(library.Load());
    EXPECT_EQ(library.Known("Noise").help, "Soft clouds.");
    EXPECT_THAT(library.Known("Noise").buttons, IsEmpty());
    EXPECT_NE(library.Known("Noise").problem, "");
}

TEST_F(OperatorIndexTest, RunsThatDoNotEndAreEndedAndTheRestIsRead) {
    library.SetPreprocessor(kPreprocessor);
    library.Add("0100.A", "stuck");
    library.Add("0100.B", "stuck");
    library.Add("0100.C", kNoise);
    library.Scan();
    library.StepUntilWaiting();
    const auto isThere = [&](const char* name) { return PathExists(library.own.site.WorkPath(name)); };
    ASSERT_TRUE(SleepUntil([&] { return isThere("stuck.A") && isThere("stuck.B"); }));
    EXPECT_EQ(library.Step(), Pace::kWaiting) << "they have all the places";
    library.now += SmallLibrary::kLimit + std::chrono::milliseconds(1);
    ASSERT_TRUE(library.Fill());
    EXPECT_EQ(library.Known("A").problem, "the preprocessor did not end for " + PathOf("0100.A"));
    EXPECT_NE(library.Known("B").problem, "");
    EXPECT_EQ(library.Known("C").source, Source::kDefinition);
    EXPECT_EQ(library.Known("C").problem, "");
}

TEST_F(OperatorIndexTest, FilesThatAreTooLargeGoneOrNoFilesAreKnownByName) {
    library.SetPreprocessor(kPreprocessor);
    library.Add("0100.Large", std::string(64 * 1024 + 1, ' '));
    library.Add("0100.Gone", kNoise);
    library.Scan();
    std::filesystem::remove(PathOf("0100.Gone"));
    ASSERT_TRUE(library.Fill());
    EXPECT_EQ(library.Known("Large").problem, PathOf("0100.Large") + " is too large to be searched");
    EXPECT_THAT(library.Known("Gone").problem, HasSubstr("No such file"));
    EXPECT_EQ(library.Known("Gone").source, Source::kName);
    EXPECT_THAT(Runs(), IsEmpty());
}

TEST_F(OperatorIndexTest, AnOutputThatIsTooLargeIsNotRead) {
    library.SetPreprocessor("open my $o, '>', $ARGV[1]; print $o ' ' x (64 * 1024 + 1);");
    library.Add("0100.Noise", kNoise);
    ASSERT_TRUE(library.Load());
    EXPECT_THAT(library.Known("Noise").problem, HasSubstr("too large to be searched"));
    EXPECT_EQ(library.Known("Noise").help, "Soft clouds.");
}

// Reloading

TEST_F(OperatorIndexTest, AReloadReadsAnewOnlyWhatHasChanged) {
    library.SetPreprocessor(kPreprocessor);
    const std::string common = library.own.directory.Write("common", "icontext c\n");
    MakeOld(common);
    AddOld("0100.A", kNoise);
    AddOld("0100.B", kNoise);
    AddOld("0100.C", "@" + common + "\n");
    ASSERT_TRUE(library.Load());
    EXPECT_THAT(Runs(), UnorderedElementsAre("A", "B", "C"));
    ForgetRuns();
    ASSERT_TRUE(library.Load());
    EXPECT_THAT(Runs(), IsEmpty());
    EXPECT_EQ(library.Known("A").help, "Soft clouds.");

    AddOld("0100.B", "boxhelp {\nHard rock.\n}\n");
    ASSERT_TRUE(library.Load());
    EXPECT_THAT(Runs(), ElementsAre("B"));
    EXPECT_EQ(library.Known("B").help, "Hard rock.");

    ForgetRuns();
    library.own.directory.Write("common", "boxhelp {\nShared.\n}\n");
    MakeOld(common);
    ASSERT_TRUE(library.Load());
    EXPECT_THAT(Runs(), ElementsAre("C")) << "a file that it includes";
    EXPECT_EQ(library.Known("C").help, "Shared.");
}

TEST_F(OperatorIndexTest, WhatIsKnownIsSearchedUntilTheFileIsReadAnew) {
    library.SetPreprocessor(kPreprocessor);
    AddOld("0100.Noise", kNoise);
    ASSERT_TRUE(library.Load());
    AddOld("0100.Noise", "await\nboxhelp {\nHard rock.\n}\n");
    library.Scan();
    EXPECT_EQ(library.Known("Noise").help, "Soft clouds.");
    library.StepUntilWaiting();
    EXPECT_EQ(library.Known("Noise").help, "Soft clouds.") << "as long as the preprocessor runs";
    library.own.directory.Write("work/go", "");
    ASSERT_TRUE(library.Fill());
    EXPECT_EQ(library.Known("Noise").help, "Hard rock.");
}

TEST_F(OperatorIndexTest, AnOperatorThatMovesInTheMenuHasItsNewPlaceAndIdAtOnce) {
    library.Add("0200.Noise", kNoise);
    ASSERT_TRUE(library.Load());
    library.Add("0100.Mix", "");
    library.Scan();
    EXPECT_EQ(library.Known("Noise").id, library.registry.FindByName("Noise")->id);
    EXPECT_EQ(library.Known("Noise").help, "Soft clouds.");
}

TEST_F(OperatorIndexTest, ADefinitionThatFailedIsTriedAgain) {
    library.SetPreprocessor(kPreprocessor);
    AddOld("0100.Noise", "refused");
    ASSERT_TRUE(library.Load());
    library.SetPreprocessor("my $o; open $o, '>', $ARGV[1]; print $o \"boxhelp {\\nMended.\\n}\\n\";");
    ASSERT_TRUE(library.Load());
    EXPECT_EQ(library.Known("Noise").problem, "");
    EXPECT_EQ(library.Known("Noise").help, "Mended.");
}

TEST_F(OperatorIndexTest, AFileOfTemplatesThatWasMissingIsSeenByTheNextReload) {
    library.SetPreprocessor(kPreprocessor);
    AddOld("0100.Noise", std::string(kNoise) + "codegen.main-body append@noise.txt\n");
    ASSERT_TRUE(library.Load());
    EXPECT_THAT(library.Known("Noise").problem, HasSubstr("noise.txt"));
    EXPECT_THAT(library.Known("Noise").buttons, IsEmpty());
    library.own.directory.Write("lib/noise.txt", "result = 1;\n");
    ASSERT_TRUE(library.Load());
    EXPECT_EQ(library.Known("Noise").problem, "");
    EXPECT_EQ(library.Known("Noise").buttons.size(), 2U);
}

TEST_F(OperatorIndexTest, AnotherPreprocessorReadsAllAnew) {
    library.SetPreprocessor(kPreprocessor);
    library.own.directory.Write("lib/bin/spp", "one");
    AddOld("0100.Noise", kNoise);
    ASSERT_TRUE(library.Load());
    library.own.directory.Write("lib/bin/spp", "another");
    ForgetRuns();
    ASSERT_TRUE(library.Load());
    EXPECT_THAT(Runs(), ElementsAre("Noise"));
}

TEST_F(OperatorIndexTest, AFileThatChangedJustBeforeItWasReadIsReadAnew) {
    library.SetPreprocessor(kPreprocessor);
    library.Add("0100.Noise", kNoise);
    ASSERT_TRUE(library.Load());
    ForgetRuns();
    ASSERT_TRUE(library.Load());
    EXPECT_THAT(Runs(), ElementsAre("Noise"));
}

TEST_F(OperatorIndexTest, WhatWasReadAsItStandsIsPreprocessedOnceTheLibraryAllowsIt) {
    AddOld("0100.Noise", kNoise);
    ASSERT_TRUE(library.Load());
    EXPECT_EQ(library.Known("Noise").source, Source::kOwnFile);
    library.SetPreprocessor(kPreprocessor);
    ASSERT_TRUE(library.Load());
    EXPECT_EQ(library.Known("Noise").source, Source::kDefinition);
}

TEST_F(OperatorIndexTest, ADefinitionThatBecomesANetworkIsOne) {
    library.SetPreprocessor(kPreprocessor);
    AddOld("0100.Noise", kNoise);
    ASSERT_TRUE(library.Load());
    AddOld("0100.Noise", "# Now a network.\n" + std::string(kDocumentKeyword) + " 1\n");
    ASSERT_TRUE(library.Load());
    EXPECT_EQ(library.Known("Noise").source, Source::kNetwork);
    EXPECT_EQ(library.Known("Noise").help, "Now a network.");
    EXPECT_THAT(library.Known("Noise").buttons, IsEmpty());
}

TEST_F(OperatorIndexTest, AReloadEndsWhatRunsAndReadsItAnew) {
    library.SetPreprocessor(kPreprocessor);
    library.Add("0100.A", "stuck");
    library.Add("0100.B", "stuck");
    library.Scan();
    library.StepUntilWaiting();
    ASSERT_TRUE(SleepUntil([&] { return Runs().size() == 2; }));
    library.Add("0100.A", kNoise);
    library.Add("0100.B", kNoise);
    ASSERT_TRUE(library.Load()) << "they would have all the places for ever";
    EXPECT_EQ(library.Known("A").source, Source::kDefinition);
    EXPECT_EQ(library.Known("B").source, Source::kDefinition);
}

TEST_F(OperatorIndexTest, AnIndexThatGoesEndsWhatRunsAndLeavesNoFile) {
    library.SetPreprocessor(kPreprocessor);
    library.Add("0100.Noise", "stuck");
    library.Scan();
    library.StepUntilWaiting();
    ASSERT_TRUE(SleepUntil([&] { return PathExists(library.own.site.WorkPath("stuck.Noise")); }));
    library.index.reset();
    EXPECT_THAT(WorkFiles(), UnorderedElementsAre("runs", "stuck.Noise"));
}

TEST_F(OperatorIndexTest, TheRevisionGrowsWithEachOperatorThatChanges) {
    library.Add("0100.A", kNoise);
    library.Scan();
    const uint64_t before = library.index->Revision();
    ASSERT_TRUE(library.Fill());
    EXPECT_GT(library.index->Revision(), before);
    EXPECT_EQ(library.Known("A").revision, library.index->Revision());
    const uint64_t reloads = library.index->Reloads();
    library.Scan();
    EXPECT_EQ(library.index->Reloads(), reloads + 1);
}

}  // namespace
}  // namespace tavrin
