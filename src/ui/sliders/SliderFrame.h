// SPDX-License-Identifier: Apache-2.0
// One value in the slider column: what it is the value of, and the panel that edits it.
#pragma once

#include <QWidget>
#include <array>
#include <vector>

#include "sliders/SliderDesk.h"
#include "ui/sliders/SliderPanel.h"

class QToolButton;

namespace tavrin {

class NameLabel;
class OneLineField;

// A child of the column, which makes it while it is in view, places it and destroys it. Once the button has
// gone, it does nothing.
class CSliderFrame : public QWidget {
  public:
    // All of it outlives the frame.
    CSliderFrame(QWidget* column, COpButton& button, CSliderDesk& desk, const SliderNeeds& needs);

    // In pixels, for a font; the height of the button's frame with its panel, or of the header alone.
    static int WidthIn(const DialogUnits& units);
    static int HeightOf(const COpButton& button, const DialogUnits& units);

    // Stands there, as high as HeightOf says, with the panel of the current type.
    void Place(int y);
    // From the button to all controls.
    void Refresh();
    // From all controls to the button.
    void Read();
    // Whether the panel takes input.
    void SetPanelEnabled(bool enabled);
    // Lets go of the button: whatever its controls still tell changes nothing.
    void Release();

    // What the Tab key leads through, in order.
    std::vector<QWidget*> TabChain() const;
    // Puts that behind another widget.
    void FollowInTabChain(QWidget& before);
    // In the status box: the button's help.
    void ShowHelp() const;
    // The panel for the current type, once the frame was placed.
    SliderPanel* Panel() const { return m_panel; }

  protected:
    void changeEvent(QEvent* event) override;
    void enterEvent(QEnterEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

  private:
    using Setter = void (CSliderDesk::*)(COpButton&, bool);
    // A flag of the button, as a toggle shows it.
    struct Toggle {
        const char* name;
        const char* clearedIcon;
        const char* setIcon;
        const char* tip;
        int COpButton::*flag;
        QToolButton* button = nullptr;
    };

    void MakeToggle(Toggle& toggle, const UnitRect& place, std::function<void(bool)> clicked);
    void Stow(bool stow);
    void Pin(bool pin);
    void StoreComments(const std::string& text);
    void ShowNames();
    void PlaceNames();
    static bool IsTabStop(const QWidget& widget);

    LiveRef<COpButton> m_button;
    CSliderDesk& m_desk;
    const SliderNeeds& m_needs;
    NameLabel* m_boxName;
    NameLabel* m_buttonName;
    OneLineField* m_comments;
    std::array<Toggle, 3> m_toggles;
    std::array<SliderPanel*, kPanelKinds> m_panels{};  // each null until the type first asks for it
    SliderPanel* m_panel = nullptr;
    bool m_isReading = false;
};

}  // namespace tavrin
