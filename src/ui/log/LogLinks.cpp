// SPDX-License-Identifier: Apache-2.0
#include "ui/log/LogLinks.h"

#include <QPainter>
#include <QTextLayout>

#include "ui/base/Text.h"

namespace tavrin {

namespace {

constexpr QRgb kLink = qRgb(120, 180, 255);  // on black
// Names are looked for so far into a row: more of it is not in view.
constexpr qsizetype kMostOfRow = 2000;
constexpr int kLongestNumber = 9;  // digits of a box's number

// What stands beside a name in messages, and is none of it.
bool Separates(QChar c) { return c.isSpace() || QString("()[]{}<>,;:'\"").contains(c); }

// Names end in '_' and a number.
bool LooksLikeBox(QStringView word) {
    qsizetype digits = 0;
    while (digits < word.size() && word[word.size() - 1 - digits].isDigit()) ++digits;
    const qsizetype name = word.size() - digits - 1;
    return digits > 0 && digits <= kLongestNumber && name > 0 && word[name] == '_';
}

}  // namespace

// A name may hold blanks: of those that end there and stand, the shortest.
std::optional<LogLinks::Link> LogLinks::EndingAt(const QString& row, qsizetype end) const {
    qsizetype start = end;
    for (int words = 0; words < kMostWords && start > 0; ++words) {
        if (words > 0 && row[--start] != ' ') break;
        const qsizetype before = start;
        while (start > 0 && !Separates(row[start - 1])) --start;
        if (start == before) break;
        std::string box = Bytes(row.mid(start, end - start));
        if (m_needs.stands(box))
            return Link{static_cast<int>(start), static_cast<int>(end - start), std::move(box)};
    }
    return std::nullopt;
}

std::vector<LogLinks::Link> LogLinks::In(const QString& row) const {
    std::vector<Link> links;
    const qsizetype end = std::min(row.size(), kMostOfRow);
    for (qsizetype start = 0; start < end;) {
        if (Separates(row[start])) {
            ++start;
            continue;
        }
        qsizetype past = start;
        while (past < end && !Separates(row[past])) ++past;
        QStringView word = QStringView(row).mid(start, past - start);
        while (word.endsWith('.')) word.chop(1);  // the end of a sentence
        if (LooksLikeBox(word)) {
            if (auto link = EndingAt(row, start + word.size())) links.push_back(std::move(*link));
        }
        start = past;
    }
    return links;
}

std::optional<LogLinks::Link> LogLinks::At(const QString& row, int position) const {
    for (Link& link : In(row)) {
        if (position >= link.start && position < link.start + link.length) return std::move(link);
    }
    return std::nullopt;
}

void LogLinks::Paint(QPainter& painter, const QTextBlock& row, QPointF origin) const {
    const QTextLayout* layout = row.layout();
    if (layout == nullptr) return;
    painter.setPen(QColor(kLink));
    for (const Link& link : In(row.text())) {
        // A name may be wrapped.
        for (int at = link.start; at < link.start + link.length;) {
            const QTextLine line = layout->lineForTextPosition(at);
            if (!line.isValid()) break;
            const int end = std::min(link.start + link.length, line.textStart() + line.textLength());
            const qreal base = origin.y() + line.y() + line.ascent() + 1.5;
            painter.drawLine(QPointF(origin.x() + line.cursorToX(at), base),
                             QPointF(origin.x() + line.cursorToX(end), base));
            if (end <= at) break;
            at = end;
        }
    }
}

}  // namespace tavrin
