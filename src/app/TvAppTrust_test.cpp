// SPDX-License-Identifier: Apache-2.0
// The commands of the current directory's site file, and documents of the user's own.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "app/DocumentCommands.h"
#include "app/TvApp.h"
#include "forms/FormButtons.h"
#include "forms/FormFrame.h"
#include "support/SmallApp.h"

namespace tavrin {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

constexpr const char* kCommands =
    "editorcmd \"gedit --wait\"\nmaxhistory 5\nsourcecodeprefilter /odd/filter\n"
    "livecommand /odd/live fast\n"
    "exportoptions\n{\n    shadersourcedir 1 /shaders\n    postsavescript 1 publish all\n}\n"
    "roe {\nframe {\nbutton {\nbuttonlabel Publish\nactionto form\nactionmsg system\nactionarg "
    "publish.sh\n}\n"
    "button {\nbuttonlabel Render\nactionto form\nactionmsg render\nactionarg render\n}\n}\n}\n";

class TvAppTrustTest : public test::SmallAppTest {
  protected:
    TvAppTrustTest() {
        directory.Write("tavrn.def", "");  // the home's
        fs::create_directories(Here());
        fs::permissions(Here(), fs::perms::group_write | fs::perms::others_write, fs::perm_options::remove);
        fs::current_path(Here());
    }
    ~TvAppTrustTest() override { fs::current_path(m_before); }

    std::string Here() const { return directory / "here"; }
    void WriteHere(const std::string& text) const {
        const std::string path = directory.Write("here/tavrn.def", text);
        fs::permissions(path, fs::perms::group_write | fs::perms::others_write, fs::perm_options::remove);
    }
    void Load(LocalCommandsRule rule) {
        MakeApp();
        app->LoadSiteDefaults(rule);
    }
    std::string Setting(const std::string& key) {
        std::string text = "(none)";
        app->GetSite().settings.GetSettingToken(key, text);
        return text;
    }
    // Of the two buttons of the form.
    std::vector<bool> Held() {
        const auto& frame = dynamic_cast<CFormFrame&>(*app->RenderOptionsForm().children.at(0));
        std::vector<bool> held;
        for (const auto& child : frame.children)
            held.push_back(dynamic_cast<CFormButton&>(*child).action.isHeld);
        return held;
    }
    void ExpectInForce(bool inForce) {
        EXPECT_EQ(Setting("sourcecodeprefilter"), inForce ? "/odd/filter" : "(none)");
        EXPECT_EQ(Setting("livecommand"), inForce ? "/odd/live" : "(none)");
        EXPECT_EQ(app->GetSite().directories.editorCmd == "gedit --wait", inForce);
        EXPECT_EQ(app->GetSite().environment.Get("TAVRN_EDITORCMD") == "\"gedit --wait\"", inForce);
        EXPECT_EQ(app->ExportDefaults().runPostSave, inForce ? 1 : 0);
        EXPECT_EQ(app->ExportDefaults().postSaveScript, inForce ? "publish all" : "");
        EXPECT_THAT(Held(), ElementsAre(!inForce, false));
        // What names no command is in force in any case.
        EXPECT_EQ(Setting("maxhistory"), "5");
        EXPECT_EQ(app->ExportDefaults().sourcePath, "/shaders/");
    }

  private:
    fs::path m_before = fs::current_path();
};

TEST_F(TvAppTrustTest, CommandsWaitForTheUsersWord) {
    WriteHere(kCommands);
    Load(LocalCommandsRule::kAsk);
    ExpectInForce(false);
    const LocalCommands* waiting = app->WaitingCommands();
    ASSERT_NE(waiting, nullptr);
    EXPECT_EQ(waiting->path, Here() + "/tavrn.def");
    EXPECT_THAT(waiting->Lines(), ElementsAre("editorcmd \"gedit --wait\"", "sourcecodeprefilter /odd/filter",
                                              "livecommand /odd/live fast", "postsavescript publish all",
                                              "button Publish: publish.sh"));
    app->AnswerForCommands(true);
    ExpectInForce(true);
    EXPECT_EQ(app->WaitingCommands(), nullptr);
}

TEST_F(TvAppTrustTest, YesIsRememberedUntilTheFileChangesOrLiesElsewhere) {
    WriteHere(kCommands);
    Load(LocalCommandsRule::kAsk);
    app->AnswerForCommands(true);
    Load(LocalCommandsRule::kAsk);
    EXPECT_EQ(app->WaitingCommands(), nullptr);
    ExpectInForce(true);
    WriteHere(std::string(kCommands) + "# more\n");
    Load(LocalCommandsRule::kAsk);
    EXPECT_NE(app->WaitingCommands(), nullptr);
    ExpectInForce(false);
    fs::rename(Here(), directory / "there");
    fs::current_path(directory / "there");
    directory.Write("there/tavrn.def", kCommands);
    Load(LocalCommandsRule::kAsk);
    EXPECT_NE(app->WaitingCommands(), nullptr);
}

TEST_F(TvAppTrustTest, NoHoldsUntilTheProgramEnds) {
    WriteHere(kCommands);
    Load(LocalCommandsRule::kAsk);
    app->AnswerForCommands(false);
    ExpectInForce(false);
    EXPECT_EQ(app->WaitingCommands(), nullptr);
    EXPECT_THAT(sink.log, HasSubstr("WARNING: the commands that site file " + Here() +
                                    "/tavrn.def names are not used\r\n"));
    Load(LocalCommandsRule::kAsk);
    EXPECT_NE(app->WaitingCommands(), nullptr);
}

TEST_F(TvAppTrustTest, WithoutAUserTheyAreUsedOrNotAndTheLogNamesThem) {
    WriteHere(kCommands);
    Load(LocalCommandsRule::kUse);
    ExpectInForce(true);
    EXPECT_THAT(sink.log,
                HasSubstr("site file " + Here() +
                          "/tavrn.def names commands, which are used: editorcmd \"gedit --wait\"; "));
    sink.log.clear();
    Load(LocalCommandsRule::kRefuse);
    ExpectInForce(false);
    EXPECT_EQ(app->WaitingCommands(), nullptr);
    EXPECT_THAT(sink.log, HasSubstr("/tavrn.def names commands, which are not used: editorcmd "));
}

TEST_F(TvAppTrustTest, AFileWithoutCommandsIsNotAskedAbout) {
    WriteHere("maxhistory 5\nexportoptions\n{\n    shadersourcedir 1 /shaders\n}\n");
    Load(LocalCommandsRule::kAsk);
    EXPECT_EQ(app->WaitingCommands(), nullptr);
    EXPECT_EQ(Setting("maxhistory"), "5");
    EXPECT_EQ(sink.log, "");
}

TEST_F(TvAppTrustTest, TheUsersOwnFileIsReadAsToldAlsoWhereItIsTheCurrentDirectorys) {
    directory.Write("tavrn.def", kCommands);
    fs::current_path(directory.Path());
    Load(LocalCommandsRule::kAsk);
    EXPECT_EQ(app->WaitingCommands(), nullptr);
    EXPECT_EQ(Setting("sourcecodeprefilter"), "/odd/filter");
}

TEST_F(TvAppTrustTest, TheInstallationsAndTheUsersFilesAreReadAsTold) {
    directory.Write("site/small/tavrn.def", "editorcmd first\nsourcecodeprefilter mine\n");
    directory.Write("tavrn.def", "editorcmd second\n");
    Load(LocalCommandsRule::kRefuse);
    EXPECT_EQ(app->GetSite().directories.editorCmd, "second");
    EXPECT_EQ(Setting("sourcecodeprefilter"), "mine");
    WriteHere("editorcmd third\n");
    Load(LocalCommandsRule::kRefuse);
    EXPECT_EQ(app->GetSite().directories.editorCmd, "second");
}

TEST_F(TvAppTrustTest, TheDocumentOfTheStartTakesOverWhatWasAgreedTo) {
    WriteHere(kCommands);
    Load(LocalCommandsRule::kAsk);
    CTvDoc document(*app);
    app->SetDocument(&document);
    EXPECT_EQ(document.exportOptions.runPostSave, 0);
    app->AnswerForCommands(true);
    EXPECT_EQ(document.exportOptions.runPostSave, 1);
    EXPECT_EQ(document.exportOptions.postSaveScript, "publish all");
    app->SetDocument(nullptr);
}

TEST_F(TvAppTrustTest, WhatCommandsHoldIsShownSoThatItIsRead) {
    WriteHere("editorcmd evil\xe2\x80\xae\x1b[2J\n");
    Load(LocalCommandsRule::kAsk);
    ASSERT_NE(app->WaitingCommands(), nullptr);
    EXPECT_THAT(app->WaitingCommands()->Lines(), ElementsAre("editorcmd evil\\u{202e}\\x1b[2J"));
}

TEST_F(TvAppTrustTest, EveryWidgetThatRunsACommandIsHeld) {
    WriteHere(
        "roe {\nledbutton {\nbuttonlabel Lamp\nstate 1\nactionto form\nactionmsg system\n}\n"
        "chooser {\nenvname KIND\nvalue one\nactionto form\nactionmsg system\nchoosercontents "
        "{\none\ntwo\n}\n}\n"
        "okfield {\nok_actionto form\nok_actionmsg system\nok_actionarg publish\ndefaults_actionto form\n"
        "defaults_actionmsg system\ndefaults_actionarg reset\n}\n}\n");
    Load(LocalCommandsRule::kAsk);
    ASSERT_NE(app->WaitingCommands(), nullptr);
    EXPECT_THAT(app->WaitingCommands()->Lines(), ElementsAre("button Lamp: 1 or 0", "chooser KIND: one | two",
                                                             "button OK: publish", "button Default: reset"));
    auto& form = app->RenderOptionsForm();
    EXPECT_TRUE(dynamic_cast<CFormLedButton&>(*form.children.at(0)).Click(true, app->OptionStore()).isHeld);
    EXPECT_TRUE(dynamic_cast<CFormChooser&>(*form.children.at(1)).Choose(1, app->OptionStore()).isHeld);
    app->AnswerForCommands(true);
    EXPECT_FALSE(dynamic_cast<CFormLedButton&>(*form.children.at(0)).Click(true, app->OptionStore()).isHeld);
    EXPECT_FALSE(dynamic_cast<CFormChooser&>(*form.children.at(1)).Choose(1, app->OptionStore()).isHeld);
}

TEST_F(TvAppTrustTest, ADocumentThatThisProgramSavesIsKnownInTheNextRun) {
    Load(LocalCommandsRule::kAsk);
    CTvDoc document(*app);
    std::string error;
    ASSERT_TRUE(document.Save(directory / "own.tvn", error)) << error;
    Load(LocalCommandsRule::kAsk);
    CTvDoc again(*app);
    ASSERT_TRUE(again.Open(directory / "own.tvn"));
    EXPECT_FALSE(again.IsForeign());
    directory.Write("own.tvn", test::ReadFile(directory / "own.tvn") + "#\n");
    ASSERT_TRUE(again.Open(directory / "own.tvn"));
    EXPECT_TRUE(again.IsForeign());
}

}  // namespace
}  // namespace tavrin
