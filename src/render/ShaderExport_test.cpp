// SPDX-License-Identifier: Apache-2.0
// Export: checks of the paths, the document's copy, the command of the export script; the export paths.
#include "render/ShaderExport.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <set>
#include <thread>

#include "render/RenderSession.h"
#include "site/Site.h"
#include "support/Patience.h"
#include "support/TestHost.h"

namespace tavrin {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::IsEmpty;

class ShaderExportTest : public test::DocumentTest {
  protected:
    ShaderExportTest() {
        // The launcher notes its words, the filter only that it has run.
        host.Directory().Write("bin/PerlExec",
                               "#!/bin/sh\nprintf '<%s>' \"$@\" >> \"$TAVRN_WORKDIR/words\"\n");
        fs::permissions(host.Directory() / "bin/PerlExec", fs::perms::owner_all);
        site.environment.Set("PATH", host.Directory() / "bin" + ":/usr/bin:/bin");
        Filter("");
        document.SetPath("/documents/plastic.tvn");
        Add(test::MakeLink("Link", 1));
        options.tavrnPath = Out("plastic.tvn");
        options.sourcePath = Out("plastic.src");
        options.compiledPath = Out("plastic.bin");
        options.shaderIfacePath = Out("plastic.cus");
        options.renderIfacePath = Out("plastic.ri");
        options.postSaveScript = Out("notify");
        fs::create_directories(Out(""));
    }
    void Filter(const std::string& end) const {
        host.Directory().Write("installation/mini/bin/redirect.pl",
                               "open my $note, '>', \"$ENV{TAVRN_WORKDIR}/saved\";\n" + end);
    }
    // Documents that are read may hold it.
    void AddLinkOperator() {
        host.startsProcesses = false;
        host.AddOperator("Link", "input in { float { 0 0 1 0 %g } } output out { float out }");
        Filter("");  // a new operator brings a library's usual scripts
    }
    std::string Out(const std::string& name) const { return host.Directory() / "out/" + name; }
    void WaitForEnd() const {
        const auto limit = std::chrono::steady_clock::now() + test::kPatience;
        while (site.commands.AnyProcessLeft() && std::chrono::steady_clock::now() < limit) {
            std::this_thread::sleep_for(std::chrono::milliseconds(2));
        }
    }
    // Exports; what the export script is told, behind the shader's name.
    std::string Targets() {
        fs::remove(site.WorkPath("words"));
        EXPECT_TRUE(exporter.Export(options));
        WaitForEnd();
        const std::string words = test::ReadFile(site.WorkPath("words"));
        const std::string head = "<" + site.directories.libDir + "/bin/exportall><plastic>";
        EXPECT_EQ(words.substr(0, head.size()), head);
        return words.size() < head.size() ? words : words.substr(head.size());
    }
    bool Refuses() { return !exporter.Export(options) && !site.commands.AnyProcessLeft(); }
    bool IsSaved() const { return fs::exists(site.WorkPath("saved")); }

    Site& site = host.GetSite();
    CCodeGen siteCodeGen;
    RenderSession session{document, site, siteCodeGen};
    ShaderExport exporter{document, site, session};
    CExportOptions options;
};

TEST_F(ShaderExportTest, WithNothingToWriteTheShaderIsSavedAndTheScriptIsRun) {
    EXPECT_EQ(Targets(), "<-><-><-><-><->");
    EXPECT_TRUE(IsSaved());
    EXPECT_TRUE(fs::is_empty(Out("")));
    EXPECT_THAT(Alerts(), IsEmpty());
}

TEST_F(ShaderExportTest, TheTargetsStandInAnOrderOfTheirOwn) {
    options.saveSource = options.saveCompiled = options.saveShaderIface = options.saveRenderIface = 1;
    options.runPostSave = 1;
    EXPECT_EQ(Targets(), "<" + Out("plastic.src") + "><" + Out("plastic.bin") + "><" + Out("plastic.cus") +
                             "><" + Out("plastic.ri") + "><" + Out("notify") + ">");
}

TEST_F(ShaderExportTest, EachFlagGivesOneTarget) {
    options.saveSource = 1;
    EXPECT_EQ(Targets(), "<" + Out("plastic.src") + "><-><-><-><->");
    options.saveSource = 0;
    options.saveCompiled = 1;
    EXPECT_EQ(Targets(), "<-><" + Out("plastic.bin") + "><-><-><->");
    options.saveCompiled = 0;
    options.saveShaderIface = 1;
    EXPECT_EQ(Targets(), "<-><-><" + Out("plastic.cus") + "><-><->");
    options.saveShaderIface = 0;
    options.saveRenderIface = 1;
    EXPECT_EQ(Targets(), "<-><-><-><" + Out("plastic.ri") + "><->");
    options.saveRenderIface = 0;
    options.runPostSave = 1;
    EXPECT_EQ(Targets(), "<-><-><-><-><" + Out("notify") + ">");
}

TEST_F(ShaderExportTest, ADocumentThatWasCutShortIsNotExportedOverItsFileUnasked) {
    AddLinkOperator();
    const std::string cut = "opdesk { opbox { filename Link wid 1 }\noops }\n";
    ASSERT_TRUE(document.Open(host.Directory().Write("out/plastic.tvn", cut)));
    host.Sink().alerts.clear();
    options.saveTavrn = 1;
    options.tavrnPath = Out("../out/plastic.tvn");
    EXPECT_TRUE(Refuses());
    EXPECT_THAT(Alerts(), ElementsAre(options.tavrnPath +
                                      " was not read to its end, and exporting would lose the rest"));
    EXPECT_FALSE(IsSaved());

    std::vector<std::string> asked;
    bool answer = false;
    exporter.AskBeforeLoss([&](const std::string& path) {
        asked.push_back(path);
        return answer;
    });
    EXPECT_TRUE(Refuses());
    EXPECT_EQ(test::ReadFile(Out("plastic.tvn")), cut);
    options.tavrnPath = Out("copy.tvn");
    Targets();
    EXPECT_THAT(asked, ElementsAre(Out("../out/plastic.tvn")));
    EXPECT_TRUE(document.WasCutShort());

    options.tavrnPath = Out("plastic.tvn");
    answer = true;
    Targets();
    Targets();
    EXPECT_THAT(asked, testing::SizeIs(2)) << "nothing is left to be lost";
    EXPECT_NE(test::ReadFile(Out("plastic.tvn")), cut);
}

TEST_F(ShaderExportTest, WhatIsExportedOverTheDocumentsFileIsItsOwn) {
    AddLinkOperator();
    ASSERT_TRUE(document.Open(host.Directory().Write("out/plastic.tvn", document.Store())));
    document.SetModified();
    options.saveTavrn = 1;
    options.tavrnPath = Out("plastic.tvn");
    document.toolbar = {"new"};
    Targets();
    EXPECT_THAT(test::ReadFile(Out("plastic.tvn")), testing::HasSubstr("new"));
    EXPECT_FALSE(document.Origin().file->HoldsOther());
    EXPECT_TRUE(document.IsModified());
}

TEST_F(ShaderExportTest, AFlagWithoutAPathGivesNoTarget) {
    options.saveSource = options.saveCompiled = options.saveShaderIface = options.saveRenderIface = 1;
    options.runPostSave = options.saveTavrn = 1;
    options.sourcePath = options.compiledPath = options.shaderIfacePath = options.renderIfacePath = "";
    options.postSaveScript = options.tavrnPath = "";
    EXPECT_EQ(Targets(), "<-><-><-><-><->");
    EXPECT_THAT(Alerts(), IsEmpty());
}

TEST_F(ShaderExportTest, ThePostSaveScriptMayHaveArguments) {
    options.runPostSave = 1;
    options.postSaveScript = "notify --all now";
    EXPECT_EQ(Targets(), "<-><-><-><-><notify --all now>");
}

TEST_F(ShaderExportTest, ACopyOfTheDocumentIsWrittenAsItWouldBeSaved) {
    document.SetModified();
    options.saveTavrn = 1;
    EXPECT_EQ(Targets(), "<-><-><-><-><->");
    EXPECT_EQ(test::ReadFile(Out("plastic.tvn")), document.Store());
    EXPECT_TRUE(document.IsModified());
    EXPECT_EQ(document.Path(), "/documents/plastic.tvn");
}

TEST_F(ShaderExportTest, AnEmptyDeskIsNotExported) {
    document.m_boxes.clear();
    options.saveTavrn = 1;
    options.sourcePath = "with blank";
    options.saveSource = 1;
    EXPECT_TRUE(Refuses());
    EXPECT_THAT(Alerts(), ElementsAre("desk is empty"));
    EXPECT_FALSE(IsSaved());
    EXPECT_TRUE(fs::is_empty(Out("")));
}

TEST_F(ShaderExportTest, ACopyThatCannotBeWrittenStopsTheExport) {
    options.saveTavrn = 1;
    options.tavrnPath = Out("nowhere/plastic.tvn");
    EXPECT_TRUE(Refuses());
    EXPECT_THAT(Alerts(), ElementsAre("unable to write shader file " + options.tavrnPath));
    EXPECT_FALSE(IsSaved());
}

TEST_F(ShaderExportTest, AShaderThatCannotBeSavedIsNotExportedAndTheCopyStays) {
    Filter("exit 2;\n");
    options.saveTavrn = 1;
    EXPECT_TRUE(Refuses());
    EXPECT_TRUE(IsSaved());
    EXPECT_EQ(test::ReadFile(Out("plastic.tvn")), document.Store());
    EXPECT_EQ(host.Sink().log, "save shader command returned 2\r\n");
}

// Which flag looks at which path.
struct Pair {
    int CExportOptions::*flag;
    std::string CExportOptions::*path;
};

TEST_F(ShaderExportTest, EachFlagButThatOfTheShaderInterfaceChecksOnePathForBlanks) {
    const CExportOptions good = options;
    const std::vector<std::string CExportOptions::*> paths = {
        &CExportOptions::tavrnPath,       &CExportOptions::sourcePath,      &CExportOptions::compiledPath,
        &CExportOptions::shaderIfacePath, &CExportOptions::renderIfacePath, &CExportOptions::postSaveScript};
    const std::vector<Pair> pairs = {{&CExportOptions::saveTavrn, &CExportOptions::tavrnPath},
                                     {&CExportOptions::saveSource, &CExportOptions::sourcePath},
                                     {&CExportOptions::saveCompiled, &CExportOptions::compiledPath},
                                     {&CExportOptions::saveShaderIface, nullptr},
                                     {&CExportOptions::saveRenderIface, &CExportOptions::shaderIfacePath},
                                     {&CExportOptions::runPostSave, &CExportOptions::renderIfacePath}};
    for (size_t flag = 0; flag < pairs.size(); ++flag) {
        for (size_t path = 0; path < paths.size(); ++path) {
            SCOPED_TRACE(testing::Message() << "flag " << flag << ", path " << path);
            options = good;
            options.*pairs[flag].flag = 1;
            options.*paths[path] = Out("my plastic");
            host.Sink().alerts.clear();
            const bool started = exporter.Export(options);
            WaitForEnd();
            EXPECT_EQ(started, pairs[flag].path != paths[path]);
            if (started) {
                EXPECT_THAT(Alerts(), IsEmpty());
            } else {
                EXPECT_THAT(Alerts(), ElementsAre("export file path \"" + Out("my plastic") +
                                                  "\" contains whitespace"));
            }
        }
    }
}

TEST_F(ShaderExportTest, AControlCharacterInAnyPathThatIsUsedStopsTheExportAndIsShown) {
    const std::vector<Pair> targets = {{&CExportOptions::saveTavrn, &CExportOptions::tavrnPath},
                                       {&CExportOptions::saveSource, &CExportOptions::sourcePath},
                                       {&CExportOptions::saveCompiled, &CExportOptions::compiledPath},
                                       {&CExportOptions::saveShaderIface, &CExportOptions::shaderIfacePath},
                                       {&CExportOptions::saveRenderIface, &CExportOptions::renderIfacePath}};
    const CExportOptions good = options;
    for (const Pair& target : targets) {
        options = good;
        options.*target.flag = 1;
        options.*target.path = Out("a\x1b[2J\rb");
        host.Sink().alerts.clear();
        EXPECT_TRUE(Refuses());
        EXPECT_THAT(Alerts(), ElementsAre("export file path \"" + Out("a\\x1b[2J\\rb") +
                                          "\" contains a control character"));
        options.*target.flag = 0;
        EXPECT_EQ(Targets(), "<-><-><-><-><->") << "a path that is not used is not looked at";
    }
}

TEST_F(ShaderExportTest, AControlCharacterInThePostSaveCommandStopsTheExport) {
    options.runPostSave = 1;
    for (const char* command : {"notify\rtouch x", "notify\ntouch", "notify \x7f", "notify \x01"}) {
        options.postSaveScript = command;
        EXPECT_TRUE(Refuses());
        EXPECT_THAT(host.Sink().LastAlert(), testing::EndsWith("\" contains a control character"));
    }
    options.postSaveScript = "notify\tall";
    EXPECT_EQ(Targets(), "<-><-><-><-><notify\tall>");
}

// Documents that somebody else has written

class ForeignExportTest : public ShaderExportTest {
  protected:
    ForeignExportTest() {
        document.exportOptions = options;
        document.SetForeign(true);
    }
    void Ask(bool answer) {
        exporter.AskBeforeForeign([this, answer](const ExportPlan& plan) {
            plans.push_back(plan);
            return answer;
        });
    }
    bool IsDone() {
        fs::remove(site.WorkPath("words"));
        const bool started = exporter.ExportAll();
        WaitForEnd();
        return started && fs::exists(site.WorkPath("words"));
    }

    CExportOptions& wishes = document.exportOptions;
    std::vector<ExportPlan> plans;
};

TEST_F(ForeignExportTest, WhatOneWantsIsShownBeforeAnythingIsWritten) {
    wishes.saveTavrn = wishes.saveSource = wishes.runPostSave = 1;
    wishes.postSaveScript = "touch \"/tmp/a b\"";
    host.Directory().Write("out/plastic.src", "precious");
    Ask(false);
    EXPECT_FALSE(IsDone());
    ASSERT_EQ(plans.size(), 1U);
    EXPECT_THAT(plans[0].lines, ElementsAre("write " + Out("plastic.tvn"),
                                            "write " + Out("plastic.src") + ", which replaces the file there",
                                            "run touch \"/tmp/a b\""));
    EXPECT_FALSE(fs::exists(Out("plastic.tvn")));
    EXPECT_FALSE(IsSaved());
    EXPECT_EQ(test::ReadFile(Out("plastic.src")), "precious");
    Ask(true);
    EXPECT_TRUE(IsDone());
    EXPECT_TRUE(fs::exists(Out("plastic.tvn")));
}

TEST_F(ForeignExportTest, WithNobodyToAskItIsRefused) {
    wishes.saveSource = 1;
    EXPECT_FALSE(IsDone());
    EXPECT_THAT(Alerts(),
                ElementsAre("/documents/plastic.tvn was not saved here: what it wants exported is not done"));
    EXPECT_FALSE(IsSaved());
}

TEST_F(ForeignExportTest, OneThatWantsNothingIsNotAskedAbout) {
    Ask(false);
    EXPECT_TRUE(IsDone());
    EXPECT_TRUE(plans.empty());
}

TEST_F(ForeignExportTest, TheUsersOwnDocumentIsNotAskedAbout) {
    wishes.saveSource = 1;
    document.SetForeign(false);
    Ask(false);
    EXPECT_TRUE(IsDone());
    EXPECT_TRUE(plans.empty());
}

TEST_F(ForeignExportTest, APathThatTheUserHasChosenIsNotAskedAboutAndOneOfTheDocumentsIs) {
    Ask(false);
    EXPECT_TRUE(exporter.Export(ShaderExport::OnlyThis(ExportKind::kCompiledShader, Out("mine.bin"))));
    WaitForEnd();
    EXPECT_TRUE(plans.empty());
    EXPECT_FALSE(exporter.ExportAsDocumentSays(ExportKind::kCompiledShader));
    ASSERT_EQ(plans.size(), 1U);
    EXPECT_THAT(plans[0].lines, ElementsAre("write " + Out("plastic.bin")));
}

TEST_F(ForeignExportTest, WhatIsAgreedToIsThatAndNothingElse) {
    Ask(false);
    const auto digest = [this] {
        exporter.ExportAll();
        return plans.back().digest;
    };
    wishes.saveSource = 1;
    std::set<std::string> digests = {digest()};
    EXPECT_EQ(digest(), *digests.begin()) << "the same again";
    wishes.sourcePath = Out("plastic.other");
    digests.insert(digest());
    wishes.saveSource = 0;
    wishes.saveCompiled = 1;
    wishes.compiledPath = Out("plastic.other");
    digests.insert(digest());
    wishes.runPostSave = 1;
    digests.insert(digest());
    wishes.postSaveScript += " now";
    digests.insert(digest());
    document.SetPath("/elsewhere/plastic.tvn");
    document.SetForeign(true);
    digests.insert(digest());
    EXPECT_EQ(digests.size(), 6U);
}

TEST_F(ShaderExportTest, BlanksStopTheExportBeforeAnythingIsWrittenAndTheFirstIsAlerted) {
    options.saveTavrn = options.saveSource = options.saveCompiled = 1;
    options.sourcePath = Out("my source");
    options.compiledPath = Out("my binary");
    EXPECT_TRUE(Refuses());
    EXPECT_THAT(Alerts(), ElementsAre("export file path \"" + Out("my source") + "\" contains whitespace"));
    EXPECT_FALSE(IsSaved());
    EXPECT_TRUE(fs::is_empty(Out("")));
}

TEST_F(ShaderExportTest, TabsAndLineFeedsCountAsBlanks) {
    options.saveSource = 1;
    for (const char* name : {"a\tb", "a\nb"}) {
        options.sourcePath = Out(name);
        EXPECT_TRUE(Refuses());
        EXPECT_EQ(host.Sink().LastAlert(), "export file path \"" + Out(name) + "\" contains whitespace");
    }
    EXPECT_EQ(Alerts().size(), 2U);
}

TEST_F(ShaderExportTest, ARelativePathIsCheckedWithTheDirectoryThatItLiesIn) {
    const fs::path before = fs::current_path();
    fs::create_directories(Out("my place"));
    fs::current_path(Out("my place"));
    options.saveSource = 1;
    options.sourcePath = "plastic.src";
    EXPECT_TRUE(Refuses());
    EXPECT_THAT(Alerts(), ElementsAre("export file path \"" + fs::current_path().string() +
                                      "/plastic.src\" contains whitespace"));
    fs::current_path(before);
    EXPECT_EQ(Targets(), "<plastic.src><-><-><-><->");
}

TEST_F(ShaderExportTest, ABlankInAShaderInterfacePathReachesTheScriptAsOneWord) {
    options.saveShaderIface = 1;
    options.shaderIfacePath = Out("my plastic.cus");
    EXPECT_EQ(Targets(), "<-><-><" + Out("my plastic.cus") + "><-><->");
}

TEST_F(ShaderExportTest, DoubleQuotesReachTheScriptAsTheyAre) {
    options.saveSource = options.runPostSave = 1;
    options.sourcePath = Out("a\"b\".src");
    options.postSaveScript = "\"my tools/notify\" --name \"a b\"";
    EXPECT_EQ(Targets(), "<" + Out("a\"b\".src") + "><-><-><-><\"my tools/notify\" --name \"a b\">");
    EXPECT_THAT(Alerts(), IsEmpty());
}

TEST_F(ShaderExportTest, APostSaveCommandWithAnOpenQuoteIsRefusedBeforeAnythingIsWritten) {
    options.saveTavrn = options.runPostSave = 1;
    options.postSaveScript = "notify \"a b";
    EXPECT_TRUE(Refuses());
    EXPECT_THAT(Alerts(),
                ElementsAre("post save command notify \"a b has a double quote that is not closed"));
    EXPECT_FALSE(IsSaved());
    EXPECT_TRUE(fs::is_empty(Out("")));
    options.runPostSave = 0;
    EXPECT_EQ(Targets(), "<-><-><-><-><->");
}

TEST_F(ShaderExportTest, OneKindAloneHasItsFlagAndItsPathAndNothingElse) {
    options = ShaderExport::OnlyThis(ExportKind::kShaderSource, "a.src");
    EXPECT_EQ(Targets(), "<a.src><-><-><-><->");
    options = ShaderExport::OnlyThis(ExportKind::kCompiledShader, "a.bin");
    EXPECT_EQ(Targets(), "<-><a.bin><-><-><->");
    options = ShaderExport::OnlyThis(ExportKind::kShaderIface, "a.cus");
    EXPECT_EQ(Targets(), "<-><-><a.cus><-><->");
    options = ShaderExport::OnlyThis(ExportKind::kRenderIface, "a.ri");
    EXPECT_EQ(Targets(), "<-><-><-><a.ri><->");
    EXPECT_EQ(options.saveTavrn, 0);
    EXPECT_EQ(options.runPostSave, 0);
}

TEST_F(ShaderExportTest, TheDocumentHasAPathForEachKind) {
    document.exportOptions = options;
    EXPECT_EQ(exporter.DocumentPath(ExportKind::kShaderSource), Out("plastic.src"));
    EXPECT_EQ(exporter.DocumentPath(ExportKind::kCompiledShader), Out("plastic.bin"));
    EXPECT_EQ(exporter.DocumentPath(ExportKind::kShaderIface), Out("plastic.cus"));
    EXPECT_EQ(exporter.DocumentPath(ExportKind::kRenderIface), Out("plastic.ri"));
}

class ExportPathsTest : public test::DocumentTest {
  protected:
    ExportPathsTest() {
        site.extShaderSource = ".src";
        site.extCompiledShader = ".bin";
        site.extRenderIface = ".ri";
        document.SetPath("/documents/plastic.tvn");
        options.tavrnPath = "/a/x.tvn";
        options.sourcePath = "/b/c/";
        options.compiledPath = "./old.bin";
        options.shaderIfacePath = "old.cus";
        options.renderIfacePath = "";
        options.postSaveScript = "/d/notify me";
    }
    std::vector<std::string> Paths() {
        UpdateExportPaths(document, site);
        return {options.tavrnPath, options.sourcePath, options.compiledPath, options.shaderIfacePath,
                options.renderIfacePath};
    }

    Site& site = host.GetSite();
    CExportOptions& options = document.exportOptions;
};

TEST_F(ExportPathsTest, PathsKeepTheirDirectoriesAndGetTheDocumentsNameAndTheExtensions) {
    EXPECT_THAT(Paths(), ElementsAre("/a/plastic.tvn", "/b/c/plastic.src", "./plastic.bin", "plastic.cus",
                                     "plastic.ri"));
    EXPECT_EQ(options.postSaveScript, "/d/notify me");
}

TEST_F(ExportPathsTest, ADocumentOfAnotherNameMovesAllFive) {
    Paths();
    document.SetPath("/elsewhere/glass.v2.tvn");
    EXPECT_THAT(Paths(), ElementsAre("/a/glass.v2.tvn", "/b/c/glass.v2.src", "./glass.v2.bin", "glass.v2.cus",
                                     "glass.v2.ri"));
    document.SetPath("");
    EXPECT_THAT(Paths(), ElementsAre("/a/Untitled.tvn", "/b/c/Untitled.src", "./Untitled.bin", "Untitled.cus",
                                     "Untitled.ri"));
}

TEST_F(ExportPathsTest, TheExtensionsAreTheSitesPresentOnes) {
    Paths();
    site.docExt = ".doc";
    site.extShaderSource = "";
    site.extShaderIface = ".lgt";
    EXPECT_THAT(Paths(),
                ElementsAre("/a/plastic.doc", "/b/c/plastic", "./plastic.bin", "plastic.lgt", "plastic.ri"));
}

TEST_F(ExportPathsTest, BringingThePathsUpToDateDoesNotMarkTheDocument) {
    document.SetModified(false);
    Paths();
    EXPECT_FALSE(document.IsModified());
}

}  // namespace
}  // namespace tavrin
