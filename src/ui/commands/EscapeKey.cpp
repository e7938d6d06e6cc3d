// SPDX-License-Identifier: Apache-2.0
#include "ui/commands/EscapeKey.h"

#include <QAction>
#include <QCoreApplication>
#include <QKeyEvent>
#include <QWidget>
#include <algorithm>
#include <utility>

namespace tavrin {

EscapeKey::EscapeKey(Needs needs) : m_needs(std::move(needs)), m_step(new QAction(&m_needs.frame)) {
    m_step->setEnabled(false);
    connect(m_step, &QAction::triggered, this, [this] { Run(); });
    m_needs.frame.addAction(m_step);
    QCoreApplication::instance()->installEventFilter(this);
}

EscapeKey::~EscapeKey() { QCoreApplication::instance()->removeEventFilter(this); }

const EscapeKey::Step* EscapeKey::Wanted() const {
    const auto isWanted = [](const Step& step) { return step.isWanted(); };
    const auto found = std::find_if(m_needs.steps.begin(), m_needs.steps.end(), isWanted);
    return found == m_needs.steps.end() ? nullptr : &*found;
}

// A key that two actions have fires neither.
void EscapeKey::Follow() {
    const bool isTaken = Wanted() != nullptr;
    if (isTaken == m_step->isEnabled()) return;
    QAction& from = isTaken ? m_needs.zoomReset : *m_step;
    QAction& to = isTaken ? *m_step : m_needs.zoomReset;
    const QList<QKeySequence> keys = from.shortcuts();
    from.setShortcuts(QList<QKeySequence>());
    to.setShortcuts(keys);
    m_step->setEnabled(isTaken);
}

void EscapeKey::Run() {
    if (const Step* step = Wanted()) step->run();
    Follow();
    m_needs.hasRun();
}

// Before it is looked up whose the key is: a wire may have been picked since the program was last at rest.
bool EscapeKey::eventFilter(QObject*, QEvent* event) {
    const bool isEscape = event->type() == QEvent::ShortcutOverride &&
                          static_cast<const QKeyEvent&>(*event).key() == Qt::Key_Escape;
    if (isEscape) Follow();
    return false;
}

}  // namespace tavrin
