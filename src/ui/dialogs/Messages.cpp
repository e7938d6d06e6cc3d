// SPDX-License-Identifier: Apache-2.0
#include "ui/dialogs/Messages.h"

#include <QMessageBox>
#include <QPushButton>
#include <utility>

namespace tavrin {

namespace {

QMessageBox::StandardButton Run(QMessageBox& box, QMessageBox::StandardButton byDefault,
                                QMessageBox::StandardButton onEscape) {
    box.setTextFormat(Qt::PlainText);
    box.setTextInteractionFlags(Qt::TextSelectableByMouse);
    box.setDefaultButton(byDefault);
    box.setEscapeButton(onEscape);
    return static_cast<QMessageBox::StandardButton>(box.exec());
}

QMessageBox::StandardButton Run(QWidget* owner, QMessageBox::Icon icon, const QString& title,
                                const QString& text, QMessageBox::StandardButtons buttons,
                                QMessageBox::StandardButton byDefault, QMessageBox::StandardButton onEscape) {
    QMessageBox box(icon, title, text, buttons, owner);
    // The toolkit has no letters to press for these.
    for (const auto& [button, label] :
         {std::pair(QMessageBox::Save, "&Save"), std::pair(QMessageBox::SaveAll, "&Keep All"),
          std::pair(QMessageBox::Discard, "&Discard"), std::pair(QMessageBox::Cancel, "&Cancel")}) {
        if (box.button(button) != nullptr) box.button(button)->setText(label);
    }
    return Run(box, byDefault, onEscape);
}

void Show(QWidget* owner, QMessageBox::Icon icon, const QString& title, const QString& text) {
    Run(owner, icon, title, text, QMessageBox::Ok, QMessageBox::Ok, QMessageBox::Ok);
}

}  // namespace

void ShowStop(QWidget* owner, const QString& title, const QString& text) {
    Show(owner, QMessageBox::Critical, title, text);
}

void ShowWarning(QWidget* owner, const QString& title, const QString& text) {
    Show(owner, QMessageBox::Warning, title, text);
}

void ShowInformation(QWidget* owner, const QString& title, const QString& text) {
    Show(owner, QMessageBox::Information, title, text);
}

bool AskWarning(QWidget* owner, const QString& text) {
    return Run(owner, QMessageBox::Warning, "Warning", text, QMessageBox::Yes | QMessageBox::No,
               QMessageBox::No, QMessageBox::No) == QMessageBox::Yes;
}

bool AskQuestion(QWidget* owner, const QString& title, const QString& text, const QString& yes,
                 const QString& no) {
    QMessageBox box(QMessageBox::Question, title, text, QMessageBox::Yes | QMessageBox::No, owner);
    box.button(QMessageBox::Yes)->setText(yes);
    box.button(QMessageBox::No)->setText(no);
    return Run(box, QMessageBox::Yes, QMessageBox::No) == QMessageBox::Yes;
}

SaveAnswer AskSaveChanges(QWidget* owner, const QString& documentTitle) {
    const auto answer = Run(owner, QMessageBox::Warning, "Tavrin", "Save changes to " + documentTitle + "?",
                            QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel, QMessageBox::Save,
                            QMessageBox::Cancel);
    if (answer == QMessageBox::Save) return SaveAnswer::kSave;
    return answer == QMessageBox::Discard ? SaveAnswer::kDiscard : SaveAnswer::kCancel;
}

KeepAnswer AskKeepRenders(QWidget* owner, const QString& text) {
    const auto answer = Run(owner, QMessageBox::Warning, "Tavrin", text,
                            QMessageBox::SaveAll | QMessageBox::Discard | QMessageBox::Cancel,
                            QMessageBox::SaveAll, QMessageBox::Cancel);
    if (answer == QMessageBox::SaveAll) return KeepAnswer::kKeepAll;
    return answer == QMessageBox::Discard ? KeepAnswer::kDiscard : KeepAnswer::kCancel;
}

}  // namespace tavrin
