// SPDX-License-Identifier: Apache-2.0
// The field of a number in a panel or a picker.
#pragma once

#include <QLineEdit>
#include <functional>
#include <optional>

namespace tavrin {

// A child of its panel, which says what a number means: the field only tells what the user does. What the
// program itself shows in it is told to nobody.
class NumberField : public QLineEdit {
  public:
    struct Hooks {
        std::function<void()> typed;            // the user has changed the text, by whatever way
        std::function<void()> left;             // the focus has gone, but not into a menu of the field
        std::function<void(double)> stepped{};  // by that many steps, with the arrow keys; a tenth with Ctrl,
                                                // ten with Shift or the page keys
    };
    // `name` is what the field is called where it cannot be seen.
    NumberField(QWidget* parent, const QString& name, Hooks hooks);

    // Shows a number, six digits of it. A text that is that already is left alone with its caret.
    void ShowNumber(float value);
    // Shows a text as if the user had typed it; he can undo it.
    void Type(const QString& text);
    // The number that the text is; nothing for any other text.
    std::optional<float> Number() const;
    std::string Text() const;

    // Marks the text as one that was refused, with the reason in the tool tip; an empty one takes that back.
    void SetRefused(const QString& reason);
    bool IsRefused() const { return m_isRefused; }

  protected:
    void focusOutEvent(QFocusEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

  private:
    Hooks m_hooks;
    bool m_isRefused = false;
};

}  // namespace tavrin
