// SPDX-License-Identifier: Apache-2.0
#include "ui/render/SourceColumns.h"

#include <QFontDatabase>
#include <QKeyEvent>
#include <QPainter>
#include <QScrollBar>
#include <algorithm>

namespace tavrin {

namespace {

using Kind = LineRow::Kind;

constexpr int kTab = 4;                // columns
constexpr size_t kMostShown = 4096;    // bytes of a line
constexpr int kSignColumns = 2;        // of the gutter, behind the number
constexpr int kRowsAboveChange = 3;    // of those in view
constexpr int kMostRows = 10'000'000;  // far beyond what a scroll bar can tell apart

// Weak enough for the text on it, on light and dark ground.
QColor Tint(const QPalette& palette, Kind kind, bool isLeft, bool isWord) {
    const bool isDark = palette.color(QPalette::Base).lightness() < 128;
    QColor tint = kind == Kind::kChanged ? QColor(0xd8, 0x9a, 0x00)
                  : isLeft               ? QColor(0xd0, 0x30, 0x28)
                                         : QColor(0x2a, 0x90, 0x3a);
    tint.setAlpha(isWord ? (isDark ? 120 : 110) : (isDark ? 52 : 40));
    return tint;
}

// A line as it is painted: tabs as blanks, nothing that is no letter, and where a byte of it comes to stand.
struct PaintedLine {
    QString text;
    QString before;  // what differs
    QString differing;
};

QString Painted(std::string_view bytes, int column) {
    QString text;
    for (const QChar c : QString::fromUtf8(bytes.data(), static_cast<qsizetype>(bytes.size()))) {
        if (c == '\t') {
            const auto stands = column + static_cast<int>(text.size());
            text += QString(kTab - stands % kTab, ' ');
        } else {
            text += c.isPrint() ? c : QChar(QChar::ReplacementCharacter);
        }
    }
    return text;
}

PaintedLine PaintedLineOf(std::string_view line, LineRow::Span span) {
    const std::string_view shown = line.substr(0, kMostShown);
    span.begin = std::min(span.begin, shown.size());
    span.end = std::min(span.end, shown.size());
    PaintedLine painted;
    painted.before = Painted(shown.substr(0, span.begin), 0);
    const auto column = static_cast<int>(painted.before.size());
    painted.differing = Painted(shown.substr(span.begin, span.end - span.begin), column);
    painted.text = painted.before + painted.differing;
    painted.text += Painted(shown.substr(span.end), static_cast<int>(painted.text.size()));
    if (shown.size() < line.size()) painted.text += " ...";
    return painted;
}

int ColumnsOf(std::string_view line) {
    const auto tabs = std::count(
        line.begin(), line.begin() + static_cast<std::ptrdiff_t>(std::min(line.size(), kMostShown)), '\t');
    return static_cast<int>(std::min(line.size(), kMostShown)) + static_cast<int>(tabs) * (kTab - 1) + 4;
}

}  // namespace

SourceColumns::SourceColumns(QWidget* parent) : QAbstractScrollArea(parent) {
    setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    setFocusPolicy(Qt::StrongFocus);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    viewport()->setBackgroundRole(QPalette::Base);
    setAccessibleName("Sources side by side");
}

void SourceColumns::Show(const LineDifference* difference) {
    m_difference = difference;
    m_change = -1;
    FindChanges();
    if (difference != nullptr) SetRanges();
    viewport()->update();
}

void SourceColumns::FindChanges() {
    m_changes.clear();
    m_widest = 0;
    if (m_difference == nullptr) return;
    const std::vector<LineRow>& rows = m_difference->rows;
    for (size_t row = 0; row < rows.size(); ++row) {
        if (rows[row].kind == Kind::kSame) continue;
        const size_t first = row;
        while (row < rows.size() && rows[row].kind != Kind::kSame) ++row;
        m_changes.push_back({static_cast<int>(first), static_cast<int>(row)});
    }
    for (const auto* side : {&m_difference->left, &m_difference->right}) {
        for (const std::string_view line : *side) m_widest = std::max(m_widest, ColumnsOf(line));
    }
}

int SourceColumns::GutterWidth() const {
    const size_t lines =
        m_difference == nullptr ? 0 : std::max(m_difference->left.size(), m_difference->right.size());
    const int digits = static_cast<int>(QString::number(lines).size());
    return (digits + kSignColumns + 1) * fontMetrics().horizontalAdvance('0');
}

int SourceColumns::ColumnWidth() const { return viewport()->width() / 2; }

int SourceColumns::RowsInView() const {
    return std::max(1, viewport()->height() / fontMetrics().lineSpacing());
}

int SourceColumns::FirstRowInView() const { return verticalScrollBar()->value(); }

void SourceColumns::SetRanges() {
    if (m_difference == nullptr) return;
    const auto count = static_cast<int>(std::min(m_difference->rows.size(), size_t{kMostRows}));
    verticalScrollBar()->setRange(0, std::max(0, count - RowsInView()));
    verticalScrollBar()->setPageStep(RowsInView());
    const int letter = fontMetrics().horizontalAdvance('0');
    const int room = std::max(1, ColumnWidth() - GutterWidth());
    horizontalScrollBar()->setRange(0, std::max(0, m_widest * letter - room));
    horizontalScrollBar()->setPageStep(room);
    horizontalScrollBar()->setSingleStep(letter);
}

QChar SourceColumns::SignOf(const LineRow& row) {
    switch (row.kind) {
        case Kind::kChanged:
            return '~';
        case Kind::kOnlyLeft:
            return '-';
        case Kind::kOnlyRight:
            return '+';
        default:
            return ' ';
    }
}

void SourceColumns::GoToChange(bool next) {
    if (m_changes.empty()) return;
    int change = m_change + (next ? 1 : -1);
    if (m_change < 0) {
        const auto isBefore = [](const Change& one, int row) { return one.first < row; };
        const auto found = std::lower_bound(m_changes.begin(), m_changes.end(), FirstRowInView(), isBefore);
        change = static_cast<int>(found - m_changes.begin()) - (next ? 0 : 1);
    }
    if (change < 0 || change >= static_cast<int>(m_changes.size())) return;
    m_change = change;
    verticalScrollBar()->setValue(m_changes[static_cast<size_t>(change)].first - kRowsAboveChange);
    viewport()->update();
}

// Else the arrows would zoom the desk.
bool SourceColumns::event(QEvent* event) {
    if (event->type() == QEvent::ShortcutOverride) {
        const auto& key = static_cast<const QKeyEvent&>(*event);
        if (key.key() == Qt::Key_Up || key.key() == Qt::Key_Down) {
            event->accept();
            return true;
        }
    }
    return QAbstractScrollArea::event(event);
}

void SourceColumns::keyPressEvent(QKeyEvent* event) {
    const bool hasAlt = (event->modifiers() & Qt::AltModifier) != 0;
    const int key = event->key();
    if (key == Qt::Key_N || key == Qt::Key_P || (hasAlt && (key == Qt::Key_Down || key == Qt::Key_Up))) {
        GoToChange(key == Qt::Key_N || key == Qt::Key_Down);
    } else if (key == Qt::Key_Home || key == Qt::Key_End) {
        verticalScrollBar()->setValue(key == Qt::Key_Home ? 0 : verticalScrollBar()->maximum());
    } else {
        QAbstractScrollArea::keyPressEvent(event);
    }
}

void SourceColumns::paintEvent(QPaintEvent* event) {
    QPainter painter(viewport());
    painter.setFont(font());
    const int height = fontMetrics().lineSpacing();
    const int first = event->rect().top() / height;
    const int behind = event->rect().bottom() / height + 1;
    const int count = m_difference == nullptr ? 0 : static_cast<int>(m_difference->rows.size());
    for (int i = first; i < behind && FirstRowInView() + i < count; ++i)
        PaintRow(painter, FirstRowInView() + i, {0, i * height, viewport()->width(), height});
    painter.fillRect(ColumnWidth(), event->rect().top(), 1, event->rect().height(),
                     palette().color(QPalette::Mid));
}

void SourceColumns::PaintRow(QPainter& painter, int row, const QRect& place) const {
    const LineRow& shown = m_difference->rows[static_cast<size_t>(row)];
    QRect half = place;
    half.setWidth(ColumnWidth());
    PaintSide(painter, shown, half, true);
    half.setLeft(ColumnWidth() + 1);
    half.setRight(place.right());
    PaintSide(painter, shown, half, false);
    const bool isCurrent = m_change >= 0 && m_changes[static_cast<size_t>(m_change)].first <= row &&
                           row < m_changes[static_cast<size_t>(m_change)].behind;
    if (isCurrent) painter.fillRect(0, place.top(), 3, place.height(), palette().color(QPalette::Highlight));
}

void SourceColumns::PaintSide(QPainter& painter, const LineRow& row, const QRect& place, bool isLeft) const {
    const bool isThere = row.kind != (isLeft ? Kind::kOnlyRight : Kind::kOnlyLeft);
    if (!isThere) {
        painter.fillRect(place, QBrush(palette().color(QPalette::AlternateBase), Qt::SolidPattern));
        painter.fillRect(place, QBrush(palette().color(QPalette::Mid), Qt::BDiagPattern));
        return;
    }
    if (row.kind != Kind::kSame) painter.fillRect(place, Tint(palette(), row.kind, isLeft, false));
    const int baseline = place.top() + fontMetrics().ascent();
    const int letter = fontMetrics().horizontalAdvance('0');
    const QString number = QString::number((isLeft ? row.left : row.right) + 1);
    const int numberEnd = place.left() + GutterWidth() - kSignColumns * letter - letter / 2;
    painter.setPen(palette().color(QPalette::Disabled, QPalette::Text));
    painter.drawText(numberEnd - fontMetrics().horizontalAdvance(number), baseline, number);
    painter.setPen(palette().color(QPalette::Text));
    painter.drawText(numberEnd + letter / 2, baseline, QString(SignOf(row)));

    const auto& lines = isLeft ? m_difference->left : m_difference->right;
    const PaintedLine line =
        PaintedLineOf(lines[isLeft ? row.left : row.right],
                      row.kind == Kind::kChanged ? (isLeft ? row.inLeft : row.inRight) : LineRow::Span{});
    painter.save();
    painter.setClipRect(place.adjusted(GutterWidth(), 0, 0, 0));
    const int left = place.left() + GutterWidth() - horizontalScrollBar()->value();
    if (row.kind == Kind::kChanged) {
        const int from = left + fontMetrics().horizontalAdvance(line.before);
        const int wide = std::max(2, fontMetrics().horizontalAdvance(line.differing));
        painter.fillRect(from, place.top(), wide, place.height(), Tint(palette(), row.kind, isLeft, true));
        painter.fillRect(from, place.bottom() - 1, wide, 1, palette().color(QPalette::Text));
    }
    painter.drawText(left, baseline, line.text);
    painter.restore();
}

void SourceColumns::resizeEvent(QResizeEvent* event) {
    QAbstractScrollArea::resizeEvent(event);
    SetRanges();
}

void SourceColumns::changeEvent(QEvent* event) {
    QAbstractScrollArea::changeEvent(event);
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange) SetRanges();
}

}  // namespace tavrin
