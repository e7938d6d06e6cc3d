// SPDX-License-Identifier: Apache-2.0
// The list that fills a finder: rows of text in fixed colours, chosen by a double click or Enter.
#pragma once

#include <QListView>
#include <functional>
#include <memory>
#include <string>
#include <vector>

class QMenu;

namespace tavrin {

class FinderModel;

// A line of a finder.
struct FinderRow {
    std::string text;
    bool isHeading = false;  // typing does not find it
    std::string tip{};       // its tool tip, as plain text; empty for none
};

// Owned by its window. Typing selects the next row that begins with what was typed.
class FinderList : public QListView {
  public:
    struct Colours {
        QColor background;
        QColor text;
    };

    // `chosen` gets the text of the row, headings too. The colours stand whatever the palette is.
    FinderList(QWidget* parent, const Colours& colours, std::function<void(const std::string&)> chosen);
    ~FinderList() override;

    // Replaces all rows; a row of the selected text stays selected, and the list does not scroll if it
    // need not.
    void SetRows(std::vector<FinderRow> rows);

    // Null for none that is selected.
    const std::string* SelectedText() const;
    // Selects the row of that text and brings it into view; nothing happens where there is none.
    void Select(const std::string& text);
    // Puts into a menu what can be done with the row of that text.
    using FillMenu = std::function<void(QMenu& menu, const std::string& text)>;
    void OnMenu(FillMenu fill) { m_fillMenu = std::move(fill); }

    // The keys are to go here once the window is active, as if the user had chosen the list.
    void TakeKeys();

  protected:
    bool event(QEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;

  private:
    void Choose(const QModelIndex& index);

    std::unique_ptr<FinderModel> m_model;
    std::function<void(const std::string&)> m_chosen;
    FillMenu m_fillMenu;
    bool m_takesKeys = false;  // when the window becomes active next
};

}  // namespace tavrin
