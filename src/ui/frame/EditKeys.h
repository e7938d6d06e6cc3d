// SPDX-License-Identifier: Apache-2.0
// Keys that are accelerators of the main window and editing keys as well act on the text while a text field
// has the focus.
#pragma once

#include <QObject>

namespace tavrin {

// Claims such keys for the field before they are looked up as accelerators. Lists, sliders and choosers
// claim the arrow keys if the user has given them the focus, by a click or the Tab key, since their window
// came up: one that only came to have it, as the first of a new window does, leaves them to the desk. Watches
// the whole application while it lives.
class EditKeys : public QObject {
  public:
    EditKeys();
    ~EditKeys() override;

  protected:
    bool eventFilter(QObject* object, QEvent* event) override;

  private:
    bool m_tabIsDown = false;
};

}  // namespace tavrin
