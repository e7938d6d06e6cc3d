#include "ui/frame/StatusBox.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPlainTextEdit>
#include <algorithm>
#include <ctime>

#include "ui/Text.h"

namespace tavrin {

namespace {

constexpr int kFontPixels = 11;
constexpr int kLines = 3;  // what the longest of the desk's own texts takes
constexpr int kMargin = 4;
constexpr int kLeastActivity = 200;  // pixels, however narrow the box is

QColor ColourOf(const float (&components)[3]) {
    const auto channel = [&](int index) { return std::clamp(components[index], 0.0F, 1.0F); };
    return QColor::fromRgbF(channel(0), channel(1), channel(2));
}

}  // namespace

CStatusBox::CStatusBox(QWidget* frame, const float (&background)[3], Clock clock)
    : QFrame(frame),
      m_text(new QPlainTextEdit(this)),
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

    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(2 * kMargin, kMargin, 2 * kMargin, kMargin);
    row->setSpacing(4 * kMargin);
    row->addWidget(m_text, 1);
    row->addWidget(m_activity);
    m_text->setFixedHeight(kLines * QFontMetrics(bold).lineSpacing());
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
}

void CStatusBox::SetStatus(const std::string& text, int holdSeconds) {
    const long now = m_clock();
    if (m_hold != 0 && now - m_since < m_hold) return;
    if (text != m_shown) m_text->setPlainText(Shown(text));
    m_shown = text;
    m_since = now;
    m_hold = holdSeconds;
}

QString CStatusBox::Status() const { return m_text->toPlainText(); }

void CStatusBox::SetActivity(const QString& text, bool isUrgent) {
    if (m_activityText == text) return;
    m_activityText = text;
    ShowActivity();
    if (!isUrgent || !isVisible()) return;
    layout()->activate();
    repaint();
    m_activity->repaint();
}

// At most half of the box, so that a long name neither widens the frame nor pushes the status away.
void CStatusBox::ShowActivity() {
    const int room = std::max(width() / 2, kLeastActivity);
    m_activity->setText(m_activity->fontMetrics().elidedText(m_activityText, Qt::ElideMiddle, room));
}

void CStatusBox::resizeEvent(QResizeEvent* event) {
    QFrame::resizeEvent(event);
    ShowActivity();
}

}  // namespace tavrin
