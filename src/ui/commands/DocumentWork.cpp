// SPDX-License-Identifier: Apache-2.0
#include "ui/commands/DocumentWork.h"

#include <utility>

#include "app/Examples.h"
#include "app/RecentFiles.h"
#include "app/Workspace.h"
#include "base/Paths.h"
#include "sliders/SliderDesk.h"
#include "ui/base/Text.h"
#include "ui/commands/CommandActions.h"
#include "ui/commands/RenderWork.h"
#include "ui/dialogs/FileDialogs.h"
#include "ui/dialogs/Messages.h"
#include "ui/frame/SafetyCopies.h"
#include "ui/library/ExamplesDialog.h"

namespace tavrin {

namespace {

constexpr const char* kDocumentFilter = "Tavrin Documents (*.tvn)";
constexpr const char* kAllFilter = "All Files (*)";
constexpr const char* kExtension = "tvn";

}  // namespace

DocumentWork::DocumentWork(Needs needs)
    : m_needs(std::move(needs)), m_work(m_needs.work), m_examples(ExamplesDirectory(m_work.app.GetSite())) {
    m_work.exporter.AskBeforeLoss([this](const std::string& path) { return MayLoseUnread(path); });
    m_work.exporter.AskBeforeReplacing(
        [this](const std::string& path, DocumentFile::Now now) { return MayReplaceWhatIsThere(path, now); });
}

void DocumentWork::AddTo(CommandActions& commands) {
    const CTvDoc& document = m_work.document;
    // One that came from the history of renders differs from its file and has not been modified.
    const auto canSave = [&document] { return document.IsModified() || document.DiffersFromFile(); };
    commands.On(CommandId::kNew, {[this] { New(); }});
    commands.On(CommandId::kOpen, {[this] { Open(); }});
    commands.On(CommandId::kMerge, {[this] { Merge(); }});
    commands.On(CommandId::kExamples, {[this] { Examples(); }, [this] { return !m_examples.empty(); }});
    commands.On(CommandId::kSave, {[this] { Save(); }, canSave});
    commands.On(CommandId::kSaveAs, {[this] { SaveAs(); }});
}

void DocumentWork::New() {
    if (!SettleChanges()) return;
    m_work.commands.New();
    m_needs.copies.Discard();
}

void DocumentWork::Open() {
    FileDialogRequest request;
    request.title = "Open";
    request.filters = {kDocumentFilter, kAllFilter};
    request.directory = m_work.app.GetSite().directories.docBrowserDir;
    request.extension = kExtension;
    request.filterIndex = m_lastFilterIndex;
    const auto chosen = AskFileToOpen(&m_needs.frame, request);
    if (!chosen) return;
    m_work.app.GetSite().directories.docBrowserDir = PathDir(chosen->path);
    m_lastFilterIndex = chosen->filterIndex;
    OpenDocument(chosen->path);
}

bool DocumentWork::OpenDocument(const std::string& path) {
    const std::string fullPath = FullPath(path);
    if (const std::string* entry = m_work.session.EntryAt(fullPath)) return OpenHistoryEntry(*entry);
    if (!SettleChanges()) return false;
    m_work.app.RestoreWorkDirectory();
    const RenderWork::Step step(m_needs.renders, "Opening " + Shown(PathFile(path)));
    if (!m_work.commands.Open(fullPath)) return false;
    m_needs.recentFiles.Add(fullPath);
    m_needs.copies.Discard();
    return true;
}

bool DocumentWork::OpenExample(const std::string& path) {
    if (!SettleChanges()) return false;
    m_work.app.RestoreWorkDirectory();
    const RenderWork::Step step(m_needs.renders, "Opening " + Shown(PathFile(path)));
    if (!m_work.commands.OpenExample(path)) return false;
    m_needs.copies.Discard();
    return true;
}

bool DocumentWork::OpenHistoryEntry(std::string entry) {
    if (!SettleChanges()) return false;
    const RenderWork::Step step(m_needs.renders, "Opening " + Shown(entry));
    if (!m_work.session.LoadHistoryEntry(entry)) return false;
    const std::string& path = m_work.document.Path();
    m_work.commands.HasBeenOpened("history entry " + entry + (path.empty() ? "" : " of " + path));
    m_needs.copies.Discard();
    return true;
}

void DocumentWork::Merge() {
    FileDialogRequest request;
    request.title = "Merge";
    request.filters = {kDocumentFilter};
    request.directory = m_work.app.GetSite().directories.docBrowserDir;
    request.extension = kExtension;
    const auto chosen = AskFileToOpen(&m_needs.frame, request);
    if (!chosen) return;
    m_work.app.RestoreWorkDirectory();
    const RenderWork::Step step(m_needs.renders, "Merging " + Shown(PathFile(chosen->path)));
    m_work.commands.Merge(chosen->path, [this] {
        if (m_needs.sliders.IsFrozen()) return;
        ShowWarning(&m_needs.frame, "Warning", "Freezing slider desk to prevent mass slider creation");
        m_needs.sliders.SetFrozen(true);
    });
}

void DocumentWork::Examples() {
    const std::string chosen = AskExample(&m_needs.frame, m_examples, m_work.app.GetSite().docExt);
    if (!chosen.empty()) OpenExample(chosen);
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
    const auto chosen = AskFileToSave(&m_needs.frame, request);
    return chosen && SaveTo(chosen->path, true);
}

bool DocumentWork::SaveTo(const std::string& path, bool asNew) {
    if (!MayReplace(path, asNew)) return false;
    if (!(asNew ? m_work.commands.SaveAs(path) : m_work.commands.Save(path))) return false;
    m_needs.recentFiles.Add(FullPath(path));
    m_needs.copies.Discard();
    return true;
}

bool DocumentWork::MayReplace(const std::string& path, bool wasChosen) {
    if (m_work.document.WouldLoseUnread(path)) return MayLoseUnread(path);
    return wasChosen || MayReplaceWhatIsThere(path, m_work.document.Origin().file->Look());
}

bool DocumentWork::MayReplaceWhatIsThere(const std::string& path, DocumentFile::Now now) {
    switch (now) {
        case DocumentFile::Now::kAsKnown:
            return true;
        case DocumentFile::Now::kUnknown:
            return AskWarning(&m_needs.frame, Shown(path + " is there already.  Replace it?"));
        case DocumentFile::Now::kChanged:
            return AskWarning(&m_needs.frame, Shown(path + " has changed since it was last read or saved."
                                                           "  Replace it?"));
        case DocumentFile::Now::kGone:
            break;
    }
    return AskWarning(&m_needs.frame, Shown(path + " is gone, which was there when it was last read or saved."
                                                   "  Save it again?"));
}

bool DocumentWork::MayLoseUnread(const std::string& path) {
    return AskWarning(&m_needs.frame, Shown(path + " was not read to its end because of an error in it."
                                                   "  Saving replaces the file and loses what was not"
                                                   " read.  Save anyway?"));
}

bool DocumentWork::SettleChanges() {
    if (!m_work.document.IsModified()) return true;
    switch (AskSaveChanges(&m_needs.frame, Shown(m_work.document.Title()))) {
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
