// SPDX-License-Identifier: Apache-2.0
// The window of the document's export options.
#pragma once

#include <array>
#include <functional>
#include <string>

#include "ui/windows/ToolWindow.h"

class QCheckBox;
class QGridLayout;
class QLineEdit;
class QPushButton;

namespace tavrin {

class CTvDoc;
struct CExportOptions;

// Edits what an export of the document writes and where to. Whatever the user enters is in the document at
// once, so that no key and no command finds it missing. Owned by the frame. Without a document it is empty
// and disabled.
class CExportDlg : public ToolWindow {
  public:
    struct Needs {
        std::function<CTvDoc*()> document;                // null if there is none
        std::function<const CExportOptions&()> defaults;  // the site's
        // Gives the document's five paths its present name and extensions.
        std::function<void()> updateExportPaths;
    };

    CExportDlg(QWidget* frame, Needs needs);

    // To be called on any change of the document's name, an extension or the shader type: rebuilds the
    // document's paths, and shows them.
    void UpdateExportPaths();
    // Shows the document's values; commits nothing.
    void Refresh();
    void Follow(const Change& change) override;
    void TitleChanged() override { Refresh(); }

  protected:
    void changeEvent(QEvent* event) override;

  private:
    static constexpr int kRowCount = 6;
    struct Row {
        QCheckBox* flag;
        QLineEdit* path;
    };

    void AddRow(QGridLayout& grid, int row);
    QPushButton* AddButton(const QString& text, const QString& accessibleName);
    void ShadePathFields();
    void CommitAll();
    void CommitScript();
    void AskForFile(int row);
    bool AskForScript(std::string& command);
    void ShowInfo(int row);
    void ResetDefaults();
    static void NoteEdit(CTvDoc& document);

    Needs m_needs;
    std::array<Row, kRowCount> m_rows{};
};

}  // namespace tavrin
