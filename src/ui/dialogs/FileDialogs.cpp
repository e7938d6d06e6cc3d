// SPDX-License-Identifier: Apache-2.0
#include "ui/dialogs/FileDialogs.h"

#include <QFileDialog>
#include <QListView>

#include "ui/base/Text.h"

namespace tavrin {

namespace {

constexpr QSize kLeastSize(820, 520);  // so that names and dates stand beside each other

std::optional<ChosenFile> Run(QFileDialog& dialog, const FileDialogRequest& request) {
    dialog.resize(dialog.size().expandedTo(kLeastSize));
    dialog.setNameFilters(request.filters);
    if (request.filterIndex >= 0 && request.filterIndex < request.filters.size()) {
        dialog.selectNameFilter(request.filters[request.filterIndex]);
    }
    dialog.setDefaultSuffix(request.extension);
    if (!request.file.empty()) dialog.selectFile(Shown(request.file));
    // A row that the user did not select would be taken rather than what is typed.
    if (auto* list = dialog.findChild<QListView*>("listView")) list->selectionModel()->clear();
    const int answer = dialog.exec();
    const int filter = std::max(0, static_cast<int>(request.filters.indexOf(dialog.selectedNameFilter())));
    if (request.filterLeft) request.filterLeft(filter);
    if (answer != QDialog::Accepted || dialog.selectedFiles().isEmpty()) return std::nullopt;
    return ChosenFile{Bytes(dialog.selectedFiles().first()), filter};
}

}  // namespace

std::optional<ChosenFile> AskFileToOpen(QWidget* owner, const FileDialogRequest& request) {
    QFileDialog dialog(owner, request.title, Shown(request.directory));
    dialog.setAcceptMode(QFileDialog::AcceptOpen);
    dialog.setFileMode(QFileDialog::ExistingFile);
    return Run(dialog, request);
}

std::optional<ChosenFile> AskFileToSave(QWidget* owner, const FileDialogRequest& request) {
    QFileDialog dialog(owner, request.title, Shown(request.directory));
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setFileMode(QFileDialog::AnyFile);
    return Run(dialog, request);
}

}  // namespace tavrin
