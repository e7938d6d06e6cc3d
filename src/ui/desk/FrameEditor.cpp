// SPDX-License-Identifier: Apache-2.0
#include "ui/desk/FrameEditor.h"

#include <QKeyEvent>
#include <QSignalBlocker>
#include <algorithm>
#include <cmath>

#include "desk/DeskViewport.h"
#include "desk/FrameGeometry.h"
#include "document/EditHistory.h"
#include "ui/base/DocumentText.h"

namespace tavrin {

namespace {

constexpr int kLeastWidth = 160;  // pixels
constexpr int kLeastLines = 3;    // of a note
constexpr float kPoints = 9;      // at a zoom of 1
constexpr float kLeastPoints = 9;
constexpr float kMostPoints = 24;
constexpr int kPadding = 8;         // above and below a title
constexpr float kNoteMargins = 16;  // desk units above and below the text of a note
constexpr float kMostGrown = 400;
constexpr size_t kLowerRight = 1;  // of a frame's corners

bool IsEnter(const QKeyEvent& key) { return key.key() == Qt::Key_Return || key.key() == Qt::Key_Enter; }

QString WithLineFeeds(QString text) {
    text.replace("\r\n", "\n");
    for (const QChar end : {QChar(u'\r'), QChar(QChar::LineSeparator), QChar(QChar::ParagraphSeparator)})
        text.replace(end, u'\n');
    return text;
}

// The editor's plain text would turn hard spaces into blanks.
QString TextOf(const QPlainTextEdit& edit) { return WithLineFeeds(edit.document()->toRawText()); }

QColor ToolkitColor(const Rgb& color) { return QColor::fromRgbF(color.r, color.g, color.b); }

}  // namespace

FrameEditor::FrameEditor(QWidget* parent, Needs needs) : QPlainTextEdit(parent), m_needs(std::move(needs)) {
    setAccessibleName("Frame or Note");
    setFrameStyle(QFrame::Box | QFrame::Plain);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setUndoRedoEnabled(true);
    hide();
    connect(this, &QPlainTextEdit::textChanged, this, [this] { Commit(); });
}

const DeskFrame* FrameEditor::Edited() const {
    const auto found = m_needs.document.frames.find(m_number);
    return found == m_needs.document.frames.end() ? nullptr : &found->second;
}

void FrameEditor::Open(int number) {
    Close();
    m_number = number;
    const DeskFrame* frame = Edited();
    if (frame == nullptr || m_needs.document.lock != 0) {
        m_number = 0;
        return;
    }
    EndStep();
    ShowLook(*frame);
    ShowText(*frame);
    document()->clearUndoRedoStacks();
    Place(*frame);
    show();
    raise();
    setFocus(Qt::OtherFocusReason);
    selectAll();
}

void FrameEditor::Close() {
    if (m_number == 0) return;
    m_number = 0;
    EndStep();
    const bool hadFocus = hasFocus();
    hide();
    if (hadFocus) m_needs.closed();
}

// What is typed next is a step of its own.
void FrameEditor::EndStep() {
    if (EditHistory* history = m_needs.document.History()) history->EndRun();
}

void FrameEditor::Follow() {
    if (m_number == 0) return;
    const DeskFrame* frame = Edited();
    if (frame == nullptr || m_needs.document.lock != 0) return Close();
    ShowText(*frame);
    Place(*frame);
}

void FrameEditor::ShowText(const DeskFrame& frame) {
    const DocumentText text = Decoded(frame.text);
    m_isLatin1 = text.isLatin1;
    const QString shown = WithLineFeeds(text.text);
    if (shown == TextOf(*this)) return;
    const QSignalBlocker silent(this);
    setPlainText(shown);
}

// In its own colours, whatever those of the program are: it stands for what is painted.
void FrameEditor::ShowLook(const DeskFrame& frame) {
    const QColor color = ToolkitColor(FrameColor(frame.color));
    QPalette colors = palette();
    colors.setColor(QPalette::Base, color.lighter(115));
    colors.setColor(QPalette::Text, Qt::black);
    setPalette(colors);
    const bool isNote = frame.kind == DeskFrame::Kind::kNote;
    setLineWrapMode(isNote ? QPlainTextEdit::WidgetWidth : QPlainTextEdit::NoWrap);
    setVerticalScrollBarPolicy(isNote ? Qt::ScrollBarAsNeeded : Qt::ScrollBarAlwaysOff);
}

// Over what is edited, as large as is needed to type in it, and within the desk's window.
void FrameEditor::Place(const DeskFrame& frame) {
    const float zoom = m_needs.view.Zoom();
    QFont letters = font();
    letters.setPointSizeF(std::clamp(kPoints * zoom, kLeastPoints, kMostPoints));
    if (letters != font()) setFont(letters);
    const bool isNote = frame.kind == DeskFrame::Kind::kNote;
    const int line = fontMetrics().lineSpacing();
    const int leastHeight = (isNote ? kLeastLines * line : line) + kPadding;
    const DeskRect rect = FrameHandle(frame, zoom);
    const WindowPoint corner = m_needs.view.ToWindow({rect.left, rect.Top()});
    const QSize room = parentWidget()->size();
    const auto within = [](float length, int least, int most) {
        return static_cast<int>(
            std::clamp(length, static_cast<float>(least), static_cast<float>(std::max(least, most))));
    };
    const int width = within(std::ceil(rect.width * zoom), kLeastWidth, room.width());
    const int height =
        isNote ? within(std::ceil(rect.height * zoom), leastHeight, room.height()) : leastHeight;
    setGeometry(within(corner.x, 0, room.width() - width), within(corner.y, 0, room.height() - height), width,
                height);
}

void FrameEditor::Commit() {
    const DeskFrame* frame = Edited();
    if (frame == nullptr || m_needs.document.lock != 0) return;
    QString text = TextOf(*this);
    if (frame->kind == DeskFrame::Kind::kFrame) text = OnOneLine(text);
    const bool isNote = frame->kind == DeskFrame::Kind::kNote;
    const EditScope edit(m_needs.document, isNote ? "Edit Note" : "Rename Frame");
    m_needs.desk.SetFrameText(m_number, Encoded({text, m_isLatin1}));
    if (isNote) GrowNote(*frame);
}

// Downward, by the lines that the field has.
void FrameEditor::GrowNote(const DeskFrame& note) {
    const auto lines = static_cast<float>(document()->size().height());
    const float lineHeight =
        static_cast<float>(fontMetrics().lineSpacing()) * kPoints / static_cast<float>(font().pointSizeF());
    const float wanted = std::min(lines * lineHeight + kNoteMargins, kMostGrown);
    if (wanted <= note.height) return;
    const DeskRect rect = FrameRect(note);
    m_needs.desk.ResizeFrame(m_number, kLowerRight, {rect.Right(), rect.Top() - wanted});
}

void FrameEditor::keyPressEvent(QKeyEvent* event) {
    const DeskFrame* frame = Edited();
    const bool isTitle = frame != nullptr && frame->kind == DeskFrame::Kind::kFrame;
    const bool ends = event->key() == Qt::Key_Escape ||
                      (IsEnter(*event) && (isTitle || event->modifiers().testFlag(Qt::ControlModifier)));
    if (!ends) return QPlainTextEdit::keyPressEvent(event);
    event->accept();
    Close();
}

// Its own menu and another window only borrow the focus.
void FrameEditor::focusOutEvent(QFocusEvent* event) {
    QPlainTextEdit::focusOutEvent(event);
    if (event->reason() != Qt::PopupFocusReason && event->reason() != Qt::ActiveWindowFocusReason) Close();
}

// The desk is zoomed, wherever the wheel is turned over it.
void FrameEditor::wheelEvent(QWheelEvent* event) { event->ignore(); }

}  // namespace tavrin
