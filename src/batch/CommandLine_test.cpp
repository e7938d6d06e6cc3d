// SPDX-License-Identifier: Apache-2.0
#include "batch/CommandLine.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tavrin {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

// Notes each call as a line.
class NotingDelegate : public CommandLineDelegate {
  public:
    void Document(const std::string& path) override { calls.push_back("document " + path); }
    void KeepWork(const std::string& directory) override { calls.push_back("keep-work " + directory); }
    void Picture(const std::string& path) override { calls.push_back("picture " + path); }
    void Library(const std::string& name) override { calls.push_back("library " + name); }
    void Force() override { calls.emplace_back("force"); }
    void TrustExports() override { calls.emplace_back("trust-exports"); }
    void NoSiteCommands() override { calls.emplace_back("no-site-commands"); }
    void Quiet() override { calls.emplace_back("quiet"); }
    void TimeLimit(std::chrono::seconds time) override {
        calls.push_back("time-limit " + std::to_string(time.count()));
    }
    void SaveShader() override { calls.emplace_back("save-shader"); }
    void Render() override { calls.emplace_back("render"); }
    void Save(const std::string& path) override { calls.push_back("save " + path); }
    void Set(const std::string& name, const std::string& value) override {
        calls.push_back("set <" + name + "><" + value + ">");
    }
    void ListOperators() override { calls.emplace_back("list-operators"); }
    void Describe(const std::string& operatorName) override { calls.push_back("describe " + operatorName); }
    void Script(const std::string& path) override { calls.push_back("script " + path); }
    void ExportAll() override { calls.emplace_back("export-all"); }
    void Export(const std::string& kind, const std::string& path) override {
        calls.push_back("export " + kind + " to " + path);
    }
    void Merge(const std::string& path) override { calls.push_back("merge " + path); }
    void Add(const std::string& operatorName) override { calls.push_back("add " + operatorName); }
    void View(const std::string& kind) override { calls.push_back("view " + kind); }
    void Check() override { calls.emplace_back("check"); }
    void Probe(const std::string& output) override { calls.push_back("probe " + output); }
    void Help() override { calls.emplace_back("help"); }
    void Version() override { calls.emplace_back("version"); }

    std::vector<std::string> calls;
};

class CommandLineTest : public testing::Test {
  protected:
    // What the delegate heard; the error goes to `error`.
    std::vector<std::string> Parse(const std::vector<std::string>& words) {
        NotingDelegate delegate;
        error.clear();
        const bool parsed = CommandLine(delegate).Parse(words, error);
        EXPECT_EQ(parsed, error.empty());
        return delegate.calls;
    }
    std::string ErrorOf(const std::vector<std::string>& words) {
        Parse(words);
        return error;
    }

    std::string error;
};

TEST_F(CommandLineTest, NoWordsAskForNothing) {
    EXPECT_THAT(Parse({}), IsEmpty());
    EXPECT_EQ(error, "");
}

TEST_F(CommandLineTest, EveryOptionReachesTheDelegateInItsPlace) {
    EXPECT_THAT(Parse({"--quiet", "--library", "glass", "--set", "A=1", "a.tvn", "--save-shader", "--render",
                       "--save", "b.tvn", "--list-operators", "--describe", "Noise", "--keep-work", "work",
                       "--force", "--help", "--version"}),
                ElementsAre("quiet", "library glass", "set <A><1>", "document a.tvn", "save-shader", "render",
                            "save b.tvn", "list-operators", "describe Noise", "keep-work work", "force",
                            "help", "version"));
    EXPECT_EQ(error, "");
}

TEST_F(CommandLineTest, AProbeIsAStepAmongTheOthers) {
    EXPECT_THAT(Parse({"--probe", "Noise_3.result", "--render", "--probe=Mix_4.result", "--view", "source"}),
                ElementsAre("probe Noise_3.result", "render", "probe Mix_4.result", "view source"));
    for (const std::string wrong : {"Noise_3", ".result", "Noise_3."}) {
        EXPECT_EQ(ErrorOf({"--probe", wrong}), "--probe " + wrong +
                                                   ": expected BOX.OUTPUT, such as Noise_3.result; see "
                                                   "tavrin-batch --help");
    }
    EXPECT_EQ(ErrorOf({"--probe"}), "--probe needs BOX.OUTPUT behind it; see tavrin-batch --help");
}

TEST_F(CommandLineTest, WhatIsTrustedReachesTheDelegateToo) {
    EXPECT_THAT(Parse({"--trust-exports", "--no-site-commands"}),
                ElementsAre("trust-exports", "no-site-commands"));
    EXPECT_EQ(ErrorOf({"--trust-exports=1"}), "--trust-exports takes no value; see tavrin-batch --help");
}

TEST_F(CommandLineTest, AnOptionMayCarryItsValueBehindAnEqualsSign) {
    EXPECT_THAT(Parse({"--save=b=c.tvn", "--keep-work=w", "--picture=p.png", "--library=glass",
                       "--describe=Noise", "--set=A=1"}),
                ElementsAre("save b=c.tvn", "keep-work w", "picture p.png", "library glass", "describe Noise",
                            "set <A><1>"));
}

TEST_F(CommandLineTest, AnOptionMayComeMoreThanOnce) {
    EXPECT_THAT(Parse({"--render", "--set", "A=1", "--render"}),
                ElementsAre("render", "set <A><1>", "render"));
}

TEST_F(CommandLineTest, AValueMayBeEmptyOrHoldEqualsSignsButItsNameMayNot) {
    EXPECT_THAT(Parse({"--set", "A=", "--set", "B=c=d", "--set", "C= x "}),
                ElementsAre("set <A><>", "set <B><c=d>", "set <C>< x >"));
    EXPECT_EQ(ErrorOf({"--set", "A"}), "--set A: expected NAME=VALUE; see tavrin-batch --help");
    EXPECT_EQ(ErrorOf({"--set", "=1"}), "--set =1: expected NAME=VALUE; see tavrin-batch --help");
    EXPECT_EQ(ErrorOf({"--set=A"}), "--set A: expected NAME=VALUE; see tavrin-batch --help");
}

TEST_F(CommandLineTest, AMissingValueIsNamed) {
    EXPECT_EQ(ErrorOf({"--save"}), "--save needs FILE.tvn behind it; see tavrin-batch --help");
    EXPECT_EQ(ErrorOf({"--save="}), "--save needs FILE.tvn behind it; see tavrin-batch --help");
    EXPECT_EQ(ErrorOf({"--save", ""}), "--save needs FILE.tvn behind it; see tavrin-batch --help");
    EXPECT_EQ(ErrorOf({"--set"}), "--set needs NAME=VALUE behind it; see tavrin-batch --help");
    EXPECT_EQ(ErrorOf({"--describe"}), "--describe needs OPERATOR behind it; see tavrin-batch --help");
    EXPECT_EQ(ErrorOf({"--keep-work"}), "--keep-work needs DIR behind it; see tavrin-batch --help");
    EXPECT_EQ(ErrorOf({"--library"}), "--library needs NAME behind it; see tavrin-batch --help");
}

TEST_F(CommandLineTest, AValueBehindAnOptionThatTakesNoneIsAnError) {
    EXPECT_EQ(ErrorOf({"--render=now"}), "--render takes no value; see tavrin-batch --help");
    EXPECT_EQ(ErrorOf({"--quiet="}), "--quiet takes no value; see tavrin-batch --help");
}

TEST_F(CommandLineTest, ALimitOfTimeIsANumberOfSeconds) {
    EXPECT_THAT(Parse({"--time-limit", "90", "--time-limit=0"}),
                ElementsAre("time-limit 90", "time-limit 0"));
    for (const char* word : {"-1", "1.5", "soon", "9999999999"}) {
        EXPECT_EQ(
            ErrorOf({"--time-limit", word}),
            "--time-limit " + std::string(word) + ": expected a number of seconds; see tavrin-batch --help");
    }
    EXPECT_EQ(ErrorOf({"--time-limit"}), "--time-limit needs SECONDS behind it; see tavrin-batch --help");
}

TEST_F(CommandLineTest, AnUnknownOptionIsAnErrorAndWhatFollowsIsNotHeard) {
    EXPECT_THAT(Parse({"--quiet", "--rendr", "--render"}), ElementsAre("quiet"));
    EXPECT_EQ(error, "unknown option --rendr; see tavrin-batch --help");
    EXPECT_EQ(ErrorOf({"--rend"}), "unknown option --rend; see tavrin-batch --help");
    EXPECT_EQ(ErrorOf({"-r"}), "unknown option -r; see tavrin-batch --help");
    EXPECT_EQ(ErrorOf({"--x=1"}), "unknown option --x; see tavrin-batch --help");
}

TEST_F(CommandLineTest, ASecondDocumentIsAnError) {
    EXPECT_THAT(Parse({"a.tvn", "--render", "b.tvn"}), ElementsAre("document a.tvn", "render"));
    EXPECT_EQ(error, "one document at a time: b.tvn is a second one; see tavrin-batch --help");
}

TEST_F(CommandLineTest, ADocumentWithoutANameIsAnError) {
    EXPECT_EQ(ErrorOf({""}), "the name of the document is empty; see tavrin-batch --help");
}

TEST_F(CommandLineTest, BehindTwoDashesEverythingIsADocument) {
    EXPECT_THAT(Parse({"--render", "--", "--odd.tvn"}), ElementsAre("render", "document --odd.tvn"));
    EXPECT_EQ(error, "");
    EXPECT_THAT(Parse({"--", "--"}), ElementsAre("document --"));
    EXPECT_THAT(Parse({"--"}), IsEmpty());
    EXPECT_EQ(error, "");
}

TEST_F(CommandLineTest, AnOptionTakesTheNextWordWhateverItLooksLike) {
    EXPECT_THAT(Parse({"--save", "--render"}), ElementsAre("save --render"));
}

TEST_F(CommandLineTest, ALoneDashIsADocument) { EXPECT_THAT(Parse({"-"}), ElementsAre("document -")); }

TEST_F(CommandLineTest, TheHelpTellsOfEveryOptionAndOfTheStatus) {
    const std::string help = CommandLine::HelpText();
    EXPECT_THAT(help, testing::StartsWith("Usage: tavrin-batch [OPTION...] [DOCUMENT.tvn]\n"));
    for (const char* option :
         {"--save-shader ", "--render ", "--save FILE.tvn ", "--set NAME=VALUE ", "--list-operators ",
          "--describe OPERATOR ", "--keep-work DIR ", "--picture FILE ", "--library NAME ", "--force ",
          "--quiet ", "--time-limit SECONDS", "--help ", "--version "}) {
        EXPECT_THAT(help, HasSubstr(std::string("\n  ") + option));
    }
    for (const char* variable : {"TAVRN_DIR", "TAVRN_LIB", "TAVRN_TMPDIR", "SOURCE_DATE_EPOCH"}) {
        EXPECT_THAT(help, HasSubstr(variable));
    }
}

TEST_F(CommandLineTest, TheHelpFitsATerminal) {
    const std::string help = CommandLine::HelpText();
    for (size_t start = 0; start < help.size();) {
        const size_t end = help.find('\n', start);
        EXPECT_LE(end - start, 99U) << help.substr(start, end - start);
        start = end + 1;
    }
}

}  // namespace
}  // namespace tavrin
