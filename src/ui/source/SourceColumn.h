// SPDX-License-Identifier: Apache-2.0
// One source of the window "Source", with its heading and what was said of it.
#pragma once

#include <QWidget>

#include "render/SourceMaker.h"
#include "ui/source/SourceView.h"

class QLabel;

namespace tavrin {

// Belongs to the window's splitter.
class SourceColumn : public QWidget {
  public:
    SourceColumn(const SourceKind& kind, SourceView::Hands hands);

    static QString NameOf(const SourceKind& kind);
    const SourceKind& Kind() const { return m_kind; }
    // Null while it is being made for the first time. Where there is no source, the reasons take its place.
    void Show(const MadeSource* source, const SourceWords& words);
    // The words that it was shown with are others now.
    void ForgetWords() { m_isOutOfDate = true; }
    SourceView& View() { return *m_view; }
    QString Notes() const;
    QString Heading() const;

  private:
    const SourceKind m_kind;
    bool m_isOutOfDate = false;
    // Children.
    QLabel* m_heading;
    QLabel* m_notes;
    SourceView* m_view;
};

}  // namespace tavrin
