// SPDX-License-Identifier: Apache-2.0
#include "document/DocumentBuilder.h"

#include <algorithm>
#include <unordered_set>
#include <utility>

#include "document/BoxBuilder.h"
#include "document/PlaceholderBox.h"
#include "document/TvDoc.h"
#include "library/Aliases.h"
#include "library/OpRegistry.h"
#include "site/Site.h"
#include "text/Numbers.h"

namespace tavrin {

DocumentBuilder::DocumentBuilder(CTvDoc& document, const DocumentForm& form, DocumentHost& host)
    : m_document(document),
      m_form(form),
      m_host(host),
      m_report(host.GetSite().report),
      m_definitions(host.Registry(), host.GetSite()) {
    for (const auto& box : document.m_boxes) m_byWid[box->wid].box = box.get();
    if (host.WantsPlaceholders()) m_unknown.emplace(form, host.GetSite());
}

bool DocumentBuilder::Build() {
    const bool isWhole = TakeSections();
    MuteBoxes();
    if (m_unknown) m_unknown->TellCount();
    if (!isWhole) return false;
    m_document.SortBoxesByWid();
    m_document.SetModified(false);
    return true;
}

bool DocumentBuilder::TakeSections() {
    for (const SectionRecord& section : m_form.sections) {
        if (!std::visit([this](const auto& record) { return Take(record); }, section)) return false;
        ReportErrorsUpTo(PlaceOf(section).end);
    }
    ReportErrorsUpTo(m_form.Text().size());
    return m_form.IsReadToEnd();
}

bool DocumentBuilder::BuildDesk() {
    const auto isDesk = [](const auto& section) { return std::holds_alternative<DeskRecord>(section); };
    const auto desk = std::find_if(m_form.sections.begin(), m_form.sections.end(), isDesk);
    const bool isThere = desk != m_form.sections.end();
    const bool isTaken = !isThere || Take(std::get<DeskRecord>(*desk));
    for (const SectionRecord& section : m_form.sections) {
        if (const auto* muted = std::get_if<MutedRecord>(&section)) Take(*muted);
        if (const auto* frame = std::get_if<FrameRecord>(&section)) Take(*frame);
    }
    MuteBoxes();
    if (isTaken) ReportErrorsUpTo(m_form.Text().size());
    if (m_unknown) m_unknown->TellCount();
    return isThere && isTaken && m_form.IsReadToEnd();
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
    if (m_unknown) m_unknown->ForgetOperators();
    m_expectsOperators = false;
    const std::string name(library.name);
    if (!m_host.UseLibrary(name)) {
        m_report.AlertAt(m_form.Path(), m_form.LastLineOf(library),
                         "the library name \"" + name + "\" leads out of the installation; reading on with " +
                             m_host.GetSite().directories.libName);
    }
    return true;
}

// Up to what is no number. The boxes may come later.
bool DocumentBuilder::Take(const MutedRecord& muted) {
    FieldScanner scanner(muted.wids);
    while (const auto wid = scanner.Int()) m_muted.push_back(*wid);
    return true;
}

bool DocumentBuilder::Take(const FrameRecord& record) {
    if (auto frame = FrameOf(record.words)) AddFrame(m_document.frames, std::move(*frame));
    return true;
}

void DocumentBuilder::MuteBoxes() {
    for (const int wid : m_muted) {
        const auto built = m_byWid.find(wid);
        if (built != m_byWid.end()) built->second.box->muted = 1;
    }
}

bool DocumentBuilder::Take(const ToolbarRecord& toolbar) {
    m_document.toolbar.clear();
    for (const std::string_view name : toolbar.operators) m_document.toolbar.push_back(PresentName(name));
    return true;
}

// An operator that was called so before is known by its name of now; any other name stands as it is.
std::string DocumentBuilder::PresentName(std::string_view operatorName) {
    const std::string name(operatorName);
    const COpRegistry& registry = m_host.Registry();
    if (registry.FindByName(name) != nullptr || registry.MayHaveBeenCalled(name).empty()) return name;
    COpBox box;
    return box.DefineByAlias(name, registry, m_host.GetSite(), &m_definitions) ? box.filename : name;
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
    if (!m_unknown) {
        return m_host.DefineBox(*made, std::string(record.operatorName), &m_definitions) &&
               BuildBox(std::move(made), record);
    }
    const std::string reason = WhyUndefined(*made, record);
    return reason.empty() ? BuildBox(std::move(made), record) : StandIn(record, reason);
}

bool DocumentBuilder::BuildBox(std::unique_ptr<COpBox> made, const BoxRecord& record) {
    COpBox& box = *m_document.m_boxes.emplace_back(std::move(made));
    TellUnknownButton tellUnknown;
    if (m_unknown) {
        tellUnknown = [&](size_t place, const std::string& message) {
            m_unknown->TellButton(box.filename, place, message);
        };
    }
    BoxBuilder builder(box, m_form, m_report, std::move(tellUnknown));
    if (!builder.Build(record)) return false;
    if (record.IsWhole()) m_byWid[box.wid] = {&box, builder.Inputs()};
    return true;
}

// What there is of a block that the text ends in cannot be kept for what it is: the rest would be taken for
// its part when it is read again. The file is guarded as one that is cut.
bool DocumentBuilder::StandIn(const BoxRecord& record, const std::string& reason) {
    if (!record.IsWhole() || !record.isClosed) return true;
    const bool isThere = m_host.Registry().FindByName(std::string(record.operatorName)) != nullptr;
    COpBox& box = *m_document.m_boxes.emplace_back(
        MakePlaceholder(record, m_form, reason, isThere ? "broken" : "missing"));
    m_unknown->CountPlaceholder();
    m_byWid[box.wid] = {&box, {}};
    return true;
}

// Nothing if the box could be defined. What failed once is not tried again.
std::string DocumentBuilder::WhyUndefined(COpBox& box, const BoxRecord& record) {
    if (const std::string* reason = m_unknown->ReasonOf(record.operatorName)) return *reason;
    const std::string name(record.operatorName);
    HeldAlerts held(m_report);
    if (!m_host.DefineBox(box, name, &m_definitions))
        return m_unknown->TellOperator(name, record.begin, held);
    held.Release();
    return {};
}

bool DocumentBuilder::Take(const ConnectionRecord& record) {
    const ConnectionRecord::End& source = record.source;
    const ConnectionRecord::End& target = record.target;
    for (const int wid : {source.wid, target.wid}) {
        if (!m_byWid.contains(wid)) return Stop(record, FormatText("box %d not found", wid));
    }
    COpButton* output = FindButton(m_byWid[source.wid], source, true);
    if (output == nullptr)
        return Stop(record, FormatText("box %d has no output %d", source.wid, source.position));
    COpButton* input = FindButton(m_byWid[target.wid], target, false);
    if (input == nullptr) {
        return Stop(record, FormatText("box %s_%d has no input %d", m_byWid[target.wid].box->filename.c_str(),
                                       target.wid, target.position));
    }
    // From the input's side, so that a pair that the file names twice stays whole.
    input->Connect(*output);
    return true;
}

// By its position. Where the file lists its inputs in another order than the box has them, the position is
// one in that list, unless the name that stands beside it speaks for the other.
COpButton* DocumentBuilder::FindButton(const BuiltBox& built, const ConnectionRecord::End& end,
                                       bool isOutput) const {
    if (end.position < 0) return nullptr;
    const auto place = static_cast<size_t>(end.position);
    auto& side = isOutput ? built.box->outputs : built.box->inputs;
    COpButton* inBox = place < side.size() ? side[place].get() : nullptr;
    if (!m_unknown) return inBox;
    if (built.box->IsPlaceholder()) return MakeUpButton(*built.box, end, isOutput);
    COpButton* inFile = !isOutput && place < built.inputs.size() ? built.inputs[place] : nullptr;
    if (inFile == nullptr || inBox == nullptr) return inFile == nullptr ? inBox : inFile;
    const bool isOtherMeant =
        inBox->name == end.button && inFile->name != end.button && !WasCalled(*inFile, end.button);
    return isOtherMeant ? inBox : inFile;
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
