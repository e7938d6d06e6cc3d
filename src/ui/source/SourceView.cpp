// SPDX-License-Identifier: Apache-2.0
#include "ui/source/SourceView.h"

#include <QFontDatabase>
#include <QPaintEvent>
#include <QPainter>
#include <QScrollBar>
#include <QTextLayout>
#include <algorithm>

#include "ui/source/SourceColors.h"

namespace tavrin {

namespace {

constexpr int kTab = 4;              // columns
constexpr size_t kMostShown = 4096;  // bytes of a line
constexpr int kMostRows = 10'000'000;
constexpr int kLinesAboveLit = 3;
constexpr int kBar = 3;      // pixels, beside lit lines
constexpr int kTextGap = 6;  // pixels, between gutter and text

// One letter for each of the text, so that places in both are the same.
QString Visible(QString text) {
    for (QChar& c : text) {
        if (!c.isPrint() && c != '\t' && !c.isSurrogate()) c = QChar::ReplacementCharacter;
    }
    return text;
}

}  // namespace

SourceView::SourceView(QWidget* parent, Hands hands)
    : QAbstractScrollArea(parent), m_hands(std::move(hands)) {
    setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    setFocusPolicy(Qt::StrongFocus);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    viewport()->setBackgroundRole(QPalette::Base);
    viewport()->setCursor(Qt::IBeamCursor);
    setAccessibleName("Source");
}

void SourceView::Show(SourceText text) {
    const auto first = static_cast<size_t>(verticalScrollBar()->value());
    const size_t firstNow = text.PlaceOf(first, m_text);
    for (Place* place : {&m_caret, &m_anchor}) place->line = text.PlaceOf(place->line, m_text);
    m_text = std::move(text);
    for (Place* place : {&m_caret, &m_anchor}) {
        const auto most = m_text.LineCount() == 0 ? 0 : static_cast<int>(TextOf(place->line).size());
        place->column = std::min(place->column, most);
    }
    m_lit.clear();
    m_marked.clear();
    SetRanges();
    verticalScrollBar()->setValue(static_cast<int>(std::min(firstNow, size_t{kMostRows})));
    viewport()->update();
}

void SourceView::Light(std::vector<size_t> lines) {
    if (lines == m_lit) return;
    m_lit = std::move(lines);
    viewport()->update();
}

void SourceView::Mark(std::vector<size_t> lines) {
    if (lines == m_marked) return;
    m_marked = std::move(lines);
    viewport()->update();
}

void SourceView::ShowLit() {
    if (m_lit.empty()) return;
    const auto seen = std::lower_bound(m_lit.begin(), m_lit.end(), FirstLineInView());
    if (seen != m_lit.end() && *seen < FirstLineInView() + LinesInView()) return;
    size_t longest = 0;
    size_t first = m_lit.front();
    for (size_t begin = 0, end = 0; begin < m_lit.size(); begin = end) {
        for (end = begin + 1; end < m_lit.size() && m_lit[end] == m_lit[end - 1] + 1;) ++end;
        if (end - begin <= longest) continue;
        longest = end - begin;
        first = m_lit[begin];
    }
    verticalScrollBar()->setValue(static_cast<int>(first) - 1 - kLinesAboveLit);
}

void SourceView::GoTo(size_t line) {
    MoveCaret({std::clamp<size_t>(line, 1, std::max<size_t>(LineCount(), 1)) - 1, 0}, false);
}

bool SourceView::IsIn(const std::vector<size_t>& lines, size_t line) const {
    return std::binary_search(lines.begin(), lines.end(), line + 1);
}

size_t SourceView::FirstLineInView() const { return static_cast<size_t>(verticalScrollBar()->value()) + 1; }

size_t SourceView::LinesInView() const {
    return static_cast<size_t>(std::max(1, viewport()->height() / RowHeight()));
}

int SourceView::RowHeight() const { return std::max(1, fontMetrics().lineSpacing()); }

int SourceView::GutterWidth() const {
    const auto digits = static_cast<int>(QString::number(std::max<size_t>(LineCount(), 999)).size());
    return kBar + (digits + 2) * fontMetrics().horizontalAdvance('0');
}

int SourceView::LeftOfText() const { return GutterWidth() + kTextGap - horizontalScrollBar()->value(); }

QRect SourceView::PlaceOfLine(size_t line) const {
    const auto row = static_cast<int>(line) - static_cast<int>(FirstLineInView());
    return {0, row * RowHeight(), viewport()->width(), RowHeight()};
}

void SourceView::SetRanges() {
    const auto count = static_cast<int>(std::min(LineCount(), size_t{kMostRows}));
    const auto seen = static_cast<int>(LinesInView());
    verticalScrollBar()->setRange(0, std::max(0, count - seen));
    verticalScrollBar()->setPageStep(seen);
    const int letter = fontMetrics().horizontalAdvance('0');
    const int room = std::max(1, viewport()->width() - GutterWidth() - kTextGap);
    const auto widest = static_cast<int>(std::min(m_text.Longest(), kMostShown)) + kTab;
    horizontalScrollBar()->setRange(0, std::max(0, widest * letter - room));
    horizontalScrollBar()->setPageStep(room);
    horizontalScrollBar()->setSingleStep(letter);
}

QString SourceView::TextOf(size_t line) const {
    const std::string_view bytes = m_text.Line(line).substr(0, kMostShown);
    return Visible(QString::fromUtf8(bytes.data(), static_cast<qsizetype>(bytes.size())));
}

// Colours are those of the palette; what is selected is painted by who draws it.
void SourceView::LayOut(QTextLayout& layout, size_t line) {
    const QString text = TextOf(line);
    const std::string_view bytes = m_text.Line(line).substr(0, kMostShown);
    const bool isPlain = static_cast<size_t>(text.size()) == bytes.size();
    const auto letters = [&](size_t byte) {
        byte = std::min(byte, bytes.size());
        if (isPlain) return static_cast<int>(byte);
        return static_cast<int>(QString::fromUtf8(bytes.data(), static_cast<qsizetype>(byte)).size());
    };
    QList<QTextLayout::FormatRange> formats;
    for (const SourceSpan& span : m_text.SpansOf(line)) {
        const int begin = letters(span.begin);
        formats.append({begin, letters(span.end) - begin, SourceFormat(palette(), span.kind)});
    }
    QTextOption option;
    option.setTextDirection(Qt::LeftToRight);
    option.setWrapMode(QTextOption::NoWrap);
    option.setTabStopDistance(kTab * fontMetrics().horizontalAdvance('0'));
    layout.setFont(font());
    layout.setText(text);
    layout.setTextOption(option);
    layout.setFormats(formats);
    layout.beginLayout();
    layout.createLine();
    layout.endLayout();
}

void SourceView::paintEvent(QPaintEvent* event) {
    QPainter painter(viewport());
    painter.setFont(font());
    painter.fillRect(0, 0, GutterWidth(), viewport()->height(), palette().color(QPalette::AlternateBase));
    const size_t first = FirstLineInView() + static_cast<size_t>(event->rect().top() / RowHeight());
    for (size_t line = first; line <= LineCount(); ++line) {
        const QRect place = PlaceOfLine(line);
        if (place.top() > event->rect().bottom()) break;
        PaintLine(painter, line - 1, place);
        PaintGutter(painter, line - 1, place);
    }
}

void SourceView::PaintLine(QPainter& painter, size_t line, const QRect& place) {
    const QRect room = place.adjusted(GutterWidth(), 0, 0, 0);
    if (IsIn(m_lit, line)) {
        painter.fillRect(room, LitGround(palette()));
    } else if (line == m_caret.line && hasFocus()) {
        painter.fillRect(room, CaretGround(palette()));
    }
    QTextLayout layout;
    LayOut(layout, line);
    QList<QTextLayout::FormatRange> selected;
    const auto [begin, end] = std::minmax(m_caret, m_anchor);
    if (HasSelection() && line >= begin.line && line <= end.line) {
        const int from = line == begin.line ? begin.column : 0;
        const int to = line == end.line ? end.column : static_cast<int>(layout.text().size());
        QTextCharFormat format;
        format.setBackground(palette().brush(QPalette::Highlight));
        format.setForeground(palette().brush(QPalette::HighlightedText));
        selected.append({from, to - from, format});
    }
    painter.save();
    painter.setClipRect(room);
    painter.setPen(palette().color(QPalette::Text));
    const QPointF at(LeftOfText(), place.top());
    layout.draw(&painter, at, selected);
    if (m_text.Line(line).size() > kMostShown) {
        const auto width = static_cast<int>(layout.lineAt(0).naturalTextWidth());
        painter.drawText(LeftOfText() + width, place.top() + fontMetrics().ascent(), " ...");
    }
    if (line == m_caret.line && hasFocus()) layout.drawCursor(&painter, at, m_caret.column);
    painter.restore();
}

void SourceView::PaintGutter(QPainter& painter, size_t line, const QRect& place) const {
    const int letter = fontMetrics().horizontalAdvance('0');
    const int baseline = place.top() + fontMetrics().ascent();
    const bool isLit = IsIn(m_lit, line);
    if (isLit) painter.fillRect(0, place.top(), kBar, place.height(), QColor(0xe0, 0x84, 0x00));
    const QString number = QString::number(line + 1);
    painter.setPen(isLit ? palette().color(QPalette::Text) : NumberColor(palette()));
    painter.drawText(GutterWidth() - letter - fontMetrics().horizontalAdvance(number), baseline, number);
    if (!IsIn(m_marked, line)) return;
    painter.setPen(SourceFormat(palette(), SourceClass::kNumber).foreground().color());
    painter.drawText(kBar + 1, baseline, "!");
}

void SourceView::resizeEvent(QResizeEvent* event) {
    QAbstractScrollArea::resizeEvent(event);
    SetRanges();
}

void SourceView::changeEvent(QEvent* event) {
    QAbstractScrollArea::changeEvent(event);
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange) SetRanges();
}

}  // namespace tavrin
