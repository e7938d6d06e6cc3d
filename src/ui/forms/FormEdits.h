// SPDX-License-Identifier: Apache-2.0
// The edit boxes and lists of the form.
#pragma once

#include <QComboBox>
#include <QStringListModel>
#include <functional>
#include <string>

#include "forms/PresetList.h"
#include "ui/base/DocumentText.h"
#include "ui/windows/OneLineField.h"

namespace tavrin {

// A list that the wheel changes only where it has the focus; elsewhere it belongs to the window.
class FormList : public QComboBox {
  public:
    // `chosen` gets the index of what the user chose, be it the line that was shown.
    FormList(QWidget* parent, const QString& name, std::function<void(int)> chosen);

    template <typename Lines>
    void SetLines(const Lines& lines) {
        QStringList shown;
        for (const std::string& line : lines) shown << Decoded(line).text;
        setModel(new QStringListModel(shown, this));  // a list may have very many lines
    }
    void showPopup() override;
    // Shows the line of a list of presets that is selected, which is its caption.
    void Show(const PresetList& presets) { setCurrentIndex(presets.Selected()); }

  protected:
    void wheelEvent(QWheelEvent* event) override;
};

// An edit box that shows what the option has become, such as "3.0" for "3", when the user leaves it, and not
// under his cursor.
class FormEdit : public OneLineField {
  public:
    FormEdit(QWidget* parent, const QString& name, Edited edited, std::function<void()> left);

  protected:
    void focusOutEvent(QFocusEvent* event) override;

  private:
    std::function<void()> m_left;
};

}  // namespace tavrin
