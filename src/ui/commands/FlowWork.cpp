// SPDX-License-Identifier: Apache-2.0
#include "ui/commands/FlowWork.h"

#include <QKeySequence>

#include "app/Workspace.h"
#include "ui/commands/CommandActions.h"

namespace tavrin {

namespace {

constexpr size_t kToAlign = 2;       // boxes; with fewer there is nothing to be done
constexpr size_t kToDistribute = 3;  // the first and the last of them stay

bool AreSelected(const CTvDoc& document, size_t count) {
    for (const auto& box : document.m_boxes) {
        if (count == 0) break;
        if (box->selected != 0) --count;
    }
    return count == 0;
}

void AddOrder(CommandActions& commands, Workspace& work) {
    CTvDoc& document = work.document;
    COpDesk& desk = work.desk;
    const auto canArrange = [&document](size_t count) {
        return [&document, count] { return document.lock == 0 && AreSelected(document, count); };
    };
    const auto align = [&](CommandId id, DeskAlign edge) {
        commands.On(id, {[&desk, edge] { desk.AlignSelected(edge); }, canArrange(kToAlign)});
    };
    align(CommandId::kAlignLeft, DeskAlign::kLeft);
    align(CommandId::kAlignCentre, DeskAlign::kMiddleAcross);
    align(CommandId::kAlignRight, DeskAlign::kRight);
    align(CommandId::kAlignTop, DeskAlign::kTop);
    align(CommandId::kAlignMiddle, DeskAlign::kMiddleUp);
    align(CommandId::kAlignBottom, DeskAlign::kBottom);
    const auto distribute = [&](CommandId id, DeskAxis axis) {
        commands.On(id, {[&desk, axis] { desk.DistributeSelected(axis); }, canArrange(kToDistribute)});
    };
    distribute(CommandId::kDistributeAcross, DeskAxis::kAcross);
    distribute(CommandId::kDistributeDown, DeskAxis::kUp);
    const auto tidy = [&document, &desk] {
        desk.Tidy(AreSelected(document, kToAlign) ? COpDesk::TidyScope::kSelected : COpDesk::TidyScope::kAll);
    };
    commands.On(CommandId::kTidy,
                {tidy, [&document] { return document.lock == 0 && document.m_boxes.size() >= kToAlign; }});
}

void AddFlow(CommandActions& commands, Workspace& work) {
    COpDesk& desk = work.desk;
    const auto isSelected = [&document = work.document, &desk] {
        return document.lock == 0 && desk.AnyBoxSelected();
    };
    commands.On(CommandId::kDeleteKeepingFlow, {[&desk] { desk.DeleteKeepingFlow(); }, isSelected});
    commands.On(CommandId::kMuteBoxes, {[&desk] { desk.MuteSelected(); }, isSelected});
    if (desk.Rules().keepFlow) {
        commands.MoveKey(QKeySequence(Qt::SHIFT | Qt::Key_Delete), CommandId::kCut,
                         CommandId::kDeleteKeepingFlow);
    }
}

}  // namespace

void AddFlowCommands(CommandActions& commands, Workspace& work) {
    AddOrder(commands, work);
    AddFlow(commands, work);
}

}  // namespace tavrin
