// SPDX-License-Identifier: Apache-2.0
// The list of all pictures, beside the one that is looked at.
#pragma once

#include <QListView>
#include <functional>

#include "view/PictureBook.h"

namespace tavrin {

// A line for each entry of the book: thumbnail, what it is called, time and duration; below, what differs or
// what went wrong. Owned by the window; the book outlives it.
class PictureStrip : public QListView {
  public:
    struct Hands {
        std::function<void(PictureEntry&)> choose;   // a click, or the keys
        std::function<void(PictureEntry&)> restore;  // a double click
        std::function<void(PictureEntry&)> compare;  // a click with Ctrl
        std::function<void(PictureEntry&, QPoint)> menu;
    };
    PictureStrip(QWidget* parent, const PictureBook& book, Hands hands);

    void ListChanged();
    void EntryChanged(const PictureEntry& entry);
    // Which two are looked at; either may be null.
    void SetShown(const PictureEntry* first, const PictureEntry* second);

  protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

  private:
    class Model;
    class Drawer;

    PictureEntry* EntryAt(const QModelIndex& index) const;
    void Step(int rows);

    const PictureBook& m_book;
    Hands m_hands;
    Model* m_model;  // a child
    const PictureEntry* m_first = nullptr;
    const PictureEntry* m_second = nullptr;
};

// What a tool tip tells of an entry, as plain text.
QString TipOf(const PictureEntry& entry);
// The second line: what went wrong, else what differs.
QString SecondLineOf(const PictureEntry& entry);

}  // namespace tavrin
