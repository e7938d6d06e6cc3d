// SPDX-License-Identifier: Apache-2.0
#include "document/TvDoc.h"

#include "base/Files.h"
#include "base/Paths.h"
#include "base/ReplaceFile.h"
#include "document/DocumentBuilder.h"
#include "document/DocumentReader.h"
#include "document/DocumentWriter.h"
#include "document/EditHistory.h"
#include "site/Site.h"
#include "text/Archive.h"
#include "text/OutOfMemory.h"

namespace tavrin {

namespace {

// A template for the user to overwrite.
constexpr const char* kHelpTemplate =
    "    T I T L E   O F   S H A D E R\r\n"
    "    Your notice of ownership\r\n"
    "\r\n"
    "VARIABLES\r\n"
    "    VARNAME1 - short description\r\n"
    "    VARNAME2 - another short description\r\n"
    "\r\n"
    "DESCRIPTION\r\n"
    "    Your indepth description of the shader goes here.\r\n"
    "    This text is saved as part of your shader's tavrn file,\r\n"
    "    so it can be made available to others who use the shader.\r\n"
    "\r\n"
    "AUTHOR\r\n"
    "    Your name <your mail address>";

// A switch of the site: any number but 0 is on, as documents have no other.
int SwitchOf(const Settings& settings, const char* key) {
    int value = 0;
    settings.GetSettingInt(key, value);
    return value != 0 ? 1 : 0;
}

}  // namespace

bool DocumentHost::WantsPlaceholders() { return SwitchOf(GetSite().settings, "document.placeholders") != 0; }

std::unique_ptr<SafeCopy> DocumentHost::PutAside(const std::string&, std::string_view, std::string& error) {
    error = "there is no place for it";
    return nullptr;
}

CTvDoc::CTvDoc(DocumentHost& host) : m_host(host) {
    SetPath({});
    DeleteContents();
}

CTvDoc::~CTvDoc() = default;

void CTvDoc::KeepHistory() { KeepHistory({}); }

void CTvDoc::KeepHistory(HistoryLimits limits) { m_history = std::make_unique<EditHistory>(*this, limits); }

void CTvDoc::DeleteContents() {
    const Site& site = m_host.GetSite();
    beforeDelete.Tell();
    edits.ForgetNotes();
    if (m_history != nullptr) m_history->Forget();
    m_boxes.clear();
    frames.clear();
    toolbar = site.toolButtons;
    showiconimages = SwitchOf(site.settings, "desk.showiconimages");
    showvarnames = SwitchOf(site.settings, "desk.showvarnames");
    lock = SwitchOf(site.settings, "desk.lock");
    std::string word;
    linetype = site.settings.GetSettingToken("desk.linetype", word) && word == "trace" ? 1 : 0;
    drawlinesoverboxes = 0;
    offset[0] = offset[1] = 0;
    zoom[0] = zoom[1] = 0.5F;
    zoomFactor = 1;
    m_renderOptions = m_host.AppVariables();
    exportOptions = m_host.ExportDefaults();
    customshaderhelp = kHelpTemplate;
    m_modified = false;
    m_modifiedBeside = false;
    m_differsFromFile = false;
    m_origin.cutFile.reset();
    m_origin.isForeign = false;
}

bool CTvDoc::Open(const std::string& path) {
    std::string error;
    auto archive = CArchive::Open(path, error);
    if (!archive) {
        m_host.GetSite().report.Alert("unable to open %s for reading: %s", path.c_str(), error.c_str());
        return false;
    }
    Report& report = m_host.GetSite().report;
    std::optional<DocumentForm> form;
    const bool isRead = WithinMemory(report, "reading " + path, [&] {
        form.emplace(ReadDocument(std::move(*archive)));
        return true;
    });
    if (!isRead) return false;
    if (!form->IsDocument()) {
        report.Alert("%s", NoDocumentMessage(*form).c_str());
        return false;
    }
    DeleteContents();
    m_origin.file = FileReadFrom(path, MarkOf(form->Text()));
    m_origin.isForeign = !m_host.IsOwnText(form->Text());
    const bool isLoaded = WithinMemory(report, "opening " + path, [&] { return Load(*form); });
    if (!isLoaded || !form->errors.empty()) SetCutShort();
    return true;
}

std::shared_ptr<DocumentFile> CTvDoc::NewFile(const std::string& path) {
    std::erase_if(m_files, [](const auto& file) { return file.expired(); });
    auto file = std::make_shared<DocumentFile>();
    file->path = path;
    m_files.push_back(file);
    return file;
}

// One that is opened again as it was left is the one that earlier copies of the document go back to.
std::shared_ptr<DocumentFile> CTvDoc::FileReadFrom(const std::string& path, ContentMark mark) {
    for (const auto& known : m_files) {
        auto file = known.lock();
        if (file != nullptr && file->path == path && file->held == mark) return file;
    }
    auto file = NewFile(path);
    file->held = mark;
    return file;
}

void CTvDoc::SetPath(const std::string& path) {
    const bool wasCutShort = m_origin.file != nullptr && WasCutShort();
    m_origin.file = NewFile(path);
    if (wasCutShort) SetCutShort();
}

void CTvDoc::SetCutShort() {
    m_origin.file->cutShort = true;
    m_origin.cutFile = m_origin.file;
}

void CTvDoc::BecomeRecovered(const std::string& path, bool wasCutShort, std::optional<ContentMark> held) {
    SetPath(path);
    if (wasCutShort) SetCutShort();
    m_origin.file->held = held;
    // What was never read from a file is the user's own; of the rest that file has to tell.
    m_origin.isForeign = held.has_value() && !HoldsOwnText(*m_origin.file);
    SetModified();
    m_modifiedBeside = true;
}

// What was cut short is still in danger where it stands.
void CTvDoc::BecomeCopy() {
    const std::string original = Path();
    m_origin.file = NewFile({});
    m_origin.file->copyOf = original;
}

bool CTvDoc::IsNetworkSaved() const {
    const DocumentFile& file = *m_origin.file;
    if ((!file.held && file.copyOf.empty()) || m_differsFromFile) return false;
    return m_history == nullptr ? !m_modified : m_history->IsAtSaved();
}

void CTvDoc::ViewMoved() {
    SetModified();
    m_modifiedBeside = true;
}

bool CTvDoc::HoldsOwnText(const DocumentFile& file) const {
    std::string text;
    std::string error;
    return ReadWholeFile(file.path, text, error) && MarkOf(text) == file.held && m_host.IsOwnText(text);
}

bool CTvDoc::WouldLoseUnread(const std::string& path) const {
    const auto& cut = m_origin.cutFile;
    return cut != nullptr && cut->cutShort && IsSameFile(path, cut->path);
}

// By its name, if it has gone.
DocumentFile::Now CTvDoc::LookAt(const std::string& path) const {
    const bool isOwn = IsSameFile(path, Path()) || (!Path().empty() && FullPath(path) == FullPath(Path()));
    return isOwn ? m_origin.file->Look() : DocumentFile::Now::kAsKnown;
}

bool CTvDoc::Load(const DocumentForm& form) { return DocumentBuilder(*this, form, m_host).Build(); }

bool CTvDoc::LoadDesk(const DocumentForm& form) { return DocumentBuilder(*this, form, m_host).BuildDesk(); }

std::string CTvDoc::Store() {
    SortBoxesByWid();
    return WriteDocument(*this, m_host);
}

std::string CTvDoc::Snapshot() {
    std::vector<BoxList::iterator> stack;
    stack.reserve(m_boxes.size());
    for (auto box = m_boxes.begin(); box != m_boxes.end(); ++box) stack.push_back(box);
    BringIntoOrder();
    std::string text = WriteDocument(*this, m_host);
    for (const auto& box : stack) m_boxes.splice(m_boxes.end(), m_boxes, box);
    return text;
}

// Knows afterwards what the document's files hold, and that nothing is left in them to be lost.
bool CTvDoc::Write(const std::string& path, std::string& error) {
    const std::string text = Store();
    const auto putAside = [&](std::string& reason) { return m_host.PutAside(path, text, reason); };
    if (!ReplaceFile(path, text, error, putAside)) return false;
    auto& cut = m_origin.cutFile;
    if (cut != nullptr && IsSameFile(path, cut->path)) {
        cut->cutShort = false;
        cut.reset();
    }
    if (IsSameFile(path, Path())) {
        m_origin.file->held = MarkOf(text);
        m_differsFromFile = false;
    }
    if (!m_origin.isForeign) m_host.NoteOwnText(text);
    return true;
}

bool CTvDoc::Save(const std::string& path, std::string& error) {
    const DocumentOrigin before = m_origin;
    // Another file is none that earlier copies of the document may be saved to unasked.
    if (path != Path()) m_origin.file = NewFile(path);
    if (!Write(path, error)) {
        m_origin = before;
        return false;
    }
    m_modified = false;
    m_modifiedBeside = false;
    m_differsFromFile = false;
    if (m_history != nullptr) m_history->DocumentSaved();
    afterSave.Tell(*before.file);
    return true;
}

bool CTvDoc::SaveCopy(const std::string& path, std::string& error) { return Write(path, error); }

std::string CTvDoc::TitleOf(const std::string& path) {
    return path.empty() ? "Untitled.tvn" : PathFile(path);
}

}  // namespace tavrin
