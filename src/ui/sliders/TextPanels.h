// SPDX-License-Identifier: Apache-2.0
// The panels of texts: strings, and literals of the target language.
#pragma once

#include <string>
#include <vector>

#include "ui/sliders/SliderPanel.h"

class QPushButton;

namespace tavrin {

class OneLineField;

// A field, and a menu of the texts that the definition offers.
class TextPanel : public SliderPanel {
  public:
    void Refresh() override;
    bool Read() override;

  protected:
    // What the panel works on; no `value` once the button has gone.
    struct Text {
        std::string* value = nullptr;
        bool noEdit = false;
        const std::vector<std::string>* options = nullptr;
    };

    using SliderPanel::SliderPanel;
    void MakeControls(const UnitRect& field, const UnitRect& options);
    virtual Text Find() const = 0;
    void Store(const std::string& text);

  private:
    void OpenOptions();

    OneLineField* m_field = nullptr;
    QPushButton* m_options = nullptr;
};

// The text may be the path of a file.
class CStringPanel : public TextPanel {
  public:
    static constexpr int kUnitsHigh = 27;
    CStringPanel(QWidget* frame, COpButton& button, const SliderNeeds& needs);

  private:
    Text Find() const override;
    void ChooseFile();

    int m_filterIndex = 0;  // of the last use
};

// Serves every type beyond the built-in ones: it shows the value of the type that is current.
class CGenericPanel : public TextPanel {
  public:
    static constexpr int kUnitsHigh = 27;
    CGenericPanel(QWidget* frame, COpButton& button, const SliderNeeds& needs);

  private:
    Text Find() const override;
};

}  // namespace tavrin
