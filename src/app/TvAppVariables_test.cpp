// SPDX-License-Identifier: Apache-2.0
// Named values, the reaction to the shader type, and the user's editor.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <thread>

#include "app/TvApp.h"
#include "forms/FormFields.h"
#include "forms/FormFrame.h"
#include "support/Patience.h"
#include "support/TestSite.h"

namespace tavrin {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr const char* kSiteFile =
    "ext.shaderiface surface .sif\next.shaderiface volume\n"
    "roe {\nxfield {\nenvname DEPTH\nvalue 2\n}\n}\n";

class TvAppVariablesTest : public testing::Test {
  protected:
    TvAppVariablesTest() {
        report.SetSink(&sink);
        directory.Write("site/mray/tavrn.def", kSiteFile);
        environment.Set("TAVRN_DIR", directory / "site");
        environment.Set("TAVRN_TMPDIR", directory / "tmp");
        environment.Set("PATH", "/usr/bin:/bin");
        app = std::make_unique<CTvApp>(report, queue, environment, "/opt/tavrin/bin/tavrin");
        app->LoadSiteDefaults();
    }
    ~TvAppVariablesTest() override { app->SetDocument(nullptr); }

    CTvDoc& OpenDocument() {
        document = std::make_unique<CTvDoc>(*app);
        app->SetDocument(document.get());
        return *document;
    }
    std::string Option(const std::string& name) { return document->m_renderOptions.at(name); }
    // What the form shows.
    std::string Shown() {
        return dynamic_cast<CFormXField&>(*app->RenderOptionsForm().children.front()).text;
    }
    const std::string& IfaceExt() { return app->GetSite().extShaderIface; }

    test::TempDir directory;
    test::CollectingSink sink;
    Report report;
    PlainQueue queue;
    Environment environment;
    std::unique_ptr<CTvApp> app;
    std::unique_ptr<CTvDoc> document;
};

TEST_F(TvAppVariablesTest, WithoutADocumentTheApplicationHoldsTheValue) {
    EXPECT_EQ(app->GetDocument(), nullptr);
    app->SetVariable("WIDTH", "320", true);
    EXPECT_EQ(app->GetAppVariable("WIDTH"), "320");
    EXPECT_EQ(app->GetAppVariable("HEIGHT"), "");
    EXPECT_EQ(app->AppVariables().count("HEIGHT"), 0U);
}

TEST_F(TvAppVariablesTest, WithoutADocumentTheFormAndTheExtensionAreNotTold) {
    app->SetVariable("DEPTH", "9", true);
    EXPECT_EQ(Shown(), "2");
    app->SetVariable("TAVRN_SHADER_TYPE", "surface", true);
    EXPECT_EQ(IfaceExt(), ".cus");
}

TEST_F(TvAppVariablesTest, ANewDocumentStartsWithTheApplicationsValues) {
    app->SetVariable("WIDTH", "320", false);
    OpenDocument();
    EXPECT_EQ(Option("WIDTH"), "320");
    EXPECT_EQ(Option("DEPTH"), "2");
    EXPECT_FALSE(document->IsModified());
}

TEST_F(TvAppVariablesTest, ANewOrChangedValueMarksTheDocumentAndLeavesTheApplicationsAlone) {
    OpenDocument();
    EXPECT_EQ(app->GetDocument(), document.get());
    app->SetVariable("DEPTH", "4", false);
    EXPECT_EQ(Option("DEPTH"), "4");
    EXPECT_TRUE(document->IsModified());
    EXPECT_EQ(app->GetAppVariable("DEPTH"), "2");
    document->SetModified(false);
    app->SetVariable("NEW", "", false);
    EXPECT_EQ(Option("NEW"), "");
    EXPECT_TRUE(document->IsModified());
}

TEST_F(TvAppVariablesTest, TheValueThatWasThereDoesNotMarkTheDocument) {
    OpenDocument();
    app->SetVariable("DEPTH", "2", true);
    EXPECT_FALSE(document->IsModified());
}

TEST_F(TvAppVariablesTest, TheFormShowsTheValueOnlyWhenItIsToldTo) {
    OpenDocument();
    app->SetVariable("DEPTH", "4", false);
    EXPECT_EQ(Shown(), "2");
    app->SetVariable("DEPTH", "4", true);
    EXPECT_EQ(Shown(), "4");
    app->SetVariable("OTHER", "5", true);
    EXPECT_EQ(Shown(), "4");
}

TEST_F(TvAppVariablesTest, TheShaderTypeSelectsTheInterfaceExtension) {
    OpenDocument();
    app->SetVariable("TAVRN_SHADER_TYPE", "surface", false);
    EXPECT_EQ(IfaceExt(), ".sif");
    app->SetVariable("TAVRN_SHADER_TYPE", "volume", false);
    EXPECT_EQ(IfaceExt(), "");
}

TEST_F(TvAppVariablesTest, AShaderTypeWithoutAnExtensionGetsTheUsualOne) {
    OpenDocument();
    app->SetVariable("TAVRN_SHADER_TYPE", "surface", false);
    app->SetVariable("TAVRN_SHADER_TYPE", "Surface", false);
    EXPECT_EQ(IfaceExt(), ".cus");
}

TEST_F(TvAppVariablesTest, TheShaderTypeThatWasThereIsActedOnAllTheSame) {
    OpenDocument().m_renderOptions["TAVRN_SHADER_TYPE"] = "surface";
    EXPECT_EQ(IfaceExt(), ".cus");
    app->SetVariable("TAVRN_SHADER_TYPE", "surface", false);
    EXPECT_EQ(IfaceExt(), ".sif");
    EXPECT_FALSE(document->IsModified());
}

TEST_F(TvAppVariablesTest, AnotherVariableDoesNotTouchTheExtension) {
    OpenDocument().m_renderOptions["TAVRN_SHADER_TYPE"] = "surface";
    app->SetVariable("DEPTH", "5", false);
    EXPECT_EQ(IfaceExt(), ".cus");
}

TEST_F(TvAppVariablesTest, ADocumentWithoutAShaderTypeGoesBackToTheUsualExtension) {
    OpenDocument();
    app->SetVariable("TAVRN_SHADER_TYPE", "surface", false);
    document->DeleteContents();
    app->ShaderTypeChanged();
    EXPECT_EQ(IfaceExt(), ".cus");
}

// What a program would show.
class ShownTitle : public TitleView {
  public:
    void ShowShaderType(const std::string& type) override { told.push_back("type " + type); }
    void ShowTitle(const std::string& title) override {
        told.push_back(title + " " + document->exportOptions.shaderIfacePath);
    }
    CTvDoc* document = nullptr;
    std::vector<std::string> told;
};

TEST_F(TvAppVariablesTest, WhateverChangesTheShaderTypeTitleAndExportPathsFollow) {
    ShownTitle view;
    view.document = &OpenDocument();
    document->SetPath("/there/a.tvn");
    app->SetTitleView(&view);
    app->SetVariable("TAVRN_SHADER_TYPE", "surface", false);
    EXPECT_THAT(view.told, ElementsAre("type surface", "a.tvn [surface] ./a.sif"));
    view.told.clear();
    app->SetVariable("TAVRN_SHADER_TYPE", "surface", true);
    EXPECT_EQ(view.told.size(), 2U) << "also where the value was there already";
    view.told.clear();
    app->SetVariable("DEPTH", "5", true);
    EXPECT_THAT(view.told, IsEmpty());
    document->SetPath("/there/b.tvn");
    app->UpdateTitle();
    EXPECT_THAT(view.told, ElementsAre("b.tvn [surface] ./b.sif"));
    view.told.clear();
    document->DeleteContents();
    app->ShaderTypeChanged();
    ASSERT_EQ(view.told.size(), 1U) << "a document without a type has none to show";
    EXPECT_EQ(view.told.front(), app->WindowTitle() + " " + document->exportOptions.shaderIfacePath);
    app->SetTitleView(nullptr);
}

TEST_F(TvAppVariablesTest, TheFormsDefaultsBringBackTheShaderTypeThatTheyHold) {
    directory.Write(
        "site/mray/tavrn.def",
        std::string(kSiteFile) + "roe {\nxfield {\nenvname TAVRN_SHADER_TYPE\nvalue surface\n}\n}\n");
    CTvApp other(report, queue, environment, "/opt/tavrin/bin/tavrin");
    other.LoadSiteDefaults();
    CTvDoc opened(other);
    other.SetDocument(&opened);
    other.SetVariable("TAVRN_SHADER_TYPE", "light", true);
    ShownTitle view;
    view.document = &opened;
    other.SetTitleView(&view);
    other.LoadFormDefaults();
    EXPECT_EQ(other.GetSite().extShaderIface, ".sif");
    ASSERT_THAT(view.told, SizeIs(2));
    EXPECT_EQ(view.told.front(), "type surface");
    EXPECT_THAT(view.told.back(), testing::EndsWith(".sif"));
    other.SetDocument(nullptr);
}

TEST_F(TvAppVariablesTest, WithoutADocumentTheExtensionStays) {
    OpenDocument();
    app->SetVariable("TAVRN_SHADER_TYPE", "surface", false);
    app->SetDocument(nullptr);
    app->ShaderTypeChanged();
    EXPECT_EQ(IfaceExt(), ".sif");
}

TEST_F(TvAppVariablesTest, TheEditorIsStartedWithThePathAsOneWordAndNotWaitedFor) {
    const std::string editor =
        directory.Write("editor.sh",
                        "while [ ! -e \"$1\" ]; do sleep 0.01; done\nprintf '<%s>' \"$@\" > \"$1.new\"\n"
                        "mv \"$1.new\" \"$1.shown\"\n");
    const std::string go = directory / "go";
    app->GetSite().directories.editorCmd = "sh " + editor + " " + go;
    app->OpenInEditor("/some/where/my file.tvn");
    EXPECT_FALSE(std::filesystem::exists(go + ".shown"));
    directory.Write("go", "");
    const auto limit = std::chrono::steady_clock::now() + test::kPatience;
    while (!std::filesystem::exists(go + ".shown") && std::chrono::steady_clock::now() < limit) {
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    EXPECT_EQ(test::ReadFile(go + ".shown"), "<" + go + "></some/where/my file.tvn>");
    EXPECT_THAT(sink.alerts, IsEmpty());
}

// The file's own name and type would bring a document back to this program.
TEST_F(TvAppVariablesTest, WithoutAnEditorOfTheUsersTheDesktopsEditorOfPlainTextsIsStarted) {
    const std::string shown = directory / "shown";
    const auto install = [this, &shown](const std::string& program, const std::string& types) {
        std::filesystem::permissions(
            directory.Write("bin/" + program, "#!/bin/sh\nprintf '" + program + "<%s>' \"$@\" > '" + shown +
                                                  ".new'\nmv '" + shown + ".new' '" + shown + "'\n"),
            std::filesystem::perms::owner_all);
        directory.Write("share/applications/" + program + ".desktop",
                        "[Desktop Entry]\nType=Application\nExec=" + program + " %f\n");
        return types + "=" + program + ".desktop;\n";
    };
    directory.Write("share/applications/mimeinfo.cache",
                    "[MIME Cache]\n" + install("tavrin", "application/x-tavrin-document") +
                        install("pad", "text/plain") + install("xdg-open", "x-none/x-none"));
    Environment& given = app->GetSite().environment;
    given.Set("PATH", directory / "bin" + ":/usr/bin:/bin");
    given.Set("HOME", directory / "home");
    given.Set("XDG_CONFIG_DIRS", directory / "etc");
    given.Set("XDG_DATA_DIRS", directory / "share");
    app->OpenInEditor("/some/where/my \"broken\" file.tvn");
    const auto limit = std::chrono::steady_clock::now() + test::kPatience;
    while (!std::filesystem::exists(shown) && std::chrono::steady_clock::now() < limit) {
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    EXPECT_EQ(test::ReadFile(shown), "pad</some/where/my \"broken\" file.tvn>");
    EXPECT_THAT(sink.alerts, IsEmpty());
    given.Set("XDG_DATA_DIRS", directory / "none");
    app->OpenInEditor("/some/where/my file.tvn");
    EXPECT_THAT(sink.alerts,
                ElementsAre(testing::StartsWith("there is no text editor to open /some/where/my file.tvn ")));
}

TEST_F(TvAppVariablesTest, AnEditorThatCannotStartIsAlerted) {
    app->GetSite().directories.editorCmd = "/no/such/editor";
    app->OpenInEditor("/some/file");
    EXPECT_THAT(sink.alerts, ElementsAre("command failed: /no/such/editor \"/some/file\""));
}

}  // namespace
}  // namespace tavrin
