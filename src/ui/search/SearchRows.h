// SPDX-License-Identifier: Apache-2.0
// The operators that a search has found, as rows of a list.
#pragma once

#include <QAbstractListModel>
#include <QHash>
#include <QPixmap>
#include <QString>
#include <QStyledItemDelegate>
#include <string>
#include <vector>

#include "library/OperatorSearch.h"

namespace tavrin {

class OperatorIndex;

// A piece of a text, in characters as the toolkit counts them.
struct LitPiece {
    int begin = 0;
    int length = 0;
};

// What is shown of an operator.
struct SearchRow {
    QString name;
    std::vector<LitPiece> lit;  // of the name
    QString found;              // where else the words stand; empty if in the name alone
    QString type;               // what its first output gives, or the button that the wire would go to
    QString menu;
    QString help;  // the line that says what it is, or why it cannot be read
    bool isBroken = false;
};

// Owned by its window. A row is made when it is looked at, so that thousands of hits cost no more than those
// in view. Rows of an index that has been made anew since are empty, until the next Show.
class SearchModel : public QAbstractListModel {
  public:
    // Both outlive it.
    SearchModel(const OperatorIndex& index, const OperatorSearch& search)
        : m_index(index), m_search(search) {}

    void Show(const std::vector<OperatorHit>& hits);
    const std::vector<OperatorHit>& Hits() const { return m_hits; }
    // Null where the library has none of it any more.
    const KnownOperator* OperatorAt(int row) const;
    SearchRow RowAt(int row) const;
    int RowOf(const std::string& name) const;  // -1 if it is not found

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;

  private:
    const OperatorIndex& m_index;
    const OperatorSearch& m_search;
    std::vector<OperatorHit> m_hits;
    uint64_t m_reloads = 0;  // of the index, when they were found
};

// Paints the rows: icon, name with what was typed lit, what was found, type and menu. Icons are read when
// they are first seen; without one, or where it cannot be read, the box's colour stands there.
class SearchRowPainter : public QStyledItemDelegate {
  public:
    // Icon files are named from `directory`, which outlives it.
    SearchRowPainter(QObject* parent, const SearchModel& rows, const std::string& directory)
        : QStyledItemDelegate(parent), m_rows(rows), m_directory(directory) {}

    // After the operators were looked for anew.
    void ForgetIcons() { m_icons.clear(); }

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;

  private:
    const QPixmap& IconOf(const KnownOperator& known, qreal ratio) const;

    const SearchModel& m_rows;
    const std::string& m_directory;
    mutable QHash<QString, QPixmap> m_icons;  // by the file and the colour behind it
};

}  // namespace tavrin
