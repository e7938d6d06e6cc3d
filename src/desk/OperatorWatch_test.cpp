// SPDX-License-Identifier: Apache-2.0
// Which operators have changed since boxes were read, and which of that the user is told.
#include "desk/OperatorWatch.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <sstream>

#include "base/Files.h"
#include "base/ReadLimit.h"
#include "support/TestHost.h"

namespace tavrin {

void PrintTo(const StaleOperator& stale, std::ostream* out) { *out << stale.name << " " << stale.boxes; }

namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

// Notes the operator in "runs", then writes its file to the output. One that begins with "refused" fails.
constexpr const char* kRedirect = R"(my ($in, $out, $err, $spp, $def) = @ARGV;
(my $name = $def) =~ s/.*\d\.//;
open my $runs, '>>', "$ENV{TAVRN_WORKDIR}/runs"; syswrite $runs, "$name\n";
open STDERR, '>', $err;
open my $d, '<', $def; local $/; my $text = <$d>;
print STDERR "$def:1: looks bad\n$def:1: is refused\n" and exit 3 if $text =~ /^refused/;
open my $o, '>', $out; print $o $text;
)";

class OperatorWatch : public test::DocumentTest {
  protected:
    OperatorWatch() { host.GetSite().environment.Set("TAVRN_WORKDIR", host.GetSite().directories.workDir); }

    std::string AddOperator(const std::string& name, const std::string& text) {
        const std::string path = host.AddOperator(name, text);
        host.Directory().Write("installation/mini/bin/redirect.pl", kRedirect);
        Age(path);
        return path;
    }
    // As if it had been written long ago, and each time at another moment.
    void Age(const std::string& path) {
        fs::last_write_time(path, fs::file_time_type::clock::now() - std::chrono::hours(++m_hours));
    }
    void Edit(const std::string& path, const std::string& text) {
        std::string error;
        ASSERT_TRUE(WriteWholeFile(path, text, error)) << error;
        Age(path);
    }
    COpBox& AddBox(const std::string& name) {
        auto box = std::make_unique<COpBox>();
        EXPECT_TRUE(host.DefineBox(*box, name));
        Runs();
        return Add(std::move(box));
    }
    // For which the preprocessor was run since this was last asked.
    std::vector<std::string> Runs() {
        std::vector<std::string> runs;
        const std::string path = host.GetSite().WorkPath("runs");
        if (!fs::exists(path)) return runs;
        std::istringstream text(test::ReadFile(path));
        for (std::string name; std::getline(text, name);) runs.push_back(name);
        fs::remove(path);
        return runs;
    }
    std::vector<StaleOperator> Stale() { return watch.LookAtFiles().stale; }
    std::vector<std::string> Problems() { return watch.LookAtFiles().problems; }

    tavrin::OperatorWatch watch{document, host};

  private:
    int m_hours = 0;
};

TEST_F(OperatorWatch, FindsNothingAndRunsNothingWhereNoFileHasChanged) {
    AddOperator("One", "icontext one\n");
    AddBox("One");
    EXPECT_THAT(Stale(), IsEmpty());
    EXPECT_THAT(Runs(), IsEmpty());
}

TEST_F(OperatorWatch, FindsAnOperatorWhoseFileHasChangedAndCountsItsBoxes) {
    const std::string one = AddOperator("One", "icontext one\n");
    AddOperator("Two", "icontext two\n");
    for (const char* name : {"One", "Two", "One"}) AddBox(name);
    Edit(one, "icontext other\n");
    EXPECT_THAT(Stale(), ElementsAre(StaleOperator{"One", 2}));
    EXPECT_THAT(Runs(), ElementsAre("One"));
    AddBox("One");  // of the new definition
    EXPECT_THAT(Stale(), ElementsAre(StaleOperator{"One", 2}));
    EXPECT_THAT(host.Sink().alerts, IsEmpty());
    EXPECT_EQ(host.Sink().log, "");
}

TEST_F(OperatorWatch, AFileThatWasOnlyWrittenAnewIsNoChangeAndIsComparedOnce) {
    const std::string one = AddOperator("One", "icontext one\n");
    AddBox("One");
    Edit(one, "icontext one\n");
    EXPECT_THAT(Stale(), IsEmpty());
    EXPECT_THAT(Runs(), ElementsAre("One"));
    EXPECT_THAT(Stale(), IsEmpty());
    EXPECT_THAT(Runs(), IsEmpty());
}

TEST_F(OperatorWatch, FindsAChangeRightBehindTheReadingThatLeavesTheFileLookingAsBefore) {
    const std::string one = AddOperator("One", "icontext one\n");
    const auto now = fs::file_time_type::clock::now();
    fs::last_write_time(one, now);
    AddBox("One");
    std::string error;
    ASSERT_TRUE(WriteWholeFile(one, "icontext two\n", error));
    fs::last_write_time(one, now);
    EXPECT_THAT(Stale(), ElementsAre(StaleOperator{"One", 1}));
}

TEST_F(OperatorWatch, FindsAChangeOfAFileThatThePreprocessorNames) {
    const std::string included = host.Directory().Write("included", "1");
    Age(included);
    const std::string one = AddOperator("One", "icontext one\n#source lines\n#file " + included + "\n");
    AddBox("One");
    EXPECT_THAT(Stale(), IsEmpty());
    Edit(included, "2");
    EXPECT_THAT(Stale(), IsEmpty());  // the definition is what it was
    EXPECT_THAT(Runs(), ElementsAre("One"));
    Edit(included, "3");
    fs::rename(one, one + ".kept");
    // What a real preprocessor would make of the other included file.
    Edit(one, "icontext other\n#source lines\n#file " + included + "\n");
    EXPECT_THAT(Stale(), ElementsAre(StaleOperator{"One", 1}));
}

TEST_F(OperatorWatch, LooksAtAllOperatorsWhereTheUserAsksForIt) {
    AddOperator("One", "icontext one\n");
    AddOperator("Two", "icontext two\n");
    AddBox("One");
    AddBox("Two");
    EXPECT_THAT(watch.LookAtAll().stale, IsEmpty());
    EXPECT_THAT(Runs(), UnorderedElementsAre("One", "Two"));
}

TEST_F(OperatorWatch, RunsAPurePreprocessorOnceForAllBoxesOfAnOperator) {
    host.GetSite().settingsLibrary = "mini";
    host.GetSite().settings.Store("preprocess.pure", "1");
    for (const char* name : {"One", "Two", "Three"}) {
        AddOperator(name, "icontext x\n");
        for (int i = 0; i < 3; ++i) AddBox(name);
    }
    watch.LookAtAll();
    EXPECT_THAT(Runs(), UnorderedElementsAre("One", "Two", "Three"));
}

TEST_F(OperatorWatch, ADeclinedChangeIsFoundAgainOnlyWithTheNextOrOnDemand) {
    const std::string one = AddOperator("One", "icontext one\n");
    AddBox("One");
    Edit(one, "icontext two\n");
    watch.Declined(watch.LookAtFiles().stale);
    EXPECT_THAT(Stale(), IsEmpty());
    Edit(one, "icontext two\n");  // written anew
    EXPECT_THAT(Stale(), IsEmpty());
    EXPECT_THAT(watch.LookAtAll().stale, ElementsAre(StaleOperator{"One", 1}));
    Edit(one, "icontext three\n");
    EXPECT_THAT(Stale(), ElementsAre(StaleOperator{"One", 1}));
    Edit(one, "icontext one\n");
    EXPECT_THAT(Stale(), IsEmpty());  // as the box is
}

TEST_F(OperatorWatch, ADeclinedChangeIsFoundAgainOnceTheDefinitionWasAnotherBetween) {
    const std::string one = AddOperator("One", "icontext one\n");
    AddBox("One");
    Edit(one, "icontext two\n");
    watch.Declined(watch.LookAtFiles().stale);
    Edit(one, "icontext one\n");
    EXPECT_THAT(Stale(), IsEmpty());
    Edit(one, "icontext two\n");
    EXPECT_THAT(Stale(), ElementsAre(StaleOperator{"One", 1}));
}

TEST_F(OperatorWatch, AnUpdateThatIsUndoneIsNotOfferedAgain) {
    const std::string one = AddOperator("One", "icontext one\n");
    AddBox("One");
    Edit(one, "icontext two\n");
    const std::vector<StaleOperator> stale = watch.LookAtFiles().stale;
    auto former = std::move(document.m_boxes.front());
    document.m_boxes.clear();
    Edit(one, "icontext three\n");  // before the user has answered
    AddBox("One");
    watch.Updated(stale);
    EXPECT_THAT(Stale(), IsEmpty());
    document.m_boxes.clear();
    Add(std::move(former));
    EXPECT_THAT(Stale(), IsEmpty());
    Edit(one, "icontext two\n");
    EXPECT_THAT(Stale(), ElementsAre(StaleOperator{"One", 1}));
}

TEST_F(OperatorWatch, TellsADefinitionThatCannotBeReadOnceAndFindsItWhenItCan) {
    const std::string one = AddOperator("One", "icontext one\n");
    AddBox("One");
    Edit(one, "icontext two\nbad\n");
    const std::string problem = "operator One cannot be read, so its boxes stay as they are: " +
                                host.GetSite().WorkPath("boxdef.tmp") +
                                " near line 2: unexpected input (operator One of " + one + ")";
    EXPECT_THAT(Problems(), ElementsAre(problem));
    EXPECT_EQ(test::ReadFile(host.GetSite().WorkPath("boxdef.tmp")), "icontext two\nbad\n");
    EXPECT_THAT(Problems(), IsEmpty());
    EXPECT_THAT(watch.LookAtAll().problems, ElementsAre(problem));
    EXPECT_THAT(host.Sink().alerts, IsEmpty());
    Edit(one, "worse\n");
    EXPECT_THAT(Problems(), ElementsAre(HasSubstr("near line 1: unexpected input")));
    Edit(one, "icontext three\n");
    const WatchFindings findings = watch.LookAtFiles();
    EXPECT_THAT(findings.stale, ElementsAre(StaleOperator{"One", 1}));
    EXPECT_THAT(findings.problems, IsEmpty());
}

TEST_F(OperatorWatch, TellsADefinitionThatItsFileEndsIn) {
    const std::string one = AddOperator("One", "icontext one\n");
    AddBox("One");
    Edit(one, "icontext two\noutput out { help\n");
    EXPECT_THAT(Problems(), ElementsAre(HasSubstr(one + " ends too early")));
    EXPECT_THAT(Stale(), IsEmpty());
    Edit(one, "icontext two\n");
    EXPECT_THAT(Stale(), ElementsAre(StaleOperator{"One", 1}));
}

TEST_F(OperatorWatch, TellsWhatThePreprocessorSays) {
    const std::string one = AddOperator("One", "icontext one\n");
    AddBox("One");
    Edit(one, "refused\n");
    EXPECT_THAT(Problems(), ElementsAre("operator One cannot be read, so its boxes stay as they are: " + one +
                                        ":1: is refused"));
    EXPECT_THAT(Problems(), IsEmpty());
}

TEST_F(OperatorWatch, AFileThatIsGoneOrNoDefinitionAnyMoreIsToldAndNotRun) {
    const std::string one = AddOperator("One", "icontext one\n");
    AddBox("One");
    const std::string head = "operator One cannot be read, so its boxes stay as they are: " + one;
    fs::remove(one);
    EXPECT_THAT(Problems(), ElementsAre(head + " is not there"));
    Edit(one, "# a network\ntavrn-version 1.3.32\nopdesk\n{\n}\n");
    EXPECT_THAT(Problems(), ElementsAre(head + " is a saved network now"));
    const uint64_t limit = ReadLimit();
    SetReadLimit(kMegabyte);
    Edit(one, "icontext " + std::string(kMegabyte, 'x') + "\n");
    EXPECT_THAT(Problems(), ElementsAre(HasSubstr(head + " is larger than the 1 MB")));
    SetReadLimit(limit);
    EXPECT_THAT(Runs(), IsEmpty());
    Edit(one, "icontext one\n");
    EXPECT_THAT(Problems(), IsEmpty());
    EXPECT_THAT(Stale(), IsEmpty());
}

TEST_F(OperatorWatch, AnOperatorThatTheLibraryHasNoMoreIsToldOnDemand) {
    const std::string one = AddOperator("One", "icontext one\n");
    AddBox("One");
    fs::remove(one);
    AddOperator("Two", "");  // scans the library
    EXPECT_THAT(Problems(), IsEmpty());
    EXPECT_THAT(watch.LookAtFiles().notes, IsEmpty());
    const WatchFindings findings = watch.LookAtAll();
    EXPECT_THAT(findings.problems, IsEmpty());
    EXPECT_THAT(findings.notes,
                ElementsAre("the library has no operator One any more; its boxes stay as they are"));
}

TEST_F(OperatorWatch, BoxesThatNoRunHasGivenAreLeftAlone) {
    AddOperator("b", "icontext one\n");
    Add(test::MakeLink("b", 1));
    EXPECT_THAT(watch.LookAtAll().stale, IsEmpty());
    EXPECT_THAT(Runs(), IsEmpty());
}

TEST_F(OperatorWatch, CopiesAreWhatTheirOriginalWasReadFrom) {
    const std::string one = AddOperator("One", "icontext one\n");
    Add(std::make_unique<COpBox>(AddBox("One")));
    Edit(one, "icontext two\n");
    EXPECT_THAT(Stale(), ElementsAre(StaleOperator{"One", 2}));
}

}  // namespace
}  // namespace tavrin
