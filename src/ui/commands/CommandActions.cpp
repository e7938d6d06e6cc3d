// SPDX-License-Identifier: Apache-2.0
#include "ui/commands/CommandActions.h"

#include <QAction>
#include <QKeySequence>
#include <QMainWindow>
#include <QMenu>
#include <QShortcut>
#include <QToolBar>
#include <algorithm>

#include "icons/Icons.h"

namespace tavrin {

namespace {

bool IsHotKey(CommandId id) { return std::find(HotKeys().begin(), HotKeys().end(), id) != HotKeys().end(); }

// The text without what marks the letter to press, and without the dots of a dialog to come.
QString PlainText(QString text) { return text.remove('&').remove("..."); }

}  // namespace

CommandActions::CommandActions(QMainWindow& frame, std::function<void()> hasRun)
    : m_hasRun(std::move(hasRun)) {
    for (const CommandSpec& spec : CommandTable()) Add(frame, spec);
    AddHotKeys(frame);
}

void CommandActions::Add(QMainWindow& frame, const CommandSpec& spec) {
    auto* action = new QAction(&frame);
    m_actions[spec.id] = action;
    action->setObjectName(QString::number(static_cast<int>(spec.id)));
    if (*spec.icon != '\0') action->setIcon(Icon(spec.icon));
    action->setMenuRole(QAction::NoRole);
    action->setStatusTip(spec.tip);
    action->setEnabled(false);
    // Hot keys are looked up by shortcuts of their own: a key that is bound twice fires neither.
    if (!IsHotKey(spec.id)) {
        QList<QKeySequence> keys;
        for (const QString& key : QString(spec.keys).split(';', Qt::SkipEmptyParts))
            keys << QKeySequence(key);
        action->setShortcuts(keys);
    }
    SetText(spec.id, spec.text);
    QObject::connect(action, &QAction::triggered, &frame, [this, id = spec.id] { Run(id); });
    frame.addAction(action);
}

void CommandActions::AddHotKeys(QMainWindow& frame) {
    int key = Qt::Key_F1;
    for (const CommandId id : HotKeys()) {
        auto* hotKey = new QShortcut(QKeySequence(key++), &frame);
        hotKey->setContext(Qt::ApplicationShortcut);
        hotKey->setAutoRepeat(false);
        QObject::connect(hotKey, &QShortcut::activated, &frame, [this, id] { Run(id); });
    }
}

void CommandActions::On(CommandId id, CommandHandler handler) {
    const bool hasMark = handler.checked != nullptr;
    const auto [place, isFirst] = m_handlers.emplace(id, std::move(handler));
    if (!isFirst) qWarning("command %d is handled already", static_cast<int>(id));
    QAction& action = Get(id);
    action.setEnabled(true);
    action.setCheckable(hasMark);
    // In a menu the icon would stand where the check mark belongs.
    action.setIconVisibleInMenu(!hasMark);
}

void CommandActions::Run(CommandId id) {
    if (const auto handler = m_handlers.find(id); handler != m_handlers.end()) handler->second.run();
    m_hasRun();
}

void CommandActions::MoveKey(const QKeySequence& key, CommandId from, CommandId to) {
    QList<QKeySequence> left = Get(from).shortcuts();
    left.removeAll(key);
    Get(from).setShortcuts(left);
    Get(to).setShortcuts(Get(to).shortcuts() << key);
    Get(to).setToolTip(PlainText(Get(to).text()) + " (" + key.toString() + ")");
}

void CommandActions::SetText(CommandId id, const QString& text) {
    const CommandSpec& spec = SpecOf(id);
    const QString key = QString(spec.keys).section(';', 0, 0);
    QAction& action = Get(id);
    action.setText(IsHotKey(id) ? text + "\t" + key : text);
    action.setToolTip(key.isEmpty() ? PlainText(text) : PlainText(text) + " (" + key + ")");
}

void CommandActions::Update() {
    for (const auto& [id, handler] : m_handlers) Update(id, handler);
}

void CommandActions::Update(CommandId id) { Update(id, m_handlers.at(id)); }

void CommandActions::Update(CommandId id, const CommandHandler& handler) {
    QAction& action = Get(id);
    action.setEnabled(!handler.enabled || handler.enabled());
    if (handler.checked) action.setChecked(handler.checked());
    if (handler.text) SetText(id, handler.text());
}

void CommandActions::Fill(QMenu& menu, const std::vector<Slot>& slots,
                          const std::function<void(QMenu&)>& addRecentFiles) const {
    for (const Slot& slot : slots) {
        switch (slot.kind) {
            case Slot::Kind::kCommand:
                menu.addAction(&Get(slot.id));
                break;
            case Slot::Kind::kGap:
                menu.addSeparator();
                break;
            case Slot::Kind::kSubmenu:
                Fill(*menu.addMenu(slot.title), slot.items, addRecentFiles);
                break;
            case Slot::Kind::kRecentFiles:
                addRecentFiles(menu);
                break;
        }
    }
}

void CommandActions::Fill(QToolBar& bar, const std::vector<Slot>& slots) const {
    for (const Slot& slot : slots) {
        if (slot.kind == Slot::Kind::kGap) {
            bar.addSeparator();
        } else {
            bar.addAction(&Get(slot.id));
        }
    }
}

}  // namespace tavrin
