// SPDX-License-Identifier: Apache-2.0
#include "ui/commands/ProbeWork.h"

#include <QAction>
#include <utility>

#include "app/Workspace.h"
#include "ui/desk/DeskPane.h"

namespace tavrin {

ProbeWork::ProbeWork(Needs needs)
    : m_needs(std::move(needs)),
      m_end(new QAction(&m_needs.frame)),
      m_changes(m_needs.work.probe.afterChange.Add([this] { Follow(); })) {
    m_end->setEnabled(false);
    QObject::connect(m_end, &QAction::triggered, m_end, [this] { m_needs.work.probe.End(); });
    m_needs.frame.addAction(m_end);
}

void ProbeWork::Follow() {
    TakeKey(m_needs.work.probe.Output() != nullptr);
    m_needs.desk.Repaint();
    m_needs.hasChanged();
}

// A key that two actions have fires neither.
void ProbeWork::TakeKey(bool isTaken) {
    if (isTaken == m_end->isEnabled()) return;
    QAction& from = isTaken ? m_needs.zoomReset : *m_end;
    QAction& to = isTaken ? *m_end : m_needs.zoomReset;
    const QList<QKeySequence> keys = from.shortcuts();
    from.setShortcuts(QList<QKeySequence>());
    to.setShortcuts(keys);
    m_end->setEnabled(isTaken);
}

}  // namespace tavrin
