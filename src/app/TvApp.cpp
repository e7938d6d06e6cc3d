// SPDX-License-Identifier: Apache-2.0
#include "app/TvApp.h"

#include <algorithm>
#include <optional>

#include "app/Recovery.h"
#include "app/RecoveryCopy.h"
#include "app/Version.h"
#include "base/Files.h"
#include "base/Paths.h"
#include "base/Process.h"
#include "base/ReadLimit.h"
#include "forms/FormCommands.h"
#include "forms/FormFrame.h"
#include "forms/FormParser.h"
#include "render/ShaderExport.h"
#include "site/TextEditor.h"

namespace tavrin {

namespace {

constexpr const char* kDefaultLibrary = "mray";
constexpr const char* kDefaultTemporaryRoot = "/tmp";
constexpr const char* kDefaultShaderIfaceExt = ".cus";

bool IsSwitchedOn(const std::optional<std::string>& value) {
    return value && (value->empty() || value->front() != '0');
}

// The first of the variables that is set and not empty, else the default.
std::string FirstOf(const Environment& environment, std::initializer_list<const char*> names,
                    std::string otherwise) {
    for (const char* name : names) {
        if (const auto value = environment.Get(name); value && !value->empty()) return *value;
    }
    return otherwise;
}

bool IsPlainName(const std::string& name) {
    return !name.empty() && name != "." && name != ".." &&
           name.find_first_of("/\\ \t\r\n\"") == std::string::npos;
}

// As a site gives it, in megabytes.
uint64_t ReadLimitOf(const Settings& settings) {
    constexpr float kMost = 1e6F;
    float megabytes = 0;
    if (!settings.GetSettingFloat("maxfilesize", megabytes) || !(megabytes > 0)) return kDefaultReadLimit;
    return static_cast<uint64_t>(std::min(megabytes, kMost) * static_cast<float>(kMegabyte));
}

}  // namespace

CTvApp::CTvApp(Report& report, MainThreadQueue& queue, Environment environment,
               const std::string& programPath)
    : m_site(report, std::move(environment), queue),
      m_registry(report),
      m_form(std::make_unique<CRenderOptionsEditor>()),
      m_trust(StateDirectory(m_site.environment)),
      m_programDir(PathDir(programPath)),
      m_version(VersionText(kProductVersion)) {
    const Environment& env = m_site.environment;
    m_site.directories.editorCmd = FirstOf(env, {"TAVRN_EDITORCMD", "VISUAL", "EDITOR"}, kDesktopsEditor);
    m_site.directories.tavrnDir = FirstOf(env, {"TAVRN_DIR"}, FullPath(m_programDir + "../share/tavrin"));
    SelectLibraryFromEnvironment();
    m_site.debugMode = IsSwitchedOn(env.Get("TAVRN_DEBUG"));
    m_site.quietMode = IsSwitchedOn(env.Get("TAVRN_QUIET"));
}

CTvApp::~CTvApp() = default;

// Only the last component of the variable counts: the library always lies under the installation.
void CTvApp::SelectLibraryFromEnvironment() {
    const auto value = m_site.environment.Get("TAVRN_LIB");
    if (!value) {
        SelectLibrary(kDefaultLibrary);
        return;
    }
    auto separator = value->rfind('/');
    if (separator == std::string::npos) separator = value->rfind('\\');
    if (separator == std::string::npos || !SelectLibrary(value->substr(separator + 1))) {
        m_site.report.LogLine("invalid TAVRN_LIB value: %s", value->c_str());
    }
}

bool CTvApp::SelectLibrary(const std::string& name) {
    if (!IsPlainName(name)) return false;
    Directories& directories = m_site.directories;
    if (name == directories.libName) return true;
    directories.libName = name;
    directories.libDir = JoinPath(directories.tavrnDir, name);
    m_site.environment.Set("TAVRN_LIB", directories.libDir);
    return true;
}

bool CTvApp::UseLibrary(const std::string& name) {
    if (!SelectLibrary(name)) return false;
    if (!IsDirectory(m_site.directories.libDir)) {
        m_site.report.LogLine("WARNING: there is no library %s in %s", name.c_str(),
                              m_site.directories.tavrnDir.c_str());
    }
    ReloadOperators();
    return true;
}

void CTvApp::ReloadOperators() {
    m_registry.Clear();
    if (m_site.directories.libDir.empty()) return;
    for (const std::string& directory : m_site.menuDirs)
        m_registry.AddDirectory(m_site.LibraryPath(directory));
}

void CTvApp::LoadSiteDefaults(LocalCommandsRule rule) {
    Directories& directories = m_site.directories;
    m_site.menuDirs.emplace_back("menu");
    m_site.types.ResetDataTypes();
    SiteTargets targets{m_site, m_codeGen, m_exportDefaults, {}};
    targets.readForm = [this, &targets](CArchive& archive) {
        const size_t first = m_form->children.size();
        ReadForm(archive, *m_form, *this, m_site.report);
        if (!targets.isLocal) return;
        for (std::string& line : HoldFormCommands(*m_form, first))
            targets.local.formLines.push_back(std::move(line));
    };
    ReadSiteFiles(targets);
    m_localCommands = std::move(targets.local);
    SettleLocalCommands(rule);

    const Settings& settings = m_site.settings;
    SetReadLimit(ReadLimitOf(settings));
    settings.GetSettingToken("editorcmd", directories.editorCmd);
    settings.GetSettingToken("tavrnbrowser_dir", directories.docBrowserDir);
    settings.GetSettingToken("scriptbrowser_dir", directories.scriptBrowserDir);
    directories.docBrowserDir = m_site.LibraryPath(directories.docBrowserDir);
    settings.GetSettingToken("ext.shadersource", m_site.extShaderSource);
    settings.GetSettingToken("ext.compiledshader", m_site.extCompiledShader);
    settings.GetSettingToken("ext.renderiface", m_site.extRenderIface);
    m_site.ReadLimits();

    const std::string root = FirstOf(m_site.environment, {"TAVRN_TMPDIR", "TEMP"}, kDefaultTemporaryRoot);
    MakeWorkDirectory(root);
    ExportEnvironment(root);
    ReloadOperators();
}

void CTvApp::MakeWorkDirectory(const std::string& temporaryRoot) {
    WorkDirectory::ClearAbandoned(temporaryRoot);
    const bool isMade = m_workDirectory.Make(temporaryRoot);
    const std::string& workDir = m_site.directories.workDir = m_workDirectory.Path();
    m_site.commands.SetWorkDir(workDir);
    if (!isMade) m_site.report.Alert("unable to create work directory %s\n", workDir.c_str());
}

void CTvApp::ExportEnvironment(const std::string& temporaryRoot) {
    const Directories& directories = m_site.directories;
    Environment& environment = m_site.environment;
    environment.Set("TAVRN_TMPDIR", temporaryRoot);
    environment.Set("TAVRN_DIR", directories.tavrnDir);
    environment.Set("TAVRN_LIB", directories.libDir);
    environment.Set("TAVRN_WORKDIR", directories.workDir);
    environment.Set("TAVRN_RENOPTS", m_site.WorkPath("render_options"));
    environment.Set("TAVRN_EDITORCMD", "\"" + directories.editorCmd + "\"");
    // Whatever the menu shows at this point: children see the debug mode only once the user sets it.
    environment.Set("TAVRN_DEBUG", "0");
    environment.Set("COMSPEC", "/bin/sh");
    // The installation's own programs are found by name.
    environment.Set("PATH", JoinPath(directories.tavrnDir, "bin") + ":" +
                                FullPath(m_programDir + "../libexec/tavrin") + ":" +
                                environment.Get("PATH").value_or("/usr/bin:/bin"));
    // A user may name another program for pictures, or none.
    const std::string view = FullPath(m_programDir + "tavrin-view");
    if (!environment.Get("TAVRN_VIEW") && PathExists(view)) environment.Set("TAVRN_VIEW", view);
}

std::optional<CTvApp::Problem> CTvApp::StartUpProblem() const {
    const auto fatal = [](const std::string& text) { return Problem{text, true}; };
    const std::string directory = m_site.environment.Get("TAVRN_DIR").value_or("");
    const std::string root = m_site.environment.Get("TAVRN_TMPDIR").value_or("");
    if (directory.find(' ') != std::string::npos) {
        return fatal("Tavrin directory path \"" + directory + "\" includes whitespace");
    }
    if (root.find(' ') != std::string::npos) {
        return fatal("Temporary directory path \"" + root + "\" includes whitespace");
    }
    if (!PathExists(directory)) return fatal("Tavrin directory \"" + directory + "\" does not exist");
    if (m_site.directories.libDir.empty())
        return Problem{"environment variable TAVRN_LIB not defined", false};
    return std::nullopt;
}

bool CTvApp::CloseDown(std::chrono::milliseconds grace) {
    m_site.commands.EndChildren(grace);
    return RemoveWorkDirectory();
}

bool CTvApp::RemoveWorkDirectory() {
    return m_workDirectory.Remove(
        [this](const std::string& line) { m_site.report.LogLine("%s", line.c_str()); });
}

std::unique_ptr<SafeCopy> CTvApp::PutAside(const std::string& path, std::string_view text,
                                           std::string& error) {
    return MakeSafeCopy(StateDirectory(m_site.environment), path, text, error);
}

void CTvApp::SetVariable(const std::string& name, const std::string& value, bool updateForm) {
    if (m_document == nullptr) {
        m_appVars[name] = value;
        return;
    }
    auto& options = m_document->m_renderOptions;
    const auto option = options.find(name);
    if (option == options.end() || option->second != value) {
        const EditScope edit(*m_document, "Render Option");
        m_document->edits.OptionsChanged();
        m_document->edits.JoinRun();
        options[name] = value;
    }
    if (updateForm) m_form->BroadcastOption(name, value);
    if (name == kShaderTypeOption) ShaderTypeChanged();
}

std::string CTvApp::GetAppVariable(const std::string& name) {
    const auto found = m_appVars.find(name);
    return found == m_appVars.end() ? std::string() : found->second;
}

void CTvApp::ShaderTypeChanged() {
    if (m_document == nullptr) return;
    m_site.extShaderIface = kDefaultShaderIfaceExt;
    if (const std::string* type = ShaderType()) {
        if (m_titleView != nullptr) m_titleView->ShowShaderType(*type);
        const auto extension = m_site.shaderIfaceExts.find(*type);
        if (extension != m_site.shaderIfaceExts.end()) m_site.extShaderIface = extension->second;
    }
    UpdateTitle();
}

void CTvApp::UpdateTitle() {
    if (m_document == nullptr) return;
    UpdateExportPaths(*m_document, m_site);
    if (m_titleView != nullptr) m_titleView->ShowTitle(WindowTitle());
}

std::string CTvApp::WindowTitle() const {
    const std::string* type = ShaderType();
    return type == nullptr ? m_document->Title() : m_document->Title() + " [" + *type + "]";
}

const std::string* CTvApp::ShaderType() const {
    const auto type = m_document->m_renderOptions.find(kShaderTypeOption);
    return type == m_document->m_renderOptions.end() ? nullptr : &type->second;
}

void CTvApp::LoadFormDefaults() {
    std::optional<EditScope> edit;
    if (m_document != nullptr) edit.emplace(*m_document, "Default Options");
    m_form->LoadDefaults(*this);
}

void CTvApp::PushOptionsToForm() {
    if (m_document == nullptr) return;
    for (const auto& [name, value] : m_document->m_renderOptions) m_form->BroadcastOption(name, value);
}

void CTvApp::OpenInEditor(const std::string& path) {
    StartEditor(path, m_site.directories.editorCmd + " \"" + path + "\"");
}

void CTvApp::EditOperator(const std::string& name) {
    const COpEntry* entry = m_registry.FindByName(name);
    if (entry == nullptr) {
        m_site.report.Alert("%s: unknown operator name", name.c_str());
        return;
    }
    StartEditor(entry->path, m_site.directories.editorCmd + " " + JoinCommandLine({entry->path}));
}

// `named` is how the user knows the command, if it is the one that was named.
void CTvApp::StartEditor(const std::string& path, const std::string& named) {
    // A path that is not absolute could pass for an option.
    const std::string file = path.starts_with('/') ? path : FullPath(path);
    const EditorStart start = StartOfEditor(m_site.directories.editorCmd, file, m_site.environment);
    if (start.words.empty()) {
        m_site.report.Alert("%s", start.problem.c_str());
        return;
    }
    m_site.commands.StartProgram(start.words, start.isAsNamed ? named : JoinCommandLine(start.words));
}

std::string CTvApp::DocumentVersion() const { return ShortVersion(m_version); }

}  // namespace tavrin
