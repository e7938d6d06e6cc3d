// SPDX-License-Identifier: Apache-2.0
// The modal dialog "Examples", where the user picks a network to begin with by its picture.
#pragma once

#include <QDialog>
#include <string>
#include <vector>

class QListView;
class QModelIndex;
class QStandardItemModel;

namespace tavrin {

struct Example;

// Made for one run. A click on an example, or Enter, ends it.
class ExamplesDialog : public QDialog {
  public:
    ExamplesDialog(QWidget* owner, const std::vector<Example>& examples);
    // For a directory that cannot be listed, or holds none: says which, and that can only be closed.
    ExamplesDialog(QWidget* owner, const std::string& directory);

    // The path of the document that was chosen; empty if none was.
    std::string Chosen() const { return m_chosen; }

  private:
    explicit ExamplesDialog(QWidget* owner);
    QListView* MakeList(const std::vector<Example>& examples);
    QWidget* MakeButtons(QListView* list);
    void Choose(const QModelIndex& index);

    std::string m_chosen;
};

// Asks the user for one of those of the directory; the path of its document, or empty if nothing came of it.
std::string AskExample(QWidget* owner, const std::string& directory, const std::string& extension);

}  // namespace tavrin
