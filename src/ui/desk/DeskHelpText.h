// SPDX-License-Identifier: Apache-2.0
// A help text as an item of a menu: its lines on a pale yellow ground.
#pragma once

#include <QAbstractScrollArea>
#include <string>
#include <vector>

class QMenu;

namespace tavrin {

// Owned by the action that puts it into the menu. As large as its text, which has a small face that fits its
// lines; where the screen is too small for that, long lines are broken and the text can be scrolled, with the
// wheel or with the keys that move through the menu. Looks the same in every palette.
class DeskHelpText : public QAbstractScrollArea {
  public:
    static constexpr int kLineHeight = 17;  // pixels, as all here
    static constexpr int kMargin = 6;

    DeskHelpText(QMenu& menu, const std::string& help);

    // The lines as they are shown, broken where they are too long.
    const std::vector<QString>& Lines() const { return m_lines; }
    QSize sizeHint() const override { return m_size; }
    QSize minimumSizeHint() const override { return m_size; }

  protected:
    bool eventFilter(QObject* menu, QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

  private:
    int Inset() const;
    int TextHeight() const { return static_cast<int>(m_lines.size()) * kLineHeight + 2 * kMargin; }
    int TabStop() const;
    void ChooseFont();
    void BreakLines(const std::string& help, int widest);

    std::vector<QString> m_lines;
    int m_textWidth = 0;  // of the widest line
    QSize m_size;
};

}  // namespace tavrin
