// SPDX-License-Identifier: Apache-2.0
// The modal boxes of the program. Texts are shown as plain text: what comes from files is never read as
// markup. Each runs until it is answered; boxes that nobody can answer any more count as refused.
#pragma once

#include <QString>

class QWidget;

namespace tavrin {

// A message with the stop icon, such as "Alert", "Error" or "Fatal Error".
void ShowStop(QWidget* owner, const QString& title, const QString& text);
void ShowWarning(QWidget* owner, const QString& title, const QString& text);
void ShowInformation(QWidget* owner, const QString& title, const QString& text);
// Yes or no under the warning icon, titled "Warning"; No is the default and what Escape gives.
bool AskWarning(QWidget* owner, const QString& text);

// The same under the question icon for two answers of those names, '&' and all; the first is the default, and
// Escape gives the second.
bool AskQuestion(QWidget* owner, const QString& title, const QString& text, const QString& yes,
                 const QString& no);

enum class SaveAnswer { kSave, kDiscard, kCancel };
// Whether a modified document is to be saved before it goes. Save is the default, Escape gives Cancel.
SaveAnswer AskSaveChanges(QWidget* owner, const QString& documentTitle);

enum class KeepAnswer { kKeepAll, kDiscard, kCancel };
// Whether renders are to be kept before they go. Keep All is the default, Escape gives Cancel.
KeepAnswer AskKeepRenders(QWidget* owner, const QString& text);

}  // namespace tavrin
