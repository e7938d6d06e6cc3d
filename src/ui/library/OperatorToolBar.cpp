// SPDX-License-Identifier: Apache-2.0
#include "ui/library/OperatorToolBar.h"

#include <QAbstractItemView>
#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QLocale>
#include <QPushButton>
#include <QWheelEvent>
#include <algorithm>
#include <utility>

#include "library/OpRegistry.h"
#include "text/Tokens.h"
#include "ui/base/DocumentText.h"
#include "ui/base/Text.h"
#include "ui/library/OperatorMenus.h"

namespace tavrin {

namespace {

constexpr char kLockedText[] = "The desk is locked.  Use Lock Desk under Options to unlock it.";

// In units of the bar; a control is wider where its text asks for it.
constexpr int kFontHeight = 12;
constexpr int kShaderTypeWidth = 75;
constexpr int kShaderTypeOpenHeight = 200;
constexpr int kButtonWidth = 100;
constexpr int kGapWidth = 6;

void KeepWhole(QWidget& control, int width) {
    control.setMinimumWidth(std::max(width, control.sizeHint().width()));
}

}  // namespace

// A chooser that the user comes to on purpose: the wheel in passing changes nothing, and a click leaves the
// focus where it was.
class ShaderTypeBox : public QComboBox {
  public:
    explicit ShaderTypeBox(QWidget* parent) : QComboBox(parent) {
        setFocusPolicy(Qt::TabFocus);
        view()->installEventFilter(this);
        view()->viewport()->installEventFilter(this);
    }
    // How the row was chosen that `activated` tells of.
    bool ChosenByMouse() const { return m_chosenByMouse; }

  protected:
    void wheelEvent(QWheelEvent* event) override {
        m_chosenByMouse = false;
        if (hasFocus()) {
            QComboBox::wheelEvent(event);
        } else {
            event->ignore();
        }
    }
    void keyPressEvent(QKeyEvent* event) override {
        m_chosenByMouse = false;
        QComboBox::keyPressEvent(event);
    }
    bool eventFilter(QObject* object, QEvent* event) override {
        if (event->type() == QEvent::KeyPress) m_chosenByMouse = false;
        if (event->type() == QEvent::MouseButtonRelease) m_chosenByMouse = true;
        return QComboBox::eventFilter(object, event);
    }

  private:
    bool m_chosenByMouse = false;
};

QFont OperatorToolBarFont(const QLocale& system) {
    QFont font = QApplication::font();
    const QLocale::Language language = system.language();
    if (language == QLocale::Chinese || language == QLocale::Japanese || language == QLocale::Korean)
        return font;
    font.setStyleHint(QFont::SansSerif);
    font.setPixelSize(kFontHeight);
    font.setWeight(QFont::Bold);
    return font;
}

OperatorToolBar::OperatorToolBar(QWidget* frame, const COpRegistry& registry, Needs needs)
    : QToolBar("Operators", frame),
      m_registry(registry),
      m_needs(std::move(needs)),
      m_shaderType(new ShaderTypeBox(this)),
      m_font(OperatorToolBarFont(QLocale::system())) {
    setObjectName("operatorToolBar");
    setMovable(false);

    m_shaderType->setObjectName("shaderType");
    m_shaderType->setAccessibleName("Shader type");
    m_shaderType->setToolTip("Type of the shader");
    m_shaderType->setFont(m_font);
    m_shaderType->setSizeAdjustPolicy(QComboBox::AdjustToContents);
    KeepWhole(*m_shaderType, kShaderTypeWidth);
    addWidget(m_shaderType);
    connect(m_shaderType, &QComboBox::activated, this, [this](int row) {
        m_needs.shaderTypeChosen(m_shaderType->itemData(row).toByteArray().toStdString());
        if (m_shaderType->ChosenByMouse()) m_needs.focusDesk();
    });
    AddGap();
    m_render = AddButton("render", "RENDER", "Render the shader (F1)");
    connect(m_render, &QPushButton::clicked, this, [this] { m_needs.render(); });
    AddGap();
    m_customize = AddButton("customize", "Customize...", "Choose the operators of this toolbar");
    connect(m_customize, &QPushButton::clicked, this, [this] { m_needs.customize(); });
    AddGap();
}

void OperatorToolBar::AddGap() {
    auto* gap = new QWidget(this);
    gap->setFixedWidth(kGapWidth);
    addWidget(gap);
}

QPushButton* OperatorToolBar::AddButton(const char* role, const QString& caption, const QString& tip) {
    auto* button = new QPushButton(caption, this);
    button->setObjectName(role);
    button->setToolTip(tip);
    button->setFont(m_font);
    button->setFocusPolicy(Qt::TabFocus);  // a click leaves the focus on the desk
    KeepWhole(*button, kButtonWidth);
    addWidget(button);
    return button;
}

void OperatorToolBar::SetShaderTypes(const std::vector<std::string>& types) {
    if (std::exchange(m_hasShaderTypes, true)) return;
    std::vector<std::pair<std::string, std::string>> sorted;  // in lower case, and as it is
    for (const std::string& type : types) sorted.emplace_back(ToLower(type), type);
    std::sort(sorted.begin(), sorted.end());
    for (const auto& [key, type] : sorted)
        m_shaderType->addItem(Shown(type), QByteArray::fromStdString(type));
    m_shaderType->setCurrentIndex(sorted.empty() ? -1 : 0);
    const int rowHeight = std::max(1, m_shaderType->view()->sizeHintForRow(0));
    m_shaderType->setMaxVisibleItems(std::max(1, kShaderTypeOpenHeight / rowHeight));
    KeepWhole(*m_shaderType, kShaderTypeWidth);
}

void OperatorToolBar::ShowShaderType(const std::string& text) {
    if (m_shaderType->currentData().toByteArray().toStdString() == text) return;
    const std::string start = ToLower(text);
    for (int row = 0; row < m_shaderType->count(); ++row) {
        if (!ToLower(m_shaderType->itemData(row).toByteArray().toStdString()).starts_with(start)) continue;
        m_shaderType->setCurrentIndex(row);
        return;
    }
}

void OperatorToolBar::RebuildButtons(const std::vector<std::string>& names) {
    DestroyOperatorButtons();
    for (const std::string& name : names) {
        const COpEntry* entry = m_registry.FindByName(name);
        if (entry == nullptr) {
            m_needs.logLine("WARNING: operator " + name + " undefined");
            continue;
        }
        AddOperatorButton(*entry);
    }
}

// A button may be the one that is being pressed now, so it goes later.
void OperatorToolBar::DestroyOperatorButtons() {
    for (QPushButton* button : m_operatorButtons) button->setObjectName(QString());
    m_operatorButtons.clear();
    for (QAction* slot : m_operatorSlots) {
        removeAction(slot);
        slot->deleteLater();  // which owns the button
    }
    m_operatorSlots.clear();
}

void OperatorToolBar::AddOperatorButton(const COpEntry& entry) {
    QPushButton* button = AddButton("operator", LiteralLabel(Shown(entry.name)),
                                    PlainToolTip("Add " + Shown(entry.name) + " to the desk"));
    button->setEnabled(!m_locked);
    connect(button, &QPushButton::clicked, this,
            [this, id = entry.id] { SendOperatorCommand(id, m_needs.addOperator); });
    m_operatorButtons.push_back(button);
    m_operatorSlots.push_back(actions().back());
}

void OperatorToolBar::SetLocked(bool locked) {
    if (locked == m_locked) return;
    m_needs.showStatus(locked ? kLockedText : "");
    m_locked = locked;
    m_shaderType->setEnabled(!locked);
    m_customize->setEnabled(!locked);
    for (QPushButton* button : m_operatorButtons) button->setEnabled(!locked);
    setEnabled(!locked);
}

void OperatorToolBar::SetRenderEnabled(bool enabled) { m_render->setEnabled(enabled); }

}  // namespace tavrin
