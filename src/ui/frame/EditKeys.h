// Keys that are accelerators of the main window and editing keys as well act on the text while a text field
// has the focus.
#pragma once

#include <QObject>

namespace tavrin {

// Claims such keys for the field before they are looked up as accelerators. Lists, sliders and choosers
// claim the arrow keys. Watches the whole application while it lives.
class EditKeys : public QObject {
  public:
    EditKeys();
    ~EditKeys() override;

  protected:
    bool eventFilter(QObject* object, QEvent* event) override;
};

}  // namespace tavrin
