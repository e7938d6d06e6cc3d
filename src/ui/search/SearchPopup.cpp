// SPDX-License-Identifier: Apache-2.0
#include "ui/search/SearchPopup.h"

#include <QGuiApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QScreen>
#include <QVBoxLayout>
#include <algorithm>
#include <utility>

#include "library/OperatorIndex.h"
#include "ui/base/Text.h"
#include "ui/search/SearchRows.h"

namespace tavrin {

namespace {

constexpr int kRows = 11;        // in view
constexpr int kCharacters = 86;  // of a row's width
constexpr int kMargin = 5;
constexpr int kUnderPointer = 40;  // from the popup's left edge to the pointer

// What the line is for is read while it is empty, also in looks that leave this colour to chance.
QPalette LegiblePlaceholder(QPalette palette) {
    QColor color = palette.color(QPalette::Text);
    constexpr qreal kFaint = 0.6;
    color.setAlphaF(float(kFaint));
    palette.setColor(QPalette::PlaceholderText, color);
    return palette;
}

constexpr const char* kNothing = "No operator is found.";
constexpr const char* kNothingFits = "No operator is found that fits the wire.";

}  // namespace

SearchPopup::SearchPopup(QWidget* parent, Needs needs)
    : QFrame(parent, Qt::Popup), m_needs(std::move(needs)) {
    setObjectName("SearchPopup");
    setWindowTitle("Search");
    setAttribute(Qt::WA_NoMouseReplay);
    setFrameStyle(QFrame::StyledPanel | QFrame::Raised);
    m_rows = std::make_unique<SearchModel>(m_needs.index, m_needs.search);
    m_line = new QLineEdit(this);
    m_line->setObjectName("text");
    m_line->setClearButtonEnabled(true);
    // One more than what finds anything: a text that was pasted by mistake finds nothing at once.
    m_line->setMaxLength(int(OperatorSearch::kLongestText) + 1);
    m_list = new QListView(this);
    m_list->setObjectName("list");
    m_list->setModel(m_rows.get());
    m_painter = new SearchRowPainter(m_list, *m_rows, m_needs.iconDirectory);
    m_list->setItemDelegate(m_painter);
    m_list->setFrameShape(QFrame::NoFrame);
    m_list->setUniformItemSizes(true);  // thousands of rows are measured by the first
    m_list->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_list->setFocusPolicy(Qt::NoFocus);
    m_list->setMouseTracking(true);
    m_nothing = new QLabel(m_list);
    m_nothing->setObjectName("nothing");
    m_nothing->setAlignment(Qt::AlignCenter);
    m_nothing->setWordWrap(true);
    auto* over = new QVBoxLayout(m_list);
    over->addWidget(m_nothing);
    m_help = new QLabel(this);
    m_help->setObjectName("help");
    m_help->setTextFormat(Qt::PlainText);
    m_help->setForegroundRole(QPalette::WindowText);
    // However long the text is, the popup keeps its width.
    m_help->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(kMargin, kMargin, kMargin, kMargin);
    column->setSpacing(kMargin);
    column->addWidget(m_line);
    column->addWidget(m_list, 1);
    column->addWidget(m_help);
    m_line->installEventFilter(this);
    setFocusProxy(m_line);
    connect(m_line, &QLineEdit::textChanged, this, [this] {
        m_hasMoved = false;
        Find();
    });
    connect(m_list, &QListView::entered, this, [this](const QModelIndex& row) { GoTo(row.row()); });
    connect(m_list, &QListView::clicked, this, [this](const QModelIndex& row) {
        GoTo(row.row());
        Choose();
    });
}

SearchPopup::~SearchPopup() = default;

void SearchPopup::Open(const Wanted& wanted) {
    m_end = wanted.end;
    m_hasMoved = m_hasChosen = false;
    m_line->setPalette(LegiblePlaceholder(palette()));
    m_line->setPlaceholderText(wanted.what);
    m_line->setAccessibleName(wanted.what);
    {
        const QSignalBlocker quiet(m_line);
        m_line->setText(wanted.begun);
    }
    Find();
    ensurePolished();
    const QFontMetrics metrics = fontMetrics();
    const int rowHeight = m_painter
                              ->sizeHint(
                                  [&] {
                                      QStyleOptionViewItem option;
                                      option.initFrom(m_list);
                                      return option;
                                  }(),
                                  {})
                              .height();
    const int edges = 2 * (kMargin + frameWidth());
    const QSize size(
        metrics.averageCharWidth() * kCharacters + edges,
        m_line->sizeHint().height() + kRows * rowHeight + m_help->sizeHint().height() + 2 * kMargin + edges);
    const QScreen* screen = QGuiApplication::screenAt(wanted.at);
    const QRect room = (screen == nullptr ? QGuiApplication::primaryScreen() : screen)->availableGeometry();
    resize(size.boundedTo(room.size()));
    const QPoint corner = wanted.at - QPoint(kUnderPointer, kMargin + m_line->sizeHint().height() / 2);
    move(std::clamp(corner.x(), room.left(), room.right() + 1 - width()),
         std::clamp(corner.y(), room.top(), room.bottom() + 1 - height()));
    show();
    m_line->setFocus(Qt::PopupFocusReason);
}

void SearchPopup::FindAgain() {
    if (!isVisible()) return;
    const std::string name = m_hasMoved ? m_current : std::string();
    m_painter->ForgetIcons();
    Find();
    const int row = name.empty() ? -1 : m_rows->RowOf(name);
    if (row >= 0) GoTo(row);
}

void SearchPopup::Find() {
    const bool hadMoved = m_hasMoved;
    m_rows->Show(m_needs.search.Find(Bytes(m_line->text()), m_end ? &*m_end : nullptr));
    GoTo(0);
    m_hasMoved = hadMoved;
    const size_t unread = m_needs.index.Unread();
    QString nothing = m_end ? kNothingFits : kNothing;
    if (unread > 0) nothing += QString("\n%1 are still to be read.").arg(unread);
    m_nothing->setText(nothing);
    m_nothing->setVisible(m_rows->rowCount() == 0);
}

void SearchPopup::GoTo(int row) {
    const QModelIndex index = m_rows->index(row);
    m_hasMoved = true;
    m_list->setCurrentIndex(index);
    if (index.isValid()) m_list->scrollTo(index);
    const KnownOperator* known = m_rows->OperatorAt(row);
    m_current = known == nullptr ? std::string() : known->name;
    TellOfCurrent();
}

void SearchPopup::TellOfCurrent() {
    const SearchRow row = m_rows->RowAt(m_list->currentIndex().row());
    const QString text = row.isBroken ? "Cannot be read: " + row.help : row.help;
    m_help->setToolTip({});
    m_help->setText(text.isEmpty() ? QString(" ") : text);
}

int SearchPopup::RowsOfAPage() const {
    const int row = std::max(m_list->sizeHintForRow(0), 1);
    return std::max(m_list->viewport()->height() / row, 1);
}

// Moves through the rows, and chooses; false for what belongs to the text.
bool SearchPopup::TakeKey(int key) {
    const int last = m_rows->rowCount() - 1;
    const int row = m_list->currentIndex().row();
    const auto go = [&](int to) {
        if (last >= 0) GoTo(std::clamp(to, 0, last));
        return true;
    };
    switch (key) {
        case Qt::Key_Down:
        case Qt::Key_Tab:
            return go(row + 1);
        case Qt::Key_Up:
        case Qt::Key_Backtab:
            return go(row - 1);
        case Qt::Key_PageDown:
            return go(row + RowsOfAPage());
        case Qt::Key_PageUp:
            return go(row - RowsOfAPage());
        case Qt::Key_Return:
        case Qt::Key_Enter:
            Choose();
            return true;
        case Qt::Key_Escape:
            hide();
            return true;
        default:
            return false;
    }
}

bool SearchPopup::eventFilter(QObject* object, QEvent* event) {
    if (object == m_line && event->type() == QEvent::KeyPress &&
        TakeKey(static_cast<const QKeyEvent&>(*event).key())) {
        return true;
    }
    return QFrame::eventFilter(object, event);
}

void SearchPopup::Choose() {
    const int row = m_list->currentIndex().row();
    const KnownOperator* known = m_rows->OperatorAt(row);
    if (known == nullptr) return;
    // Copies: what comes of it may make the index anew.
    const std::string name = known->name;
    const std::optional<WireFit> fit = m_rows->Hits()[size_t(row)].fit;
    m_hasChosen = true;
    hide();
    m_needs.chosen(name, fit);
}

void SearchPopup::hideEvent(QHideEvent* event) {
    QFrame::hideEvent(event);
    if (!m_hasChosen && !event->spontaneous()) m_needs.dismissed();
}

}  // namespace tavrin
