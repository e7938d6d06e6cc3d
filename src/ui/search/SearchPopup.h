// SPDX-License-Identifier: Apache-2.0
// The search for an operator, at the pointer: a line to type on and the operators that are found.
#pragma once

#include <QFrame>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "library/OperatorSearch.h"

class QLabel;
class QLineEdit;
class QListView;

namespace tavrin {

class OperatorIndex;
class SearchModel;
class SearchRowPainter;

// Lives as long as its parent, hidden until Open. While it is open it has the keys and the mouse; a click
// elsewhere closes it and does nothing more.
class SearchPopup : public QFrame {
  public:
    // All of it outlives this.
    struct Needs {
        const OperatorIndex& index;
        OperatorSearch& search;
        const std::string& iconDirectory;
        // The operator of that name was chosen; where it was for a wire, with what it goes to. The popup is
        // closed by then.
        std::function<void(const std::string& name, const std::optional<WireFit>& fit)> chosen;
        std::function<void()> dismissed;  // it was closed, and nothing chosen
    };
    struct Wanted {
        QPoint at;                        // global; the line to type on comes to lie there
        QString begun = {};               // typed already
        std::optional<OpenEnd> end = {};  // what is found has to fit that
        QString what = {};                // what it is for, as the line shows while it is empty
    };
    SearchPopup(QWidget* parent, Needs needs);
    ~SearchPopup() override;

    void Open(const Wanted& wanted);
    // The index has read more, or was made anew: finds again what is typed. What the hand has gone to stays
    // chosen if it is still there.
    void FindAgain();

  protected:
    bool eventFilter(QObject* object, QEvent* event) override;
    void hideEvent(QHideEvent* event) override;

  private:
    void Find();
    void GoTo(int row);
    bool TakeKey(int key);
    int RowsOfAPage() const;
    void Choose();
    void TellOfCurrent();

    Needs m_needs;
    QLineEdit* m_line;
    QListView* m_list;
    QLabel* m_nothing;  // lies over the list where nothing is found
    QLabel* m_help;
    std::unique_ptr<SearchModel> m_rows;
    SearchRowPainter* m_painter;
    std::optional<OpenEnd> m_end;
    std::string m_current;     // the operator of the chosen row
    bool m_hasMoved = false;   // the hand has gone to a row since the text was typed
    bool m_hasChosen = false;  // it closes because of that
};

}  // namespace tavrin
