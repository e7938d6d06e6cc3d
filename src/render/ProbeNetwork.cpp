// SPDX-License-Identifier: Apache-2.0
#include "render/ProbeNetwork.h"

#include <algorithm>
#include <functional>
#include <unordered_set>

#include "document/BoxOrder.h"
#include "document/DocumentReader.h"
#include "library/Placeholder.h"
#include "site/Site.h"
#include "text/Archive.h"
#include "text/OutOfMemory.h"

namespace tavrin {

namespace {

constexpr std::string_view kOpenArgument = "probe";
constexpr int kFirstWid = 1000000;  // which desks hardly come to

}  // namespace

ProbeNetwork::ProbeNetwork(const std::string& path, DocumentHost& host)
    : m_stamp(StampOf(path)), m_document(std::make_unique<CTvDoc>(host)) {
    m_problem = Read(host);
    if (m_problem.empty()) m_problem = FindInput();
}

ProbeNetwork::~ProbeNetwork() = default;

bool ProbeNetwork::IsCurrent() const { return StampOf(Path()) == m_stamp; }

std::string ProbeNetwork::Read(DocumentHost& host) {
    std::string reason;
    auto archive = CArchive::Open(Path(), reason);
    if (!archive) return "unable to open " + Path() + " for reading: " + reason;
    Report& report = host.GetSite().report;
    HeldAlerts held(report);
    const bool isRead = WithinMemory(report, "reading " + Path(),
                                     [&] { return m_document->LoadDesk(ReadDesk(std::move(*archive))); });
    for (const auto& box : m_document->m_boxes) {
        if (box->IsPlaceholder())
            return Path() + ": " + box->BoxTitleWid() + " has no operator: " + box->placeholder->reason;
    }
    if (!held.All().empty()) return held.All().front().text;
    return isRead && !m_document->m_boxes.empty() ? "" : Path() + " holds no network";
}

std::string ProbeNetwork::FindInput() {
    std::vector<COpBox*> boxes;
    for (const auto& box : m_document->m_boxes) boxes.push_back(box.get());
    std::vector<COpButton*> open = UnconnectedInputs(boxes);
    std::erase_if(open, [](const COpButton* input) {
        return !input->connections.Empty() || input->disableconnectflag != 0 || input->values.empty();
    });
    const auto isNamed = [](const COpButton* input) {
        return input->arg != 0 && input->argname == kOpenArgument;
    };
    if (std::any_of(open.begin(), open.end(), isNamed)) std::erase_if(open, std::not_fn(isNamed));
    if (open.size() != 1) {
        return Path() + ": " + (open.empty() ? "no input is open" : "more than one input is open") +
               " to take an output; make the one that shall an argument, and name it \"probe\"";
    }
    m_input = open.front();
    m_input->arg = 0;  // as one that has a wire it is none
    m_cast = m_input->currentcast;
    return {};
}

bool ProbeNetwork::Takes(std::string_view type) const {
    return std::any_of(m_input->values.begin(), m_input->values.end(),
                       [&](const auto& value) { return value->type == type; });
}

bool ProbeNetwork::Prefers(std::string_view type) const { return m_input->values[m_cast]->type == type; }

// The same ones whatever comes to the desk, as far as that goes: the shader of an output stays what it is.
void ProbeNetwork::NumberBoxes(const CTvDoc& document) {
    std::unordered_set<int> taken;
    for (const auto& box : document.m_boxes) {
        if (box->wid >= kFirstWid) taken.insert(box->wid);
    }
    int wid = kFirstWid;
    for (const auto& box : m_document->m_boxes) {
        while (taken.contains(wid)) ++wid;
        box->wid = wid++;
    }
}

ProbeNetwork::Wire::Wire(ProbeNetwork& network, COpButton& output, const CTvDoc& document)
    : m_input(*network.m_input), m_output(output) {
    network.NumberBoxes(document);
    m_input.SetCast(static_cast<size_t>(std::max(0, m_input.FindCast(output.CurrentType()))));
    // The input's side alone: generation goes from there to the output, and nothing goes the other way.
    m_input.connections.Insert(m_output);
    boxes = network.m_document->OrderBoxes();
}

ProbeNetwork::Wire::~Wire() { m_input.connections.Erase(m_output); }

}  // namespace tavrin
