// SPDX-License-Identifier: Apache-2.0
#include "ui/sliders/NameLabel.h"

#include <QPainter>
#include <QtMath>

#include "ui/base/DocumentText.h"

namespace tavrin {

namespace {

constexpr int kFaintAlpha = 160;

}  // namespace

NameLabel::NameLabel(QWidget* parent, Qt::Alignment alignment)
    : QWidget(parent), m_alignment(alignment | Qt::AlignVCenter) {}

void NameLabel::SetName(const QString& name) {
    if (name == m_name) return;
    m_name = name;
    setAccessibleName(name);
    UpdateTip();
    update();
}

// Up to a whole pixel: cut down to one, the name would be elided in the place that it asked for.
int NameLabel::WholeWidth() const { return qCeil(QFontMetricsF(font()).horizontalAdvance(m_name)) + 1; }

void NameLabel::SetFaint(bool faint) {
    m_isFaint = faint;
    update();
}

void NameLabel::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    QColor color = palette().color(QPalette::WindowText);
    if (m_isFaint) color.setAlpha(kFaintAlpha);
    painter.setPen(color);
    const QString shown = fontMetrics().elidedText(m_name, Qt::ElideMiddle, width());
    painter.drawText(rect(), int(m_alignment) | Qt::TextSingleLine, shown);
}

void NameLabel::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    UpdateTip();
}

void NameLabel::UpdateTip() {
    const bool fits = WholeWidth() <= width();
    setToolTip(fits ? QString() : PlainToolTip(m_name));
}

}  // namespace tavrin
