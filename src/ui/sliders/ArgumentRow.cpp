// SPDX-License-Identifier: Apache-2.0
#include "ui/sliders/ArgumentRow.h"

#include <QCheckBox>
#include <QStyleOptionButton>
#include <algorithm>
#include <utility>

#include "document/TvDoc.h"
#include "sliders/ArgumentEdits.h"
#include "ui/base/DocumentText.h"
#include "ui/base/Text.h"
#include "ui/windows/DialogUnits.h"
#include "ui/windows/OneLineField.h"

namespace tavrin {

namespace {

// In dialog units.
constexpr int kRowWidth = 393;  // a narrower row has narrower columns
constexpr int kRowHeight = 12;
constexpr int kFlagLeft = 3;
constexpr int kNameLeft = 150;
constexpr int kCommentLeft = 258;
constexpr int kGap = 2;  // between columns

constexpr int kGapBelow = 2;  // pixels, between the fields of two rows
// What is left of a longer name fills any column, and elision costs time for each letter.
constexpr qsizetype kCaptionEnd = 500;

// Where columns begin in a row of that width, and where the last one ends, which takes what there is.
struct Columns {
    int flag, name, comment, end, gap;
};

Columns ColumnsOf(const DialogUnits& units, int width) {
    const double share = std::min(1.0, width / double(units.Across(kRowWidth)));
    const auto across = [&](int length) { return int(units.Across(length) * share); };
    return {across(kFlagLeft), across(kNameLeft), across(kCommentLeft), width, across(kGap)};
}

QString Shortened(const QString& text) {
    if (text.size() <= 2 * kCaptionEnd) return text;
    return text.left(kCaptionEnd) + u'\u2026' + text.right(kCaptionEnd);
}

QString Elided(const QCheckBox& box, const QString& text) {
    QStyleOptionButton option;
    option.initFrom(&box);
    const int room = box.style()->subElementRect(QStyle::SE_CheckBoxContents, &option, &box).width();
    return box.fontMetrics().elidedText(Shortened(text), Qt::ElideMiddle, room);
}

}  // namespace

CArgumentRow::CArgumentRow(QWidget* client, CTvDoc& document, Edited edited)
    : QWidget(client), m_document(document), m_edited(std::move(edited)), m_flag(new QCheckBox(this)) {
    m_name = new OneLineField(this, [this](const std::string& name) {
        Edit([&](COpButton& button) { SetArgumentName(m_document, button, name); });
    });
    m_comment = new OneLineField(this, [this](const std::string& comment) {
        Edit([&](COpButton& button) { SetComment(m_document, button, comment); });
    });
    connect(m_flag, &QCheckBox::clicked, this, [this](bool isArgument) {
        Edit([&](COpButton& button) { SetArgument(m_document, button, isArgument); });
    });
    m_flag->setObjectName("flag");
    m_name->setObjectName("name");
    m_comment->setObjectName("comment");
}

int CArgumentRow::MeasuredHeight() const {
    const int controls = std::max(m_flag->sizeHint().height(), m_name->sizeHint().height());
    return std::max(DialogUnits(fontMetrics()).Down(kRowHeight), controls + kGapBelow);
}

void CArgumentRow::SetButton(COpButton& button) {
    m_button = LiveRef<COpButton>(button);
    Refresh();
}

// The button first: what the controls tell while they are emptied is not to reach it.
void CArgumentRow::LetGo() {
    m_button = {};
    if (const auto field = FocusedField()) Control(*field).clearFocus();
}

void CArgumentRow::Refresh() {
    const COpButton* button = Button();
    if (button == nullptr) return;
    const QString caption = OnOneLine(Shown(button->VariableName({m_document.preparedVariables})));
    if (caption != m_caption) {
        m_caption = caption;
        m_flag->setAccessibleName(caption);
        m_name->setAccessibleName("Argument name of " + caption);
        m_comment->setAccessibleName("Comment on " + caption);
        ShowCaption();
    }
    m_flag->setChecked(button->arg != 0);
    m_name->ShowText(button->argname);
    m_comment->ShowText(button->comments);
    EnableControls(*button);
}

void CArgumentRow::ShowCaption() {
    const QString elided = Elided(*m_flag, m_caption);
    const QString label = LiteralLabel(elided);
    if (label != m_flag->text()) m_flag->setText(label);
    m_flag->setToolTip(elided == m_caption ? QString() : PlainToolTip(m_caption));
}

// A field that may not be typed in any more gives the focus to the flag that says so.
void CArgumentRow::EnableControls(const COpButton& button) {
    const auto focused = FocusedField();
    m_flag->setEnabled(IsEditable(button, ArgumentField::kFlag));
    if (focused && !IsEditable(button, *focused) && m_flag->isEnabled()) m_flag->setFocus();
    // There are no headings. A field that cannot be typed in asks for nothing.
    const auto open = [&](OneLineField& field, ArgumentField which, const QString& asks) {
        const bool isOpen = IsEditable(button, which);
        field.setEnabled(isOpen);
        field.setPlaceholderText(isOpen ? asks : QString());
    };
    open(*m_name, ArgumentField::kName, Shortened(m_caption));
    open(*m_comment, ArgumentField::kComment, "Comment");
}

void CArgumentRow::Edit(const std::function<void(COpButton&)>& change) {
    if (Button() == nullptr) return;
    m_edited(*this);
    if (COpButton* button = Button()) change(*button);
    if (const COpButton* button = Button()) EnableControls(*button);
}

QWidget& CArgumentRow::Control(ArgumentField field) const {
    if (field == ArgumentField::kFlag) return *m_flag;
    return field == ArgumentField::kName ? *m_name : *m_comment;
}

std::optional<ArgumentField> CArgumentRow::FocusedField() const {
    const QWidget* focused = window()->focusWidget();
    for (const auto field : {ArgumentField::kFlag, ArgumentField::kName, ArgumentField::kComment}) {
        if (focused == &Control(field)) return field;
    }
    return std::nullopt;
}

void CArgumentRow::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    const Columns at = ColumnsOf(DialogUnits(fontMetrics()), width());
    const int high = height() - kGapBelow;
    m_flag->setGeometry(at.flag, 0, at.name - at.gap - at.flag, high);
    m_name->setGeometry(at.name, 0, at.comment - at.gap - at.name, high);
    if (at.end > at.comment) m_comment->setGeometry(at.comment, 0, at.end - at.comment, high);
    ShowCaption();
}

}  // namespace tavrin
