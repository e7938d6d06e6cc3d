// SPDX-License-Identifier: Apache-2.0
#include "ui/search/SearchRows.h"

#include <QPainter>
#include <QTextLayout>
#include <algorithm>
#include <filesystem>

#include "base/Paths.h"
#include "images/SgiImage.h"
#include "library/OperatorIndex.h"
#include "site/TypeTables.h"
#include "ui/base/DocumentText.h"
#include "ui/base/Text.h"

namespace tavrin {

namespace {

constexpr int kIcon = 24;                    // pixels a side
constexpr int kGap = 8;                      // between what stands in a row, and at its ends
constexpr int kRowPadding = 3;               // above and below
constexpr qreal kCorner = 4;                 // of an icon's ground
constexpr uintmax_t kLargestIcon = 1 << 18;  // bytes of a file that is read for a row
constexpr int kMenuShare = 19;               // percent of a row for the menu; for the type kTypeShare
constexpr int kTypeShare = 13;
constexpr int kWireShare = 24;     // of the button that a wire would go to
constexpr int kLongestText = 200;  // characters of one text of a row

QString Cut(const std::string& text) { return OnOneLine(Shown(text).simplified()).left(kLongestText); }

QString TypeName(const std::string& type) {
    return Cut(type.starts_with(kGenericPrefix) ? type.substr(kGenericPrefix.size()) : type);
}

QString CurrentType(const KnownButton& button) {
    return button.currentcast < button.types.size() ? TypeName(button.types[button.currentcast]) : QString();
}

// The pieces count bytes, which may be those of a character that the toolkit counts otherwise.
std::vector<LitPiece> LitIn(const std::string& text, const std::vector<TextSpan>& pieces) {
    std::vector<LitPiece> lit;
    for (const TextSpan& piece : pieces) {
        const qsizetype begin = Shown(text.substr(0, piece.begin)).size();
        const qsizetype end = Shown(text.substr(0, piece.end)).size();
        lit.push_back({int(begin), int(end - begin)});
    }
    return lit;
}

// What was found is to be seen where there is little room: the text begins not far before it.
QString FromPiece(const SearchFinding& finding) {
    constexpr size_t kBefore = 12;
    if (finding.pieces.empty() || finding.pieces.front().begin <= kBefore) return Cut(finding.text);
    const size_t blank = finding.text.find(' ', finding.pieces.front().begin - kBefore);
    const size_t begin = blank < finding.pieces.front().begin ? blank + 1 : finding.pieces.front().begin;
    return QString::fromUtf8("\u2026 ") + Cut(finding.text.substr(begin));
}

QString Told(const SearchFinding& finding) {
    const QString text = FromPiece(finding);
    switch (finding.field) {
        case SearchField::kAlias:
            return "formerly " + text;
        case SearchField::kButton:
            return "has " + text;
        case SearchField::kOption:
            return Cut(finding.button) + ": " + text;
        case SearchField::kName:
        case SearchField::kMenu:
            return {};  // stand in the row anyway
        case SearchField::kKeyword:
        case SearchField::kHelp:
            return text;
        case SearchField::kButtonHelp:
            break;
    }
    return Cut(finding.button) + ": " + text;
}

QString TypeOf(const KnownOperator& known, const std::optional<WireFit>& fit) {
    if (fit) {
        const QString button = Cut(fit->button);
        if (fit->types == WireFit::Types::kCast) return button + " as " + TypeName(fit->castType);
        return fit->types == WireFit::Types::kSame ? button : button + " (converted)";
    }
    const auto output = std::find_if(known.buttons.begin(), known.buttons.end(),
                                     [](const KnownButton& button) { return button.isOutput; });
    return output == known.buttons.end() ? QString() : CurrentType(*output);
}

QString FirstLineOf(const std::string& help) {
    const size_t begin = help.find_first_not_of(" \t\r\n");
    if (begin == std::string::npos) return {};
    return Cut(help.substr(begin, help.find_first_of("\r\n", begin) - begin));
}

QPixmap MadeIcon(const std::string& path, const std::array<float, 3>& color, qreal ratio) {
    QPixmap icon(QSize(kIcon, kIcon) * ratio);
    icon.setDevicePixelRatio(ratio);
    icon.fill(Qt::transparent);
    QPainter painter(&icon);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
    const bool isBare = path.empty() && color == std::array<float, 3>{};
    if (isBare) return icon;
    painter.setPen(Qt::NoPen);
    const auto channel = [](float part) { return int(std::clamp(part, 0.0F, 1.0F) * 255); };
    painter.setBrush(QColor(channel(color[0]), channel(color[1]), channel(color[2])));
    painter.drawRoundedRect(QRectF(0, 0, kIcon, kIcon), kCorner, kCorner);
    std::error_code error;
    if (path.empty() || std::filesystem::file_size(path, error) > kLargestIcon || error) return icon;
    const CSgiImage image(path, {});
    if (image.pixels == nullptr) return icon;
    const QImage picture(image.pixels.get(), image.width, image.height, image.width * 4,
                         QImage::Format_RGBA8888);
    painter.drawImage(QRectF(0, 0, kIcon, kIcon), picture.mirrored());
    return icon;
}

// The texts of a row share it: the name has what it needs, the others what is left.
void DrawName(QPainter& painter, const QRect& place, const QFont& font, const SearchRow& row,
              const QColor& color, const QColor& litColor) {
    QTextLayout layout(row.name, font, painter.device());
    QList<QTextLayout::FormatRange> formats;
    for (const LitPiece& piece : row.lit) {
        QTextLayout::FormatRange range;
        range.start = piece.begin;
        range.length = piece.length;
        range.format.setForeground(litColor);
        range.format.setFontWeight(QFont::Bold);
        formats << range;
    }
    layout.setFormats(formats);
    layout.beginLayout();
    QTextLine line = layout.createLine();
    if (line.isValid()) line.setNumColumns(int(row.name.size()));
    layout.endLayout();
    painter.save();
    painter.setClipRect(place);
    painter.setPen(color);
    const int top = place.top() + (place.height() - painter.fontMetrics().height()) / 2;
    layout.draw(&painter, QPointF(place.left(), top));
    painter.restore();
}

QColor Between(const QColor& one, const QColor& other) {
    const auto mix = [](int a, int b) { return (a * 3 + b * 2) / 5; };
    return {mix(one.red(), other.red()), mix(one.green(), other.green()), mix(one.blue(), other.blue())};
}

}  // namespace

void SearchModel::Show(const std::vector<OperatorHit>& hits) {
    beginResetModel();
    m_hits = hits;
    m_reloads = m_index.Reloads();
    endResetModel();
}

const KnownOperator* SearchModel::OperatorAt(int row) const {
    if (row < 0 || row >= rowCount() || m_reloads != m_index.Reloads()) return nullptr;
    return &m_index.Operators()[m_hits[size_t(row)].place];
}

SearchRow SearchModel::RowAt(int row) const {
    const KnownOperator* known = OperatorAt(row);
    if (known == nullptr) return {};
    const OperatorHit& hit = m_hits[size_t(row)];
    SearchRow shown;
    shown.name = Shown(known->name);
    for (const SearchFinding& finding : m_search.FindingsOf(hit)) {
        if (finding.field == SearchField::kName) shown.lit = LitIn(finding.text, finding.pieces);
        if (shown.found.isEmpty()) shown.found = Told(finding);
    }
    shown.type = TypeOf(*known, hit.fit);
    shown.menu = Cut(known->menu);
    shown.isBroken = !known->problem.empty();
    shown.help = shown.isBroken ? Cut(known->problem) : FirstLineOf(known->help);
    return shown;
}

int SearchModel::RowOf(const std::string& name) const {
    const auto found = std::find_if(m_hits.begin(), m_hits.end(), [&](const OperatorHit& hit) {
        return m_index.Operators()[hit.place].name == name;
    });
    return found == m_hits.end() ? -1 : int(found - m_hits.begin());
}

int SearchModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : int(m_hits.size());
}

QVariant SearchModel::data(const QModelIndex& index, int role) const {
    const KnownOperator* known = index.isValid() ? OperatorAt(index.row()) : nullptr;
    if (known == nullptr) return {};
    if (role == Qt::DisplayRole) return Shown(known->name);
    if (role != Qt::AccessibleDescriptionRole) return {};
    const SearchRow row = RowAt(index.row());
    QStringList words{row.found, row.type, row.menu, row.help};
    words.removeAll(QString());
    return words.join(", ");
}

const QPixmap& SearchRowPainter::IconOf(const KnownOperator& known, qreal ratio) const {
    const std::string path = known.icon.empty() ? std::string() : ResolvePath(known.icon, m_directory);
    const QString key = Shown(path) + QString("|%1|%2|%3|%4")
                                          .arg(double(known.color[0]))
                                          .arg(double(known.color[1]))
                                          .arg(double(known.color[2]))
                                          .arg(ratio);
    auto found = m_icons.find(key);
    if (found == m_icons.end()) found = m_icons.insert(key, MadeIcon(path, known.color, ratio));
    return *found;
}

void SearchRowPainter::paint(QPainter* painter, const QStyleOptionViewItem& option,
                             const QModelIndex& index) const {
    const KnownOperator* known = m_rows.OperatorAt(index.row());
    if (known == nullptr) return;
    const SearchRow row = m_rows.RowAt(index.row());
    const bool isCurrent = (option.state & QStyle::State_Selected) != 0;
    const QPalette& palette = option.palette;
    const QColor text = palette.color(isCurrent ? QPalette::HighlightedText : QPalette::Text);
    const QColor ground = palette.color(isCurrent ? QPalette::Highlight : QPalette::Base);
    const QColor dim = Between(text, ground);
    painter->save();
    painter->fillRect(option.rect, ground);
    painter->setFont(option.font);
    QRect rest = option.rect.adjusted(kGap, 0, -kGap, 0);
    const QPixmap& icon = IconOf(*known, painter->device()->devicePixelRatioF());
    painter->drawPixmap(QPoint(rest.left(), rest.top() + (rest.height() - kIcon) / 2), icon);
    rest.setLeft(rest.left() + kIcon + kGap);

    const QFontMetrics metrics(option.font);
    painter->setPen(dim);
    const auto drawRight = [&](const QString& words, int share) {
        const int column = option.rect.width() * share / 100;
        const QRect place(rest.right() - column + 1, rest.top(), column, rest.height());
        painter->drawText(place, Qt::AlignRight | Qt::AlignVCenter | Qt::TextSingleLine,
                          metrics.elidedText(words, Qt::ElideLeft, column));
        rest.setRight(place.left() - kGap);
    };
    drawRight(row.menu, kMenuShare);
    drawRight(row.type, m_rows.Hits()[size_t(index.row())].fit ? kWireShare : kTypeShare);

    QFont bold = option.font;
    bold.setBold(true);
    const int wanted = QFontMetrics(bold).horizontalAdvance(row.name) + kGap;
    const QRect name(rest.left(), rest.top(), std::min(wanted, rest.width()), rest.height());
    const QColor lit = isCurrent ? text : palette.color(QPalette::Link);
    DrawName(*painter, name, option.font, row, row.isBroken ? dim : text, lit);
    rest.setLeft(name.right() + 1);
    painter->setPen(dim);
    painter->drawText(rest, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine,
                      metrics.elidedText(row.found, Qt::ElideRight, rest.width()));
    painter->restore();
}

QSize SearchRowPainter::sizeHint(const QStyleOptionViewItem& option, const QModelIndex&) const {
    return {0, std::max(kIcon, option.fontMetrics.height()) + 2 * kRowPadding};
}

}  // namespace tavrin
