// SPDX-License-Identifier: Apache-2.0
#include "document/PlaceholderRevival.h"

#include <algorithm>

#include "document/BoxBuilder.h"
#include "document/DocumentReader.h"
#include "document/TvDoc.h"
#include "library/OpRegistry.h"
#include "library/Placeholder.h"
#include "site/Site.h"
#include "text/StoredText.h"
#include "text/Tokens.h"

namespace tavrin {

namespace {

using Buttons = std::vector<std::unique_ptr<COpButton>>;

// Those that the block lists, in its order, and behind them by their names those that only wires spoke of.
std::vector<COpButton*> Counterparts(const Buttons& former, const std::vector<COpButton*>& listed,
                                     const Buttons& fresh) {
    std::vector<COpButton*> counterparts = listed;
    for (size_t place = listed.size(); place < former.size(); ++place) {
        const auto isIt = [&](const auto& button) { return button->name == former[place]->name; };
        const auto found = std::find_if(fresh.begin(), fresh.end(), isIt);
        const auto atPlace = place < fresh.size() ? fresh[place].get() : nullptr;
        counterparts.push_back(found == fresh.end() ? atPlace : found->get());
    }
    return counterparts;
}

}  // namespace

PlaceholderRevival::PlaceholderRevival(DocumentHost& host)
    : m_host(host), m_definitions(host.Registry(), host.GetSite()) {}

bool PlaceholderRevival::Define(COpBox& box, const std::string& operatorName) {
    const std::string key = ToLower(operatorName);
    if (m_failed.contains(key)) return false;
    Report& report = m_host.GetSite().report;
    HeldAlerts held(report);
    if (m_host.DefineBox(box, operatorName, &m_definitions)) {
        held.Release();
        return true;
    }
    m_failed.insert(key);
    if (m_host.Registry().FindByName(operatorName) == nullptr) return false;
    for (const Report::Pending& alert : held.All()) {
        report.LogLine("WARNING: boxes of %s stay placeholders: %s", OneLine(operatorName).c_str(),
                       OneLine(alert.text).c_str());
    }
    return false;
}

std::optional<RevivedBox> PlaceholderRevival::Make(const COpBox& placeholder) {
    auto box = std::make_unique<COpBox>();
    if (!Define(*box, placeholder.filename)) return std::nullopt;
    const std::string block = BlockOf(*placeholder.placeholder, placeholder.wid, placeholder.xypos);
    const DocumentForm form =
        ReadDesk(CArchive::FromText(placeholder.BoxTitleWid(), "opdesk {\n" + block + "\n}"));
    const auto& record = std::get<BoxRecord>(std::get<DeskRecord>(form.sections.at(0)).items.at(0));
    RevivedBox revived;
    Report& report = m_host.GetSite().report;
    HeldAlerts held(report);
    BoxBuilder builder(*box, form, report, [&](size_t, const std::string& message) {
        revived.misfits.push_back(message + "; it is kept as a stray button");
    });
    builder.Build(record);
    for (const Report::Pending& alert : held.All()) revived.misfits.push_back(alert.text);
    box->wid = placeholder.wid;
    box->selected = placeholder.selected;
    box->muted = placeholder.muted;
    std::copy_n(placeholder.xypos, 2, box->xypos);
    revived.inputs = Counterparts(placeholder.inputs, builder.Inputs(), box->inputs);
    revived.outputs = Counterparts(placeholder.outputs, builder.Outputs(), box->outputs);
    revived.box = std::move(box);
    return revived;
}

}  // namespace tavrin
