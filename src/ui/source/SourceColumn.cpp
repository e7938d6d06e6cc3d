// SPDX-License-Identifier: Apache-2.0
#include "ui/source/SourceColumn.h"

#include <QLabel>
#include <QVBoxLayout>
#include <utility>

#include "ui/base/Text.h"

namespace tavrin {

namespace {

constexpr size_t kMostNotes = 5;  // beside a source; all of them stand in the help of their label
constexpr int kMargin = 4;

}  // namespace

SourceColumn::SourceColumn(const SourceKind& kind, SourceView::Hands hands)
    : m_kind(kind),
      m_heading(new QLabel(this)),
      m_notes(new QLabel(this)),
      m_view(new SourceView(this, std::move(hands))) {
    m_heading->setTextFormat(Qt::PlainText);
    QFont bold = m_heading->font();
    bold.setBold(true);
    m_heading->setFont(bold);
    m_heading->setContentsMargins(kMargin, 0, 0, 0);
    m_notes->setTextFormat(Qt::PlainText);
    m_notes->setWordWrap(true);
    m_notes->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_notes->setContentsMargins(kMargin, 0, kMargin, 0);
    m_notes->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    m_notes->hide();
    m_view->setAccessibleName("Source: " + NameOf(kind));
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(kMargin);
    column->addWidget(m_heading);
    column->addWidget(m_notes);
    column->addWidget(m_view, 1);
    column->addStretch(0);
    m_heading->setText(NameOf(kind));
}

QString SourceColumn::NameOf(const SourceKind& kind) {
    if (!kind.isFiltered) return "Before the filter";
    return kind.type.empty() ? "Shader" : Shown(kind.type);
}

QString SourceColumn::Notes() const { return m_notes->isHidden() ? QString() : m_notes->text(); }

QString SourceColumn::Heading() const { return m_heading->text(); }

void SourceColumn::Show(const MadeSource* source, const SourceWords& words) {
    if (source == nullptr) return m_heading->setText(NameOf(m_kind) + ": being made");
    QStringList notes;
    for (const std::string& note : source->notes) notes += Shown(note);
    m_notes->setToolTip(notes.isEmpty()
                            ? QString()
                            : "<qt>" + notes.join('\n').toHtmlEscaped().replace('\n', "<br>") + "</qt>");
    if (source->isThere && notes.size() > static_cast<qsizetype>(kMostNotes)) {
        const auto more = notes.size() - static_cast<qsizetype>(kMostNotes);
        notes =
            notes.mid(0, static_cast<qsizetype>(kMostNotes)) + QStringList(QString("and %1 more").arg(more));
    }
    m_notes->setText(notes.join('\n'));
    m_notes->setVisible(!notes.isEmpty());
    m_view->setVisible(source->isThere);
    if (!source->isThere) return m_heading->setText(NameOf(m_kind) + ": there is no source");
    if (std::exchange(m_isOutOfDate, false) || m_view->Source().Text() != source->text)
        m_view->Show(SourceText(source->text, words));
    const size_t count = m_view->LineCount();
    m_heading->setText(NameOf(m_kind) +
                       (count == 1 ? QString(": 1 line") : QString(": %1 lines").arg(count)));
}

}  // namespace tavrin
