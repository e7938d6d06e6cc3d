// SPDX-License-Identifier: Apache-2.0
// Sources for several types of shader beside each other, by a library whose filter script the tests write.
#include "render/SourceMaker.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <functional>
#include <thread>

#include "codegen/CodeGen.h"
#include "document/TvDoc.h"
#include "render/RenderSession.h"
#include "support/Patience.h"
#include "support/TestHost.h"

namespace tavrin {
namespace {

namespace fs = std::filesystem;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

const SourceKind kGenerated{false, {}};
const SourceKind kAsItIs{true, {}};

// Writes the generated source behind two lines of its own: the type, and what it was started with.
constexpr const char* kFilter = R"perl(#!/usr/bin/perl
use strict; use warnings;
my ($name, $base) = @ARGV;
my $type = '';
open my $options, '<', $ENV{TAVRN_RENOPTS} or die;
while (<$options>) { $type = $1 if /TAVRN_SHADER_TYPE "(.*)"/ }
while (<STDIN>) { last if $_ eq "EndArginfo\n"; }
open my $out, '>', $base or die "$base: $!\n";
print $out "type $type\nof $name, only $ENV{TAVRN_SOURCEONLY}\n", <STDIN>;
)perl";

class SourceMakerTest : public test::DocumentTest {
  protected:
    SourceMakerTest() {
        fs::create_directories(host.Directory() / "installation/mini/bin");
        fs::copy_file(test::SourcePath("installation/mray/bin/redirect.pl"),
                      host.Directory() / "installation/mini/bin/redirect.pl",
                      fs::copy_options::overwrite_existing);
        Filter(kFilter);
        document.SetPath("/documents/plastic.tvn");
        document.m_renderOptions["TAVRN_SHADER_TYPE"] = "surface";
        Add(test::MakeBox("One", "output out { float out }\ncodegen.main-body append\nfirst;\n<<EOT>>\n", 1));
    }
    ~SourceMakerTest() override {
        site.commands.EndChildren(std::chrono::milliseconds(0), std::chrono::milliseconds(0));
        host.RunPending();
    }

    void Filter(const std::string& text) const {
        fs::permissions(host.Directory().Write("installation/mini/bin/codefilter", text),
                        fs::perms::owner_all);
    }
    bool PumpUntil(const std::function<bool()>& condition) {
        const auto limit = std::chrono::steady_clock::now() + test::kPatience;
        while (!condition()) {
            if (std::chrono::steady_clock::now() > limit) return false;
            host.RunPending();
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        return true;
    }
    // Until none of them is at work; what is made by then.
    const MadeSource& Make(const std::vector<SourceKind>& kinds) {
        static const MadeSource nothing;
        maker.Make(kinds);
        const auto works = [this](const SourceKind& kind) { return maker.IsAtWork(kind); };
        EXPECT_TRUE(PumpUntil([&] { return std::none_of(kinds.begin(), kinds.end(), works); }));
        const MadeSource* made = maker.Find(kinds.front());
        EXPECT_NE(made, nullptr);
        return made == nullptr ? nothing : *made;
    }
    std::vector<std::string> WorkFiles() const {
        std::vector<std::string> files;
        for (const auto& entry : fs::recursive_directory_iterator(site.directories.workDir)) {
            if (entry.is_regular_file()) files.push_back(entry.path().filename());
        }
        return files;
    }

    Site& site = host.GetSite();
    CCodeGen siteCodeGen;
    RenderSession session{document, site, siteCodeGen};
    std::vector<SourceKind> told;
    SourceMaker maker{
        {document, session, site, siteCodeGen, [this](const SourceKind& kind) { told.push_back(kind); }}};
};

TEST_F(SourceMakerTest, TheGeneratedSourceIsThereAtOnceAndKnowsItsBoxes) {
    maker.Make({kGenerated});
    EXPECT_THAT(told, ElementsAre(kGenerated));
    const MadeSource* made = maker.Find(kGenerated);
    ASSERT_NE(made, nullptr);
    EXPECT_TRUE(made->isThere);
    EXPECT_THAT(made->text, HasSubstr("first;\n"));
    EXPECT_THAT(made->lines.LinesOf("One_1"), Not(IsEmpty()));
    EXPECT_THAT(WorkFiles(), IsEmpty());
    EXPECT_EQ(maker.Find(kAsItIs), nullptr);
}

TEST_F(SourceMakerTest, EachTypeHasASourceOfItsOwnAndTheDocumentKeepsItsType) {
    const SourceKind module{true, "module"};
    const MadeSource& asItIs = Make({kAsItIs, module});
    EXPECT_THAT(asItIs.text, HasSubstr("type surface\nof plastic, only 1\n"));
    EXPECT_THAT(maker.Find(module)->text, HasSubstr("type module\n"));
    EXPECT_EQ(document.m_renderOptions["TAVRN_SHADER_TYPE"], "surface");
    EXPECT_FALSE(document.IsModified());
    EXPECT_THAT(told, SizeIs(2));
}

TEST_F(SourceMakerTest, NothingOfItIsLeftInTheWorkDirectoryOrTheLog) {
    Filter(
        "#!/usr/bin/perl\nprint STDERR \"a warning\\n\";\nopen my $out, '>', $ARGV[1] or die;\nprint $out "
        "\"x\\n\";\n");
    EXPECT_THAT(Make({kAsItIs}).notes, ElementsAre("a warning"));
    EXPECT_THAT(WorkFiles(), IsEmpty());
    EXPECT_EQ(host.Sink().log, "");
    EXPECT_THAT(Alerts(), IsEmpty());
}

TEST_F(SourceMakerTest, LinesThatAFilterLetsPassAreStillTheirBoxs) {
    const MadeSource& made = Make({kAsItIs});
    std::vector<std::string> lines;
    std::istringstream text(made.text);
    for (std::string line; std::getline(text, line);) lines.push_back(line);
    const auto first = std::find(lines.begin(), lines.end(), "first;") - lines.begin();
    EXPECT_EQ(made.lines.Find(static_cast<size_t>(first) + 1).value_or(LinePlace()).box, "One_1");
    EXPECT_EQ(made.lines.Find(1).value_or(LinePlace()).box, "") << "the filter's own";
}

TEST_F(SourceMakerTest, AFilterThatWritesAMapIsBelieved) {
    const std::string script = R"(
open my $out, '>', $ARGV[1] or die; print $out "a\nb\nc\n";
open my $map, '>', "$ARGV[1].linemap" or die;
print $map "#source lines 1\nbox 1 One\nfile /some file\nline 2 1 1 main-body 1 7\n";
)";
    Filter("#!/usr/bin/perl\n" + script);
    const LineMap& lines = Make({kAsItIs}).lines;
    EXPECT_EQ(lines.Find(2).value_or(LinePlace()),
              (LinePlace{"One_1", "One", "", "main-body", "/some file", 7}));
    EXPECT_EQ(lines.Find(1), std::nullopt);
}

TEST_F(SourceMakerTest, AMapThatIsNoneOrOfAnotherTextIsAsGoodAsNone) {
    for (const char* map : {"nonsense\n", "#source lines 1\nbox 1 One\nline 900 1 1 main-body 0 0\n"}) {
        Filter(std::string(kFilter) + "open my $map, '>', \"$base.linemap\" or die; print $map q(" + map +
               ");\n");
        maker.Forget();
        const MadeSource& made = Make({kAsItIs});
        EXPECT_THAT(made.lines.LinesOf("One_1"), Not(IsEmpty())) << map;
        EXPECT_THAT(made.lines.LinesOf("One_1"), Not(Contains(900U))) << map;
    }
}

TEST_F(SourceMakerTest, AFilterThatFailsLeavesItsReasonsInPlaceOfASource) {
    Filter("#!/usr/bin/perl\nprint STDERR \"plastic: no \\e[1mlight\\n\";\nexit 1;\n");
    const MadeSource& made = Make({kAsItIs});
    EXPECT_FALSE(made.isThere);
    EXPECT_THAT(made.notes, ElementsAre("plastic: no \\x1b[1mlight"));
    Filter("#!/usr/bin/perl\nexit 3;\n");
    maker.Forget();
    EXPECT_THAT(Make({kAsItIs}).notes, ElementsAre("codefilter: it ended with status 3"));
    Filter("#!/usr/bin/perl\n");
    maker.Forget();
    EXPECT_THAT(Make({kAsItIs}).notes, ElementsAre(HasSubstr("codefilter left no source in ")));
    fs::remove(host.Directory() / "installation/mini/bin/codefilter");
    maker.Forget();
    EXPECT_FALSE(Make({kAsItIs}).isThere);
    EXPECT_THAT(maker.Find(kAsItIs)->notes, Not(IsEmpty()));
}

TEST_F(SourceMakerTest, AFilterThatFailsBehindItsSourceHasBoth) {
    Filter(std::string(kFilter) + "print STDERR \"line 3: what is first?\\n\"; exit 1;\n");
    const MadeSource& made = Make({kAsItIs});
    EXPECT_TRUE(made.isThere);
    EXPECT_THAT(made.notes, ElementsAre("line 3: what is first?"));
}

TEST_F(SourceMakerTest, AFloodOfNotesIsCut) {
    Filter("#!/usr/bin/perl\nprint STDERR \"note $_\\n\" for 1 .. 500;\nexit 1;\n");
    const MadeSource& made = Make({kAsItIs});
    EXPECT_EQ(made.notes.size(), 51U);
    EXPECT_EQ(made.notes.back(), "and more, which is left out here");
}

TEST_F(SourceMakerTest, ANameThatCannotBeUsedIsToldAndNothingRuns) {
    document.SetPath("/documents/two words.tvn");
    EXPECT_THAT(Make({kAsItIs}).notes, ElementsAre("shader name contains whitespace characters"));
    EXPECT_FALSE(maker.Find(kAsItIs)->isThere);
    maker.Make({kGenerated});
    EXPECT_TRUE(maker.Find(kGenerated)->isThere);
    EXPECT_THAT(Alerts(), IsEmpty());
    EXPECT_FALSE(site.report.HasPending());
}

TEST_F(SourceMakerTest, WhatWouldBeTheSameIsNotMadeAgain) {
    Make({kAsItIs});
    ASSERT_THAT(told, SizeIs(1));
    Make({kAsItIs});
    EXPECT_THAT(told, SizeIs(1));
    Add(test::MakeLink("Link", 2));
    EXPECT_THAT(Make({kAsItIs}).text, HasSubstr("Link_2"));
    EXPECT_THAT(told, SizeIs(2));
    document.m_renderOptions["OTHER"] = "1";
    Make({kAsItIs});
    EXPECT_THAT(told, SizeIs(3));
    maker.Forget();
    Make({kAsItIs});
    EXPECT_THAT(told, SizeIs(4));
}

TEST_F(SourceMakerTest, ANewerStateStopsTheRunOfTheOlder) {
    const std::string hold = host.Directory().Write("hold", "");
    Filter(std::string(kFilter) + "select undef, undef, undef, 0.005 while -e '" + hold + "';\n");
    maker.Make({kAsItIs});
    EXPECT_TRUE(maker.IsAtWork(kAsItIs));
    Add(test::MakeLink("Link", 2));
    maker.Make({kAsItIs});
    fs::remove(hold);
    ASSERT_TRUE(PumpUntil([this] { return !maker.IsAtWork(kAsItIs); }));
    EXPECT_THAT(maker.Find(kAsItIs)->text, HasSubstr("Link_2"));
    EXPECT_THAT(told, SizeIs(1));
    EXPECT_TRUE(PumpUntil([this] { return !site.commands.AnyLineChildLeft(); }));
}

TEST_F(SourceMakerTest, ARunThatIsForgottenTellsNothing) {
    const std::string hold = host.Directory().Write("hold", "");
    Filter(std::string(kFilter) + "select undef, undef, undef, 0.005 while -e '" + hold + "';\n");
    maker.Make({kAsItIs});
    maker.Forget();
    EXPECT_FALSE(maker.IsAtWork(kAsItIs));
    EXPECT_TRUE(PumpUntil([this] { return !site.commands.AnyLineChildLeft(); }));
    EXPECT_THAT(told, IsEmpty());
    fs::remove(hold);
    EXPECT_TRUE(Make({kAsItIs}).isThere);
}

TEST_F(SourceMakerTest, WhatIsNotWantedAnyMoreIsStoppedAndForgotten) {
    const std::string hold = host.Directory().Write("hold", "");
    Filter(std::string(kFilter) + "select undef, undef, undef, 0.005 while -e '" + hold + "';\n");
    maker.Make({kAsItIs});
    maker.Make({kGenerated});
    EXPECT_FALSE(maker.IsAtWork(kAsItIs));
    EXPECT_TRUE(PumpUntil([this] { return !site.commands.AnyLineChildLeft(); }));
    EXPECT_EQ(maker.Find(kAsItIs), nullptr);
    EXPECT_THAT(told, ElementsAre(kGenerated));
}

TEST_F(SourceMakerTest, AFilterThatTakesTooLongIsEndedAndThatIsTold) {
    site.compileLimits.time = std::chrono::seconds(1);
    site.compileLimits.timeSetBy = "limit.compiletime in the site definitions";
    Filter("#!/usr/bin/perl\nsleep 1 while 1;\n");
    const MadeSource& made = Make({kAsItIs});
    EXPECT_FALSE(made.isThere);
    EXPECT_THAT(made.notes, ElementsAre(HasSubstr("limit.compiletime in the site definitions")));
}

TEST_F(SourceMakerTest, WarningsOfTheGenerationStandWithEachSourceAndNotInTheLog) {
    test::BoxAt(document, 0).lacksTemplates = true;
    maker.Make({kGenerated});
    EXPECT_THAT(maker.Find(kGenerated)->notes, ElementsAre(HasSubstr("One_1 is a copy without templates")));
    EXPECT_THAT(Make({kAsItIs}).notes, ElementsAre(HasSubstr("One_1 is a copy without templates")));
    EXPECT_EQ(host.Sink().log, "");
}

TEST_F(SourceMakerTest, AShaderCannotBeCalledAsTheDirectoryOfTheseFiles) {
    document.SetPath("/documents/sourcefiles.tvn");
    EXPECT_FALSE(session.ShaderNameOk());
}

}  // namespace
}  // namespace tavrin
