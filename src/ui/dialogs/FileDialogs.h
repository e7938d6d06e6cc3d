// SPDX-License-Identifier: Apache-2.0
// The platform's file dialogs, as commands ask for them.
#pragma once

#include <QString>
#include <QStringList>
#include <functional>
#include <optional>
#include <string>

class QWidget;

namespace tavrin {

// What a dialog is to offer.
struct FileDialogRequest {
    QString title;
    QStringList filters;                    // such as "Tavrin Documents (*.tvn)"
    std::string directory;                  // where it starts
    std::string file;                       // offered name, without directory; may be empty
    QString extension;                      // given to a name without one, without the dot; may be empty
    int filterIndex = 0;                    // chosen at first
    std::function<void(int)> filterLeft{};  // told at the end which one was, also if the user cancels
};

// What the user has chosen.
struct ChosenFile {
    std::string path;
    int filterIndex = 0;  // chosen at last
};

// A file that exists, or nothing if the user cancels.
std::optional<ChosenFile> AskFileToOpen(QWidget* owner, const FileDialogRequest& request);
// A file to write, which the dialog asks about if it exists, or nothing if the user cancels.
std::optional<ChosenFile> AskFileToSave(QWidget* owner, const FileDialogRequest& request);

}  // namespace tavrin
