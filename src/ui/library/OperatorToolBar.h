// SPDX-License-Identifier: Apache-2.0
// The operator toolbar: the type of the shader, the render button, and the user's favourite operators.
#pragma once

#include <QFont>
#include <QToolBar>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

class QLocale;
class QPushButton;

namespace tavrin {

struct COpEntry;
class COpRegistry;
class ShaderTypeBox;

// The font of all its controls: 12 units high and bold; the application's own where the language of the
// system is written with characters of two bytes, which that would make illegible.
QFont OperatorToolBarFont(const QLocale& system);

// One for the frame, which owns it. A bar too narrow for its buttons shows the rest in its extension.
class OperatorToolBar : public QToolBar {
  public:
    struct Needs {
        std::function<void(const std::string& type)> shaderTypeChosen;  // by the user
        std::function<void()> focusDesk;                                // after a choice with the mouse
        std::function<void()> render;
        std::function<void()> customize;
        std::function<void(uint32_t id)> addOperator;  // may rebuild the buttons
        std::function<void(const std::string& line)> logLine;
        std::function<void(const std::string& text)> showStatus;  // an empty text clears
    };

    OperatorToolBar(QWidget* frame, const COpRegistry& registry, Needs needs);

    // Fills the shader type box, once: later calls do nothing. Its first row, in sorted order, is selected.
    void SetShaderTypes(const std::vector<std::string>& types);
    // Selects the first row that begins with the text, without regard to case; none, and all stays. The row
    // of the text itself stays selected.
    void ShowShaderType(const std::string& text);

    // A button for each of the operators, in their order, with the commands they have now. Names that the
    // library lacks are logged and left out.
    void RebuildButtons(const std::vector<std::string>& names);

    // Says so in the status box, and disables the bar and what changes the desk. That the whole bar is
    // disabled is all that keeps "RENDER" from being pressed: its own state is SetRenderEnabled's.
    void SetLocked(bool locked);
    void SetRenderEnabled(bool enabled);

  private:
    void AddGap();
    QPushButton* AddButton(const char* role, const QString& caption, const QString& tip);
    void AddOperatorButton(const COpEntry& entry);
    void DestroyOperatorButtons();

    const COpRegistry& m_registry;
    Needs m_needs;
    // Children, as are all controls of the bar.
    ShaderTypeBox* m_shaderType;
    QPushButton* m_customize;
    QPushButton* m_render;
    std::vector<QAction*> m_operatorSlots;
    std::vector<QPushButton*> m_operatorButtons;
    bool m_locked = false;
    bool m_hasShaderTypes = false;
    QFont m_font;
};

}  // namespace tavrin
