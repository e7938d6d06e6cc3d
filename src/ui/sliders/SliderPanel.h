// SPDX-License-Identifier: Apache-2.0
// The body of a slider frame: what edits the value of a button in one of its types.
#pragma once

#include <QWidget>
#include <functional>
#include <memory>
#include <string>
#include <utility>

#include "document/TvDoc.h"
#include "ui/windows/DialogUnits.h"

namespace tavrin {

struct Site;

// What panels and frames work with. All of it outlives them.
struct SliderNeeds {
    CTvDoc& document;
    Site& site;
    // Shows a text in the status box, for so many seconds at least.
    std::function<void(const std::string&, int)> showStatus;
};

// A child of its frame, one for each kind of value that the button has been cast to. It edits the value in
// place and keeps none; once the button has gone, it does nothing.
class SliderPanel : public QWidget {
  public:
    // What one takes for itself, in dialog units: the width of every panel, the height of its kind.
    static constexpr int kUnitsWide = 89;

    SliderPanel(QWidget* frame, COpButton& button, const SliderNeeds& needs);

    // From the value to the controls, which no control tells as a change.
    virtual void Refresh() = 0;
    // From the controls to the value. False, with the value as it was, if a control holds what is no value.
    virtual bool Read() = 0;
    // Another type of the button has become the current one.
    virtual void PutAside() {}
    // Lets go of the button: whatever its controls still tell changes nothing.
    virtual void Release();

    // The panel is changing the value itself, and refreshes what it must.
    bool IsEditing() const { return m_editing > 0; }

  protected:
    // Null once the button has gone.
    COpButton* Button() const { return m_button.Get(); }
    // The button's value of a class; null if there is none.
    template <typename Value>
    Value* FindValue(std::string_view type) const {
        COpButton* button = Button();
        return button == nullptr ? nullptr : static_cast<Value*>(button->FindValue(type));
    }
    const SliderNeeds& Needs() const { return m_needs; }
    DialogUnits Units() const { return DialogUnits(fontMetrics()); }

    // Does a change of the value as one edit.
    template <typename Work>
    void Edit(Work work) {
        EditNoted(&Edits::ButtonTuned, work);
    }
    // Does one that leaves the document unmodified if it was.
    template <typename Work>
    void EditUnmarked(Work work) {
        EditNoted(&Edits::ButtonTunedUnmarked, work);
    }
    // While a mouse drags, all that is edited is one edit.
    void HoldEdit(bool holds);
    // Tells the user why something was refused.
    void ShowRefusal(const std::string& text) const;

    // What the button is called in code, for titles and the log.
    std::string VariableName() const;

    void changeEvent(QEvent* event) override;
    void hideEvent(QHideEvent* event) override;

  private:
    static constexpr const char* kAct = "Value";
    class Editing {
      public:
        explicit Editing(SliderPanel& panel) : m_panel(panel) { ++m_panel.m_editing; }
        ~Editing() { --m_panel.m_editing; }
        Editing(const Editing&) = delete;
        Editing& operator=(const Editing&) = delete;

      private:
        SliderPanel& m_panel;
    };

    template <typename Work>
    void EditNoted(void (Edits::*note)(COpButton&), Work& work) {
        COpButton* button = Button();
        if (button == nullptr) return;
        const Editing editing(*this);
        const EditScope edit(m_needs.document, kAct);
        (m_needs.document.edits.*note)(*button);
        m_needs.document.edits.JoinRun();
        work();
    }

    LiveRef<COpButton> m_button;
    const SliderNeeds& m_needs;
    int m_editing = 0;
    std::unique_ptr<HeldEdit> m_held;
};

// What panels show, in the order of the program's own templates.
enum class PanelKind { kFloat, kXyz, kRgb, kRgba, kString, kGeneric };
inline constexpr size_t kPanelKinds = 6;

// By the button's current type.
PanelKind KindOfPanel(const COpButton& button);
// In dialog units.
int PanelUnitsHigh(PanelKind kind);
SliderPanel* MakePanel(PanelKind kind, QWidget* frame, COpButton& button, const SliderNeeds& needs);

}  // namespace tavrin
