// SPDX-License-Identifier: Apache-2.0
#include "document/DocumentBuilder.h"

#include <algorithm>
#include <unordered_set>
#include <utility>

#include "document/BoxBuilder.h"
#include "document/TvDoc.h"
#include "site/Site.h"

namespace tavrin {

DocumentBuilder::DocumentBuilder(CTvDoc& document, const DocumentForm& form, DocumentHost& host)
    : m_document(document),
      m_form(form),
      m_host(host),
      m_report(host.GetSite().report),
      m_definitions(host.Registry(), host.GetSite()) {
    for (const auto& box : document.m_boxes) m_byWid[box->wid] = box.get();
}

bool DocumentBuilder::Build() {
    for (const SectionRecord& section : m_form.sections) {
        if (!std::visit([this](const auto& record) { return Take(record); }, section)) return false;
        ReportErrorsUpTo(PlaceOf(section).end);
    }
    ReportErrorsUpTo(m_form.Text().size());
    if (!m_form.IsReadToEnd()) return false;
    m_document.SortBoxesByWid();
    m_document.SetModified(false);
    return true;
}

bool DocumentBuilder::BuildDesk() {
    const auto isDesk = [](const auto& section) { return std::holds_alternative<DeskRecord>(section); };
    const auto desk = std::find_if(m_form.sections.begin(), m_form.sections.end(), isDesk);
    const bool isThere = desk != m_form.sections.end();
    if (isThere && !Take(std::get<DeskRecord>(*desk))) return false;
    ReportErrorsUpTo(m_form.Text().size());
    return isThere && m_form.IsReadToEnd();
}

void DocumentBuilder::ReportErrorsUpTo(size_t place) {
    for (; m_errorsReported < m_form.errors.size(); ++m_errorsReported) {
        const ReadingError& error = m_form.errors[m_errorsReported];
        if (error.place > place) return;
        if (!error.message.empty()) m_report.AlertAt(m_form.Path(), error.line, error.message);
    }
}

bool DocumentBuilder::Stop(const DocumentRecord& record, const std::string& message) {
    m_report.AlertAt(m_form.Path(), m_form.LastLineOf(record), message);
    return false;
}

bool DocumentBuilder::Take(const LibraryRecord& library) {
    m_definitions.Clear();
    m_expectsOperators = false;
    const std::string name(library.name);
    if (!m_host.UseLibrary(name)) {
        m_report.AlertAt(m_form.Path(), m_form.LastLineOf(library),
                         "the library name \"" + name + "\" leads out of the installation; reading on with " +
                             m_host.GetSite().directories.libName);
    }
    return true;
}

bool DocumentBuilder::Take(const ToolbarRecord& toolbar) {
    m_document.toolbar.assign(toolbar.operators.begin(), toolbar.operators.end());
    return true;
}

bool DocumentBuilder::Take(const RenderOptionsRecord& section) {
    for (const RenderOptionRecord& record : section.options) {
        const std::string name(record.name);
        const auto option = m_document.m_renderOptions.find(name);
        if (option == m_document.m_renderOptions.end()) {
            m_report.LogLine("discarding unknown render option %s", name.c_str());
        } else {
            option->second = record.value;
        }
    }
    return true;
}

bool DocumentBuilder::Take(const ExportOptionsRecord& section) {
    for (const ExportOptionRecord& option : section.options)
        SetExportOption(m_document.exportOptions, option.key, option.line);
    return true;
}

bool DocumentBuilder::Take(const HelpRecord& help) {
    m_document.customshaderhelp = help.text;
    return true;
}

bool DocumentBuilder::Take(const DeskRecord& desk) {
    ExpectOperators(desk);
    return std::all_of(desk.items.begin(), desk.items.end(), [this](const auto& item) {
        return std::visit([this](const auto& record) { return Take(record); }, item);
    });
}

// Lets the preprocessor begin with all operators up to the next library while the first boxes are made.
void DocumentBuilder::ExpectOperators(const DeskRecord& desk) {
    if (std::exchange(m_expectsOperators, true) || !m_definitions.AreShared()) return;
    std::vector<std::string_view> names;
    std::unordered_set<std::string_view> seen;
    bool isBehind = false;
    for (const SectionRecord& section : m_form.sections) {
        const auto* own = std::get_if<DeskRecord>(&section);
        isBehind = isBehind || own == &desk;
        if (!isBehind) continue;
        if (std::holds_alternative<LibraryRecord>(section)) break;
        if (own == nullptr) continue;
        for (const auto& item : own->items) {
            const auto* box = std::get_if<BoxRecord>(&item);
            if (box != nullptr && seen.insert(box->operatorName).second) names.push_back(box->operatorName);
        }
    }
    m_definitions.Expect(names);
}

bool DocumentBuilder::Take(const BoxRecord& record) {
    auto made = std::make_unique<COpBox>();
    if (!m_host.DefineBox(*made, std::string(record.operatorName), &m_definitions)) return false;
    COpBox& box = *m_document.m_boxes.emplace_back(std::move(made));
    if (!BoxBuilder(box, m_form, m_report).Build(record)) return false;
    if (record.IsWhole()) m_byWid[box.wid] = &box;
    return true;
}

bool DocumentBuilder::Take(const ConnectionRecord& record) {
    const ConnectionRecord::End& source = record.source;
    const ConnectionRecord::End& target = record.target;
    for (const int wid : {source.wid, target.wid}) {
        if (!m_byWid.contains(wid)) return Stop(record, FormatText("box %d not found", wid));
    }
    COpBox& from = *m_byWid[source.wid];
    COpBox& to = *m_byWid[target.wid];
    if (source.position < 0 || static_cast<size_t>(source.position) >= from.outputs.size())
        return Stop(record, FormatText("box %d has no output %d", source.wid, source.position));
    if (target.position < 0 || static_cast<size_t>(target.position) >= to.inputs.size()) {
        return Stop(record, FormatText("box %s_%d has no input %d", to.filename.c_str(), target.wid,
                                       target.position));
    }
    // From the input's side, so that a pair that the file names twice stays whole.
    to.inputs[static_cast<size_t>(target.position)]->Connect(
        *from.outputs[static_cast<size_t>(source.position)]);
    return true;
}

bool DocumentBuilder::Take(const DeskSettingRecord& setting) {
    CTvDoc& document = m_document;
    const std::string_view keyword = setting.keyword;
    const auto numbers = setting.numbers.begin();
    if (keyword == "drawlinesoverboxes") document.drawlinesoverboxes = setting.flag;
    if (keyword == "showvarnames") document.showvarnames = setting.flag;
    if (keyword == "lock") document.lock = setting.flag;
    if (keyword == "showiconimages") document.showiconimages = setting.flag;
    if (keyword == "linetype") document.linetype = setting.flag;
    if (keyword == "offsetxy") std::copy_n(numbers, setting.numberCount, document.offset);
    if (keyword == "zoomxyf") {
        std::copy_n(numbers, std::min<size_t>(setting.numberCount, 2), document.zoom);
        if (setting.numberCount > 2) document.zoomFactor = numbers[2];
    }
    return true;
}

}  // namespace tavrin
