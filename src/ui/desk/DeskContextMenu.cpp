// SPDX-License-Identifier: Apache-2.0
#include "ui/desk/DeskContextMenu.h"

#include <QAction>
#include <QEvent>
#include <QMenu>
#include <QScreen>
#include <QWidgetAction>

#include "ui/base/Text.h"
#include "ui/desk/DeskHelpText.h"

namespace tavrin {

namespace {

using Choose = std::function<void(int id)>;

// A desk that is locked disables what belongs to it: the menu could not even be closed by hand any more.
class ContextMenu : public QMenu {
  public:
    using QMenu::QMenu;

  protected:
    void changeEvent(QEvent* event) override {
        QMenu::changeEvent(event);
        if (event->type() == QEvent::EnabledChange && !isEnabled()) close();
    }
};

// '&' is no mnemonic, and what would break the line or begin the column of shortcuts is a blank.
QString ItemText(const QMenu& menu, const std::string& text) {
    QString shown = Shown(text);
    for (QChar& c : shown) {
        if (c.category() == QChar::Other_Control) c = ' ';
    }
    const int widest = menu.screen()->availableSize().width() / 2;
    return LiteralLabel(menu.fontMetrics().elidedText(shown, Qt::ElideMiddle, widest));
}

void AddHelp(QMenu& menu, const std::string& help) {
    QObject::connect(
        &menu, &QMenu::aboutToShow, &menu,
        [&menu, help] {
            auto* item = new QWidgetAction(&menu);
            item->setDefaultWidget(new DeskHelpText(menu, help));
            menu.addAction(item);
        },
        Qt::SingleShotConnection);
}

void AddEntries(QMenu& menu, const DeskMenuEntries& entries, const Choose& choose);

void AddEntry(QMenu& menu, const DeskMenuEntry& entry, const Choose& choose) {
    switch (entry.kind) {
        case DeskMenuEntry::Kind::kSeparator:
            menu.addSeparator();
            break;
        case DeskMenuEntry::Kind::kHelp:
            AddHelp(menu, entry.text);
            break;
        case DeskMenuEntry::Kind::kSubmenu: {
            QMenu* submenu = menu.addMenu(ItemText(menu, entry.text));
            AddEntries(*submenu, entry.entries, choose);
            submenu->setEnabled(!entry.entries.empty());  // one of nothing would be a speck
            break;
        }
        case DeskMenuEntry::Kind::kCommand: {
            QAction* item = menu.addAction(ItemText(menu, entry.text));
            item->setData(entry.id);
            item->setEnabled(entry.enabled);
            item->setCheckable(entry.checkable);
            item->setChecked(entry.checked);
            QObject::connect(item, &QAction::triggered, [choose, id = entry.id] { choose(id); });
            break;
        }
    }
}

void AddEntries(QMenu& menu, const DeskMenuEntries& entries, const Choose& choose) {
    menu.setSeparatorsCollapsible(false);
    for (const DeskMenuEntry& entry : entries) AddEntry(menu, entry, choose);
}

}  // namespace

QMenu* MakeDeskContextMenu(QWidget* parent, const DeskMenuEntries& entries, const Choose& choose) {
    auto* menu = new ContextMenu(parent);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    AddEntries(*menu, entries, choose);
    return menu;
}

}  // namespace tavrin
