// SPDX-License-Identifier: Apache-2.0
// A row of the Argument Editor.
#pragma once

#include <QWidget>
#include <functional>
#include <optional>

#include "sliders/ArgumentRows.h"

class QCheckBox;

namespace tavrin {

class CTvDoc;
class OneLineField;

// Shows one free input of the document: whether it is an argument, the argument's name, the comment. What the
// user changes is in the document at once, each change an edit of its own. Owned by the editor's client area;
// the document outlives it, the button need not: without one the row is blank and changes nothing.
class CArgumentRow : public QWidget {
  public:
    using Edited = std::function<void(const CArgumentRow&)>;
    // `edited` is called before each change of the user's.
    CArgumentRow(QWidget* client, CTvDoc& document, Edited edited);

    // The height that its controls ask for, in pixels.
    int MeasuredHeight() const;

    void SetButton(COpButton& button);
    // Gives up the button, and the focus.
    void LetGo();
    // Null if there is none, or it has gone.
    COpButton* Button() const { return m_button.Get(); }
    // Shows the button as it is now. A text that is shown already is left alone, with its caret.
    void Refresh();

    QWidget& Control(ArgumentField field) const;
    // Which control has the focus of the window, active or not.
    std::optional<ArgumentField> FocusedField() const;

  protected:
    void resizeEvent(QResizeEvent* event) override;

  private:
    void ShowCaption();
    void EnableControls(const COpButton& button);
    // Calls `change` with the button, unless that has gone.
    void Edit(const std::function<void(COpButton&)>& change);

    CTvDoc& m_document;
    Edited m_edited;
    LiveRef<COpButton> m_button;
    QString m_caption;  // the whole of it
    QCheckBox* m_flag;
    OneLineField* m_name;
    OneLineField* m_comment;
};

}  // namespace tavrin
