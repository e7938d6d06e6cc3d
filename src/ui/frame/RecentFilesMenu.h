// SPDX-License-Identifier: Apache-2.0
// The documents of late in the File menu.
#pragma once

#include <QList>
#include <functional>
#include <string>

class QAction;
class QMenu;

namespace tavrin {

class RecentFiles;

// Belongs to the frame, which owns the menu.
class RecentFilesMenu {
  public:
    // `open` gets the path of the item chosen; false if it could not be opened. One that is gone then leaves
    // the list.
    RecentFilesMenu(RecentFiles& files, std::function<bool(const std::string&)> open)
        : m_files(files), m_open(std::move(open)) {}

    // Takes this place in the menu. The items are made anew whenever the menu comes up.
    void AddTo(QMenu& menu);

  private:
    void Fill(QMenu& menu, QAction* end);
    void Choose(const std::string& path);

    RecentFiles& m_files;
    std::function<bool(const std::string&)> m_open;
    QList<QAction*> m_shown;
};

}  // namespace tavrin
