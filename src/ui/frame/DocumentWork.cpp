#include "ui/frame/DocumentWork.h"

#include "app/RecentFiles.h"
#include "app/Workspace.h"
#include "base/Paths.h"
#include "ui/FileDialogs.h"
#include "ui/Messages.h"
#include "ui/Text.h"
#include "ui/frame/RenderWork.h"

namespace tavrin {

namespace {

constexpr const char* kDocumentFilter = "Tavrin Documents (*.tvn)";
constexpr const char* kAllFilter = "All Files (*)";
constexpr const char* kExtension = "tvn";

}  // namespace

DocumentWork::DocumentWork(QWidget& frame, Workspace& work, RenderWork& renders, RecentFiles& recentFiles,
                           Callbacks callbacks)
    : m_frame(frame),
      m_work(work),
      m_renders(renders),
      m_recentFiles(recentFiles),
      m_callbacks(std::move(callbacks)) {
    m_work.exporter.AskBeforeLoss([this](const std::string& path) { return MayLoseUnread(path); });
}

void DocumentWork::New() {
    if (!SettleChanges()) return;
    m_work.commands.New();
    m_callbacks.workIsSafe();
}

void DocumentWork::Open() {
    FileDialogRequest request;
    request.title = "Open";
    request.filters = {kDocumentFilter, kAllFilter};
    request.directory = m_work.app.GetSite().directories.docBrowserDir;
    request.extension = kExtension;
    request.filterIndex = m_lastFilterIndex;
    const auto chosen = AskFileToOpen(&m_frame, request);
    if (!chosen) return;
    m_work.app.GetSite().directories.docBrowserDir = PathDir(chosen->path);
    m_lastFilterIndex = chosen->filterIndex;
    OpenDocument(chosen->path);
}

bool DocumentWork::OpenDocument(const std::string& path) {
    const std::string fullPath = FullPath(path);
    int number = 0;
    std::string name;
    const std::string* entry = m_work.session.EntryAt(fullPath);
    if (entry != nullptr && RenderHistory::ParseEntry(*entry, number, name))
        return OpenHistoryEntry(name, number);
    if (!SettleChanges()) return false;
    m_work.app.RestoreWorkDirectory();
    const RenderWork::Step step(m_renders, "Opening " + Shown(PathFile(path)));
    if (!m_work.commands.Open(fullPath)) return false;
    m_recentFiles.Add(fullPath);
    m_callbacks.workIsSafe();
    return true;
}

bool DocumentWork::OpenHistoryEntry(const std::string& name, int number) {
    if (!SettleChanges()) return false;
    const std::string entry = RenderHistory::EntryText(number, name);
    const RenderWork::Step step(m_renders, "Opening " + Shown(entry));
    if (!m_work.session.LoadHistoryEntry(name, number)) return false;
    const std::string& path = m_work.document.Path();
    m_work.commands.HasBeenOpened("history entry " + entry + (path.empty() ? "" : " of " + path));
    m_callbacks.workIsSafe();
    return true;
}

void DocumentWork::Merge() {
    FileDialogRequest request;
    request.title = "Merge";
    request.filters = {kDocumentFilter};
    request.directory = m_work.app.GetSite().directories.docBrowserDir;
    request.extension = kExtension;
    const auto chosen = AskFileToOpen(&m_frame, request);
    if (!chosen) return;
    m_work.app.RestoreWorkDirectory();
    const RenderWork::Step step(m_renders, "Merging " + Shown(PathFile(chosen->path)));
    m_work.commands.Merge(chosen->path, [this] {
        if (m_callbacks.slidersFrozen()) return;
        ShowWarning(&m_frame, "Warning", "Freezing slider desk to prevent mass slider creation");
        m_callbacks.freezeSliders();
    });
}

bool DocumentWork::Save() {
    const std::string path = m_work.document.Path();  // a question may be open for long
    return path.empty() ? SaveAs() : SaveTo(path, false);
}

bool DocumentWork::SaveAs() {
    FileDialogRequest request;
    request.title = "Save As";
    request.filters = {kDocumentFilter, kAllFilter};
    const std::string& path = m_work.document.Path();
    request.directory = path.empty() ? m_work.app.GetSite().directories.docBrowserDir : PathDir(path);
    request.file = m_work.document.Title();
    request.extension = kExtension;
    const auto chosen = AskFileToSave(&m_frame, request);
    return chosen && SaveTo(chosen->path, true);
}

bool DocumentWork::SaveTo(const std::string& path, bool asNew) {
    if (!MayReplace(path, asNew)) return false;
    if (!(asNew ? m_work.commands.SaveAs(path) : m_work.commands.Save(path))) return false;
    m_recentFiles.Add(FullPath(path));
    m_callbacks.workIsSafe();
    return true;
}

bool DocumentWork::MayReplace(const std::string& path, bool wasChosen) {
    if (m_work.document.WouldLoseUnread(path)) return MayLoseUnread(path);
    if (wasChosen || !m_work.document.Origin().file->HoldsOther()) return true;
    return AskWarning(&m_frame, Shown(path + " is there already.  Replace it?"));
}

bool DocumentWork::MayLoseUnread(const std::string& path) {
    return AskWarning(&m_frame, Shown(path + " was not read to its end because of an error in it."
                                             "  Saving replaces the file and loses what was not"
                                             " read.  Save anyway?"));
}

bool DocumentWork::SettleChanges() {
    if (!m_work.document.IsModified()) return true;
    switch (AskSaveChanges(&m_frame, Shown(m_work.document.Title()))) {
        case SaveAnswer::kSave:
            return Save();
        case SaveAnswer::kDiscard:
            return true;
        case SaveAnswer::kCancel:
            break;
    }
    return false;
}

}  // namespace tavrin
