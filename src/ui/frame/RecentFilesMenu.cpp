// SPDX-License-Identifier: Apache-2.0
#include "ui/frame/RecentFilesMenu.h"

#include <QFileInfo>
#include <QMenu>

#include "app/RecentFiles.h"
#include "ui/base/Text.h"

namespace tavrin {

void RecentFilesMenu::AddTo(QMenu& menu) {
    QAction* end = menu.addSeparator();
    QObject::connect(&menu, &QMenu::aboutToShow, &menu, [this, &menu, end] { Fill(menu, end); });
}

void RecentFilesMenu::Fill(QMenu& menu, QAction* end) {
    qDeleteAll(std::exchange(m_shown, {}));
    int number = 0;
    for (const std::string& path : m_files.List()) {
        auto* file = new QAction(QString("&%1 %2").arg(++number).arg(LiteralLabel(Shown(path))), &menu);
        QObject::connect(file, &QAction::triggered, &menu, [this, path] { Choose(path); });
        m_shown << file;
    }
    if (m_shown.isEmpty()) {
        m_shown << new QAction("Recent Files", &menu);
        m_shown.first()->setEnabled(false);
    }
    menu.insertActions(end, m_shown);
}

void RecentFilesMenu::Choose(const std::string& path) {
    if (!m_open(path) && !QFileInfo::exists(Shown(path))) m_files.Remove(path);
}

}  // namespace tavrin
