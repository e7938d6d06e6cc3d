// SPDX-License-Identifier: Apache-2.0
#include "view/PictureStrip.h"

#include <QAbstractListModel>
#include <QLocale>
#include <QMouseEvent>
#include <QPainter>
#include <QStyledItemDelegate>
#include <algorithm>

#include "text/Duration.h"

namespace tavrin {

namespace {

using Kind = PictureEntry::Kind;
using EntryState = PictureEntry::State;

constexpr QSize kPicture(84, 56);  // pixels of a thumbnail
constexpr int kMargin = 6;
constexpr int kBadge = 16;

bool IsDark(const QPalette& palette) { return qGray(palette.color(QPalette::Base).rgb()) < 128; }

QColor Red(const QPalette& palette) { return IsDark(palette) ? QColor(0xff7a6e) : QColor(0xc8281e); }
QColor Amber(const QPalette& palette) { return IsDark(palette) ? QColor(0xffb547) : QColor(0xc46a00); }

bool HasFailed(const PictureEntry& entry) {
    return entry.state == EntryState::kFailed || !entry.trouble.empty();
}

QString Took(const PictureEntry& entry) {
    if (entry.duration <= 0) return {};
    return QString::fromStdString(DurationText(std::chrono::milliseconds(entry.duration)));
}

QString StateText(const PictureEntry& entry) {
    switch (entry.state) {
        case EntryState::kRunning:
            return entry.kind == Kind::kLive ? "refining" : "rendering";
        case EntryState::kFailed:
            return "failed";
        case EntryState::kStopped:
            return "stopped";
        case EntryState::kDone:
            break;
    }
    return {};
}

}  // namespace

QString SecondLineOf(const PictureEntry& entry) {
    const QString state = StateText(entry);
    if (HasFailed(entry)) {
        const QString why = QString::fromStdString(entry.trouble).simplified();
        return state.isEmpty() || why.isEmpty() ? state + why : state + ": " + why;
    }
    if (entry.state != EntryState::kDone) return state;
    if (entry.kind == Kind::kReference) return "to compare with";
    return QString::fromStdString(entry.differs).simplified();
}

QString TipOf(const PictureEntry& entry) {
    QStringList lines{entry.Title()};
    QString when = QLocale().toString(entry.started, QLocale::ShortFormat);
    if (const QString took = Took(entry); !took.isEmpty()) when += ", " + took;
    lines << when;
    if (entry.picture != nullptr)
        lines << QString("%1 x %2").arg(entry.picture->Size().width()).arg(entry.picture->Size().height());
    if (const QString state = StateText(entry); !state.isEmpty()) lines << state;
    if (!entry.trouble.empty()) lines << QString::fromStdString(entry.trouble);
    if (!entry.differs.empty()) lines << QString::fromStdString(entry.differs);
    return lines.join('\n');
}

class PictureStrip::Model : public QAbstractListModel {
  public:
    Model(PictureStrip* strip, const PictureBook& book) : QAbstractListModel(strip), m_book(book) {}
    int rowCount(const QModelIndex& parent) const override {
        return parent.isValid() ? 0 : int(m_book.Entries().size());
    }
    QVariant data(const QModelIndex& index, int role) const override {
        const PictureEntry& entry = *m_book.Entries()[size_t(index.row())];
        if (role == Qt::DisplayRole || role == Qt::AccessibleTextRole) return entry.Title();
        // A text of others is not to be taken for one with marks.
        if (role == Qt::ToolTipRole) return "<p style='white-space:pre-wrap'>" + TipOf(entry).toHtmlEscaped();
        return {};
    }
    void Reset() {
        beginResetModel();
        endResetModel();
    }
    int RowOf(const PictureEntry* entry) const {
        const auto& all = m_book.Entries();
        const auto found =
            std::find_if(all.begin(), all.end(), [&](const auto& known) { return known.get() == entry; });
        return found == all.end() ? -1 : int(found - all.begin());
    }

  private:
    const PictureBook& m_book;
};

class PictureStrip::Drawer : public QStyledItemDelegate {
  public:
    explicit Drawer(const PictureStrip* strip) : QStyledItemDelegate(nullptr), m_strip(*strip) {}

    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex&) const override {
        return {0, std::max(kPicture.height(), 2 * option.fontMetrics.lineSpacing()) + 2 * kMargin};
    }
    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override {
        const PictureEntry* entry = m_strip.EntryAt(index);
        if (entry == nullptr) return;
        painter->save();
        const bool isFirst = entry == m_strip.m_first;
        if (isFirst)
            painter->fillRect(option.rect, option.palette.color(QPalette::Active, QPalette::Highlight));
        const QRect place(
            option.rect.topLeft() + QPoint(kMargin, (option.rect.height() - kPicture.height()) / 2),
            kPicture);
        DrawPicture(*painter, *entry, place, option.palette);
        if (entry == m_strip.m_second) DrawBadge(*painter, place, option.palette);
        DrawTexts(*painter, *entry, option, isFirst);
        painter->restore();
    }

  private:
    static void DrawPicture(QPainter& painter, const PictureEntry& entry, const QRect& place,
                            const QPalette& palette) {
        painter.fillRect(place, IsDark(palette) ? QColor(28, 28, 28) : QColor(198, 198, 198));
        if (!entry.thumbnail.isNull()) {
            painter.setRenderHint(QPainter::SmoothPixmapTransform);
            QRect shown(QPoint(0, 0), entry.thumbnail.size().scaled(place.size(), Qt::KeepAspectRatio));
            shown.moveCenter(place.center());
            if (entry.state == EntryState::kFailed) painter.setOpacity(0.4);
            painter.drawImage(shown, entry.thumbnail);
            painter.setOpacity(1);
        }
        painter.setRenderHint(QPainter::Antialiasing);
        const QPointF middle = QRectF(place).center();
        constexpr double kSign = 8;
        painter.setBrush(Qt::NoBrush);
        if (entry.state == EntryState::kRunning && entry.kind != Kind::kLive) {
            painter.setPen(QPen(Amber(palette), 2.5, Qt::SolidLine, Qt::RoundCap));
            painter.drawArc(QRectF(middle - QPointF(kSign, kSign), QSizeF(2 * kSign, 2 * kSign)), 30 * 16,
                            270 * 16);
        } else if (HasFailed(entry) || (entry.state == EntryState::kStopped && entry.thumbnail.isNull())) {
            painter.setPen(QPen(Red(palette), 2.5, Qt::SolidLine, Qt::RoundCap));
            painter.drawLine(middle - QPointF(kSign, kSign), middle + QPointF(kSign, kSign));
            painter.drawLine(middle - QPointF(kSign, -kSign), middle + QPointF(kSign, -kSign));
        }
    }
    static void DrawBadge(QPainter& painter, const QRect& place, const QPalette& palette) {
        const QRect badge(place.topLeft() + QPoint(3, 3), QSize(kBadge, kBadge));
        painter.setPen(Qt::NoPen);
        painter.setBrush(palette.color(QPalette::Active, QPalette::Highlight));
        painter.drawRoundedRect(badge, 4, 4);
        painter.setPen(palette.color(QPalette::Active, QPalette::HighlightedText));
        painter.drawText(badge, Qt::AlignCenter, "B");
    }
    static void DrawTexts(QPainter& painter, const PictureEntry& entry, const QStyleOptionViewItem& option,
                          bool isChosen) {
        const QPalette& palette = option.palette;
        const QColor ink =
            palette.color(QPalette::Active, isChosen ? QPalette::HighlightedText : QPalette::Text);
        QRect lines = option.rect.adjusted(2 * kMargin + kPicture.width() + 2, 0, -kMargin, 0);
        const int spacing = option.fontMetrics.lineSpacing();
        QRect line(lines.left(), lines.center().y() - spacing - 1, lines.width(), spacing);
        QStringList right;
        if (entry.kind != Kind::kReference) right << QLocale().toString(entry.started.time(), "HH:mm");
        if (const QString took = Took(entry); !took.isEmpty()) right << took;
        const QString told =
            entry.kind == Kind::kLive ? QString() : right.join(QString::fromUtf8("  \xc2\xb7  "));
        QColor pale = ink;
        pale.setAlphaF(0.68F);
        painter.setFont(option.font);
        painter.setPen(pale);
        painter.drawText(line, Qt::AlignRight | Qt::AlignVCenter, told);
        QFont bold = option.font;
        bold.setWeight(QFont::DemiBold);
        const QFontMetrics metrics(bold);
        const int room = line.width() - option.fontMetrics.horizontalAdvance(told) - kMargin;
        painter.setFont(bold);
        painter.setPen(ink);
        painter.drawText(line, Qt::AlignLeft | Qt::AlignVCenter,
                         metrics.elidedText(entry.Title().simplified(), Qt::ElideRight, room));
        line.translate(0, spacing + 2);
        painter.setFont(option.font);
        painter.setPen(HasFailed(entry) && !isChosen ? Red(palette) : pale);
        painter.drawText(line, Qt::AlignLeft | Qt::AlignVCenter,
                         option.fontMetrics.elidedText(SecondLineOf(entry), Qt::ElideRight, line.width()));
    }

    const PictureStrip& m_strip;
};

PictureStrip::PictureStrip(QWidget* parent, const PictureBook& book, Hands hands)
    : QListView(parent), m_book(book), m_hands(std::move(hands)), m_model(new Model(this, book)) {
    setObjectName("strip");
    setAccessibleName("Renders");
    auto* drawer = new Drawer(this);
    drawer->setParent(this);
    setItemDelegate(drawer);
    setModel(m_model);
    setSelectionMode(NoSelection);
    setEditTriggers(NoEditTriggers);
    setUniformItemSizes(true);
    setVerticalScrollMode(ScrollPerPixel);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setFrameShape(NoFrame);
    setMinimumSize(180, 70);
}

PictureEntry* PictureStrip::EntryAt(const QModelIndex& index) const {
    const bool isThere = index.isValid() && size_t(index.row()) < m_book.Entries().size();
    return isThere ? m_book.Entries()[size_t(index.row())].get() : nullptr;
}

void PictureStrip::ListChanged() { m_model->Reset(); }

void PictureStrip::EntryChanged(const PictureEntry& entry) {
    const int row = m_model->RowOf(&entry);
    if (row >= 0) update(m_model->index(row));
}

void PictureStrip::SetShown(const PictureEntry* first, const PictureEntry* second) {
    const bool isOther = first != m_first;
    m_first = first;
    m_second = second;
    const int row = m_model->RowOf(first);
    if (isOther && row >= 0) scrollTo(m_model->index(row));
    viewport()->update();
}

void PictureStrip::mousePressEvent(QMouseEvent* event) {
    PictureEntry* entry = EntryAt(indexAt(event->position().toPoint()));
    if (entry == nullptr || event->button() != Qt::LeftButton) return;
    (event->modifiers() & Qt::ControlModifier ? m_hands.compare : m_hands.choose)(*entry);
}

void PictureStrip::mouseDoubleClickEvent(QMouseEvent* event) {
    PictureEntry* entry = EntryAt(indexAt(event->position().toPoint()));
    if (entry != nullptr && event->button() == Qt::LeftButton && event->modifiers() == Qt::NoModifier)
        m_hands.restore(*entry);
}

void PictureStrip::contextMenuEvent(QContextMenuEvent* event) {
    PictureEntry* entry = EntryAt(indexAt(event->pos()));
    if (entry != nullptr) m_hands.menu(*entry, event->globalPos());
}

void PictureStrip::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Up) return Step(-1);
    if (event->key() == Qt::Key_Down) return Step(1);
    event->ignore();
}

void PictureStrip::Step(int rows) {
    const int row = m_model->RowOf(m_first) + rows;
    if (row >= 0 && row < m_model->rowCount({})) m_hands.choose(*m_book.Entries()[size_t(row)]);
}

}  // namespace tavrin
