// SPDX-License-Identifier: Apache-2.0
#include "ui/library/OperatorMenus.h"

#include <QAction>
#include <QMenu>
#include <utility>

#include "library/OpRegistry.h"
#include "ui/base/Text.h"

namespace tavrin {

namespace {

// The object in a menu that fills it when it opens.
constexpr char kFillerName[] = "operatorFiller";

// What a menu held may be what is being chosen now, so it goes later.
void Empty(QMenu& menu) {
    delete menu.findChild<QObject*>(kFillerName, Qt::FindDirectChildrenOnly);
    for (QAction* action : menu.actions()) {
        menu.removeAction(action);
        if (action->menu() != nullptr) {
            action->menu()->deleteLater();  // which owns the action
        } else {
            action->deleteLater();
        }
    }
}

void AddItems(QMenu& menu, const OpMenu& content, const OperatorChooser& choose) {
    for (const OpMenuItem& item : content.items) {
        switch (item.kind) {
            case OpMenuItem::Kind::kSeparator:
                menu.addSeparator();
                break;
            case OpMenuItem::Kind::kSubmenu:
                FillOperatorMenu(*menu.addMenu(LiteralLabel(Shown(item.label))), *item.submenu, choose);
                break;
            case OpMenuItem::Kind::kOperator:
                QObject::connect(menu.addAction(LiteralLabel(Shown(item.label))), &QAction::triggered,
                                 [id = item.id, choose] { SendOperatorCommand(id, choose); });
                break;
        }
    }
}

}  // namespace

void FillOperatorMenu(QMenu& menu, const OpMenu& content, OperatorChooser choose) {
    Empty(menu);
    menu.setSeparatorsCollapsible(false);
    auto* filler = new QObject(&menu);
    filler->setObjectName(kFillerName);
    QObject::connect(
        &menu, &QMenu::aboutToShow, filler,
        [&menu, &content, choose = std::move(choose)] { AddItems(menu, content, choose); },
        Qt::SingleShotConnection);
}

void SendOperatorCommand(uint32_t id, const OperatorChooser& choose) {
    if (id <= COpRegistry::kLastId) choose(id);
}

}  // namespace tavrin
