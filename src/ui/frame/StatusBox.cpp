// SPDX-License-Identifier: Apache-2.0
#include "ui/frame/StatusBox.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPlainTextEdit>
#include <algorithm>
#include <ctime>

#include "ui/base/Text.h"

namespace tavrin {

namespace {

constexpr int kFontPixels = 11;
constexpr int kLines = 3;  // what the longest of the desk's own texts takes
constexpr int kMargin = 4;
constexpr int kLeastActivity = 200;  // pixels, however narrow the box is
constexpr int kLeastHint = 150;
const QString kEllipsis = QStringLiteral(" \u2026");

QColor ColourOf(const float (&components)[3]) {
    const auto channel = [&](int index) { return std::clamp(components[index], 0.0F, 1.0F); };
    return QColor::fromRgbF(channel(0), channel(1), channel(2));
}

// Tells when it has more or less room; its lines are laid out for it by then.
class StatusText : public QPlainTextEdit {
  public:
    StatusText(QWidget* parent, std::function<void()> resized)
        : QPlainTextEdit(parent), m_resized(std::move(resized)) {}

  protected:
    void resizeEvent(QResizeEvent* event) override {
        QPlainTextEdit::resizeEvent(event);
        m_resized();
    }

  private:
    std::function<void()> m_resized;
};

}  // namespace

CStatusBox::CStatusBox(QWidget* frame, const float (&background)[3], Clock clock)
    : QFrame(frame),
      m_hint(new QLabel(this)),
      m_rule(new QFrame(this)),
      m_text(new StatusText(this, [this] { ShowStatus(); })),
      m_activity(new QLabel(this)),
      m_clock(clock ? std::move(clock) : [] { return static_cast<long>(std::time(nullptr)); }) {
    const QColor ground = ColourOf(background);
    // Dark on light or light on dark, whatever the site has chosen.
    const QColor ink = qGray(ground.rgb()) > 127 ? Qt::black : Qt::white;
    QPalette colours = palette();
    for (const auto group : {QPalette::Active, QPalette::Inactive, QPalette::Disabled}) {
        colours.setColor(group, QPalette::Window, ground);
        colours.setColor(group, QPalette::Base, ground);
        colours.setColor(group, QPalette::Text, ink);
        colours.setColor(group, QPalette::WindowText, ink);
    }
    setPalette(colours);
    setAutoFillBackground(true);
    setFrameShape(QFrame::StyledPanel);

    QFont bold = font();
    bold.setPixelSize(kFontPixels);
    bold.setBold(true);
    m_text->setObjectName("status");
    m_text->setFont(bold);
    m_text->setReadOnly(true);
    m_text->setEnabled(false);
    m_text->setFocusPolicy(Qt::NoFocus);
    m_text->setFrameShape(QFrame::NoFrame);
    m_text->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_text->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_text->document()->setDocumentMargin(0);
    m_activity->setObjectName("activity");
    m_activity->setFont(bold);
    m_activity->setTextFormat(Qt::PlainText);
    m_activity->setAlignment(Qt::AlignRight | Qt::AlignTop);

    m_hint->setObjectName("hint");
    m_hint->setFont(bold);
    m_hint->setTextFormat(Qt::PlainText);
    m_hint->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    m_hint->setWordWrap(true);
    m_hint->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Ignored);  // the text gives the height
    m_rule->setFrameStyle(QFrame::VLine | QFrame::Plain);
    ShowHint();

    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(2 * kMargin, kMargin, 2 * kMargin, kMargin);
    row->setSpacing(4 * kMargin);
    row->addWidget(m_hint);
    row->addWidget(m_rule);
    row->addWidget(m_text, 1);
    row->addWidget(m_activity);
    m_text->setFixedHeight(kLines * QFontMetrics(bold).lineSpacing());
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
}

void CStatusBox::SetStatus(const std::string& text, int holdSeconds) {
    const long now = m_clock();
    if (m_hold != 0 && now - m_since < m_hold) return;
    if (text != m_shown) {
        m_shown = text;
        m_status = Shown(text).replace("\r\n", "\n").replace('\r', '\n');
        ShowStatus();
    }
    m_since = now;
    m_hold = holdSeconds;
}

// The document's height is that of its lines as they are laid out.
void CStatusBox::ShowStatus() {
    const auto isTooLong = [this] { return m_text->document()->size().height() > kLines; };
    if (m_text->toPlainText() != m_status) m_text->setPlainText(m_status);
    if (!isTooLong()) return;
    const int lowest = m_text->viewport()->height() - m_text->fontMetrics().lineSpacing() / 2;
    QString seen = m_status.left(m_text->cursorForPosition({m_text->viewport()->width(), lowest}).position());
    do {
        while (!seen.isEmpty() && seen.back().isSpace()) seen.chop(1);
        m_text->setPlainText(seen + kEllipsis);
        seen.chop(1);
    } while (!seen.isEmpty() && isTooLong());
}

void CStatusBox::SetHint(const QString& text) {
    if (m_hintText == text) return;
    m_hintText = text;
    ShowHint();
    ShowActivity();
}

// At most a third of the box.
void CStatusBox::ShowHint() {
    const int room = std::max(width() / 3, kLeastHint);
    m_hint->setFixedWidth(std::min(m_hint->fontMetrics().horizontalAdvance(m_hintText) + 1, room));
    m_hint->setText(m_hintText);
    m_hint->setVisible(!m_hintText.isEmpty());
    m_rule->setVisible(!m_hintText.isEmpty());
}

void CStatusBox::SetActivity(const QString& text, bool isUrgent) {
    if (m_activityText == text) return;
    m_activityText = text;
    ShowActivity();
    if (!isUrgent || !isVisible()) return;
    layout()->activate();
    repaint();
}

void CStatusBox::SetAside(const QString& text) {
    if (m_asideText == text) return;
    m_asideText = text;
    ShowActivity();
}

// With the hint at most half of the box, so that a long name neither widens the frame nor pushes the status
// away.
void CStatusBox::ShowActivity() {
    const QString& text = m_activityText.isEmpty() ? m_asideText : m_activityText;
    const int taken = m_hintText.isEmpty() ? 0 : m_hint->width();
    const int room = std::max(width() / 2 - taken, kLeastActivity);
    m_activity->setText(m_activity->fontMetrics().elidedText(text, Qt::ElideMiddle, room));
}

void CStatusBox::resizeEvent(QResizeEvent* event) {
    QFrame::resizeEvent(event);
    ShowHint();
    ShowActivity();
}

}  // namespace tavrin
