// SPDX-License-Identifier: Apache-2.0
#include "ui/desk/DeskHelpText.h"

#include <QFontInfo>
#include <QHash>
#include <QKeyEvent>
#include <QMenu>
#include <QPainter>
#include <QScreen>
#include <QScrollBar>
#include <QStyle>
#include <algorithm>
#include <cmath>
#include <optional>

#include "desk/DeskMenu.h"
#include "ui/base/Text.h"

namespace tavrin {

namespace {

constexpr QColor kGround(255, 255, 230);
constexpr int kFrame = 1;             // pixels
constexpr int kTabCharacters = 8;     // of average width
constexpr double kScreenShare = 0.7;  // of the screen's sides, at most

// Adds up the widths of characters. Measuring whole texts would take seconds for megabytes of them.
class Ruler {
  public:
    Ruler(const QFont& font, int tabStop) : m_metrics(font), m_tabStop(tabStop) {}

    // How far a text that ends at `x` reaches with its next character.
    double After(double x, const QString& text, qsizetype place) {
        const QChar c = text[place];
        if (c == '\t') return (std::floor(x / m_tabStop) + 1) * m_tabStop;
        if (c.isLowSurrogate()) return x;
        if (c.isHighSurrogate()) return x + m_metrics.horizontalAdvance(text.mid(place, 2));
        auto known = m_widths.constFind(c);
        if (known == m_widths.constEnd()) known = m_widths.insert(c, m_metrics.horizontalAdvance(c));
        return x + *known;
    }

  private:
    QFontMetricsF m_metrics;
    double m_tabStop;
    QHash<QChar, double> m_widths;
};

std::optional<QAbstractSlider::SliderAction> ScrollOf(int key) {
    switch (key) {
        case Qt::Key_Up:
            return QAbstractSlider::SliderSingleStepSub;
        case Qt::Key_Down:
            return QAbstractSlider::SliderSingleStepAdd;
        case Qt::Key_PageUp:
            return QAbstractSlider::SliderPageStepSub;
        case Qt::Key_PageDown:
            return QAbstractSlider::SliderPageStepAdd;
        case Qt::Key_Home:
            return QAbstractSlider::SliderToMinimum;
        case Qt::Key_End:
            return QAbstractSlider::SliderToMaximum;
        default:
            return std::nullopt;
    }
}

}  // namespace

DeskHelpText::DeskHelpText(QMenu& menu, const std::string& help) : QAbstractScrollArea(&menu) {
    setFrameShape(QFrame::NoFrame);
    setFocusPolicy(Qt::NoFocus);  // the menu keeps the keys
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    ChooseFont();
    const QSize most = menu.screen()->availableSize() * kScreenShare;
    const int bar = style()->pixelMetric(QStyle::PM_ScrollBarExtent);
    BreakLines(help, most.width() - Inset() - 2 * kMargin - bar);
    const int inset = m_lines.empty() ? 0 : Inset();
    m_size = {inset + m_textWidth + 2 * kMargin, std::min(TextHeight(), most.height())};
    if (m_size.height() < TextHeight()) m_size.rwidth() += bar;
    menu.installEventFilter(this);
}

// Room for a check mark, as every item of a menu has it.
int DeskHelpText::Inset() const { return style()->pixelMetric(QStyle::PM_IndicatorWidth, nullptr, this); }

int DeskHelpText::TabStop() const { return std::max(kTabCharacters * fontMetrics().averageCharWidth(), 1); }

// The program's own face, no larger than what the lines have room for.
void DeskHelpText::ChooseFont() {
    QFont font = this->font();
    font.setKerning(false);  // so that widths add up
    for (int size = std::min(QFontInfo(font).pixelSize(), kLineHeight); size > 1; --size) {
        font.setPixelSize(size);
        if (QFontMetrics(font).height() <= kLineHeight - 1) break;
    }
    setFont(font);
}

void DeskHelpText::BreakLines(const std::string& help, int widest) {
    Ruler ruler(font(), TabStop());
    double reached = 0;
    for (const std::string_view line : HelpTextLines(help)) {
        const QString text = Shown(std::string(line));
        qsizetype begin = 0;
        qsizetype blank = -1;  // behind the last one
        double x = 0;
        for (qsizetype place = 0; place < text.size(); ++place) {
            const double next = ruler.After(x, text, place);
            if (next > widest && place > begin) {
                const qsizetype end = blank > begin ? blank : place;
                m_lines.push_back(text.mid(begin, end - begin));
                begin = end;
                place = end - 1;
                x = 0;
                continue;
            }
            x = next;
            reached = std::max(reached, x);
            if (text[place].isSpace()) blank = place + 1;
        }
        m_lines.push_back(text.mid(begin));
    }
    m_textWidth = static_cast<int>(std::ceil(reached));
}

// With nothing else in the menu to move to, its keys scroll.
bool DeskHelpText::eventFilter(QObject* menu, QEvent* event) {
    QScrollBar& bar = *verticalScrollBar();
    if (event->type() == QEvent::KeyPress && bar.maximum() > 0) {
        if (const auto action = ScrollOf(static_cast<QKeyEvent*>(event)->key())) {
            bar.triggerAction(*action);
            return true;
        }
    }
    return QAbstractScrollArea::eventFilter(menu, event);
}

void DeskHelpText::paintEvent(QPaintEvent*) {
    const QRect area = viewport()->rect();
    QPainter painter(viewport());
    painter.fillRect(area, Qt::white);
    const QRect ground = area.adjusted(kFrame, kFrame, -kFrame, -kFrame);
    painter.fillRect(ground, kGround);
    painter.setClipRect(ground);
    painter.setFont(font());
    painter.setPen(Qt::black);
    const int scrolled = verticalScrollBar()->value();
    const int first = std::max(scrolled - kMargin, 0) / kLineHeight;
    const int past = std::min((scrolled + area.height()) / kLineHeight + 1, static_cast<int>(m_lines.size()));
    const double tab = TabStop();
    for (int line = first; line < past; ++line) {
        const int baseline = kMargin + line * kLineHeight - scrolled + fontMetrics().ascent();
        double x = 0;
        for (const QString& part : m_lines[static_cast<size_t>(line)].split('\t')) {
            painter.drawText(QPointF(Inset() + x, baseline), part);
            const double end = x + QFontMetricsF(font()).horizontalAdvance(part);
            x = (std::floor(end / tab) + 1) * tab;
        }
    }
}

void DeskHelpText::resizeEvent(QResizeEvent* event) {
    QAbstractScrollArea::resizeEvent(event);
    verticalScrollBar()->setSingleStep(kLineHeight);
    verticalScrollBar()->setPageStep(viewport()->height());
    verticalScrollBar()->setRange(0, std::max(TextHeight() - viewport()->height(), 0));
}

}  // namespace tavrin
