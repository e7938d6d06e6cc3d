// SPDX-License-Identifier: Apache-2.0
// The window of the shader's help text.
#pragma once

#include <functional>

#include "ui/windows/ToolWindow.h"

class QPlainTextEdit;

namespace tavrin {

class CTvDoc;

// Edits the document's help; each change is in the document at once. Owned by the frame. Without a document
// it is empty and disabled.
class CHelpEditor : public ToolWindow {
  public:
    // `document` gives null if there is none.
    CHelpEditor(QWidget* frame, std::function<CTvDoc*()> document);

    // Shows the document's text, which is no change of the document. A text that is shown already is left
    // alone, with its caret and its undo steps.
    void Refresh();
    // The same, and nothing of the document before can be undone into this one.
    void DocumentReplaced();
    void Follow(const Change& change) override;

  private:
    void Commit();

    std::function<CTvDoc*()> m_document;
    QPlainTextEdit* m_edit;
    bool m_isLatin1 = false;  // the document's text is no UTF-8
};

}  // namespace tavrin
