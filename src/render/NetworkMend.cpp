// SPDX-License-Identifier: Apache-2.0
#include "render/NetworkMend.h"

#include "desk/OpDesk.h"
#include "document/TvDoc.h"

namespace tavrin {

namespace {

using Mend = Finding::Mend;

COpBox* FindBox(const CTvDoc& document, const std::string& boxTitleWid) {
    for (const auto& box : document.m_boxes) {
        if (box->BoxTitleWid() == boxTitleWid) return box.get();
    }
    return nullptr;
}

COpButton* FindInput(const COpBox& box, const std::string& displayName) {
    for (const auto& input : box.inputs) {
        if (input->DisplayName() == displayName) return input.get();
    }
    return nullptr;
}

bool FeedsNothing(const COpBox& box) {
    for (const auto& output : box.outputs) {
        if (!output->connections.Empty()) return false;
    }
    return true;
}

bool CutWire(CTvDoc& document, COpDesk& desk, COpButton& input) {
    if (input.connections.Empty()) return false;
    const EditScope edit(document, "Cut Wires");
    document.edits.WiresChanged();
    std::erase(desk.m_selectedConnects, &input);
    input.Disconnect();
    return true;
}

bool TakeNoArgument(CTvDoc& document, COpButton& input) {
    if (input.arg == 0) return false;
    const EditScope edit(document, "Argument");
    document.edits.ButtonTouched(input);
    input.arg = 0;
    return true;
}

}  // namespace

std::string MendText(const Finding& finding) {
    switch (finding.mend) {
        case Mend::kNone:
            return {};
        case Mend::kDeleteBox:
            return "Delete " + finding.box;
        case Mend::kCutWire:
            return "Cut the Wire to " + finding.box + " " + finding.button;
        case Mend::kTakeNoArgument:
            return "Make " + finding.box + " " + finding.button + " No Argument";
        case Mend::kAddOutputBox:
            return "Add " + finding.operatorName;
    }
    return {};
}

bool MendNetwork(const Finding& finding, CTvDoc& document, COpDesk& desk) {
    if (finding.mend == Mend::kNone || document.lock != 0 || document.edits.IsOpen()) return false;
    if (finding.mend == Mend::kAddOutputBox) {
        desk.AddOperator(finding.operatorName);
        return !desk.m_pendingBoxes.empty();
    }
    const COpBox* box = FindBox(document, finding.box);
    if (box == nullptr) return false;
    if (finding.mend == Mend::kDeleteBox) {
        if (!FeedsNothing(*box)) return false;
        desk.DeleteBox(*box);
        return true;
    }
    COpButton* input = FindInput(*box, finding.button);
    if (input == nullptr) return false;
    return finding.mend == Mend::kCutWire ? CutWire(document, desk, *input)
                                          : TakeNoArgument(document, *input);
}

}  // namespace tavrin
