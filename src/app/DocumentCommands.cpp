// SPDX-License-Identifier: Apache-2.0
#include "app/DocumentCommands.h"

#include <ctime>

#include "base/Paths.h"
#include "base/ReadLimit.h"
#include "base/ReplaceFile.h"
#include "document/DocumentReader.h"
#include "text/OutOfMemory.h"

namespace tavrin {

namespace {

constexpr const char* kUntitled = "untitled.tvn";

// The time of day as "09:05 PM".
std::string TimeOfDay() {
    const std::time_t now = std::time(nullptr);
    std::tm fields{};
    ::localtime_r(&now, &fields);
    const int hour = fields.tm_hour % 12 == 0 ? 12 : fields.tm_hour % 12;
    return FormatText("%02d:%02d %s", hour, fields.tm_min, fields.tm_hour < 12 ? "AM" : "PM");
}

}  // namespace

void DocumentCommands::Refresh() {
    m_app.ShaderTypeChanged();
    m_app.PushOptionsToForm();
    m_desk.OnInitialUpdate();
}

void DocumentCommands::Log(const char* what, const std::string& path) {
    if (m_announce == Announce::kNo) return;
    m_app.GetSite().report.LogLine("%s %s at %s", what, path.c_str(), TimeOfDay().c_str());
}

void DocumentCommands::StartUntitled() {
    m_document.DeleteContents();
    m_document.SetPath({});
    Refresh();
}

void DocumentCommands::New() {
    m_document.DeleteContents();
    m_document.SetPath(JoinPath(m_app.GetSite().directories.docBrowserDir, kUntitled));
    Refresh();
}

bool DocumentCommands::Open(const std::string& path) {
    if (!m_document.Open(path)) return false;
    m_app.GetSite().directories.docBrowserDir = PathDir(path);
    ClearAbandonedSavesBeside(path);
    HasBeenOpened(path);
    return true;
}

bool DocumentCommands::OpenExample(const std::string& path) {
    if (!m_document.Open(path)) return false;
    m_document.BecomeCopy();
    HasBeenOpened("a copy of " + path);
    return true;
}

void DocumentCommands::HasBeenOpened(const std::string& what) {
    Refresh();
    Log("opened", what);
}

bool DocumentCommands::OpenRecovered(const std::string& copyPath, const std::string& documentPath,
                                     bool wasCutShort, std::optional<ContentMark> held) {
    if (!m_document.Open(copyPath)) return false;
    const bool isWhole = !m_document.WasCutShort();
    m_document.BecomeRecovered(documentPath, wasCutShort, held);
    Refresh();
    if (m_announce == Announce::kYes)
        m_app.GetSite().report.LogLine("recovered %s", m_document.Title().c_str());
    return isWhole;
}

bool DocumentCommands::Merge(const std::string& path, const std::function<void()>& opened) {
    Report& report = m_app.GetSite().report;
    std::string error;
    auto archive = CArchive::Open(path, error);
    if (!archive) {
        report.LogLine("unable to open %s for reading", path.c_str());
        report.Alert("unable to open %s for reading%s", path.c_str(),
                     error == TooLarge() ? (": " + error).c_str() : "");
        return false;
    }
    return WithinMemory(report, "merging " + path, [&] {
        const DocumentForm form = ReadDesk(std::move(*archive));
        if (form.sections.empty() && form.errors.empty()) {  // a document has other sections at least
            const DocumentForm whole = ReadDocument(CArchive::FromText(path, std::string(form.Text())));
            if (!whole.IsDocument()) {
                report.Alert("%s", NoDocumentMessage(whole).c_str());
                return false;
            }
        }
        if (opened) opened();
        CTvDoc scratch(m_app);
        if (!scratch.LoadDesk(form)) return false;
        m_desk.MergeBoxes(scratch.m_boxes, scratch.frames);
        return true;
    });
}

bool DocumentCommands::Save(const std::string& path) {
    ClearAbandonedSavesBeside(path);
    std::string error;
    if (!m_document.Save(path, error)) {
        m_app.GetSite().report.Alert("unable to save %s: %s", path.c_str(), error.c_str());
        return false;
    }
    m_app.UpdateTitle();
    Log("saved", path);
    return true;
}

bool DocumentCommands::SaveAs(const std::string& path) {
    if (!Save(path)) return false;
    m_app.GetSite().directories.docBrowserDir = PathDir(path);
    return true;
}

void DocumentCommands::Toggle(int& flag, const char* act) {
    const EditScope edit(m_document, act);
    m_document.edits.SettingsChanged();
    flag = flag == 0 ? 1 : 0;
}

}  // namespace tavrin
