// SPDX-License-Identifier: Apache-2.0
// A name on one line, which may be longer than its place.
#pragma once

#include <QWidget>

namespace tavrin {

// Plain text, '&' shown as itself, elided in the middle where it does not fit; then the whole stands in the
// tool tip.
class NameLabel : public QWidget {
  public:
    NameLabel(QWidget* parent, Qt::Alignment alignment);

    void SetName(const QString& name);
    const QString& Name() const { return m_name; }
    // What the whole name takes, in pixels.
    int WholeWidth() const;
    // Fainter than other text.
    void SetFaint(bool faint);

  protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

  private:
    void UpdateTip();

    QString m_name;
    Qt::Alignment m_alignment;
    bool m_isFaint = false;
};

}  // namespace tavrin
