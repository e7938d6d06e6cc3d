// SPDX-License-Identifier: Apache-2.0
#include "ui/forms/FormEdits.h"

#include <QFocusEvent>
#include <QListView>
#include <QWheelEvent>
#include <utility>

namespace tavrin {

FormList::FormList(QWidget* parent, const QString& name, std::function<void(int)> chosen)
    : QComboBox(parent) {
    setAccessibleName(name);
    setFocusPolicy(Qt::StrongFocus);  // not by the wheel
    connect(this, &QComboBox::activated, this, std::move(chosen));
}

// Without this each of the lines would be measured.
void FormList::showPopup() {
    if (auto* list = qobject_cast<QListView*>(view())) list->setUniformItemSizes(true);
    QComboBox::showPopup();
}

void FormList::wheelEvent(QWheelEvent* event) {
    if (hasFocus()) {
        QComboBox::wheelEvent(event);
    } else {
        event->ignore();
    }
}

FormEdit::FormEdit(QWidget* parent, const QString& name, Edited edited, std::function<void()> left)
    : OneLineField(parent, std::move(edited)), m_left(std::move(left)) {
    setAccessibleName(name);
}

void FormEdit::focusOutEvent(QFocusEvent* event) {
    OneLineField::focusOutEvent(event);
    if (event->reason() != Qt::PopupFocusReason) m_left();
}

}  // namespace tavrin
