// SPDX-License-Identifier: Apache-2.0
// The form in the whole program: options go to the document, its file and its render, and come back with
// every document; what happens while an action of the form goes on.
#include <QComboBox>
#include <QLabel>
#include <QTimer>

#include "ui/commands/DocumentWork.h"
#include "ui/forms/FormFieldControls.h"
#include "ui/forms/FormFrameControl.h"
#include "ui/forms/FormHands.h"
#include "ui/support/DocumentsTest.h"
#include "ui/support/Hands.h"

namespace tavrin {
namespace {

using test::BoxesShown;
using test::PressWhenBoxComes;
using test::ReadFile;
using test::WaitUntil;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

constexpr const char* kForm = R"text(
roe {
    xfield {
        envname DEPTH
        optionlabel Depth
        value 2
        forcefloat
        optioncontents {
            1 Fast
            4 Careful
        }
    }
    xyfield {
        envname PICTURE
        optionlabel Size
        envseparator x
        value 640,480
    }
    xfield {
        envname SECRET
        optionlabel Secret
        value none
        notavrnsave
    }
    ledbutton {
        buttonlabel Shadows
        envname SHADOWS
        state 1
    }
    chooser {
        envname TAVRN_SHADER_TYPE
        value surface
        choosercontents {
            surface
            metal
        }
    }
    button {
        buttonlabel Render
        actionto form
        actionmsg render
        actionarg render
    }
    button {
        buttonlabel Leave
        actionto form
        actionmsg exit
    }
    okfield {
        defaults_actionto roe
        defaults_actionmsg use-defaults
        ok_actionto form
        ok_actionmsg roe
        ok_actionarg hide
    }
}
)text";

// A chooser whose lines are documents, and a button that opens one.
std::string OpeningForm(const std::string& first, const std::string& second) {
    return "roe {\nchooser {\nenvname DOCUMENT\nactionto form\nactionmsg loadtavrn\nchoosercontents {\n" +
           first + "\n" + second +
           "\n}\n}\nbutton {\nbuttonlabel Other\nactionto form\nactionmsg loadtavrn\nactionarg " + second +
           "\n}\n}\n";
}

class FormDocuments : public test::DocumentsTest, public test::FormHands {
  protected:
    QWidget& FormWindow() override { return FormTool(); }
    ToolWindow& FormTool() { return Frame().Windows().Of(CommandId::kRenderOptions); }
    QComboBox& TypeBox() { return *Frame().OperatorBar().findChild<QComboBox*>("shaderType"); }

    void StartWithForm(const std::string& more = {}) {
        AddToSite(kForm + more);
        StartWithDocs();
        OpenForm();
    }
    void OpenForm() {
        Do(CommandId::kRenderOptions);
        ASSERT_TRUE(WaitUntil([this] { return FormTool().IsUp(); }));
    }
    std::string Option(const std::string& name) {
        const auto found = Document().m_renderOptions.find(name);
        return found == Document().m_renderOptions.end() ? "none" : found->second;
    }
    QString Shows(const QString& field) { return Named<FormEdit>(field).text(); }
    // A document with one box and these lines of options.
    std::string WriteWithOptions(const std::string& name, const std::string& options) {
        const std::string path = WriteDocument(name);
        return directory.Write(name + ".tvn", ReadFile(path) + "renderoptions {\n" + options + "}\n");
    }
    // Two documents, and a form that opens them.
    void StartWithTwo() {
        StartWithForm(OpeningForm(first, second));
        WriteWithOptions("docs/a", "setenv DEPTH 7.0\n");
        WriteWithOptions("docs/b", "setenv DEPTH 8.0\n");
    }
    const std::string first = directory / "docs/a.tvn";
    const std::string second = directory / "docs/b.tvn";

    void Render() {
        Do(CommandId::kRenderIt);
        ASSERT_TRUE(WaitUntil([this] { return !ChildRuns(); }));
        Settle();
    }
};

// From the form to the document

TEST_F(FormDocuments, WhatIsEnteredGoesToTheDocumentAndItsFileAndItsRender) {
    StartWithForm();
    Open(WriteDocument("docs/a"));
    EXPECT_FALSE(Document().IsModified());
    TypeOver(Named<FormEdit>("Depth"), "8");
    TypeOver(Named<FormEdit>("Size 2"), "9");
    Click("Shadows");
    EXPECT_EQ(Option("DEPTH"), "8.0");
    EXPECT_EQ(Option("PICTURE"), "640x9");
    EXPECT_EQ(Option("SHADOWS"), "0");
    EXPECT_TRUE(Document().IsModified());
    Render();
    EXPECT_EQ(ReadFile(WorkDir() + "/render_options"),
              "setenv DEPTH \"8.0\"\r\nsetenv PICTURE \"640x9\"\r\nsetenv SECRET \"none\"\r\nsetenv SHADOWS "
              "\"0\"\r\nsetenv TAVRN_SHADER_TYPE \"surface\"\r\n");
    Do(CommandId::kSave);
    Settle();
    EXPECT_THAT(ReadFile(directory / "docs/a.tvn"), HasSubstr("setenv DEPTH \"8.0\""));
    EXPECT_FALSE(Document().IsModified());
    TypeOver(Named<FormEdit>("Depth"), "8");
    EXPECT_FALSE(Document().IsModified()) << "the value was there already";
}

TEST_F(FormDocuments, AnUnsavedOptionIsRenderedAndNotWritten) {
    StartWithForm();
    Open(WriteDocument("docs/a"));
    TypeOver(Named<FormEdit>("Secret"), "word");
    Render();
    EXPECT_THAT(ReadFile(WorkDir() + "/render_options"), HasSubstr("setenv SECRET \"word\""));
    Do(CommandId::kSave);
    Settle();
    EXPECT_THAT(ReadFile(directory / "docs/a.tvn"), Not(HasSubstr("SECRET")));
    Open(WriteDocument("docs/b"));
    EXPECT_EQ(Shows("Secret"), "none") << "it begins from the form";
}

TEST_F(FormDocuments, DefaultIsOneEditThatBringsEveryValueBack) {
    StartWithForm();
    Open(WriteWithOptions("docs/a", "setenv DEPTH 5.5\nsetenv SHADOWS 0\nsetenv TAVRN_SHADER_TYPE metal\n"));
    EXPECT_FALSE(Document().IsModified());
    EXPECT_FALSE(Button("Shadows").isChecked());
    int changes = 0;
    const auto observer = Document().edits.Observe([&](const tavrin::Change&) { ++changes; });
    Click("Default");
    EXPECT_EQ(changes, 1);
    EXPECT_TRUE(Document().IsModified());
    EXPECT_EQ(Option("DEPTH"), "2.0");
    EXPECT_EQ(Shows("Depth"), "2.0");
    EXPECT_TRUE(Button("Shadows").isChecked());
    EXPECT_EQ(Option("SHADOWS"), "1");
    EXPECT_EQ(TypeBox().currentText(), "surface");
    Click("OK");
    EXPECT_FALSE(FormTool().isVisible());
}

// From documents to the form

TEST_F(FormDocuments, EveryWayToAnotherDocumentShowsItsOptions) {
    StartWithForm();
    const std::string path = WriteWithOptions("docs/a", "setenv DEPTH 9.0\nsetenv PICTURE 3x4\n");
    Open(path);
    EXPECT_EQ(Shows("Depth"), "9.0");
    EXPECT_EQ(Shows("Size 1"), "3");
    EXPECT_EQ(Shows("Size 2"), "4");
    Render();  // entry 1 of the history
    Do(CommandId::kNew);
    Settle();
    EXPECT_EQ(Shows("Depth"), "2.0");
    EXPECT_EQ(Shows("Size 1"), "640");
    Do(CommandId::kRenderHistory);
    Settle();
    auto& list = *Frame().Windows().Of(CommandId::kRenderHistory).findChild<QListView*>();
    const QPoint entry = list.visualRect(list.model()->index(0, 0)).center();
    QTest::mouseClick(list.viewport(), Qt::LeftButton, {}, entry);
    QTest::mouseDClick(list.viewport(), Qt::LeftButton, {}, entry);
    Settle();
    EXPECT_EQ(Shows("Depth"), "9.0");
    EXPECT_EQ(Shows("Size 2"), "4");
    EXPECT_FALSE(Document().IsModified()) << "showing stores nothing";
}

TEST_F(FormDocuments, AnOptionThatTheFormDoesNotKnowIsNamedInTheLogAndDropped) {
    StartWithForm();
    Open(WriteWithOptions("docs/a", "setenv FOREIGN 1\nsetenv DEPTH 7.0\n"));
    EXPECT_THAT(Log(), HasSubstr("FOREIGN"));
    EXPECT_EQ(Option("FOREIGN"), "none");
    EXPECT_EQ(Shows("Depth"), "7.0");
}

TEST_F(FormDocuments, AValueBeyondTheFormsPresetsIsShownAsItIs) {
    StartWithForm();
    Open(WriteWithOptions("docs/a", "setenv DEPTH \"<b>x</b> & y\"\nsetenv TAVRN_SHADER_TYPE unheard\n"));
    EXPECT_EQ(Shows("Depth"), "<b>x</b> & y");
    EXPECT_EQ(Named<FormList>("TAVRN_SHADER_TYPE").currentText(), "surface") << "no line begins so";
    EXPECT_EQ(Option("TAVRN_SHADER_TYPE"), "unheard");
}

// The type of the shader

TEST_F(FormDocuments, ChooserAndToolbarFollowEachOther) {
    StartWithForm();
    FormList& chooser = Named<FormList>("TAVRN_SHADER_TYPE");
    Choose(chooser, 1);
    EXPECT_EQ(TypeBox().currentText(), "metal");
    EXPECT_THAT(Bytes(Frame().windowTitle()), HasSubstr("[metal]"));
    test::TabTo(TypeBox());
    test::PressKeys(TypeBox().currentIndex() == 0 ? "Down" : "Up");
    Settle();
    EXPECT_EQ(TypeBox().currentText(), "surface");
    EXPECT_EQ(chooser.currentText(), "surface");
    EXPECT_EQ(Option("TAVRN_SHADER_TYPE"), "surface");
}

TEST_F(FormDocuments, ClearAllTakesTheToolbarsRowsAlongAndLeavesTheDefaults) {
    StartWithForm("roe {\nclearall\nlabel {\nlabel \"All there is\"\n}\n}\n");
    EXPECT_THAT(All<FormEdit>(), IsEmpty());
    EXPECT_EQ(The<QLabel>().text(), "All there is");
    EXPECT_EQ(TypeBox().count(), 0);
    EXPECT_EQ(Option("DEPTH"), "2.0");
    Open(WriteWithOptions("docs/a", "setenv DEPTH 7.0\n"));
    EXPECT_EQ(Option("DEPTH"), "7.0");
}

TEST_F(FormDocuments, SectionsOfTheSiteStandOneBelowTheOther) {
    StartWithForm("roe {\nwinheight 321\nxfield {\nenvname MORE\noptionlabel More\nvalue 1\n}\n}\n");
    EXPECT_EQ(FormTool().height(), 321);
    QWidget& depth = Named<FormEdit>("Depth");
    QWidget& more = Named<FormEdit>("More");
    EXPECT_GT(more.mapToGlobal(QPoint()).y(), depth.mapToGlobal(QPoint()).y());
    EXPECT_EQ(Option("MORE"), "1");
}

// While an action goes on

TEST_F(FormDocuments, AnotherDocumentIsOpenedFromWithinTheButtonThatAskedForIt) {
    StartWithTwo();
    Click("Other");
    EXPECT_EQ(Document().Path(), second);
    EXPECT_EQ(Shows("Depth"), "8.0");
    PressWhenBoxComes("Discard");  // the list has stored its option in the document that is left
    Choose(Named<FormList>("DOCUMENT"), 0);
    EXPECT_EQ(Document().Path(), first);
    EXPECT_EQ(Shows("Depth"), "7.0");
    EXPECT_EQ(Option("DEPTH"), "7.0");
}

TEST_F(FormDocuments, CancellingTheQuestionOfAnActionLeavesTheDocument) {
    StartWithTwo();
    Open(first);
    TypeOver(Named<FormEdit>("Depth"), "3");
    PressWhenBoxComes("Cancel");
    Click("Other");
    ASSERT_EQ(BoxesShown().size(), 1);
    EXPECT_EQ(Document().Path(), first);
    EXPECT_EQ(Shows("Depth"), "3.0");
    EXPECT_EQ(Option("DEPTH"), "3.0");
    EXPECT_TRUE(Document().IsModified());
}

TEST_F(FormDocuments, TheFormIsAliveWhileItsRenderGoesOn) {
    StartWithForm();
    Open(WriteDocument("docs/a"));
    HoldScripts();
    bool sawRender = false;
    bool isOver = false;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, [&] {
        if (sawRender || !ChildRuns()) return;
        sawRender = true;
        EXPECT_FALSE(isOver) << "the action holds until the render has ended";
        QTest::mouseClick(&Button("Shadows"), Qt::LeftButton);
        Choose(Named<FormList>("Depth"), 2);
        const std::string other = WriteWithOptions("docs/b", "setenv DEPTH 6.0\n");
        PressWhenBoxComes("Discard");
        Frame().OpenDocumentFile(other);
        ReleaseScripts();
    });
    timer.start(0);
    Click("Render");
    isOver = true;
    timer.stop();
    EXPECT_TRUE(sawRender);
    EXPECT_FALSE(ChildRuns());
    EXPECT_EQ(Shows("Depth"), "6.0");
    EXPECT_TRUE(Button("Shadows").isChecked()) << "the other document's";
    EXPECT_THAT(ReadFile(WorkDir() + "/render_options"), HasSubstr("setenv DEPTH \"2.0\""));
}

TEST_F(FormDocuments, AnActionMayEndTheProgram) {
    StartWithForm();
    Open(WriteDocument("docs/a"));
    TypeOver(Named<FormEdit>("Depth"), "3");
    PressWhenBoxComes("Cancel");
    Click("Leave");
    EXPECT_TRUE(Frame().isVisible());
    EXPECT_EQ(Option("DEPTH"), "3.0");
    PressWhenBoxComes("Discard");
    Click("Leave");
    EXPECT_TRUE(WaitUntil([this] { return !Frame().isVisible(); }));
}

// The window

TEST_F(FormDocuments, ItsKeyTogglesItAndWhatIsEnteredStays) {
    AddToSite(kForm);
    StartWithDocs();
    test::PressKeys("F2");
    ASSERT_TRUE(WaitUntil([this] { return FormTool().IsUp(); }));
    TypeOver(Named<FormEdit>("Depth"), "4");
    test::PressKeys("F2");
    ASSERT_TRUE(WaitUntil([this] { return !FormTool().isVisible(); }));
    App().SetVariable("SECRET", "set while hidden", true);
    OpenForm();
    EXPECT_EQ(Shows("Depth"), "4.0");
    EXPECT_EQ(Shows("Secret"), "set while hidden");
}

}  // namespace
}  // namespace tavrin
