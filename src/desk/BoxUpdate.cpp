// SPDX-License-Identifier: Apache-2.0
#include "desk/BoxUpdate.h"

#include <unordered_set>
#include <utility>

#include "library/DefinitionSource.h"
#include "library/DefinitionTexts.h"
#include "site/Site.h"
#include "text/OutOfMemory.h"

namespace tavrin {

namespace {

constexpr const char* kAct = "Update Boxes";

std::string NameOf(const COpButton& button) {
    return button.owner->BoxTitleWid() + " " + button.DisplayName();
}

}  // namespace

void COpDesk::ReplaceBoxes(BoxReplacements fresh) {
    const EditScope edit(m_document, kAct);
    BoxVector former;
    for (auto& place : m_document.m_boxes) {
        const auto found = fresh.find(place.get());
        if (found == fresh.end()) continue;
        m_document.edits.BoxWent(*place, Edits::Stood::kInNetwork);
        former.push_back(std::exchange(place, std::move(found->second)));
        m_view->LayoutBox(*place);
        m_document.edits.BoxCame(*place);
        m_document.edits.BoxDropped(*place);
    }
    for (auto& box : former) {
        if (m_mouseBox == box.get()) m_mouseBox = nullptr;
        for (const auto* side : {&box->inputs, &box->outputs}) {
            for (const auto& button : *side) ForgetButton(*button);
        }
        m_document.edits.Leave(std::move(box));
    }
}

BoxUpdate::BoxUpdate(CTvDoc& document, COpDesk& desk, DocumentHost& host)
    : m_document(document), m_desk(desk), m_host(host) {}

BoxUpdateResult BoxUpdate::Run(const std::vector<std::string>& operatorNames) {
    BoxUpdateResult result;
    if (m_document.lock != 0 || m_document.edits.IsOpen()) return result;
    Report& report = m_host.GetSite().report;
    const bool isMade = WithinMemory(report, "bringing boxes up to date", [&] {
        result.failed = DefineAll(operatorNames);
        return true;
    });
    if (!isMade || m_fresh.empty()) return result;
    result.boxes = m_fresh.size();
    CollectWires();
    const EditScope edit(m_document, kAct);
    MoveSelection();
    m_desk.ReplaceBoxes(std::move(m_fresh));
    // From the input's side, so that a wire which was one-sided is whole.
    for (const Wire& wire : m_wires) wire.target->Connect(*wire.source);
    if (!m_wires.empty()) m_document.edits.WiresChanged();
    result.losses = m_losses.size();
    for (const std::string& loss : m_losses) report.LogLine("WARNING: %s", loss.c_str());
    return result;
}

// Those whose definitions cannot be read.
std::vector<std::string> BoxUpdate::DefineAll(const std::vector<std::string>& operatorNames) {
    std::unordered_map<std::string_view, std::vector<const COpBox*>> boxes;
    for (const std::string& name : operatorNames) boxes[name];
    for (const auto& box : m_document.m_boxes) {
        const auto found = boxes.find(box->filename);
        if (found != boxes.end() && box->source != nullptr) found->second.push_back(box.get());
    }
    DefinitionTexts texts(m_host.Registry(), m_host.GetSite());
    texts.Expect({operatorNames.begin(), operatorNames.end()});
    std::vector<std::string> failed;
    for (const std::string& name : operatorNames) {
        if (!DefineFresh(boxes[name], texts)) failed.push_back(name);
    }
    return failed;
}

// All of one operator or none.
bool BoxUpdate::DefineFresh(const std::vector<const COpBox*>& boxes, DefinitionTexts& texts) {
    std::vector<std::unique_ptr<COpBox>> made;
    for (const COpBox* box : boxes) {
        made.push_back(std::make_unique<COpBox>());
        if (!m_host.DefineBox(*made.back(), box->filename, &texts)) return false;
    }
    for (size_t i = 0; i < boxes.size(); ++i) {
        const bool isTheSame =
            made[i]->source != nullptr && made[i]->source->textHash == boxes[i]->source->textHash;
        if (isTheSame) continue;
        CarryOver(*boxes[i], *made[i], m_successors, m_losses);
        m_fresh.emplace(boxes[i], std::move(made[i]));
    }
    return true;
}

COpButton* BoxUpdate::Successor(COpButton& button) const {
    if (!m_fresh.contains(button.owner)) return &button;
    const auto found = m_successors.find(&button);
    return found == m_successors.end() ? nullptr : found->second;
}

// Each wire with an end at a box that goes, once.
void BoxUpdate::CollectWires() {
    std::unordered_set<const COpButton*> seen;
    const auto take = [&](COpButton& source, COpButton& target) {
        if (!seen.insert(&target).second) return;
        const Wire now{Successor(source), Successor(target)};
        if (Fits({&source, &target}, now)) m_wires.push_back(now);
    };
    for (const auto& box : m_document.m_boxes) {
        if (!m_fresh.contains(box.get())) continue;
        for (const auto& input : box->inputs) {
            for (COpButton* source : input->connections) take(*source, *input);
        }
        for (const auto& output : box->outputs) {
            for (COpButton* target : output->NamedBy()) take(*output, *target);
        }
    }
}

bool BoxUpdate::Fits(const Wire& wire, const Wire& now) {
    const std::string lost = NameOf(*wire.target) + ": its wire from " + NameOf(*wire.source) + " is lost; ";
    if (now.source == nullptr || now.target == nullptr) {
        m_losses.push_back(lost + NameOf(now.source == nullptr ? *wire.source : *wire.target) + " is gone");
        return false;
    }
    if (now.target->CanConnect(*now.source)) return true;
    m_losses.push_back(lost + "the two may not be wired any more");
    return false;
}

// What was picked on the desk is picked still.
void BoxUpdate::MoveSelection() {
    const auto follow = [this](COpButton* button) {
        return COpButton::IsLive(button) ? Successor(*button) : nullptr;
    };
    COpButton* selected = m_desk.m_pulledInput == nullptr ? follow(m_desk.m_selectedButton) : nullptr;
    m_desk.ClearSelectedButton();  // a wire in hand goes back to where it was
    m_desk.m_selectedButton = selected;
    std::unordered_set<const COpButton*> wired;
    for (const Wire& wire : m_wires) wired.insert(wire.target);
    std::vector<COpButton*> connects;
    for (COpButton* input : m_desk.m_selectedConnects) {
        COpButton* now = follow(input);
        if (now != nullptr && (now == input || wired.contains(now))) connects.push_back(now);
    }
    m_desk.m_selectedConnects = std::move(connects);
}

}  // namespace tavrin
