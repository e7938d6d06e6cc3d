// SPDX-License-Identifier: Apache-2.0
// How placeholders of the network become real boxes.
#include <unordered_map>
#include <utility>

#include "desk/OpDesk.h"
#include "document/PlaceholderRevival.h"
#include "site/Site.h"
#include "text/StoredText.h"

namespace tavrin {

namespace {

// A wire by its ends, the input first.
using Wire = std::pair<COpButton*, COpButton*>;

// The wires of a box as they are to stand on the one that takes its place; those of buttons without a
// counterpart are told.
std::vector<Wire> WiresFor(const COpBox& former, RevivedBox& revived) {
    std::unordered_map<const COpButton*, COpButton*> counterparts;
    for (size_t i = 0; i < former.inputs.size(); ++i)
        counterparts[former.inputs[i].get()] = revived.inputs[i];
    for (size_t i = 0; i < former.outputs.size(); ++i)
        counterparts[former.outputs[i].get()] = revived.outputs[i];
    const auto present = [&](COpButton* button) {
        const auto found = counterparts.find(button);
        return found == counterparts.end() ? button : found->second;
    };
    std::vector<Wire> wires;
    const auto add = [&](COpButton* input, COpButton* output) {
        const Wire wire{present(input), present(output)};
        if (wire.first != nullptr && wire.second != nullptr) {
            wires.push_back(wire);
        } else {
            revived.misfits.push_back("the wire from " + output->owner->BoxTitleWid() + " to " +
                                      input->owner->BoxTitleWid() + " has no place any more");
        }
    };
    for (const auto& input : former.inputs) {
        for (COpButton* output : input->connections) add(input.get(), output);
    }
    for (const auto& output : former.outputs) {
        for (COpButton* input : output->connections) {
            if (input->owner != &former) add(input, output.get());
        }
    }
    return wires;
}

// Among clones that nobody sees: what does not fit was told of those they were made of.
void Revive(COpDesk::BoxVector& clones, PlaceholderRevival& revival) {
    for (auto& place : clones) {
        if (!place->IsPlaceholder()) continue;
        auto revived = revival.Make(*place);
        if (!revived) continue;
        const std::vector<Wire> wires = WiresFor(*place, *revived);
        place = std::move(revived->box);
        for (const auto& [input, output] : wires) input->Connect(*output);
    }
}

}  // namespace

size_t COpDesk::RevivePlaceholders() {
    if (m_document.lock != 0 || m_document.edits.IsOpen()) return 0;
    const EditScope edit(m_document, "Reload Operators");
    PlaceholderRevival revival(m_host);
    Report& report = m_host.GetSite().report;
    size_t count = 0;
    for (auto& place : m_document.m_boxes) {
        if (!place->IsPlaceholder()) continue;
        auto revived = revival.Make(*place);
        if (!revived) continue;
        PutInPlace(place, std::move(*revived));
        report.LogLine("%s is a real box again", OneLine(place->BoxTitleWid()).c_str());
        ++count;
    }
    Revive(m_clipboardBoxes, revival);
    return count;
}

// The same place in the stack, the same number, the same wires.
void COpDesk::PutInPlace(std::unique_ptr<COpBox>& place, RevivedBox revived) {
    const std::vector<Wire> wires = WiresFor(*place, revived);
    for (const std::string& misfit : revived.misfits) {
        m_host.GetSite().report.LogLine("WARNING: %s: %s", OneLine(place->BoxTitleWid()).c_str(),
                                        OneLine(misfit).c_str());
    }
    std::erase_if(m_selectedConnects, [&](const COpButton* input) { return input->owner == place.get(); });
    ForgetBox(*place, Edits::Stood::kInNetwork);
    std::unique_ptr<COpBox> former = std::exchange(place, std::move(revived.box));
    m_document.edits.Leave(std::move(former));
    former.reset();
    COpBox& fresh = *place;
    m_usedWids.Add(fresh.wid);
    m_view->LayoutBox(fresh);
    m_document.edits.BoxCame(fresh);
    m_document.edits.BoxDropped(fresh);
    m_document.edits.WiresChanged();
    for (const auto& [input, output] : wires) input->Connect(*output);
}

}  // namespace tavrin
