// SPDX-License-Identifier: Apache-2.0
#include "ui/library/OperatorMenuBar.h"

#include <QMenu>
#include <QMenuBar>

#include "library/OpRegistry.h"
#include "ui/base/Text.h"

namespace tavrin {

OperatorMenuBar::OperatorMenuBar(QMenuBar& bar, const COpRegistry& registry, OperatorChooser choose)
    : m_bar(bar), m_registry(registry), m_choose(std::move(choose)) {}

void OperatorMenuBar::Rebuild() {
    const QList<QAction*> before = m_bar.actions();
    for (int index = 0; index < m_opMenuCount; ++index) {
        QAction* old = before.value(m_opMenuFirst + index);
        m_bar.removeAction(old);
        old->menu()->deleteLater();  // one of its own items may have led here
    }
    m_opMenuFirst = static_cast<int>(m_bar.actions().size());
    m_opMenuCount = 0;
    for (const OpMenuItem& item : m_registry.Root().items) {
        if (item.kind == OpMenuItem::Kind::kSeparator) continue;
        QMenu* menu = m_bar.addMenu(LiteralLabel(Shown(item.label)));
        if (item.submenu != nullptr) FillOperatorMenu(*menu, *item.submenu, m_choose);
        ++m_opMenuCount;
    }
}

}  // namespace tavrin
