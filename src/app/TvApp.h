// SPDX-License-Identifier: Apache-2.0
// The application object: it owns the site's configuration, the directories, the children, the operators
// and the variables that no document holds yet.
#pragma once

#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "app/SiteFileReader.h"
#include "app/TrustStore.h"
#include "app/WorkDirectory.h"
#include "codegen/CodeGen.h"
#include "document/TvDoc.h"
#include "forms/FormHost.h"
#include "library/OpRegistry.h"
#include "site/Site.h"

namespace tavrin {

class CRenderOptionsEditor;

// The one option with a reaction: it selects the extension of shader interface files.
inline constexpr const char* kShaderTypeOption = "TAVRN_SHADER_TYPE";

// What a program shows of the document's name and its shader's type.
class TitleView {
  public:
    virtual ~TitleView() = default;

    // The document has this type.
    virtual void ShowShaderType(const std::string& type) = 0;
    // The extensions and the export paths are in line with it.
    virtual void ShowTitle(const std::string& title) = 0;
};

// What becomes of the commands that the site file of the current directory names.
enum class LocalCommandsRule {
    kUse,     // the directory was chosen by who started the program
    kAsk,     // they wait until the user has agreed, which is remembered
    kRefuse,  // they never count
};

// One for the process, made by the program before anything else. It has no window and never ends the
// process: StartUpProblem tells what must end it.
class CTvApp : public DocumentHost, private FormHost {
  public:
    // Takes what the environment says of the installation, the library and the editor. `programPath` is
    // the running program's file, by which an installation is found that the environment does not name.
    CTvApp(Report& report, MainThreadQueue& queue, Environment environment, const std::string& programPath);
    ~CTvApp() override;

    // Selects a library of the installation by name and tells the children of it. False for a name that
    // is no plain name of a directory.
    bool SelectLibrary(const std::string& name);
    // Scans the operators again.
    void ReloadOperators();
    // Reads the site files, makes the work directory and the environment of children, scans the operators.
    void LoadSiteDefaults(LocalCommandsRule rule = LocalCommandsRule::kUse);
    // The commands that wait for the user's word: until then nothing runs them. Null for none.
    const LocalCommands* WaitingCommands() const {
        return m_localCommands.Any() ? &m_localCommands : nullptr;
    }
    // The user's word. Yes is remembered for as long as the file is what it is, No until the program ends.
    void AnswerForCommands(bool mayRun);

    // What must stop the program after its start.
    struct Problem {
        std::string text;
        bool isFatalError = true;  // titled "Fatal Error"; else an alert like any other
    };
    std::optional<Problem> StartUpProblem() const;

    // The end of the program: stops the children within `grace`, then removes the work directory. False,
    // with a log line, if something of it stays.
    bool CloseDown(std::chrono::milliseconds grace);
    // Whether that would leave nothing of the work directory, as far as can be told without doing it.
    bool CanRemoveWorkDirectory() const { return m_workDirectory.CanRemove(); }
    // Removes the work directory alone, with the same result as CloseDown.
    bool RemoveWorkDirectory();
    // Makes the work directory again where it has been cleared away, as happens to what lies long in a
    // directory of temporary files.
    void RestoreWorkDirectory() { m_workDirectory.Restore(); }

    // The one document; none while there is no frame.
    void SetDocument(CTvDoc* document) { m_document = document; }
    CTvDoc* GetDocument() const { return m_document; }
    // Who is told of changes of name and type. It outlives its being told; null for nobody.
    void SetTitleView(TitleView* view) { m_titleView = view; }

    // The one way to store a named value: in the document or, while there is none, here. A value that was
    // there already does not mark the document.
    void SetVariable(const std::string& name, const std::string& value, bool updateForm);
    std::string GetAppVariable(const std::string& name) override;
    // The one door for every change of the document's shader type, by whatever way it comes; SetVariable goes
    // through it by itself. The extension of shader interface files follows the type, then all that
    // UpdateTitle brings in line. To be called as well when another document has taken the place of the one
    // before.
    void ShaderTypeChanged();
    // After a change of the document's name: the export paths and what the program shows follow.
    void UpdateTitle();
    // The title of the document, which is there, with the shader type in brackets behind it if it has one.
    std::string WindowTitle() const;

    // Opens a file as a text in the user's editor, without waiting. Where there is none that can be started,
    // that is alerted.
    void OpenInEditor(const std::string& path);
    // The same for the definition of an operator. One that is not in the library is alerted.
    void EditOperator(const std::string& name);

    std::string ProductVersion() const { return m_version; }

    // What documents ask.
    Site& GetSite() override { return m_site; }
    const COpRegistry& Registry() const override { return m_registry; }
    const std::map<std::string, std::string>& AppVariables() const override { return m_appVars; }
    const CExportOptions& ExportDefaults() const override { return m_exportDefaults; }
    bool IsUnsavedOption(const std::string& name) const override { return m_unsavedOptions.contains(name); }
    bool UseLibrary(const std::string& name) override;
    std::unique_ptr<SafeCopy> PutAside(const std::string& path, std::string_view text,
                                       std::string& error) override;
    std::string DocumentVersion() const override;
    bool IsOwnText(std::string_view text) const override;
    void NoteOwnText(std::string_view text) override;

    // What the user has agreed to.
    TrustStore& Trust() { return m_trust; }

    const CCodeGen& CodeGen() const { return m_codeGen; }
    CRenderOptionsEditor& RenderOptionsForm() { return *m_form; }
    // What the form's widgets store through.
    FormHost& OptionStore() { return *this; }
    // The rows that the form has for the toolbar's shader type box.
    const std::vector<std::string>& ShaderTypes() const { return m_shaderTypes; }
    // Sets every control of the form to its default, and the document's options with them.
    void LoadFormDefaults();
    // Shows the document's render options in the form.
    void PushOptionsToForm();

  private:
    void SetVariable(const std::string& name, const std::string& value) override {
        SetVariable(name, value, false);
    }
    void AddUnsavedOption(const std::string& name) override { m_unsavedOptions.insert(name); }
    void AddShaderType(const std::string& line) override { m_shaderTypes.push_back(line); }
    void ClearShaderTypes() override { m_shaderTypes.clear(); }

    // Null for none.
    const std::string* ShaderType() const;
    void SelectLibraryFromEnvironment();
    void StartEditor(const std::string& path, const std::string& named);
    void MakeWorkDirectory(const std::string& temporaryRoot);
    void ExportEnvironment(const std::string& temporaryRoot);
    void SettleLocalCommands(LocalCommandsRule rule);
    void UseLocalCommands();

    Site m_site;
    COpRegistry m_registry;
    CCodeGen m_codeGen;  // the site's template
    CExportOptions m_exportDefaults;
    std::map<std::string, std::string> m_appVars;
    std::set<std::string> m_unsavedOptions;
    std::vector<std::string> m_shaderTypes;
    std::unique_ptr<CRenderOptionsEditor> m_form;
    CTvDoc* m_document = nullptr;
    TitleView* m_titleView = nullptr;
    TrustStore m_trust;
    LocalCommands m_localCommands;  // not in force
    std::string m_programDir;
    std::string m_version;
    WorkDirectory m_workDirectory;
};

}  // namespace tavrin
